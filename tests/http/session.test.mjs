// Sessions: what they remember, for whom, and that nothing can be slipped into one.

import assert from 'node:assert/strict';
import { existsSync, readFileSync, readdirSync, rmSync, statSync } from 'node:fs';
import { join } from 'node:path';
import test, { after, before } from 'node:test';
import { account, get, makeRoot, runCgi } from './portal.mjs';

const kRun = { pagename: 'callreport', report: 'callsbyuser', submit: 'Generate Report' };

let root, sessions;
before(() => {
    root = makeRoot();
    sessions = join(root, 'Norvane/sessions');
});
after(() => rmSync(root, { recursive: true, force: true }));

const idOf = (html) => html.match(/[?&;]sessionId=([^&"]*)/)?.[1];
const fileOf = (id) => join(sessions, `Lumora_${id}`);
const variablesOf = (id) =>
    Object.fromEntries(
        readFileSync(fileOf(id), 'utf8')
            .trimEnd()
            .split('\n')
            .map((line) => line.split(/=(.*)/s)),
    );
const askFor = (query, variables = {}) =>
    runCgi({
        LUMORA_ROOT: root,
        REQUEST_METHOD: 'GET',
        REMOTE_USER: account('manager').name,
        QUERY_STRING: new URLSearchParams(query).toString(),
        ...variables,
    });

test('a session has a random id of digits, which travels in every link and form', async () => {
    const { text, headers } = await get({ pagename: 'callreport', report: 'callsbyday' });
    const id = idOf(text);
    assert.match(id, /^\d{1,20}$/);
    const links = [...text.matchAll(/(?:href|action)="(\/lumora\/lumora\.cgi[^"]*)"/g)].map(([, link]) => link);
    assert.ok(links.length >= 4);
    for (const link of links) assert.equal(idOf(link), id, link);
    assert.match(text, new RegExp(`<input type=hidden name="sessionId" value="${id}" ?>`));
    assert.equal(headers['set-cookie'], undefined);
    assert.equal(idOf((await get({ sessionId: id })).text), id, 'the next request keeps it');
    assert.notEqual(idOf((await get()).text), id, 'another visitor has another');
});

test('what is not 1 to 20 digits is no session id and never a file name', async () => {
    const before = readdirSync(sessions);
    for (const sessionId of ['../config/Lumora', '1'.repeat(21), '12a', '-1', ' 1', '1\n', '', '%00', '١٢']) {
        const { code, out } = await askFor({ sessionId });
        assert.equal(code, 0, sessionId);
        assert.match(idOf(out), /^\d{1,20}$/, sessionId);
        assert.notEqual(idOf(out), sessionId);
    }
    for (const file of readdirSync(sessions)) {
        assert.match(file, /^(Lumora_\d{1,20}|\+swept)$/);
        if (!before.includes(file)) assert.equal(statSync(join(sessions, file)).mode & 0o777, 0o600, file);
    }
    assert.deepEqual(readdirSync(join(root, 'Norvane')).sort(), ['config', 'sessions']);
});

test('a value with a line break, or a very long one, plants no variable in the session', async () => {
    const forged = ['portalContextcustomerId=2', 'portalContextAdministrator=1', 'isSuperVisor=1'];
    for (const value of [
        `x\n${forged.join('\n')}`,
        `x\r${forged.join('\r')}`,
        `x\r\n${forged.join('\r\n')}`,
        ...[2000, 2040, 2047, 2048, 4096].map((length) => 'y'.repeat(length) + forged[0]),
    ]) {
        const first = await askFor({ ...kRun, reportPeriod: '7days', userfilter: value, [`k${value}`]: value });
        const id = idOf(first.out);
        for (let round = 0; round < 2; ++round) {
            const variables = variablesOf(id);
            assert.equal(variables.portalContextcustomerId, '1');
            assert.equal(variables.portalContextAdministrator, '');
            assert.ok(!('isSuperVisor' in variables));
            for (const line of readFileSync(fileOf(id), 'utf8').split('\n')) assert.ok(line.length < 2048);
            assert.match((await askFor({ sessionId: id })).out, /class="customer">Northmoor Instruments</);
        }
    }
});

test('a second user on a session gets nothing of the first one', async () => {
    const first = await askFor({ ...kRun, reportPeriod: '90days', searchtype: 'user', suggest1: 'Adam Ashworth' });
    const id = idOf(first.out);
    assert.equal(variablesOf(id).portalContextAuthName, 'manager');
    assert.match(
        (await askFor({ pagename: 'callreport', report: 'callsbyuser', change: '1', sessionId: id })).out,
        /Adam Ashworth/,
    );

    const second = await askFor(
        { pagename: 'callreport', report: 'callsbyuser', change: '1', sessionId: id },
        { REMOTE_USER: 'restricted' },
    );
    assert.doesNotMatch(second.out, /Adam Ashworth/);
    const variables = variablesOf(id);
    assert.equal(variables.portalContextAuthName, 'restricted');
    assert.equal(variables.portalContextUserRights, '0');
    assert.ok(!Object.values(variables).some((value) => /Adam|90days/.test(value)));

    const refused = await askFor({ sessionId: id }, { REMOTE_USER: 'noreports' });
    assert.match(refused.out, /Sorry you do not have rights for this/);
    assert.doesNotMatch(refused.out, /<nav[^>]*><a[^>]*>Reports</);
    const elsewhere = await askFor({ sessionId: id }, { SERVER_NAME: 'two.localhost' });
    assert.match(elsewhere.out, /not known to this portal/);
    assert.match((await askFor({ sessionId: id })).out, /class="customer">Northmoor Instruments</);
});

test("a session used from another address stays its owner's", async () => {
    const id = idOf((await askFor({ ...kRun, reportPeriod: '7days' })).out);
    const file = readFileSync(fileOf(id), 'utf8');
    const stranger = await askFor({ sessionId: id }, { REMOTE_ADDR: '192.0.2.7' });
    assert.match(idOf(stranger.out), /^\d{1,20}$/);
    assert.notEqual(idOf(stranger.out), id);
    assert.match(stranger.out, /Your session has ended; a new one was started\./);
    assert.equal(readFileSync(fileOf(id), 'utf8'), file);
});

test('signing out ends the session', async () => {
    const id = idOf((await askFor({})).out);
    assert.ok(existsSync(fileOf(id)));
    const { code, out } = await askFor({ pagename: 'manager.logout', sessionId: id });
    assert.equal(code, 0);
    assert.match(out, /<meta http-equiv=refresh content="0;url= logout\.cgi"/);
    assert.ok(!existsSync(fileOf(id)));
});
