-- name: Automated Attendant Breakdown
-- description: What the telephone system itself did with the calls to each direct dialling number: announcements to those who waited, voicemail, recordings. Numbers whose callers met none of them are left out. Choose a DDI to see that number alone.
-- category: 4
-- listorder: 110
-- format: graph:bar series:announced,again,voicemail,recordings label:ddi
-- opt_user: 1
-- opt_department: 1
-- opt_queue: 1
-- opt_ddi: 1
-- help: Calls and answered count each inbound call once, where it was first dialled. First are the calls whose caller waited long enough to hear the first announcement, repeated counts every further one. % is first / calls x 100. Time is how long all announcements played.
-- help: Voicemail counts the messages that callers were asked to leave, at the first destination or after a transfer; recordings are those that the system kept of a call.
--
-- The system's own legs carry the DDI and the party dialled of the call that they serve. That party
-- carries [entity]; neither the caller nor the one who answered is shown.
SELECT ddi, MAX(destination) AS destination,
    SUM(IF(service IN ('answered', 'voicemail', 'none'), legs, 0)) AS inbound,
    SUM(IF(service = 'answered', legs, 0)) AS answered,
    SUM(IF(service = 'announcement', legs, 0)) AS announced,
    ROUND(100 * SUM(IF(service = 'announcement', legs, 0))
        / NULLIF(SUM(IF(service IN ('answered', 'voicemail', 'none'), legs, 0)), 0), 1) AS announcedpct,
    SUM(IF(service = 'repeat', legs, 0)) AS again,
    SUM(IF(service IN ('announcement', 'repeat'), seconds, 0)) AS announcetime,
    SUM(IF(service IN ('voicemail', 'later voicemail'), legs, 0)) AS voicemail,
    SUM(IF(service = 'recording', legs, 0)) AS recordings,
    SUM(IF(service IN ('answered', 'voicemail', 'none'), legs, 0)) AS n_calls
FROM (
    SELECT customerid, targetNumber AS ddi, MAX(B_Name) AS destination,
        CASE WHEN transfercall > 2 THEN
                CASE WHEN B_Remote LIKE '!AnnouncementInitial%' THEN 'announcement'
                    WHEN B_Remote LIKE '!AnnouncementRepeat%' THEN 'repeat'
                    ELSE 'recording' END
            WHEN transfercall = 2 THEN 'later voicemail'
            WHEN hasconnected THEN 'answered'
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            ELSE 'none' END AS service,
        COUNT(*) AS legs, SUM(callduration) AS seconds
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time]
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AND targetNumber <> ''
        AND (transfercall IN (0, 1)
            OR (transfercall = 2 AND hasconnected = 0 AND B_Remote LIKE '!LeaveVoicemail%')
            OR B_Remote LIKE '!Announcement%' OR B_Remote LIKE '!LeaveRecording%')
        AND B_Name [entity]
    GROUP BY customerid, ddi, service
) AS part
GROUP BY ddi, customerid
HAVING announced + again + voicemail + recordings > 0
ORDER BY ddi, customerid
