// How probable each explanation was over time, and those at the cursor.
import { gist, losses, type Explanation, type Group, type Weighed } from './data';
import { byId, cssColour, fill, h, onDemand, prepared, table } from './dom';
import { percent, timeText, isWallClock } from './format';
import type { State } from './state';
import { area, drawCursor, extent, followMouse } from './time-canvas';

const height = 150;
const coloured = 7;
export const nothing = 'nothing is wrong';

/** Explanations that differ only in when they began have one colour. */
export class Palette {
    /** Those with a colour of their own, most probable over time first. */
    readonly gists: string[];
    readonly of: string[];

    constructor(state: State) {
        const data = state.data;
        this.of = data.explanations.map(gist);
        const weight = new Map<string, number>();
        for (let i = 0; i < data.size; ++i) {
            const more = i === data.size - 1 ? data.size : 1;
            for (const { id, p } of data.candidates(i)) weight.set(this.of[id]!, (weight.get(this.of[id]!) ?? 0) + p * more);
        }
        this.gists = [...weight.entries()]
            .filter(([text]) => text !== nothing)
            .sort((a, b) => b[1] - a[1])
            .slice(0, coloured)
            .map(([text]) => text);
    }
    colour(text: string): string {
        if (text === nothing) return cssColour('--nothing');
        const at = this.gists.indexOf(text);
        return cssColour(at < 0 ? '--other' : `--series-${at}`);
    }
    swatch(text: string): HTMLElement {
        const at = text === nothing ? 'nothing' : this.gists.indexOf(text);
        return h('span', { class: `swatch swatch-${at === -1 ? 'other' : at}`, 'aria-hidden': 'true' });
    }
}

export function makeExplanations(state: State, palette: Palette): void {
    const data = state.data;
    const canvas = byId<HTMLCanvasElement>('probabilities');
    const list = byId('candidates');
    followMouse(canvas, state, () => 34);

    // What is shown of a point, from the ground up: the share of each gist.
    const layers = [nothing, ...palette.gists, ''];
    const shares = (point: number): number[] => {
        const sums = layers.map(() => 0);
        for (const { id, p } of data.candidates(point)) {
            const at = layers.indexOf(palette.of[id]!);
            sums[at < 0 ? layers.length - 1 : at]! += p;
        }
        return sums;
    };
    const all = data.t.map((_, point) => shares(point));

    const draw = () => {
        const [, width] = prepared(canvas, height);
        const plot = area(canvas, height, state, 34);
        const { context } = plot;
        const y = (p: number) => height - 6 - p * (height - 14);
        const first = Math.max(0, data.pointAt(state.from) - 1);
        const last = Math.min(data.size - 1, data.pointAt(state.to) + 1);
        for (let i = first; i <= last && data.size > 0; ++i) {
            const [begin, end] = extent(state, i);
            // Whole pixels: between two halves the ground would shine through.
            const x0 = Math.round(Math.max(plot.left, plot.x(begin)));
            const x1 = Math.round(Math.min(width, plot.x(end)));
            if (x1 <= x0) continue;
            let ground = 0;
            layers.forEach((text, layer) => {
                const p = all[i]![layer]!;
                if (p <= 0) return;
                const faint = state.alone !== null && state.alone !== text;
                context.fillStyle = text === '' ? cssColour('--other') : palette.colour(text);
                context.globalAlpha = faint ? 0.15 : 1;
                context.fillRect(x0, y(ground + p), x1 - x0, y(ground) - y(ground + p));
                ground += p;
            });
            context.globalAlpha = 1;
        }
        context.fillStyle = cssColour('--soft');
        context.font = '11px system-ui, sans-serif';
        for (const p of [0, 0.5, 1]) {
            context.fillText(`${p * 100} %`, 0, y(p) + (p === 1 ? 8 : p === 0 ? 0 : 4));
            context.fillRect(plot.left, y(p), plot.right - plot.left, 0.5);
        }
        drawCursor(state, plot, height);
    };

    const row = (candidate: Weighed, words: (Node | string)[]) => {
        const text = palette.of[candidate.id]!;
        return h(
            'li',
            {},
            h(
                'button',
                {
                    type: 'button',
                    class: 'candidate',
                    'aria-pressed': String(state.alone === text),
                    title: 'show this one alone in the chart',
                    onclick: () => {
                        state.alone = state.alone === text ? null : text;
                        state.changed('alone', 'cursor');
                    },
                },
                palette.swatch(text),
                h('span', { class: 'p' }, percent(candidate.p)),
                h('span', { class: 'what' }, ...words),
            ),
        );
    };
    const rows = (group: Group) => {
        if (group.either.length === 0) return row(group.members[0]!, inWords(data.explanations[group.members[0]!.id]!));
        const rest = Object.keys(group.common.modes).length + losses(group.common).length + group.common.unexplained.length;
        return h(
            'li',
            { class: 'group' },
            h('p', {}, h('span', { class: 'p' }, percent(group.p)), 'one of'),
            h('ul', {}, ...group.members.map((one, i) => row(one, inWordsOf(group, i)))),
            rest > 0 ? h('p', { class: 'rest' }, 'and with it ', ...inWords(group.common)) : '',
        );
    };
    const say = () => {
        const candidates = data.candidates(state.cursor);
        const more = (data.kept[state.cursor] ?? 0) - candidates.length;
        const missing = data.missing[state.cursor] ?? 0;
        const silent = data.silent[state.cursor] ?? 0;
        fill(
            list,
            ...data.groups(state.cursor).map(rows),
            more > 0 ? h('li', { class: 'note' }, `and ${more} more`) : '',
            missing >= 0.0001 ? h('li', { class: 'note' }, `at most ${percent(missing)} of the probability was given up`) : '',
            silent >= 0.0001
                ? h('li', { class: 'note' }, `${percent(silent)} that a fault began lately that has not shown`)
                : '',
        );
    };

    const wall = isWallClock(data);
    const update = onDemand(byId('explanations-table'), 'Probabilities as a table', () =>
        table(
            'At each change, the probability of each explanation',
            ['step', 'time', nothing, ...palette.gists, 'others'],
            data.raw.run.events.map(([step, t]) => {
                const point = data.pointOfStep(step);
                return [step, timeText(t, wall), ...all[point]!.map(percent)];
            }),
        ),
    );
    update();
    state.listen((changes) => {
        draw();
        if (changes.has('cursor') || changes.has('alone') || changes.has('size')) say();
    });
}

function inWordsOf(group: Group, member: number): (Node | string)[] {
    const { variable, value } = group.either[member]!;
    return inWords({ modes: { [variable]: value }, since: { [variable]: group.since }, lost: [], unexplained: [] });
}

export function inWords(explanation: Explanation): (Node | string)[] {
    const parts: (Node | string)[] = [];
    const add = (...words: (Node | string)[]) => {
        if (parts.length > 0) parts.push('; ');
        parts.push(...words);
    };
    for (const [variable, value] of Object.entries(explanation.modes)) {
        const since = explanation.since[variable] ?? 0;
        add(h('b', {}, variable), ` = ${value} `, h('span', { class: 'since' }, since === 0 ? 'from the beginning' : `since step ${since}`));
    }
    for (const loss of losses(explanation)) add(loss);
    if (parts.length === 0) parts.push(nothing);
    if (explanation.unexplained.length > 0) add(`does not explain ${explanation.unexplained.join(', ')}`);
    return parts;
}
