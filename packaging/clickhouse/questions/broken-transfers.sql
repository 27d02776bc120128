-- What broke: transfers that did not finish, as `quorvel transfers` lists them.
SELECT session, log, time, user, address, action, path, bytes, cause, reply, position
FROM actions
WHERE action IN ('download', 'upload') AND outcome = 'failed'
ORDER BY host, log, position
