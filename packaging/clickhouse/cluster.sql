-- On each shard, after schema.sql. The cluster is called fleet in the servers' <remote_servers>.
--
-- All rows of a log go to one shard, so that those loaded twice meet there. Rows are loaded into the tables ending in
-- _load; the questions ask the tables without an ending.

CREATE TABLE IF NOT EXISTS sessions_load AS sessions_here
ENGINE = Distributed(fleet, currentDatabase(), sessions_rows, cityHash64(host, head));
CREATE TABLE IF NOT EXISTS logons_load AS logons_here
ENGINE = Distributed(fleet, currentDatabase(), logons_rows, cityHash64(host, head));
CREATE TABLE IF NOT EXISTS actions_load AS actions_here
ENGINE = Distributed(fleet, currentDatabase(), actions_rows, cityHash64(host, head));

CREATE TABLE IF NOT EXISTS sessions AS sessions_here ENGINE = Distributed(fleet, currentDatabase(), sessions_here);
CREATE TABLE IF NOT EXISTS logons AS logons_here ENGINE = Distributed(fleet, currentDatabase(), logons_here);
CREATE TABLE IF NOT EXISTS actions AS actions_here ENGINE = Distributed(fleet, currentDatabase(), actions_here);
