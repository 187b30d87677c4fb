// The criteria that are chosen from the directory, and what becomes of the form without a directory.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, rmSync, writeFileSync } from 'node:fs';
import net from 'node:net';
import { join } from 'node:path';
import test, { after, before } from 'node:test';
import { textOf } from '../figures/report.mjs';
import { account, env, get, makeRoot, runCgi, sql } from './portal.mjs';

const kReport = 'test.directory';
// The report of this name also asks for a prefix.
const kPrefixReport = 'trunk2trunk';
// No customer's mirror of the trunks has this one, and the group's name means harm.
const kGroup = 'Zoë & "Sons" <b>\'s group';
const kEntries = `dn: cn=Unlisted,cn=Gateway A,cn=Modules
objectclass: Trunk

dn:: ${Buffer.from(`cn=${kGroup},cn=TrunkGroups`).toString('base64')}
objectclass: TrunkGroup
`;

// OpenLDAP's client, as the portal.
function ldap(program, args, input = '') {
    execFileSync(program, ['-x', '-H', `ldap://${env.LDAP_SERVER}:4000`, '-D', env.LDAP_USER,
        '-w', env.LDAP_PASSWORD, ...args], { input, stdio: ['pipe', 'pipe', 'pipe'] });
}

function removeAll() {
    sql(`DELETE FROM CallReport WHERE pagename = '${kReport}'`);
    ldap('ldapdelete', ['-c'], `cn=Unlisted,cn=Gateway A,cn=Modules\ncn=${kGroup},cn=TrunkGroups\n`);
}

before(() => {
    ldap('ldapadd', [], kEntries);
    sql(`INSERT INTO CallReport (pagename, name, category, hidden, opt_trunkgroup, opt_trunk, SQLQuery, reportFile)
        SELECT '${kReport}', 'Trunks', 1, 1, 1, 1, SQLQuery, reportFile FROM CallReport WHERE pagename = 'callsbyday'`);
});
after(removeAll);

const formOf = (more = {}, options = {}) => get({ pagename: 'callreport', report: kReport, ...more }, options);

// The choices of a drop-down list as [value, caption, selected], or null without one.
function choices(html, name) {
    const list = html.match(new RegExp(`<select name="${name}".*?</select>`, 's'))?.[0];
    return list ? [...list.matchAll(/<option([^>]*?) ?value="([^"]*)">(.*?)<\/option>/gs)]
        .map(([, selected, value, caption]) => [textOf(value), textOf(caption), selected.includes('selected')]) : null;
}

test('trunk groups, trunks and prefixes come from the directory, in the order of their names', async () => {
    const { text } = await formOf();
    assert.deepEqual(choices(text, 'trunkgroup').map(([value, caption]) => [value, caption]), [
        ['', 'All trunk groups'], ['Public network', 'Public network'], ['Tie lines', 'Tie lines'], [kGroup, kGroup]]);
    assert.deepEqual(choices(text, 'trunk').map(([value]) => value), ['',
        ...sql("SELECT dn FROM LDAPTrunks WHERE customerId = 1 ORDER BY dn").map(({ dn }) => dn)]);
    assert.deepEqual(choices(text, 'trunk')[1], ['cn=ISDN 1,cn=Gateway B,cn=Modules', 'ISDN 1', false]);
    assert.equal(choices(text, 'extra'), null);
    const prefixes = choices((await formOf({ report: kPrefixReport })).text, 'extra');
    assert.deepEqual(prefixes.map(([value]) => value), ['', '00', '01', '020', '07', '08']);
});

test('what was chosen stays chosen, and what the directory does not have is not offered', async () => {
    const chosen = (html) => choices(html, 'trunkgroup').filter(([, , selected]) => selected).map(([value]) => value);
    for (const value of ['Tie lines', kGroup]) {
        const body = { pagename: 'callreport', report: kReport, trunkgroup: value, submit: 'Generate Report',
            startDate: 'never' };
        assert.deepEqual(chosen((await get({}, { body })).text), [value]);
    }
    const { text } = await formOf({ trunkgroup: '"><script>alert(1)</script>' });
    assert.deepEqual(chosen(text), []);
    assert.ok(!text.includes('<script>alert'));
});

// Starts the program with other settings of the directory, as the manager; `settings` by name, null to
// leave one out.
async function withSettings(settings, query) {
    const root = makeRoot();
    try {
        const file = join(root, 'Norvane/config/Lumora.cfg');
        const lines = readFileSync(file, 'utf8').split('\n').filter((line) => !(line.split('=')[0] in settings));
        const more = Object.entries(settings).filter(([, value]) => value !== null).map(([name, value]) => `${name}=${value}`);
        writeFileSync(file, [...more, ...lines].join('\n'));
        return await runCgi({ LUMORA_ROOT: root, REMOTE_USER: account('manager').name, REQUEST_METHOD: 'GET',
            QUERY_STRING: String(new URLSearchParams({ pagename: 'callreport', report: kReport, ...query })) });
    } finally {
        rmSync(root, { recursive: true });
    }
}

function assertUsableWithoutDirectory({ code, out, err }, reason) {
    assert.equal(code, 0);
    assert.ok(!/<select name="trunk/.test(out));
    assert.equal(out.match(/the directory cannot be read/g)?.length, 2);
    assert.ok(choices(out, 'reportPeriod').length > 10);
    assert.match(out, /id="generate_button"/);
    assert.equal(err.split(reason).length - 1, 1, `asked once: ${err}`);
    assert.ok(!out.includes(env.LDAP_PASSWORD) && !err.includes(env.LDAP_PASSWORD));
}

// A directory of another address: `answer(socket)` is called with each connection. Resolves to the
// number of connections there were while `use()` ran.
async function withServer(address, answer, use) {
    let connections = 0;
    const sockets = [];
    const server = net.createServer((socket) => {
        connections++;
        sockets.push(socket.on('error', () => {}));
        answer(socket);
    });
    await new Promise((resolve, reject) => server.on('error', reject).listen(4000, address, resolve));
    try {
        await use();
    } finally {
        sockets.forEach((socket) => socket.destroy());
        server.close();
    }
    return connections;
}

test('without its directory the form says so and can be used', async () => {
    const down = await withSettings({ ldapserver: '127.0.0.90' });
    assertUsableWithoutDirectory(down, 'LDAPSession Failed to connect to server=127.0.0.90');
    const refused = await withSettings({ ldappassword: 'wrong' });
    assertUsableWithoutDirectory(refused, 'LDAPSession Failed to authenticate');
    const run = (more) => withSettings({ ldapserver: '127.0.0.90' },
        { submit: 'Generate Report', reportPeriod: '90days', wait: '1', ...more });
    assert.match((await run()).out, /class="reportHeader"/);
    // Which trunks a group has is known to the directory alone: better no figures than those of all.
    assert.match((await run({ trunkgroup: 'Tie lines' })).out, /The trunks of the group cannot be found/);
});

test('a directory that accepts and never answers is asked once', async () => {
    let page;
    const connections = await withServer('127.0.0.91', () => {}, async () => {
        page = await withSettings({ ldapserver: '127.0.0.91' });
    });
    assert.equal(connections, 1);
    assertUsableWithoutDirectory(page, 'LDAPSession Failed to authenticate');
});

test('a directory that ends in the middle of its answers leaves no half a list', async () => {
    const bound = Buffer.from('300c02010161070a010004000400', 'hex');
    // The entry cn=x with the name "Half", whole, and then nothing more.
    const entry = Buffer.from('301b02010264160404636e3d78300e300c0402636e3106040448616c66', 'hex');
    let page;
    await withServer('127.0.0.92', (socket) => {
        socket.once('data', () => {
            socket.write(bound);
            socket.once('data', () => socket.end(entry));
        });
    }, async () => {
        page = await withSettings({ ldapserver: '127.0.0.92' });
    });
    assertUsableWithoutDirectory(page, 'SearchDirectory: result 81 for (objectclass=TrunkGroup)');
    assert.ok(!page.out.includes('Half'));
});

test('the browser cannot send the portal to another directory', async () => {
    const connections = await withServer('127.0.0.93', () => {}, async () => {
        const query = { ldapserver: '127.0.0.93', ldapuser: 'cn=mallory', ldappassword: 'x' };
        assert.equal(choices((await formOf(query)).text, 'trunkgroup').length, 4);
        // Without the settings the customer's own directory counts, not the request's.
        await withSettings({ ldapserver: null, ldapuser: null, ldappassword: null }, query);
    });
    assert.equal(connections, 0);
});
