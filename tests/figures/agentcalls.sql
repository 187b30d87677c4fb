SELECT agentName AS agent, agentNumber AS number,
    COUNT(IF(kind = 'inbound', 1, NULL)) AS external, COUNT(IF(kind = 'internal', 1, NULL)) AS internal,
    COUNT(IF(kind = 'continued', 1, NULL)) AS transferred, COUNT(*) AS handled,
    COUNT(NULLIF(transferConfId, '')) AS passedon, ROUND(100 * AVG(transferConfId <> ''), 1) AS passedonpct,
    SUM(callconnected) AS talk, ROUND(AVG(callconnected)) AS avgtalk, MAX(callconnected) AS longesttalk,
    IFNULL(SUM(IF(kind = 'inbound', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(kind = 'inbound', ringing, NULL))) AS avgwait
FROM CallCentreAgent AS a INNER JOIN Leg ON B_Remote = agentNumber AND outcome = 'answered' AND B_Trunk = ''
WHERE a.customerid = @customer
GROUP BY agentName, agentNumber
ORDER BY agentName;
