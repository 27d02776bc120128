-- Who was there: every session, as `quorvel sessions` shows it.
SELECT session, log, key, server, user, address, connected, logged_on, ended, seconds, outcome, end, downloads,
       download_bytes, uploads, upload_bytes, failed_transfers, deletes, renames, failed_logons, lines, position
FROM sessions
ORDER BY host, log, session
