-- How much went where: files that went over and their bytes, as `quorvel traffic --by user,day` sums them.
SELECT user, toDate(time) AS day, countIf(action = 'download') AS downloads,
       sumIf(ifNull(bytes, 0), action = 'download') AS download_bytes, countIf(action = 'upload') AS uploads,
       sumIf(ifNull(bytes, 0), action = 'upload') AS upload_bytes
FROM actions
WHERE action IN ('download', 'upload') AND outcome = 'ok'
GROUP BY user, day
ORDER BY download_bytes + upload_bytes DESC, user, day
