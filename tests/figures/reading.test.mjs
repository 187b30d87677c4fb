// No report reads a row of the call log outside its period and its customer, nor another customer's rows
// of any table: the server runs each report's own statement and counts.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { dirname, join } from 'node:path';
import test, { after, before } from 'node:test';
import { env, get, sql } from '../http/portal.mjs';
import { catalogue, shift, zoneOf } from './report.mjs';

const admin = (query) =>
    execFileSync('mariadb', [`--defaults-file=${join(dirname(env.ROOT), 'admin.cnf')}`, '-BN', '-e', query, env.DB_NAME], {
        encoding: 'utf8',
        maxBuffer: 1 << 28,
    });

// Three days that no other test asks for, in the middle of the data.
const zone = zoneOf('manager');
const [{ middle }] = sql(`SELECT DATE(MAX(gmtdatetime) - INTERVAL 45 DAY) AS middle FROM CallLog WHERE customerid = 1`);
const kPeriod = { startDate: shift(middle, -1), endDate: shift(middle, 1) };
const [{ inPeriod }] = sql(`SET time_zone = '${zone}'; SELECT COUNT(*) AS inPeriod FROM CallLog WHERE customerid = 1
    AND gmtdatetime BETWEEN '${kPeriod.startDate}' AND '${kPeriod.endDate} 23:59:59'`);
const ofCustomer = Object.fromEntries(
    sql(`SELECT LOWER(TABLE_NAME) AS name FROM information_schema.COLUMNS
        WHERE TABLE_SCHEMA = DATABASE() AND COLUMN_NAME = 'customerid'`).map(({ name }) => [
        name,
        Number(sql(`SELECT COUNT(*) AS rows_ FROM ${name} WHERE customerid = 1`)[0].rows_),
    ]),
);

let wasLogging = '';
before(() => {
    wasLogging = admin('SELECT @@general_log, @@log_output').trim();
    admin(`SET GLOBAL log_output = 'TABLE'; SET GLOBAL general_log = ON`);
});
after(() => {
    const [on, output] = wasLogging.split('\t');
    admin(`SET GLOBAL general_log = ${on}; SET GLOBAL log_output = '${output}'; TRUNCATE mysql.general_log`);
});

// The statement that fetched the report's rows: the longest that names the period's first day.
async function statementOf(report) {
    admin('TRUNCATE mysql.general_log');
    await get({
        pagename: 'callreport',
        report: report.name,
        submit: 'Generate Report',
        wait: 1,
        confirm: 1,
        ...report.arguments,
        ...kPeriod,
    });
    const hex = admin(`SELECT HEX(argument) FROM mysql.general_log
        WHERE argument LIKE "%DATE('${kPeriod.startDate}')%" AND argument NOT LIKE 'EXPLAIN%'
            AND argument NOT LIKE '%general_log%' ORDER BY LENGTH(argument) DESC LIMIT 1`);
    return Buffer.from(hex.trim(), 'hex').toString();
}

for (const report of catalogue) {
    test(`${report.title} reads nothing but its period and its customer`, async () => {
        const statement = await statementOf(report);
        assert.ok(statement?.includes('SELECT'), 'the statement stands in the log');
        let calls = 0;
        for (const step of sql(`SET time_zone = '${zone}'; ANALYZE ${statement}`)) {
            const name = step.table?.toLowerCase();
            if (!(name in ofCustomer) || step.r_rows === null) continue;
            const what = `${step.select_type} of ${name} by ${step.type} ${step.key}`;
            const most = name === 'calllog' ? Number(inPeriod) : ofCustomer[name];
            assert.ok(Number(step.r_rows) <= most, `${what}: ${step.r_rows} rows; ${most} are the report's`);
            if (name !== 'calllog') continue;
            ++calls;
            assert.equal(step.key, 'PRIMARY', what);
            assert.doesNotMatch(step.select_type, /DEPENDENT/, what);
        }
        assert.equal(calls > 0, /\bCallLog\b/i.test(statement), 'a report of calls reads the call log');
    });
}
