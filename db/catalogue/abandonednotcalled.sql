-- name: Abandoned and Not Called Back
-- description: The outside numbers that gave up waiting in a queue and have not been spoken to since: nobody called them back, and they did not get through later. Those who gave up last come first.
-- category: 4
-- listorder: 60
-- format: graph:none
-- opt_queue: 1
-- opt_time_limit: 1
-- help: A number is listed when its latest abandoned call to a queue was followed, within the period, neither by a call of ours to it, answered or not, nor by a call from it that somebody answered, in this queue or anywhere else. Choose a period that ends today to see who still waits for a call.
-- help: Abandoned: the caller hung up before an agent, or the voicemail, answered. Callers who waited no longer than "Duration longer than" are left out; 5 seconds when that is empty.
-- help: Calls are the abandoned calls of the number in the period, those before the last contact included; queue, time and wait are those of the latest. Callers who withhold their number cannot be called back and are left out.
--
-- Only the outside number, which called a permitted queue, and that queue are shown: the abandoned
-- calls carry [entity] on B_Name. That a colleague has spoken to the number since takes it off the
-- list, whoever that was. Moments are compared as seconds since 1970, which no change of the clock
-- repeats.
SELECT name, number,
    SUBSTRING(latest, 11) AS queue,
    FROM_UNIXTIME(gaveup) AS gaveup,
    wait, calls, longest
FROM (
    SELECT customerid, number, MAX(name) AS name, SUM(abandoned) AS calls,
        MAX(IF(abandoned, CONCAT(at, queue), NULL)) AS latest,
        MAX(IF(abandoned, at, NULL)) AS gaveup,
        MAX(IF(abandoned, NULL, at)) AS contact,
        MAX(IF(abandoned, callduration, NULL)) AS longest
    FROM leg
) AS outside
WHERE gaveup > IFNULL(contact, 0)
ORDER BY gaveup DESC, number, customerid
