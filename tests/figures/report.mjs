// The reports of the catalogue for tests: what a page shows, and what it must show. The latter comes
// from this folder's queries and the report's column file; nothing of the portal's own is used.

import { readFileSync, readdirSync } from 'node:fs';
import { env, get, sql, sqlLater } from '../http/portal.mjs';
import { criteria } from './criteria.mjs';

const kFigures = new URL('./', import.meta.url);
const kCatalogue = new URL('../../db/catalogue/', import.meta.url);

/**
 * Every report of the catalogue that is run for itself: { name, title, columns, offers: { user, … }, keys,
 * keyTitle, arguments, variables, everyLeg }. Rows that agree in `keys` form a series. `arguments` are criteria that the
 * report cannot do without, `variables` the SQL that says the same to its query here. With `everyLeg` the query
 * chooses by itself among all legs of the period, by the directory and the window of the day.
 */
export const catalogue = readdirSync(kCatalogue)
    .filter((file) => file.endsWith('.sql'))
    // The lists behind figures, which need one; tests/http/drill.test.mjs counts their rows.
    .filter((file) => !readFileSync(new URL(file, kCatalogue), 'utf8').includes('[drill]'))
    .sort()
    .map((file) => {
        const text = readFileSync(new URL(file, kCatalogue), 'utf8');
        const setting = (key) => text.match(new RegExp(`^-- ${key}: (.*)$`, 'm'))?.[1];
        const name = file.replace(/\.sql$/, '');
        return {
            name,
            title: setting('name'),
            columns: readColumns(name),
            offers: Object.fromEntries(
                ['user', 'department', 'queue', 'agent', 'inbox'].map((kind) => [kind, setting(`opt_${kind}`) === '1']),
            ),
            keys: [setting('multikeyfield'), setting('multikeyfield2')].filter(Boolean),
            keyTitle: setting('multititle'),
            leadsFromAnother: text.includes('[drill]'),
            ...{ arguments: {}, variables: '', ...criteria[name] },
        };
    })
    .filter((report) => !report.leadsFromAnother);

// A line a column: name, style, heading, two unused here, heading of the group, kind of the total and
// what it is made of.
function readColumns(name) {
    const lines = readFileSync(new URL(`${name}.col`, kCatalogue), 'utf8')
        .trim()
        .split('\n');
    return lines.map((line) => {
        const words = [...line.matchAll(/"([^"]*)"|(\S+)/g)].map(([, quoted, bare]) => quoted ?? bare);
        const [field, style, heading, , , , total, value, divisor] = words;
        return { field, style, heading, total, value, divisor };
    });
}

// ---- what a page shows

const kEntities = { '&amp;': '&', '&lt;': '<', '&gt;': '>', '&quot;': '"', '&#39;': "'" };

/** The text of a piece of HTML. */
export function textOf(html) {
    return html.replace(/<[^>]*>/g, '').replace(/&(amp|lt|gt|quot|#39);/g, (entity) => kEntities[entity]);
}

/** The page between its frame's top and bottom. */
export function mainOf(html) {
    return html.slice(html.indexOf('<main'), html.indexOf('</main>'));
}

/** The heading of a page. */
export const headingOf = (html) => textOf(html.match(/<h1>(.*?)<\/h1>/)?.[1] ?? '');

const all = (html, pattern) => [...html.matchAll(pattern)].map(([, text]) => textOf(text));
const cells = (row) => all(row, /<t[dh][^>]*>(.*?)<\/t[dh]>/g);

/** A report's page taken apart: { lines, headings, rows, series: [{ title, rows, totals }], totals, count,
 * notices, warnings }, all as the texts that a reader sees; but not its graph, which has a table too. */
export function shown(html) {
    const main = mainOf(html).replace(/<figure.*?<\/figure>/gs, '');
    const table = main.match(/<table class="reportTable">.*?<\/table>/s)?.[0] ?? '';
    const rowsOf = (element) => [
        ...(table.match(new RegExp(`<${element}>(.*?)</${element}>`, 's'))?.[1] ?? '').matchAll(
            /<tr(?: class="(\w+)")?>(.*?)<\/tr>/gs,
        ),
    ].map(([, kind, row]) => ({ kind, cells: cells(row) }));
    const result = { rows: [], series: [] };
    for (const row of rowsOf('tbody')) {
        if (row.kind === 'seriesrow') result.series.push({ title: row.cells[0], rows: [], totals: undefined });
        else if (row.kind === 'subtotalrow') result.series.at(-1).totals = row.cells;
        else {
            result.rows.push(row.cells);
            result.series.at(-1)?.rows.push(row.cells);
        }
    }
    return {
        ...result,
        lines: all(main, /<div class="headerLine">(.*?)<\/div>/gs),
        headings: rowsOf('thead').at(-1)?.cells,
        totals: rowsOf('tfoot')[0]?.cells,
        count: main.match(/<div class="rowCount">(.*?)<\/div>/)?.[1],
        notices: all(main, /<div class="notice"[^>]*>(.*?)<\/div>/gs),
        warnings: all(main, /<div class="reportWarning"[^>]*>(.*?)<\/div>/gs),
    };
}

/** Runs a report as the form would; `options` are those of get(). */
export async function runReport(name, criteria, options) {
    const answer = await get(
        { pagename: 'callreport', report: name, submit: 'Generate Report', rows: 'all', wait: 1, confirm: 1, ...criteria },
        options,
    );
    return { ...shown(answer.text), html: answer.text };
}

// ---- what it must show

/** The time zone that a user reads in. */
export function zoneOf(user) {
    const [row] = sql(`SELECT attribvalue AS zone FROM CustomerContactAttrib
        WHERE attribname = 'timezone' AND userid = (SELECT id FROM CustomerContact WHERE username = '${user}')`);
    return row?.zone ?? env.ZONE;
}

const today = (zone) => sql(`SET time_zone = '${zone}'; SELECT CURDATE() AS day`)[0].day;

/** Runs `check` with the present day of the zone; once more when that day ends in the middle. */
export async function onOneDay(zone, check) {
    const day = today(zone);
    try {
        await check(day);
    } catch (error) {
        const next = today(zone);
        if (next === day) throw error;
        await check(next);
    }
}

/** The day that lies so many days behind. */
export const shift = (day, days) => new Date(Date.parse(day) + days * 86400000).toISOString().slice(0, 10);

/** The first and last day of each period that the form offers, for a customer whose weeks begin on a
 * Monday and have `weekLength` days. */
export function periods(day, weekLength) {
    const [year, month] = day.split('-');
    const monthStart = `${year}-${month}-01`;
    const lastMonthEnd = shift(monthStart, -1);
    const monday = shift(day, -((new Date(day).getUTCDay() + 6) % 7));
    const spans = Object.fromEntries(
        [7, 30, 60, 90].flatMap((days) => [
            [`${days}days`, [shift(day, 1 - days), day]],
            [`p${days}days`, [shift(day, -days), shift(day, -1)]],
        ]),
    );
    return {
        today: [day, day],
        yesterday: [shift(day, -1), shift(day, -1)],
        thisweek: [monday, day],
        lastweek: [shift(monday, -7), shift(monday, weekLength - 8)],
        thismonth: [monthStart, day],
        lastmonth: [`${lastMonthEnd.slice(0, 7)}-01`, lastMonthEnd],
        thisyear: [`${year}-01-01`, day],
        lastyear: [`${year - 1}-01-01`, `${year - 1}-12-31`],
        all: ['2000-01-01', day],
        custom: [day, day],
        ...spans,
    };
}

const prelude = (name) => readFileSync(new URL(`prelude/${name}.sql`, kFigures), 'utf8');

// Kinds of people and places: where they are listed, and the row of permissions that lets somebody see them.
const kKinds = {
    user: { table: 'LDAPUsers', name: 'cn', number: 'telephoneNumber', type: 'User', right: 'logging' },
    department: { table: 'LDAPDepartments', name: 'cn', number: 'telephoneNumber', type: 'Department', right: 'logging' },
    queue: { table: 'CallCentreQueue', name: 'queueName', number: 'queueNumber', type: 'Department', right: 'queue' },
    agent: { table: 'CallCentreAgent', name: 'agentName', number: 'agentNumber', type: 'User', right: 'agent' },
    inbox: { table: 'FrontInbox', name: 'name', number: 'id', type: 'Inbox', right: 'logging' },
    teammate: { table: 'FrontTeammate', name: "CONCAT(firstName, ' ', lastName)", number: 'id', type: 'Teammate',
        right: 'logging' },
};

/** The entries of the directory, { kind, name, number }, that a restricted user of customer 1 may see and a
 * report counts, which it does by the kinds that it offers, or else by users and departments. */
export function permittedTo(user, offers) {
    // An inbox is answered by teammates.
    const offered = Object.keys(kKinds).filter((kind) => offers[kind === 'teammate' ? 'inbox' : kind]);
    return (offered.length > 0 ? offered : ['user', 'department']).flatMap((kind) => {
        const { table, name, number, type, right } = kKinds[kind];
        return sql(`SELECT '${kind}' AS kind, ${name} AS name, d.${number} AS number FROM ${table} AS d
            INNER JOIN CallLogPermissions AS p ON p.entityNumber = d.${number} AND p.customerid = d.customerid
                AND p.type = '${type}' AND p.${right} = 1
                AND p.contactid = (SELECT id FROM CustomerContact WHERE username = '${user}')
            WHERE d.customerid = 1 ORDER BY name`);
    });
}

/** The condition on legs that one of these directory entries took part in, found by their numbers. */
export function legsOf(entities) {
    const numbers = quoted(entities.map(({ number }) => number));
    const departments = quoted(entities.filter(({ kind }) => kind === 'department').map(({ name }) => name));
    return `((A_Trunk = '' AND A_Num IN (${numbers}))
        OR (B_Trunk = '' AND (B_Num IN (${numbers}) OR B_Remote IN (${numbers})))
        OR origCostCentre IN (${departments}))`;
}

const quoted = (texts) =>
    texts.map((text) => `'${text.replaceAll('\\', '\\\\').replaceAll("'", "\\'")}'`).join(',') || "''";

// A temporary table hides the real one of its name from this session: a directory of these entities.
const smallDirectory = (entities) =>
    Object.entries(kKinds).map(([kind, { table, number }]) => {
        const numbers = quoted(entities.filter((entity) => entity.kind === kind).map((entity) => entity.number));
        return `CREATE TEMPORARY TABLE ${table} AS SELECT * FROM ${table}
            WHERE customerid = @customer AND ${number} IN (${numbers});`;
    });

// Legs that do not count lie outside the period; they still tell where a call began.
const smallLog = (legs) =>
    `CREATE TEMPORARY TABLE CallLog AS SELECT * FROM CallLog WHERE customerid = @customer;
    UPDATE CallLog SET gmtdatetime = '1980-01-01' WHERE NOT (${legs});`;

/**
 * What the report must show for the local days `first` to `last` of `zone`: { rows, series, totals } as
 * shown() has them; no totals without rows. `legs` is an SQL condition on the legs of the log that count.
 * `entities` are those whom the reader may see, everybody unless given.
 */
export async function figures(report, { first, last, zone, customer = 1, legs = 'TRUE', hours = ['00:00:00', '23:59:59'], entities }) {
    const query = readFileSync(new URL(`${report.name}.sql`, kFigures), 'utf8');
    const utc = (day) => `TIMESTAMP('1970-01-01') + INTERVAL UNIX_TIMESTAMP('${day} 00:00:00') SECOND`;
    const chosen = entities ? `(${legs}) AND ${legsOf(entities)}` : legs;
    const counted = report.everyLeg ? 'TRUE' : chosen;
    const uses = (...tables) => new RegExp(`(?<!\\w)(${tables.join('|')})\\b`).test(query);
    const preparations = [
        // Averages in full, so that a share is rounded once.
        'SET div_precision_increment = 12;',
        `SET time_zone = '${zone}', @customer = ${customer}, @begins = '${hours[0]}', @ends = '${hours[1]}';`,
        `SET @from = ${utc(first)}, @to = ${utc(shift(last, 1))};`,
        `SET @restricted = ${entities !== undefined};`,
        report.variables,
        ...(entities ? smallDirectory(entities) : []),
        counted !== 'TRUE' && uses('CallLog', 'Part', 'Busy') ? smallLog(counted) : '',
        uses('Leg', 'Part', 'Busy') ? `${prelude('legs')} DELETE FROM Leg WHERE NOT (${counted});` : '',
        uses('Part', 'Busy') ? prelude('parts') : '',
        uses('Message', 'Question') ? prelude('messages') : '',
        uses('@markup', '@vatrate') ? prelude('rates') : '',
    ];
    const raw = await sqlLater(preparations.join('\n') + query);
    const shownRow = (row) => report.columns.map(({ field, style }) => display(style, row[field]));
    const totalled = raw.length > 0 && report.columns.some((column) => column.total);
    const totalsOf = (rows) => (totalled ? report.columns.map((column, i) => total(column, i, rows)) : undefined);
    return {
        rows: raw.map(shownRow),
        series: seriesOf(report, raw).map(({ title, rows }) => ({ title, rows: rows.map(shownRow), totals: totalsOf(rows) })),
        totals: totalsOf(raw),
    };
}

// Neighbouring rows with the same keys, under what they have in common.
function seriesOf({ keys, keyTitle }, raw) {
    const series = [];
    for (const row of keys.length > 0 ? raw : []) {
        const key = keys.map((field) => row[field] ?? '').join(', ');
        const title = keyTitle ? `${keyTitle}: ${key}` : key;
        if (series.at(-1)?.title !== title) series.push({ title, rows: [] });
        series.at(-1).rows.push(row);
    }
    return series;
}

// Figures have at most four decimals: they are counted in ten-thousandths.
const kScale = 10000n;

function units(text) {
    const [, sign, whole, decimals = ''] = text.match(/^(-?)(\d+)(?:\.(\d{1,4}))?$/);
    return BigInt(sign + whole + decimals.padEnd(4, '0'));
}

const divide = (value, divisor) => (value * 2n + divisor) / (divisor * 2n); // no figure is negative

function display(style, text) {
    if (style === 'text' || style === 'date') return text ?? '';
    if (style === 'number') return text ?? '-';
    return text === null ? '-' : displayUnits(style, units(text));
}

function displayUnits(style, value) {
    const fixed = (decimals) => {
        const digits = String(divide(value, 10n ** BigInt(4 - decimals))).padStart(decimals + 1, '0');
        return `${digits.slice(0, -decimals)}.${digits.slice(-decimals)}`;
    };
    switch (style) {
        case 'money':
            return fixed(2);
        case 'percent':
            return `${fixed(1)}%`;
        case 'time': {
            const seconds = divide(value, kScale);
            const two = (number) => String(number % 60n).padStart(2, '0');
            return `${seconds / 3600n}:${two(seconds / 60n)}:${two(seconds)}`;
        }
        default:
            return fixed(4).replace(/\.?0+$/, '');
    }
}

function total({ field, style, total: kind, value, divisor }, position, raw) {
    const sum = (name) => raw.reduce((result, row) => result + (row[name] === null ? 0n : units(row[name])), 0n);
    if (kind === '') return position === 0 ? 'Total' : '';
    if (kind === 'count') return String(raw.length);
    if (kind === 'sum') return displayUnits(style, sum(field));
    const by = sum(divisor);
    const factor = kind === 'percent' ? 100n : 1n;
    if (by === 0n) return '-';
    // The average of plain numbers has one decimal.
    const step = style === 'number' ? kScale / 10n : 1n;
    return displayUnits(style, divide((sum(value) * factor * kScale) / step, by) * step);
}
