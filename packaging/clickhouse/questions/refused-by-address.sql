-- Who tried to get in: log-ons refused, by address, as `quorvel logins` counts them.
SELECT address, countIf(outcome = 'failed') AS failures, count() AS attempts, min(time) AS first, max(time) AS last
FROM logons
GROUP BY address
ORDER BY failures DESC, address
