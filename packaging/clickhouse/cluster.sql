-- On each shard, after schema.sql. The cluster is called fleet in the servers' <remote_servers>.
--
-- All rows of a log go to one shard, so that those loaded twice meet there. Load into the tables ending in _load, ask
-- those ending in _all.

CREATE TABLE IF NOT EXISTS sessions_load AS sessions
ENGINE = Distributed(fleet, currentDatabase(), sessions_rows, cityHash64(host, head));
CREATE TABLE IF NOT EXISTS logons_load AS logons
ENGINE = Distributed(fleet, currentDatabase(), logons_rows, cityHash64(host, head));
CREATE TABLE IF NOT EXISTS actions_load AS actions
ENGINE = Distributed(fleet, currentDatabase(), actions_rows, cityHash64(host, head));

CREATE TABLE IF NOT EXISTS sessions_all AS sessions ENGINE = Distributed(fleet, currentDatabase(), sessions);
CREATE TABLE IF NOT EXISTS logons_all AS logons ENGINE = Distributed(fleet, currentDatabase(), logons);
CREATE TABLE IF NOT EXISTS actions_all AS actions ENGINE = Distributed(fleet, currentDatabase(), actions);
