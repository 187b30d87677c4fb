// From the name of a page to what answers it, and the pages that answer with a file.

import assert from 'node:assert/strict';
import { chownSync, mkdirSync, readdirSync, rmSync, statSync, symlinkSync, utimesSync, writeFileSync } from 'node:fs';
import { after, test } from 'node:test';
import { account, env, get, runCgi } from './portal.mjs';

const kCharts = `${env.ROOT}/Norvane/sessions/charts`;
const kPdfs = `${env.ROOT}/Norvane/pdf`;
const made = [];
after(() => made.forEach((path) => rmSync(path, { force: true })));

// Writes a file as the portal would have.
function write(folder, name, content) {
    const { uid, gid } = statSync(env.ROOT);
    mkdirSync(folder, { recursive: true, mode: 0o700 });
    writeFileSync(`${folder}/${name}`, content);
    if (process.getuid() === 0) for (const path of [folder, `${folder}/${name}`]) chownSync(path, uid, gid);
    made.push(`${folder}/${name}`);
}

const textOf = (page) => page.match(/class="errorText" role="alert">([^<]*)/)?.[1];
const errorOf = (page) => page.match(/class="reportWarning" role="alert">([^<]*)/)?.[1];
const ask = (query, fields = {}) => runCgi({ REMOTE_USER: account('manager').name, QUERY_STRING: new URLSearchParams(query).toString(), ...fields });

test('names without a page of their own show the reports, unknown ones what the user may not do', async () => {
    for (const query of ['', 'pagename=', 'pagename=homepage', 'pagename=reporter.', 'pagename=reporter.user.list'])
        assert.match((await get(query)).text, /<h1>Reports<\/h1>/, query);
    for (const name of ['nosuchpage', 'Homepage', 'callreport2', 'xreporter.', '../callreport']) {
        assert.equal(textOf((await get({ pagename: name })).text), 'Unknown Page', name);
        assert.equal(textOf((await get({ pagename: name }, { user: 'limited' })).text), 'Sorry you do not have rights for this', name);
        assert.equal(textOf((await get({ pagename: name }, { user: 'restricted' })).text),
            'Sorry you do not have Configure Call Centre assigned security', name);
    }
    assert.equal(textOf((await get({}, { user: 'noreports' })).text), 'Sorry you do not have rights for this');
});

test('the level of the log is what the request says, within reason', async () => {
    for (const [asked, level] of [['', 3], ['7', 7], ['-1', 3], ['x', 3], ['4294967295', 9]]) {
        const { err } = await ask({ syslog_level: asked });
        assert.match(err, new RegExp(`^syslog_level=${level}$`, 'm'), `"${asked}"`);
    }
});

test('a generated PDF is the whole answer, byte by byte', async () => {
    const content = Buffer.from(Array.from({ length: 100_000 }, (_, i) => i % 251));
    write(kPdfs, 'dispatch-test.pdf', content);
    const { code, out } = await ask({ pagename: 'pdf', index: 'dispatch-test.pdf' }, {});
    assert.equal(code, 0);
    assert.equal(out, `Content-Type: application/pdf\nContent-Length: ${content.length}\n\n${content}`);

    const answer = await get({ pagename: 'pdf', index: 'dispatch-test.pdf' });
    assert.deepEqual([answer.headers['content-type'], answer.headers['content-length']], ['application/pdf', String(content.length)]);
    assert.equal(answer.text, content.toString());

    write(kPdfs, 'dispatch-old.pdf', 'old');
    utimesSync(`${kPdfs}/dispatch-old.pdf`, new Date(0), new Date(0));
    assert.equal(textOf((await get({ pagename: 'pdf' })).text), 'Unknown Page');
    assert.ok(!readdirSync(kPdfs).includes('dispatch-old.pdf'), 'old ones go');
});

test('no name leads out of the folder of the PDF files', async () => {
    write(kPdfs, '.hidden.pdf', 'hidden');
    made.push(`${kPdfs}/dispatch-link.pdf`);
    symlinkSync(`${env.ROOT}/Norvane/config/Lumora.cfg`, `${kPdfs}/dispatch-link.pdf`);
    for (const name of ['missing.pdf', '../config/Lumora.cfg', '..', '.', '.hidden.pdf', '/etc/passwd', 'dispatch-link.pdf', '../pdf/x.pdf'])
        assert.equal(errorOf((await get({ pagename: 'pdf', index: name })).text),
            `SYSTEM ERROR: Unable to open pdf file: /Norvane/pdf/${name}`);
});

test('a session sees its own charts and no others', async () => {
    const session = (await get()).text.match(/sessionId=(\d+)/)[1];
    const chartOf = (id) => get({ pagename: 'jsonchart', sessionId: session, id });
    const random = (digit) => `_${digit.repeat(32)}.json`;
    for (const name of [session + random('1'), `${session}5${random('1')}`, `123${random('1')}`, `${session}_1.json`])
        write(kCharts, name, '{"title":"100% of 50%%"}');
    symlinkSync(`${env.ROOT}/Norvane/config/Lumora.cfg`, `${kCharts}/${session}${random('a')}`);
    made.push(`${kCharts}/${session}${random('a')}`);
    const own = await chartOf(session + random('1'));
    assert.equal(own.text, '{"title":"100% of 50%%"}');
    assert.ok(own.headers['content-disposition'].includes(`filename="${session}${random('1')}"`));
    for (const id of [`${session}5${random('1')}`, `123${random('1')}`, session + random('2'), session + random('a'),
        `${session}_1.json`, session, '', `../Lumora_${session}`, `${session}/../../Lumora_${session}`,
        '../../config/Lumora.cfg'])
        assert.equal((await chartOf(id)).text, '', id);
});
