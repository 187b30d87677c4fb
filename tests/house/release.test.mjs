// The program as it is delivered: it starts fast because it loads next to nothing, and the linker's
// protections are on.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { dirname, join } from 'node:path';
import { before, test } from 'node:test';
import { fileURLToPath } from 'node:url';

const root = join(dirname(fileURLToPath(import.meta.url)), '..', '..');
const program = join(root, 'build', 'release', 'lumora.cgi');
const run = (command, ...options) =>
    execFileSync(command, options, {
        encoding: 'utf8',
        stdio: ['ignore', 'pipe', 'pipe'],
        env: { ...process.env, LC_ALL: 'C' },
        maxBuffer: 1 << 26,
    });

before(() => run(join(root, 'script', 'build'), 'release'));

test('the program loads the C library and nothing else', () => {
    const libraries = run('ldd', program)
        .trim()
        .split('\n')
        .map((line) => line.trim().split(/[ (]/)[0]);
    const allowed = /^(linux-(vdso|gate)\.so\.1|lib[cm]\.so\.6|(\/\S*\/)?ld-linux\S*\.so\.\d+)$/;
    assert.ok(libraries.includes('libc.so.6'));
    assert.deepEqual(
        libraries.filter((library) => !allowed.test(library)),
        [],
    );
});

test('the program can lie anywhere in memory and is read-only once it is linked', () => {
    assert.match(run('readelf', '-hW', program), /Type:\s+DYN/);
    const dynamic = run('readelf', '-dW', program);
    assert.match(dynamic, /\(FLAGS_1\).*\bPIE\b/, 'position-independent');
    assert.match(dynamic, /\(FLAGS_1\).*\bNOW\b/, 'all symbols are bound at the start');
    assert.doesNotMatch(dynamic, /\((RPATH|RUNPATH|TEXTREL)\)/);
    const segments = run('readelf', '-lW', program);
    assert.match(segments, /GNU_RELRO/);
    assert.match(segments, /GNU_STACK\s+\S+\s+\S+\s+\S+\s+\S+\s+\S+\s+RW /, 'the stack holds no code');
});
