// The status over time, with a mark where something changed.
import { gistOfGroup, weighed, type Status } from './data';
import { byId, cssColour, fill, h, onDemand, table } from './dom';
import { isWallClock, percent, statusText, timeText } from './format';
import type { State } from './state';
import { area, drawCursor, eachRun, followMouse, markText, marks } from './time-canvas';

const bandHeight = 34;
const height = bandHeight + 18;

/** How much of the band is filled: worse is higher, so that it can be told without colours. */
const share: Record<Status, number> = { nominal: 0.25, stale: 0.4, ambiguous: 0.65, faulty: 1, inconsistent: 1 };

export function makeTimeline(state: State): void {
    const data = state.data;
    const canvas = byId<HTMLCanvasElement>('timeline');
    const readout = byId('readout');
    const wall = isWallClock(data);

    const draw = () => {
        const band = area(canvas, height, state);
        const { context } = band;
        eachRun(
            state,
            band,
            (point) => data.status[point]!,
            (status, x, width) => {
                const filled = bandHeight * share[status];
                context.fillStyle = cssColour(`--${status}`);
                context.fillRect(x, bandHeight - filled, width, filled);
                if (status === 'inconsistent') hatch(context, x, width);
            },
        );
        context.fillStyle = cssColour('--ink');
        for (const [, t] of data.raw.run.events) {
            const x = band.x(t);
            if (x < 0 || x > band.right) continue;
            context.beginPath();
            context.moveTo(x - 3.5, 0);
            context.lineTo(x + 3.5, 0);
            context.lineTo(x, 6);
            context.fill();
        }
        context.strokeStyle = cssColour('--line');
        context.strokeRect(0.5, bandHeight + 0.5, band.right, 0);
        context.fillStyle = cssColour('--soft');
        context.font = '11px system-ui, sans-serif';
        for (const t of marks(state.from, state.to, band.right / 90)) {
            const text = markText(state, t);
            const x = Math.min(band.right - context.measureText(text).width, band.x(t) + 3);
            context.fillRect(band.x(t), bandHeight, 1, 5);
            context.fillText(text, x, height - 4);
        }
        drawCursor(state, band, bandHeight);
    };

    const say = () => {
        const at = state.cursor;
        if (data.size === 0) return;
        const first = data.first[at]!;
        const last = data.last[at]!;
        const status = data.status[at]!;
        const of = first === last ? '' : `, the worst of ${first} to ${last}`;
        const text = `Step ${data.step[at]}${of}, ${timeText(data.t[at]!, wall)}: ${status}, ${statusText[status]}`;
        const gap = data.gap[at];
        fill(
            readout,
            h('b', {}, text),
            gap === null || gap === undefined ? '' : `; ${gap} s without a step before it`,
            data.complete[at] === 0 ? `; the search was not complete${data.limit[at] ? ` (limit: ${data.limit[at]})` : ''}` : '',
            data.approximate[at] === 1 ? '; probabilities are estimated' : '',
            state.held ? h('span', { class: 'held' }, ' held: Esc lets go') : '',
        );
        canvas.setAttribute('aria-valuenow', String(data.step[at]));
        canvas.setAttribute('aria-valuetext', text);
    };
    canvas.setAttribute('aria-valuemin', String(data.step[0] ?? 0));
    canvas.setAttribute('aria-valuemax', String(data.step[data.size - 1] ?? 0));
    followMouse(canvas, state);

    onDemand(byId('timeline-table'), `What changed when (${data.raw.run.events.length})`, () => {
        const events = data.raw.run.events.map(([step, t, status, ...first]) => ({ step, t, status, first: data.group(weighed(first)) }));
        const rows = events.map(({ step, t, status, first }) => [
            h('button', { type: 'button', class: 'link', onclick: () => state.moveTo(data.pointOfStep(step), true) }, String(step)),
            timeText(t, wall),
            status,
            percent(first.p),
            gistOfGroup(first),
        ]);
        const left = data.raw.run.eventsLeftOut;
        return table(
            left > 0 ? `The first and the last changes; ${left} between them are left out` : 'Each change of status or first explanation',
            ['step', 'time', 'status', 'probability', 'explanation'],
            rows,
        );
    });

    state.listen((changes) => {
        draw();
        if (changes.has('cursor') || changes.has('size')) say();
    });
}

function hatch(context: CanvasRenderingContext2D, x: number, width: number): void {
    context.save();
    context.beginPath();
    context.rect(x, 0, width, bandHeight);
    context.clip();
    context.strokeStyle = cssColour('--paper');
    context.lineWidth = 2;
    context.beginPath();
    for (let k = x - bandHeight; k < x + width; k += 8) {
        context.moveTo(k, bandHeight);
        context.lineTo(k + bandHeight, 0);
    }
    context.stroke();
    context.restore();
}

/** The points at which something happens, for jumping from one to the next. */
export function nextEvent(state: State, direction: 1 | -1): number {
    const points = state.data.raw.run.events.map(([step]) => state.data.pointOfStep(step));
    const ahead = points.filter((point) => (direction > 0 ? point > state.cursor : point < state.cursor));
    if (ahead.length === 0) return direction > 0 ? state.data.size - 1 : 0;
    return direction > 0 ? Math.min(...ahead) : Math.max(...ahead);
}
