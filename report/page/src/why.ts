// Why the explanations at the cursor are believed: what contradicted what was expected, by which laws, and who resolves it.
import type { AppliedLaw, AssumedMode, Conflict, Explanation } from './data';
import { byId, fill, h } from './dom';
import { counted, isWallClock, percent, timeText } from './format';
import type { Palette } from './explanations';
import type { State } from './state';

const around = 3; // lines of a file before and after a law
const most = 10;

/** The assumption that the explanation does without, since that step or an earlier one. */
export function resolves(explanation: Explanation, conflict: Conflict): AssumedMode | null {
    for (const mode of conflict.modes) {
        const value = explanation.modes[mode.variable];
        const since = explanation.since[mode.variable];
        if (value !== undefined && value !== mode.value && since !== undefined && since <= conflict.step) return mode;
    }
    return null;
}

/** A deviation that the conflict rests on, and that the explanation does not have. */
function avoids(explanation: Explanation, conflict: Conflict): AssumedMode | null {
    return conflict.modes.find((mode) => mode.since !== null && explanation.modes[mode.variable] !== mode.value) ?? null;
}

function lostIn(explanation: Explanation, conflict: Conflict, step: number): string | null {
    if (conflict.step !== step) return null;
    const rests = new Set([
        ...conflict.commands.map((one) => `${one.variable}=${one.value}`),
        ...conflict.modes.flatMap((one) => one.commands),
    ]);
    const command = explanation.lost.find((one) => rests.has(one));
    if (command) return `${command} did not arrive`;
    const read = new Set(
        [...conflict.readings, ...(conflict.observed ? [conflict.observed] : [])].map((one) => `${one.variable}=${one.value}`),
    );
    const reading = explanation.misread?.find((one) => read.has(one));
    return reading ? `${reading} was misread` : null;
}

/** The conflicts that matter at the cursor, oldest first, and how many others there were before. */
export function conflictsAt(state: State): [Conflict[], number] {
    const data = state.data;
    const until = data.last[state.cursor] ?? 0;
    const candidates = data.candidates(state.cursor).map(({ id }) => data.explanations[id]!);
    const before = data.conflicts.filter((conflict) => conflict.step <= until);
    const relevant = before.filter(
        (conflict) =>
            conflict.step >= (data.first[state.cursor] ?? 0) ||
            candidates.some((one) => resolves(one, conflict) !== null || one.unexplained.length > 0),
    );
    const shown = relevant.slice(-most);
    return [shown, before.length - shown.length];
}

export function makeWhy(state: State, palette: Palette): void {
    const data = state.data;
    const wall = isWallClock(data);
    const into = byId('conflicts');
    const sources = new Map(data.plant.sources.map(({ file, text }) => [file, text?.split(/\r\n|\n|\r/) ?? null]));

    const law = (one: AppliedLaw) => {
        const lines = one.file === null ? null : sources.get(one.file);
        const place = one.file === null ? null : `${one.file}:${one.line}:${one.column}`;
        const body: Node[] = [h('code', {}, one.text ?? one.clause)];
        if (lines && one.line !== null) {
            const from = Math.max(1, one.line - around);
            const to = Math.min(lines.length, one.line + around);
            const context = h('pre', { class: 'source', tabindex: 0 });
            for (let n = from; n <= to; ++n) {
                context.append(
                    h('span', { class: n === one.line ? 'here' : '' }, `${String(n).padStart(5)}  ${lines[n - 1]}\n`),
                );
            }
            body.push(h('details', {}, h('summary', {}, place), context));
        } else if (place) {
            body.push(h('span', { class: 'place' }, place));
        }
        if (one.gives) {
            const { variable, value, holds } = one.gives;
            body.push(h('div', { class: 'gives' }, `gives ${variable} ${holds ? '=' : '≠'} ${value}`));
        }
        return h('dd', { class: 'law' }, ...body);
    };

    const assumed = (mode: AssumedMode) => {
        const how =
            mode.since !== null
                ? `, since step ${mode.since}`
                : mode.value === mode.before
                  ? ', as before'
                  : `, from ${mode.before}${mode.commands.length > 0 ? ` by ${mode.commands.join(', ')}` : ''}`;
        return h('dd', {}, h('b', {}, `${mode.variable} = ${mode.value}`), how);
    };

    const resolvers = (conflict: Conflict) => {
        const step = data.step[state.cursor] ?? 0;
        const rows = data.candidates(state.cursor).map(({ id, p }) => {
            const explanation = data.explanations[id]!;
            const text = palette.of[id]!;
            const instead = resolves(explanation, conflict);
            const lost = instead ? null : lostIn(explanation, conflict, step);
            const without = instead || lost ? null : avoids(explanation, conflict);
            const how = instead
                ? `${instead.variable} = ${explanation.modes[instead.variable]} instead of ${instead.value}`
                : lost
                  ? lost
                  : without
                    ? `does not have ${without.variable} = ${without.value}`
                    : null;
            return h(
                'li',
                { class: how ? 'resolves' : 'resolves not' },
                palette.swatch(text),
                h('span', { class: 'p' }, percent(p)),
                h('span', {}, how ?? `does not resolve it: ${text}`),
            );
        });
        return h('ul', { class: 'resolvers', 'aria-label': 'Which explanations at the cursor resolve it' }, ...rows);
    };

    const check = (conflict: Conflict) => {
        const verified = conflict.verified === null ? 'not settled' : conflict.verified ? 'confirmed' : 'not confirmed';
        const minimal = conflict.minimal === true ? '; nothing of this can be left out' : '';
        return `${verified}${minimal}${conflict.cases ? '; found by trying values' : ''}`;
    };

    const show = (conflict: Conflict) => {
        const observed = conflict.observed;
        const pressed = state.conflict === conflict.conflict;
        const given = (list: Conflict['commands'], term: string) =>
            list.length === 0
                ? []
                : [
                      h('dt', {}, term),
                      ...list.map((one) =>
                          h('dd', {}, `${one.variable} = ${one.value}${one.channel ? ` (${one.channel})` : ''}`),
                      ),
                  ];
        return h(
            'article',
            { class: pressed ? 'conflict shown' : 'conflict' },
            h(
                'h3',
                {},
                `Conflict ${conflict.conflict}, step ${conflict.step}, ${timeText(conflict.t, wall)}`,
                h(
                    'button',
                    {
                        type: 'button',
                        class: 'small',
                        'aria-pressed': String(pressed),
                        onclick: () => {
                            state.conflict = pressed ? null : conflict.conflict;
                            state.changed('conflict');
                        },
                    },
                    'in the plant',
                ),
            ),
            resolvers(conflict),
            h(
                'dl',
                {},
                h('dt', {}, 'observed'),
                h(
                    'dd',
                    { class: 'observed' },
                    observed
                        ? `${observed.variable} = ${observed.value}${observed.channel ? ` (${observed.channel})` : ''}`
                        : 'what is believed contradicts itself',
                ),
                ...(observed
                    ? [
                          h('dt', {}, 'expected'),
                          h('dd', { class: 'expected' }, `${observed.variable} ${conflict.expected ? `= ${conflict.expected}` : `≠ ${observed.value}`}`),
                      ]
                    : []),
                h('dt', {}, 'assumed'),
                ...conflict.modes.map(assumed),
                ...given(conflict.commands, 'commands'),
                ...given(conflict.readings, 'readings'),
                h('dt', {}, 'laws'),
                ...conflict.laws.map(law),
                h('dt', {}, 'check'),
                h('dd', {}, check(conflict)),
            ),
        );
    };

    const say = () => {
        const [conflicts, others] = conflictsAt(state);
        const left = data.raw.run.conflictsLeftOut;
        fill(
            into,
            conflicts.length === 0
                ? h('p', { class: 'note' }, others > 0 ? 'No conflict bears on what is believed here.' : 'Nothing up to here contradicted what was believed.')
                : '',
            ...conflicts.map(show),
            others > 0 ? h('p', { class: 'note' }, `${counted(others, 'other conflict')} before: older ones, or such as no explanation at the cursor resolves.`) : '',
            left > 0 ? h('p', { class: 'note' }, `The first and the last conflicts of the run are on this page; ${left} between them are left out.`) : '',
        );
    };
    // The same cards stay while the cursor moves over steps of which the same is believed: what was folded open stays open.
    let key = '';
    state.listen((changes) => {
        if (!(changes.has('cursor') || changes.has('conflict') || changes.has('size'))) return;
        const now = JSON.stringify([
            data.raw.run.candidates[state.cursor],
            conflictsAt(state)[0].map((one) => one.conflict),
            state.conflict,
        ]);
        if (now !== key) say();
        key = now;
    });
}
