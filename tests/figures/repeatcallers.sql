WITH caller AS (
    SELECT A_Num AS number, MAX(A_Name) AS name, COUNT(*) AS inbound,
        COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
        COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
        COUNT(IF(outcome = 'passedon', 1, NULL)) AS passedon,
        COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
        ROUND(AVG(100.0000 * (outcome = 'answered')), 1) AS answeredpct,
        MAX(UNIX_TIMESTAMP(gmtdatetime)) AS last,
        MAX(IF(outcome = 'answered', UNIX_TIMESTAMP(gmtdatetime), NULL)) AS lastanswer
    FROM Leg
    WHERE kind = 'inbound' AND A_Num <> ''
    GROUP BY A_Num
    HAVING COUNT(*) > 2
),
called AS (
    SELECT B_Num AS number, MAX(B_Name) AS name, COUNT(*) AS calls
    FROM Leg WHERE kind = 'outbound' GROUP BY B_Num
)
SELECT number, IFNULL(GREATEST(caller.name, called.name), caller.name) AS name, inbound, answered,
    voicemail, passedon, abandoned, answeredpct, IFNULL(calls, 0) AS outbound,
    FROM_UNIXTIME(last) AS lastcall,
    FROM_UNIXTIME(lastanswer) AS lastanswered, inbound AS n_calls
FROM caller LEFT JOIN called USING (number)
ORDER BY inbound DESC, number;
