// The arrows of the house: a folder includes only what stands below it, and inside the application a
// subsystem includes the shared ones and its own files, never a sibling's.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { dirname, join, relative } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

const root = join(dirname(fileURLToPath(import.meta.url)), '..', '..');
const source = join(root, 'src');

// What each folder may include, besides itself.
const below = { kernel: [] };
for (const [folder, next] of [
  ['common', 'kernel'], ['network', 'common'], ['ldap', 'network'], ['cgiFramework', 'ldap'],
]) below[folder] = [next, ...below[next]];
// The PDF and workbook modules are libraries of their own; only their entries are known above.
below.pdf = ['common', 'kernel'];
below.xlsx = [];
below.cgiFramework.push('pdf');
below.mime = below.cgiFramework.slice();
below.ftp = below.cgiFramework.slice();
below.portal = ['cgiFramework', 'mime', 'ftp', 'xlsx', ...below.cgiFramework];

// Subsystems of the application that others build on, and who builds on which sibling.
const shared = ['context', 'theme', 'background'];
const buildsOn = { theme: ['context'], context: [], background: ['context'], agentreport: ['report'], report: ['chart'] };

function* sources(folder) {
  for (const entry of readdirSync(folder, { withFileTypes: true })) {
    const path = join(folder, entry.name);
    if (entry.isDirectory()) yield* sources(path);
    else if (/\.(h|cpp)$/.test(entry.name)) yield path;
  }
}

function includesOf(path) {
  return [...readFileSync(path, 'utf8').matchAll(/^#include "([^"]+)"/gm)].map((m) => m[1]);
}

// Why this file must not include that one, or null.
export function problem(from, to) {
  const [fromFolder, fromPart] = from.split('/');
  const [toFolder, toPart, toFile] = to.split('/');
  if (!(toFolder in below)) return 'is not rooted at src/';
  if (fromFolder !== toFolder)
    return below[fromFolder].includes(toFolder) ? null : 'points up';
  if (fromFolder !== 'portal' || toFile === undefined || !from.split('/')[2]) return null;
  if (fromPart === toPart) return null;
  const allowed = buildsOn[fromPart] ?? [];
  const usual = shared.includes(fromPart) ? [] : shared;
  return [...allowed, ...usual].includes(toPart) ? null : "reaches into a sibling's insides";
}

test('every include points down', () => {
  const problems = [];
  let seen = 0;
  for (const path of sources(source)) {
    const from = relative(source, path);
    for (const to of includesOf(path)) {
      seen++;
      const why = problem(from, to);
      if (why) problems.push(`${from}: "${to}" ${why}`);
    }
  }
  assert.ok(seen > 100, 'the sources were read');
  assert.deepEqual(problems, []);
});

test('only the page table knows the pages', () => {
  const problems = [];
  for (const path of sources(join(source, 'portal'))) {
    const from = relative(source, path);
    if (from.split('/').length > 2 || from === 'portal/PageTable.cpp') continue;
    for (const to of includesOf(path))
      if (/^portal\/(?!context|theme|background)[a-z]+\//.test(to)) problems.push(`${from}: ${to}`);
  }
  assert.deepEqual(problems, []);
});

test('the check itself sees arrows that point up or sideways', () => {
  assert.equal(problem('common/Html.h', 'cgiFramework/WebPage.h'), 'points up');
  assert.equal(problem('kernel/OSList.h', 'common/Html.h'), 'points up');
  assert.equal(problem('portal/report/A.h', 'portal/wallboard/B.h'),
    "reaches into a sibling's insides");
  assert.equal(problem('portal/theme/A.h', 'portal/report/B.h'),
    "reaches into a sibling's insides");
  assert.equal(problem('portal/report/A.h', 'portal/context/PortalContext.h'), null);
  assert.equal(problem('cgiFramework/A.h', 'common/Html.h'), null);
  assert.equal(problem('cgiFramework/A.h', 'Html.h'), 'is not rooted at src/');
});
