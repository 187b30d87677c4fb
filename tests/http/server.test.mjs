// The site around the program: who gets in, and what is served at all.

import assert from 'node:assert/strict';
import { statSync } from 'node:fs';
import test from 'node:test';
import { account, env, get, runCgi, sql } from './portal.mjs';

test('nobody gets in without the right password', async () => {
    const { name } = account('manager');
    for (const user of [null, { name, password: 'wrong' }, { name, password: '' }, { name: 'nobody', password: 'x' }]) {
        for (const path of [new URL(env.URL).pathname, '/lumora/css/', '/lumora/js/']) {
            const answer = await get(path, { user });
            assert.equal(answer.status, 401, `${path} as ${user?.name}`);
            assert.match(answer.headers['www-authenticate'], /^Basic /);
            assert.match(answer.text, /<h1>Please sign in<\/h1>/);
        }
    }
});

test('the portal answers at its address, and the bare host leads there', async () => {
    assert.equal((await get()).status, 200);
    for (const path of ['/', '/lumora', '/lumora/']) {
        const answer = await get(path, { user: null });
        assert.equal(answer.status, 302, path);
        assert.equal(new URL(answer.headers.location, env.URL).href, env.URL);
    }
});

test('signing out makes the browser forget the password', async () => {
    const answer = await get('/lumora/logout.cgi');
    assert.equal(answer.status, 401);
    assert.match(answer.headers['www-authenticate'], /^Basic /);
    assert.match(answer.text, /You are signed out/);
});

test('files of the web folder have their type and may be kept for a while', async () => {
    const page = await get();
    const sheet = page.text.match(/href=["']([^"']+\.css)["']/)[1];
    const answer = await get(new URL(sheet, env.URL).pathname);
    assert.equal(answer.status, 200, sheet);
    assert.equal(answer.headers['content-type'], 'text/css; charset=utf-8');
    assert.match(answer.headers['cache-control'], /private, max-age=\d+/);
});

test('nothing else is served: no listing, no settings, no program text', async () => {
    for (const path of ['/lumora/css/', '/lumora/site/lumora.conf', '/lumora/Lumora.cfg',
        '/lumora/../root/Norvane/config/Lumora.cfg', '/lumora/%2e%2e/root/Norvane/config/passwords',
        '/lumora/..%2froot/Norvane/config/Lumora.cfg', '/Norvane/config/Lumora.cfg', '/lumora/hello', '/portal.env']) {
        const answer = await get(path);
        assert.ok([400, 404].includes(answer.status), `${path}: ${answer.status}`);
        assert.ok(!answer.text.includes(env.DB_PASSWORD));
    }
});

test('files that hold passwords are for the portal alone', () => {
    for (const file of [process.env.PORTAL_ENV, `${env.ROOT}/Norvane/config/Lumora.cfg`, `${env.ROOT}/Norvane/config/passwords`])
        assert.equal(statSync(file).mode & 0o137, 0, file);
});

test('the database account can use the data and nothing more', () => {
    assert.deepEqual(sql("SELECT 'a\\tb\\\\c' AS text, NULL AS nothing"), [{ text: 'a\tb\\c', nothing: null }]);
    assert.throws(() => sql('SELECT user FROM mysql.user'), /denied/);
    assert.throws(() => sql('DROP TABLE CallLog'), /denied/);
    assert.equal(sql("SELECT CONVERT_TZ('2026-07-01 12:00', 'UTC', 'Europe/London') AS t")[0].t, '2026-07-01 13:00:00');
});

test('the program answers a request that it is handed directly', async () => {
    const { code, out } = await runCgi({ REQUEST_METHOD: 'GET', QUERY_STRING: '', REMOTE_USER: account('manager').name });
    assert.equal(code, 0);
    assert.match(out, /^Content-[Tt]ype: text\/html/m);
});
