// From a figure to the calls behind it: as many as the figure says, for everybody who may see it, and
// nothing for a link that somebody made up.

import assert from 'node:assert/strict';
import { appendFileSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { catalogue, mainOf, runReport, shown, textOf } from '../figures/report.mjs';
import { get, makeRoot, runCgi, sql } from './portal.mjs';

const kPeriod = { reportPeriod: '60days', wait: '1' };

// The linked cells of a result's rows: { href, heading, figure }.
function linkedCells(html) {
    const headings = shown(html).headings;
    const body = mainOf(html).match(/<tbody>.*<\/tbody>/s)?.[0] ?? '';
    return [...body.matchAll(/<tr[^>]*>(.*?)<\/tr>/gs)].map(([, row]) =>
        [...row.matchAll(/<td[^>]*>(.*?)<\/td>/gs)]
            .map(([, cell], i) => ({
                heading: headings[i],
                figure: textOf(cell),
                href: cell.match(/<a href="([^"]*pagename=\w*drill[^"]*)"/)?.[1],
            }))
            .filter(({ href }) => href !== undefined)
            .map((cell) => ({ ...cell, href: textOf(cell.href) })),
    );
}

const listOf = async (href, user) => (await get(`${href}&rows=all&wait=1`, { user })).text;

// A few rows of each report: the first, one in the middle and the last.
for (const user of ['manager', 'restricted', 'supervisor', 'zoned']) {
    test(`${user}: the list behind a figure has as many rows as it says`, async () => {
        let followed = 0;
        const wrong = [];
        const follow = async (report, { figure, href }) => {
            ++followed;
            const list = await listOf(href, user);
            const { rows, warnings } = shown(list);
            const isList = mainOf(list).includes(`<h1>${report.title} - Call List</h1>`);
            const asked = new URLSearchParams(href).get('field');
            const { style, heading } = report.columns.find(({ field }) => field === asked);
            const counts = style !== 'number' || rows.length === Number(figure.replaceAll(',', ''));
            if (!isList || !counts || warnings.length > 0)
                wrong.push(`${report.name}, ${heading} ${figure}: ${rows.length} rows ${warnings} ${href}`);
        };
        for (const report of catalogue) {
            const rows = linkedCells((await runReport(report.name, { ...kPeriod, ...report.arguments }, { user })).html);
            const chosen = [...new Set([0, rows.length >> 1, rows.length - 1])].filter((i) => i in rows);
            await Promise.all(chosen.flatMap((i) => rows[i].map((cell) => follow(report, cell))));
        }
        assert.deepEqual(wrong, []);
        assert.ok(followed > 30, `${followed} figures`);
    });
}

test('a list keeps the criteria, names its column, and every leg leads to its whole call', async () => {
    const report = await runReport('callsbydept', { ...kPeriod, begintime: '0900', endtime: '1700' });
    const { href } = linkedCells(report.html)
        .flat()
        .find(({ heading, figure }) => heading === 'Answered' && Number(figure) > 0);
    const list = await listOf(href);
    const kept = (lines) => lines.filter((line) => /^(Dates|Time Filter|For):/.test(line));
    assert.deepEqual(kept(shown(list).lines), kept(report.lines));
    assert.ok(shown(list).lines.includes('Filtered on: Inbound / Answered'), `${shown(list).lines}`);

    const [{ confId, next }] = sql(`SELECT a.confId, a.transferConfId AS next FROM CallLog AS a
        INNER JOIN CallLog AS b ON b.confId = a.transferConfId WHERE a.customerid = 1 AND a.origCostCentre <> ''
            AND a.gmtdatetime > NOW() - INTERVAL 50 DAY AND b.transferConfId = '' LIMIT 1`);
    for (const value of [confId, next]) {
        const legs = await get({ pagename: 'calllogdrill', parent: 'callsbyday', field: 'calls', by: 'call', value,
            outcome: 'legs', reportPeriod: 'today' });
        assert.ok(shown(legs.text).rows.length >= 2, value);
    }
});

test('a made-up link gives a message or an empty list, and nothing of anybody else', async () => {
    const good = { pagename: 'calllogdrill', parent: 'callsbydept', field: 'inbound', by: 'department', value: 'Sales',
        outcome: 'inbound', ...kPeriod };
    const list = async (change, user = 'manager') => (await get({ ...good, ...change }, { user })).text;
    for (const [what, change] of [
        ['unknown parent', { parent: 'nosuch' }],
        ['itself as parent', { parent: 'calllogdrill' }],
        ['no parent', { parent: '' }],
        ['unknown dimension', { by: "department' OR '1'='1" }],
        ['a kind of name that the report does not ask for', { by: 'agent', value: 'Adam Ashworth', outcome: 'legs' }],
        ['unknown outcome', { outcome: 'TRUE' }],
        ['outcome of another dimension', { outcome: 'missed' }],
        ['no day', { by: 'day', value: '2026-02-30' }],
        ['no month', { by: 'month', value: "2026-02-01' OR 1" }],
        ['no hour', { by: 'hour', value: '24' }],
        ['no weekday', { by: 'weekday', value: '0' }],
        ['second dimension', { by2: 'x', value2: '1' }],
        ['too long', { value: 'x'.repeat(256) }],
    ]) {
        const page = shown(await list(change));
        assert.equal(page.warnings.length, 1, what);
        assert.deepEqual(page.rows, [], what);
    }
    for (const value of [`x' OR '1'='1`, '[date]', '[entity] OR TRUE', '%', '\\', "Sales'; --"]) {
        const page = shown(await list({ value }));
        assert.deepEqual([page.rows, page.warnings], [[], []], value);
    }
    const theirs = shown(await list({}, 'restricted'));
    assert.deepEqual([theirs.rows, theirs.warnings], [[], []], "a department that the user may not see");
    assert.ok(shown(await list({ value: 'Support' }, 'restricted')).rows.length > 0);
    // Everybody's permitted names hold the voicemail service.
    for (const [by, outcome] of [['agent', 'legs'], ['queue', 'legs'], ['user', 'legs']])
        assert.deepEqual(shown(await list({ parent: 'callsbyday', by, value: '!Voicemail', outcome }, 'restricted')).rows, []);
    assert.match(await list({}, 'noreports'), /do not have rights/);
    sql(`UPDATE CallReport SET category = 2 WHERE pagename = 'callsbydept'`);
    try {
        assert.match(await list({}, 'masked'), /No permission to run this category of reports\./);
    } finally {
        sql(`UPDATE CallReport SET category = 1 WHERE pagename = 'callsbydept'`);
    }
    assert.match((await get({ pagename: 'callreport', report: 'calllogdrill', submit: 'Generate Report' })).text,
        /calls behind a figure/);
    const media = { ...good, pagename: 'mediadrill' };
    assert.match((await get({ ...media, parent: 'nosuch' })).text, /belongs to does not exist/);
    assert.match((await get({ ...media, field: '' })).text, /was not named/);
});

test('a run that would read more than the limit asks first, exports too, and runs when confirmed', async () => {
    const root = makeRoot();
    try {
        appendFileSync(join(root, 'Norvane/config/Lumora.cfg'), '\nreportWarnRows=100\n');
        const ask = (more) =>
            runCgi({ LUMORA_ROOT: root, REMOTE_USER: 'manager', REQUEST_METHOD: 'GET',
                QUERY_STRING: `pagename=callreport&report=callsbydept&submit=Generate%20Report&begintime=0800&${more}` });
        for (const form of ['', '&csv=true', '&print=true', '&xlsx=true']) {
            const { out } = await ask(`reportPeriod=60days${form}`);
            assert.match(out, /about \d[\d,]* rows, about 1 second/, form);
            const again = textOf(out.match(/<a href="([^"]*)">Run anyway/)[1]);
            assert.ok(again.endsWith(`${form}&confirm=1`) && again.includes('begintime=0800'), again);
        }
        assert.match((await ask('reportPeriod=60days&confirm=1&wait=1')).out, /class="reportTable"/);
        assert.doesNotMatch((await ask('startDate=2020-01-01&endDate=2020-01-02&wait=1')).out, /Run anyway/);
    } finally {
        rmSync(root, { recursive: true });
    }
});
