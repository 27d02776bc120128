-- What happened to files: how often what was done with each path, as `quorvel files` tells it one by one.
SELECT path, action, outcome, count() AS times, min(time) AS first, max(time) AS last
FROM actions
GROUP BY path, action, outcome
ORDER BY path, action, outcome
