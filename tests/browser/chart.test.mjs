// The graphs of reports in a browser: drawn, readable as a table, reachable by keyboard, and leading nowhere
// but to this site.

import assert from 'node:assert/strict';
import test, { after, before } from 'node:test';
import { shown } from '../figures/report.mjs';
import { env, get } from '../http/portal.mjs';
import { assertAccessible, assertFits, launch, open, withPage } from './browser.mjs';

const kDays = { pagename: 'callreport', report: 'callsbyday', submit: 'Generate Report', reportPeriod: 'lastmonth' };

let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

const canvasOf = (page) => page.locator('figure.reportChart canvas');

// Opens a report whose chart has this description instead of its own.
async function openWith(page, description) {
    await page.route(/pagename=jsonchart/, (route) =>
        route.fulfill({ body: typeof description === 'string' ? description : JSON.stringify(description) }),
    );
    await open(page, kDays);
}

// How many colours the canvas shows, once its animation is over.
async function coloursOf(page) {
    await canvasOf(page).waitFor();
    return page.evaluate(async () => {
        const chart = globalThis.Chart.getChart(document.querySelector('figure.reportChart canvas'));
        chart.update('none');
        await new Promise(requestAnimationFrame);
        const { width, height } = chart.canvas;
        const pixels = new Uint32Array(chart.ctx.getImageData(0, 0, width, height).data.buffer);
        return new Set(pixels).size;
    });
}

const bars = (values) => ({
    title: { text: 'Calls' },
    y_legend: { text: 'Minutes on Calls' },
    x_legend: { text: 'Day' },
    x_axis: { labels: { rotate: 'horizontal', labels: values.map((_, at) => ({ text: `Day ${at + 1}`, size: 10 })) } },
    elements: [{ type: 'bar_glass', colour: '#12616d', text: 'Talk', tip: 'Talk: #val#', values }],
    y_axis: { steps: 1800, max: 7200 },
});

for (const colorScheme of ['light', 'dark'])
    test(`a report's graph is drawn, and its table has the report's figures, in ${colorScheme} colours`, () =>
        withPage(browser, { colorScheme }, async (page) => {
            await open(page, kDays);
            assert.ok((await coloursOf(page)) > 20, 'something is drawn');
            const button = page.getByRole('button', { name: 'Show as table' });
            await button.click();
            const [headings, ...rows] = await page
                .locator('.chartTable tr')
                .evaluateAll((lines) => lines.map((line) => [...line.cells].map((cell) => cell.textContent)));
            const report = shown(await page.content());
            const fields = headings.map((heading) => report.headings.indexOf(heading));
            assert.ok(fields.length > 2 && !fields.includes(-1), String(headings));
            assert.ok(rows.length > 20);
            assert.deepEqual(
                rows,
                report.rows.map((row) => fields.map((field) => row[field])),
            );
            await assertAccessible(page, 'with the table');
            await page.getByRole('button', { name: 'Hide the table' }).click();
            await assertAccessible(page, 'without it');
            assert.equal(await page.locator('.chartTable').count(), 0);
        }),
    );

test('the arrow keys tell each point, and Enter follows its link', () =>
    withPage(browser, {}, async (page) => {
        const target = `${new URL(env.URL).pathname}?pagename=callreport&report=callsbyuser`;
        await openWith(page, bars([60, { top: 3661, 'on-click': `navigateTo('${target}')` }]));
        await canvasOf(page).focus();
        const spoken = page.locator('figure.reportChart [aria-live]');
        await page.keyboard.press('ArrowRight');
        assert.equal(await spoken.textContent(), 'Day 1: Talk: 00:01:00');
        await page.keyboard.press('Enter');
        await page.keyboard.press('End');
        assert.equal(await spoken.textContent(), 'Day 2: Talk: 01:01:01. Enter shows the calls.');
        await page.keyboard.press('Enter');
        await page.getByRole('heading', { name: 'Calls by User - Select Criteria' }).waitFor();
    }));

test("a point of a report's graph leads to the calls that it counts", () =>
    withPage(browser, {}, async (page) => {
        await open(page, kDays);
        await canvasOf(page).focus();
        await page.keyboard.press('ArrowRight');
        const spoken = await page.locator('figure.reportChart [aria-live]').textContent();
        const [, day, count] = /^(\S+): [\w ]+: (\d+)\. Enter shows the calls\.$/.exec(spoken);
        await page.keyboard.press('Enter');
        await page.getByRole('heading', { name: /Call List/ }).first().waitFor();
        await page.waitForLoadState();
        const { rows } = shown(await page.content());
        assert.equal(rows.length, Number(count));
        assert.ok(rows.every((row) => row.some((cell) => cell.startsWith(day))));
    }));

test('a link to another site, or to a script, is none', () =>
    withPage(browser, {}, async (page) => {
        const links = [
            'https://elsewhere.example/',
            '//elsewhere.example/',
            'javascript:document.title="caught"',
            'data:text/html,caught',
            'lumora.cgi?pagename=callreport',
        ];
        await openWith(
            page,
            bars(links.map((link) => ({ top: 7000, 'on-click': `navigateTo('${link}')` }))),
        );
        await page.getByRole('button', { name: 'Show as table' }).click();
        const found = await page.locator('.chartTable a').evaluateAll((list) => list.map(({ href }) => href));
        assert.deepEqual(found, [`${env.URL}?pagename=callreport`]);
        const before = page.url();
        await canvasOf(page).focus();
        for (const key of ['Home', 'ArrowRight', 'ArrowRight', 'ArrowRight']) {
            await page.keyboard.press(key);
            await page.keyboard.press('Enter');
        }
        assert.equal(page.url(), before);
    }));

test('a description that is missing, broken or hostile leaves a sentence or an empty chart, and the report', () =>
    withPage(browser, {}, async (page) => {
        const failure = page.locator('figure.reportChart [role=status]');
        for (const description of ['', '<html>', '{}', '{"elements":{}}', '{"elements":[]}', '[]', 'null']) {
            await openWith(page, description);
            await failure.waitFor();
            assert.match(await failure.textContent(), /could not be loaded/, description);
            assert.equal(await page.locator('table.reportTable').isVisible(), true);
            await page.unrouteAll();
        }
        const hostile = bars(['x', null, {}, [1], -5, '7', { top: '<b>' }]);
        hostile.title.text = '<img src=x onerror=alert(1)>';
        hostile.elements[0].text = hostile.x_legend.text = '</td><script>alert(1)</script>';
        await openWith(page, hostile);
        await page.getByRole('button', { name: 'Show as table' }).click();
        const values = await page.locator('.chartTable td').evaluateAll((cells) => cells.map((cell) => cell.textContent));
        assert.deepEqual(values, ['-', '-', '-', '-', '-00:00:05', '00:00:07', '-']);
        assert.equal(await page.locator('figure img, figure script').count(), 0);
    }));

test("another session's chart is not handed out", async () => {
    const url = (page) => page.text.match(/data-chart="([^"]*)"/)[1].replaceAll('&amp;', '&');
    const mine = url(await get(kDays));
    const others = url(await get(kDays));
    const ask = async (path) => (await get(Object.fromEntries(new URL(path, env.URL).searchParams))).text;
    assert.match(await ask(mine), /^\{"title" : \{"text" : "Calls by Day"/);
    const session = new URL(mine, env.URL).searchParams.get('sessionId');
    assert.equal(await ask(others.replace(/sessionId=\d+/, `sessionId=${session}`)), '');
});

test('on a telephone the chart fits, with its table too', () =>
    withPage(browser, { viewport: { width: 360, height: 740 }, hasTouch: true, isMobile: true }, async (page) => {
        await open(page, kDays);
        await coloursOf(page);
        await page.getByRole('button', { name: 'Show as table' }).click();
        await assertFits(page, 'chart');
    }));

test('on paper the graph is a picture that needs no script', () =>
    withPage(browser, { javaScriptEnabled: false }, async (page) => {
        await open(page, { ...kDays, print: 'true' });
        const picture = page.getByRole('img', { name: /^Graph: Calls by Day/ });
        assert.deepEqual(await picture.evaluate((image) => [image.complete, image.naturalWidth > 500]), [true, true]);
    }));
