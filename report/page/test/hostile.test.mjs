// Names that would like to be more than names, and pages of long runs.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { folder, launch, open, report, root, step } from '../tools/browser.mjs';

let browser;
before(async () => {
    browser = await launch();
});
after(async () => {
    await browser.close();
});

test('a name with markup in it stays a name, wherever it is shown', async () => {
    const evil = `</script><img/src='x'/onerror='document.title="broken"'>`.replaceAll(/[\s.,:=!|"]/g, '-');
    const channel = `${evil} <!-- <script>document.title = "broken"</script> \\u003c "'`;
    const variable = (name, kind, values) => ({ name, kind, values: values.map((value) => ({ name: value })) });
    const model = {
        format: 'itms-model',
        v: 1,
        components: [
            {
                name: evil,
                variables: [
                    variable(evil, 'cond', [evil, 'other']),
                    { name: 'mode', kind: 'mode', initial: 'good', values: [{ name: 'good' }, { name: `bad${evil}`, fault: true }] },
                ],
            },
            { name: 'second', variables: [variable('v', 'cond', ['a', 'b'])] },
        ],
        laws: [
            { literals: [`!${evil}.mode=good`, `${evil}.${evil}=${evil}`] },
            { literals: [`!${evil}.${evil}=${evil}`, 'second.v=a'] },
        ],
        transitions: [{ kind: 'fault', from: `${evil}.mode=good`, to: `${evil}.mode=bad${evil}`, probability: 0.01 }],
        channels: [{ kind: 'observe', channel, variable: `${evil}.${evil}` }],
    };
    const [plant, log] = [join(folder, 'evil.json'), join(folder, 'evil.jsonl')];
    writeFileSync(plant, JSON.stringify(model));
    writeFileSync(log, `${JSON.stringify({ observations: { [channel]: evil } })}\n${JSON.stringify({ observations: { [channel]: 'other' } })}\n`);
    const page = await open(browser, report('evil', plant, log));
    assert.equal(await page.locator('.conflict').count(), 1);
    for (const part of ['timeline', 'explanations', 'plant', 'modes', 'channels']) await page.locator(`#${part}-table summary`).click();
    await page.keyboard.press('/');
    await page.keyboard.type('script');
    assert.ok((await page.locator('#found li').count()) > 1);
    await page.keyboard.press('Enter');
    assert.match(await page.locator('#component h3').innerText(), /^<\/script><img/);
    assert.notEqual(await page.title(), 'broken');
    assert.equal(await page.locator('img').count(), 0);
    assert.deepEqual(page.wrong, []);
});

test('a script that got onto the page would not run', async () => {
    const page = await open(browser, report('water', 'examples/water/station.itms', 'examples/water/stuck-valve.jsonl'));
    await page.evaluate(() => {
        const script = document.createElement('script');
        script.textContent = 'document.title = "broken"';
        document.body.append(script);
    });
    assert.notEqual(await page.title(), 'broken');
    assert.match(page.wrong.join('\n'), /Content Security Policy/);
});

test('the page of a long run says what a point stands for, and has its last step', async () => {
    execFileSync(join(root, 'bench/page-plant.py'), [join(folder, 'long'), '4500', '20']);
    const file = report('long', join(folder, 'long/plant.itms'), join(folder, 'long/log.csv'));
    assert.ok(statSync(file).size < 3e6);
    const page = await open(browser, file);
    assert.match(await page.locator('#summary').innerText(), /Each point stands for up to 2 steps/);
    assert.match(await page.locator('#summary').innerText(), /2023-11-14 22:13:20 UTC to 2023-11-14 23:28:19 UTC/);
    assert.equal(await step(page), 4500);
    assert.deepEqual(page.wrong, []);
});
