-- name: Busiest Trunks
-- description: How much each trunk carried, in and out: calls, time in use, traffic in erlangs and what the calls cost. The busiest trunk comes first.
-- category: 3
-- listorder: 10
-- format: graph:stack series:inseconds,outseconds label:trunk
-- help: Inbound and outbound count each call that came in or went out through the trunk once. Legs are its parts: a call that is transferred, or diverted to an outside number, takes up its trunks for each of its legs. The system's own announcements and recordings run beside a leg and take up none.
-- help: Time in use runs from the first ring to the end of each leg. Share is the trunk's part of the time in use of all trunks.
-- help: Average traffic in erlangs is time in use / length of the period (ITU-T E.600: one erlang is one line in use all the time). The period's length is its days from the first one with a call, times the hours of the time window.
--
-- A leg counts when a permitted party took part, as in Calls by Day; who may see everybody also sees
-- what belongs to nobody in the directory. No party is shown.
SELECT REPLACE(CONCAT(REPLACE(SUBSTRING_INDEX(dn, ',', 2), ',cn=', ' ('),
        IF(dn LIKE '%,%', ')', '')), 'cn=', '') AS trunk, dn,
    inbound, outbound, legs, inseconds, outseconds, inseconds + outseconds AS inuse,
    SUM(inseconds + outseconds) OVER () AS allseconds,
    ROUND(100 * (inseconds + outseconds) / NULLIF(SUM(inseconds + outseconds) OVER (), 0), 1)
        AS share,
    ROUND((inseconds + outseconds)
        / ((TIME_TO_SEC('[endTime]') - TIME_TO_SEC('[startTime]') + 1)
            * (DATEDIFF([endDate], firstday) + 1)), 2) AS erlangs,
    cost
FROM (
    SELECT customerid, dn, SUM(inbound) AS inbound, SUM(outbound) AS outbound, SUM(legs) AS legs,
        SUM(inseconds) AS inseconds, SUM(outseconds) AS outseconds, SUM(cost) AS cost,
        MIN(MIN(firstday)) OVER () AS firstday
    FROM (
        SELECT customerid, A_Trunk AS dn, SUM(transfercall <> 2) AS inbound,
            0 AS outbound, COUNT(*) AS legs, SUM(callduration) AS inseconds, 0 AS outseconds,
            0 AS cost, DATE(MIN(gmtdatetime)) AS firstday
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND A_Trunk <> ''
            AND ([allusers] OR A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
        GROUP BY customerid, A_Trunk
        UNION ALL
        SELECT customerid, B_Trunk, 0, SUM(transfercall <> 2), COUNT(*), 0,
            SUM(callduration), SUM(totalcost), DATE(MIN(gmtdatetime))
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND B_Trunk <> ''
            AND ([allusers] OR A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
        GROUP BY customerid, B_Trunk
    ) AS side
    GROUP BY customerid, dn
) AS used
ORDER BY inuse DESC, dn, customerid
