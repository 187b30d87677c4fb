-- The table Leg: the customer's legs of the period, with what each was. A leg starts a call when no
-- other leg was transferred to it; the system's own legs and the collecting of voicemail are no calls.
CREATE TEMPORARY TABLE Leg AS
WITH marked AS (
    SELECT *, confId NOT IN (SELECT transferConfId FROM CallLog WHERE customerid = @customer
            AND transferConfId <> '') AS starts
    FROM CallLog
    WHERE customerid = @customer
        AND UNIX_TIMESTAMP(gmtdatetime) >= TIMESTAMPDIFF(SECOND, '1970-01-01', @from)
        AND UNIX_TIMESTAMP(gmtdatetime) < TIMESTAMPDIFF(SECOND, '1970-01-01', @to)
        AND (B_Remote NOT LIKE '!%' OR B_Remote = '!LeaveVoicemail')
)
SELECT *,
    CASE WHEN NOT starts THEN 'continued' WHEN A_Trunk <> '' THEN 'inbound'
        WHEN B_Trunk <> '' THEN 'outbound' ELSE 'internal' END AS kind,
    CASE WHEN callconnected > 0 THEN 'answered'
        WHEN B_Remote = '!LeaveVoicemail' THEN 'voicemail'
        WHEN starts AND transferConfId <> '' AND callduration < 2 THEN 'passedon'
        ELSE 'abandoned' END AS outcome,
    callduration - callconnected AS ringing
FROM marked;
