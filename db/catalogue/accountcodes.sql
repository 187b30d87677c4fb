-- name: Account Codes
-- description: The outside calls that were made with an account code, and what each code is to be charged.
-- category: 2
-- listorder: 50
-- format: money graph:bar series:total label:account
-- opt_user: 1
-- opt_department: 1
-- opt_account: 1
-- help: An account code is keyed in before the call. Calls without one are left out. Users counts the different people who used the code.
-- help: Cost is what the telephone system booked for the calls. Uplift is cost x uplift % / 100, VAT is (cost + uplift) x VAT % / 100, total is their sum. Amounts are added up unrounded and shown to the penny; the Grand Total is the sum of the totals.
--
-- The caller is not shown; a call counts when its caller or the department that pays for it carries
-- [entity].
SELECT account, outbound, answered, users, talk, cost, uplift, vat, cost + uplift + vat AS total,
    outbound AS n_calls, legs AS n_legs, legs - outbound AS n_transfers
FROM (
    SELECT *, ROUND((cost + uplift) * [vatrate] / 100, 4) AS vat
    FROM (
        SELECT customerid, accountCode AS account,
            SUM(transfercall <> 2) AS outbound, SUM(transfercall <> 2 AND hasconnected) AS answered,
            COUNT(DISTINCT A_Name) AS users,
            COUNT(*) AS legs, SUM(callconnected) AS talk, SUM(totalcost) AS cost,
            ROUND(SUM(totalcost) * [markup] / 100, 4) AS uplift
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND accountCode <> ''
            AND B_Trunk <> '' AND B_Out = 1 AND (A_Name [entity] OR origCostCentre [entity])
        GROUP BY customerid, accountCode
    ) AS charge
) AS invoice
ORDER BY account, customerid
