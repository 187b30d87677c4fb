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
    permittedTo,
    runReport,
    shown,
    textOf,
    zoneOf,
} from '../figures/report.mjs';
import { get, sql } from './portal.mjs';

const kUser = { user: 'restricted' };
const kNothing = ['No calls were found for these criteria.'];
const kBoth = { user: true, department: true };
const zone = zoneOf('restricted');

// The directory of the user's company, told apart by what the permissions admit.
const permitted = permittedTo('restricted', kBoth);
const others = ['user', 'department'].flatMap((kind) =>
    sql(`SELECT '${kind}' AS kind, cn AS name, telephoneNumber AS number FROM LDAP${kind}s
        WHERE customerid = 1 ORDER BY cn`).filter(({ name }) => !permitted.some((entry) => entry.name === name)),
);

// One report that may be for a user, one for a department and one for either.
const examples = ['callsbyuser', 'callsbydept', 'callsbyday'].map((name) =>
    catalogue.find((report) => report.name === name),
);

const permittedFigures = (report, [first, last], entities) =>
    figures(report, { first, last, zone, entities });

function assertTellsNothing(html, what, asked = '') {
    const text = textOf(mainOf(html));
    for (const { name } of others) if (name !== asked) assert.ok(!text.includes(name), `${what} shows ${name}`);
    const numbers = new Set(others.map(({ number }) => number));
    for (const cell of shown(html).rows.flat()) assert.ok(!numbers.has(cell), `${what} shows the number ${cell}`);
}

function assertShows(page, expected, what) {
    assert.deepEqual(page.rows, expected.rows, what);
    assert.deepEqual(page.totals, expected.totals, what);
    assert.deepEqual(page.notices, expected.rows.length > 0 ? [] : kNothing, what);
    assert.deepEqual(page.warnings, [], what);
    assertTellsNothing(page.html, what);
}

test('the demo has somebody to hide, and no report names them', async () => {
    assert.deepEqual(
        permitted.filter(({ kind }) => kind === 'department').map(({ name }) => name),
        ['R&D <Labs>', 'Support'],
    );
    assert.ok(permitted.length > 10 && others.length > 100);
    // Who answers in a shared inbox is for permissions of another type.
    for (const report of catalogue.filter(({ offers }) => !offers.inbox)) {
        const page = await runReport(report.name, { ...report.arguments, reportPeriod: '90days' }, kUser);
        assert.deepEqual(page.warnings, [], report.name);
        assertTellsNothing(page.html, report.name);
    }
});

test('messages are those of the permitted inbox, and nobody is named but the permitted teammates', async () => {
    const mine = permittedTo('restricted', { inbox: true });
    assert.deepEqual(mine.map(({ kind }) => kind), ['inbox', 'teammate', 'teammate']);
    const hidden = sql(`SELECT id, name FROM FrontInbox WHERE customerid = 1 UNION ALL
        SELECT id, CONCAT(firstName, ' ', lastName) FROM FrontTeammate WHERE customerid = 1`).filter(
        ({ id }) => !mine.some(({ number }) => number === id),
    );
    assert.ok(hidden.length > 5);
    for (const report of catalogue.filter(({ offers }) => offers.inbox)) {
        const run = { ...report.arguments, reportPeriod: '90days' };
        const page = await runReport(report.name, run, kUser);
        assert.deepEqual(page.warnings, [], report.name);
        assert.ok(page.rows.length > 0, report.name);
        const text = textOf(mainOf(page.html));
        for (const { name } of hidden) assert.ok(!text.includes(name), `${report.name} shows ${name}`);
    }
    const activity = await runReport('teammateactivity', { reportPeriod: '90days' }, kUser);
    const teammates = mine.filter(({ kind }) => kind === 'teammate').map(({ name }) => name);
    assert.deepEqual(activity.rows.map(([name]) => name), teammates);
});

for (const report of examples) {
    test(`${report.title}: a chosen entity shows its own part, and somebody else's nothing`, async () => {
        await onOneDay(zone, async (day) => {
            const span = periods(day, 5)['90days'];
            const chosen = { reportPeriod: '90days' };
            for (const [kind, searchtype, argument] of [
                ['user', 'user', 'userfilter'],
                ['department', 'dept', 'department'],
            ]) {
                const ofKind = (entries) => entries.filter((entry) => entry.kind === kind);
                const ways = (name) => [{ searchtype, suggest1: name }, { [argument]: name }];
                if (report.offers[kind]) {
                    const mine = ofKind(permitted)[0];
                    const expected = await permittedFigures(report, span, [mine]);
                    for (const entity of ways(mine.name)) {
                        const page = await runReport(report.name, { ...chosen, ...entity }, kUser);
                        assertShows(page, expected, JSON.stringify(entity));
                        assert.ok(page.lines.includes(`For: ${mine.name}`), `${page.lines}`);
                    }
                }
                const theirs = ofKind(others)[0].name;
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
        { var: others[0].name, field: 'user' },
        { wbDrill: '1' },
        { sessionId },
    ];
    // A name of nobody whom the permissions admit, and a choice that the reports do not offer.
    const narrower = [
        { searchtype: 'freetext', suggest1: others[0].name },
        { A_searchtype: 'user', A_suggest1: others[0].name },
    ];
    await onOneDay(zone, async (day) => {
        for (const report of examples) {
            for (const more of narrower) {
                const page = await runReport(report.name, { reportPeriod: '90days', ...more }, kUser);
                assert.deepEqual(page.rows, [], `${report.name} ${JSON.stringify(more)}`);
            }
            const visible = permittedTo('restricted', report.offers);
            const expected = await permittedFigures(report, periods(day, 5)['90days'], visible);
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

test('the list behind a figure shows no more, whatever report the request names', async () => {
    const list = { pagename: 'calllogdrill', parent: 'callsbyhour', by: 'hour', value: '10', reportPeriod: '90days' };
    const rowsOf = async (more, user) => shown((await get({ ...list, rows: 'all', wait: '1', ...more }, { user })).text).rows;
    const mine = await rowsOf({}, 'restricted');
    assert.ok(mine.length > 0 && mine.length < (await rowsOf({}, 'manager')).length);
    for (const report of ['trunkcapdrill', 'trunkcapacity'])
        for (const parent of ['callsbyhour', report]) {
            const rows = await rowsOf({ parent, report, trunk: 'x' }, 'restricted');
            assert.ok(rows.length <= mine.length, `${parent}, ${report}: ${rows.length} rows`);
        }
});

test('who may see two departments and every user sees no third one under a false name', async () => {
    const [{ id }] = sql("SELECT id FROM CustomerContact WHERE username = 'zoned'");
    const department = others.find(({ kind, name }) => kind === 'department' && name === 'Sales');
    const user = permitted.find(({ kind }) => kind === 'user');
    sql(`INSERT INTO CallLogPermissions (contactid, customerid, type, entityNumber, logging) SELECT ${id}, customerid,
        type, entityNumber, logging FROM CallLogPermissions WHERE type = 'Department' AND logging = 1 AND contactid =
        (SELECT id FROM CustomerContact WHERE username = 'restricted')`);
    try {
        for (const report of ['callsbydept', 'callsbyuser', 'callsbyday', 'queuesummary']) {
            const run = (entity) => runReport(report, { reportPeriod: '90days', ...entity }, { user: 'zoned' });
            const page = await run({ userfilter: department.name });
            assert.deepEqual([page.rows, page.notices], [[], kNothing], report);
            assert.ok(page.lines.includes('For: Restricted user selected!'), report);
            // Those of the kind stay open.
            assert.ok((await run({ userfilter: user.name })).lines.includes(`For: ${user.name}`), report);
        }
    } finally {
        sql(`DELETE FROM CallLogPermissions WHERE contactid = ${id}`);
    }
});
