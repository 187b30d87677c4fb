// The command that draws charts: what it writes, and what it says when it cannot.

import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { after, before, test } from 'node:test';
import { fileURLToPath } from 'node:url';

const root = join(dirname(fileURLToPath(import.meta.url)), '..', '..');
const folder = mkdtempSync(join(tmpdir(), 'lumora-chart-'));
const picture = join(folder, 'out.png');
const run = (...words) =>
    spawnSync(join(root, 'build', 'release', 'lumora-chart'), words, { encoding: 'utf8', timeout: 60000 });

function describe(text) {
    const path = join(folder, 'chart.json');
    writeFileSync(path, text);
    return path;
}

before(() => {
    const built = spawnSync(join(root, 'script', 'build'), ['release', 'lumora-chart'], { encoding: 'utf8' });
    assert.equal(built.status, 0, built.stderr);
});
after(() => rmSync(folder, { recursive: true }));

test('a description becomes a picture of the width that is asked for, with its map', () => {
    const map = join(folder, 'map.html');
    const drawn = run(join(root, 'tests', 'pictures', 'glass.json'), picture, '--width', '500', '--map', map,
        '--server', 'https://portal.example.com/');
    assert.deepEqual([drawn.status, drawn.stdout, drawn.stderr], [0, '', '']);
    const bytes = readFileSync(picture);
    assert.equal(bytes.toString('latin1', 0, 8), '\x89PNG\r\n\x1a\n');
    assert.equal(bytes.readUInt32BE(16), 500);
    const areas = readFileSync(map, 'utf8').split('\r\n');
    assert.equal(areas[0], '<map name="map_out">');
    assert.equal(areas[1].match(/<area shape="rect" /g).length, 7);
    assert.match(areas[1], /href="https:\/\/portal\.example\.com\/lumora\.cgi\?a=1&amp;b=0" >/);
    rmSync(picture);
});

test('what cannot be drawn ends with its reason and leaves no picture', () => {
    const bar = (rest) => `{"elements": [{"type": "bar_2d", "colour": "#112233", ${rest}}]}`;
    const cases = [
        ['PARSE7', ''],
        ['PARSE4', '{"elements": []'],
        ['elements array not found', '{}'],
        ['chart type not found', '{"elements": [{}]}'],
        ['element0 value is negative', bar('"values": [-1]')],
        ['element0 value not number', bar('"values": [-nan]')],
        ['more than 10000 values in one chart', bar(`"values": [${'1,'.repeat(100000)}]`)],
        ['JSON text nested too deeply', '['.repeat(100000)],
    ];
    for (const [reason, text] of cases) {
        const drawn = run(describe(text), picture);
        assert.equal(drawn.status, 1, text.slice(0, 80));
        const [, told] = drawn.stderr.match(/^Chart elements parse error:(.*)\n$/) ?? [];
        assert.equal(told, reason);
        assert.ok(!existsSync(picture), text.slice(0, 80));
    }
    const good = describe(bar('"values": [1]'));
    assert.match(run(good, picture, '--width', '4001').stderr, /4001/);
    assert.equal(run(good, picture, '--width', 'x').status, 2);
    assert.equal(run(good).status, 2);
    assert.match(run(join(folder, 'none.json'), picture).stderr, /cannot read/);
    assert.match(run(good, join(folder, 'none', 'out.png')).stderr, /could not be written/);
    assert.ok(!existsSync(picture));
});
