-- On a server that stands alone, after schema.sql: the names that the questions ask.

CREATE VIEW IF NOT EXISTS sessions AS SELECT * FROM sessions_here;
CREATE VIEW IF NOT EXISTS logons AS SELECT * FROM logons_here;
CREATE VIEW IF NOT EXISTS actions AS SELECT * FROM actions_here;
