// A user whose call-log permissions name two departments and their people runs the whole catalogue and
// learns nothing of anybody else: no name, no number, and no figure that others have a part in.

import assert from 'node:assert/strict';
import test from 'node:test';
import {
    catalogue,
    figures,
    mainOf,
    onOneDay,
    periods,
    runReport,
    shown,
    textOf,
    zoneOf,
} from '../figures/report.mjs';
import { get, sql } from './portal.mjs';

const kUser = { user: 'restricted' };
const kNothing = ['No calls were found for these criteria.'];
const zone = zoneOf('restricted');

// The directory of the user's company, told apart by what the permissions admit.
const directory = ['User', 'Department'].flatMap((type) =>
    sql(`
    SELECT '${type}' AS type, d.cn AS name, d.telephoneNumber AS number, p.entityNumber IS NOT NULL AS permitted
    FROM LDAP${type}s AS d LEFT JOIN CallLogPermissions AS p ON p.entityNumber = d.telephoneNumber
        AND p.customerid = d.customerid AND p.type = '${type}' AND p.logging = 1
        AND p.contactid = (SELECT id FROM CustomerContact WHERE username = 'restricted')
    WHERE d.customerid = 1 ORDER BY d.cn`),
);
const permitted = directory.filter((entry) => entry.permitted === '1');
const others = directory.filter((entry) => entry.permitted === '0');
// Who calls from outside is nobody's business either.
const outside = sql(
    `SELECT DISTINCT A_Name AS name FROM CallLog WHERE customerid = 1 AND A_Trunk <> '' AND A_Name <> ''`,
);

const quoted = (texts) =>
    texts.map((text) => `'${text.replaceAll('\\', '\\\\').replaceAll("'", "\\'")}'`).join(',') || "''";

// The legs that one of these entities took part in, found by their numbers.
function legsOf(entities) {
    const numbers = quoted(entities.map(({ number }) => number));
    const departments = quoted(entities.filter(({ type }) => type === 'Department').map(({ name }) => name));
    return `(A_Trunk = '' AND A_Num IN (${numbers}))
        OR (B_Trunk = '' AND (B_Num IN (${numbers}) OR B_Remote IN (${numbers})))
        OR origCostCentre IN (${departments})`;
}

// What a report may show of these entities. Where the rows have names, each row is one entity's own.
function permittedFigures(report, [first, last], entities) {
    const [{ field, style }] = report.columns;
    if (style === 'date') return figures(report, { first, last, zone, legs: legsOf(entities) });
    const names = new Set(entities.map(({ name }) => name));
    return figures(report, { first, last, zone, keep: (row) => names.has(row[field]) });
}

function assertTellsNothing(html, what, asked = '') {
    const text = textOf(mainOf(html));
    for (const { name } of [...others, ...outside])
        if (name !== asked) assert.ok(!text.includes(name), `${what} shows ${name}`);
    const numbers = new Set(others.map(({ number }) => number));
    for (const row of shown(html).rows) assert.ok(!numbers.has(row[1]), `${what} shows the number ${row[1]}`);
}

function assertShows(page, expected, what) {
    assert.deepEqual(page.rows, expected.rows, what);
    assert.deepEqual(page.totals, expected.totals, what);
    assert.deepEqual(page.notices, expected.rows.length > 0 ? [] : kNothing, what);
    assert.deepEqual(page.warnings, [], what);
    assertTellsNothing(page.html, what);
}

test('the demo has somebody to hide', () => {
    assert.deepEqual(
        permitted.filter(({ type }) => type === 'Department').map(({ name }) => name),
        ['R&D <Labs>', 'Support'],
    );
    assert.ok(permitted.length > 10 && others.length > 100 && outside.length > 5);
});

for (const report of catalogue) {
    test(`${report.title}: all periods show the permitted part and no more`, async () => {
        await onOneDay(zone, async (day) => {
            let withRows = 0;
            for (const [reportPeriod, span] of Object.entries(periods(day, 5))) {
                const page = await runReport(report.name, { reportPeriod }, kUser);
                assertShows(page, permittedFigures(report, span, permitted), reportPeriod);
                withRows += page.rows.length > 0;
            }
            assert.ok(withRows > 5, `${withRows} periods had rows`);
        });
    });

    test(`${report.title}: a chosen entity shows its own part, and somebody else's nothing`, async () => {
        await onOneDay(zone, async (day) => {
            const span = periods(day, 5)['90days'];
            const chosen = { reportPeriod: '90days' };
            for (const [type, searchtype, argument] of [
                ['User', 'user', 'userfilter'],
                ['Department', 'dept', 'department'],
            ]) {
                const ofType = (entries) => entries.filter((entry) => entry.type === type);
                const ways = (name) => [{ searchtype, suggest1: name }, { [argument]: name }];
                if (report.offers[type.toLowerCase()]) {
                    const mine = ofType(permitted)[0];
                    const expected = permittedFigures(report, span, [mine]);
                    for (const entity of ways(mine.name)) {
                        const page = await runReport(report.name, { ...chosen, ...entity }, kUser);
                        assertShows(page, expected, JSON.stringify(entity));
                        assert.ok(page.lines.includes(`For: ${mine.name}`), `${page.lines}`);
                    }
                }
                const theirs = ofType(others)[0].name;
                for (const name of [
                    theirs,
                    theirs.toUpperCase(),
                    `${theirs} `,
                    '!Voicemail',
                    '%',
                    "' OR '1'='1",
                    `x' OR A_Name<>'`,
                ]) {
                    for (const entity of ways(name)) {
                        const what = JSON.stringify(entity);
                        const page = await runReport(report.name, { ...chosen, ...entity }, kUser);
                        assert.deepEqual(page.rows, [], what);
                        assert.equal(page.totals, undefined, what);
                        // Refused beside the form where the report does not offer this kind at all.
                        if (page.lines.length > 0) assert.deepEqual(page.notices, kNothing, what);
                        else assert.match(page.html, /This report cannot be run for what was chosen\./, what);
                        assertTellsNothing(page.html, what, name.trim());
                    }
                }
            }
        });
    });
}

test('no other argument, and no session of a manager, widens what is seen', async () => {
    const manager = await runReport('callsbyuser', { reportPeriod: '90days' });
    const sessionId = manager.html.match(/sessionId=(\d+)/)[1];
    const wider = [
        { contactID: '2' },
        { customerId: '2' },
        { allowAllRecords: '1' },
        { allusers: '1' },
        { entity: 'IS NOT NULL' },
        { group: '1' },
        { company: 'x' },
        { A_searchtype: 'user', A_suggest1: others[0].name },
        { var: others[0].name, field: 'user' },
        { wbDrill: '1' },
        { sessionId },
    ];
    await onOneDay(zone, async (day) => {
        for (const report of catalogue) {
            const expected = permittedFigures(report, periods(day, 5)['90days'], permitted);
            for (const more of wider) {
                const page = await runReport(report.name, { reportPeriod: '90days', ...more }, kUser);
                assert.deepEqual(page.rows, expected.rows, `${report.name} ${JSON.stringify(more)}`);
                assert.deepEqual(page.totals, expected.totals, `${report.name} ${JSON.stringify(more)}`);
            }
        }
    });
    assertTellsNothing(
        (await get({ pagename: 'callreport', report: 'callsbyuser', change: '1', sessionId }, kUser)).text,
        'the form',
    );
});
