// A manager's way through the portal in a browser: catalogue, criteria, result, and what can go wrong.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { catalogue, figures, onOneDay, periods, shown, zoneOf } from '../figures/report.mjs';
import { account, runCgi } from '../http/portal.mjs';
import { assertAccessible, assertFits, kPhone, launch, open, withPage } from './browser.mjs';

const callsByUser = catalogue.find(({ name }) => name === 'callsbyuser');
const zone = zoneOf('manager');

let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

// Waits for the page of that heading to be there to its last row: a result's heading comes first.
async function arrive(page, name) {
    await page.getByRole('heading', { name, exact: true }).waitFor();
    await page.waitForLoadState();
}

const kForm = 'Calls by User - Select Criteria';
const kResult = 'Calls by User - Report';

async function openForm(page) {
    await open(page);
    await page.getByRole('link', { name: 'Calls by User', exact: true }).click();
    await arrive(page, kForm);
}

async function generate(page) {
    await page.getByRole('button', { name: 'Generate Report' }).click();
    await arrive(page, kResult);
}

const resultOf = async (page) => shown(await page.content());

// Fails unless the page shows last month's calls by user.
async function assertLastMonth(page, day) {
    const [first, last] = periods(day, 5).lastmonth;
    const { totals, rows } = await figures(callsByUser, { first, last, zone });
    const result = await resultOf(page);
    const at = (field) => callsByUser.columns.findIndex((column) => column.field === field);
    for (const field of ['answered', 'calls', 'talk', 'cost'])
        assert.equal(result.totals[at(field)], totals[at(field)], `total of ${field}`);
    assert.equal(result.rows.length, rows.length);
    assert.ok(rows.length > 100);
}

test('a manager signs in, runs calls by user for last month and reads the right totals', () =>
    onOneDay(zone, (day) =>
        withPage(browser, {}, async (page) => {
            await openForm(page);
            await page.getByLabel('Report Period').selectOption({ label: 'Last Month' });
            await generate(page);
            await assertLastMonth(page, day);
            assert.equal(await page.getByRole('region', { name: 'Result' }).isVisible(), true);
            assert.equal(await page.title(), `${kResult} - Lumora`);
        }),
    ));

test('going back, or changing the criteria, finds them as they were', () =>
    withPage(browser, {}, async (page) => {
        await openForm(page);
        const assertKept = async (what) => {
            assert.equal(await page.getByLabel('Report Period').inputValue(), '60days', what);
            assert.equal(await page.getByLabel('From this time of day').inputValue(), '0830', what);
            assert.equal(await page.getByLabel('To this time of day').inputValue(), '1745', what);
            assert.equal(await page.getByLabel('For:').inputValue(), 'Adam Ashworth', what);
            assert.equal(await page.locator('#notify').isVisible(), false, what);
        };
        await page.getByLabel('Report Period').selectOption('60days');
        await page.getByLabel('From this time of day').fill('0830');
        await page.getByLabel('To this time of day').fill('1745');
        await page.getByLabel('For:').fill('Adam Ashworth');
        await generate(page);
        assert.deepEqual(
            (await resultOf(page)).rows.map(([name]) => name),
            ['Adam Ashworth'],
        );
        await page.getByRole('link', { name: 'Change criteria' }).click();
        await arrive(page, kForm);
        await assertKept('change criteria');
        await generate(page);
        await page.goBack();
        await arrive(page, kForm);
        await assertKept('back');
        await generate(page);
        await page.getByRole('link', { name: 'All reports' }).click();
        await arrive(page, 'Reports');
    }));

// Presses Tab until the element has the focus; a keyboard user's way, so it must not be long.
async function tabTo(page, locator, most) {
    for (let presses = 0; presses < most; ++presses) {
        await page.keyboard.press('Tab');
        if (await locator.evaluate((element) => element === document.activeElement)) return;
    }
    assert.fail(`${locator} is not reached by ${most} presses of Tab`);
}

test('the keyboard alone leads to a result', () =>
    onOneDay(zone, (day) =>
        withPage(browser, {}, async (page) => {
            await open(page);
            const skip = page.getByRole('link', { name: "Skip to the page's content" });
            await tabTo(page, skip, 1);
            assert.ok((await skip.boundingBox()).y >= 0, 'the skip link shows when it has the focus');
            await page.keyboard.press('Enter');
            await tabTo(page, page.getByRole('link', { name: 'Calls by User', exact: true }), catalogue.length * 2);
            await page.keyboard.press('Enter');
            await arrive(page, kForm);
            await tabTo(page, skip, 1);
            await page.keyboard.press('Enter');
            await tabTo(page, page.getByLabel('Report Period'), 3);
            await page.keyboard.type('Last Month');
            await tabTo(page, page.getByRole('button', { name: 'Generate Report' }), 16);
            await page.keyboard.press('Enter');
            await arrive(page, kResult);
            await assertLastMonth(page, day);
            await tabTo(page, skip, 1);
            await page.keyboard.press('Enter');
            await tabTo(page, page.getByRole('region', { name: 'Result' }), 8);
        }),
    ));

test('everything works without JavaScript', () =>
    onOneDay(zone, (day) =>
        withPage(browser, { javaScriptEnabled: false }, async (page) => {
            await openForm(page);
            await page.getByLabel('Report Period').selectOption('lastmonth');
            await generate(page);
            await assertLastMonth(page, day);
            await page.getByRole('link', { name: 'Change criteria' }).click();
            await arrive(page, kForm);
            assert.equal(await page.getByLabel('Report Period').inputValue(), 'lastmonth');
            assert.equal(await page.locator('#notify').isVisible(), false);
        }),
    ));

// The pages that everybody meets: what to do to get there, by name.
const kSubmit = { pagename: 'callreport', report: 'callsbyuser', submit: 'Generate Report' };
const kPages = {
    catalogue: (page) => open(page),
    form: (page) => open(page, { pagename: 'callreport', report: 'callsbyuser' }),
    'form with errors': (page) =>
        open(page, {
            ...kSubmit,
            startDate: '2026-03-05',
            endDate: '2026-03-01',
            searchtype: 'agent',
            markup: 'ten',
        }),
    result: (page) =>
        open(page, { ...kSubmit, report: 'callsbydept', reportPeriod: '90days', var: 'x'.repeat(60) }),
    'call list': (page) =>
        open(page, { pagename: 'calllogdrill', parent: 'callsbyday', field: 'calls', by: 'hour', value: '11',
            outcome: 'abandoned', reportPeriod: '90days' }),
    'empty result': (page) => open(page, { ...kSubmit, startDate: '2001-01-01' }),
    'unknown report': (page) => open(page, { pagename: 'callreport', report: 'nosuch' }),
    'unknown page': (page) => open(page, { pagename: 'nosuch' }),
    'system error': openSystemError,
};

// What the program answers when it cannot work, put in the place of the catalogue.
async function openSystemError(page) {
    const { out } = await runCgi({ REMOTE_USER: account('manager').name, LUMORA_ROOT: '/nonexistent' });
    const end = out.search(/\r?\n\r?\n/);
    const headers = Object.fromEntries(
        out
            .slice(0, end)
            .split(/\r?\n/)
            .map((line) => line.split(/: (.*)/s)),
    );
    await page.route('**/lumora.cgi', (route) =>
        route.fulfill({ status: 200, headers, body: out.slice(end).trimStart() }),
    );
    await open(page);
    await page.getByRole('alert').getByText('SYSTEM ERROR: ').waitFor();
}

async function assertAllPages(page) {
    for (const [name, go] of Object.entries(kPages)) {
        await go(page);
        await assertFits(page, name);
        await assertAccessible(page, name);
        await page.unrouteAll();
    }
}

for (const colorScheme of ['light', 'dark']) {
    test(`no page has a serious accessibility fault in ${colorScheme} colours, nor a complaint on the console`, () =>
        withPage(browser, { colorScheme }, assertAllPages));
}

test('on a telephone no page scrolls sideways, and a wide table scrolls on its own', () =>
    withPage(browser, kPhone, async (page) => {
        await assertAllPages(page);
        await kPages.result(page);
        const [content, window] = await page
            .getByRole('region', { name: 'Result' })
            .evaluate((region) => [region.scrollWidth, region.clientWidth]);
        assert.ok(content > window, 'the wide table scrolls within its own region');
    }));
