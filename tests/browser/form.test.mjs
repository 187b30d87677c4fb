// The criteria form of a report that has every row there is, in the browser.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { sql } from '../http/portal.mjs';
import { assertAccessible, assertFits, kPhone, launch, open, withPage } from './browser.mjs';

const kReport = 'test.form';
const kSwitches = ['user', 'department', 'group', 'company', 'contact', 'agent', 'queue', 'inbox', 'outdept',
    'second_for_field', 'tag', 'account', 'time_limit', 'trunkgroup', 'trunk', 'in_out', 'sla', 'int_ext', 'ddi']
    .map((name) => `opt_${name}`);
const kMandatory = 'This field is mandatory';
const kNoContact = 'You must specify at least one contact for this report.';
const kTag = '50% off & <b>"more"</b>';

const remove = () => sql(`DELETE FROM CallReport WHERE pagename = '${kReport}'; DELETE FROM FrontSLAs WHERE
    name = 'Form SLA'; DELETE FROM FrontTag WHERE name = '${kTag}'`);

let browser;
before(async () => {
    remove();
    sql(`INSERT INTO CallReport (pagename, name, category, hidden, format, SQLQuery, reportFile, ${kSwitches})
        SELECT '${kReport}', 'Every Criterion', 2, 1, 'mandatory', SQLQuery, reportFile, ${kSwitches.map(() => 1)}
        FROM CallReport WHERE pagename = 'callsbyuser';
        INSERT INTO FrontSLAs (customerid, name, responseSLA) VALUES (1, 'Form SLA', 60);
        INSERT INTO FrontTag (id, customerid, name) VALUES ('test.form', 1, '${kTag}')`);
    browser = await launch();
});
after(async () => {
    await browser?.close();
    remove();
});

const openForm = (page) => open(page, { pagename: 'callreport', report: kReport });
const field = (page, name) => page.locator(`#searchForm [name="${name}"]`);
const generate = (page) => page.getByRole('button', { name: 'Generate Report' }).click();
const problems = (page) => page.locator('.fieldError').allTextContents();

// Chooses the first name that is offered for the text, of that kind where there are several.
async function choose(page, label, typed, kind) {
    await page.getByLabel(label, { exact: true }).fill(typed);
    await page.locator(`.ui-menu-item:visible${kind ? `:has(img[alt=${kind}])` : ''}`).first().click();
}

test('every criterion has its row, reaches the run, and is there again when they are changed', () =>
    withPage(browser, {}, async (page) => {
        await openForm(page);
        const labels = (await page.locator('.formLabel').allTextContents()).map((label) => label.trim());
        assert.deepEqual(labels, ['Report Period', 'In Time Period', 'For:', 'Allow Global:', 'Show:', 'Tag:', 'Contact:',
            'Account Code:', 'Duration longer than', 'For Trunk Group:', 'For Trunk', 'Uplift %', 'Inbound/Outbound',
            'Using SLA:', 'Call Type:', 'DDI:']);

        await choose(page, 'For:', 'Adam Ashw', 'user');
        await choose(page, 'Show:', 'sales', 'dept');
        await choose(page, 'Tag:', '50% off &');
        await choose(page, 'DDI:', '0');
        const wanted = {
            searchtype: 'user', suggest1: 'Adam Ashworth', A_searchtype: 'dept', A_suggest1: 'Sales', tag: kTag,
            ddi: await field(page, 'ddi').inputValue(),
        };
        const typed = { begintime: '0830', endtime: '1745', startDate: '2026-03-02', endDate: '2026-03-05',
            contact1: '+44 20 7946 0000', contact6: "O'Brien", account: "a'b%+", timeLimit: '15', markup: '7.5', vatrate: '' };
        for (const [name, value] of Object.entries(typed)) await field(page, name).fill(value);
        await page.getByLabel('Internal').uncheck();
        await page.getByLabel('Using SLA:').selectOption({ label: 'Form SLA' });
        Object.assign(wanted, typed, { slaID: await field(page, 'slaID').inputValue(), reportPeriod: 'custom' });
        assert.match(wanted.ddi, /^0\d+$/);
        assert.match(wanted.slaID, /^[1-9]/);

        const [request] = await Promise.all([page.waitForRequest((asked) => asked.method() === 'POST'), generate(page)]);
        const sent = Object.fromEntries(new URLSearchParams(request.postData()));
        for (const [name, value] of Object.entries(wanted)) assert.equal(sent[name], value, `sent as ${name}`);
        assert.deepEqual([sent.external, sent.internal, sent.globcb1, sent.save], ['on', undefined, undefined, undefined]);

        await page.getByRole('link', { name: 'Change criteria' }).click();
        await page.getByRole('heading', { name: 'Every Criterion - Select Criteria' }).waitFor();
        // An uplift or a VAT of none stays none, and does not turn into the customer's.
        for (const [name, value] of Object.entries(wanted))
            assert.equal(await field(page, name).inputValue(), value, `kept as ${name}`);
        assert.deepEqual([await page.getByLabel('External').isChecked(), await page.getByLabel('Internal').isChecked()], [true, false]);
    }));

test('a run without its entity or its contact is stopped, with and without scripts', async () => {
    await withPage(browser, {}, async (page) => {
        await openForm(page);
        let sent = 0;
        page.on('request', (request) => (sent += request.method() === 'POST'));
        await field(page, 'startDate').fill('2026-03-05');
        await field(page, 'endDate').fill('2026-03-04');
        await generate(page);
        assert.deepEqual(await problems(page), ['The end date lies before the start date.', kMandatory, kNoContact]);
        assert.equal(await page.locator('#notify').isVisible(), false);
        assert.equal(await field(page, 'endDate').evaluate((date) => date === document.activeElement), true);
        const outline = await field(page, 'suggest1').evaluate((box) => getComputedStyle(box).borderColor);
        const [red, green, blue] = outline.match(/\d+/g).map(Number);
        assert.ok(red > 180 && green < 90 && blue < 90, `${outline} is no red`);
        await assertAccessible(page, 'what is missing');

        // What is put right is not complained about any more.
        await page.getByLabel('Report Period').selectOption('today');
        await field(page, 'contact3').fill('555');
        await field(page, 'suggest1').fill('  ');
        await generate(page);
        assert.deepEqual(await problems(page), [kMandatory]);
        await page.getByLabel('For all, without a name').check();
        assert.deepEqual(await problems(page), []);
        assert.equal(sent, 0);
        await generate(page);
        await page.getByRole('heading', { name: 'Every Criterion - Report' }).waitFor();
    });
    await withPage(browser, { javaScriptEnabled: false }, async (page) => {
        await openForm(page);
        await field(page, 'account').fill('kept');
        await generate(page);
        assert.deepEqual(await problems(page), [kMandatory, kNoContact]);
        assert.equal(await field(page, 'account').inputValue(), 'kept');
        await field(page, 'suggest1').fill('Adam Ashworth');
        await field(page, 'contact1').fill('555');
        await generate(page);
        await page.getByRole('heading', { name: 'Every Criterion - Report' }).waitFor();
    });
});

test('dates are typed or chosen in a calendar, and go with the period of their own', () =>
    withPage(browser, {}, async (page) => {
        await openForm(page);
        const period = page.getByLabel('Report Period');
        const [start, end] = [page.getByLabel('Start Date'), page.getByLabel('End Date')];
        const calendar = page.locator('#ui-datepicker-div');
        await period.selectOption('lastmonth');
        await start.fill('2026-03-02');
        assert.equal(await period.inputValue(), 'custom');

        await page.getByRole('button', { name: 'Select Date: last day' }).click();
        assert.equal(await calendar.getByLabel('Select month').inputValue(), '2', 'the start tells the month');
        assert.equal(await calendar.getByRole('link', { name: '1', exact: true }).count(), 0, 'no day before the start');
        await calendar.getByRole('link', { name: '5', exact: true }).click();
        assert.deepEqual([await end.inputValue(), await calendar.isVisible()], ['2026-03-05', false]);
        await period.selectOption('custom');
        assert.equal(await start.inputValue(), '2026-03-02', 'the own period keeps them');
        await period.selectOption('7days');
        assert.deepEqual([await start.inputValue(), await end.inputValue()], ['', '']);
        // A date that is taken out again leaves the period that was chosen.
        await start.fill('');
        assert.equal(await period.inputValue(), '7days');

        await start.fill('2026-02-28');
        await page.keyboard.press('Tab');
        await page.keyboard.press('Enter');
        await calendar.waitFor();
        await assertAccessible(page, 'the open calendar');
        await page.keyboard.press('Control+ArrowRight');
        assert.match((await page.locator('.srOnly[role=status]').allTextContents()).join(), /Sunday 1 March 2026/);
        await page.keyboard.press('Enter');
        assert.equal(await start.inputValue(), '2026-03-01');
        await page.getByRole('button', { name: 'Select Date: first day' }).click();
        await page.keyboard.press('Escape');
        assert.deepEqual([await start.inputValue(), await calendar.isVisible()], ['2026-03-01', false]);
    }));

test('names are offered of the kinds that are ticked, and choosing one chooses its kind', () =>
    withPage(browser, {}, async (page) => {
        await openForm(page);
        const ticks = page.locator('#suggest1_ticks');
        assert.deepEqual((await ticks.locator('label').allTextContents()).map((tick) => tick.trim()), ['Users', 'Departments',
            'Reporting Groups', 'Contacts', 'Queues', 'Agents', 'Companies', 'Inboxes', 'Out Depts']);
        const asked = async (label) => {
            const [request] = await Promise.all([
                page.waitForRequest(/pagename=autorespond/),
                page.getByLabel(label, { exact: true }).pressSequentially('s'),
            ]);
            const query = Object.fromEntries(new URL(request.url()).searchParams);
            return { ...query, ticks: Object.keys(query).filter((name) => name.endsWith('Tick')) };
        };
        for (const box of ['Users', 'Contacts', 'Out Depts']) await ticks.getByLabel(box, { exact: true }).uncheck();
        const first = await asked('For:');
        assert.deepEqual([first.pagename, first.logging, first.format, first.q], ['autorespond', 'on', 'json', 's']);
        assert.deepEqual(first.ticks, ['deptTick', 'groupTick', 'queueTick', 'agentTick', 'companyTick', 'inboxTick']);
        assert.deepEqual((await asked('Show:')).ticks, ['userTick', 'deptTick', 'groupTick']);
        assert.deepEqual((await asked('Contact Number 4')).ticks, ['contactTick']);
        for (const kind of ['tag', 'ddi']) {
            const { pagename, searchtype } = await asked(`${kind === 'tag' ? 'Tag' : 'DDI'}:`);
            assert.deepEqual([pagename, searchtype], ['autorespond2', kind]);
        }
        await field(page, 'suggest1').fill('');
        await choose(page, 'For:', 'Sales', 'dept');
        assert.equal(await field(page, 'searchtype').inputValue(), 'dept');
    }));

test('one list chooses at a time, one call type stays ticked, and a name is asked for what is saved', () =>
    withPage(browser, {}, async (page) => {
        await openForm(page);
        const [group, trunk] = [page.getByLabel('For Trunk Group:'), page.getByLabel('For Trunk', { exact: true })];
        await page.getByLabel('Report Period').selectOption('lastmonth');
        await field(page, 'searchtype').selectOption('queue');
        await group.selectOption('Tie lines');
        await trunk.selectOption({ label: 'ISDN 1' });
        assert.deepEqual([await group.inputValue(), await trunk.inputValue()], ['', 'cn=ISDN 1,cn=Gateway B,cn=Modules']);
        await page.getByLabel('Inbound/Outbound').selectOption('Inbound');
        assert.equal(await trunk.inputValue(), '');
        assert.deepEqual([await field(page, 'reportPeriod').inputValue(), await field(page, 'searchtype').inputValue()],
            ['lastmonth', 'queue']);

        const [external, internal] = [page.getByLabel('External'), page.getByLabel('Internal')];
        await external.uncheck();
        assert.deepEqual([await external.isChecked(), await internal.isChecked()], [false, true]);
        await internal.click();
        assert.deepEqual([await external.isChecked(), await internal.isChecked()], [true, false]);

        const name = field(page, 'savedReportDesc');
        assert.equal(await name.isVisible(), false);
        await page.getByLabel('Save these criteria to my quick reports?').check();
        assert.deepEqual([await name.isVisible(), await name.inputValue()], [true, 'Every Criterion']);
    }));

for (const [what, options] of [['light', {}], ['dark', { colorScheme: 'dark' }], ['a telephone', kPhone]])
    test(`the form fits and is accessible: ${what}`, () =>
        withPage(browser, options, async (page) => {
            await openForm(page);
            await page.getByLabel('Save these criteria').check();
            await assertFits(page, what);
            await assertAccessible(page, what);
        }));
