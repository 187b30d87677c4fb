// The statement that reaches the database server for each criterion, period and permission, read from
// the server's own log.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { rmSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import test, { after, before } from 'node:test';
import { onOneDay, shown, zoneOf } from '../figures/report.mjs';
import { env, get, sql } from './portal.mjs';

const kDay = { startDate: '2024-03-15' };
const kDaySql = " BETWEEN DATE('2024-03-15') AND TIMESTAMP(DATE('2024-03-15'),'23:59:59') ";
const kTimeSql = " BETWEEN '00:00:00' AND '23:59:59' ";
const kNobody = "='' AND '1'='0'";
const kEmptyList = "IN('entity generation did not match anything')";

// ---- the server's log, and reports whose statements are looked for in it

const admin = (query) =>
    execFileSync(
        'mariadb',
        [`--defaults-file=${join(dirname(env.ROOT), 'admin.cnf')}`, '-BN', '-e', query, env.DB_NAME],
        { encoding: 'utf8', maxBuffer: 1 << 28 },
    );

const kCalls = `SELECT COUNT(*) AS n /*criteria test*/ FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date] AND TIME(gmtdatetime) [time]`;
const kParties = `${kCalls} AND (A_Name [entity] OR B_Name [entity])`;
const kReports = {
    'test.people': ['user department group company', kParties],
    'test.queue': ['queue', kParties],
    'test.agent': ['agent', kParties],
    'test.inbox': ['inbox', `SELECT COUNT(*) AS n /*criteria test*/ FROM FrontInbox WHERE id [entity]`],
    'test.calls': ['account trunk trunkgroup int_ext time_limit in_out ddi', kCalls],
    'test.contact': ['contact in_out', kCalls],
    'test.plain': ['', kCalls],
    'test.places': [
        'user group int_ext time_limit in_out ddi second_for_field',
        `${kCalls} [int_ext] AND '[inOutFilter]|[timeLimit]|[ddi]' <> '' AND B_Name [entity2]
            AND '[var]|[extra]|[extra2]|[tag]|[fronttable]|[slaID]|[slaAnswer]|[slaResponse]' <> ''
            AND A_Name [subq_entity] AND [groupid]|[shiftSeconds]|[startday]|[weeklen] AND [allusers]
            AND [allteammates] AND '[contactID]|[entityName]|[markup]|[vatrate]' <> ''
            AND '[agDispName][agStateName][NAName]|[startTime]|[endTime]' <> ''
            AND [startDate] <= [endDate]`,
    ],
    'test.groupid': ['group', `${kCalls} AND [groupid] >= 0`],
    'test.groupjoin': ['group', kCalls.replace('FROM CallLog', 'FROM CallLog [groupjoin]')],
    'test.wallboard': ['', `${kCalls} AND gmtdatetime [wbTime]`],
};
const escaped = (text) => text.replace(/[\\'"]/g, '\\$&');

const columnFile = join(env.ROOT, 'Norvane/config/reports/criteriatest.col');
let wasLogging = '';

before(() => {
    writeFileSync(columnFile, 'n number "Calls" "" "" "" "" "" ""\n', { mode: 0o644 });
    for (const [name, [offers, template]] of Object.entries(kReports)) {
        const switches = offers.split(' ').filter(Boolean).map((word) => `, opt_${word} = 1`);
        sql(`REPLACE INTO CallReport SET pagename = '${name}', name = 'Criteria', category = 1, hidden = 1,
            reportFile = 'criteriatest.col', SQLQuery = '${escaped(template)}'${switches.join('')}`);
    }
    sql(`DELETE FROM CallLogGroup WHERE group_name LIKE 'Test %'`);
    wasLogging = admin('SELECT @@general_log, @@log_output').trim();
    admin(`SET GLOBAL log_output = 'TABLE'; SET GLOBAL general_log = ON`);
});

after(() => {
    const [on, output] = wasLogging.split('\t');
    admin(`SET GLOBAL general_log = ${on}; SET GLOBAL log_output = '${output}'; TRUNCATE mysql.general_log`);
    sql(`DELETE FROM CallReport WHERE reportFile = 'criteriatest.col'`);
    sql(`DELETE m FROM CallLogGroupMembers m JOIN CallLogGroup g USING (group_id)
        WHERE g.group_name LIKE 'Test %'`);
    sql(`DELETE FROM CallLogGroup WHERE group_name LIKE 'Test %'`);
    sql(`DELETE FROM NewWallboardPage WHERE name = 'Criteria test'`);
    rmSync(columnFile, { force: true });
});

/** Runs a report and resolves to its page and the statements that the server got for it. */
async function run(report, criteria, { user = 'manager', host } = {}) {
    admin('TRUNCATE mysql.general_log');
    // Posted, as the form does: a link cannot be this long.
    const body = { pagename: 'callreport', report, submit: 'Generate Report', wait: '1', ...criteria };
    const { text: html } = await get({}, { user, host, body });
    const page = { ...shown(html), html };
    const log = admin(`SELECT HEX(argument) FROM mysql.general_log WHERE command_type = 'Query'`);
    const all = log.split('\n').map((hex) => Buffer.from(hex, 'hex').toString());
    return { page, all, statement: all.find((text) => text.includes('/*criteria test*/')) ?? '' };
}

const fill = (template, parts) =>
    template.replace(/\[(\w+)\]/g, (_, name) => {
        assert.ok(name in parts, `the test has no text for ${name}`);
        return parts[name];
    });

// Where the two begin to differ: statements are long.
function difference(expected, reached) {
    let at = 0;
    while (at < expected.length && expected[at] === reached[at]) ++at;
    const around = (text) => text.slice(Math.max(0, at - 40), at + 300);
    return `expected ...${around(expected)}\nreached  ...${around(reached)}`;
}

/** The statement must be the template with these texts, and must have run. */
async function assertStatement(report, criteria, parts, { user, host, name } = {}) {
    const what = `${report} ${JSON.stringify(criteria).slice(0, 200)} ${user ?? ''}`;
    const { page, all, statement } = await run(report, { ...kDay, ...criteria }, { user, host });
    const expected = fill(kReports[report][1], {
        customerSearchGroup: '1',
        time: kTimeSql,
        ...parts,
        date: ` ${parts.date ?? kDaySql} ${parts.calls ?? ''}`,
    }).trim();
    if (!statement.includes(expected)) assert.fail(`${what}\n${difference(expected, statement)}`);
    assert.deepEqual(page.warnings, [], what);
    assert.equal(page.rows.length, 1, `${what} ${page.notices}`);
    if (name !== undefined) assert.ok(page.lines.includes(`For: ${name}`), `${what}: ${page.lines}`);
    return { page, all };
}

const contactId = (user) => sql(`SELECT id FROM CustomerContact WHERE username = '${user}'`)[0].id;
const listOf = (query) => `IN (${sql(query).map((row) => Object.values(row)[0]).join(',')})`;

const kAllPeople = `SELECT QUOTE(cn) FROM LDAPUsers WHERE customerid='1' UNION ALL
    SELECT QUOTE(cn) FROM LDAPDepartments WHERE customerid='1' UNION ALL SELECT QUOTE('!Voicemail')`;
const kCompany = `SELECT GUID FROM LDAPCompanies WHERE cn = 'Northmoor Instruments'`;
const permitted = (table, name, number, type, right, contact) =>
    `SELECT QUOTE(${name}) FROM ${table} as cca INNER JOIN CallLogPermissions as ccp on` +
    ` ccp.entityNumber=cca.${number} AND ccp.customerid='1' and ccp.contactid='${contact}' and` +
    ` ccp.type='${type}' and ccp.${right}='1' WHERE cca.customerid='1'`;

// ---- periods

test('each period is told to the server in its own words, and the title shows what it evaluated to', async () => {
    const zone = zoneOf('manager');
    const week = (days) => `(DATE(NOW() - INTERVAL ${days}(DAYOFWEEK(NOW()) - 2 + IF(DAYOFWEEK(NOW())<2,7,0)) DAY`;
    const ago = (days) => `DATE(NOW() - INTERVAL ${days} day)`;
    const today = 'DATE(NOW())';
    const range = (label) => (start, end) => `From: ${start}, To: ${end} (${label})`;
    const exact = { startDate: '2024-03-01 08:00:00', endDate: '2024-03-02 07:59:59', wbDrill: 'y' };
    const cases = [
        ['today', today, today, (start) => `${start} (Today)`],
        ['yesterday', ago(1), ago(1), (start) => `${start} (Yesterday)`],
        ['thisweek', `${week('')}))`, today, range('This Week')],
        ['lastweek', `${week('+ 7 + ')}))`, `${week('+ 8 + ')} + INTERVAL 5 DAY))`, range('Last Week')],
        ['thismonth', "DATE_FORMAT(NOW(),'%Y-%m-01')", today, range('This Month')],
        ['lastmonth', "DATE_FORMAT(DATE_SUB(NOW(), INTERVAL 1 MONTH),'%Y-%m-01')",
            "DATE_FORMAT(NOW(),'%Y-%m-01')  - INTERVAL 1 day", range('Last Month')],
        ['thisyear', "DATE_FORMAT(NOW(),'%Y-01-01')", today, range('This Year')],
        ['lastyear', "DATE_FORMAT(DATE_SUB(NOW(), INTERVAL 1 YEAR),'%Y-01-01')",
            "DATE_FORMAT(NOW(),'%Y-01-01') - INTERVAL 1 day", range('Last Year')],
        ...[7, 30, 60, 90].flatMap((days) => [
            [`${days}days`, ago(days - 1), today, range(`Last ${days} Days`)],
            [`p${days}days`, ago(days), ago(1), range(`Previous ${days} Days`)],
        ]),
        ['all', '0', today, () => 'Since Logging Began'],
        ...['custom', 'LASTMONTH', "today'", ''].map((keyword) =>
            [keyword, today, today, (start) => `On: ${start} (Today)`]),
        [{ startDate: '2024-02-29' }, "DATE('2024-02-29')", "DATE('2024-02-29')", (start) => `On: ${start}`],
        [{ startDate: '2024-03-01', endDate: '2024-03-15' }, "DATE('2024-03-01')", "DATE('2024-03-15')",
            (start, end) => `From: ${start}, To: ${end}`],
        [exact, `'${exact.startDate}'`, `'${exact.endDate}'`, range('Wallboard Day'), 'exact'],
    ];
    await onOneDay(zone, async () => {
        for (const [period, start, end, title, isExact] of cases) {
            const criteria = typeof period === 'string' ? { reportPeriod: period, startDate: '' } : period;
            const last = isExact ? end : `TIMESTAMP(${end},'23:59:59')`;
            const date = ` BETWEEN ${start} AND ${last} `;
            const { page } = await assertStatement('test.plain', criteria, { date });
            const [dates] = sql(`SET time_zone = '${zone}'; SELECT ${start} AS start, ${end} AS end`);
            assert.ok(page.lines.includes(`Dates: ${title(dates.start, dates.end)}`), `${page.lines}`);
        }
    });
});

test('a wallboard asks for its own day, or for the time since it counts', async () => {
    const zone = zoneOf('manager');
    const board = (customer, startTime) =>
        sql(`INSERT INTO NewWallboardPage (customer_id, name, startTime) VALUES (${customer}, 'Criteria test',
            '${startTime}'); SELECT LAST_INSERT_ID() AS id`)[0].id;
    // Begun an hour and a half ago, and to begin in an hour and a half: then yesterday's counts.
    for (const [minutes, days] of [[-90, 0], [90, 1]]) {
        const [{ hhmm, since }] = sql(`SET time_zone = '${zone}'; SELECT DATE_FORMAT(at, '%H%i') AS hhmm,
            DATE_FORMAT(CONVERT_TZ(at - INTERVAL ${days} DAY, '+00:00', '${zone}'), '%Y-%m-%d %H:%i:00') AS since
            FROM (SELECT UTC_TIMESTAMP() + INTERVAL ${minutes} MINUTE AS at) AS board`);
        const { page } = await assertStatement(
            'test.plain',
            { startDate: '', reportPeriod: 'today', wbid: board(1, hhmm) },
            { date: ` BETWEEN '${since}' AND NOW() ` },
        );
        // The links of the page name the moments, for its day goes on.
        assert.match(page.html, /startDate=[^&]*&amp;endDate=[^&]*&amp;[^"]*wbDrill=y/);
        assert.match(page.lines.join(), new RegExp(`Dates: ${since} - [-0-9: ]{19} \\(Wallboard Day\\)`));
    }
    const today = { date: " BETWEEN DATE(NOW()) AND TIMESTAMP(DATE(NOW()),'23:59:59') " };
    for (const wbid of [board(2, '0600'), board(1, ''), board(1, '9x'), '0', '1 OR 1', "'"])
        await assertStatement('test.plain', { startDate: '', reportPeriod: 'today', wbid }, today);
    await assertStatement('test.wallboard',
        { startDate: '', reportPeriod: 'today', wbStart: '2024-03-15 08:00:00' },
        { ...today, wbTime: "> '2024-03-15 08:00:00'" });
    const { page, statement } = await run('test.wallboard', { reportPeriod: 'today', wbStart: "2024' OR '1" });
    assert.equal(statement, '');
    assert.match(page.html, /The start of the wallboard's count must be a date and a time\./);
});

test('the time of day is hhmm, and anything else is the whole day', async () => {
    for (const [begintime, endtime, from, to] of [
        ['0830', '1700', '08:30:00', '17:00:59'],
        ['830', '9999', '00:00:00', '23:59:59'],
        ["' OR", '', '00:00:00', '23:59:59'],
    ])
        await assertStatement('test.plain', { begintime, endtime }, { time: ` BETWEEN '${from}' AND '${to}' ` });
});

// ---- entities and permissions

test('an unrestricted caller gets whom they name, and everybody by name', async () => {
    const everybody = { entity: listOf(kAllPeople) };
    for (const [report, criteria, entity, name] of [
        ['test.people', {}, everybody.entity, 'All Users and Departments'],
        ['test.people', { searchtype: 'user', suggest1: '', userfilter: 'x' }, everybody.entity],
        ['test.people', { searchtype: 'user', suggest1: "Áine O'Brien" }, "='Áine O\\'Brien'", "Áine O'Brien"],
        ['test.people', { userfilter: 'Nobody [date]' }, "='Nobody [date]'", 'Nobody [date]'],
        ['test.people', { searchtype: 'dept', suggest1: 'Sales' }, "='Sales'", 'Sales'],
        ['test.people', { searchtype: 'freetext', suggest1: '100%' },
            listOf(`SELECT QUOTE(cn) FROM LDAPUsers WHERE customerid='1' AND cn LIKE '%100\\\\%%'`), '100%'],
        ['test.people', { company: 'Northmoor Instruments' },
            listOf(['LDAPUsers', 'LDAPDepartments'].map((table) =>
                `SELECT QUOTE(cn) FROM ${table} WHERE customerid=1 AND _company IN (${kCompany})`).join(' UNION ALL ')),
            'Northmoor Instruments'],
        ['test.people', { globcb1: 'on', userfilter: 'x', group: 'x' }, everybody.entity],
        ['test.people', { company: 'Calder Logistics' }, kEmptyList, 'Calder Logistics'],
        ['test.people', { queueFilter: 'Sales', account: 'P1', trunk: 'x' }, everybody.entity],
        ['test.queue', {}, listOf(`SELECT QUOTE(queueName) FROM CallCentreQueue WHERE customerid=1`), 'All Queues'],
        ['test.queue', { queueFilter: 'Sales' }, "='Sales'", 'Sales'],
        ['test.agent', {}, listOf(`SELECT QUOTE(agentName) FROM CallCentreAgent WHERE customerid=1`), 'All Agents'],
    ])
        await assertStatement(report, criteria, { entity }, { name });
});

test('a group of customers is searched as one', async () => {
    await assertStatement(
        'test.queue',
        {},
        {
            customerSearchGroup: "3','4','5",
            entity: listOf(`SELECT QUOTE(queueName) FROM CallCentreQueue WHERE customerid IN('3','4','5')`),
        },
        { user: 'manager3', host: 'three.localhost' },
    );
    const trunks = listOf(`SELECT QUOTE(dn) FROM LDAPTrunks WHERE customerid IN('3','4','5')`);
    const { page, all } = await run('trunkcapacity', kDay, { user: 'manager3', host: 'three.localhost' });
    assert.ok(all.some((text) => text.includes(`A_Trunk) ${trunks}`)));
    assert.ok(page.lines.includes('For: All System Trunks'), `${page.lines}`);
    const group = await run('trunkcapacity', { ...kDay, trunkgroup: 'Tie lines' });
    const ties = listOf(`SELECT QUOTE(dn) FROM LDAPTrunks WHERE customerid=1 AND description LIKE '%internal%'`);
    assert.ok(group.all.some((text) => text.includes(`A_Trunk) ${ties}`)));
    assert.ok(group.page.lines.includes('For: Tie lines'), `${group.page.lines}`);
});

test('a restricted caller gets what the rows of the type allow, and a refusal is an empty report', async () => {
    const restricted = contactId('restricted');
    const supervisor = contactId('supervisor');
    const queues = permitted('CallCentreQueue', 'queueName', 'queueNumber', 'Department', 'queue', supervisor);
    const [agent] = sql(permitted('CallCentreAgent', 'agentName', 'agentNumber', 'User', 'agent', supervisor));
    const people = `${permitted('LDAPUsers', 'cn', 'telephonenumber', 'User', 'logging', restricted)} UNION ALL
        ${permitted('LDAPDepartments', 'cn', 'telephonenumber', 'Department', 'logging', restricted)} UNION ALL
        SELECT QUOTE('!Voicemail')`;
    const likeOr = people
        .replace(/ UNION ALL\s+SELECT QUOTE\('!Voicemail'\)/, '')
        .replace(/cca.customerid='1'/g, "$& AND cn LIKE '%or%'");
    const seen = { restricted: 'All Users and Departments you may see', supervisor: 'All Queues you may see' };
    for (const [user, report, criteria, entity, name] of [
        ['restricted', 'test.people', {}, listOf(people), seen.restricted],
        ['restricted', 'test.people', { searchtype: 'freetext', suggest1: 'or' }, listOf(likeOr), 'or'],
        ['restricted', 'test.people', { department: 'Support' }, "='Support'", 'Support'],
        ['restricted', 'test.people', { department: 'Sales' }, kNobody, 'Restricted department selected!'],
        ['restricted', 'test.people', { userfilter: "' OR '1'='1" }, kNobody, 'Restricted user selected!'],
        ['restricted', 'test.queue', {}, kEmptyList, seen.supervisor],
        ['restricted', 'test.queue', { queueFilter: 'Support' }, kNobody, 'Restricted queue selected!'],
        ['restricted', 'test.agent', { agentFilter: 'Anybody' }, kNobody, 'Restricted agent selected!'],
        ['supervisor', 'test.people', {}, listOf(kAllPeople), 'All Users and Departments'],
        ['supervisor', 'test.queue', {}, listOf(queues), seen.supervisor],
        ['supervisor', 'test.queue', { queueFilter: 'Marketing' }, kNobody, 'Restricted queue selected!'],
        ['supervisor', 'test.agent', { agentFilter: agent['QUOTE(agentName)'].slice(1, -1) },
            `=${agent['QUOTE(agentName)']}`],
    ])
        await assertStatement(report, criteria, { entity }, { user, name });
    // What is asked about the permissions.
    for (const [user, report, criteria, asked] of [
        ['supervisor', 'test.queue', {}, queues],
        ['supervisor', 'test.people', { userfilter: 'x' }, `SELECT * FROM CallLogPermissions WHERE contactid='${supervisor}'` +
            " AND customerid='1' AND type='User' AND (logging='1' or recording='1')"],
        ['restricted', 'test.people', { userfilter: "O'x" }, 'SELECT cn FROM LDAPUsers as u INNER JOIN CallLogPermissions' +
            ` as clp ON clp.entityNumber = u.telephonenumber WHERE clp.contactid='${restricted}' AND clp.customerid` +
            " IN('1') and clp.logging='1' and clp.type='User' and u.customerid IN('1') and u.cn='O\\'x'"],
    ]) {
        const { all } = await run(report, { ...kDay, ...criteria }, { user });
        assert.ok(all.some((text) => text.trim() === asked), `${user} ${report}: ${asked}`);
    }
});

test('a reporting group is its members of today, nested ones once, for its owner or everyone', async () => {
    const manager = contactId('manager');
    const [ann, bob] = sql(`SELECT cn, telephoneNumber AS number FROM LDAPUsers WHERE customerid = 1
        AND telephoneNumber NOT IN (SELECT entityNumber FROM CallLogPermissions) ORDER BY cn LIMIT 2`);
    const [mine] = sql(`SELECT u.cn, u.telephoneNumber AS number FROM LDAPUsers u JOIN CallLogPermissions p
        ON p.entityNumber = u.telephoneNumber AND p.type = 'User' AND p.contactid = ${contactId('restricted')}
        WHERE u.customerid = 1 ORDER BY u.cn LIMIT 1`);
    const group = (name, owner, members, customer = 1) => {
        const [{ id }] = sql(`INSERT INTO CallLogGroup (group_name, customer_id, contactid)
            VALUES ('${name}', ${customer}, ${owner}); SELECT LAST_INSERT_ID() AS id`);
        for (const [type, memberName, number] of members)
            sql(`INSERT INTO CallLogGroupMembers (group_id, type, member_name, member_number)
                VALUES (${id}, '${type}', '${memberName}', '${number}')`);
        return id;
    };
    const user = ({ number }) => ['U', 'A former name', number];
    const nested = (name) => ['G', name, ''];
    const inner = group('Test inner', 0, [user(bob), nested('Test outer'), user(mine)]);
    const outer = group('Test outer', manager, [user(ann), nested('Test inner'), nested('Test none')]);
    group('Test empty', 0, [user({ number: '99999' })]);
    group('Test other', contactId('admin'), [user(ann)]);
    group('Test foreign', 0, [user(ann)], 2);

    const quotedIn = (people) => listOf(`SELECT QUOTE(u.cn) FROM CallLogGroupMembers m JOIN LDAPUsers u
        ON u.telephonenumber = m.member_number AND u.customerid = 1 WHERE m.group_id IN (${inner},${outer})
        AND m.type = 'U' AND u.cn IN (${people.map(({ cn }) => `'${escaped(cn)}'`)})`);
    await assertStatement('test.people', { group: 'Test outer' },
        { entity: quotedIn([ann, bob, mine]) }, { name: 'Test outer' });
    await assertStatement('test.people', { group: 'Test inner' }, { entity: quotedIn([mine]) },
        { user: 'restricted', name: 'Test inner' });
    for (const name of ['Test empty', 'Test other', 'Test foreign', 'Test none', "' OR '1'='1"])
        await assertStatement('test.people', { group: name }, { entity: 'AND FALSE' }, { name });
    await assertStatement('test.people', { group: 'Test outer' }, { entity: 'AND FALSE' }, { user: 'restricted' });

    for (const [name, groupid] of [['Test outer', outer], ['Test other', '0'], ["'", '0'], ['', '0']])
        await assertStatement('test.groupid', { group: name }, { groupid });

    const ever = { startDate: '2000-01-01', endDate: '2037-01-01' };
    const { page, statement } = await run('test.groupjoin', { group: 'Test outer', ...ever });
    assert.match(statement, / AS GroupMember ON GroupMember\.name IN \(CallLog\.A_Name,/);
    const [{ n }] = sql(`SELECT SUM((x.cn IN (A_Name, B_Name, B_RemoteName, origCostCentre))) AS n FROM CallLog,
        LDAPUsers x WHERE CallLog.customerid = 1 AND x.customerid = 1 AND x.cn IN ('${[ann, bob, mine]
            .map(({ cn }) => escaped(cn)).join("','")}')`);
    assert.equal(page.rows[0][0].replaceAll(',', ''), n);
    assert.ok(Number(n) > 0);
});

test('inboxes: one by id or name, all, private ones and those of others refused', async () => {
    const restricted = contactId('restricted');
    sql(`REPLACE INTO FrontInbox (id, customerid, name, isPrivate) VALUES ('test1', 1, 'Test Sales', 0),
        ('test2', 1, 'Test Board', 1), ('test3', 2, 'Test Foreign', 0), ("test'4", 1, 'Test Quote', 0),
        ('test5', 2, 'Test Private', 1)`);
    try {
        const all = listOf(`SELECT QUOTE(id) FROM FrontInbox WHERE customerid = 1 AND NOT isPrivate`);
        for (const [criteria, entity, name] of [
            [{}, all, 'All Inboxes'],
            [{ inboxid: 'test1' }, "IN ('test1')", 'Test Sales'],
            [{ inbox: 'Test Quote' }, "IN ('test\\'4')", 'Test Quote'],
            [{ inbox: 'Test Board' }, kNobody, 'No permission for inbox'],
            [{ inbox: 'Test Foreign' }, kNobody, 'No permission for inbox'],
            [{ inboxid: "' OR ''='" }, kNobody, 'No permission for inbox'],
        ])
            await assertStatement('test.inbox', criteria, { entity }, { name });
        sql(`INSERT INTO CallLogPermissions (contactid, customerid, type, entityNumber, logging)
            VALUES (${restricted}, 1, 'Inbox', 'test1', 1)`);
        const mine = listOf(permitted('FrontInbox', 'id', 'id', 'Inbox', 'logging', restricted));
        for (const [criteria, entity] of [
            [{}, mine],
            [{ inbox: 'Test Quote' }, kNobody],
        ])
            await assertStatement('test.inbox', criteria, { entity }, { user: 'restricted' });
        sql(`REPLACE INTO CustomerAttribute VALUES (2, 'privateib', '1')`);
        const two = { user: 'manager2', host: 'two.localhost' };
        await assertStatement('test.inbox', { inbox: 'Test Private' }, { entity: "IN ('test5')" }, two);
    } finally {
        sql(`DELETE FROM CustomerAttribute WHERE AttribName = 'privateib'`);
        sql(`DELETE FROM CallLogPermissions WHERE type = 'Inbox' AND entityNumber = 'test1'`);
        sql(`DELETE FROM FrontInbox WHERE name LIKE 'Test %'`);
    }
});

// ---- which calls

test('criteria without a place of their own follow the condition on the start', async () => {
    const trunks = sql(`SELECT dn, description FROM LDAPTrunks WHERE customerId = 1 ORDER BY dn`);
    const tie = trunks.filter(({ description }) => /internal/.test(description)).map(({ dn }) => `'${dn}'`);
    const contact = (list) => [
        `(A_Name ${list} OR a_num ${list} or a_shortnum ${list})`,
        `(B_Name ${list} OR B_RemoteName ${list} OR B_Num ${list} or B_Shortnum ${list})`,
    ];
    const [caller, dialled] = contact("IN ('0161','O\\'Neil')");
    const contacts = { contact1: '0161', contact6: "O'Neil" };
    for (const [report, criteria, more, title] of [
        ['test.calls', {}, ''],
        ['test.calls', { internal: 'on', external: 'on' }, ''],
        ['test.calls', { internal: 'on' }, " AND CallLog.A_Trunk='' AND CallLog.B_Trunk='' "],
        ['test.calls', { external: 'on' }, " AND (CallLog.A_Trunk!='' OR CallLog.B_Trunk!='') "],
        ['test.calls', { account: "P'1" }, " AND accountCode IN ('P\\'1') ", "For: All where Account code: P'1"],
        ['test.calls', { trunk: trunks[0].dn }, ` AND (A_Trunk ='${trunks[0].dn}' OR B_Trunk ='${trunks[0].dn}') `],
        ['test.calls', { trunkgroup: 'Tie lines' }, ` AND (A_Trunk IN (${tie}) OR B_Trunk IN (${tie})) `,
            'Filtered on: Trunk Group: Tie lines'],
        ['test.calls', { trunkgroup: '*)(cn=*' }, ` AND (A_Trunk ${kEmptyList} OR B_Trunk ${kEmptyList}) `],
        ['test.calls', { timeLimit: '30' }, ' AND callduration > 30 '],
        ['test.calls', { inOutFilter: 'Inbound' }, " AND A_Trunk<>'' AND A_Out=0 "],
        ['test.calls', { inOutFilter: 'Outbound', ddi: "0'1" },
            " AND targetNumber='0\\'1' AND B_Trunk<>'' AND B_Out=1 ", "Filtered on: DDI: 0'1 / Outbound"],
        ['test.contact', contacts, ` AND (${caller} OR ${dialled}) `],
        ['test.contact', { ...contacts, inOutFilter: 'Inbound' }, ` AND ${caller} AND A_Trunk<>'' AND A_Out=0 `],
        ['test.plain', { account: 'x', trunk: 'x', timeLimit: '5', inOutFilter: 'Inbound', ddi: '1', internal: 'on' }, ''],
    ]) {
        const { page } = await assertStatement(report, criteria, { calls: more });
        if (title) assert.ok(page.lines.includes(title), `${title}: ${page.lines}`);
    }
});

test('a template has places of its own; what is typed stays data', async () => {
    const hostile = "\\' \\\\'\" -- [date] [nothing] /* *\\/ ünï 漢字 ; %s%n";
    const slashed = escaped(hostile);
    const everybody = listOf(kAllPeople);
    const parts = {
        int_ext: '', inOutFilter: 'Both', timeLimit: '-1', entity2: "='Sales'", ddi: slashed, tag: slashed,
        var: slashed, extra: slashed, extra2: slashed, fronttable: 'FrontMessage', slaID: '0', slaAnswer: '9999999',
        slaResponse: '9999999', subq_entity: `='${slashed}'`, groupid: '0', shiftSeconds: '27000.0000',
        startday: '2', weeklen: '5', allusers: 'FALSE', allteammates: 'TRUE', contactID: contactId('manager'),
        entityName: slashed, markup: '0', vatrate: '17.5', agDispName: '', agStateName: '', NAName: '',
        startTime: '00:00:00', endTime: '23:59:59', startDate: " DATE('2024-03-15') ",
        endDate: " TIMESTAMP(DATE('2024-03-15'),'23:59:59') ",
    };
    const criteria = {
        inOutFilter: 'Both', timeLimit: '', ddi: hostile, tag: hostile, var: hostile, extra: hostile, extra2: hostile,
        userfilter: hostile, A_searchtype: 'dept', A_suggest1: 'Sales', markup: '', vatrate: '17.5', slaID: '',
        subq_entity: "='' OR 1", groupid: '7', customerSearchGroup: "1','2", wbTime: '> 0', frontTable: 'CallLog',
    };
    const [{ shift }] = sql(`SELECT AttribValue * 3600 AS shift FROM CustomerAttribute WHERE CustomerId = 1
        AND AttribName = 'shiftlength'`);
    parts.shiftSeconds = shift;
    await assertStatement('test.places', criteria, parts);

    const tie = sql(`SELECT QUOTE(dn) AS dn FROM LDAPTrunks WHERE customerId = 1 AND description LIKE '%internal%'`);
    const inside = `('',${tie.map(({ dn }) => dn)})`;
    const subquery = "IN (SELECT cn FROM LDAPUsers WHERE customerid='1')";
    await assertStatement('test.places',
        { ...criteria, internal: 'on', userfilter: '', A_searchtype: '', A_suggest1: '', timeLimit: '9' },
        { ...parts, subq_entity: subquery, entityName: 'All Users', allusers: 'TRUE', entity2: everybody, timeLimit: '9',
            int_ext: ` AND CallLog.A_Trunk IN ${inside} AND CallLog.B_Trunk IN ${inside} ` });
});

test('what cannot be used reaches no statement', async () => {
    const name = `${'a'.repeat(1000)}'${'é'.repeat(9)}`;
    await assertStatement('test.people', { userfilter: name }, { entity: `='${escaped(name)}'` });
    for (const [report, criteria] of [
        ['test.people', { userfilter: 'é'.repeat(5000) }],
        ['test.people', { searchtype: 'queue', suggest1: 'Sales' }],
        ['test.calls', { timeLimit: '5 OR 1' }],
        ['test.calls', { inOutFilter: "Inbound' OR '1" }],
        ['test.places', { slaID: '1) OR (1' }],
        ['test.places', { vatrate: '[date]' }],
    ]) {
        const { page, statement } = await run(report, { ...kDay, ...criteria });
        assert.equal(statement, '', JSON.stringify(criteria));
        assert.match(page.html, /role="alert"/, JSON.stringify(criteria));
    }
});
