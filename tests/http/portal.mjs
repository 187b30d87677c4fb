// The portal under test, for black-box tests: requests to it, its database, and its program started
// by hand. Where it is stands in the file that the environment variable PORTAL_ENV names; script/test
// sets it, and for a portal of script/server it is .run/portal.env.

import { execFile, execFileSync, spawn } from 'node:child_process';
import { chownSync, cpSync, mkdirSync, mkdtempSync, readFileSync, readdirSync, statSync } from 'node:fs';
import http from 'node:http';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { promisify } from 'node:util';

/** The settings of portal.env: URL, ROOT, PROGRAM, ERROR_LOG, ZONE, DB_*, and NAME_USER and
 * NAME_PASSWORD of every demo user. */
export const env = readEnv(process.env.PORTAL_ENV);

function readEnv(file) {
    if (!file) throw new Error('PORTAL_ENV names no file: run script/test, or set it to .run/portal.env');
    const settings = {};
    for (const [, name, quoted] of readFileSync(file, 'utf8').matchAll(/^(\w+)='(.*)'$/gm))
        settings[name] = quoted.replaceAll("'\\''", "'");
    return settings;
}

/** The user name and password of a demo user, such as 'manager'. */
export function account(who) {
    const key = who.toUpperCase().replace(/[^A-Z0-9]/g, '_');
    if (!(`${key}_USER` in env)) throw new Error(`the demo has no user "${who}"`);
    return { name: env[`${key}_USER`], password: env[`${key}_PASSWORD`] };
}

/**
 * Asks the portal and resolves to { status, headers, text, bytes }; redirects are not followed.
 * `what` is an object of arguments, a query string, or a path of the site when it begins with "/".
 * Options: `user` (a demo user, { name, password }, or null for nobody; 'manager' unless told),
 * `cookies` (an object), `host` (of another customer), `method`, `headers`, and `body`, which is sent
 * as it stands, or as a form when it is an object.
 */
export function get(what = {}, { user = 'manager', cookies, host, method, headers = {}, body } = {}) {
    const send = { Connection: 'close', ...headers };
    if (host) send.Host = host;
    if (user) {
        const { name, password } = typeof user === 'string' ? account(user) : user;
        send.Authorization = `Basic ${Buffer.from(`${name}:${password}`).toString('base64')}`;
    }
    if (cookies) send.Cookie = Object.entries(cookies).map(([name, value]) => `${name}=${value}`).join('; ');
    if (body && typeof body === 'object' && !Buffer.isBuffer(body)) {
        body = new URLSearchParams(body).toString();
        // The bare type: a charset after it would leave the form unread.
        send['Content-Type'] ??= 'application/x-www-form-urlencoded';
    }
    if (body !== undefined) send['Content-Length'] ??= Buffer.byteLength(body);

    return new Promise((resolve, reject) => {
        const { hostname, port } = new URL(env.URL);
        const request = http.request({ hostname, port, path: pathOf(what),
            method: method ?? (body === undefined ? 'GET' : 'POST'), headers: send });
        request.on('response', (response) => {
            const parts = [];
            response.on('data', (part) => parts.push(part));
            response.on('error', reject);
            response.on('end', () => {
                const bytes = Buffer.concat(parts);
                resolve({ status: response.statusCode, headers: response.headers, bytes, text: bytes.toString() });
            });
        });
        // A server that answers before it has read the whole body closes the way to it; then the
        // answer has already settled this promise.
        request.on('error', reject);
        request.end(body);
    });
}

// The path as it goes out: nothing is tidied, so that tests can send what a browser would not.
function pathOf(what) {
    if (typeof what === 'string' && what.startsWith('/')) return what;
    const query = String(typeof what === 'string' ? what : new URLSearchParams(what));
    return new URL(env.URL).pathname + (query && `?${query}`);
}

const kBatchEscapes = { '\\n': '\n', '\\t': '\t', '\\0': '\0', '\\\\': '\\' };

const clientArguments = (query) => ['--no-defaults', `--socket=${env.DB_SOCKET}`, `--user=${env.DB_USER}`,
    '--default-character-set=utf8mb4', '--batch', `--execute=${query}`, env.DB_NAME];
const clientOptions = () => ({ env: { ...process.env, MYSQL_PWD: env.DB_PASSWORD }, encoding: 'utf8',
    maxBuffer: 1 << 28, stdio: ['ignore', 'pipe', 'pipe'] });

function rowsOf(out) {
    const [names, ...rows] = out.split('\n').slice(0, -1).map((line) => line.split('\t'));
    const value = (text) => (text === 'NULL' ? null : text.replace(/\\[nt0\\]/g, (escape) => kBatchEscapes[escape]));
    return rows.map((row) => Object.fromEntries(row.map((text, i) => [names[i], value(text)])));
}

/** Runs SQL as the portal's own database user; the rows of its result as objects of texts, with null
 * for NULL (and for the text "NULL", which the client prints alike). */
export function sql(query) {
    return rowsOf(execFileSync('mariadb', clientArguments(query), clientOptions()));
}

/** The same without waiting: a promise of the rows. */
export async function sqlLater(query) {
    return rowsOf((await promisify(execFile)('mariadb', clientArguments(query), clientOptions())).stdout);
}

/**
 * Starts lumora.cgi as the web server would, with these environment variables and nothing else (but
 * for LUMORA_ROOT and TZ, which it always has unless given), and resolves to { code, signal, out, err }.
 * It runs as the user whom the portal's files belong to.
 */
export function runCgi(variables = {}, stdin = '') {
    const { uid, gid } = statSync(env.ROOT);
    const identity = process.getuid() === 0 ? { uid, gid } : {};
    const child = spawn(env.PROGRAM, [], { ...identity,
        env: { LUMORA_ROOT: env.ROOT, TZ: env.ZONE, SERVER_NAME: '127.0.0.1', REMOTE_ADDR: '127.0.0.1',
            SCRIPT_NAME: new URL(env.URL).pathname, ...variables } });
    const out = [], err = [];
    child.stdout.on('data', (part) => out.push(part));
    child.stderr.on('data', (part) => err.push(part));
    child.stdin.on('error', () => {});  // it need not read what it is given
    child.stdin.end(stdin);
    return new Promise((resolve, reject) => {
        child.on('error', reject);
        child.on('close', (code, signal) => resolve({ code, signal,
            out: Buffer.concat(out).toString(), err: Buffer.concat(err).toString() }));
    });
}

/**
 * Makes a run-time root of a test's own for runCgi(), so that the test can break it and see what a
 * request writes: the portal's settings and report files, and an empty session folder. The caller
 * removes it.
 */
export function makeRoot() {
    const root = mkdtempSync(join(tmpdir(), 'lumora-test-'));
    mkdirSync(join(root, 'Norvane/sessions'), { recursive: true });
    cpSync(join(env.ROOT, 'Norvane/config'), join(root, 'Norvane/config'), { recursive: true });
    const { uid, gid } = statSync(env.ROOT);
    if (process.getuid() === 0)
        for (const name of ['', ...allNames(root)]) chownSync(join(root, name), uid, gid);
    return root;
}

// Everything below a folder, as paths within it. (The option that does this came with Node 18.17.)
function* allNames(folder, below = '') {
    for (const entry of readdirSync(join(folder, below), { withFileTypes: true })) {
        const name = join(below, entry.name);
        yield name;
        if (entry.isDirectory()) yield* allNames(folder, name);
    }
}
