// Lists, forms and what they change: who may, whose rows, what is told, and that one change is made
// once however often it is asked for.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, statSync, writeFileSync } from 'node:fs';
import test, { afterEach, before } from 'node:test';
import { headingOf, mainOf, textOf } from '../figures/report.mjs';
import { account, env, get, sql } from './portal.mjs';

const kTwo = { user: 'manager2', host: 'two.localhost' };
const kNoRights = 'Sorry you do not have rights for this';
const kNoAccess = 'Sorry you do not have rights to access this';
const kSlaMissing = 'Media SLA Not Found, please go back and try again.';
const kHostile = 'Zz & <b>"\'%s%n</b> \\ Áine';

const alertOf = (html) => textOf(html.match(/role="alert"[^>]*>(.*?)<\/(?:p|div|span)>/s)?.[1] ?? '');
const fieldErrors = (html) =>
    [...html.matchAll(/class="fieldError"[^>]*>(.*?)<\/span>/g)].map(([, text]) => textOf(text));
const sentOn = (html) => textOf(html.match(/http-equiv=refresh content="0;url= ([^"]*)"/)?.[1] ?? '');
const rowsOf = (html) =>
    [...mainOf(html).matchAll(/<tr class="(?:odd|even)row">(.*?)<\/tr>/gs)].map(([, row]) =>
        [...row.matchAll(/<td[^>]*>(.*?)<\/td>/gs)].map(([, cell]) => textOf(cell)),
    );

// The session of a user who has looked at a page before, as a form of the portal carries it.
async function sessionOf(options = {}) {
    const { text } = await get({ pagename: 'setting.password' }, options);
    return text.match(/name="sessionId" value="(\d+)"/)[1];
}

async function post(body, options = {}) {
    const sessionId = body.sessionId ?? (await sessionOf(options));
    return get('', {
        ...options,
        method: 'POST',
        body: { nodefaults: 'nodefaults', submit: 'Save', ...body, sessionId },
    });
}

const slas = (customer = 1) =>
    sql(
        `SELECT name, responseSLA FROM FrontSLAs WHERE customerid = ${customer} AND name LIKE 'Zz%' ORDER BY id`,
    );
const idOf = (table, condition) => sql(`SELECT id FROM ${table} WHERE ${condition}`)[0].id;
const addSla = (name, customer = 1) =>
    sql(`INSERT INTO FrontSLAs (customerid, name, responseSLA) VALUES (${customer}, '${name}', 60)`);

const contact = (name) => idOf('CustomerContact', `username = '${name}'`);
const restore = [];
function clean() {
    sql("DELETE FROM FrontSLAs WHERE name LIKE 'Zz%'; DELETE FROM FrontTag WHERE id = 'zz'");
    sql("DELETE FROM LDAPUsers WHERE cn LIKE 'Zz%'; DELETE FROM CustomerContact WHERE username LIKE 'zz%'");
    for (const statement of restore.splice(0)) sql(statement);
}
before(clean);
afterEach(clean);

test('a media SLA is added, changed and deleted by who configures the contact centre', async () => {
    const added = await post({
        pagename: 'fr.sla.add',
        name: `  ${kHostile} `,
        response_days: '1',
        response_hours: '2',
        response_minutes: '',
        response_seconds: '5',
    });
    assert.match(sentOn(added.text), /pagename=fr\.sla&done=added$/);
    assert.deepEqual(slas(), [{ name: kHostile, responseSLA: String(86400 + 7200 + 5) }]);

    const list = await get({ pagename: 'fr.sla', q: 'zz', done: 'added' });
    assert.equal(headingOf(list.text), 'Configure Media SLA ');
    assert.deepEqual(rowsOf(list.text), [[kHostile, '1 d 2 h 5 s']]);
    assert.match(list.text, /role="status">Added\.</);

    const id = idOf('FrontSLAs', "name LIKE 'Zz%'");
    const form = await get({ pagename: 'fr.sla.edit', index: id });
    assert.match(form.text, /name="response_hours" value="2"/);
    assert.match(
        sentOn(
            (await post({ pagename: 'fr.sla.edit', index: id, name: 'Zz Gold', response_minutes: '15' }))
                .text,
        ),
        /done=saved/,
    );
    assert.deepEqual(slas(), [{ name: 'Zz Gold', responseSLA: '900' }]);

    const asked = await post({ pagename: 'fr.sla.edit', index: id, submit: 'Delete' });
    assert.match(asked.text, /Delete the SLA &ldquo;Zz Gold&rdquo;\?/);
    assert.equal(slas().length, 1, 'nothing is deleted before the question is answered');
    assert.match(
        sentOn((await post({ pagename: 'fr.sla.edit', index: id, submit: 'Delete', confirm: '1' })).text),
        /done=deleted/,
    );
    assert.deepEqual(slas(), []);
    assert.equal(
        alertOf((await post({ pagename: 'fr.sla.edit', index: id, submit: 'Delete', confirm: '1' })).text),
        kSlaMissing,
    );
});

test('what cannot be used is told beside its field, and nothing is written', async () => {
    addSla('Zz Taken');
    const good = { pagename: 'fr.sla.add', name: 'Zz New', response_minutes: '5' };
    for (const [change, message] of [
        [{ name: '' }, 'Bad SLA name'],
        [{ name: '   ' }, 'Bad SLA name'],
        [{ name: 'Zz' + 'x'.repeat(127) }, 'Bad SLA name'],
        [{ name: 'Zz\nline' }, 'Bad SLA name'],
        [{ name: 'zz taken' }, 'Media SLA with that name already exists'],
        [{ response_minutes: '' }, 'Please enter a time.'],
        [{ response_minutes: '-5' }, 'Please enter whole numbers.'],
        [{ response_minutes: '1.5' }, 'Please enter whole numbers.'],
        [{ response_days: '999999999' }, 'This time is too long.'],
    ]) {
        const { text } = await post({ ...good, ...change });
        assert.deepEqual(fieldErrors(text), [message], JSON.stringify(change));
        assert.equal(sentOn(text), '');
    }
    const kept = await post({ ...good, name: kHostile, response_minutes: 'soon' });
    assert.equal(textOf(kept.text.match(/name="name" value="([^"]*)"/)[1]), kHostile);
    assert.match(kept.text, /name="response_minutes" value="soon"/);
    const id = idOf('FrontSLAs', "name = 'Zz Taken'");
    assert.deepEqual(
        fieldErrors(
            (await post({ pagename: 'fr.sla.edit', index: id, name: '', response_minutes: '1' })).text,
        ),
        ['Bad Media SLA name'],
    );
    assert.deepEqual(slas(), [{ name: 'Zz Taken', responseSLA: '60' }]);
});

test('two tabs, a double click and the back button leave one result', async () => {
    const body = {
        pagename: 'fr.sla.add',
        name: 'Zz Once',
        response_minutes: '5',
        sessionId: await sessionOf(),
    };
    const answers = await Promise.all(Array.from({ length: 6 }, () => post(body)));
    for (const { text } of answers) assert.match(sentOn(text), /done=added/);
    assert.equal(slas().length, 1);
    // The same name with another time is another wish.
    assert.deepEqual(fieldErrors((await post({ ...body, response_minutes: '6' })).text), [
        'Media SLA with that name already exists',
    ]);
    assert.deepEqual(slas(), [{ name: 'Zz Once', responseSLA: '300' }]);
});

test('nothing is changed by a link, without a session of the user, or without the right', async () => {
    addSla('Zz Kept');
    const index = idOf('FrontSLAs', "name = 'Zz Kept'");
    const wish = {
        pagename: 'fr.sla.edit',
        index,
        name: 'Zz Changed',
        response_minutes: '1',
        nodefaults: 'nodefaults',
        submit: 'Save',
    };
    const sessionId = await sessionOf();
    assert.equal(headingOf((await get({ ...wish, sessionId })).text), 'Edit Media SLA');
    for (const foreign of [
        undefined,
        '',
        String(Math.random()).slice(2),
        await sessionOf({ user: 'admin' }),
    ]) {
        const { text } = await get('', {
            method: 'POST',
            body: { ...wish, ...(foreign !== undefined && { sessionId: foreign }) },
        });
        assert.match(alertOf(text), /^Nothing was changed, because your session had ended/, String(foreign));
    }
    // An id that somebody else could have put into a link counts for nothing, even when it has become
    // a session of the user's; the answer carries one that nobody knows.
    const planted = String(Math.floor(Math.random() * 1e15) + 1);
    for (let visit = 0; visit < 2; visit++) await get({ pagename: 'fr.sla', sessionId: planted });
    const refused = await get('', { method: 'POST', body: { ...wish, sessionId: planted } });
    assert.match(alertOf(refused.text), /^Nothing was changed, because your session had ended/);
    assert.notEqual(refused.text.match(/name="sessionId" value="(\d+)"/)[1], planted);
    for (const user of ['noreports', 'restricted', 'limited']) {
        assert.equal(alertOf((await post(wish, { user })).text), kNoRights, user);
        assert.equal(
            alertOf((await post({ ...wish, pagename: 'fr.sla.add' }, { user })).text),
            kNoRights,
            user,
        );
        assert.doesNotMatch((await get({ pagename: 'fr.sla' }, { user })).text, /fr\.sla\.(add|edit)/);
    }
    assert.deepEqual(slas(), [{ name: 'Zz Kept', responseSLA: '60' }]);
});

test('a row of another customer is answered like one that does not exist', async () => {
    addSla('Zz Foreign', 1);
    const index = idOf('FrontSLAs', "name = 'Zz Foreign'");
    for (const id of [index, '999999999', '0', '', '-1', `${index} OR 1=1`, `${index}'`, '1e3']) {
        const shown = await get({ pagename: 'fr.sla.edit', index: id }, kTwo);
        assert.equal(alertOf(shown.text), kSlaMissing, id);
        for (const submit of ['Save', 'Delete']) {
            const { text } = await post(
                {
                    pagename: 'fr.sla.edit',
                    index: id,
                    name: 'Zz Stolen',
                    response_minutes: '1',
                    submit,
                    confirm: '1',
                },
                kTwo,
            );
            assert.equal(alertOf(text), kSlaMissing, `${submit} ${id}`);
        }
    }
    assert.deepEqual(rowsOf((await get({ pagename: 'fr.sla', q: 'zz' }, kTwo)).text), []);
    assert.deepEqual(slas(), [{ name: 'Zz Foreign', responseSLA: '60' }]);
    // Names are unique within a customer only.
    assert.match(
        sentOn(
            (await post({ pagename: 'fr.sla.add', name: 'Zz Foreign', response_minutes: '2' }, kTwo)).text,
        ),
        /done=added/,
    );
    for (const pagename of ['manager.edit', 'manager.permissions'])
        for (const id of [contact('manager'), '999999', '', 'x'])
            assert.equal(
                alertOf((await get({ pagename, index: id }, kTwo)).text),
                'This user does not exist.',
                `${pagename} ${id}`,
            );
});

test('a list is searched, sorted and turned page by page', async () => {
    for (const [i, name] of [
        'Zz 50% off',
        'Zz 50x off',
        "Zz O'Brien+#&",
        'Zz under_score',
        'Zz underXscore',
    ].entries())
        sql(
            `INSERT INTO LDAPUsers (GUID, customerid, cn, telephoneNumber) VALUES ('zz${i}', 1, '${name.replaceAll("'", "''")}', '99${i}')`,
        );
    const names = async (what) =>
        rowsOf((await get({ pagename: 'user.search', ...what })).text).map(([name]) => name);
    assert.deepEqual(await names({ q: '50% off' }), ['Zz 50% off']);
    assert.deepEqual(await names({ q: 'under_score' }), ['Zz under_score']);
    assert.deepEqual(await names({ q: "O'Brien+#&" }), ["Zz O'Brien+#&"]);
    assert.deepEqual(await names({ q: 'zz 993' }), ['Zz under_score'], 'each word in any searched column');
    assert.deepEqual(await names({ q: "' OR 1=1 -- " }), []);
    assert.deepEqual(await names({ q: 'zz 50', sort: 'number', desc: '1' }), ['Zz 50x off', 'Zz 50% off']);
    assert.deepEqual(await names({ q: 'zz 50', sort: 'u.cn; DROP TABLE x', desc: '' }), [
        'Zz 50% off',
        'Zz 50x off',
    ]);

    const total = Number(
        sql('SELECT COUNT(DISTINCT GUID, telephoneNumber) AS n FROM LDAPUsers WHERE customerid = 1')[0].n,
    );
    const seen = [];
    for (let page = 1; page <= Math.ceil(total / 25); page++) {
        const { text } = await get({ pagename: 'user.search', page });
        assert.match(text, new RegExp(`of ${total}<`));
        seen.push(...rowsOf(text).map(([, number]) => number));
    }
    assert.equal(new Set(seen).size, total);
    for (const page of ['0', '-1', '99999999999999999999', '1e9', 'x'])
        assert.ok((await names({ page })).length > 0, page);
    // A link of the list keeps the search, whatever it holds.
    const { text } = await get({ pagename: 'user.search', q: "O'Brien+#&" });
    const link = new URL(textOf(text.match(/href="([^"]*sort=number[^"]*)"/)[1]), env.URL);
    assert.equal(link.searchParams.get('q'), "O'Brien+#&");
    assert.equal(link.searchParams.get('pagename'), 'user.search');
});

test('a list as CSV has all rows, and nothing that a spreadsheet would run', async () => {
    sql(`INSERT INTO LDAPUsers (GUID, customerid, cn, telephoneNumber) VALUES
        ('zz1', 1, 'Zz "quoted", 100%', '+44 20'), ('zz2', 1, 'Zz', '=1+1'), ('zz3', 1, '@zzSUM(A1)', '9')`);
    restore.push("DELETE FROM LDAPUsers WHERE GUID LIKE 'zz%'");
    const answer = await get({ pagename: 'user.search', q: 'zz', csv: 'true' });
    assert.match(answer.headers['content-type'], /^text\/csv/);
    assert.match(answer.headers['content-disposition'], /filename="User Search\.csv"/);
    assert.equal(
        answer.text,
        '\uFEFFName,Number,Company\r\n"\'@zzSUM(A1)",9,\r\n' +
            'Zz,"\'=1+1",\r\n"Zz ""quoted"", 100%",+44 20,\r\n',
    );
    const all = await get({ pagename: 'user.search', csv: 'true' });
    assert.ok(all.text.trim().split('\r\n').length > 100);
});

test('a list as PDF has the columns of the screen, a head and a page number on each sheet', async () => {
    sql(
        `INSERT INTO LDAPUsers (GUID, customerid, cn, telephoneNumber) VALUES ('zz1', 1, 'Zz Żółć Жук Ωmega', '990')`,
    );
    const { hostname, port, pathname } = new URL(env.URL);
    const { name, password } = account('manager');
    for (const [query, title, found] of [
        ['pagename=users.pdf', 'Telephone Users', 'Zz Żółć Жук Ωmega'],
        ['pagename=user.search&pdf=true&q=zz', 'User Search', 'Zz Żółć Жук Ωmega'],
        ['pagename=user.search&pdf=true&q=nobodyatall', 'User Search', 'There is nothing to show.'],
    ]) {
        const file = execFileSync('curl', [
            '-s',
            '-u',
            `${name}:${password}`,
            `http://${hostname}:${port}${pathname}?${query}`,
        ]);
        assert.equal(file.subarray(0, 5).toString(), '%PDF-', query);
        const text = execFileSync('pdftotext', ['-q', '-layout', '-', '-'], { input: file }).toString();
        const pages = text.split('\f').slice(0, -1);
        pages.forEach((page, i) => {
            assert.match(page, new RegExp(`^\\s*${title}`), query);
            assert.match(page, /Name +Number +Company/);
            assert.match(
                page,
                new RegExp(
                    `Northmoor Instruments +\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d +Page ${i + 1} of ${pages.length}`,
                ),
            );
        });
        assert.ok(text.includes(found), query);
        if (query === 'pagename=users.pdf') assert.ok(pages.length > 2, 'a long list takes several sheets');
    }
});

test('XML lists stay well-formed whatever the names hold', async () => {
    sql(`INSERT INTO LDAPUsers (GUID, customerid, cn, telephoneNumber) VALUES
        ('zz"&<1>', 1, 'Zz ]]> <user> & "x" \\'y\\' \\n\\t\\u0001 %s%n', '990')`);
    sql("INSERT INTO CustomerContact (customerid, username, fullName) VALUES (1, 'zz<&>\"', 'Zz <b>& ]]>')");
    for (const pagename of ['xml.user.search', 'xml.user.search.agent.add', 'xml.manager.search']) {
        const answer = await get({ pagename, q: 'zz' });
        assert.match(answer.headers['content-type'], /application\/xml/);
        const text = execFileSync('xmllint', ['--noout', '-'], { input: answer.text, stdio: 'pipe' });
        assert.equal(String(text), '', pagename);
        assert.match(answer.text, /total="1" page="1" pages="1"/, pagename);
        assert.match(answer.text, /<name>Zz /, pagename);
    }
    assert.match(
        (await get({ pagename: 'xml.user.search.agent.add', q: 'zz' })).text,
        /<add>[^<]*pagename=agent\.add[^<]*user=zz%22%26%3C1%3E<\/add>/,
    );
    assert.doesNotMatch(
        (await get({ pagename: 'xml.user.search.agent.add', q: 'zz' }, { user: 'restricted' })).text,
        /<add>/,
    );
    assert.match((await get({ pagename: 'xml.user.search', q: 'zz' }, kTwo)).text, /total="0"/);
    assert.match((await get({ pagename: 'xml.manager.search', q: 'admin' }, kTwo)).text, /total="0"/);
});

test('guards: who sees which page, and a menu that leads to no refusal', async () => {
    for (const [user, pagename, text] of [
        ['restricted', 'user.search', kNoRights],
        ['restricted', 'manager.search', kNoAccess],
        ['supervisor', 'manager.edit', kNoAccess],
        ['limited', 'manager.permissions', kNoAccess],
        ['limited', 'trunks.list', kNoRights],
        ['manager', 'customer.settings', kNoRights],
        ['supervisor', 'users.pdf', kNoRights],
        ['limited', 'tabular', kNoRights],
    ])
        assert.equal(
            alertOf((await get({ pagename, index: contact('manager') }, { user })).text),
            text,
            `${user} ${pagename}`,
        );
    for (const user of ['admin', 'manager', 'supervisor', 'restricted', 'limited', 'noreports']) {
        const { text } = await get({ pagename: 'setting.password' }, { user });
        const menu = [...text.match(/<nav class="mainMenu".*?<\/nav>/s)[0].matchAll(/href="([^"]*)"/g)].map(
            ([, href]) => textOf(href),
        );
        for (const href of [
            ...menu,
            ...[
                ...mainOf((await get({ pagename: 'tabular' }, { user })).text).matchAll(/href="([^"]*)"/g),
            ].map(([, h]) => textOf(h)),
        ]) {
            if (href.includes('logout') || href.includes('.pdf')) continue;
            assert.doesNotMatch(alertOf((await get(href, { user })).text), /^Sorry/, `${user} ${href}`);
        }
    }
});

test("a user's details are changed by who manages users, and limits only by who has none", async () => {
    sql(`INSERT INTO CustomerContact (customerid, username, fullName) VALUES (1, 'zzuser', 'Zz User')`);
    const index = contact('zzuser');
    const attributes = () =>
        Object.fromEntries(
            sql(`SELECT attribname, attribvalue FROM CustomerContactAttrib WHERE userid = ${index}`).map(
                (row) => [row.attribname, row.attribvalue],
            ),
        );
    restore.push(
        `DELETE FROM CustomerContactAttrib WHERE userid = ${index}`,
        `DELETE FROM CallLogPermissions WHERE contactid = ${index}`,
        `DELETE FROM CustomerUserRight WHERE guid = '${index}'`,
    );
    sql(`INSERT INTO CustomerContactAttrib VALUES (${index}, 'myreport', 'a'), (${index}, 'myreport', 'b')`);
    const company = sql('SELECT GUID FROM LDAPCompanies WHERE customerid = 1')[0].GUID;
    const wish = {
        pagename: 'manager.edit',
        index,
        fullName: kHostile,
        email: 'zz@example.com',
        timezone: 'Europe/London',
        reportmask_1: '1',
        reportmask_5: '1',
        company,
    };

    assert.match((await get({ pagename: 'manager.edit', index })).text, /2 favourite reports/);
    assert.match(
        sentOn((await post({ ...wish, username: 'admin', customerid: '2', favourites: '1' })).text),
        /pagename=manager\.search&done=saved/,
    );
    assert.deepEqual(
        sql(`SELECT username, customerid, fullName, email FROM CustomerContact WHERE id = ${index}`),
        [{ username: 'zzuser', customerid: '1', fullName: kHostile, email: 'zz@example.com' }],
    );
    assert.deepEqual(attributes(), { timezone: 'Europe/London', reportmask: String(2 + 32), company });

    for (const [change, message] of [
        [{ email: 'two@x, y@z' }, /one mail address/],
        [{ email: 'nobody' }, /one mail address/],
        [{ timezone: 'Mars/Base' }, /choose one of the list/],
        [{ company: 'other' }, /choose one of the list/],
        [{ fullName: 'x'.repeat(129) }, /At most 128 characters/],
    ])
        assert.match(
            fieldErrors((await post({ ...wish, ...change })).text).join(),
            message,
            JSON.stringify(change),
        );
    const ticks = Object.fromEntries([1, 2, 3, 4, 5].map((c) => [`reportmask_${c}`, '1']));
    await post({ ...wish, ...ticks, timezone: '', company: '' });
    assert.deepEqual(attributes(), {}, 'all categories, no zone and no company are no attributes');
    // A user with a mask of their own lifts nobody's, and nobody lifts their own.
    await post({ ...wish, reportmask_1: '1', company: '' });
    await post({ ...wish, ...ticks }, { user: 'masked' });
    assert.equal(attributes().reportmask, '34');
    const masked = contact('masked');
    const [{ email: maskedMail }] = sql(`SELECT email FROM CustomerContact WHERE id = ${masked}`);
    await post(
        { ...wish, ...ticks, index: masked, fullName: 'Max Masked', email: maskedMail, timezone: '' },
        { user: 'masked' },
    );
    assert.equal(
        sql(
            `SELECT attribvalue FROM CustomerContactAttrib WHERE userid = ${masked} AND attribname = 'reportmask'`,
        )[0].attribvalue,
        '2',
    );
    for (const pagename of ['manager.edit', 'manager.permissions'])
        assert.equal(
            alertOf((await post({ ...wish, pagename, index: contact('admin') })).text),
            kNoAccess,
            'only an administrator changes one',
        );
});

test('permissions: nobody gives what they do not hold, or changes their own', async () => {
    sql("INSERT INTO CustomerContact (customerid, username) VALUES (1, 'zzuser')");
    const index = contact('zzuser');
    restore.push(
        `DELETE FROM CallLogPermissions WHERE contactid = ${index}`,
        `DELETE FROM CustomerUserRight WHERE guid = '${index}'`,
    );
    const rights = () =>
        sql(`SELECT rightid FROM CustomerUserRight WHERE guid = '${index}' ORDER BY rightid`).map((row) =>
            Number(row.rightid),
        );
    const rows = () =>
        sql(
            `SELECT type, entityNumber AS number, logging, recording, queue, agent FROM CallLogPermissions WHERE contactid = ${index} AND customerid = 1 ORDER BY type, number`,
        ).map((row) => Object.values(row).join(' '));
    const wish = { pagename: 'manager.permissions', index };
    const managed = contact('manager');
    sql(`DELETE FROM CustomerUserRight WHERE guid = '${managed}' AND rightid = 40`);
    restore.push(`INSERT IGNORE INTO CustomerUserRight VALUES (1, '${managed}', 40)`);

    await post({
        ...wish,
        right1: '1',
        right8: '1',
        right40: '1',
        new_type: 'Department',
        new_entity: 'sales',
        new_logging: '1',
        new_queue: '1',
    });
    assert.deepEqual(rights(), [1, 8]);
    const [{ number }] = sql(
        "SELECT telephoneNumber AS number FROM LDAPDepartments WHERE customerid = 1 AND cn = 'Sales'",
    );
    assert.deepEqual(rows(), [`Department ${number} 1 0 1 0`]);
    assert.match(
        (await get(wish)).text,
        new RegExp(`<td >Sales<input type=hidden name="row0" value="Department:${number}"`),
    );

    await post({
        ...wish,
        row0: `Department:${number}`,
        row0_logging: '1',
        row0_agent: '1',
        new_type: 'User',
        new_entity: '2005',
        new_recording: '1',
    });
    assert.deepEqual(rights(), []);
    assert.deepEqual(rows(), [`Department ${number} 1 0 0 1`, 'User 2005 0 1 0 0']);
    for (const [entity, message] of [
        ['nobody of that name', /There is nobody/],
        ["' OR 1=1 -- ", /There is nobody/],
    ]) {
        const { text } = await post({ ...wish, right1: '1', new_type: 'User', new_entity: entity });
        assert.match(fieldErrors(text).join(), message);
        assert.match(text, /name="right1" value="1" checked/, 'the form keeps what was ticked');
    }
    assert.deepEqual(rights(), [], 'a form with a fault writes nothing');
    await post({
        ...wish,
        row0: `Department:${number}`,
        row0_remove: '1',
        row1: 'User:2005',
        row1_recording: '1',
        row2: 'User:2006',
        row2_logging: '1',
    });
    assert.deepEqual(rows(), ['User 2005 0 1 0 0'], 'a row that is not there is not made by its boxes');

    const own = await post({ ...wish, index: managed, right1: '1' });
    assert.equal(alertOf(own.text), kNoAccess);
    assert.ok(sql(`SELECT COUNT(*) AS n FROM CustomerUserRight WHERE guid = '${managed}'`)[0].n > 1);
});

test('names are offered by kind and permission', async () => {
    const offered = async (what, options) =>
        JSON.parse((await get({ logging: 'on', format: 'json', ...what }, options)).text);
    const departments = await offered({ pagename: 'autorespond', q: '', deptTick: 'on' });
    assert.ok(departments.length > 5);
    assert.deepEqual(departments[0], {
        label: departments[0].label,
        type: 'dept',
        icon: 'Images/theme6/dept.svg',
    });
    assert.deepEqual(
        (await offered({ pagename: 'autorespond', q: '', deptTick: 'on' }, { user: 'restricted' })).map(
            ({ label }) => label,
        ),
        ['R&D <Labs>', 'Support'],
    );
    assert.deepEqual(
        (await offered({ pagename: 'autorespond', q: '', queueTick: 'on' }, { user: 'supervisor' })).map(
            ({ label }) => label,
        ),
        ['Sales', 'Support'],
    );
    assert.deepEqual(await offered({ pagename: 'autorespond', q: 'sales' }), [], 'no kind is ticked');
    assert.equal((await offered({ pagename: 'autorespond', q: '', userTick: 'on' })).length, 50);
    assert.ok(
        (await offered({ pagename: 'autorespond', q: '%', userTick: 'on' })).every(({ label }) =>
            label.includes('%'),
        ),
    );
    assert.deepEqual(
        await offered(
            { pagename: 'autorespond', q: '', userTick: 'on' },
            { user: 'manager', host: 'two.localhost' },
        ),
        [],
        'a user of another host is nobody here',
    );
    const all = Object.fromEntries(
        ['user', 'dept', 'outDept', 'group', 'contact', 'queue', 'agent', 'company', 'inbox', 'teammate'].map(
            (kind) => [`${kind}Tick`, 'on'],
        ),
    );
    assert.ok((await offered({ pagename: 'autorespond', q: 'a', ...all })).length > 0);
    sql(
        `INSERT INTO LDAPUsers (GUID, customerid, cn, telephoneNumber) VALUES ('zz1', 1, '${'Zz "q" <b> \\\\ \\\\n \\r\\n\\t/ é'}', '990')`,
    );
    assert.deepEqual(await offered({ pagename: 'autorespond', q: 'zz "q"', userTick: 'on' }), [
        { label: 'Zz "q" <b> \\ \\n    / é', type: 'user', icon: 'Images/theme6/user.svg' },
    ]);
    const ddis = await offered({ pagename: 'autorespond2', searchtype: 'ddi', q: '0' });
    assert.ok(ddis.length > 1 && ddis.every(({ label, type }) => label.includes('0') && type === 'ddi'));
    sql("INSERT INTO FrontTag (id, customerid, name) VALUES ('zz', 1, 'Zz Tag')");
    assert.deepEqual(await offered({ pagename: 'autorespond2', searchtype: 'tag', q: 'zz' }), [
        { label: 'Zz Tag', type: 'tag' },
    ]);
    assert.deepEqual(await offered({ pagename: 'autorespond2', searchtype: 'tag', q: 'zz' }, kTwo), []);
});

test('a form that a definition makes is for administrators and writes attributes', async () => {
    const settings = () =>
        Object.fromEntries(
            sql('SELECT AttribName AS n, AttribValue AS v FROM CustomerAttribute WHERE CustomerId = 1').map(
                (row) => [row.n, row.v],
            ),
        );
    const before = settings();
    const wish = {
        pagename: 'customer.settings',
        name: 'Stolen',
        startday: '7',
        weeklength: '6',
        shiftlength: '7.25',
        currency: '€',
        markup: '12.5',
        vatrate: '',
        globalopt: '1',
    };
    assert.match(sentOn((await post(wish, { user: 'admin' })).text), /pagename=tabular&done=saved/);
    const { vatrate, ...rest } = before;
    assert.ok(vatrate);
    assert.deepEqual(settings(), {
        ...rest,
        startday: '7',
        weeklength: '6',
        shiftlength: '7.25',
        currency: '€',
        markup: '12.5',
    });
    const wrong = await post(
        { ...wish, weeklength: '8', shiftlength: 'long', startday: '9' },
        { user: 'admin' },
    );
    assert.deepEqual(fieldErrors(wrong.text), [
        'Please choose one of the list.',
        'Please enter a whole number from 1 to 7.',
        'Please enter hours, such as 7.5.',
    ]);
    assert.equal(alertOf((await post(wish)).text), kNoRights);
    assert.match(sentOn((await post({ ...wish, ...before }, { user: 'admin' })).text), /done=saved/);
    assert.deepEqual(settings(), before);
});

test('a definition that is wrong says where, and the last of two of one name counts', async () => {
    const folder = `${env.ROOT}/Norvane/config/reports`;
    const file = (name, text) => writeFileSync(`${folder}/${name}.report`, text);
    const list = (name, title) =>
        `name: ${name}\ntype: Table\ntitle: ${title}\ncustomer: customerid\nfrom: LDAPUsers\nkey: GUID\ncolumn: n text "Name" "cn"\n`;
    file('zz1', list('zz.list', 'First'));
    file('zz2', list('zz.list', 'Second'));
    file('zz3', list('zz.bad', 'Bad') + 'column: oops\n');
    file('zz4', list('zz.open', 'Open').replace('customer: customerid\n', ''));
    file('zz5', list('zz.other', 'Other').replace('Table', 'Chart'));
    try {
        assert.equal(headingOf((await get({ pagename: 'zz.list' })).text), 'Second');
        assert.match(
            alertOf((await get({ pagename: 'zz.bad' })).text),
            /zz3\.report, line 8: column: NAME STYLE/,
        );
        assert.match(alertOf((await get({ pagename: 'zz.open' })).text), /needs the key customer/);
        assert.equal(alertOf((await get({ pagename: 'zz.other' })).text), 'Unknown Page');
    } finally {
        for (let i = 1; i <= 5; i++) execFileSync('rm', ['-f', `${folder}/zz${i}.report`]);
    }
});

test('a password is changed in the database and in the file, or in neither', async () => {
    const path = `${env.ROOT}/Norvane/config/passwords`;
    const { name, password } = account('kolkata');
    const hash = () => sql(`SELECT passwordHash AS h FROM CustomerContact WHERE username = '${name}'`)[0].h;
    const original = {
        file: readFileSync(path, 'utf8'),
        hash: hash(),
        mode: statSync(path).mode,
        uid: statSync(path).uid,
    };
    const wanted = 'new:Pass "wörd" & 100%+#';
    const sessionId = await sessionOf({ user: 'kolkata' });
    const change = (fields, user = 'kolkata') =>
        post(
            {
                pagename: 'setting.password',
                sessionId,
                oldPassword: password,
                newPassword: wanted,
                repeatPassword: wanted,
                ...fields,
            },
            { user },
        );
    try {
        for (const [fields, message] of [
            [{ oldPassword: 'wrong' }, 'This is not your present password.'],
            [
                { newPassword: 'short', repeatPassword: 'short' },
                'The new password must have at least 8 characters.',
            ],
            [{ repeatPassword: 'other-password' }, 'The two new passwords differ.'],
            [{ newPassword: password, repeatPassword: password }, 'The new password is the old one.'],
            [
                { newPassword: 'x'.repeat(73), repeatPassword: 'x'.repeat(73) },
                'The new password is too long.',
            ],
            [
                { newPassword: 'line\nbreak-1', repeatPassword: 'line\nbreak-1' },
                'The new password holds characters that cannot be typed.',
            ],
        ]) {
            const { text } = await change(fields);
            assert.deepEqual(fieldErrors(text), [message]);
            assert.doesNotMatch(text, /wörd|demo-kolkata/, 'no password is on the page');
        }
        // By a link, or without the session, nothing happens either.
        await get(
            {
                pagename: 'setting.password',
                sessionId,
                submit: 'Save',
                oldPassword: password,
                newPassword: wanted,
                repeatPassword: wanted,
            },
            { user: 'kolkata' },
        );
        await change({ sessionId: String(Math.random()).slice(2) });
        assert.equal(readFileSync(path, 'utf8'), original.file);
        assert.equal(hash(), original.hash);

        const answers = await Promise.all([change(), change()]);
        const changed = answers.filter(({ status }) => status === 200);
        assert.ok(changed.length > 0);
        for (const { text } of changed) assert.match(text, /Your password was changed\./);
        assert.match(hash(), /^\$2y\$1\d\$/);
        const [before, now] = [original.file, readFileSync(path, 'utf8')].map((text) => text.split('\n'));
        assert.deepEqual(
            now.filter((line, i) => line !== before[i]),
            [`${name}:${hash()}`],
        );
        assert.deepEqual([statSync(path).mode, statSync(path).uid], [original.mode, original.uid]);
        assert.equal((await get('', { user: 'kolkata' })).status, 401);
        assert.equal((await get('', { user: { name, password: wanted } })).status, 200);
        const kept = execFileSync(
            'grep',
            [
                '-rlaF',
                '-e',
                wanted,
                '-e',
                encodeURIComponent(wanted).slice(0, 14),
                `${env.ROOT}/Norvane/sessions`,
                env.ERROR_LOG,
            ],
            { encoding: 'utf8', stdio: 'pipe' },
        );
        assert.equal(kept, '');
    } catch (error) {
        if (error.status !== 1) throw error; // grep found nothing, as it should
    } finally {
        writeFileSync(path, original.file);
        sql(`UPDATE CustomerContact SET passwordHash = '${original.hash}' WHERE username = '${name}'`);
    }
});
