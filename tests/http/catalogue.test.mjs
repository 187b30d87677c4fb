// The list of reports: categories, My Reports and quick reports, which only their own user changes.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { mainOf, runReport, shown, textOf } from '../figures/report.mjs';
import { get, sql } from './portal.mjs';

const kCatalogue = { pagename: 'callreport' };
const idOf = (user) => sql(`SELECT id FROM CustomerContact WHERE username = '${user}'`)[0].id;
const favourites = (user) =>
    sql(`SELECT attribvalue FROM CustomerContactAttrib WHERE userid = ${idOf(user)} AND attribname = 'myreport'
        ORDER BY attribvalue`).map((row) => row.attribvalue);
const quickReports = (user) =>
    sql(`SELECT id, name, url FROM CallReportQuickReport WHERE contactid = ${idOf(user)} ORDER BY id`);
const listed = (html) => [...html.matchAll(/class="reportListRow".*?[?&;]report=(\w+)/gs)].map(([, name]) => name);
const headings = (html) => [...html.matchAll(/<h5>(.*?)<\/h5>/g)].map(([, text]) => textOf(text));

// A session of the user's own, without which nothing is changed.
async function sessionOf(user) {
    const { text } = await get(kCatalogue, { user });
    return text.match(/sessionId=(\d+)/)[1];
}

// The demo's own lists are put aside under the negative id, and back at the end.
const kUsers = ['manager', 'masked', 'zoned'];
function putBack() {
    for (const id of kUsers.map(idOf)) {
        sql(`DELETE FROM CustomerContactAttrib WHERE userid = ${id} AND attribname = 'myreport'`);
        sql(`DELETE FROM CallReportQuickReport WHERE ContactId = ${id}`);
        sql(`UPDATE CustomerContactAttrib SET userid = ${id} WHERE userid = -${id}`);
        sql(`UPDATE CallReportQuickReport SET ContactId = ${id} WHERE ContactId = -${id}`);
    }
    sql(`DELETE FROM CallReport WHERE pagename LIKE 'test%'`);
}
before(() => {
    for (const id of kUsers.map(idOf)) {
        sql(`UPDATE CustomerContactAttrib SET userid = -${id} WHERE userid = ${id} AND attribname = 'myreport'`);
        sql(`UPDATE CallReportQuickReport SET ContactId = -${id} WHERE ContactId = ${id}`);
    }
    sql(`INSERT INTO CallReport (pagename, name, category, listorder, hidden) VALUES
        ('testcentre', 'Centre <i>', 4, 9999, 0), ('testhidden', 'Hidden', 1, 9999, 1)`);
});
after(putBack);

test('reports stand under their category, and a mask or a category asked for leaves the others out', async () => {
    const all = await get(kCatalogue);
    assert.ok(headings(all.text).includes('Call Reports') && headings(all.text).includes('Call Centre Performance Reports'));
    assert.ok(listed(all.text).includes('callsbyuser') && listed(all.text).includes('testcentre'));
    assert.ok(!all.text.includes('testhidden') && !all.text.includes('<i>'));
    const masked = await get(kCatalogue, { user: 'masked' });
    assert.deepEqual(headings(masked.text), ['Call Reports']);
    const centre = await get({ ...kCatalogue, category: '4' });
    assert.deepEqual(headings(centre.text), ['Call Centre Performance Reports']);
    assert.match(centre.text, /<h1>Call Centre Performance Reports<\/h1>/);
    const hostile = await get({ ...kCatalogue, category: "4' OR '1'='1" });
    assert.deepEqual(listed(hostile.text), listed(all.text));
});

test('a favourite is added once, listed once, and removed with all its rows', async () => {
    const sessionId = await sessionOf('manager');
    const add = { ...kCatalogue, sessionId, addmyreport: 'callsbyday' };
    await get(add);
    await get(add);
    assert.deepEqual(favourites('manager'), ['callsbyday']);
    sql(`INSERT INTO CustomerContactAttrib VALUES (${idOf('manager')}, 'myreport', 'callsbyday')`);
    const mine = await get({ ...kCatalogue, sessionId, filterVal: '1' });
    assert.deepEqual(listed(mine.text), ['callsbyday']);
    assert.match(mine.text, /&amp;removemyreport=callsbyday"/);
    const after = await get({ ...kCatalogue, sessionId, filterVal: '1', removemyreport: 'callsbyday' });
    assert.deepEqual(favourites('manager'), []);
    assert.match(after.text, /no reports in My Reports yet/);
});

test('favourites change in a session of the same user only, and only to reports that are listed', async () => {
    const sessionId = await sessionOf('manager');
    for (const [what, args, user] of [
        ['no session', {}, 'manager'],
        ['made-up session', { sessionId: '123456789' }, 'manager'],
        ["somebody else's session", { sessionId }, 'zoned'],
    ]) {
        const answer = await get({ ...kCatalogue, ...args, addmyreport: 'callsbyday' }, { user });
        assert.match(answer.text, /session has only just begun/, what);
        assert.deepEqual(favourites(user), [], what);
    }
    for (const addmyreport of ['testhidden', 'nosuch', "x'); DELETE FROM CallReport; -- "])
        assert.match((await get({ ...kCatalogue, sessionId: await sessionOf('manager'), addmyreport })).text,
            /This report does not exist\./);
    assert.deepEqual(favourites('manager'), []);
});

test('a saved run is listed under its name, runs again with its criteria, and only its user removes it', async () => {
    const sessionId = await sessionOf('manager');
    const criteria = { reportPeriod: 'lastmonth', begintime: '0800', searchtype: 'dept', suggest1: 'Sales' };
    const name = `Sales & "co" 'x' <b>%20`;
    const save = { sessionId, save: 'on', savedReportDesc: name };
    const first = await runReport('callsbydept', { ...criteria, ...save });
    assert.deepEqual(first.notices, [`Saved among your quick reports as "${name}".`]);
    await runReport('callsbydept', { ...criteria, ...save });
    await runReport('callsbydept', { ...criteria, sessionId, save: 'on', savedReportDesc: ' ' });
    const [kept, unnamed, ...more] = quickReports('manager');
    assert.deepEqual([kept.name, unnamed.name, more.length], [name, 'Calls by Department', 0]);
    assert.doesNotMatch(kept.url, /sessionId|pagename|save|print|csv|query_id/i);

    const list = await get({ ...kCatalogue, sessionId });
    const entry = list.text.match(/<div style=''>.*?<\/div>/g).find((each) => textOf(each).trim() === name);
    assert.match(entry, /onclick="return confirm\('Are you sure you want to remove this quick report \?'\)"/);
    const [remove, again] = [...entry.matchAll(/href=['"]([^'"]*)['"]/g)].map(([, url]) =>
        textOf(url));
    const rerun = await get(again);
    assert.deepEqual(shown(rerun.text).lines, first.lines);
    assert.deepEqual(shown(rerun.text).rows, first.rows);
    assert.ok(first.rows.length === 1);
    assert.equal(quickReports('manager').length, 2, 'running again saves nothing');

    const theirs = { ...kCatalogue, sessionId: await sessionOf('zoned'), removeQReport: 'true', id: kept.id };
    await get(theirs, { user: 'zoned' });
    await get({ ...theirs, sessionId }, { user: 'zoned' });
    await get({ ...theirs, sessionId: '123456789' });
    assert.equal(quickReports('manager').length, 2);
    await get(remove.replace(/sessionId=\d+/, `sessionId=${await sessionOf('manager')}`));
    assert.deepEqual(quickReports('manager').map(({ id }) => id), [unnamed.id]);
});

test('a run without a session of its own runs and says that nothing was saved', async () => {
    const before = quickReports('manager').length;
    const page = await runReport('callsbyday', { reportPeriod: '7days', save: 'on', savedReportDesc: 'Mine' });
    assert.match(page.notices[0], /"Mine" was not saved/);
    assert.ok(page.rows.length > 0);
    assert.equal(quickReports('manager').length, before);
});

test("the last run's rows, and the priced calls of a period, come as CSV for those who may run reports", async () => {
    const sessionId = await sessionOf('manager');
    assert.match((await get({ pagename: 'csvreport', sessionId })).text, /No report has been run in this session yet\./);
    const run = { pagename: 'callreport', report: 'callsbydept', submit: 'Generate Report', reportPeriod: 'lastmonth',
        searchtype: 'dept', suggest1: 'R&D <Labs>', sessionId };
    await get(run);
    const last = await get({ pagename: 'csvreport', sessionId, wait: '1' });
    assert.equal(last.text, (await get({ ...run, csv: 'true', wait: '1' })).text);
    assert.match(last.text, /^Department,.*\r\nR&D <Labs>,/);

    const priced = await get({ pagename: 'pricerecord', sessionId, wait: '1' });
    assert.match(priced.headers['content-type'], /^text\/csv/);
    assert.match(priced.headers['content-disposition'], /Price Record/);
    const [{ calls, cost }] = sql(`SELECT COUNT(*) AS calls, SUM(totalcost) AS cost FROM CallLog
        WHERE customerid = 1 AND totalcost > 0 AND A_Trunk = '' AND B_Trunk <> '' AND
            EXTRACT(YEAR_MONTH FROM gmtdatetime) = EXTRACT(YEAR_MONTH FROM NOW() - INTERVAL 1 MONTH)`);
    const rows = priced.text.trim().split('\r\n').slice(1);
    assert.equal(rows.length, Number(calls));
    assert.ok(Number(cost) > 0);
    for (const pagename of ['csvreport', 'pricerecord', 'calllogdrill', 'mediadrill'])
        assert.match((await get({ pagename }, { user: 'noreports' })).text, /Sorry you do not have rights/, pagename);
    assert.match((await get({ pagename: 'pricerecord', wait: '1' }, { user: 'masked' })).text, /rights for this|No permission/);
});
