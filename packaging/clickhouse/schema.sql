-- The tables of quorvel for many servers and years, on one ClickHouse server or on each shard of a cluster.
--
-- Rows go into the tables ending in _rows, and are read from the views ending in _here: a log that was loaded twice, or
-- again after it had grown, stands there once. A row is known by the host its log comes from, the log's first bytes
-- (head, a hash of them), the log's name and the row's place in it. Times are the log's own clock.

CREATE TABLE IF NOT EXISTS sessions_rows (
  host String, head String, log String, position UInt64,
  session UInt32, key Nullable(String), inferred UInt8, server String,
  user Nullable(String), address Nullable(String),
  connected Nullable(DateTime('UTC')), logged_on Nullable(DateTime('UTC')), ended Nullable(DateTime('UTC')),
  seconds Nullable(UInt32), outcome Nullable(String), end String,
  downloads UInt32, download_bytes Nullable(UInt64), uploads UInt32, upload_bytes Nullable(UInt64),
  failed_transfers UInt32, deletes UInt32, renames UInt32, failed_logons UInt32,
  lines UInt32, last_position UInt64,
  -- by which rows are kept together; neither changes when a log grows
  at DateTime('UTC') MATERIALIZED ifNull(connected, toDateTime(0)),
  client String MATERIALIZED ifNull(address, '')
) ENGINE = ReplacingMergeTree
PARTITION BY toYYYYMM(at) ORDER BY (at, client, host, head, log, position);

CREATE TABLE IF NOT EXISTS logons_rows (
  host String, head String, log String, position UInt64,
  session UInt32, time Nullable(DateTime('UTC')), user Nullable(String), address Nullable(String),
  outcome String, reason Nullable(String), reply Nullable(String),
  at DateTime('UTC') MATERIALIZED ifNull(time, toDateTime(0)),
  client String MATERIALIZED ifNull(address, '')
) ENGINE = ReplacingMergeTree
PARTITION BY toYYYYMM(at) ORDER BY (at, client, host, head, log, position, session);

CREATE TABLE IF NOT EXISTS actions_rows (
  host String, head String, log String, position UInt64,
  session UInt32, time Nullable(DateTime('UTC')), user Nullable(String), address Nullable(String),
  action String, path Nullable(String), to_path Nullable(String), folder Nullable(String),
  bytes Nullable(UInt64), seconds Nullable(UInt32),
  outcome Nullable(String), cause Nullable(String), reply Nullable(String),
  at DateTime('UTC') MATERIALIZED ifNull(time, toDateTime(0)),
  client String MATERIALIZED ifNull(address, '')
) ENGINE = ReplacingMergeTree
PARTITION BY toYYYYMM(at) ORDER BY (at, client, host, head, log, position, session, action);

CREATE VIEW IF NOT EXISTS sessions_here AS SELECT * FROM sessions_rows FINAL;
CREATE VIEW IF NOT EXISTS logons_here AS SELECT * FROM logons_rows FINAL;
CREATE VIEW IF NOT EXISTS actions_here AS SELECT * FROM actions_rows FINAL;
