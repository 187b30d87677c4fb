// Requests that go wrong, by accident or on purpose: each gets a page with a clear sentence, and the
// reason goes to the log.

import assert from 'node:assert/strict';
import {
    chmodSync,
    chownSync,
    existsSync,
    mkdirSync,
    readFileSync,
    readdirSync,
    rmSync,
    statSync,
    writeFileSync,
} from 'node:fs';
import { join } from 'node:path';
import test, { after, before } from 'node:test';
import { mainOf, runReport, shown, textOf } from '../figures/report.mjs';
import { account, env, get, makeRoot, runCgi, sql } from './portal.mjs';

const kManager = account('manager').name;
const kForm = 'application/x-www-form-urlencoded';
const kRun = { pagename: 'callreport', report: 'callsbyday', submit: 'Generate Report' };

let root;
before(() => {
    root = makeRoot();
});
after(() => rmSync(root, { recursive: true, force: true }));

const settingsOf = (folder) => join(folder, 'Norvane/config/Lumora.cfg');
const sessionsOf = (folder) => join(folder, 'Norvane/sessions');

const ask = (variables = {}, stdin = '') =>
    runCgi(
        { LUMORA_ROOT: root, REQUEST_METHOD: 'GET', REMOTE_USER: kManager, QUERY_STRING: '', ...variables },
        stdin,
    );

// The answer of the program as header lines and page.
function split(out) {
    const end = out.search(/\r?\n\r?\n/);
    return { headers: out.slice(0, end).split(/\r?\n/), page: out.slice(end).trim() };
}

// A page in the portal's frame with one heading, after a whole header block.
function assertThemed({ headers, page }, heading, what) {
    assert.ok(
        headers.some((line) => /^content-type: ?text\/html/i.test(line)),
        what,
    );
    for (const line of headers) assert.match(line, /^[A-Za-z-]+: [^\r\n]+$/, what);
    assert.match(page, /^<!DOCTYPE html>\s*<html lang="en">/, what);
    assert.match(page, /<link rel="stylesheet" href="css\/lumora\.css">/, what);
    assert.deepEqual(
        [...page.matchAll(/<h1>(.*?)<\/h1>/g)].map(([, text]) => text),
        [heading],
        what,
    );
    assert.match(page, /<\/html>$/, what);
}

async function assertSystemError(variables, sentence, reason) {
    const what = JSON.stringify(variables);
    const { code, signal, out, err } = await ask(variables);
    assert.deepEqual([code, signal], [0, null], what);
    const answer = split(out);
    assertThemed(answer, 'System error', what);
    const [told] = shown(answer.page).warnings;
    assert.match(told, sentence, what);
    assert.ok(told.startsWith('SYSTEM ERROR: '), told);
    assert.match(err, reason, what);
    assert.ok(!(out + err).includes(env.DB_PASSWORD), what);
    return answer.page;
}

// ---- what the portal cannot work with

test('a body whose length is no number, negative or too large is refused before it is read', async () => {
    for (const CONTENT_LENGTH of ['-1', 'abc', '12abc', ' 5', '1e3', '99999999999999999999'])
        await assertSystemError(
            { REQUEST_METHOD: 'POST', CONTENT_TYPE: kForm, CONTENT_LENGTH },
            /The length of the request is not a number\./,
            /length of the request/,
        );
    for (const CONTENT_LENGTH of [String(70 << 20), '67108865', '9223372036854775807'])
        await assertSystemError(
            { REQUEST_METHOD: 'POST', CONTENT_TYPE: kForm, CONTENT_LENGTH },
            new RegExp(`The request is too large: ${CONTENT_LENGTH} bytes, and the limit is 67108864\\.`),
            /too large/,
        );
    assert.deepEqual(readdirSync(sessionsOf(root)), [], 'nothing was written');
});

test('a body of 70 MB that a browser really sends is answered by a page', async () => {
    // More than once: a server that stops reading loses its answer only now and then.
    for (let i = 0; i < 4; ++i) {
        const answer = await get({}, { body: Buffer.alloc(70 << 20, 'x'), headers: { 'Content-Type': kForm } });
        assert.equal(answer.status, 200);
        assert.match(shown(answer.text).warnings[0], /^SYSTEM ERROR: The request is too large: 73400320 bytes/);
    }
});

test('a body that ends early is used as far as it came', async () => {
    const body = new URLSearchParams({ ...kRun, startDate: 'tomorrow' }).toString();
    const { code, out } = await ask(
        { REQUEST_METHOD: 'POST', CONTENT_TYPE: kForm, CONTENT_LENGTH: String(body.length + 500) },
        body,
    );
    assert.equal(code, 0);
    assert.match(out, /The start date must be a date/);
});

test('without database, settings or session folder the page says so', async (t) => {
    const original = readFileSync(settingsOf(root), 'utf8');
    const withSettings = (change) => writeFileSync(settingsOf(root), change(original));
    t.after(() => {
        writeFileSync(settingsOf(root), original);
        chmodSync(sessionsOf(root), 0o700);
    });
    const query = { QUERY_STRING: new URLSearchParams({ ...kRun, reportPeriod: '90days' }).toString() };

    withSettings((text) => text.replace(/^password=.*$/m, 'password=wrong'));
    await assertSystemError(query, /Access denied for user/, /DisplayPage: .*Access denied for user/);

    withSettings((text) => text.replace(/^serverAddress=.*$/m, 'serverAddress=%2fnonexistent%2fdb.sock'));
    await assertSystemError(query, /Can't connect to .*nonexistent/, /DisplayPage: .*Can't connect/);

    withSettings((text) => text.replace(/^db=.*$/m, 'db=nosuchdatabase'));
    await assertSystemError(query, /nosuchdatabase/, /DisplayPage: .*nosuchdatabase/);

    rmSync(settingsOf(root));
    await assertSystemError(
        query,
        /The settings file is missing or names no database \(serverAddress\)\./,
        /settings file is missing/,
    );
    assert.ok(!existsSync(settingsOf(root)));

    writeFileSync(settingsOf(root), original);
    rmSync(sessionsOf(root), { recursive: true });
    mkdirSync(sessionsOf(root), { mode: 0o500 });
    const { uid, gid } = statSync(root);
    chownSync(sessionsOf(root), uid, gid);
    await assertSystemError(
        query,
        /The folder \/Norvane\/sessions cannot be used: Permission denied/,
        /Norvane\/sessions cannot be used/,
    );
    assert.deepEqual(readdirSync(sessionsOf(root)), []);
});

test('an error page needs no session and leads back into the portal', async () => {
    const page = await assertSystemError(
        { CONTENT_LENGTH: '-1', SCRIPT_NAME: '/lumora/lumora.cgi' },
        /not a number/,
        /not a number/,
    );
    assert.match(page, /<a class="brand" href="\/lumora\/lumora\.cgi\?pagename=callreport">/);
});

test('somebody whom the portal does not know gets a page that says so, and no data', async () => {
    const kNotice = 'Your user name is not known to this portal. Please ask your administrator.';
    for (const variables of [
        { REMOTE_USER: 'nobody' },
        { SERVER_NAME: 'nowhere.example' },
        { REMOTE_USER: "x' OR '1'='1" },
        { REMOTE_USER: 'manager\\' },
        { SERVER_NAME: "127.0.0.1' OR 1=1 -- " },
    ]) {
        const what = JSON.stringify(variables);
        const { code, out, err } = await ask(variables);
        assert.equal(code, 0);
        const { page } = split(out);
        assertThemed(split(out), 'Reports', what);
        assert.ok(textOf(mainOf(page)).includes(kNotice), what);
        assert.match(err, /^Login details not allowed for this Portal /m, what);
        const run = await ask({
            ...variables,
            QUERY_STRING: new URLSearchParams({ ...kRun, reportPeriod: 'all' }).toString(),
        });
        assert.deepEqual(shown(run.out).rows, [], what);
    }
    const { out } = await runCgi({ LUMORA_ROOT: root });
    assert.deepEqual(shown(out).rows, [], 'nobody signed in at all');
});

test('a report that does not exist is named in the log and not on the page', async () => {
    for (const report of ['nosuch', '../../etc/passwd', "x' OR '1'='1", '%s%n%s', 'x'.repeat(5000)]) {
        for (const submit of [{}, { submit: 'Generate Report' }]) {
            const { code, out, err } = await ask({
                QUERY_STRING: new URLSearchParams({ pagename: 'callreport', report, ...submit }).toString(),
            });
            assert.equal(code, 0, report);
            const { warnings, rows } = shown(split(out).page);
            assert.deepEqual(warnings, ['This report does not exist.'], report);
            assert.deepEqual(rows, []);
            assert.ok(err.includes(`there is no report ${report.slice(0, 200)}`), err.slice(0, 300));
        }
    }
});

// ---- criteria

test('dates that are none, or in the wrong order, are told beside their field and nothing runs', async () => {
    const kStart = 'The start date must be a date, such as 2024-03-15.';
    const kEnd = 'The end date must be a date, such as 2024-03-15.';
    const kOrder = 'The end date lies before the start date.';
    for (const [startDate, endDate, problems] of [
        ['2026-02-30', '', { startDate: kStart }],
        ['tomorrow', '', { startDate: kStart }],
        ['15/03/2026', '2026-03-16', { startDate: kStart }],
        ['2026-03-15', '2026-13-01', { endDate: kEnd }],
        ['x', 'y', { startDate: kStart, endDate: kEnd }],
        ["2026-03-15') OR (1=1", '', { startDate: kStart }],
        ['2026-03-15 24:00:00', '', { startDate: kStart }],
        ['2026-03-15\n', '', { startDate: kStart }],
        [' 2026-03-15', '', { startDate: kStart }],
        ['0000-00-00', '', { startDate: kStart }],
        ['2026-03-15', '2026-03-14', { endDate: kOrder }],
        ['', '2026-03-14', { startDate: 'An end date needs a start date.' }],
        ['9'.repeat(3000), '', { startDate: kStart }],
    ]) {
        const what = `${startDate.slice(0, 40)} to ${endDate}`;
        const { text } = await get({ ...kRun, startDate, endDate });
        const told = Object.fromEntries(
            [...text.matchAll(/<span class="fieldError" role="alert" id="(\w+)_error">(.*?)<\/span>/g)].map(
                ([, field, message]) => [field, textOf(message)],
            ),
        );
        assert.deepEqual(told, problems, what);
        for (const field of Object.keys(problems))
            assert.match(
                text,
                new RegExp(`<input [^>]*id="${field}" [^>]*aria-invalid="true" aria-describedby="${field}_error"`),
                what,
            );
        assert.deepEqual(shown(text).lines, [], `${what}: no result`);
        assert.match(text, /id="searchForm"/);
    }
});

test('a time of day that is none counts as not given, and the page shows the window used', async () => {
    const [{ day }] = sql(
        'SELECT DATE(MAX(gmtdatetime)) - INTERVAL 7 DAY AS day FROM CallLog WHERE customerid = 1',
    );
    const whole = await runReport('callsbyday', { startDate: day });
    assert.equal(whole.rows.length, 1);
    for (const [begintime, endtime, window] of [
        ['9999', '9999', '00:00:00 23:59:59'],
        ['2400', '2360', '00:00:00 23:59:59'],
        ['9:00', '17', '00:00:00 23:59:59'],
        ["0'0;", '-100', '00:00:00 23:59:59'],
        ['0900', '9999', '09:00:00 23:59:59'],
        ['', '1700', '00:00:00 17:00:59'],
    ]) {
        const page = await runReport('callsbyday', { startDate: day, begintime, endtime });
        const [from, to] = window.split(' ');
        assert.ok(
            page.lines.includes(`Time Filter:  between '${from}' AND '${to}' `),
            `${begintime} to ${endtime}: ${page.lines}`,
        );
        assert.deepEqual(page.warnings, []);
        if (window === '00:00:00 23:59:59') assert.deepEqual(page.rows, whole.rows);
    }
});

test('numbers and choices that are none are refused, and unknown periods mean today', async () => {
    for (const [field, value, message] of [
        ['timeLimit', '1 OR 1=1', 'The duration must be a whole number of seconds.'],
        ['slaID', '1)', 'Choose an SLA from the list.'],
        ['markup', 'ten', 'The uplift must be a number, such as 17.5.'],
        ['vatrate', '1e9', 'The VAT rate must be a number, such as 17.5.'],
        ['inOutFilter', "x' OR '1", 'Choose Both, Inbound or Outbound.'],
        ['searchtype', 'agent', 'This report cannot be run for what was chosen.'],
    ]) {
        const { text } = await get({ ...kRun, reportPeriod: '90days', [field]: value });
        assert.ok(textOf(mainOf(text)).includes(message), field);
        assert.deepEqual(shown(text).lines, [], field);
    }
    for (const reportPeriod of ['', 'nosuch', "'", 'custom']) {
        const { lines, warnings } = await runReport('callsbyday', { reportPeriod });
        assert.ok(
            lines.some((line) => /^Dates: On: \d{4}-\d\d-\d\d \(Today\)$/.test(line)),
            `${reportPeriod}: ${lines}`,
        );
        assert.deepEqual(warnings, []);
    }
});

// ---- injection

test('no value and no name of an argument becomes markup, an attribute or a header', async () => {
    const hostile = [
        '<script>planted()</script>',
        '"><i planted>',
        '" planted="1',
        "' planted='1",
        '</textarea></script><i planted>',
        'a\r\nX-Planted: 1\r\n\r\n<i planted>',
        '%0d%0aX-Planted: 1',
        'javascript:planted()',
        '&quot; planted=&quot;1',
    ];
    const fields = [
        'pagename',
        'report',
        'sessionId',
        'startDate',
        'endDate',
        'begintime',
        'endtime',
        'reportPeriod',
        'searchtype',
        'suggest1',
        'userfilter',
        'department',
        'var',
        'field',
        'timeLimit',
        'print',
        'wallboard',
        'history',
        'invalidSessionId',
    ];
    const assertClean = ({ headers, text }, what) => {
        assert.equal(headers['x-planted'], undefined, what);
        for (const tag of text.match(/<[a-z!/](?:"[^"]*"|'[^']*'|[^'">])*>/gi)) {
            assert.doesNotMatch(tag.replace(/"[^"]*"|'[^']*'/g, ''), /planted|<script>/, what);
            assert.doesNotMatch(tag, /(?:href|src|action|content)=["']?(?:\d+;\s*url=)?\s*javascript:/i, what);
        }
        assert.ok(text.startsWith('<!DOCTYPE html>') && text.trimEnd().endsWith('</html>'), what);
    };
    for (const value of hostile) {
        const every = Object.fromEntries(fields.map((field) => [field, value]));
        for (const given of [
            { ...every, ...kRun },
            { ...every, ...kRun, startDate: '', endDate: '', searchtype: '', timeLimit: '' },
            { ...kRun, reportPeriod: '90days', userfilter: value, var: value },
            { pagename: value },
            { pagename: 'callreport', report: value },
            { sessionId: value },
            { pagename: 'callreport', [value]: value },
        ]) {
            const what = JSON.stringify(given).slice(0, 200);
            const answer = await get(given);
            assert.equal(answer.status, 200, what);
            assertClean(answer, what);
            const sessionId = answer.text.match(/sessionId=(\d+)/)?.[1];
            // What a session keeps comes back on a later page.
            if (given.userfilter)
                assertClean(
                    await get({ pagename: 'callreport', report: 'callsbyday', change: '1', sessionId }),
                    `${what}, kept`,
                );
        }
        const file = await get({ ...kRun, csv: value, reportPeriod: '90days', userfilter: value });
        assert.equal(file.headers['x-planted'], undefined, value);
        assert.match(file.headers['content-type'], /^text\/csv/, value);
        assertClean(
            await get({ pagename: 'manager.logout' }, { cookies: { sessionId: encodeURIComponent(value) } }),
            'cookie',
        );
    }
});
