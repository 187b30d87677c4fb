WITH talk_ AS (
    SELECT Leg.*, caller.cn AS caller, answerer.cn AS answerer,
        ROW_NUMBER() OVER (ORDER BY callconnected DESC, gmtdatetime, Leg.id) AS place
    FROM Leg
        LEFT JOIN LDAPUsers AS caller ON A_Trunk = '' AND caller.telephoneNumber = A_Num
            AND caller.customerid = @customer
        LEFT JOIN LDAPUsers AS answerer ON B_Trunk = '' AND answerer.telephoneNumber = B_Remote
            AND answerer.customerid = @customer
    WHERE outcome = 'answered' AND (caller.cn IS NOT NULL OR answerer.cn IS NOT NULL)
)
SELECT gmtdatetime AS start, COALESCE(caller, answerer) AS user,
    IF(A_Trunk <> '', 'Inbound', IF(B_Trunk <> '', 'Outbound', 'Internal')) AS direction,
    CONCAT(IF(A_Trunk <> '', A_Num, ''), IF(B_Trunk <> '', B_Num, ''),
        IF(A_Trunk = '' AND B_Trunk = '' AND caller IS NOT NULL AND answerer IS NOT NULL, B_Remote, ''))
        AS number,
    CONCAT(IF(A_Trunk <> '', A_Name, ''), IF(B_Trunk <> '', B_Name, ''),
        IF(A_Trunk = '' AND B_Trunk = '' AND caller IS NOT NULL, IFNULL(answerer, ''), '')) AS party,
    ringing, callconnected AS talk, totalcost AS cost
FROM talk_
WHERE place <= 100
ORDER BY place;
