// Who may do what: rights, report categories, and the walls between customers.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { catalogue, headingOf, mainOf, runReport, shown, textOf } from '../figures/report.mjs';
import { env, get, sql } from './portal.mjs';

const kNoRights = 'Sorry you do not have rights for this';
const kNotConfigurer = 'Sorry you do not have Configure Call Centre assigned security';
const kUnknownUser = 'Your user name is not known to this portal.';

// The text of a page's alert.
const alertOf = (html) => textOf(html.match(/role="alert">(.*?)<\/(?:p|div)>/)?.[1] ?? '');
const menuOf = (html) =>
    [
        ...(html.match(/<nav class="mainMenu".*?<\/nav>/s)?.[0] ?? '').matchAll(/href="([^"]*)"[^>]*>(.*?)<\/a>/g),
    ].map(([, href, caption]) => ({ href: textOf(href), caption: textOf(caption) }));

// A report of the category Cost, which the demo's catalogue need not have.
const kCostReport = 'test.rights.cost';
const removeCostReport = () => sql(`DELETE FROM CallReport WHERE pagename = '${kCostReport}'`);
before(() => {
    removeCostReport();
    sql(`INSERT INTO CallReport (pagename, name, category, SQLQuery, reportFile)
        SELECT '${kCostReport}', 'Cost of the Day', 2, SQLQuery, reportFile FROM CallReport
        WHERE pagename = 'callsbyday'`);
});
after(removeCostReport);

test('a user without call reports is told so on every way to them', async () => {
    for (const query of [
        '',
        'pagename=homepage',
        'pagename=callreport',
        'pagename=callreport&report=callsbyuser',
        'pagename=reporter.anything',
        'pagename=callreport&report=callsbyuser&submit=Generate+Report&reportPeriod=90days',
    ]) {
        const { text } = await get(query, { user: 'noreports' });
        assert.equal(alertOf(text), kNoRights, query);
        assert.equal(headingOf(text), 'No access', query);
        assert.deepEqual(shown(text).rows, [], query);
        assert.deepEqual(
            menuOf(text).map(({ caption }) => caption),
            ['Password', 'Sign out'],
            query,
        );
    }
});

test('a user with a report mask sees and runs the categories of the mask only', async () => {
    const listed = (html) => [...mainOf(html).matchAll(/&amp;report=([\w.]+)"/g)].map(([, name]) => name);
    const calls = sql('SELECT pagename FROM CallReport WHERE category = 1').map(({ pagename }) => pagename);
    const byAll = listed((await get()).text);
    const byMasked = listed((await get({}, { user: 'masked' })).text);
    assert.ok(byAll.includes(kCostReport));
    assert.deepEqual(
        byMasked,
        byAll.filter((name) => calls.includes(name)),
    );

    const form = await get({ pagename: 'callreport', report: kCostReport }, { user: 'masked' });
    assert.equal(alertOf(form.text), 'No permission to run this category of reports.');
    const other = await get({ pagename: 'callreport', report: kCostReport, submit: 'Go' }, { user: 'masked' });
    assert.equal(alertOf(other.text), 'No permission to run this category of reports.');
    const run = await runReport(kCostReport, { reportPeriod: '90days' }, { user: 'masked' });
    assert.equal(alertOf(run.html), kNoRights);
    assert.deepEqual(run.rows, []);

    assert.ok((await runReport('callsbyday', { reportPeriod: '90days' }, { user: 'masked' })).rows.length > 0);
    assert.ok((await runReport(kCostReport, { reportPeriod: '90days' })).rows.length > 0);
});

test('a page that does not exist is answered by what the user may do', async () => {
    for (const [user, heading, text] of [
        ['manager', 'Unknown Page', 'Unknown Page'],
        ['supervisor', 'Unknown Page', 'Unknown Page'],
        ['limited', 'No access', kNoRights],
        ['restricted', 'No access', kNotConfigurer],
        ['noreports', 'No access', kNotConfigurer],
    ]) {
        for (const pagename of ['nosuchpage', 'callreport2', 'CALLREPORT', 'callreport/../x', "x' OR '1'='1"]) {
            const answer = await get({ pagename }, { user });
            assert.equal(answer.status, 200);
            assert.equal(headingOf(answer.text), heading, `${user} ${pagename}`);
            assert.equal(alertOf(answer.text), text, `${user} ${pagename}`);
        }
    }
});

test('every entry of every menu leads to a page that is there and that the user may see', async () => {
    const users = sql("SELECT username, customerid FROM CustomerContact WHERE passwordHash <> ''");
    const hosts = { 1: undefined, 2: 'two.localhost' };
    let entries = 0;
    for (const { username: user, customerid } of users) {
        const host = customerid in hosts ? hosts[customerid] : 'three.localhost';
        const { text } = await get({}, { user, host });
        assert.ok(!text.includes(kUnknownUser), user);
        for (const { href, caption } of menuOf(text)) {
            const page = await get(href, { user, host });
            assert.equal(page.status, 200, `${user}: ${caption}`);
            assert.ok(
                !['Unknown Page', 'No access', 'System error'].includes(headingOf(page.text)),
                `${user}: ${caption}`,
            );
            entries++;
        }
    }
    assert.ok(entries > users.length);
});

const namesOf = (customer) =>
    ['LDAPUsers', 'LDAPDepartments'].flatMap((table) =>
        sql(`SELECT cn FROM ${table} WHERE customerid = ${customer}`).map(({ cn }) => cn),
    );

test("a customer's manager sees that customer's people and nobody else's", async () => {
    const own = new Set(namesOf(2));
    const foreign = namesOf(1).filter((name) => !own.has(name));
    assert.ok(own.size > 20 && foreign.length > 100);
    const there = { user: 'manager2', host: 'two.localhost' };
    for (const { name, arguments: needed } of catalogue) {
        const page = await runReport(name, { ...needed, reportPeriod: '90days' }, there);
        for (const theirs of foreign) assert.ok(!textOf(mainOf(page.html)).includes(theirs), `${name}: ${theirs}`);
    }
    for (const name of ['callsbyuser', 'callsbydept', 'callsbyday', 'unanswered']) {
        const page = await runReport(name, { reportPeriod: '90days' }, there);
        assert.ok(page.rows.length > 0, name);
        if (name !== 'callsbyday') for (const [who] of page.rows) assert.ok(own.has(who), `${name}: ${who}`);
        for (const argument of [
            { userfilter: foreign[0] },
            { department: 'Marketing' },
            { searchtype: 'user', suggest1: foreign[0] },
        ])
            assert.deepEqual(
                (await runReport(name, { reportPeriod: '90days', ...argument }, there)).rows,
                [],
                name,
            );
    }
    assert.match((await get({}, there)).text, /class="customer">Calder Logistics</);
});

test('a parent customer sees the companies below it, and these see only themselves', async () => {
    const whoIsSeen = async (user) =>
        (await runReport('callsbydept', { reportPeriod: '90days' }, { user, host: 'three.localhost' })).rows.map(
            ([department]) => department,
        );
    assert.deepEqual(await whoIsSeen('manager3'), [
        'Care Line',
        'Care Office',
        'Group Finance',
        'Group Helpline',
        'Lettings',
        'Repairs',
    ]);
    assert.deepEqual(await whoIsSeen('manager4'), ['Care Line', 'Care Office']);
    assert.deepEqual(await whoIsSeen('manager5'), ['Lettings', 'Repairs']);
});

test("on another customer's host a user is nobody and finds no calls", async () => {
    for (const [user, host] of [
        ['manager2', undefined],
        ['manager', 'two.localhost'],
        ['admin', 'three.localhost'],
        ['manager4', 'two.localhost'],
    ]) {
        const home = await get({}, { user, host });
        assert.ok(textOf(home.text).includes(kUnknownUser), `${user} on ${host}`);
        assert.ok(!home.text.includes('class="customer"'));
        for (const { name } of catalogue) {
            const page = await runReport(name, { reportPeriod: 'all' }, { user, host });
            assert.deepEqual(page.rows, [], `${user} on ${host}: ${name}`);
            assert.equal(page.totals, undefined);
        }
    }
    // A name that belongs to no customer is answered as the first customer's host.
    const page = await get({}, { user: 'manager', host: `nowhere.localhost:${new URL(env.URL).port}` });
    assert.match(page.text, /class="customer">Northmoor Instruments</);
});
