// directoryd in front of OpenLDAP's command line tools, and of clients that misbehave.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import net from 'node:net';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { entries, ours, run, runBeside, start, temporaryFolder, write } from './peers.mjs';

const address = '127.0.0.21';
const folder = temporaryFolder();
const gatewayGuid = '11111111-2222-4333-8444-555555555555';
const ldif = `version: 1
# comments, folded lines and coded values are read

dn: cn=Modules
objectclass: Container

dn: cn=Gateway A,cn=Modules
objectclass: Module
ipAddress: 10.0.0.9
ports: 30
GUID: ${gatewayGuid}

dn: cn=SIP 1,cn=Gateway A,cn=Modules
objectclass: Trunk
description: Public net
 work
_note: kept

dn: cn=Gateway B,cn=Modules
objectclass: Module
ipAddress: 10.0.0.10
ports: 4

dn:: Y249WsO8cmljaA==
objectclass: City
text: a*b(c)\\d
`;
const file = write(join(folder, 'directory.ldif'), ldif);
const arguments_ = ['--listen', address, '--user', 'cn=Manager', '--password', 'secret', '--ldif', file];
const account = ['-x', '-H', `ldap://${address}:4000`, '-D', 'cn=manager', '-w', 'secret'];

let server;
const begin = async () => {
  server = await start(ours('directoryd'), arguments_, (text) => text.includes('listening on'));
};
before(begin);
after(async () => assert.equal(await server.stop(), 0, server.output));

function search(version, ...rest) {
  const done = run('ldapsearch', ['-P', version, ...account, '-LLL', '-o', 'ldif-wrap=no', ...rest]);
  return { ...done, entries: entries(done.out), names: entries(done.out).map((e) => e[0][1]) };
}

function change(version, lines) {
  return run('ldapmodify', ['-P', version, ...account], lines.join('\n') + '\n').code;
}

const valueOf = (entry, name) => entry.find(([n]) => n === name)?.[1];

for (const version of ['2', '3']) {
  describe(`version ${version}`, () => {
    test('scopes and bases', () => {
      const a = 'cn=Gateway A,cn=Modules';
      const sip = 'cn=SIP 1,cn=Gateway A,cn=Modules';
      const b = 'cn=Gateway B,cn=Modules';
      for (const [base, scope, names] of [
        ['', 'sub', ['cn=Modules', a, sip, b, 'cn=Zürich']],
        ['', 'one', ['cn=Modules', 'cn=Zürich']],
        ['', 'base', []],
        ['CN=modules', 'base', ['cn=Modules']],
        ['cn=Modules', 'one', [a, b]],
        [`GUID=${gatewayGuid}`, 'sub', [a, sip]],
        [`cn=sip 1, guid=${gatewayGuid.toUpperCase()}`, 'base', [sip]],
      ])
        assert.deepEqual(search(version, '-b', base, '-s', scope).names, names, `${base} ${scope}`);
      assert.equal(search(version, '-b', 'cn=Nowhere').code, 32);
      assert.equal(search(version, '-b', '', '-z', '2').code, 4);
    });

    test('filters', () => {
      for (const [filter, cns] of [
        ['(cn=*)', 'Modules,Gateway A,SIP 1,Gateway B,Zürich'],
        ['(cn=gateway a)', 'Gateway A'],
        ['(cn=g*)', 'Gateway A,Gateway B'],
        ['(cn=*b)', 'Gateway B'],
        ['(cn=*ew*y*)', 'Gateway A,Gateway B'],
        ['(cn=g*w*w*)', ''],
        ['(cn=SIP 1*SIP 1)', ''],
        ['(ports>=5)', 'Gateway A'],
        ['(ports<=30)', 'Gateway A,Gateway B'],
        ['(cn>=sip)', 'SIP 1,Zürich'],
        ['(&(objectclass=module)(!(ports=4)))', 'Gateway A'],
        ['(|(cn=SIP 1)(&(cn=m*)(cn=*s)))', 'Modules,SIP 1'],
        ['(!(objectclass=Module))', 'Modules,SIP 1,Zürich'],
        ['(text=a\\2ab\\28c\\29\\5cd)', 'Zürich'],
        ['(text=*\\2a*)', 'Zürich'],
        ['(cn~=SIP 1)', 'SIP 1'],
        ['(cn:caseExactMatch:=SIP 1)', ''],
        [`(GUID=${gatewayGuid})`, 'Gateway A'],
      ]) {
        const found = search(version, '-b', '', filter, 'cn').entries.map((e) => valueOf(e, 'cn'));
        assert.equal(found.join(), cns, filter);
      }
    });

    test('attributes asked for are answered as spelled, and one at least', () => {
      const one = (...names) => search(version, '-b', 'cn=Gateway A,cn=Modules', '-s', 'base', '(cn=*)', ...names).entries[0].slice(1);
      assert.deepEqual(one('IPADDRESS', 'none'), [['IPADDRESS', '10.0.0.9']]);
      assert.deepEqual(one('none'), [['GUID', gatewayGuid]]);
      assert.deepEqual(one('*', 'cn').length, 5);
      assert.deepEqual(one('-A', 'ports'), [['ports', '']]);
    });

    test('an entry is added, changed, renamed, moved through and deleted', () => {
      const dn = 'cn=New\\, one,cn=Gateway B,cn=Modules';
      assert.equal(change(version, [`dn: ${dn}`, 'changetype: add', 'objectclass: Trunk', '_x: 1']), 0);
      const [added] = search(version, '-b', dn).entries;
      assert.equal(valueOf(added, 'cn'), 'New, one');
      const guid = valueOf(added, 'GUID');
      assert.match(guid, /^[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$/);

      const modify = (...lines) => change(version, [`dn: GUID=${guid}`, 'changetype: modify', ...lines]);
      assert.equal(modify('replace: _x', '_x: 2', '-', 'add: bin', 'bin:: AAEC/w==', '-', 'replace: mail', 'mail:'), 0);
      assert.equal(modify('delete: _x', '_x: 1'), 16);
      assert.equal(modify('delete: _x', '-', 'add: bin', 'bin: again'), 20);
      assert.equal(modify('replace: _x', '_x: 1', '_x: 2'), 19);
      assert.equal(modify('replace: GUID', 'GUID: mine'), 19);
      assert.equal(modify('replace: cn', 'cn: mine'), 67);
      const after_ = search(version, '-b', `GUID=${guid}`).entries[0];
      assert.equal(valueOf(after_, '_x'), '2', 'all changes or none');
      assert.equal(valueOf(after_, 'mail'), '');
      assert.match(run('ldapsearch', [...account, '-LLL', '-b', `GUID=${guid}`, 'bin']).out, /^bin:: AAEC\/w==$/m);

      const rename = (from, to) => run('ldapmodrdn', ['-P', version, ...account, from, to]).code;
      assert.equal(rename(`GUID=${guid}`, 'cn=Second'), 0);
      assert.equal(rename('cn=Gateway B,cn=Modules', 'cn=Gateway A'), 68);
      assert.equal(rename('cn=Gateway B,cn=Modules', 'ou=Gateway B'), 64);
      assert.equal(rename('cn=Gateway B,cn=Modules', 'cn=Gateway, C'), 0);
      assert.deepEqual(search(version, '-b', `GUID=${guid}`).names, ['cn=Second,cn=Gateway\\, C,cn=Modules']);
      assert.equal(valueOf(search(version, '-b', `GUID=${guid}`).entries[0], 'cn'), 'Second');
      assert.equal(rename('cn=Gateway\\, C,cn=Modules', 'cn=Gateway B'), 0);

      const remove = (name) => run('ldapdelete', ['-P', version, ...account, name]).code;
      assert.equal(remove('cn=Gateway B,cn=Modules'), 66);
      assert.equal(remove(`GUID=${guid}`), 0);
      assert.equal(remove(`GUID=${guid}`), 32);
    });

    test('what cannot be added', () => {
      const add = (dn, ...lines) => change(version, [`dn: ${dn}`, 'changetype: add', 'objectclass: X', ...lines]);
      assert.equal(add('cn=Modules'), 68);
      assert.equal(add('cn=a,cn=Nowhere'), 32);
      assert.equal(add('nonsense'), 34);
      assert.equal(add('cn=a', `GUID: ${gatewayGuid}`), 19);
      assert.equal(add('cn=a', 'x: 1', 'x: 2'), 19);
      assert.equal(add('cn=a', `x: ${'y'.repeat(60000)}`), 11);
      assert.equal(add(Array.from({ length: 17 }, (_, i) => `cn=${i}`).join()), 32);
    });

    test('who may sign in', () => {
      const as = (...who) => run('ldapsearch', ['-P', version, '-x', '-H', `ldap://${address}:4000`, ...who, '-b', '']).code;
      assert.equal(as('-D', 'cn=Manager', '-w', 'wrong'), 49);
      assert.equal(as('-D', 'cn=Nobody', '-w', 'secret'), 49);
      assert.equal(as(), 49);
    });
  });
}

test('controls and operations that are not known', () => {
  assert.equal(search('3', '-b', '', '-E', 'pr=2/noprompt').code, 0);
  assert.equal(search('3', '-b', '', '-MM').code, 12);
  assert.equal(run('ldapwhoami', account).code, 1);
  assert.equal(run('ldapcompare', [...account, 'cn=Modules', 'cn:Modules']).code, 2);
  assert.notEqual(run('ldapsearch', ['-x', '-ZZ', '-H', `ldap://${address}:4000`, '-b', '']).code, 0);
});

// Sends bytes on a connection of their own, waits for its end or for `answers` bytes.
function send(bytes, answers = Infinity) {
  return new Promise((resolve) => {
    const socket = net.connect(4000, address, () => socket.end(bytes));
    let got = Buffer.alloc(0);
    socket.on('data', (chunk) => {
      got = Buffer.concat([got, chunk]);
      if (got.length >= answers) socket.destroy();
    });
    socket.on('error', () => {});
    socket.on('close', () => resolve(got));
  });
}

const hex = (text) => Buffer.from(text.replace(/\s/g, ''), 'hex');
const bind = hex(`30 1c 02 01 01 60 17 02 01 02 04 0a ${Buffer.from('cn=Manager').toString('hex')} 80 06 ${Buffer.from('secret').toString('hex')}`);
const searchAll = hex('30 25 02 01 02 63 20 04 00 0a 01 02 0a 01 00 02 01 00 02 01 00 01 01 00 a2 0b a3 09 04 02 63 6e 04 03 61 62 63 30 00');
const addEntry = hex('30 1a 02 01 03 68 15 04 04 63 6e 3d 71 30 0d 30 0b 04 05 63 6c 61 73 73 31 02 04 00');

test('requests cut short or spoiled at any byte harm nobody else', async () => {
  assert.ok((await send(Buffer.concat([bind, searchAll]))).includes('Gateway A'));
  const whole = Buffer.concat([bind, searchAll, addEntry]);
  for (let size = 0; size < whole.length; size++) await send(whole.subarray(0, size));
  for (let at = 0; at < whole.length; at++)
    for (const value of [0x00, 0x7f, 0x80, 0x84, 0xff, whole[at] ^ 0x20]) {
      const spoiled = Buffer.from(whole);
      spoiled[at] = value;
      await send(spoiled, 1 << 16);
    }
  assert.equal(search('2', '-b', 'cn=Gateway A,cn=Modules', '-s', 'base').names.length, 1);
});

test('filters nested too deep are refused', async () => {
  const nested = (levels) => {
    let filter = hex('87 02 63 6e');
    for (let i = 0; i < levels; i++)
      filter = Buffer.concat([hex('a2 82'), Buffer.from([filter.length >> 8, filter.length & 255]), filter]);
    const rest = Buffer.concat([hex('04 00 0a 01 02 0a 01 00 02 01 00 02 01 00 01 01 00'), filter, hex('30 00')]);
    const size = (n) => Buffer.from([0x82, n >> 8, n & 255]);
    const operation = Buffer.concat([hex('02 01 02 63'), size(rest.length), rest]);
    return Buffer.concat([bind, hex('30'), size(operation.length), operation]);
  };
  assert.ok((await send(nested(98))).includes('Gateway'));
  for (const levels of [100, 10000]) {
    const answer = await send(nested(levels));
    assert.ok(answer.includes(hex('65')) && answer.includes('not understood'), `${levels}`);
  }
});

test('nobody waits for a client that dawdles', async () => {
  const connect = () => new Promise((resolve) => {
    const socket = net.connect(4000, address, () => resolve(socket));
  });
  const half = await connect();
  half.write(bind.subarray(0, 10));
  // Nothing is read before there is a listener for it.
  const deaf = await connect();
  deaf.write(Buffer.concat([bind, ...Array(20000).fill(searchAll)]));
  for (let i = 0; i < 5; i++) {
    const other = await runBeside('ldapsearch', [...account, '-b', 'cn=Modules', '-s', 'base']);
    assert.equal(other.code, 0);
  }
  // The answers that waited come once they are read, each search's with a result at its end.
  const result = hex('30 0c 02 01 02 65 07 0a 01 00 04 00 04 00');
  let results = 0;
  let rest = Buffer.alloc(0);
  for await (const chunk of deaf) {
    rest = Buffer.concat([rest, chunk]);
    let from = 0;
    for (let at; (at = rest.indexOf(result, from)) >= 0; from = at + result.length) results++;
    rest = rest.subarray(Math.max(from, rest.length - result.length + 1));
    if (results === 20000) break;
  }
  half.destroy();
  assert.equal(results, 20000);
});

test('SIGHUP and SIGTERM write the directory, and the next server reads it', async () => {
  change('3', ['dn: cn=Blanks', 'changetype: add', 'objectclass: X', 'text::  IHggCnk=']);
  const before_ = search('3', '-b', '').out;
  const written = server.output.length;
  server.child.kill('SIGHUP');
  while (!server.output.slice(written).includes('wrote')) await new Promise((r) => setTimeout(r, 10));
  assert.match(readFileSync(file, 'utf8'), /^text:: IHggCnk=$/m);
  assert.deepEqual(readdirSync(folder), ['directory.ldif']);
  assert.equal(await server.stop(), 0, server.output);
  await begin();
  assert.equal(search('3', '-b', '').out, before_);
});

test('a start that cannot be', async () => {
  const tried = (text) => run(ours('directoryd'), [...arguments_.slice(0, -1), text === null ? join(folder, 'none') : write(join(folder, 'bad.ldif'), text)]);
  for (const [text, message] of [
    [null, 'No such file'],
    ['dn: cn=a,cn=b\nx: 1\n', 'line 1: cn=a,cn=b cannot be added: result 32'],
    ['dn: cn=a\nx: 1\nX: 2\n', 'result 19'],
    ['\nobjectclass: X\n', 'line 2: an entry begins with "dn:"'],
    ['dn: cn=a\nnonsense\n', 'line 2: no ":"'],
    ['dn: cn=a\nx:: !!\n', 'line 2: not base64'],
  ]) {
    const done = tried(text);
    assert.equal(done.code, 1);
    assert.ok(done.err.includes(message), done.err);
  }
  const second = run(ours('directoryd'), arguments_);
  assert.equal(second.code, 1);
  assert.match(second.err, /cannot listen on 127\.0\.0\.21 port 4000/);
  assert.equal(run(ours('directoryd'), ['--user', 'cn=x']).code, 2);
});
