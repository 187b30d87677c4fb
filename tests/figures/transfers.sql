WITH party AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION ALL
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
),
transfer AS (
    SELECT sender.cn AS sender, receiver.cn AS receiver, onward.outcome, onward.ringing,
        onward.callconnected, away.callconnected = 0 AND away.callduration < 2 AS diverted
    FROM Leg AS away INNER JOIN Leg AS onward ON onward.confId = away.transferConfId
        INNER JOIN party AS sender
            ON sender.telephoneNumber = IF(away.callconnected > 0, away.B_Remote, away.B_Num)
        INNER JOIN party AS receiver ON receiver.telephoneNumber = onward.B_Num
    WHERE NOT onward.starts
)
SELECT sender, receiver, COUNT(*) AS transfers, COUNT(IF(diverted, 1, NULL)) AS diverted,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(AVG(100.0000 * (outcome = 'answered')), 1) AS answeredpct,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS rings,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS avgring,
    SUM(callconnected) AS talk,
    ROUND(AVG(IF(outcome = 'answered', callconnected, NULL))) AS avgtalk,
    COUNT(*) AS n_transfers
FROM transfer
GROUP BY sender, receiver
ORDER BY transfers DESC, sender, receiver;
