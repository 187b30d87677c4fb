// What the peer tests share: programs, files and servers of one test file.
import { execFile, spawn, spawnSync } from 'node:child_process';
import { chmodSync, existsSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import net from 'node:net';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const root = join(dirname(fileURLToPath(import.meta.url)), '..', '..');
const build = process.env.PEER_BUILD ?? join(root, 'build', 'asan');

// What runs and lies about goes with this process, however it ends.
const leftovers = [];
process.on('exit', () => leftovers.forEach((remove) => remove()));
for (const signal of ['SIGINT', 'SIGTERM', 'SIGHUP']) process.on(signal, () => process.exit(1));

// A program of ours, by its name in the build folder.
export function ours(name) {
  for (const path of [join(build, name), join(build, 'tests', 'peers', name)])
    if (existsSync(path)) return path;
  throw new Error(`${name} is not built below ${build}: run tests/peers/run`);
}

// A folder that goes when the test file ends.
export function temporaryFolder() {
  const folder = mkdtempSync(join(tmpdir(), 'lumora-peers-'));
  chmodSync(folder, 0o700);
  leftovers.push(() => rmSync(folder, { recursive: true, force: true }));
  return folder;
}

// Runs a program to its end.
export function run(program, args, input = '') {
  const env = { ...process.env, LDAPNOINIT: '1', PATH: `${process.env.PATH}:/usr/sbin:/sbin` };
  const done = spawnSync(program, args, { input, encoding: 'utf8', timeout: 60000, env });
  if (done.error) throw done.error;
  return { code: done.status, out: done.stdout, err: done.stderr };
}

// The same, while this process goes on serving.
export function runBeside(program, args, input = '') {
  return new Promise((resolve) => {
    const env = { ...process.env, LDAPNOINIT: '1' };
    const child = execFile(program, args, { encoding: 'utf8', timeout: 60000, env },
      (error, out, err) => resolve({ code: error ? error.code : 0, out, err }));
    child.stdin.on('error', () => {});  // it may end without reading what it is given
    child.stdin.end(input);
  });
}

// Starts a server, ready when `isReady(everything it has printed)` holds. Its `output` keeps
// growing; stop() answers its exit code.
export async function start(program, args, isReady) {
  const env = { ...process.env, PATH: `${process.env.PATH}:/usr/sbin:/sbin` };
  const child = spawn(program, args, { stdio: ['pipe', 'pipe', 'pipe'], env });
  const server = { child, output: '', exited: null };
  server.exited = new Promise((resolve) => child.on('close', resolve));
  const failed = new Promise((_, reject) => child.on('error', reject));
  leftovers.push(() => child.kill('SIGKILL'));
  const ready = new Promise((resolve, reject) => {
    const look = (chunk) => {
      server.output += chunk;
      if (isReady(server.output)) resolve();
    };
    child.stdout.on('data', look);
    child.stderr.on('data', look);
    child.on('close', (code) => reject(new Error(`${program} ended with ${code}: ${server.output}`)));
  });
  await Promise.race([ready, failed]);
  server.stop = (signal = 'SIGTERM') => {
    child.kill(signal);
    return server.exited;
  };
  return server;
}

// Resolves when something accepts connections there.
export async function accepts(port, host) {
  for (;;) {
    const open = await new Promise((resolve) => {
      const socket = net.connect(port, host, () => resolve(true));
      socket.on('error', () => resolve(false));
      socket.on('connect', () => socket.end());
    });
    if (open) return;
    await new Promise((resolve) => setTimeout(resolve, 50));
  }
}

export function write(path, text) {
  writeFileSync(path, text);
  return path;
}

// The entries of LDIF that ldapsearch prints with -o ldif-wrap=no, as [name, value] lists.
export function entries(ldif) {
  return ldif.trim().split(/\n\n+/).filter(Boolean).map((text) => text.split('\n').map((line) => {
    const [, name, colons, value] = /^([^:]+)(::?) ?(.*)$/.exec(line);
    return [name, colons === '::' ? Buffer.from(value, 'base64').toString('utf8') : value];
  }));
}
