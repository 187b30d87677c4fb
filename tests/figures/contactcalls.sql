WITH party AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION ALL
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT gmtdatetime AS start,
    COALESCE(caller.cn, answerer.cn, dialled.cn) AS user,
    IF(A_Trunk = '', 'Outbound', 'Inbound') AS direction,
    IF(A_Trunk = '', B_Num, A_Num) AS number, IF(A_Trunk = '', B_Name, A_Name) AS name,
    CASE WHEN outcome = 'answered' THEN 'Answered' WHEN outcome = 'voicemail' THEN 'Voicemail'
        WHEN transferConfId <> '' AND starts AND callduration < 2 THEN 'Passed on'
        ELSE 'Unanswered' END AS result,
    ringing, callconnected AS talk, totalcost AS cost, starts AS n_calls, 1 AS n_legs,
    NOT starts AS n_transfers
FROM Leg
    LEFT JOIN party AS caller ON A_Trunk = '' AND caller.telephoneNumber = A_Num
    LEFT JOIN party AS dialled ON B_Trunk = '' AND dialled.telephoneNumber = B_Num
    LEFT JOIN party AS answerer ON B_Trunk = '' AND answerer.telephoneNumber = B_Remote
WHERE (A_Trunk = '' AND B_Trunk <> '' AND (B_Num = @contact1 OR B_Name = @contact2)
        OR A_Trunk <> '' AND B_Trunk = '' AND (A_Num = @contact1 OR A_Name = @contact2))
    AND COALESCE(caller.cn, answerer.cn, dialled.cn) IS NOT NULL
ORDER BY UNIX_TIMESTAMP(gmtdatetime) DESC, Leg.id DESC;
