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
destination AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION ALL
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
),
offer AS (
    SELECT cn, telephoneNumber, callconnected > 0 AS answered, B_Remote <> '' AS taken, callduration
    FROM destination INNER JOIN leg ON B_Num = telephoneNumber
    WHERE starts AND A_Trunk <> ''
        AND NOT (transferConfId <> '' AND callconnected = 0 AND callduration < 2)
)
SELECT cn AS destination, telephoneNumber AS number, COUNT(*) AS offered,
    SUM(answered) AS answered, SUM(taken) - SUM(answered) AS voicemail,
    COUNT(*) - SUM(taken) AS abandoned, COUNT(*) - SUM(answered) AS unanswered,
    ROUND(100 - 100 * SUM(answered) / COUNT(*), 1) AS unansweredpct,
    IFNULL(SUM(IF(taken, NULL, callduration)), 0) AS wait,
    ROUND(AVG(IF(taken, NULL, callduration))) AS avgwait,
    MAX(IF(taken, NULL, callduration)) AS longestwait
FROM offer
GROUP BY cn, telephoneNumber
HAVING COUNT(*) > SUM(answered)
ORDER BY unanswered DESC, destination;
