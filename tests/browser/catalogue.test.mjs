// The list of reports in a browser: what scripts add to it, and what it is without them.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { sql } from '../http/portal.mjs';
import { launch, open, withPage } from './browser.mjs';

const [{ id }] = sql(`SELECT id FROM CustomerContact WHERE username = 'zoned'`);
const kUser = { user: 'zoned' };

let browser;
before(async () => {
    browser = await launch();
    sql(`INSERT INTO CallReportQuickReport (customerId, ContactId, name, url)
        VALUES (1, ${id}, 'Browser test', 'report=callsbyday&reportPeriod=lastmonth&submit=Generate%20Report')`);
});
after(async () => {
    await browser.close();
    sql(`DELETE FROM CallReportQuickReport WHERE ContactId = ${id} AND name = 'Browser test'`);
    sql(`DELETE FROM CustomerContactAttrib WHERE userid = ${id} AND attribname = 'myreport'`);
});

const names = (page) => page.locator('.reportListRow:visible .reportTitle td:first-child a').allTextContents();
const row = (page, name) => page.locator('.reportListRow').filter({ has: page.getByRole('link', { name, exact: true }) });

test('words find reports, a star is set on the spot, and the choice of the list takes effect at once', () =>
    withPage(browser, kUser, async (page) => {
        await open(page);
        const all = await names(page);
        await page.getByLabel('Find').fill('day of week');
        const found = await names(page);
        assert.ok(found.length > 0 && found.length < all.length, `${found}`);
        await page.getByLabel('Find').fill('xyzzy');
        assert.deepEqual(await names(page), []);
        assert.equal(await page.getByText('No report has these words.').isVisible(), true);
        await page.getByLabel('Find').fill('');
        assert.deepEqual(await names(page), all);

        const address = page.url();
        await row(page, 'Calls by Day').hover();
        await page.getByRole('link', { name: 'Add Calls by Day to My Reports' }).click();
        await page.getByRole('link', { name: 'Remove Calls by Day from My Reports' }).waitFor();
        assert.equal(page.url(), address);
        await page.getByLabel('Select Report').selectOption('My Reports');
        await page.waitForURL(/filterVal=1/);
        assert.deepEqual(await names(page), ['Calls by Day']);
        await page.getByRole('link', { name: 'Remove Calls by Day from My Reports' }).click();
        await page.getByText('no reports in My Reports yet').waitFor();
    }));

test('the whole description comes with the mouse and with the keyboard', () =>
    withPage(browser, kUser, async (page) => {
        await open(page);
        const tip = row(page, 'Calls by Day').locator('.tooltip');
        const isCut = () => tip.locator('span').evaluate((text) => text.scrollWidth > text.clientWidth);
        assert.equal(await isCut(), true);
        await tip.hover();
        assert.equal(await isCut(), false);
        await page.mouse.move(0, 0);
        await tip.focus();
        assert.equal(await isCut(), false);
    }));

test('a quick report goes only after a question', () =>
    withPage(browser, kUser, async (page) => {
        await open(page);
        const questions = [];
        let answer = 'dismiss';
        page.on('dialog', (dialog) => {
            questions.push(dialog.message());
            dialog[answer]();
        });
        const remove = page.getByRole('link', { name: 'Remove this quick report' });
        const left = () => sql(`SELECT id FROM CallReportQuickReport WHERE ContactId = ${id}`).length;
        await remove.click();
        assert.deepEqual([questions, left()], [['Are you sure you want to remove this quick report ?'], 1]);
        answer = 'accept';
        await remove.click();
        await page.getByText('The quick report was removed.').waitFor();
        assert.deepEqual([questions.length, left()], [2, 0]);
    }));

test('without JavaScript the list is chosen with a button', () =>
    withPage(browser, { ...kUser, javaScriptEnabled: false }, async (page) => {
        await open(page);
        assert.equal(await page.getByLabel('Find').isVisible(), false);
        await page.getByLabel('Select Report').selectOption('My Reports');
        await page.getByRole('button', { name: 'Show' }).click();
        await page.getByText('no reports in My Reports yet').waitFor();
    }));
