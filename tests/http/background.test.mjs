// Reports that render in the background: ready at once, with progress, cancelled, forsaken. Whatever
// happens, nothing is left of a run: no fifo, semaphore, process or query.

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { existsSync, readFileSync, readdirSync, rmSync, statSync, utimesSync, writeFileSync } from 'node:fs';
import { after, before, describe, test } from 'node:test';
import { account, env, get, runCgi, sql } from './portal.mjs';

const kFifos = `${env.ROOT}/Norvane/fifos`;
const kColumns = `${env.ROOT}/Norvane/config/reports/background_test.col`;
// Each shows the time of day that it was asked for, which tells whose answer it is. "rows" takes a
// while because it is long.
const kReports = {
    background_quick: "SELECT 0 AS waited, '[startTime]' AS asked",
    background_short: "SELECT SLEEP(4) AS waited, '[startTime]' AS asked",
    background_long: "SELECT SLEEP(60) AS waited, '[startTime]' AS asked",
    background_wrong: 'SELECT nosuchcolumn FROM CallLog',
    // The server sends rows in blocks: long ones make many of them.
    background_rows: "SELECT SLEEP(0.001) AS waited, '[startTime]' AS asked, REPEAT('-', 200) AS filling FROM CallLog LIMIT 4000",
};

before(() => {
    for (const [name, query] of Object.entries(kReports))
        sql(`REPLACE INTO CallReport (pagename, name, category, hidden, SQLQuery, reportFile)
            VALUES ('${name}', 'Test', 1, 1, '${query.replaceAll("'", "\\'")}', 'background_test.col')`);
    writeFileSync(kColumns, 'waited number Waited\nasked text Asked\n');
});
after(() => {
    sql("DELETE FROM CallReport WHERE pagename LIKE 'background\\_%'");
    rmSync(kColumns, { force: true });
});

const pause = (seconds) => new Promise((resolve) => setTimeout(resolve, 1000 * seconds));

// Asks again until the answer is true, and fails when it never is.
async function eventually(what, isTrue, seconds = 50) {
    for (let tries = 0; !(await isTrue()); ++tries) {
        assert.ok(tries < seconds * 10, what);
        await pause(0.1);
    }
}

const isAlive = (pid) => existsSync(`/proc/${pid}/exe`);
const queriesOf = (asked) => sql('SHOW PROCESSLIST').filter(({ Info }) => Info?.includes(`'${asked}:00' AS asked`));

// What is left of a run, by its process id, or of all runs of a session.
function leftovers(key) {
    const names = [...(existsSync(kFifos) ? readdirSync(kFifos) : []), ...readdirSync('/dev/shm')];
    return names.filter((name) => new RegExp(`(^|_)${key}(_|$)`).test(name));
}

const assertNothingLeft = (pid) => eventually(`run ${pid} leaves nothing`, () => leftovers(pid).length === 0 && !isAlive(pid));

// Every test asks for a minute of its own.
let minute = 0;
function newTime() {
    minute++;
    return [Math.floor(minute / 60), minute % 60].map((n) => String(n).padStart(2, '0')).join(':');
}

async function newSession(user = 'manager') {
    return (await get({}, { user })).text.match(/sessionId=(\d+)/)[1];
}

const run = (report, asked, more = {}) => ({ pagename: 'callreport', report: `background_${report}`,
    submit: 'Generate Report', reportPeriod: 'today', begintime: asked.replace(':', ''), endtime: '2359',
    rows: 'all', ...more });

const pidOf = (page) => Number(page.match(/name="query_id" value="(\d+)"/)?.[1]);
const isProgress = (page) => page.includes('<h3>Generating Report</h3><img src="Images/Norvane/progress1.gif"/>');
const textsOf = (page, css) => [...page.matchAll(new RegExp(`class="${css}"[^>]*>([^<]*)`, 'g'))].map((m) => m[1]);
const reloadOf = (page) => page.match(/<meta http-equiv="refresh" content="\d+;url=([^"]*)">/)?.[1].replaceAll('&amp;', '&');

// Is this the whole answer to what was asked, and nobody else's?
function assertAnswers(page, asked, rows = 1) {
    assert.equal(page.split(`<td class="text">${asked}:00</td>`).length - 1, rows, `the result for ${asked}`);
    assert.equal([...page.matchAll(/<td class="text">/g)].length, rows, `only the result for ${asked}`);
    assert.deepEqual([page.match(/<!DOCTYPE html>/g).length, page.trimEnd().endsWith('</html>')], [1, true]);
}

// Starts a slow report; resolves to { pid, page, session, asked }.
async function start(report, session, options) {
    session ??= await newSession(options?.user);
    const asked = newTime();
    const page = (await get(run(report, asked, { sessionId: session }), options)).text;
    assert.ok(isProgress(page), page);
    const pid = pidOf(page);
    assert.ok(isAlive(pid) && leftovers(pid).length === 3, 'the run has fifo, semaphore and progress');
    return { pid, page, session, asked };
}

const cancel = ({ pid, session }, options) =>
    get({}, { ...options, body: { pagename: 'callreport', report: 'background_long', submit: 'Cancel Report', sessionId: session, query_id: pid } });
const feed = async ({ pid, session }, options) =>
    JSON.parse((await get({ pagename: 'callreport', sessionId: session, query_id: pid, progress: 1 }, options)).text);

// Starts the program as the web server would and hands the process over while it runs.
function startCgi(query, fields = {}) {
    const { uid, gid } = statSync(env.ROOT);
    const child = spawn(env.PROGRAM, [], { ...(process.getuid() === 0 ? { uid, gid } : {}),
        env: { LUMORA_ROOT: env.ROOT, TZ: env.ZONE, SERVER_NAME: '127.0.0.1', REMOTE_ADDR: '127.0.0.1',
            SCRIPT_NAME: '/lumora/lumora.cgi', REMOTE_USER: account('manager').name,
            QUERY_STRING: new URLSearchParams(query).toString(), ...fields } });
    child.log = '';
    child.stderr.on('data', (part) => (child.log += part));
    return child;
}

// The run that this session has and that is not among those known.
async function runOf(session) {
    let name;
    await eventually('a run has started', () => (name = leftovers(session).find((left) => left.endsWith('_out'))));
    return Number(name.match(/_(\d+)_out/)[1]);
}

test('a quick report is the answer itself, and nothing is left of its process', async () => {
    const asked = newTime();
    const answer = await get(run('quick', asked));
    assert.match(answer.headers['content-security-policy'], /script-src 'self'/);
    assertAnswers(answer.text, asked);
    // A first visit's links carry the session that the request made.
    const session = answer.text.match(/sessionId=(\d+)/)[1];
    assert.match(readFileSync(`${env.ROOT}/Norvane/sessions/Lumora_${session}`, 'utf8'), /^vFilter\.begintime=/m);
    await eventually('nothing is left', () => leftovers(session).length === 0);
});

test('what a killed run left is swept away by the next one', async () => {
    const started = await start('long');
    process.kill(started.pid, 'SIGKILL');
    await eventually('it is gone', () => !isAlive(started.pid));
    assert.equal(leftovers(started.pid).length, 3);
    utimesSync(`${kFifos}/${started.session}_${started.pid}_out`, new Date(0), new Date(0));
    await get(run('quick', newTime()));
    await assertNothingLeft(started.pid);
    sql(queriesOf(started.asked).map(({ Id }) => `KILL ${Id}`).join(';') || 'SELECT 1');
});

test('eight users with eight reports each: all finish, none gets what another asked for', async () => {
    const users = ['admin', 'manager', 'supervisor', 'restricted', 'limited', 'masked', 'zoned', 'london'];
    await Promise.all(users.map(async (user) => {
        const session = await newSession(user);
        await Promise.all(Array.from({ length: 8 }, async (_, i) => {
            const asked = newTime();
            let page = (await get(run(i % 4 ? 'quick' : 'short', asked, { sessionId: session }), { user })).text;
            while (isProgress(page)) page = (await get(reloadOf(page), { user })).text;
            assertAnswers(page, asked);
        }));
        await eventually('nothing is left', () => leftovers(session).length === 0);
    }));
});

test('where no process can be made the request does the work itself', async () => {
    const asked = newTime();
    const { uid, gid } = statSync(env.ROOT);
    const child = spawn('prlimit', ['--nproc=1', env.PROGRAM], { ...(process.getuid() === 0 ? { uid, gid } : {}),
        env: { PATH: process.env.PATH, LUMORA_ROOT: env.ROOT, TZ: env.ZONE, SERVER_NAME: '127.0.0.1', REMOTE_ADDR: '127.0.0.1',
            REMOTE_USER: account('manager').name, QUERY_STRING: new URLSearchParams(run('quick', asked)).toString() } });
    let out = '';
    for await (const part of child.stdout) out += part;
    assertAnswers(out, asked);
});

test('a failing query is shown as the result', async () => {
    const page = (await get(run('wrong', newTime()))).text;
    assert.match(page, /class="reportWarning" role="alert">Unknown column/);
});

describe('slow runs, side by side', { concurrency: true }, () => {
    test('without scripts the page of a slow report loads itself until the result is there, once', async () => {
        const started = await start('short');
        let page = started.page;
        let loads = 0;
        for (; isProgress(page); ++loads) {
            assert.match(textsOf(page, 'CancelButton').length ? page : '', /value="Cancel Report" class="CancelButton"/);
            assert.match(page, /<p id="progressText" role="status">\d seconds so far<\/p>/);
            page = (await get(reloadOf(started.page))).text;
        }
        assert.ok(loads > 1);
        assertAnswers(page, started.asked);
        await assertNothingLeft(started.pid);

        const again = (await get(reloadOf(started.page))).text;
        assert.match(again, /This run of the report is over/);
        assert.match(again, new RegExp(`name="begintime" value="${started.asked.replace(':', '')}"`), 'its criteria can be run again');
    });

    test('a script learns how many rows there are, and fetches the result', async () => {
        const started = await start('rows');
        const texts = [];
        for (;;) {
            const progress = await feed(started);
            if (progress.state !== 'running') {
                assert.deepEqual(progress, { state: 'ready' });
                break;
            }
            texts.push(progress.text);
        }
        const counts = texts.map((text) => Number(text.match(/^\d+ seconds? so far, ([\d,]+) rows$/)[1].replace(',', '')));
        assert.ok(counts.every((n, i) => n >= (counts[i - 1] ?? 0)) && counts.at(-1) > counts[0], texts.join('; '));
        assertAnswers((await get(reloadOf(started.page))).text, started.asked, 4000);
        await assertNothingLeft(started.pid);
        assert.deepEqual(await feed(started), { state: 'ended' });
    });

    test('a program that asks to wait gets the result itself', async () => {
        const asked = newTime();
        assertAnswers((await get(run('short', asked, { wait: 1 }))).text, asked);
    });

    test('cancelling ends the process and its query in the database', async () => {
        const started = await start('long');
        assert.equal(queriesOf(started.asked).length, 1);
        const answer = await cancel(started);
        assert.deepEqual(textsOf(answer.text, 'notice'), ['The report was cancelled.']);
        assert.match(answer.text, new RegExp(`name="begintime" value="${started.asked.replace(':', '')}"`));
        await eventually('the query has ended', () => queriesOf(started.asked).length === 0);
        await assertNothingLeft(started.pid);
        const log = readFileSync(env.ERROR_LOG, 'utf8');
        for (const line of [`SIGUSR1 -> ${started.pid}`, `Abort - removed fifo /Norvane/fifos/${started.session}_${started.pid}_out`, 'Abort - killed MySQL thread '])
            assert.ok(log.includes(line), line);

        assert.deepEqual(textsOf((await cancel(started)).text, 'notice'), ['The report was not running any more.']);
        assert.ok(readFileSync(env.ERROR_LOG, 'utf8').includes(`failed to signal ${started.pid}`));
        await cancel({ session: started.session, pid: '' });
        assert.ok(readFileSync(env.ERROR_LOG, 'utf8').includes('Cancel Report: query_id not set'));
    });

    test('nobody signals, watches or takes what is not their own', async (t) => {
        const started = await start('long');
        t.after(() => cancel(started));
        const other = await newSession();
        const foreign = await newSession('supervisor');
        const bystander = spawn('sleep', ['60']);
        t.after(() => bystander.kill());
        for (const [what, request, options] of [
            ['another session', { ...started, session: other }],
            ["another user's session", { ...started, session: foreign }, { user: 'supervisor' }],
            ['another user in the session', started, { user: 'supervisor' }],
            ['no session', { ...started, session: '' }],
            ['other processes', { ...started, pid: bystander.pid }],
            ['its own process group', { ...started, pid: 0 }],
            ['everybody', { ...started, pid: -1 }],
            ['init', { ...started, pid: 1 }],
            ['a number with more to it', { ...started, pid: `${started.pid} ` }],
            ['a path', { ...started, pid: `../${started.pid}` }],
            ['a large number', { ...started, pid: 2 ** 32 + started.pid }],
        ]) {
            // The second of these comes in a session that is the other user's by then.
            assert.deepEqual(textsOf((await cancel(request, options)).text, 'notice'), ['The report was not running any more.'], what);
            assert.deepEqual(await feed(request, options), { state: 'ended' }, what);
        }
        assert.ok(isAlive(started.pid) && isAlive(bystander.pid) && queriesOf(started.asked).length === 1);
        process.kill(started.pid, 'SIGUSR1');
        await assertNothingLeft(started.pid);
    });

    test('a run that nobody waits for ends by itself', async () => {
        // The browser went away after the first page.
        const forsaken = await start('long');
        // The request was killed while it waited.
        const session = await newSession();
        const asked = newTime();
        const request = startCgi(run('long', asked, { sessionId: session }));
        const orphan = await runOf(session);
        await eventually('its query runs', () => queriesOf(asked).length === 1);
        request.kill('SIGKILL');
        // The result is there and somebody waits, but opens the fifo never.
        const idle = await newSession();
        const waiting = startCgi(run('short', newTime(), { sessionId: idle }));
        const unread = await runOf(idle);
        await eventually('the progress page came', () => waiting.exitCode !== null);
        const touch = setInterval(() => {
            const fifo = `${kFifos}/${idle}_${unread}_out`;
            if (existsSync(fifo)) utimesSync(fifo, new Date(), new Date());
        }, 1000);

        await Promise.all([forsaken.pid, orphan, unread].map(assertNothingLeft));
        clearInterval(touch);
        assert.deepEqual([queriesOf(forsaken.asked), queriesOf(asked)], [[], []]);
        assert.match(waiting.log, new RegExp(`DisplayPage: error opening /Norvane/fifos/${idle}_${unread}_out for write: %m\n`));
        assert.match(waiting.log, /semaphore not available[^]*failed to open .* for write Interrupted system call/);
    });

    test('a session that stays locked gives a page that says so, and keeps what it holds', async (t) => {
        const session = await newSession();
        const file = `${env.ROOT}/Norvane/sessions/Lumora_${session}`;
        const held = readFileSync(file, 'utf8');
        const lock = spawn('flock', [file, '-c', 'echo locked; exec sleep 60'], { detached: true });
        t.after(() => process.kill(-lock.pid));
        await new Promise((resolve) => lock.stdout.once('data', resolve));
        const { code, out, err } = await runCgi({ REMOTE_USER: account('manager').name, QUERY_STRING: `sessionId=${session}` });
        assert.equal(code, 0);
        assert.match(out, /SYSTEM ERROR: LockedFile: flock\(LOCK_EX\) timeout/);
        assert.match(err, /DisplayPage: LockedFile: flock\(LOCK_EX\) timeout/);
        assert.equal(readFileSync(file, 'utf8'), held);
    });
});
