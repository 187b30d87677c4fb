// The result of a report in all its forms: the same rows in the same order on the screen, on paper, as
// CSV and in a workbook; sorting, pages and series, whose totals are always those of all rows.

import assert from 'node:assert/strict';
import { rmSync, writeFileSync } from 'node:fs';
import { after, before, describe, test } from 'node:test';
import { inflateRawSync } from 'node:zlib';
import { textOf } from '../figures/report.mjs';
import { env, get, sql } from './portal.mjs';

const kReports = `${env.ROOT}/Norvane/config/reports`;

// Two departments; texts that each form has to take care of, and figures of every style.
const kRows = [
    ['Sales', '007', 'Ann, "the" <b>', 12, 90061, '1234.5678', 33.333, '2026-03-29', '2026-03-29 01:02:03'],
    ['Sales', '+44 20 7946', '=1+1', 3, 59, '0.005', 0, '2026-03-30', '2026-03-30 23:59:59'],
    ['Sales', '-x', '@cmd', null, null, null, null, null, null],
    ['Ünît %s%n', '-5', 'two\r\nlines & 50%', 0, 0, '-7.5', 100, '0001-01-01', 'soon'],
];
const kColumns = `number text Number "" "" Who
name text Name calllogdrill "by=department&value=[name]&outcome=calls" Who count
calls number Calls calllogdrill "by=department&value=[dept]" "" sum
talk time Talk "" "" "" sum
cost money Cost "" "" "" sum
share percent Share "" "" "" percent calls talk
day date Day
at date At
`;
const literal = (value) => (value === null ? 'NULL' : typeof value === 'number' ? value : `'${value.replaceAll("'", "''")}'`);
const kNames = ['dept', 'number', 'name', 'calls', 'talk', 'cost', 'share', 'day', 'at'];
const kTemplate = kRows.map((row) => `SELECT ${row.map((value, i) => `${literal(value)} AS ${kNames[i]}`).join(', ')}, 2 AS n_calls, 3 AS n_legs, 0 AS n_transfers`).join(' UNION ALL ');

const kDefinitions = {
    result_all: { name: 'Res/ult "1"', query: kTemplate, more: { multititle: 'Department', multikeyfield: 'dept', format: 'money', help: 'Calls: first.\n<Legs>: second.' }, columns: kColumns },
    result_plain: { name: 'Plain', query: kTemplate, columns: kColumns },
    result_pages: { name: 'Pages', query: 'SELECT seq AS n, 1201 - seq AS down FROM seq_1_to_1200', columns: 'n number N "" "" "" sum\ndown number Down "" "" "" sum\n' },
    result_long: { name: 'Long', query: 'SELECT seq AS n FROM seq_1_to_1048577', columns: 'n number N\n' },
    result_odd: { name: 'Odd', query: "SELECT CONVERT(X'6101EFBFBE0909F09F9880EFBFBF3C' USING utf8mb4) AS n", columns: 'n text N\n' },
    result_wide: { name: 'Wide', query: `SELECT ${[...Array(300).keys()].map((i) => `${i} AS c${i}`).join(', ')}`, columns: [...Array(300).keys()].map((i) => `c${i} number C${i}\n`).join('') },
    result_wrong: { name: 'Wrong', query: 'SELECT nosuchcolumn FROM CallLog', columns: 'n number N\n' },
    result_midway: { name: 'Midway', query: "SELECT IF(seq < 9, seq, (SELECT seq FROM seq_1_to_2)) AS n FROM seq_1_to_20", columns: 'n number N "" "" "" sum\n' },
};

before(() => {
    for (const [pagename, { name, query, more = {}, columns }] of Object.entries(kDefinitions)) {
        const row = { pagename, name, category: 1, hidden: 1, SQLQuery: query, reportFile: `${pagename}.col`, ...more };
        const text = (value) => `'${String(value).replace(/[\\']/g, '\\$&')}'`;
        sql(`REPLACE INTO CallReport (${Object.keys(row).join(', ')}) VALUES (${Object.values(row).map(text).join(', ')})`);
        writeFileSync(`${kReports}/${pagename}.col`, columns);
    }
});
after(() => {
    sql("DELETE FROM CallReport WHERE pagename LIKE 'result\\_%'");
    for (const pagename of Object.keys(kDefinitions)) rmSync(`${kReports}/${pagename}.col`, { force: true });
});

const run = (report, more = {}) =>
    get({ pagename: 'callreport', report, submit: 'Generate Report', wait: 1, ...more });

// ---- reading each form

const part = (html, element) => html.match(new RegExp(`<${element}>(.*?)</${element}>`, 's'))?.[1] ?? '';
const rowsOf = (html) => [...html.matchAll(/<tr[^>]*>(.*?)<\/tr>/gs)].map(([, row]) => [...row.matchAll(/<t[dh][^>]*>(.*?)<\/t[dh]>/gs)].map(([, cell]) => textOf(cell)));
const figures = (html) => rowsOf(part(html, 'tbody')).filter((row) => row.length > 1 && row[0] !== 'Total');

function readCsv(text) {
    assert.ok(text.endsWith('\r\n'));
    const rows = [[]];
    for (const [, quoted, bare, end] of text.matchAll(/(?:"((?:[^"]|"")*)"|([^",\r\n]*))(,|\r\n)/g)) {
        rows.at(-1).push(quoted?.replaceAll('""', '"') ?? bare);
        if (end !== ',') rows.push([]);
    }
    return rows.slice(0, -1);
}

// The files of a ZIP archive, by name.
function unzip(archive) {
    const files = {};
    const end = archive.lastIndexOf('PK\x05\x06', undefined, 'latin1');
    for (let at = archive.readUInt32LE(end + 16); archive.readUInt32LE(at) === 0x02014b50; ) {
        const [packed, nameLength, extra, comment, local] = [archive.readUInt32LE(at + 20), archive.readUInt16LE(at + 28), archive.readUInt16LE(at + 30), archive.readUInt16LE(at + 32), archive.readUInt32LE(at + 42)];
        const data = local + 30 + archive.readUInt16LE(local + 26) + archive.readUInt16LE(local + 28);
        files[archive.toString('utf8', at + 46, at + 46 + nameLength)] = () => inflateRawSync(archive.subarray(data, data + packed)).toString();
        at += 46 + nameLength + extra + comment;
    }
    return files;
}

// A sheet's rows: texts as texts, numbers as numbers, missing cells null.
function readSheet(xml, columns) {
    return [...xml.matchAll(/<row [^>]*>(.*?)<\/row>/gs)].map(([, row]) => {
        const cells = Array(columns).fill(null);
        for (const [, letter, text, number] of row.matchAll(/<c r="([A-Z])\d+"[^>]*>(?:<is><t[^>]*>(.*?)<\/t><\/is>|<v>(.*?)<\/v>)<\/c>/gs))
            cells[letter.charCodeAt(0) - 65] = text === undefined ? Number(number) : textOf(text).replace(/_x000D_/g, '\r');
        return cells;
    });
}

// ---- what each form must hold

const kShown = [
    ['007', 'Ann, "the" <b>', '12', '25:01:01', '1234.57', '33.3%', '2026-03-29', '2026-03-29 01:02:03'],
    ['+44 20 7946', '=1+1', '3', '0:00:59', '0.01', '0.0%', '2026-03-30', '2026-03-30 23:59:59'],
    ['-x', '@cmd', '-', '-', '-', '-', '', ''],
    ['-5', 'two\r\nlines & 50%', '0', '0:00:00', '-7.50', '100.0%', '0001-01-01', 'soon'],
];
const kTotals = ['Total', '4', '15', '25:02:00', '1227.07', '0.0%', '', ''];

describe('a result of every kind of value', () => {
    test('is the same table on the screen and on paper', async () => {
        const screen = (await run('result_plain')).text;
        const paper = (await run('result_plain', { print: 'true' })).text;
        for (const html of [screen, paper]) {
            assert.deepEqual(figures(html), kShown);
            assert.deepEqual(rowsOf(part(html, 'tfoot')), [kTotals]);
            assert.match(html, /<p>8 calls, 12 legs<\/p>/);
            assert.match(html, /The query took [\d.]+ seconds and read [\d,]+ rows\. The latest logged call began at \d{4}-/);
        }
        assert.match(paper, /@page\{size:A4 portrait\}/);
        assert.doesNotMatch(paper, /mainMenu|reportExports|<a [^>]*href/);
        assert.deepEqual([...screen.matchAll(/href="[^"]*(print|csv|xlsx)=true" target="_blank" rel="noopener"/g)].map(([, form]) => form), ['print', 'csv', 'xlsx']);
    });

    test('is plain data as CSV', async () => {
        const answer = await run('result_all', { csv: 'true' });
        assert.equal(answer.headers['content-disposition'], 'attachment; filename="Result 1.csv"');
        assert.match(answer.headers['content-type'], /^text\/csv name=/);
        assert.ok(answer.text.startsWith('\uFEFF'), 'a text beyond ASCII says that it is UTF-8');
        const [headings, ...rows] = readCsv(answer.text.slice(1));
        assert.deepEqual(headings, ['Department', 'Number', 'Name', 'Calls', 'Talk', 'Cost', 'Share', 'Day', 'At']);
        // No formula, and an empty value where there is none.
        const guard = { '=1+1': "'=1+1", '@cmd': "'@cmd", '-x': "'-x", '-': '' };
        assert.deepEqual(rows, kShown.map((row, i) => [kRows[i][0], ...row.map((text) => guard[text] ?? text)]));

        const lines = readCsv((await run('result_pages', { csv: 'true', criteria: '1' })).text);
        assert.deepEqual(lines[0], ['Report', 'Pages']);
        assert.ok(lines.some(([label]) => label === 'Time zone'));
        assert.deepEqual(lines.slice(lines.findIndex(([label]) => label === '')).slice(0, 3), [[''], ['N', 'Down'], ['1', '1200']]);
        assert.equal(lines.at(-1)[0], '1200', 'all pages');
    });

    test('has types in a workbook', async () => {
        const answer = await run('result_all', { xlsx: 'true' });
        assert.equal(answer.headers['content-disposition'], 'attachment; filename="Result 1.xlsx"');
        const files = unzip(answer.bytes);
        const [headings, ...rows] = readSheet(files['xl/worksheets/sheet1.xml'](), 9);
        assert.deepEqual(headings, ['Department', 'Who: Number', 'Who: Name', 'Calls', 'Talk', 'Cost', 'Share', 'Day', 'At']);
        const day = 46110;  // 2026-03-29
        const near = (value) => (typeof value === 'number' ? value.toFixed(9) : value);
        const wanted = [
            ['Sales', '007', 'Ann, "the" <b>', 12, 90061 / 86400, 1234.5678, 0.33333, day, day + 3723 / 86400],
            ['Sales', '+44 20 7946', '=1+1', 3, 59 / 86400, 0.005, 0, day + 1, day + 2 - 1 / 86400],
            ['Sales', '-x', '@cmd', null, null, null, null, null, null],
            ['Ünît %s%n', '-5', 'two\r\nlines & 50%', 0, 0, -7.5, 1, '0001-01-01', 'soon'],
        ];
        assert.deepEqual(rows.map((row) => row.map(near)), wanted.map((row) => row.map(near)));
        assert.match(files['xl/styles.xml'](), /\[h\]:mm:ss/);
        const notes = readSheet(files['xl/worksheets/sheet2.xml'](), 2);
        assert.deepEqual(notes[0], ['Report', 'Res/ult "1"']);
        const zone = notes.find(([label]) => label === 'Time zone')[1];
        assert.match(files['docProps/custom.xml'](), new RegExp(`name="Time zone"><vt:lpwstr>${zone.replace('+', '\\+')}<`));
    });

    test('has series with headings and totals, a Grand Total and its help', async () => {
        const { text } = await run('result_all');
        assert.deepEqual(rowsOf(part(text, 'tbody')), [
            ['Department: Sales'], kShown[0], kShown[1], kShown[2],
            ['Total', '3', '15', '25:02:00', '1234.57', '0.0%', '', ''],
            ['Department: Ünît %s%n'], kShown[3],
            ['Total', '1', '0', '0:00:00', '-7.50', '-', '', ''],
        ]);
        assert.deepEqual(rowsOf(part(text, 'tfoot')), [kTotals]);
        const [{ currency }] = sql("SELECT MAX(AttribValue) AS currency FROM CustomerAttribute WHERE CustomerId = 1 AND AttribName = 'currency'");
        assert.ok(text.includes(`<br/><hr align='right' width='20%'/><b>Grand Total: ${currency ?? '£'}1227.07</b>`), text.match(/Grand Total[^<]*/)?.[0]);
        assert.match(text, /<summary>How this report counts<\/summary><p>Calls: first\.<\/p><p>&lt;Legs&gt;: second\.<\/p><\/details>/);
        // Sorted by another column the series stay together.
        const sorted = (await run('result_all', { sort: 'talk', dir: 'asc' })).text;
        assert.deepEqual(figures(sorted).map((row) => row[0]), ['-x', '+44 20 7946', '007', '-5']);
    });

    test('leads from its cells to what is behind them, escaped', async () => {
        const { text } = await run('result_plain', { reportPeriod: 'custom', startDate: '2026-03-01', endDate: '2026-03-31' });
        const links = [...part(text, 'tbody').matchAll(/<a href="([^"]*)">(.*?)<\/a>/gs)].map(([, url, shown]) => [new URL(textOf(url), 'http://x').searchParams, textOf(shown)]);
        // Nothing is behind a zero or a missing figure.
        assert.deepEqual(links.map(([, shown]) => shown), [kShown[0][1], '12', kShown[1][1], '3', kShown[2][1], kShown[3][1]]);
        const [about] = links.at(-1);
        assert.deepEqual(['pagename', 'by', 'value', 'outcome', 'startDate', 'parent', 'field'].map((name) => about.get(name)),
            ['calllogdrill', 'department', kRows[3][2], 'calls', '2026-03-01', 'result_plain', 'name']);
    });
});

test('pages and orders keep the totals; hostile arguments count for nothing', async () => {
    const total = [['720600', '720600']];
    const first = (await run('result_pages')).text;
    assert.deepEqual([figures(first).length, rowsOf(part(first, 'tfoot'))], [500, total]);
    assert.match(first, /<div class="rowCount">Rows 1-500 of 1,200<\/div>/);
    // The heading's own link, and the page's, lead to the largest first.
    const down = textOf(part(first, 'thead').match(/<a href="([^"]*)">Down<\/a>/)[1]);
    const sorted = (await get(`${down}&wait=1`)).text;
    assert.equal(figures(sorted)[0][1], '1200');
    assert.match(sorted, /<th scope="col" class="number" aria-sort="descending">/);
    const last = (await get(`${textOf(sorted.match(/<a href="([^"]*)">Last<\/a>/)[1])}&wait=1`)).text;
    assert.deepEqual([figures(last).length, figures(last).at(-1), rowsOf(part(last, 'tfoot'))], [200, ['1200', '1'], total]);
    assert.match(last, /Rows 1,001-1,200 of 1,200/);
    assert.equal(figures((await run('result_pages', { rows: 'all', page: '7' })).text).length, 1200);
    assert.equal(readCsv((await run('result_pages', { csv: 'true', sort: 'down', rows: '100', page: '3' })).text)[1][1], '1', 'files have the same order');

    for (const hostile of [
        { sort: 'n`; DROP TABLE CallReport; -- ', dir: "desc'" }, { sort: 'seq' }, { page: '-1' }, { page: '99999999999999999999' },
        { page: '1 OR 1' }, { rows: '0' }, { rows: '-500' }, { rows: '<script>' },
    ]) {
        const { text } = await run('result_pages', hostile);
        assert.deepEqual([figures(text)[0], figures(text).length], [['1', '1200'], 500], JSON.stringify(hostile));
        assert.doesNotMatch(text, /<script>|DROP/);
    }
    const beyond = (await run('result_pages', { page: '4' })).text;
    assert.match(beyond, /There is no page 4: the report has 1,200 rows/);
    assert.deepEqual(rowsOf(part(beyond, 'tfoot')), total);
});

test('more rows than a sheet holds go to a further one, and the first says so', async () => {
    const files = unzip((await run('result_long', { xlsx: 'true' })).bytes);
    const firstSheet = files['xl/worksheets/sheet1.xml']();
    assert.match(firstSheet, /<row r="1048576"[^>]*><c r="A1048576"[^>]*><v>1048575<\/v>/);
    assert.deepEqual(readSheet(files['xl/worksheets/sheet2.xml'](), 1), [['N'], [1048576], [1048577]]);
    assert.match(files['xl/comments1.xml'](), /This sheet is full: the report continues on sheet/);
});

test('a workbook holds what XML cannot as marks, wherever it comes from', async () => {
    const answer = await run('result_odd', { xlsx: 'true', var: Buffer.from([0x62, 0xff, 0x0b]).toString('latin1') });
    const files = unzip(answer.bytes);
    assert.deepEqual(readSheet(files['xl/worksheets/sheet1.xml'](), 1)[1], ['a\uFFFD\uFFFD\uFFFD\uFFFD\t\t😀\uFFFD\uFFFD\uFFFD<']);
    for (const part of Object.values(files)) assert.doesNotMatch(part(), /[\0-\x08\x0B\x0C\x0E-\x1F\uFFFE\uFFFF]/);
});

test('a definition with too many columns and a query that fails are told on the page, in every form', async () => {
    const wide = (await run('result_wide')).text;
    assert.match(wide, /The column file of this report has 300 columns; the first 199 are shown\./);
    assert.equal(figures(wide)[0].length, 199);
    for (const form of [{}, { print: 'true' }, { csv: 'true' }, { xlsx: 'true' }]) {
        const { text, headers } = await run('result_wrong', form);
        assert.match(text, /<div class="reportWarning" role="alert">Unknown column &#39;nosuchcolumn&#39;|Unknown column 'nosuchcolumn'/);
        assert.match(headers['content-type'], /text\/html/);
    }
    // A failure amid the rows leaves a closed table without totals.
    const { text } = await run('result_midway');
    assert.match(text, /Subquery returns more than 1 row/);
    assert.equal(text.split('<table class="reportTable">').length, text.split('</tbody>\n</table></div>').length);
    assert.doesNotMatch(text, /totalrow/);
});
