-- name: Transfers
-- description: Who passed calls on to whom, and whether somebody answered there. Choose a user or department under "For" to see what they passed on, under "Show" what was passed to them.
-- category: 1
-- listorder: 70
-- format: graph:bar series:answered,voicemail,abandoned label:sender
-- opt_user: 1
-- opt_department: 1
-- opt_second_for_field: 1
-- help: A transfer is counted for each time a call was passed on: one that was passed on twice counts twice. Diverted are those that left before the first telephone rang (unanswered, less than 2 seconds).
-- help: Answered, voicemail and unanswered say how the transfer ended at its receiver. Answered % is answered / transfers x 100; average ring time is that of the answered transfers, average talk time that of the conversations after the transfer.
-- help: Both legs of a transfer must have begun within the period and the time of day.
--
-- Each row names two parties, and each carries its condition: who passed the call on [entity], who
-- received it [entity2]. The two legs meet by the name of the second.
-- Two passes over the period take eight to nine times as long as counting its rows.
SELECT sender, receiver, COUNT(*) AS transfers,
    SUM(diverted) AS diverted,
    SUM(answered) AS answered,
    SUM(voicemail) AS voicemail,
    SUM(NOT answered AND NOT voicemail) AS abandoned,
    ROUND(100 * SUM(answered) / COUNT(*), 1) AS answeredpct,
    SUM(IF(answered, ringing, 0)) AS rings,
    ROUND(SUM(IF(answered, ringing, 0)) / NULLIF(SUM(answered), 0)) AS avgring,
    SUM(talk) AS talk,
    ROUND(SUM(talk) / NULLIF(SUM(answered), 0)) AS avgtalk,
    COUNT(*) AS n_transfers
FROM (
    SELECT customerid, MAX(sender) AS sender, MAX(receiver) AS receiver,
        MAX(diverted) AS diverted, MAX(answered) AS answered, MAX(voicemail) AS voicemail,
        MAX(ringing) AS ringing, MAX(talk) AS talk
    FROM (
        SELECT customerid, transferConfId AS link, IF(hasconnected, B_RemoteName, B_Name) AS sender,
            hasconnected = 0 AND callduration < 2 AS diverted,
            NULL AS receiver, NULL AS answered, NULL AS voicemail, NULL AS ringing, NULL AS talk
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (1, 2) AND transferConfId <> ''
            AND ((hasconnected AND B_RemoteName [entity]) OR (NOT hasconnected AND B_Name [entity]))
        UNION ALL
        SELECT customerid, confId, NULL, NULL, B_Name, hasconnected,
            hasconnected = 0 AND B_Remote LIKE '!LeaveVoicemail%',
            callduration - callconnected, callconnected
        FROM CallLog
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall = 2 AND B_Name [entity2]
    ) AS leg
    GROUP BY customerid, link
    HAVING COUNT(sender) > 0 AND COUNT(receiver) > 0
) AS transfer
GROUP BY customerid, sender, receiver
ORDER BY transfers DESC, sender, receiver, customerid
