WITH call_ AS (
    SELECT A_Num AS number, A_Name AS name, starts, outcome, 'from' AS way, callconnected, totalcost
    FROM Leg WHERE A_Trunk <> '' AND A_Out = 0
    UNION ALL
    SELECT B_Num, B_Name, starts, outcome, 'to', callconnected, totalcost
    FROM Leg WHERE B_Trunk <> '' AND A_Trunk = ''
),
ranked AS (
    SELECT number, MAX(name) AS name,
        COUNT(IF(starts AND way = 'from', 1, NULL)) AS inbound,
        COUNT(IF(starts AND way = 'from' AND outcome = 'answered', 1, NULL)) AS answered,
        COUNT(IF(starts AND way = 'from' AND outcome <> 'answered', 1, NULL)) AS unanswered,
        COUNT(IF(starts AND way = 'to', 1, NULL)) AS outbound,
        COUNT(IF(starts, 1, NULL)) AS calls, SUM(callconnected) AS talk, SUM(totalcost) AS cost,
        COUNT(*) AS legs,
        ROW_NUMBER() OVER (ORDER BY COUNT(IF(starts, 1, NULL)) DESC, number)
            AS place
    FROM call_
    GROUP BY number
)
SELECT COALESCE(NULLIF(number, ''), 'Withheld') AS outside, name, inbound, answered, unanswered,
    outbound, calls, talk, cost, calls AS n_calls, legs AS n_legs, legs - calls AS n_transfers
FROM ranked
WHERE place <= 100
ORDER BY place;
