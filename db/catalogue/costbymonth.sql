-- name: Costs by Month
-- description: What outside calls cost in each month of the period, to compare months with each other or to charge one of them.
-- category: 2
-- listorder: 60
-- format: money graph:bar series:total label:month
-- opt_user: 1
-- opt_department: 1
-- opt_trunk: 1
-- help: A call belongs to the month in which it began in your time zone. Outbound counts each call through a trunk once, answered or not; diverted the calls from outside that were passed on to an outside number. The first and the last month count as far as the period reaches.
-- help: Cost is what the telephone system booked for the calls. Uplift is cost x uplift % / 100, VAT is (cost + uplift) x VAT % / 100, total is their sum. Amounts are added up unrounded and shown to the penny; the Grand Total is the sum of the totals.
--
-- No party is shown; a call counts when its caller or the department that pays for it carries
-- [entity].
SELECT month, outbound, diverted, talk, cost, uplift, vat, cost + uplift + vat AS total,
    outbound AS n_calls, legs AS n_legs, diverted AS n_transfers
FROM (
    SELECT *, ROUND((cost + uplift) * [vatrate] / 100, 4) AS vat
    FROM (
        SELECT DATE_FORMAT(gmtdatetime, '%Y-%m') AS month,
            SUM(transfercall <> 2) AS outbound, SUM(transfercall = 2) AS diverted,
            COUNT(*) AS legs, SUM(callconnected) AS talk, SUM(totalcost) AS cost,
            ROUND(SUM(totalcost) * [markup] / 100, 4) AS uplift
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
            AND B_Trunk <> '' AND B_Out = 1 AND (A_Name [entity] OR origCostCentre [entity])
        GROUP BY month
    ) AS charge
) AS invoice
ORDER BY month
