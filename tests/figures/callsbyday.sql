-- The customer's legs of the period. A leg starts a call when no other leg was transferred to it;
-- the system's own legs and the collecting of voicemail are no calls.
WITH leg AS (
    SELECT *, confId NOT IN (SELECT transferConfId FROM CallLog WHERE customerid = @customer
            AND transferConfId <> '') AS starts
    FROM CallLog
    WHERE customerid = @customer
        AND UNIX_TIMESTAMP(gmtdatetime) >= TIMESTAMPDIFF(SECOND, '1970-01-01', @from)
        AND UNIX_TIMESTAMP(gmtdatetime) < TIMESTAMPDIFF(SECOND, '1970-01-01', @to)
        AND (B_Remote NOT LIKE '!%' OR B_Remote = '!LeaveVoicemail')
),
call_ AS (
    SELECT *, CASE
            WHEN NOT starts THEN 'continued'
            WHEN A_Trunk = '' AND B_Trunk = '' THEN 'internal'
            WHEN A_Trunk = '' THEN 'outbound'
            WHEN callconnected > 0 THEN 'answered'
            WHEN B_Remote = '!LeaveVoicemail' THEN 'voicemail'
            WHEN transferConfId <> '' AND callduration < 2 THEN 'passedon'
            ELSE 'abandoned' END AS outcome
    FROM leg
)
SELECT DATE(d.gmtdatetime) AS day,
    COUNT(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), 1, NULL)) AS inbound,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * COUNT(IF(outcome = 'answered', 1, NULL))
        / NULLIF(COUNT(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), 1, NULL)), 0),
        1) AS answeredpct,
    COUNT(IF(outcome = 'outbound', 1, NULL)) AS outbound,
    COUNT(IF(outcome = 'internal', 1, NULL)) AS internal,
    COUNT(IF(outcome <> 'continued', 1, NULL)) AS calls,
    SUM(callconnected) AS talk, SUM(totalcost) AS cost
FROM LkupDates AS d INNER JOIN call_ AS c ON DATE(c.gmtdatetime) = DATE(d.gmtdatetime)
-- A day more at either end, since the reader's day may begin before or end after UTC's.
WHERE d.gmtdatetime BETWEEN DATE(@from) - INTERVAL 1 DAY AND DATE(@to) + INTERVAL 1 DAY
GROUP BY d.gmtdatetime
ORDER BY d.gmtdatetime;
