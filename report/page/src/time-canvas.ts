// A canvas along time: where a time is, ticks, the cursor, and what mouse and touch do to it.
import { cssColour, prepared } from './dom';
import { isWallClock } from './format';
import type { State } from './state';

export interface TimeArea {
    context: CanvasRenderingContext2D;
    left: number;
    right: number;
    x: (t: number) => number;
}

export function area(canvas: HTMLCanvasElement, height: number, state: State, left = 0): TimeArea {
    const [context, width] = prepared(canvas, height);
    const right = width - 1;
    const scale = (right - left) / (state.to - state.from);
    return { context, left, right, x: (t) => left + (t - state.from) * scale };
}

/** Where a point's piece of the canvas begins and ends: half way to its neighbours. */
export function extent(state: State, point: number): [number, number] {
    const t = state.data.t;
    const here = t[point]!;
    const before = t[point - 1];
    const after = t[point + 1];
    const begin = before === undefined ? here - ((after ?? here + 1) - here) / 2 : (before + here) / 2;
    const end = after === undefined ? here + (here - (before ?? here - 1)) / 2 : (here + after) / 2;
    return [begin, end];
}

/** Calls for each stretch of equal entries that is in sight, in canvas coordinates. */
export function eachRun<T>(
    state: State,
    area: TimeArea,
    entry: (point: number) => T,
    draw: (value: T, x: number, width: number, point: number) => void,
): void {
    const size = state.data.size;
    if (size === 0) return;
    const first = Math.max(0, state.data.pointAt(state.from) - 1);
    const last = Math.min(size - 1, state.data.pointAt(state.to) + 1);
    let begin = first;
    for (let i = first; i <= last; ++i) {
        if (i < last && entry(i + 1) === entry(begin)) continue;
        const x0 = Math.max(area.left, area.x(extent(state, begin)[0]));
        const x1 = Math.min(area.right, area.x(extent(state, i)[1]));
        if (x1 > x0) draw(entry(begin), x0, Math.max(1, x1 - x0), begin);
        begin = i + 1;
    }
}

export function drawCursor(state: State, area: TimeArea, height: number): void {
    const t = state.data.t[state.cursor];
    if (t === undefined) return;
    const x = Math.round(area.x(t)) + 0.5;
    if (x < area.left || x > area.right + 1) return;
    area.context.strokeStyle = cssColour('--ink');
    area.context.lineWidth = 1.5;
    area.context.setLineDash(state.held ? [] : [4, 3]);
    area.context.beginPath();
    area.context.moveTo(x, 0);
    area.context.lineTo(x, height);
    area.context.stroke();
    area.context.setLineDash([]);
}

const steps = [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400, 172800, 604800];

/** Times for marks, about as many as fit. */
export function marks(from: number, to: number, most: number): number[] {
    const rough = (to - from) / Math.max(1, most);
    let step = steps.find((one) => one >= rough);
    if (step === undefined || rough < 1) {
        const power = 10 ** Math.floor(Math.log10(rough));
        step = [1, 2, 5, 10].map((one) => one * power).find((one) => one >= rough) ?? rough;
    }
    const list: number[] = [];
    for (let t = Math.ceil(from / step) * step; t <= to; t += step) list.push(t);
    return list;
}

export function markText(state: State, t: number): string {
    if (!isWallClock(state.data)) return `${Number(t.toPrecision(8))} s`;
    const iso = new Date(t * 1000).toISOString();
    return state.to - state.from > 2 * 86400 ? iso.slice(5, 10) : iso.slice(11, state.to - state.from < 120 ? 19 : 16);
}

/** The cursor follows the mouse; a click holds it; dragging shows the part of time that was passed over. */
export function followMouse(canvas: HTMLCanvasElement, state: State, left: () => number = () => 0): void {
    const timeOf = (event: PointerEvent | MouseEvent) => {
        const box = canvas.getBoundingClientRect();
        const from = left();
        const share = (event.clientX - box.left - from) / Math.max(1, box.width - from);
        return state.from + Math.min(1, Math.max(0, share)) * (state.to - state.from);
    };
    let pressed: { x: number; t: number } | null = null;
    canvas.addEventListener('pointermove', (event) => state.hover(timeOf(event)));
    canvas.addEventListener('pointerdown', (event) => {
        pressed = { x: event.clientX, t: timeOf(event) };
    });
    canvas.addEventListener('pointerup', (event) => {
        if (!pressed) return;
        if (Math.abs(event.clientX - pressed.x) > 6) state.show(pressed.t, timeOf(event));
        else state.moveTo(state.data.pointAt(timeOf(event)), true);
        pressed = null;
    });
    canvas.addEventListener('dblclick', () => {
        state.show(...state.whole());
        state.release();
    });
}
