// Our directory client in front of OpenLDAP's server, and beside OpenLDAP's client.
import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import net from 'node:net';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { accepts, entries, ours, run, runBeside, start, temporaryFolder, write } from './peers.mjs';

const address = '127.0.0.22';
const manager = 'cn=Manager,o=demo';
const folder = temporaryFolder();
const many = 3000;

const config = `include /etc/ldap/schema/core.schema
modulepath /usr/lib/ldap
moduleload back_mdb
pidfile ${folder}/slapd.pid
allow bind_v2
sizelimit unlimited
database mdb
maxsize 67108864
suffix "o=demo"
rootdn "${manager}"
rootpw secret
directory ${folder}/db
`;

const role = (cn, ...lines) => [`dn: cn=${cn},o=demo`, 'objectClass: organizationalRole', `cn: ${cn}`, ...lines, ''].join('\n');
const people = [
  'dn: o=demo\nobjectClass: organization\no: demo\n',
  role('adam', 'description: first', 'telephoneNumber: 2001'),
  role('Beth', 'description: a*b(c)\\d', 'telephoneNumber: 2010'),
  role('Zoë', 'description: two', 'description: values', 'telephoneNumber: 300'),
  'dn: ou=crowd,o=demo\nobjectClass: organizationalUnit\nou: crowd\n',
  ...Array.from({ length: many }, (_, i) =>
    `dn: cn=member ${i},ou=crowd,o=demo\nobjectClass: organizationalRole\ncn: member ${i}\ndescription: ${'x'.repeat(i % 300 + 1)}\n`),
].join('\n');

let slapd;
before(async () => {
  mkdirSync(join(folder, 'db'));
  const file = write(join(folder, 'slapd.conf'), config);
  const load = run('slapadd', ['-q', '-f', file, '-l', write(join(folder, 'people.ldif'), people)]);
  assert.equal(load.code, 0, load.err);
  slapd = await start('slapd', ['-f', file, '-h', `ldap://${address}:4000`, '-d', 'stats'],
    (text) => text.includes('slapd starting'));
  await accepts(4000, address);
});
after(() => slapd.stop());

// Runs commands in one session of our client; answers what it printed, a value a line.
function session(commands, { user = manager, password = 'secret' } = {}) {
  const done = run(ours('peer_ldapclient'), [address, user, password], commands.map((c) => c.join('\t')).join('\n') + '\n');
  return Object.assign(done.out.trim().split('\n').filter(Boolean).map((line) => JSON.parse(line)), { err: done.err });
}

const search = (base, scope, filter, sort, ...attributes) => ['search', base, scope, filter, sort, ...attributes];
const valuesOf = (answer, name) => answer.rows.map((row) => row.find(([n]) => n === name)?.[1]);
const account = ['-x', '-H', `ldap://${address}:4000`, '-D', manager, '-w', 'secret', '-LLL', '-o', 'ldif-wrap=no'];

test('entries come with their name first, and sort', () => {
  const [byName, byNumber, one, nothing, nowhere] = session([
    search('o=demo', 1, '(cn=*)', '+$cn', 'cn', 'telephoneNumber'),
    search('o=demo', 1, '(telephoneNumber=*)', 'telephoneNumber', 'telephoneNumber'),
    search('cn=Beth,o=demo', 0, '(objectClass=*)', ''),
    search('o=demo', 2, '(cn=nobody)', ''),
    search('o=other', 2, '(cn=*)', ''),
  ]);
  assert.deepEqual(byName.rows[1], [['dn', 'cn=Beth,o=demo'], ['cn', 'Beth'], ['telephoneNumber', '2010']]);
  assert.deepEqual(valuesOf(byName, 'cn'), ['adam', 'Beth', 'Zoë']);
  assert.deepEqual(valuesOf(byNumber, 'telephoneNumber'), ['2010', '2001', '300']);
  assert.equal(valuesOf(one, 'description')[0], 'a*b(c)\\d');
  assert.deepEqual([nothing.res, nothing.rows], [0, []]);
  assert.equal(nowhere.res, 32);
});

test('of several values the first counts, and the next attribute is read all the same', () => {
  const answers = session([search('cn=Zoë,o=demo', 0, '(objectClass=*)', '', 'description', 'telephoneNumber')]);
  assert.deepEqual(answers[0].rows[0].slice(1), [['description', 'two'], ['telephoneNumber', '300']]);
  assert.match(answers.err, /LDAPSearchRes_rx: msg format error 2/);
});

test('filters find what ldapsearch finds', () => {
  const filters = ['(cn=adam)', '(cn=*a*)', '(cn=b*)', '(cn=*H)', '(cn=m*r*9)', '(description=a\\2ab\\28c\\29\\5cd)',
    '(&(cn=*)(!(telephoneNumber=*))(description=x))', '(|(cn=adam)(cn=zoë))', '(telephoneNumber=2*)',
    '(!(cn=member*))', '(cn=*)', '(nosuch=*)', '(cn>=x)'];
  // Each entry has the attribute asked for: one without attributes would end our reading.
  const answers = session(filters.map((filter) => search('o=demo', 2, filter, '', 'objectClass')));
  filters.forEach((filter, i) => {
    const theirs = run('ldapsearch', [...account, '-b', 'o=demo', filter, '1.1']);
    assert.equal(answers[i].res, theirs.code, filter);
    assert.deepEqual(valuesOf(answers[i], 'dn'), entries(theirs.out).map((e) => e[0][1]), filter);
  });
});

test('thousands of entries arrive, and a search given up leaves the session in step', () => {
  const [all, , after_, found] = session([
    search('ou=crowd,o=demo', 1, '(cn=*)', '', 'cn'),
    ['first', 'ou=crowd,o=demo', 1, '(cn=*)'],
    ['modify', 'dn=cn=adam,o=demo', 'description=changed'],
    search('o=demo', 1, '(description=changed)', '', 'cn'),
  ]);
  assert.equal(all.rows.length, many);
  assert.equal(after_.res, 0);
  assert.deepEqual(valuesOf(found, 'cn'), ['adam']);
});

test('rows are added, changed, renamed and deleted as ldapsearch sees it', () => {
  const see = (dn) => run('ldapsearch', [...account, '-s', 'base', '-b', dn]);
  const dn = 'cn=New,o=demo';
  assert.deepEqual(session([
    ['add', `dn=${dn}`, 'objectclass=organizationalRole', 'telephoneNumber=1', '_note=never sent', 'cn=not sent'],
    ['add', `dn=${dn}`, 'objectclass=organizationalRole'],
    ['modify', `dn=${dn}`, 'telephoneNumber=22', 'description=süß', '_x=not', 'x=not'],
    ['modify', `dn=${dn}`, '_only=companions'],
    ['modify', 'dn=cn=None,o=demo', 'description=x'],
  ]).map((a) => a.res), [0, 68, 0, 0, 32]);
  const [entry] = entries(see(dn).out);
  assert.deepEqual(entry.slice(1), [['objectClass', 'organizationalRole'], ['cn', 'New'], ['telephoneNumber', '22'], ['description', 'süß']]);
  assert.deepEqual(session([
    ['modrdn', dn, 'cn=Newer'],
    ['rename', 'GUID=1234', `dn=${dn}`, 'cn=x'],  // this server knows no such names
    ['delete', 'dn=cn=Newer,o=demo'],
    ['delete', 'dn=cn=Newer,o=demo'],
  ]).map((a) => a.res), [0, 34, 0, 32]);
  assert.equal(see('cn=Newer,o=demo').code, 32);
});

test('a refused sign-in and a server that is not there say so', () => {
  const [refused] = session([], { password: 'wrong' });
  assert.equal(refused.error, `LDAPSession Failed to authenticate with server=${address} user=${manager}\n`);
  const gone = run(ours('peer_ldapclient'), ['127.0.0.23', manager, 'secret']);
  assert.deepEqual(JSON.parse(gone.out), { error: `LDAPSession Failed to connect to server=127.0.0.23 user=${manager}\n` });
});

// Answers everything with success and keeps what it got.
async function record(talk) {
  const got = [];
  const server = net.createServer((socket) => {
    let bytes = Buffer.alloc(0);
    socket.on('data', (chunk) => {
      bytes = Buffer.concat([bytes, chunk]);
      while (bytes.length >= 2 && bytes.length >= 2 + bytes[1]) {
        const message = bytes.subarray(0, 2 + bytes[1]);
        bytes = bytes.subarray(message.length);
        got.push(message.toString('hex'));
        const operation = message[5];
        const response = operation === 0x4a ? 0x6b : operation + (operation === 0x63 ? 2 : 1);
        if (operation !== 0x42)
          socket.write(Buffer.from([0x30, 12, 2, 1, message[4], response, 7, 10, 1, 0, 4, 0, 4, 0]));
      }
    });
    socket.on('error', () => {});
  });
  await new Promise((resolve) => server.listen(4000, '127.0.0.24', resolve));
  await talk();
  await new Promise((resolve) => server.close(resolve));
  return got;
}

describe('on the wire our client and version 2 of theirs are the same, byte for byte', () => {
  const theirs = (program, args, input) => record(() =>
    runBeside(program, ['-P', '2', '-x', '-H', 'ldap://127.0.0.24:4000', '-D', 'cn=x', '-w', 'pw', ...args], input));
  const oursDoes = (...command) => record(() =>
    runBeside(ours('peer_ldapclient'), ['127.0.0.24', 'cn=x', 'pw'], command.join('\t') + '\n'));

  test('searches', async () => {
    for (const filter of ['(cn=*)', '(cn=ab)', '(cn=a*b*c)', '(cn=*ab)', '(cn=ab*)', '(cn=*a*)', '(cn>=5)', '(cn<=5)',
      '(x=\\2A)', '(cn=\\00x)', '(&(a=1)(b=2))', '(|(a=1)(!(b=2))(&(c=*)(d=e*)))']) {
      const bytes = await theirs('ldapsearch', ['-b', 'cn=Modules', filter, 'cn', 'GUID']);
      assert.equal(bytes.length, 3);
      assert.deepEqual(await oursDoes('search', 'cn=Modules', 2, filter, '', 'cn', 'GUID'), bytes, filter);
    }
  });

  test('changes', async () => {
    assert.deepEqual(await oursDoes('modify', 'dn=cn=a', 'mail=x@y', 'sn=z'),
      await theirs('ldapmodify', [], 'dn: cn=a\nchangetype: modify\nreplace: mail\nmail: x@y\n-\nreplace: sn\nsn: z\n'));
    assert.deepEqual(await oursDoes('add', 'dn=cn=a', 'objectclass=X', 'mail=x@y'),
      await theirs('ldapmodify', [], 'dn: cn=a\nchangetype: add\nobjectclass: X\nmail: x@y\n'));
    assert.deepEqual(await oursDoes('delete', 'dn=cn=a,cn=b'), await theirs('ldapdelete', ['cn=a,cn=b']));
    assert.deepEqual(await oursDoes('modrdn', 'cn=a,cn=b', 'cn=c'), await theirs('ldapmodrdn', ['cn=a,cn=b', 'cn=c']));
  });
});
