// How long pages take to open in the browser: node tools/opening-time.mjs PAGE.html...
// Of five tries the median: milliseconds from the navigation until the first screen is there, and until all of the page is.
import { launch, open } from './browser.mjs';

const browser = await launch();
for (const file of process.argv.slice(2)) {
    const tries = [];
    for (let i = 0; i < 5; ++i) {
        const page = await open(browser, file);
        tries.push(await page.evaluate(() => [document.documentElement.dataset.seen, document.documentElement.dataset.complete].map(Number)));
        await page.close();
    }
    const median = (at) => tries.map((one) => one[at]).sort((a, b) => a - b)[2];
    console.log(`${file}: first screen ${median(0)} ms, all ${median(1)} ms`);
}
await browser.close();
