-- Question: the questions and their answers.
SELECT DAYNAME(FROM_UNIXTIME(asked)) AS weekday, COUNT(*) AS questions,
    COUNT(IF(response <= @target, 1, NULL)) AS within, COUNT(IF(response > @target, 1, NULL)) AS late,
    COUNT(*) - COUNT(answered) AS unanswered, COUNT(answered) AS answered,
    ROUND(AVG(100.0000 * (answered IS NOT NULL)), 1) AS answeredpct,
    ROUND(100 * COUNT(IF(response <= @target, 1, NULL)) / COUNT(*), 1) AS servicelevel,
    SUM(response) AS responses, ROUND(SUM(response) / COUNT(answered)) AS avgresponse, MAX(response) AS longest
FROM Question
WHERE counts AND IF(@customer = 1, WEEKDAY(FROM_UNIXTIME(asked)) < 5, TRUE)
GROUP BY weekday
ORDER BY (WEEKDAY(FROM_UNIXTIME(MIN(asked))) + IF(@customer = 1, 0, 1)) % 7;
