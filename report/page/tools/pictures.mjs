// Makes the pictures in docs/pictures/ anew: node tools/pictures.mjs
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { drawn, launch, open, power, root, water } from './browser.mjs';

const folder = join(root, 'docs/pictures');
mkdirSync(folder, { recursive: true });
const browser = await launch();

async function picture(name, file, options, prepare = async () => {}, clip = undefined) {
    const page = await open(browser, file, options);
    await prepare(page);
    await drawn(page);
    await page.mouse.move(0, 0);
    const path = join(folder, `${name}.png`);
    if (clip) await page.locator(clip).screenshot({ path });
    else await page.screenshot({ path });
    if (page.wrong.length > 0) throw new Error(page.wrong.join('\n'));
    await page.close();
}

const atStep = (step) => async (page) => {
    await page.keyboard.press('Home');
    for (let i = 1; i < step; ++i) await page.keyboard.press('ArrowRight');
};
const size = { viewport: { width: 1100, height: 720 } };
await picture('report-water', water(), { ...size, colorScheme: 'light' }, atStep(12));
await picture('report-power-dark', power(), { ...size, colorScheme: 'dark' }, atStep(19));
await picture('report-plant', water(), { ...size, colorScheme: 'light' }, async (page) => {
    await atStep(12)(page);
    await page.getByRole('button', { name: 'in the plant' }).first().click();
}, '#plant');
await picture('report-channels-dark', water(), { ...size, colorScheme: 'dark' }, atStep(12), '#channels');
await picture('report-narrow', water(), { viewport: { width: 390, height: 720 }, colorScheme: 'light' }, atStep(12));
await browser.close();
