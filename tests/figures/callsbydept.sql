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
SELECT d.cn AS department,
    COUNT(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), 1, NULL)) AS inbound,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * COUNT(IF(outcome = 'answered', 1, NULL))
        / COUNT(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), 1, NULL)), 1)
        AS answeredpct,
    IFNULL(SUM(IF(outcome = 'answered', callduration - callconnected, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', callduration - callconnected, NULL))) AS avgwait,
    COUNT(IF(outcome = 'outbound', 1, NULL)) AS outbound,
    COUNT(IF(outcome = 'internal', 1, NULL)) AS internal,
    SUM(callconnected) AS talk, SUM(totalcost) AS cost
FROM LDAPDepartments AS d INNER JOIN call_ AS c ON c.origCostCentre = d.cn
WHERE d.customerid = @customer
GROUP BY d.cn
ORDER BY d.cn;
