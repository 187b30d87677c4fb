// Every report of the catalogue shows what an independent count of the call log gives, to the last
// second and penny, in the reader's time zone.

import assert from 'node:assert/strict';
import test from 'node:test';
import { sql } from '../http/portal.mjs';
import { catalogue, figures, onOneDay, periods, runReport, zoneOf } from './report.mjs';

const kNothingFound = ['No calls were found for these criteria.'];

function assertShows(page, { rows, totals }, what) {
    assert.deepEqual(page.warnings, [], what);
    assert.deepEqual(page.notices, rows.length > 0 ? [] : kNothingFound, what);
    assert.deepEqual(page.rows, rows, what);
    assert.deepEqual(page.totals, totals, what);
    assert.equal(page.count, { 0: undefined, 1: '1 row' }[rows.length] ?? `${rows.length.toLocaleString('en')} rows`, what);
}

// The day with the most calls.
function busyDay(zone) {
    return sql(`SET time_zone = '${zone}'; SELECT DATE(gmtdatetime) AS day FROM CallLog WHERE customerid = 1
        GROUP BY day ORDER BY COUNT(*) DESC, day LIMIT 1`)[0].day;
}

for (const report of catalogue) {
    test(`${report.title}: every row and total of last month, 7 days, one day and a time window`, async () => {
        const zone = zoneOf('manager');
        const oneDay = busyDay(zone);
        const officeHours = `TIME(gmtdatetime) >= '09:00:00' AND TIME(gmtdatetime) < '17:01:00'`;
        await onOneDay(zone, async (day) => {
            const { lastmonth, '7days': week } = periods(day, 5);
            const cases = [
                {
                    criteria: { reportPeriod: 'lastmonth' },
                    span: lastmonth,
                    dates: `From: ${lastmonth[0]}, To: ${lastmonth[1]} (Last Month)`,
                },
                {
                    criteria: { reportPeriod: '7days' },
                    span: week,
                    dates: `From: ${week[0]}, To: ${week[1]} (Last 7 Days)`,
                },
                { criteria: { startDate: oneDay }, span: [oneDay, oneDay], dates: `On: ${oneDay}` },
                {
                    criteria: {
                        startDate: lastmonth[0],
                        endDate: lastmonth[1],
                        begintime: '0900',
                        endtime: '1700',
                    },
                    span: lastmonth,
                    legs: officeHours,
                    dates: `From: ${lastmonth[0]}, To: ${lastmonth[1]}`,
                    hours: " between '09:00:00' AND '17:00:59' ",
                },
            ];
            for (const {
                criteria,
                span: [first, last],
                legs,
                dates,
                hours,
            } of cases) {
                const what = JSON.stringify(criteria);
                const page = await runReport(report.name, criteria);
                const expected = figures(report, { first, last, zone, legs });
                assertShows(page, expected, what);
                assert.equal(page.lines[0], report.title);
                assert.ok(page.lines.includes(`Dates: ${dates}`), `${what}: ${page.lines}`);
                assert.ok(
                    page.lines.includes(`Time Filter: ${hours ?? " between '00:00:00' AND '23:59:59' "}`),
                    what,
                );
                if (criteria.reportPeriod !== '7days') {
                    assert.ok(expected.rows.length > 0, `${what}: there is something to compare`);
                    assert.deepEqual(
                        page.headings,
                        report.columns.map(({ heading }) => heading),
                    );
                }
            }
        });
    });
}

test('a reader elsewhere gets the days and hours of their own time zone', async () => {
    const zone = zoneOf('zoned');
    assert.equal(zone, 'America/New_York');
    const report = catalogue.find(({ name }) => name === 'callsbyday');
    await onOneDay(zone, async (day) => {
        const [first, last] = periods(day, 5).lastmonth;
        const page = await runReport(report.name, { reportPeriod: 'lastmonth' }, { user: 'zoned' });
        assertShows(page, figures(report, { first, last, zone }), 'last month');
        assert.match(
            page.html,
            /<footer .*America\/New_York.*<\/footer>/,
            'the page names the zone that made its days',
        );
        const morning = await runReport(
            report.name,
            { startDate: first, endDate: last, begintime: '0000', endtime: '0759' },
            { user: 'zoned' },
        );
        assertShows(
            morning,
            figures(report, { first, last, zone, legs: `TIME(gmtdatetime) < '08:00:00'` }),
            'mornings',
        );
    });
});

test("another customer's manager gets that customer's figures", async () => {
    const zone = zoneOf('manager2');
    await onOneDay(zone, async (day) => {
        const [first, last] = periods(day, 7)['90days'];
        for (const report of catalogue) {
            const page = await runReport(
                report.name,
                { reportPeriod: '90days' },
                { user: 'manager2', host: 'two.localhost' },
            );
            assertShows(page, figures(report, { first, last, zone, customer: 2 }), report.name);
            assert.ok(page.rows.length > 0, report.name);
        }
    });
});
