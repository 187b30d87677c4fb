-- name: Costs by Destination
-- description: Where outside calls went and what they cost, by country or kind of national number; the dearest destinations come first.
-- category: 2
-- listorder: 30
-- format: money graph:pie series:total label:destination
-- opt_user: 1
-- opt_department: 1
-- opt_trunk: 1
-- help: The destination is told by the longest entry of the dialling prefixes with which the number begins: your own national prefixes, and the E.164 country codes of the ITU behind 00 or +. What fits none is Other.
-- help: Calls counts each call through a trunk once, answered or not, those included that were diverted to an outside number. Average per minute is cost / talk time in minutes, before uplift and VAT.
-- help: Cost is what the telephone system booked for the calls. Uplift is cost x uplift % / 100, VAT is (cost + uplift) x VAT % / 100, total is their sum. Amounts are added up unrounded and shown to the penny; the Grand Total is the sum of the totals.
--
-- Numbers are cut to seven digits, the longest prefix, before they are looked up, so that the look-up
-- runs once for each beginning and not once for each call. Who called is not shown; a call counts
-- when its caller or the department that pays for it carries [entity].
SELECT destination, calls, answered, talk, talk / 60 AS minutes,
    ROUND(cost / NULLIF(talk, 0) * 60, 4) AS perminute,
    cost, uplift, vat, cost + uplift + vat AS total
FROM (
    SELECT *, ROUND((cost + uplift) * [vatrate] / 100, 4) AS vat
    FROM (
        SELECT destination, SUM(calls) AS calls, SUM(answered) AS answered, SUM(talk) AS talk,
            SUM(cost) AS cost, ROUND(SUM(cost) * [markup] / 100, 4) AS uplift
        FROM (
            SELECT calls, answered, talk, cost, IFNULL((
                    SELECT name
                    FROM seq_1_to_7 AS digits INNER JOIN DiallingPrefix AS p
                        ON p.prefix = LEFT(beginning, digits.seq)
                            AND p.customerid IN (0, dialled.customerid)
                    ORDER BY digits.seq DESC, p.customerid DESC
                    LIMIT 1), 'Other') AS destination
            FROM (
                SELECT customerid, IF(B_Num LIKE '+%', CONCAT('00', SUBSTR(B_Num, 2, 5)),
                        LEFT(B_Num, 7)) AS beginning,
                    COUNT(*) AS calls, SUM(hasconnected) AS answered,
                    SUM(callconnected) AS talk, SUM(totalcost) AS cost
                FROM CallLog
                WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
                    AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
                    AND B_Trunk <> '' AND B_Out = 1
                    AND (A_Name [entity] OR origCostCentre [entity])
                GROUP BY customerid, beginning
            ) AS dialled
        ) AS found
        GROUP BY destination
    ) AS charge
) AS invoice
ORDER BY total DESC, destination
