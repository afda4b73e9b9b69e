// The pages of the examples in a browser.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { drawn, duct, launch, open, power, step, water } from '../tools/browser.mjs';

let browser;
before(async () => {
    browser = await launch();
});
after(async () => {
    await browser.close();
});

async function onPage(file, options, action) {
    const page = await open(browser, file, options);
    await action(page);
    assert.deepEqual(page.wrong, []);
    await page.close();
}

for (const [name, file] of [['water', water], ['power', power]]) {
    for (const colorScheme of ['light', 'dark']) {
        test(`the page of ${name} opens without an error (${colorScheme})`, () =>
            onPage(file(), { colorScheme }, async (page) => {
                assert.match(await page.locator('.verdict').innerText(), /since step/);
                assert.ok((await page.locator('.candidate').count()) > 0);
                assert.ok((await page.locator('.conflict').count()) > 0);
                assert.ok((await page.locator('.plot').count()) > 0);
            }));
    }
}

test('the first line says what is wrong, since when, and how sure that is', () =>
    onPage(water(), {}, async (page) => {
        assert.equal(
            await page.locator('.verdict').innerText(),
            'branchB/valve.position is stuckClosed since step 11, t = 600 s; branchB/starter.contactor is open since step 14, t = 780 s. 99.9 %',
        );
    }));

test('dark mode has a dark ground', () =>
    onPage(water(), { colorScheme: 'dark' }, async (page) => {
        const ground = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
        const [red] = ground.match(/\d+/g).map(Number);
        assert.ok(red < 60, ground);
    }));

test('the arrow keys move the cursor, and every view goes with it', () =>
    onPage(water(), {}, async (page) => {
        assert.equal(await step(page), 28);
        await page.keyboard.press('Home');
        await drawn(page);
        assert.equal(await step(page), 1);
        assert.match(await page.locator('#candidates').innerText(), /nothing is wrong/);
        assert.match(await page.locator('#conflicts').innerText(), /Nothing up to here contradicted/);
        for (let i = 0; i < 10; ++i) await page.keyboard.press('ArrowRight');
        await drawn(page);
        assert.equal(await step(page), 11);
        assert.match(await page.locator('#readout').innerText(), /Step 11, t = 600 s: faulty/);
        assert.match(await page.locator('#candidates').innerText(), /78\.7 %\s*branchB\/valve\.position = closed since step 11/);
        assert.match(await page.locator('.plot[data-channel="ZS-112"] .reading').innerText(), /0: no/);
        assert.match(await page.locator('.lane-row').first().innerText(), /closed · 98\.5 % wrong/);
    }));

test('n and p go from one change to the next', () =>
    onPage(water(), {}, async (page) => {
        await page.keyboard.press('Home');
        const steps = [];
        for (let i = 0; i < 3; ++i) {
            await page.keyboard.press('n');
            await drawn(page);
            steps.push(await step(page));
        }
        assert.deepEqual(steps, [11, 12, 13]);
        await page.keyboard.press('p');
        await drawn(page);
        assert.equal(await step(page), 12);
    }));

test('the cursor follows the mouse until a click holds it', () =>
    onPage(water(), {}, async (page) => {
        const box = await page.locator('#timeline').boundingBox();
        const at = (share) => [box.x + box.width * share, box.y + 10];
        await page.mouse.move(...at(0.001));
        await drawn(page);
        assert.equal(await step(page), 1);
        await page.mouse.click(...at(0.5));
        await page.mouse.move(...at(0.9));
        await drawn(page);
        assert.ok([14, 15].includes(await step(page)));
        await page.keyboard.press('Escape');
        await page.mouse.move(...at(0.999));
        await drawn(page);
        assert.equal(await step(page), 28);
    }));

test('dragging shows a part of time, and 0 all of it', () =>
    onPage(water(), {}, async (page) => {
        const box = await page.locator('#timeline').boundingBox();
        await page.mouse.move(box.x + box.width * 0.3, box.y + 10);
        await page.mouse.down();
        await page.mouse.move(box.x + box.width * 0.5, box.y + 10, { steps: 4 });
        await page.mouse.up();
        await drawn(page);
        const shot = await page.locator('#timeline').screenshot();
        await page.keyboard.press('0');
        await drawn(page);
        assert.notDeepEqual(await page.locator('#timeline').screenshot(), shot);
    }));

test('a conflict is told as itms explain tells it', () =>
    onPage(water(), {}, async (page) => {
        await page.keyboard.press('Home');
        await page.keyboard.press('n');
        await drawn(page);
        const card = page.locator('.conflict').first();
        const text = await card.innerText();
        assert.match(text, /Conflict 1, step 11, t = 600 s/);
        assert.match(text, /observed\s+branchB\/limit\.reading = no \(ZS-112\)/);
        assert.match(text, /expected\s+branchB\/limit\.reading = yes/);
        assert.match(text, /78\.7 %\s+branchB\/valve\.position = closed instead of open/);
        assert.match(text, /confirmed; nothing of this can be left out/);
        await card.locator('details summary').first().click();
        assert.equal(
            (await card.locator('.source .here').first().innerText()).trim(),
            '64      law position in {open, stuckOpen}     -> passage = open',
        );
    }));

test('one explanation can be looked at alone', () =>
    onPage(power(), {}, async (page) => {
        const first = page.locator('.candidate').first();
        const before = await page.locator('#probabilities').screenshot();
        await first.click();
        await drawn(page);
        assert.equal(await page.locator('.candidate').first().getAttribute('aria-pressed'), 'true');
        assert.notDeepEqual(await page.locator('#probabilities').screenshot(), before);
    }));

test('explanations that cannot be told apart are one entry, and each of them can be looked at', () =>
    onPage(duct(), {}, async (page) => {
        const group = page.locator('.group').first();
        assert.match(await group.innerText(), /100 %\s*one of\s+66\.7 %\s*fan\.state = beltTorn since step 7\s+33\.3 %[^]*and with it meter\.state = dead/);
        assert.equal(await group.locator('.candidate').count(), 2);
        await group.locator('.candidate').nth(1).click();
        await drawn(page);
        assert.equal(await group.locator('.candidate').nth(1).getAttribute('aria-pressed'), 'true');
    }));

test('the first line names all of those that cannot be told apart', () =>
    onPage(duct(), {}, async (page) => {
        assert.match(await page.locator('.verdict').innerText(), /fan\.state is beltTorn \(66\.7 %\) or fan\.state is wheelLoose \(33\.3 %\), since step 7/);
    }));

test('the plant folds and unfolds', () =>
    onPage(power(), {}, async (page) => {
        const nodes = async () => Number(await page.locator('#graph').getAttribute('data-nodes'));
        await page.getByRole('button', { name: 'Fold all', exact: true }).click();
        const folded = await nodes();
        await page.getByRole('button', { name: 'Unfold all' }).click();
        assert.ok((await nodes()) > folded + 20, `${await nodes()} and ${folded}`);
    }));

test('a click on a component shows its laws and leads to its channels', () =>
    onPage(water(), {}, async (page) => {
        await page.locator('#plant-table summary').click();
        await page.locator('#plant-table').getByRole('button', { name: 'branchB/ammeter' }).click();
        await drawn(page);
        assert.match(await page.locator('#component').innerText(), /law state = dead -> reading = zero/);
        await page.locator('#component').getByRole('button', { name: 'IT-112' }).click();
        assert.equal(await page.locator('.plot').count(), 1);
    }));

test('the search finds components and channels', () =>
    onPage(water(), {}, async (page) => {
        await page.keyboard.press('/');
        await page.keyboard.type('PT-12');
        await page.keyboard.press('Enter');
        assert.deepEqual(await page.locator('.plot').evaluateAll((plots) => plots.map((one) => one.dataset.channel)), ['PT-121']);
        await page.keyboard.press('/');
        await page.locator('#search').fill('branchB/pump');
        await page.keyboard.press('Enter');
        await drawn(page);
        assert.match(await page.locator('#component h3').innerText(), /branchB\/pump/);
    }));

test('channels of a conflict are shown first, and all on demand', () =>
    onPage(power(), {}, async (page) => {
        assert.match(await page.locator('#channel-note').innerText(), /^5 of 55 channels/);
        await page.locator('#channel-filter').fill('*');
        assert.match(await page.locator('#channel-note').innerText(), /^55 of 55 channels/);
        assert.equal(await page.locator('.plot').count(), 8);
    }));

test('every chart has a table', () =>
    onPage(water(), {}, async (page) => {
        for (const part of ['timeline', 'explanations', 'plant', 'modes', 'channels']) {
            await page.locator(`#${part}-table summary`).click();
            await page.locator(`#${part}-table tbody tr`).nth(3).waitFor({ timeout: 5000 });
        }
        const row = page.locator('#modes-table tr', { hasText: 'branchB/valve.position' });
        assert.match(await row.innerText(), /stuckClosed/);
    }));

test('nothing is wider than a narrow screen', () =>
    onPage(power(), { viewport: { width: 360, height: 700 } }, async (page) => {
        const [wide, screen] = await page.evaluate(() => [document.documentElement.scrollWidth, window.innerWidth]);
        assert.ok(wide <= screen, `${wide} on ${screen}`);
    }));

test('a conflict is marked in the plant', () =>
    onPage(water(), {}, async (page) => {
        const before = await page.locator('#graph').screenshot();
        await page.getByRole('button', { name: 'in the plant' }).first().click();
        await drawn(page);
        assert.equal(await page.locator('.conflict.shown').count(), 1);
        assert.notDeepEqual(await page.locator('#graph').screenshot(), before);
    }));

test('a page that is printed shows all of the conflicts', () =>
    onPage(water(), {}, async (page) => {
        await page.emulateMedia({ media: 'print' });
        const [box, content] = await page.locator('#why').evaluate((one) => [one.clientHeight, one.scrollHeight]);
        assert.ok(content <= box + 1, `${content} in ${box}`);
    }));

test('what is printed is light, whatever the screen is', () =>
    onPage(water(), { colorScheme: 'dark' }, async (page) => {
        const picture = () => page.locator('#timeline').evaluate((canvas) => canvas.toDataURL());
        const dark = await picture();
        await page.emulateMedia({ media: 'print', colorScheme: 'dark' });
        await drawn(page);
        const printed = await picture();
        await page.emulateMedia({ media: 'screen', colorScheme: 'light' });
        await drawn(page);
        assert.notEqual(printed, dark);
        assert.equal(printed, await picture());
    }));

test('everything that can be clicked can be reached with the tabulator', () =>
    onPage(water(), {}, async (page) => {
        const unreachable = await page.evaluate(() =>
            [...document.querySelectorAll('button, summary, input, [role=slider], #graph')]
                .filter((one) => one.checkVisibility() && one.tabIndex < 0)
                .map((one) => one.outerHTML),
        );
        assert.deepEqual(unreachable, []);
    }));
