// A browser that is there, and pages in it of which everything that goes wrong is noted.
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

export const root = new URL('../../../', import.meta.url).pathname;
const itms = process.env.ITMS ?? join(root, 'build/release/bin/itms');
export const folder = mkdtempSync(join(tmpdir(), 'itms-page-'));

/** The page of a run: the file that the program wrote. */
export function report(name, model, telemetry) {
    const file = join(folder, `${name}.html`);
    if (!existsSync(file)) {
        try {
            execFileSync(itms, ['report', model, telemetry, '-q', '-o', file], { cwd: root });
        } catch (error) {
            if (error.status !== 3) throw error; // some step is not explained: there is a page all the same
        }
    }
    return file;
}
export const water = () => report('water', 'examples/water/station.itms', 'examples/water/stuck-valve.jsonl');
export const power = () => report('power', 'examples/power/grid.itms', 'examples/power/shorted-motor.jsonl');
export const duct = () => report('duct', 'examples/guide/duct.itms', 'examples/guide/afternoon.csv');

export function launch() {
    return chromium.launch({
        executablePath: process.env.ITMS_BROWSER ?? '/usr/bin/chromium',
        args: [
            ...(process.getuid?.() === 0 ? ['--no-sandbox'] : []),
            '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
            '--disable-component-update', '--disable-sync',
        ],
    });
}

/** Opens a file, and fails where anything is written to the console, thrown, or asked of the network. */
export async function open(browser, file, options = {}) {
    const page = await browser.newPage({ viewport: { width: 1280, height: 900 }, ...options });
    const wrong = [];
    page.on('console', (message) => wrong.push(`${message.type()}: ${message.text()}`));
    page.on('pageerror', (error) => wrong.push(String(error)));
    page.on('request', (request) => {
        if (!request.url().startsWith('file:') && !request.url().startsWith('data:')) wrong.push(`asked for ${request.url()}`);
    });
    page.wrong = wrong;
    await page.goto(`file://${file}`);
    await page.waitForSelector('html[data-ready=yes]', { timeout: 30000 });
    return page;
}

/** The next frame has been drawn. */
export const drawn = (page) => page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => done()))));
export const step = async (page) => Number(await page.locator('#timeline').getAttribute('aria-valuenow'));
