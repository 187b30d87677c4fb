-- name: Price Record
-- description: Every outside call that cost something, in the order of time: who called whom, for how long and for how much, with uplift and VAT. Made to be downloaded for billing.
-- category: 2
-- listorder: 70
-- format: money graph:none
-- opt_user: 1
-- opt_account: 1
-- opt_trunk: 1
-- help: Calls that cost nothing are left out. A call that was transferred has a row for each of its priced legs.
-- help: Cost is what the telephone system booked for the call. Uplift is cost x uplift % / 100, VAT is (cost + uplift) x VAT % / 100, total is their sum. Amounts are added up unrounded and shown to the penny; the Grand Total is the sum of the totals.
--
-- Each row is the call of a permitted user: A_Name carries [entity], and the outside party is shown
-- to who may see that user's calls.
SELECT start, user, number, party, account, talk, cost, uplift,
    ROUND((cost + uplift) * [vatrate] / 100, 4) AS vat,
    cost + uplift + ROUND((cost + uplift) * [vatrate] / 100, 4) AS total, confId
FROM (
    SELECT id, gmtdatetime AS start, A_Name AS user, B_Num AS number, B_Name AS party,
        accountCode AS account, callconnected AS talk, totalcost AS cost,
        ROUND(totalcost * [markup] / 100, 4) AS uplift, confId
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND A_Trunk = '' AND B_Trunk <> '' AND B_Out = 1 AND totalcost > 0 AND A_Name [entity]
) AS priced
ORDER BY start, id
