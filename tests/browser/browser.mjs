// The portal in Debian's Chromium: signed-in pages, what they complain about, and how accessible they are.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { chromium } from 'playwright-core';
import { account, env } from '../http/portal.mjs';

const kAxe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const kSevere = ['serious', 'critical'];

/** A telephone, as options of a browser context. */
export const kPhone = { viewport: { width: 360, height: 740 }, hasTouch: true, isMobile: true };

/** Starts the browser; the caller closes it. */
export function launch() {
    return chromium.launch({
        executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
        args: [
            '--no-sandbox',
            '--disable-gpu',
            '--disable-quic',
            '--no-first-run',
            '--disable-background-networking',
            '--disable-component-update',
            '--disable-sync',
        ],
    });
}

/**
 * Runs `drive(page)` on a page of a fresh profile in which a demo user is signed in, and fails when the
 * page complained: a script error, a line on the console (which is where a breach of the content security
 * policy is told), or something that could not be loaded. `options` are those of a browser context.
 */
export async function withPage(browser, options, drive) {
    const { name: username, password } = account(options.user ?? 'manager');
    const context = await browser.newContext({ ...options, httpCredentials: { username, password } });
    const complaints = [];
    context.on('console', (line) => {
        if (['error', 'warning'].includes(line.type())) complaints.push(`${line.page()?.url()}: ${line.text()}`);
    });
    context.on('weberror', (error) => complaints.push(String(error.error())));
    context.on('response', (response) => {
        // The first request goes out without the password, which the server then asks for.
        if (response.status() >= 400 && response.status() !== 401)
            complaints.push(`${response.status()} ${response.url()}`);
    });
    try {
        const page = await context.newPage();
        page.setDefaultTimeout(20000);
        await drive(page);
        assert.deepEqual(complaints, []);
    } finally {
        await context.close();
    }
}

/** Opens the catalogue. */
export const open = (page, query = '') => page.goto(env.URL + (query && `?${new URLSearchParams(query)}`));

/** Fails when the page has an accessibility fault that stops or badly hinders somebody. */
export async function assertAccessible(page, what) {
    // Evaluated by the browser itself: the page's policy would not let a script element in.
    await page.evaluate(kAxe);
    const { violations } = await page.evaluate(() => globalThis.axe.run());
    const faults = violations
        .filter(({ impact }) => kSevere.includes(impact))
        .map(
            ({ id, help, nodes }) =>
                `${id}: ${help}: ${nodes
                    .slice(0, 3)
                    .map(({ html }) => html)
                    .join(' ')}`,
        );
    assert.deepEqual(faults, [], what);
}

/** Fails when the page is wider than the window. */
export async function assertFits(page, what) {
    // A telephone's window grows with what it holds, so its own width says nothing.
    const [content, window] = await page.evaluate(() => [
        document.scrollingElement.scrollWidth,
        document.documentElement.clientWidth,
    ]);
    assert.ok(content <= window, `${what}: ${content} pixels in ${window}`);
}
