-- At a moment so many legs are in progress as have begun by then and not yet ended. They can be most where
-- a leg begins, or in the first second of an hour.
CREATE TEMPORARY TABLE InHour (hour INT NOT NULL, KEY (hour)) AS
SELECT UNIX_TIMESTAMP(gmtdatetime) AS start, UNIX_TIMESTAMP(gmtdatetime) + callduration AS finish,
    UNIX_TIMESTAMP(gmtdatetime) DIV 3600 + seq AS hour
FROM Leg INNER JOIN seq_0_to_48
    ON seq <= (UNIX_TIMESTAMP(gmtdatetime) + callduration) DIV 3600 - UNIX_TIMESTAMP(gmtdatetime) DIV 3600
WHERE callduration > 0;

CREATE TEMPORARY TABLE Moment (at INT NOT NULL PRIMARY KEY, hour INT NOT NULL) AS
SELECT at, at DIV 3600 AS hour
FROM (
    SELECT start AS at FROM InHour
    UNION
    SELECT first + 3600 * seq
    FROM (SELECT TIMESTAMPDIFF(SECOND, '1970-01-01', @from) AS first) AS period INNER JOIN seq_0_to_20000
    WHERE first + 3600 * seq < TIMESTAMPDIFF(SECOND, '1970-01-01', @to)
) AS moment;

WITH level AS (
    SELECT at, COUNT(*) AS level
    FROM Moment INNER JOIN InHour ON InHour.hour = Moment.hour AND start <= at AND finish > at
    GROUP BY at
),
peak AS (
    SELECT at, level, HOUR(FROM_UNIXTIME(at)) AS hour,
        ROW_NUMBER() OVER (PARTITION BY HOUR(FROM_UNIXTIME(at)) ORDER BY level DESC, at) AS place
    FROM level
),
work AS (
    SELECT HOUR(gmtdatetime) AS hour, COUNT(*) AS legs, SUM(callduration) AS seconds,
        COUNT(DISTINCT DATE(gmtdatetime)) * 3600 AS observed
    FROM Leg WHERE callduration > 0 GROUP BY HOUR(gmtdatetime)
)
SELECT TIME_FORMAT(MAKETIME(hour, 0, 0), '%H:%i') AS begins, level AS peak, FROM_UNIXTIME(at) AS reached,
    legs, seconds, observed, ROUND(seconds / observed, 2) AS traffic
FROM work INNER JOIN peak USING (hour)
WHERE place = 1
ORDER BY hour;
