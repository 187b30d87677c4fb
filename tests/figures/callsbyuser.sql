WITH part AS (
    -- What each user did in each leg: as the caller ...
    SELECT A_Num AS number, kind = 'internal' AS internal, kind = 'outbound' AS outbound,
        0 AS answered, 0 AS missed, 0 AS transferred, callconnected > 0 AS talks,
        callconnected AS talk, totalcost AS cost
    FROM Leg WHERE A_Trunk = ''
    UNION ALL
    -- ... as the one who answered ...
    SELECT B_Remote, 0, 0, starts, 0, NOT starts, callconnected > 0, callconnected, 0
    FROM Leg WHERE B_Trunk = '' AND outcome = 'answered'
    UNION ALL
    -- ... and as the one who was rung in vain.
    SELECT B_Num, 0, 0, 0, 1, 0, 0, 0, 0
    FROM Leg WHERE B_Trunk = '' AND starts AND outcome IN ('voicemail', 'abandoned')
        -- Diverted to voicemail before the telephone rang.
        AND (transferConfId = '' OR callduration >= 2)
)
SELECT cn AS user, telephoneNumber AS number, SUM(answered) AS answered, SUM(missed) AS missed,
    SUM(transferred) AS transferred, SUM(outbound) AS outbound, SUM(internal) AS internal,
    SUM(answered + missed + outbound + internal) AS calls, SUM(talks) AS talks, SUM(talk) AS talk,
    ROUND(AVG(NULLIF(talk, 0))) AS avgtalk, SUM(cost) AS cost
FROM LDAPUsers INNER JOIN part ON part.number = telephoneNumber
WHERE customerid = @customer
GROUP BY cn, telephoneNumber
ORDER BY cn;
