// Lists and forms in a browser: one thing added, changed and deleted as a manager would, names offered
// while typing, and every page of the kind at the width of a desk and of a phone.

import assert from 'node:assert/strict';
import test, { after, afterEach, before } from 'node:test';
import { sql } from '../http/portal.mjs';
import { assertAccessible, assertFits, kPhone, launch, open, withPage } from './browser.mjs';


let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());
afterEach(() =>
    sql(`DELETE FROM FrontSLAs WHERE name LIKE 'Zz%'; DELETE FROM CustomerContact WHERE username = 'zzuser';
        DELETE FROM CallLogPermissions WHERE contactid = 990001`),
);

const heading = (page, name) => page.getByRole('heading', { name, exact: true, level: 1 }).waitFor();
const slas = () => sql("SELECT name, responseSLA FROM FrontSLAs WHERE name LIKE 'Zz%'");

test('a manager adds, changes and deletes a media SLA, and going back makes none twice', () =>
    withPage(browser, {}, async (page) => {
        await open(page);
        await page.getByRole('link', { name: 'Media SLAs' }).click();
        await page.getByRole('link', { name: 'Add SLA' }).click();
        await page.getByLabel('Name').fill('Zz <Gold>');
        await page.getByRole('button', { name: 'Save' }).click();
        await page.getByText('Please enter a time.').waitFor();
        assert.equal(await page.getByLabel('Name').inputValue(), 'Zz <Gold>');
        await page.getByLabel('hours').fill('2');
        await page.getByRole('button', { name: 'Save' }).dblclick();
        await page.getByText('Added.').waitFor();
        await page.waitForURL(/done=added/);
        assert.deepEqual(slas(), [{ name: 'Zz <Gold>', responseSLA: '7200' }]);

        // The way back leads to a form or a list, and never sends anything again.
        await page.goBack();
        await page.goForward();
        await page.reload();
        assert.equal(slas().length, 1);

        await page.getByRole('link', { name: 'Zz <Gold>' }).click();
        await page.getByLabel('minutes').fill('30');
        await page.getByRole('button', { name: 'Save' }).click();
        await page.waitForURL(/done=saved/);
        await page.getByText('2 h 30 min').waitFor();

        await page.getByRole('link', { name: 'Zz <Gold>' }).click();
        await page.getByRole('button', { name: 'Delete' }).click();
        await page.getByText('Delete the SLA “Zz <Gold>”? This cannot be undone.').waitFor();
        await assertAccessible(page, 'the question');
        await page.getByRole('button', { name: 'Delete' }).click();
        await page.waitForURL(/done=deleted/);
        assert.deepEqual(slas(), []);
    }));

test('the criteria form offers names while somebody types, with the keyboard alone', () =>
    withPage(browser, {}, async (page) => {
        await open(page, { pagename: 'callreport', report: 'callsbydept' });
        const field = page.locator('#suggest1');
        await field.pressSequentially('sal');
        await page.getByText('Sales', { exact: true }).waitFor();
        await assertAccessible(page, 'names on offer');
        await field.press('ArrowDown');
        await field.press('Enter');
        assert.equal(await field.inputValue(), 'Sales');
        assert.equal(await page.locator('#searchtype').inputValue(), 'dept');
        // Names are text, whatever they hold.
        await field.fill('');
        await field.pressSequentially('labs');
        await page.getByText('R&D <Labs>', { exact: true }).click();
        assert.equal(await field.inputValue(), 'R&D <Labs>');
        await page.getByRole('button', { name: 'Generate Report' }).click();
        await page.getByText('R&D <Labs>').first().waitFor();
    }));

test('a restriction is added by name and taken away again', () =>
    withPage(browser, { user: 'admin' }, async (page) => {
        sql(
            "INSERT INTO CustomerContact (id, customerid, username, fullName) VALUES (990001, 1, 'zzuser', 'Zz User')",
        );
        await open(page, { pagename: 'manager.search', q: 'zzuser' });
        await page.getByRole('link', { name: 'Permissions zzuser' }).click();
        await heading(page, 'Permissions of Zz User');
        await page.getByLabel('Kind').selectOption('Department');
        await page.getByLabel('Name or number').pressSequentially('supp');
        await page.locator('.ui-menu-item', { hasText: 'Support' }).first().click();
        await page.getByLabel('Recordings', { exact: true }).check();
        await page.getByRole('button', { name: 'Save' }).click();
        await page.waitForURL(/done=saved/);
        await open(page, { pagename: 'manager.permissions', index: 990001 });
        assert.equal(await page.getByLabel('Support: Recordings').isChecked(), true);
        await page.getByLabel('Remove Support').check();
        await page.getByRole('button', { name: 'Save' }).click();
        await page.waitForURL(/done=saved/);
        assert.deepEqual(sql('SELECT * FROM CallLogPermissions WHERE contactid = 990001'), []);
    }));

test('a list is sorted by its headings and turned by its pages', () =>
    withPage(browser, {}, async (page) => {
        await open(page, { pagename: 'user.search' });
        const numbers = () => page.locator('table.reportTable tbody td:nth-child(2)').allTextContents();
        await page.getByRole('link', { name: 'Number' }).click();
        await page.locator('th[aria-sort="ascending"]', { hasText: 'Number' }).waitFor();
        const first = await numbers();
        assert.deepEqual(first, [...first].sort());
        await page.getByRole('link', { name: 'Next' }).click();
        await page.getByText('Page 2 of').waitFor();
        assert.ok((await numbers())[0] > first.at(-1));
        await page.getByRole('link', { name: 'Number' }).click();
        await page.locator('th[aria-sort="descending"]', { hasText: 'Number' }).waitFor();
        await page.getByRole('searchbox').fill(first[0]);
        await page.getByRole('searchbox').press('Enter');
        await page.getByText('1 to 1 of 1').waitFor();
        assert.deepEqual(await numbers(), [first[0]]);
    }));

test('every list and form is accessible and fits a phone', async () => {
    sql("INSERT INTO FrontSLAs (customerid, name, responseSLA) VALUES (1, 'Zz Gold', 3600)");
    const [{ id }] = sql("SELECT id FROM FrontSLAs WHERE name = 'Zz Gold'");
    const pages = [
        { pagename: 'manager.search' },
        { pagename: 'manager.edit', index: 4 },
        { pagename: 'manager.permissions', index: 4 },
        { pagename: 'user.search', page: 2 },
        { pagename: 'user.search', q: 'nobody at all' },
        { pagename: 'fr.sla' },
        { pagename: 'fr.sla.add' },
        { pagename: 'fr.sla.edit', index: id },
        { pagename: 'fr.sla.edit', index: 0 },
        { pagename: 'setting.password' },
        { pagename: 'tabular' },
        { pagename: 'trunks.list' },
        { pagename: 'customer.settings' },
        { pagename: 'callreport', report: 'callsbyuser' },
    ];
    for (const options of [{ viewport: { width: 1280, height: 800 } }, { ...kPhone, colorScheme: 'dark' }])
        await withPage(browser, { user: 'admin', ...options }, async (page) => {
            for (const query of pages) {
                const what = `${query.pagename} at ${options.viewport.width}`;
                await open(page, query);
                await assertAccessible(page, what);
                await assertFits(page, what);
            }
        });
});
