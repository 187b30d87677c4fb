-- name: Missed Calls by User
-- description: Calls to each user that nobody answered: how many, from outside or inside, left to voicemail or not, and how long the telephone rang. A call counts once, where it began.
-- category: 1
-- listorder: 45
-- format: graph:bar series:voicemail,hungup label:user
-- opt_user: 1
-- help: Calls are those dialled to the user, less those diverted before the telephone rang; answered are those that somebody answered there, the user or a colleague who picked up. Missed = calls - answered, missed % is missed / calls x 100.
-- help: Voicemail and hung up divide the missed calls by what the caller did; from outside and from inside by where they came from.
-- help: Rang before hanging up is the time from the first ring until the caller gave up, without calls that went to voicemail.
--
-- Only the party dialled is named and counted, and B_Name carries [entity].
SELECT user, MAX(number) AS number,
    SUM(legs) AS offered,
    SUM(IF(result = 'answered', legs, 0)) AS answered,
    SUM(IF(result = 'answered', 0, legs)) AS missed,
    ROUND(100 * SUM(IF(result = 'answered', 0, legs)) / SUM(legs), 1) AS missedpct,
    SUM(IF(result = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(result = 'hungup', legs, 0)) AS hungup,
    SUM(IF(result <> 'answered' AND outside, legs, 0)) AS missedoutside,
    SUM(IF(result <> 'answered' AND NOT outside, legs, 0)) AS missedinside,
    SUM(IF(result = 'hungup', rang, 0)) AS rings,
    ROUND(SUM(IF(result = 'hungup', rang, 0)) / NULLIF(SUM(IF(result = 'hungup', legs, 0)), 0))
        AS avgring,
    MAX(IF(result = 'hungup', longest, NULL)) AS longestring
FROM (
    SELECT customerid, B_Name AS user, B_ShortNum AS number, A_Trunk <> '' AS outside,
        CASE WHEN hasconnected THEN 'answered' WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            ELSE 'hungup' END AS result,
        COUNT(*) AS legs, SUM(callduration) AS rang, MAX(callduration) AS longest
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND B_Remote <> '!CollectVoicemail' AND B_Trunk = ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
    GROUP BY customerid, user, number, outside, result
) AS part
GROUP BY customerid, user
HAVING missed > 0
ORDER BY missed DESC, user, customerid
