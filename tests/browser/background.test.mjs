// A report that takes its time, in a browser: the progress, the cancel button, and the result.

import assert from 'node:assert/strict';
import { rmSync, writeFileSync } from 'node:fs';
import test, { after, before } from 'node:test';
import { env, sql } from '../http/portal.mjs';
import { assertAccessible, assertFits, launch, open, withPage } from './browser.mjs';

const kColumns = `${env.ROOT}/Norvane/config/reports/browser_test.col`;
const kSeconds = { browser_long: 60, browser_short: 6 };

let browser;
before(async () => {
    for (const [name, seconds] of Object.entries(kSeconds))
        sql(`REPLACE INTO CallReport (pagename, name, category, hidden, SQLQuery, reportFile)
            VALUES ('${name}', 'Patience', 1, 1, 'SELECT SLEEP(${seconds}) AS waited', 'browser_test.col')`);
    writeFileSync(kColumns, 'waited number Waited\n');
    browser = await launch();
});
after(async () => {
    await browser.close();
    sql("DELETE FROM CallReport WHERE pagename LIKE 'browser\\_%'");
    rmSync(kColumns, { force: true });
});

const queries = () => sql('SHOW PROCESSLIST').filter(({ Info }) => Info?.startsWith('SELECT SLEEP(60) AS waited'));
const progress = (page) => page.locator('#progressText');
const cancelButton = (page) => page.getByRole('button', { name: 'Cancel Report' });

async function generate(page, report) {
    await open(page, { pagename: 'callreport', report });
    await page.getByRole('button', { name: 'Generate Report' }).click();
    await progress(page).waitFor();
}

// Waits until the text is another one.
async function nextProgress(page) {
    const now = await progress(page).textContent();
    await page.waitForFunction((text) => document.getElementById('progressText').textContent !== text, now);
    return progress(page).textContent();
}

for (const colorScheme of ['light', 'dark'])
    test(`somebody watches the progress of a minute's report and cancels it (${colorScheme})`, () =>
        withPage(browser, { colorScheme, viewport: { width: 360, height: 740 } }, async (page) => {
            await generate(page, 'browser_long');
            await page.evaluate(() => (globalThis.here = true));
            assert.match(await nextProgress(page), /^\d+ seconds so far$/);
            assert.match(await nextProgress(page), /^\d+ seconds so far$/);
            assert.equal(await page.evaluate(() => globalThis.here), true, 'the page was not loaded again');
            await assertAccessible(page, 'progress');
            await assertFits(page, 'progress');
            assert.equal(queries().length, 1);

            await cancelButton(page).click();
            await page.getByText('The report was cancelled.').waitFor();
            assert.equal(queries().length, 0);
            await page.getByRole('button', { name: 'Generate Report' }).waitFor();
        }));

test('the result takes the place of the progress, and Back leads to the criteria', () =>
    withPage(browser, {}, async (page) => {
        await generate(page, 'browser_short');
        await page.locator('table.reportTable').waitFor();
        assert.equal(await cancelButton(page).count(), 0);
        await page.goBack();
        await page.getByRole('heading', { name: 'Patience - Select Criteria' }).waitFor();
    }));

test('without scripts the progress goes on and the result comes all the same', () =>
    withPage(browser, { javaScriptEnabled: false }, async (page) => {
        await generate(page, 'browser_short');
        await page.locator('table.reportTable').waitFor();
    }));
