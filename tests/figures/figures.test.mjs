// Every report of the catalogue shows what an independent count of the raw rows gives, to the last
// second and penny: each row, each series and every total, for readers of several customers, rights and
// time zones. The periods are days of the data, so that nothing depends on when the test runs.

import assert from 'node:assert/strict';
import test, { after, before, describe } from 'node:test';
import { sql } from '../http/portal.mjs';
import { catalogue, figures, permittedTo, runReport, shift, zoneOf } from './report.mjs';

const kNothingFound = ['No calls were found for these criteria.'];
const grouped = (number) => String(number).replace(/\B(?=(\d{3})+$)/g, ',');

function assertShows(page, { rows, series, totals }, what) {
    assert.deepEqual(page.warnings, [], what);
    assert.deepEqual(page.notices, rows.length > 0 ? [] : kNothingFound, what);
    assert.deepEqual(page.rows, rows, what);
    assert.deepEqual(page.series, series, what);
    assert.deepEqual(page.totals, totals, what);
    const count = rows.length === 1 ? '1 row' : `${grouped(rows.length)} rows`;
    assert.equal(page.count, rows.length === 0 ? undefined : count, what);
}

// The last whole month of the data, and the day with the most calls.
const [{ monthStart, monthEnd }] = sql(`SELECT DATE_FORMAT(MAX(gmtdatetime) - INTERVAL 1 MONTH, '%Y-%m-01') AS monthStart,
    LAST_DAY(MAX(gmtdatetime) - INTERVAL 1 MONTH) AS monthEnd FROM CallLog WHERE customerid = 1`);
const [{ busyDay }] = sql(`SET time_zone = '+00:00'; SELECT DATE(gmtdatetime) AS busyDay FROM CallLog
    WHERE customerid = 1 GROUP BY busyDay ORDER BY COUNT(*) DESC, busyDay LIMIT 1`);

// Days of 23 and of 25 hours in London, each with the day before. Their calls are those of the busy day
// and its neighbour, moved so that the busy hours lie around midnight and the change of the clock.
const kClockChanges = ['2025-03-30', '2025-10-26'];
const kMoved = `confId LIKE 'moved-%'`;

function moveCalls(day) {
    const columns = sql('SHOW COLUMNS FROM CallLog').map(({ Field }) => Field);
    const values = {
        id: 'NULL',
        gmtdatetime: `gmtdatetime + INTERVAL ${(Date.parse(day) - Date.parse(busyDay)) / 86400000 * 24 - 10} HOUR`,
        confId: `CONCAT('moved-', MONTH('${day}'), confId)`,
        transferConfId: `IF(transferConfId = '', '', CONCAT('moved-', MONTH('${day}'), transferConfId))`,
    };
    sql(`SET time_zone = '+00:00'; INSERT INTO CallLog (${columns.join(', ')})
        SELECT ${columns.map((name) => values[name] ?? name).join(', ')} FROM CallLog
        WHERE customerid = 1 AND gmtdatetime BETWEEN '${shift(busyDay, -1)}' AND '${shift(busyDay, 1)} 23:59:59'
            AND NOT (${kMoved})
        ORDER BY id`);
}

before(() => kClockChanges.forEach(moveCalls));
after(() => sql(`DELETE FROM CallLog WHERE ${kMoved}`));

// A supervisor's permissions are about queues and agents, and hide nobody in other reports.
const isOfQueuesOrAgents = ({ offers }) => (offers.queue || offers.agent) && !offers.user && !offers.department;

// Who reads what, of which days.
const kMonth = { span: [monthStart, monthEnd] };
const kReaders = [
    { what: 'a month', user: 'manager', ...kMonth },
    {
        what: 'office hours of the month',
        user: 'manager',
        ...kMonth,
        criteria: { begintime: '0900', endtime: '1700' },
        hours: ['09:00:00', '17:00:59'],
        legs: `TIME(gmtdatetime) >= '09:00:00' AND TIME(gmtdatetime) < '17:01:00'`,
    },
    { what: 'a busy day in New York', user: 'zoned', span: [busyDay, busyDay] },
    ...kClockChanges.map((day) => ({
        what: `the change of the clock on ${day}`,
        user: 'london',
        span: [shift(day, -1), day],
    })),
    { what: 'two departments and their people', user: 'restricted', restricted: true, ...kMonth },
    { what: 'two queues and their agents', user: 'supervisor', restricted: true, reads: isOfQueuesOrAgents, ...kMonth },
    { what: "another customer's month", user: 'manager2', host: 'two.localhost', customer: 2, ...kMonth },
    { what: 'a year before the first call', user: 'manager', span: ['2012-01-01', '2012-12-31'] },
];

async function assertReads(report, { what, user, host, customer, span, criteria, legs, hours, restricted }) {
    const [first, last] = span;
    const entities = restricted ? permittedTo(user, report.offers) : undefined;
    const [page, expected] = await Promise.all([
        runReport(report.name, { ...report.arguments, startDate: first, endDate: last, ...criteria }, { user, host }),
        figures(report, { first, last, zone: zoneOf(user), customer, legs, hours, entities }),
    ]);
    assertShows(page, expected, what);
    assert.equal(page.lines[0], report.title);
    assert.ok(page.lines.includes(`Dates: From: ${first}, To: ${last}`), `${what}: ${page.lines}`);
    return expected.rows.length;
}

describe('every row, series and total', { concurrency: 3 }, () => {
    for (const report of catalogue) {
        test(report.title, async () => {
            const rows = [];
            for (const reader of kReaders)
                if (reader.reads?.(report) ?? true) rows.push(await assertReads(report, reader));
            assert.ok(rows[0] > 0, 'there is something to compare');
        });
    }
});
