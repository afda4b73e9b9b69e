// What was read, channel by channel: numbers as lines, thresholds, what is believed, and when something was wrong.
import uPlot from 'uplot';
import type { Channel, ChannelSeries, Conflict, Variable } from './data';
import { byId, cssColour, fill, h, onDemand, table } from './dom';
import { isWallClock, plain } from './format';
import type { State } from './state';
import { eachRun, marks, markText, type TimeArea } from './time-canvas';

const plotHeight = 96;
const atOnce = 8;

/** The channels of what a conflict has read, expected or rests on. */
export function variablesOf(conflict: Conflict): Set<string> {
    const names = new Set<string>();
    if (conflict.observed) names.add(conflict.observed.variable);
    for (const one of [...conflict.readings, ...conflict.commands]) names.add(one.variable);
    for (const law of conflict.laws) if (law.gives) names.add(law.gives.variable);
    for (const mode of conflict.modes) {
        for (const command of mode.commands) names.add(command.slice(0, command.lastIndexOf('=')));
    }
    return names;
}

interface Shown {
    index: number;
    channel: Channel;
    variable: Variable;
    series: ChannelSeries;
    /** A line through numbers; otherwise steps from value to value. */
    numeric: boolean;
}

export function makeChannels(state: State): { filter: (text: string) => void } {
    const data = state.data;
    const into = byId('plots');
    const input = byId<HTMLInputElement>('channel-filter');
    const note = byId('channel-note');
    const wall = isWallClock(data);
    const plots = new Map<number, uPlot>();
    let most = atOnce;

    const inConflict = new Set<number>();
    for (const conflict of data.conflicts) {
        const names = variablesOf(conflict);
        data.plant.channels.forEach((channel, index) => {
            if (names.has(data.variableName(channel.variable))) inConflict.add(index);
        });
    }
    const everRead = (index: number) => data.raw.run.channels[index]!.read.some((value, at) => at % 2 === 0 && value !== -1);

    const choose = (): [number[], string] => {
        const words = input.value.trim().toLowerCase();
        const all = data.plant.channels.map((_, index) => index);
        if (words === '') {
            if (inConflict.size > 0) {
                const list = all.filter((index) => inConflict.has(index));
                return [list, `${list.length} of ${all.length} channels: those that take part in a conflict. Type * to see all.`];
            }
            const list = all.filter(everRead);
            return [list, `${list.length} of ${all.length} channels: those that were read. Type * to see all.`];
        }
        const matches = all.filter((index) => {
            const name = `${data.channelName(index)} ${data.variableName(data.plant.channels[index]!.variable)}`.toLowerCase();
            return words === '*' || words.split(/\s+/).every((word) => name.includes(word));
        });
        return [matches, `${matches.length} of ${all.length} channels`];
    };

    const build = () => {
        for (const plot of plots.values()) plot.destroy();
        plots.clear();
        const [list, text] = choose();
        fill(note, text);
        const boxes = list.slice(0, most).map((index) => {
            const box = h('figure', { class: 'plot', 'data-channel': data.channelName(index) });
            return [index, box] as const;
        });
        const rest = list.length - boxes.length;
        fill(
            into,
            ...boxes.map(([, box]) => box),
            rest > 0
                ? h('button', { type: 'button', class: 'small', onclick: () => ((most += 2 * atOnce), build()) }, `${Math.min(2 * atOnce, rest)} of ${rest} more`)
                : '',
        );
        for (const [index, box] of boxes) plots.set(index, makePlot(index, box));
        say();
    };

    const shownOf = (index: number): Shown => {
        const channel = data.plant.channels[index]!;
        const series = data.channel(index);
        return {
            index,
            channel,
            variable: data.plant.variables[channel.variable]!,
            series,
            numeric: series.low !== null && channel.thresholds !== null,
        };
    };

    const makePlot = (index: number, box: HTMLElement): uPlot => {
        const one = shownOf(index);
        const name = data.channelName(index);
        const variable = data.variableName(one.channel.variable);
        box.append(
            h(
                'figcaption',
                {},
                h('b', {}, name),
                name === variable ? '' : ` ${variable}`,
                one.channel.kind === 'observe' ? '' : h('span', { class: 'tag' }, one.channel.kind),
                h('span', { class: 'reading' }),
            ),
        );
        const lines = one.numeric
            ? [one.series.low!, one.series.high!]
            : [one.series.read.map((value) => (value < 0 ? null : value))];
        const stepped = uPlot.paths.stepped!({ align: 1 });
        const limits = one.channel.thresholds?.limits ?? [];
        const options: uPlot.Options = {
            width: Math.max(200, box.clientWidth),
            height: plotHeight,
            legend: { show: false },
            cursor: { drag: { x: true, y: false, setScale: false }, points: { show: false }, y: false },
            scales: {
                x: { time: false, range: () => [state.from, state.to] },
                y: one.numeric
                    ? {
                          range: (_plot, low, high) => {
                              const all = [low ?? 0, high ?? 1, ...limits.filter((limit) => near(limit, low, high))];
                              const [from, to] = [Math.min(...all), Math.max(...all)];
                              const margin = (to - from || Math.abs(to) || 1) * 0.08;
                              return [from - margin, to + margin];
                          },
                      }
                    : { range: [-0.6, one.variable.values.length - 0.4] },
            },
            axes: [
                {
                    stroke: () => cssColour('--soft'),
                    grid: { show: false },
                    ticks: { stroke: () => cssColour('--line'), size: 4 },
                    font: '11px system-ui, sans-serif',
                    size: 20,
                    gap: 2,
                    splits: (plot) => marks(state.from, state.to, plot.width / 80),
                    values: (_plot, times) => times.map((t) => markText(state, t)),
                },
                {
                    stroke: () => cssColour('--soft'),
                    grid: { stroke: () => cssColour('--grid'), width: 1 },
                    ticks: { show: false },
                    font: '11px system-ui, sans-serif',
                    size: 72,
                    gap: 4,
                    splits: one.numeric ? (undefined as never) : () => one.variable.values.map((_, value) => value),
                    values: one.numeric
                        ? (_plot, numbers) => numbers.map((value) => plain(value))
                        : () => one.variable.values.map((value) => (value.length > 11 ? `${value.slice(0, 10)}…` : value)),
                },
            ],
            series: [
                {},
                ...lines.map((_, at) => ({
                    stroke: () => cssColour('--reading'),
                    width: at === 0 || !one.numeric ? 1.5 : 1,
                    fill: undefined as never,
                    ...(one.numeric ? {} : { paths: stepped }),
                    points: { show: data.size <= 400, size: 4, fill: () => cssColour('--reading') },
                })),
            ],
            ...(one.numeric && data.raw.run.stepsPerPoint > 1
                ? { bands: [{ series: [2, 1] as [number, number], fill: () => `${cssColour('--reading')}55` }] }
                : {}),
            hooks: {
                drawClear: [(plot) => drawBehind(plot, one)],
                draw: [(plot) => drawOver(plot, one)],
                setCursor: [
                    (plot) => {
                        const left = plot.cursor.left ?? -1;
                        if (left >= 0) state.hover(plot.posToVal(left, 'x'));
                    },
                ],
                setSelect: [
                    (plot) => {
                        const { left, width } = plot.select;
                        if (width > 6) state.show(plot.posToVal(left, 'x'), plot.posToVal(left + width, 'x'));
                        plot.setSelect({ left: 0, width: 0, top: 0, height: 0 }, false);
                    },
                ],
            },
        };
        const plot = new uPlot(options, [data.t, ...lines] as uPlot.AlignedData, box);
        plot.over.addEventListener('click', () => {
            const left = plot.cursor.left ?? -1;
            if (left >= 0) state.moveTo(data.pointAt(plot.posToVal(left, 'x')), true);
        });
        plot.over.addEventListener('dblclick', () => state.show(...state.whole()));
        return plot;
    };

    const say = () => {
        for (const [index, plot] of plots) {
            const label = plot.root.parentElement?.querySelector('.reading');
            if (label) label.textContent = reading(index);
        }
    };
    const reading = (index: number): string => {
        const { variable, series } = shownOf(index);
        const at = state.cursor;
        const low = series.low?.[at];
        const high = series.high?.[at];
        const number = low === null || low === undefined ? '' : low === high ? `${plain(low)}: ` : `${plain(low)} to ${plain(high!)}: `;
        const read = series.read[at] ?? -1;
        const seen = read < 0 ? 'not observed' : `${number}${variable.values[read]}${series.held?.[at] ? ' (held)' : ''}`;
        const believed = series.believed[at] ?? -1;
        return believed === read ? seen : `${seen}; believed ${believed < 0 ? 'open' : variable.values[believed]}`;
    };

    // Behind the lines: when something was wrong, and the value that is believed as a band between its thresholds.
    const drawBehind = (plot: uPlot, one: Shown) => {
        const { context, top, bottom, time } = onCanvas(plot, state);
        eachRun(state, time, (point) => data.status[point]!, (status, x, width) => {
            if (status === 'nominal') return;
            context.fillStyle = cssColour(`--${status}-wash`);
            context.fillRect(x, top, width, bottom - top);
        });
        eachRun(state, time, (point) => one.series.believed[point]!, (value, x, width) => {
            if (value < 0) return;
            const [low, high] = bandOf(one, value);
            const y0 = high === null ? top : Math.max(top, plot.valToPos(high, 'y', true));
            const y1 = low === null ? bottom : Math.min(bottom, plot.valToPos(low, 'y', true));
            context.fillStyle = cssColour('--believed');
            if (y1 > y0) context.fillRect(x, y0, width, y1 - y0);
        });
    };
    const drawOver = (plot: uPlot, one: Shown) => {
        const { context, top, bottom, time } = onCanvas(plot, state);
        context.save();
        context.strokeStyle = cssColour('--limit');
        context.lineWidth = window.devicePixelRatio || 1;
        context.setLineDash([5, 4]);
        for (const limit of one.numeric ? (one.channel.thresholds?.limits ?? []) : []) {
            const y = plot.valToPos(limit, 'y', true);
            if (y < top || y > bottom) continue;
            context.beginPath();
            context.moveTo(time.left, y);
            context.lineTo(time.right, y);
            context.stroke();
        }
        const t = data.t[state.cursor];
        const x = t === undefined ? -1 : time.x(t);
        if (x >= time.left && x <= time.right) {
            context.setLineDash(state.held ? [] : [4, 3]);
            context.strokeStyle = cssColour('--ink');
            context.lineWidth = 1.5 * (window.devicePixelRatio || 1);
            context.beginPath();
            context.moveTo(x, top);
            context.lineTo(x, bottom);
            context.stroke();
        }
        context.restore();
    };

    input.addEventListener('input', () => {
        most = atOnce;
        build();
    });
    const update = onDemand(byId('channels-table'), 'All channels at the cursor as a table', () =>
        table(
            `Step ${data.step[state.cursor]}`,
            ['channel', 'variable', 'kind', 'read; believed where it differs'],
            data.plant.channels.map((channel, index) => [
                data.channelName(index),
                data.variableName(channel.variable),
                channel.kind,
                reading(index),
            ]),
        ),
    );
    byId('channel-legend').append(
        h('span', { class: 'legend-line' }, 'read'),
        h('span', { class: 'legend-limit' }, 'threshold'),
        h('span', { class: 'legend-believed' }, 'believed'),
        h('span', { class: 'legend-wrong' }, 'something is wrong'),
        wall ? '' : h('span', { class: 'note' }, 'time in seconds'),
    );
    build();
    state.listen((changes) => {
        if (changes.has('size')) {
            for (const plot of plots.values()) {
                const width = plot.root.parentElement?.clientWidth ?? 0;
                if (width > 0 && width !== plot.width) plot.setSize({ width, height: plotHeight });
            }
        }
        for (const plot of plots.values()) {
            if (changes.has('range')) plot.setScale('x', { min: state.from, max: state.to });
            else plot.redraw(false, changes.has('theme'));
        }
        if (changes.has('cursor')) {
            say();
            update();
        }
    });
    return {
        filter: (text) => {
            input.value = text;
            most = atOnce;
            build();
        },
    };
}

// A limit far away from what was read would leave nothing of the line to be seen.
function near(limit: number, low: number | null, high: number | null): boolean {
    if (low === null || high === null) return true;
    const reach = Math.max(high - low, Math.abs(high), Math.abs(low)) * 1.5;
    return limit >= low - reach && limit <= high + reach;
}

/** What a value covers on the scale of the channel; null: to the end. */
function bandOf(one: Shown, value: number): [number | null, number | null] {
    if (!one.numeric) return [value - 0.45, value + 0.45];
    const table = one.channel.thresholds!;
    const at = table.values.indexOf(value);
    if (at < 0) return [0, 0];
    return [table.limits[at - 1] ?? null, table.limits[at] ?? null];
}

function onCanvas(plot: uPlot, state: State): { context: CanvasRenderingContext2D; top: number; bottom: number; time: TimeArea } {
    const { left, top, width, height } = plot.bbox;
    const scale = width / (state.to - state.from);
    const time = { context: plot.ctx, left, right: left + width, x: (t: number) => left + (t - state.from) * scale };
    return { context: plot.ctx, top, bottom: top + height, time };
}
