// Our TLS sockets in front of OpenSSL's command line programs, both ways.
import assert from 'node:assert/strict';
import net from 'node:net';
import { join } from 'node:path';
import { before, describe, test } from 'node:test';
import { ours, run, runBeside, start, temporaryFolder } from './peers.mjs';

const folder = temporaryFolder();
const file = (name) => join(folder, name);
const certificate = (name) => [file(`${name}.crt`), file(`${name}.key`)];

before(() => {
  const openssl = (...args) => {
    const done = run('openssl', args);
    assert.equal(done.code, 0, done.err);
  };
  for (const name of ['good', 'stranger', 'expired']) {
    openssl('req', '-new', '-newkey', 'rsa:2048', '-nodes', '-subj', `/CN=${name}`, '-keyout', file(`${name}.key`), '-out', file('request'));
    openssl('x509', '-req', '-in', file('request'), '-signkey', file(`${name}.key`), '-days', name === 'expired' ? '-1' : '2', '-out', file(`${name}.crt`));
  }
  assert.equal(run('openssl', ['x509', '-in', file('expired.crt'), '-noout', '-checkend', '0']).code, 1, 'the expired certificate is not');
});

// OpenSSL's server, which answers each line backwards.
async function theirServer(name, ...options) {
  const [cert, key] = certificate(name);
  const listens = /^ACCEPT 127\.0\.0\.1:(\d+)$/m;
  const server = await start('openssl', ['s_server', '-accept', '127.0.0.1:0', '-cert', cert, '-key', key, '-rev', ...options],
    (text) => listens.test(text));
  return Object.assign(server, { port: Number(listens.exec(server.output)[1]) });
}

async function ask(port, word = 'lumora', name = 'good', trusted = 'good') {
  const done = await runBeside(ours('peer_tls'), ['client', String(port), ...certificate(name), file(`${trusted}.crt`), word]);
  return { lines: done.out.trim().split('\n'), err: done.err };
}

describe('our client', () => {
  for (const version of ['tls1_2', 'tls1_3'])
    for (const name of ['good', 'stranger', 'expired'])
      test(`speaks ${version} with a server whose certificate is ${name}`, async () => {
        const server = await theirServer(name, `-${version}`);
        assert.deepEqual((await ask(server.port)).lines, ['aromul', 'done']);
        await server.stop();
      });

  test('is refused by a server that knows none of its ciphers', async () => {
    const server = await theirServer('good', '-tls1_2', '-cipher', 'CAMELLIA256-SHA');
    const { lines, err } = await ask(server.port);
    assert.deepEqual(lines, ['refused']);
    assert.match(err, /SSL error [0-9a-f]+ \(error:/);
    await server.stop();
  });

  // A relay that lets only so many of the server's bytes pass, and then closes, or says no more.
  async function relay(port, limit, closes) {
    let passed = 0;
    const server = net.createServer((near) => {
      const far = net.connect(port, '127.0.0.1');
      near.pipe(far);
      far.on('data', (chunk) => {
        const part = chunk.subarray(0, Math.max(0, limit - passed));
        passed += chunk.length;
        near.write(part);
        if (passed > limit && closes) near.end();
      });
      for (const socket of [near, far]) socket.on('error', () => {});
      near.on('close', () => far.destroy());
      far.on('end', () => passed <= limit && near.end());
    });
    await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
    return { port: server.address().port, passed: () => passed, close: () => server.close() };
  }

  for (const version of ['tls1_2', 'tls1_3'])
    test(`tells a ${version} peer that stops in mid record from one that breaks off`, async () => {
      const server = await theirServer('good', `-${version}`);
      const word = 'x'.repeat(2000);
      const whole = await relay(server.port, Infinity, false);
      assert.equal((await ask(whole.port, word)).lines[1], 'done');
      // The answer's record is the last, but for the close of a few bytes.
      const enough = whole.passed() - 1000;

      const cut = await relay(server.port, enough, true);
      const broken = await ask(cut.port, word);
      assert.deepEqual(broken.lines, ['broken']);
      assert.match(broken.err, /SSL_read error SYSCALL - EOF/);

      const stopped = await relay(server.port, enough, false);
      const silent = await ask(stopped.port, word);
      assert.deepEqual(silent.lines, ['silent']);
      assert.match(silent.err, /SSL_read WANT_READ/);

      for (const each of [whole, cut, stopped]) each.close();
      await server.stop();
    });
});

describe('our server', () => {
  // Our server for one connection.
  async function ourServer(name) {
    const server = await start(ours('peer_tls'), ['server', ...certificate(name), file('good.crt')], (text) => /^\d+\n/m.test(text));
    server.address = `127.0.0.1:${/^(\d+)\n/m.exec(server.output)[1]}`;
    return server;
  }

  // What OpenSSL's client makes of it.
  async function talk(name, options) {
    const server = await ourServer(name);
    const client = await runBeside('openssl', ['s_client', '-connect', server.address, '-ign_eof', ...options], 'lumora\n');
    await server.exited;
    return { client, outcome: server.output.trim().split('\n').at(-1) };
  }

  for (const version of ['tls1_2', 'tls1_3'])
    for (const name of ['good', 'expired'])
      test(`speaks ${version} with a certificate that is ${name}`, async () => {
        const { client, outcome } = await talk(name, [`-${version}`, '-CAfile', file('good.crt')]);
        assert.equal(outcome, 'done');
        assert.match(client.out, /^LUMORA$/m);
        assert.match(client.out, name === 'good' ? /Verify return code: 0 / : /Verify return code: (10|18) /);
      });

  test('agrees on keys by Diffie-Hellman with a group of 2048 bits', async () => {
    const { client, outcome } = await talk('good', ['-tls1_2', '-cipher', 'DHE-RSA-AES128-GCM-SHA256']);
    assert.equal(outcome, 'done');
    assert.match(client.out, /Server Temp Key: DH, 2048 bits/);
  });

  test('takes no older version and no weak cipher', async () => {
    for (const options of [['-tls1_1', '-cipher', 'ALL:@SECLEVEL=0'], ['-tls1_2', '-cipher', 'aNULL:@SECLEVEL=0']]) {
      const { client, outcome } = await talk('good', options);
      assert.equal(outcome, 'refused', options.join(' '));
      assert.notEqual(client.code, 0);
    }
  });

  test('does not let a client renegotiate', async () => {
    const server = await ourServer('good');
    const client = await start('openssl', ['s_client', '-connect', server.address, '-tls1_2'],
      (text) => text.includes('Verify return code'));
    client.child.stdin.write('R\n');  // a command of theirs
    assert.notEqual(await client.exited, 0);
    assert.match(client.output, /RENEGOTIATING[^]*no renegotiation/);
    await server.exited;
  });
});
