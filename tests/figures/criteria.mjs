// The reports that need criteria besides the period: the arguments that a test runs them with, and SQL
// variables that tell the report's query in this folder the same.

import { sql } from '../http/portal.mjs';

const [{ number }, { name }] = sql(`SELECT A_Num AS number, A_Name AS name FROM CallLog
    WHERE customerid = 1 AND A_Trunk <> '' AND A_Name <> '' GROUP BY A_Num, A_Name
    ORDER BY COUNT(*) DESC, A_Num LIMIT 2`);
const [target] = sql('SELECT id, responseSLA FROM FrontSLAs WHERE customerid = 1 ORDER BY responseSLA LIMIT 1');
const [sla] = sql('SELECT id, answerSLA FROM CallCentreSLAs WHERE customerid = 1 ORDER BY answerSLA DESC LIMIT 1');
const literal = (text) => `'${text.replaceAll('\\', '\\\\').replaceAll("'", "\\'")}'`;

export const criteria = {
    abandonedshort: { arguments: { timeLimit: '9' } },
    // Whoever a number spoke to since, and at whatever time of the day, it needs no call back.
    abandonednotcalled: { everyLeg: true },
    abandonsum: {
        arguments: { slaID: sla.id },
        variables: `SET @answer = IF(@customer = 1, ${sla.answerSLA}, 20);`,
    },
    queuesummary: {
        arguments: { slaID: sla.id },
        variables: `SET @answer = IF(@customer = 1, ${sla.answerSLA}, 20);`,
    },
    msgrespweek: {
        arguments: { slaID: target.id },
        variables: `SET @target = IF(@customer = 1, ${target.responseSLA}, 9999999);`,
    },
    contactcalls: {
        arguments: { contact1: number, contact2: name },
        variables: `SET @contact1 = ${literal(number)}, @contact2 = ${literal(name)};`,
    },
};
