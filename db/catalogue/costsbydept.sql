-- name: Costs by Department
-- description: What each department's outside calls cost, with uplift and VAT, ready to be charged on. A call that leaves again through a trunk, because somebody diverts their telephone to a mobile one, is charged to their department.
-- category: 2
-- listorder: 10
-- format: money graph:pie series:total label:department
-- opt_department: 1
-- help: Outbound counts each call that the department's people made through a trunk, answered or not, once. Diverted counts the calls from outside that were passed on to another outside number; both cost money.
-- help: Cost is what the telephone system booked for the calls. Uplift is cost x uplift % / 100, VAT is (cost + uplift) x VAT % / 100, total is their sum. Amounts are added up unrounded and shown to the penny; the Grand Total is the sum of the totals.
--
-- A department's row is made of the calls booked to it and of nothing else, and origCostCentre
-- carries [entity]. No party of a call is shown, so the figures hide nobody.
SELECT department, outbound, diverted, talk, cost, uplift, vat, cost + uplift + vat AS total,
    outbound AS n_calls, legs AS n_legs, diverted AS n_transfers
FROM (
    SELECT *, ROUND((cost + uplift) * [vatrate] / 100, 4) AS vat
    FROM (
        SELECT customerid, origCostCentre AS department,
            SUM(transfercall <> 2) AS outbound, SUM(transfercall = 2) AS diverted,
            COUNT(*) AS legs, SUM(callconnected) AS talk, SUM(totalcost) AS cost,
            ROUND(SUM(totalcost) * [markup] / 100, 4) AS uplift
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
            AND B_Trunk <> '' AND B_Out = 1 AND origCostCentre [entity]
        GROUP BY customerid, origCostCentre
    ) AS charge
) AS invoice
ORDER BY department, customerid
