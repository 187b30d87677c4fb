-- The calls from Leg, and the services, which are no calls, from the log.
WITH destination AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
), part AS (
    SELECT targetNumber, B_Num, IF(starts, 'call', 'continued') AS what, outcome, callduration FROM Leg
    WHERE A_Trunk <> '' AND (starts OR outcome = 'voicemail')
    UNION ALL
    SELECT targetNumber, B_Num, B_Remote, 'service', callduration FROM CallLog
    WHERE customerid = @customer AND A_Trunk <> ''
        AND B_Remote IN ('!AnnouncementInitial', '!AnnouncementRepeat', '!LeaveRecording')
        AND UNIX_TIMESTAMP(gmtdatetime) >= TIMESTAMPDIFF(SECOND, '1970-01-01', @from)
        AND UNIX_TIMESTAMP(gmtdatetime) < TIMESTAMPDIFF(SECOND, '1970-01-01', @to)
)
SELECT targetNumber AS ddi, MAX(cn) AS destination,
    COUNT(IF(what = 'call', 1, NULL)) AS inbound,
    COUNT(IF(what = 'call' AND outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(what LIKE '%Initial', 1, NULL)) AS announced,
    ROUND(100 * COUNT(IF(what LIKE '%Initial', 1, NULL)) / NULLIF(COUNT(IF(what = 'call', 1, NULL)), 0), 1)
        AS announcedpct,
    COUNT(IF(what LIKE '%Repeat', 1, NULL)) AS again,
    IFNULL(SUM(IF(what LIKE '!Announce%', callduration, NULL)), 0) AS announcetime,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(what LIKE '%Recording', 1, NULL)) AS recordings
FROM destination INNER JOIN part ON B_Num = telephoneNumber
WHERE targetNumber IS NOT NULL
GROUP BY targetNumber
HAVING SUM(outcome IN ('service', 'voicemail')) > 0
ORDER BY ddi;
