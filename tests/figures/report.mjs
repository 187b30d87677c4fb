// The reports of the catalogue for tests: what a page shows, and what it must show. The latter comes
// from this folder's queries and the report's column file; nothing of the portal's own is used.

import { readFileSync, readdirSync } from 'node:fs';
import { env, get, sql } from '../http/portal.mjs';

const kFigures = new URL('./', import.meta.url);
const kCatalogue = new URL('../../db/catalogue/', import.meta.url);

/** Every report of the catalogue: { name, title, offers: { user, department }, columns }. */
export const catalogue = readdirSync(kCatalogue)
    .filter((file) => file.endsWith('.sql'))
    .sort()
    .map((file) => {
        const text = readFileSync(new URL(file, kCatalogue), 'utf8');
        const setting = (key) => text.match(new RegExp(`^-- ${key}: (.*)$`, 'm'))?.[1];
        const name = file.replace(/\.sql$/, '');
        return {
            name,
            title: setting('name'),
            columns: readColumns(name),
            offers: { user: setting('opt_user') === '1', department: setting('opt_department') === '1' },
        };
    });

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

const all = (html, pattern) => [...html.matchAll(pattern)].map(([, text]) => textOf(text));
const cells = (row) => all(row, /<t[dh][^>]*>(.*?)<\/t[dh]>/g);

/** A report's page taken apart: { lines, headings, rows, totals, count, notices, warnings }, all as the
 * texts that a reader sees. */
export function shown(html) {
    const main = mainOf(html);
    const part = (element) => main.match(new RegExp(`<${element}>(.*?)</${element}>`, 's'))?.[1] ?? '';
    const rowsOf = (element) => [...part(element).matchAll(/<tr[^>]*>(.*?)<\/tr>/gs)].map(([, row]) => cells(row));
    return {
        lines: all(main, /<div class="headerLine">(.*?)<\/div>/gs),
        headings: rowsOf('thead').at(-1),
        rows: rowsOf('tbody'),
        totals: rowsOf('tfoot')[0],
        count: main.match(/<div class="rowCount">(.*?)<\/div>/)?.[1],
        notices: all(main, /<div class="notice"[^>]*>(.*?)<\/div>/gs),
        warnings: all(main, /<div class="reportWarning"[^>]*>(.*?)<\/div>/gs),
    };
}

/** Runs a report as the form would; `options` are those of get(). */
export async function runReport(name, criteria, options) {
    const answer = await get(
        { pagename: 'callreport', report: name, submit: 'Generate Report', ...criteria },
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

const shift = (day, days) => new Date(Date.parse(day) + days * 86400000).toISOString().slice(0, 10);

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

/**
 * What the report must show for the local days `first` to `last` of `zone`: { rows, totals } as shown()
 * has them; no totals without rows. `legs` is an SQL condition: those of the log that do not meet it lie
 * outside the period (they still tell where a call began). `keep` chooses the rows by their figures.
 */
export function figures(report, { first, last, zone, customer = 1, legs = '', keep = () => true }) {
    const query = readFileSync(new URL(`${report.name}.sql`, kFigures), 'utf8');
    const utc = (day) => `TIMESTAMP('1970-01-01') + INTERVAL UNIX_TIMESTAMP('${day} 00:00:00') SECOND`;
    // A temporary table hides the real one of its name from this session.
    const others =
        legs &&
        `CREATE TEMPORARY TABLE CallLog AS SELECT * FROM CallLog WHERE customerid = @customer;
        UPDATE CallLog SET gmtdatetime = '1980-01-01' WHERE NOT (${legs});`;
    const raw = sql(`SET time_zone = '${zone}', @customer = ${customer};
        SET @from = ${utc(first)}, @to = ${utc(shift(last, 1))}; ${others}
${query}`).filter(keep);
    return {
        rows: raw.map((row) => report.columns.map(({ field, style }) => display(style, row[field]))),
        totals: raw.length > 0 ? report.columns.map((column, i) => total(column, i, raw)) : undefined,
    };
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
    return by === 0n ? '-' : displayUnits(style, divide(sum(value) * factor * kScale, by));
}
