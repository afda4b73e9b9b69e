// Makes dist/page.html, the page without its data, of src/ and the packages. The same sources give the same bytes.
//
//     node tools/bundle.mjs          writes it
//     node tools/bundle.mjs --check  status 1 when it would be another file
import { createHash } from 'node:crypto';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const here = new URL('../', import.meta.url);
const read = (path) => readFileSync(new URL(path, here), 'utf8');
const target = new URL('dist/page.html', here);

async function bundled(entry) {
    const result = await build({
        entryPoints: [fileURLToPath(new URL(entry, here))],
        bundle: true,
        minify: true,
        write: false,
        format: 'iife',
        target: 'es2022',
        charset: 'ascii',
        legalComments: 'none',
        logLevel: 'warning',
    });
    return result.outputFiles[0].text.trim();
}

const script = await bundled('src/main.ts');
for (const mark of ['</script', '<!--', '@@itms']) {
    if (script.includes(mark)) throw new Error(`the script has ${mark} in it`);
}
const hash = `sha256-${createHash('sha256').update(script).digest('base64')}`;
const licences = ['uplot', 'cytoscape', '@dagrejs/dagre']
    .map((name) => `${name}\n\n${read(`licences/${name.replace('/', '-')}.txt`).trim()}`)
    .join('\n\n\n')
    .replaceAll('&', '&amp;')
    .replaceAll('<', '&lt;');
const parts = {
    '@@script-hash@@': hash,
    '@@style@@': await bundled('src/all.css'),
    '@@licences@@': licences,
    '@@script@@': script,
};
const page = read('src/page.html').replace(/@@[a-z-]+@@/g, (mark) => parts[mark] ?? mark);

const limit = 700_000;
if (page.length > limit) throw new Error(`the page has ${page.length} bytes, more than ${limit}`);
if (process.argv.includes('--check')) {
    if (readFileSync(target, 'utf8') !== page) {
        console.error('dist/page.html is not what the sources make: run npm run build');
        process.exit(1);
    }
} else {
    mkdirSync(new URL('dist/', here), { recursive: true });
    writeFileSync(target, page);
    console.log(`dist/page.html: ${page.length} bytes`);
}
