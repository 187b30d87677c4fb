WITH part AS (
    SELECT A_Num AS number, Leg.* FROM Leg WHERE A_Trunk = '' AND starts
    UNION ALL
    SELECT B_Remote, Leg.* FROM Leg WHERE B_Trunk = '' AND outcome = 'answered'
),
ranked AS (
    SELECT cn, DATE(gmtdatetime) AS day, gmtdatetime, UNIX_TIMESTAMP(gmtdatetime) AS start,
        callduration, callconnected,
        ROW_NUMBER() OVER (PARTITION BY cn, DATE(gmtdatetime) ORDER BY UNIX_TIMESTAMP(gmtdatetime) DESC)
            AS backwards,
        ROW_NUMBER() OVER (PARTITION BY cn, DATE(gmtdatetime) ORDER BY UNIX_TIMESTAMP(gmtdatetime)) AS forwards
    FROM LDAPUsers AS u INNER JOIN part ON number = telephoneNumber
    WHERE u.customerid = @customer
)
SELECT cn AS user, day,
    MAX(IF(forwards = 1, TIME(gmtdatetime), NULL)) AS firstcall,
    MAX(IF(backwards = 1, TIME(gmtdatetime), NULL)) AS lastcall,
    MAX(start + callduration) - MIN(start) AS span, COUNT(*) AS calls, SUM(callconnected) AS talk,
    ROUND(100 * SUM(callconnected) / NULLIF(MAX(start + callduration) - MIN(start), 0), 1) AS talkpct
FROM ranked
GROUP BY cn, day
ORDER BY cn, day;
