-- The table Part: what of each use of a line falls into each clock hour of the period. The lines are
-- the customer's trunks, by their names in the directory, and all ports of the voicemail together.
CREATE TEMPORARY TABLE Part (KEY (line, hour)) AS
WITH used AS (
    SELECT dn AS line, UNIX_TIMESTAMP(gmtdatetime) AS since, callduration, starts OR dn = B_Trunk AS begun,
        '' AS service
    FROM LDAPTrunks INNER JOIN Leg ON dn IN (A_Trunk, B_Trunk)
    WHERE LDAPTrunks.customerId = @customer
    UNION ALL
    SELECT 'voicemail', UNIX_TIMESTAMP(gmtdatetime), callduration, TRUE, B_Remote
    FROM CallLog
    WHERE customerid = @customer AND LEFT(B_Remote, 1) = '!'
), hours AS (
    SELECT TIMESTAMPDIFF(SECOND, '1970-01-01', @from) + 3600 * seq AS hour FROM seq_0_to_8800
    WHERE TIMESTAMPDIFF(SECOND, '1970-01-01', @from) + 3600 * seq < TIMESTAMPDIFF(SECOND, '1970-01-01', @to)
)
SELECT line, hour, GREATEST(since, hour) AS since, LEAST(since + callduration, hour + 3600) AS til,
    begun AND since >= hour AS begun, service
FROM used INNER JOIN hours ON since < hour + 3600 AND (since >= hour OR since + callduration > hour)
WHERE since >= TIMESTAMPDIFF(SECOND, '1970-01-01', @from)
    AND since < TIMESTAMPDIFF(SECOND, '1970-01-01', @to);
-- The table Busy: each hour of each line. The peak is reached where a use begins, or on the hour.
CREATE TEMPORARY TABLE Busy AS
SELECT line, hour, DATE(FROM_UNIXTIME(hour)) AS day, SUM(begun) AS calls, SUM(til - since) AS inuse,
    MAX((SELECT COUNT(*) FROM Part AS other WHERE other.line = Part.line AND other.hour = Part.hour
        AND other.since <= Part.since AND Part.since < other.til)) AS peak
FROM Part
GROUP BY line, hour;
