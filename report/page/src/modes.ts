// A lane for each mode along time: what the most probable explanation says of it. Most suspicious first.
import type { State } from './state';
import { byId, cssColour, fill, h, onDemand, table } from './dom';
import { percent } from './format';
import { area, drawCursor, eachRun, followMouse } from './time-canvas';

const laneHeight = 20;
const atFirst = 12;

export function makeModes(state: State): void {
    const data = state.data;
    const into = byId('lanes');
    const rank = new Map(data.suspects.map((component, at) => [component, at]));
    const changes = (values: number[]) => values.some((value) => value !== values[0]);
    const order = data.modes
        .map((mode, index) => {
            const component = data.plant.variables[mode.variable]!.component;
            return { index, rank: rank.get(component) ?? 1e6, changes: changes(mode.values) };
        })
        .sort((a, b) => a.rank - b.rank || Number(b.changes) - Number(a.changes) || a.index - b.index);
    let most = Math.max(atFirst, order.filter((one) => one.rank < 1e6).length);
    most = Math.min(most, 20);
    const canvases: [number, HTMLCanvasElement][] = [];

    const build = () => {
        canvases.length = 0;
        const rows = order.slice(0, most).map(({ index }) => {
            const variable = data.modes[index]!.variable;
            const canvas = h('canvas', { class: 'lane', 'aria-hidden': 'true' });
            canvases.push([index, canvas]);
            followMouse(canvas, state);
            const component = data.plant.variables[variable]!.component;
            return h(
                'div',
                { class: 'lane-row', 'data-component': component },
                h(
                    'button',
                    {
                        type: 'button',
                        class: 'link lane-name',
                        title: data.variableName(variable),
                        onclick: () => {
                            state.component = component;
                            state.changed('component');
                        },
                    },
                    data.variableName(variable),
                ),
                canvas,
                h('span', { class: 'lane-value' }),
            );
        });
        const rest = order.length - most;
        fill(
            into,
            ...rows,
            rest > 0
                ? h('button', { type: 'button', class: 'small', onclick: () => ((most += 50), build(), state.changed('size')) }, `${Math.min(50, rest)} of ${rest} more`)
                : '',
        );
    };

    const draw = () => {
        canvases.forEach(([index, canvas]) => {
            const mode = data.modes[index]!;
            const variable = data.plant.variables[mode.variable]!;
            const lane = area(canvas, laneHeight, state);
            const { context } = lane;
            const suspicion = data.suspicion.get(variable.component);
            context.font = '11px system-ui, sans-serif';
            eachRun(
                state,
                lane,
                (point) => mode.values[point]!,
                (value, x, width) => {
                    const fault = variable.faults.includes(value);
                    context.fillStyle = cssColour(fault ? '--faulty' : value % 2 === 0 ? '--lane-a' : '--lane-b');
                    context.fillRect(x, fault ? 1 : 4, width, fault ? laneHeight - 3 : laneHeight - 8);
                    const text = variable.values[value] ?? '';
                    if (context.measureText(text).width + 8 > width) return;
                    context.fillStyle = cssColour(fault ? '--on-faulty' : '--ink');
                    context.fillText(text, x + 4, laneHeight - 6);
                },
            );
            if (suspicion) {
                eachRun(
                    state,
                    lane,
                    (point) => suspicion[point]!,
                    (p, x, width) => {
                        context.fillStyle = cssColour('--faulty');
                        context.fillRect(x, laneHeight - 1 - 3 * p, width, 3 * p);
                    },
                );
            }
            drawCursor(state, lane, laneHeight);
        });
    };
    const say = () => {
        [...into.querySelectorAll('.lane-row')].forEach((row, at) => {
            const entry = canvases[at];
            if (!entry) return;
            const mode = data.modes[entry[0]]!;
            const variable = data.plant.variables[mode.variable]!;
            const value = mode.values[state.cursor] ?? -1;
            const p = data.suspicion.get(variable.component)?.[state.cursor] ?? 0;
            fill(row.querySelector('.lane-value')!, `${variable.values[value] ?? ''}${p > 0 ? ` · ${percent(p)} wrong` : ''}`);
            row.classList.toggle('suspicious', p > 0.01);
        });
    };

    const update = onDemand(byId('modes-table'), 'Modes at the cursor as a table', () =>
        table(
            `Step ${data.step[state.cursor]}, in the most probable explanation`,
            ['mode', 'value', 'component deviates'],
            order.map(({ index }) => {
                const mode = data.modes[index]!;
                const variable = data.plant.variables[mode.variable]!;
                return [
                    data.variableName(mode.variable),
                    variable.values[mode.values[state.cursor] ?? -1] ?? '',
                    percent(data.suspicion.get(variable.component)?.[state.cursor] ?? 0),
                ];
            }),
        ),
    );
    build();
    state.listen((changed) => {
        draw();
        if (!changed.has('cursor') && !changed.has('size')) return;
        say();
        update();
    });
}
