// Makes TypeScript types from the schema of the step records, so that the page and the program mean the same by a field.
//
//     node tools/step-types.mjs          writes src/step-types.ts
//     node tools/step-types.mjs --check  status 1 when it would be another file
import { readFileSync, writeFileSync } from 'node:fs';

const here = new URL('../', import.meta.url);
const schema = JSON.parse(readFileSync(new URL('../../docs/step.schema.json', here), 'utf8'));
const file = new URL('src/step-types.ts', here);

const name = (ref) => {
    const last = ref.split('/').pop();
    return last[0].toUpperCase() + last.slice(1);
};

function type(node, indent) {
    if (node.$ref) return name(node.$ref);
    if ('const' in node) return JSON.stringify(node.const);
    if (node.enum) return node.enum.map((value) => JSON.stringify(value)).join(' | ');
    if (Array.isArray(node.type)) return node.type.map((one) => type({ ...node, type: one }, indent)).join(' | ');
    if (node.type === 'integer') return 'number';
    if (node.type === 'array') return `${type(node.items, indent)}[]`;
    if (node.type !== 'object') return node.type;
    if (!node.properties) return `Record<string, ${type(node.additionalProperties, indent)}>`;
    const inner = `${indent}    `;
    const required = new Set(node.required ?? []);
    const lines = Object.entries(node.properties).map(
        ([key, value]) => `${inner}${key}${required.has(key) ? '' : '?'}: ${type(value, inner)};`,
    );
    return `{\n${lines.join('\n')}\n${indent}}`;
}

let text = '// Made from docs/step.schema.json by tools/step-types.mjs.\n';
for (const [key, value] of Object.entries(schema.$defs)) {
    text += `\nexport type ${name(`/${key}`)} = ${type(value, '')};\n`;
}
text += `\nexport type StepRecord = ${type(schema, '')};\n`;

if (process.argv.includes('--check')) {
    if (readFileSync(file, 'utf8') !== text) {
        console.error('src/step-types.ts is not what docs/step.schema.json says: run npm run types');
        process.exit(1);
    }
} else {
    writeFileSync(file, text);
}
