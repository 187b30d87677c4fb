-- name: Costs by User
-- description: What each user's outside calls cost, with uplift and VAT; the dearest users come first.
-- category: 2
-- listorder: 20
-- format: money graph:bar series:total label:user
-- opt_user: 1
-- opt_account: 1
-- opt_trunk: 1
-- help: Outbound counts each call that the user made through a trunk, once, answered or not; answered those that the other side took. Calls that come from outside and are diverted to a mobile telephone have no caller inside: they stand in Costs by Department.
-- help: Cost is what the telephone system booked for the calls. Uplift is cost x uplift % / 100, VAT is (cost + uplift) x VAT % / 100, total is their sum. Amounts are added up unrounded and shown to the penny; the Grand Total is the sum of the totals.
--
-- Each row names one caller inside, and A_Name carries [entity]. The party called is neither shown
-- nor counted apart, so the figures hide nobody.
SELECT user, number, outbound, answered, talk, cost, uplift, vat, cost + uplift + vat AS total,
    outbound AS n_calls, legs AS n_legs, legs - outbound AS n_transfers
FROM (
    SELECT *, ROUND((cost + uplift) * [vatrate] / 100, 4) AS vat
    FROM (
        SELECT customerid, A_Name AS user, MAX(A_ShortNum) AS number,
            SUM(transfercall <> 2) AS outbound, SUM(transfercall <> 2 AND hasconnected) AS answered,
            COUNT(*) AS legs, SUM(callconnected) AS talk, SUM(totalcost) AS cost,
            ROUND(SUM(totalcost) * [markup] / 100, 4) AS uplift
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
            AND A_Trunk = '' AND B_Trunk <> '' AND B_Out = 1 AND A_Name [entity]
        GROUP BY customerid, A_Name
    ) AS charge
) AS invoice
ORDER BY total DESC, user, customerid
