// The criteria that are chosen from the directory, in the browser.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { sql } from '../http/portal.mjs';
import { assertAccessible, assertFits, launch, open, withPage } from './browser.mjs';

const kReport = 'test.browser.directory';
let browser;
before(async () => {
    sql(`INSERT INTO CallReport (pagename, name, category, hidden, opt_user, opt_trunkgroup, opt_trunk, SQLQuery, reportFile)
        SELECT '${kReport}', 'Trunks', 1, 1, 1, 1, 1, SQLQuery, reportFile FROM CallReport WHERE pagename = 'callsbyday'`);
    browser = await launch();
});
after(async () => {
    await browser?.close();
    sql(`DELETE FROM CallReport WHERE pagename = '${kReport}'`);
});

for (const [what, viewport] of [['desktop', { width: 1280, height: 900 }], ['phone', { width: 390, height: 844 }]]) {
    test(`trunk groups and trunks are chosen from the directory: ${what}`, () => withPage(browser, { viewport }, async (page) => {
        await open(page, { pagename: 'callreport', report: kReport });
        const group = page.getByLabel('For Trunk Group:');
        const trunk = page.getByLabel('For Trunk', { exact: true });
        assert.deepEqual(await group.locator('option').allTextContents(), ['All trunk groups', 'Public network', 'Tie lines']);
        await assertAccessible(page, 'the form');
        await assertFits(page, 'the form');

        // One of the lists at a time; period and kind of name stay.
        await page.getByLabel('Report Period').selectOption('lastmonth');
        await page.getByLabel('Kind').selectOption({ index: 0 });
        await group.selectOption('Tie lines');
        await trunk.selectOption({ label: 'ISDN 1' });
        assert.equal(await group.inputValue(), '');
        assert.equal(await trunk.inputValue(), 'cn=ISDN 1,cn=Gateway B,cn=Modules');
        assert.equal(await page.getByLabel('Report Period').inputValue(), 'lastmonth');

        await page.getByRole('button', { name: 'Generate Report' }).click();
        await page.getByRole('link', { name: 'Change criteria' }).waitFor();
    }));
}
