// What all views share: where the cursor is, what part of time is shown, what is looked at alone.
import type { Data } from './data';

export type Change = 'cursor' | 'range' | 'alone' | 'conflict' | 'component' | 'theme' | 'size';
type Listener = (change: Set<Change>) => void;

export class State {
    cursor: number;
    /** The cursor stays where it is, whatever the mouse passes. */
    held = false;
    from: number;
    to: number;
    /** The gist of the explanation that is looked at alone. */
    alone: string | null = null;
    /** The number of the conflict that is shown in the plant. */
    conflict: number | null = null;
    component: number | null = null;
    private readonly listeners: Listener[] = [];
    private readonly pending = new Set<Change>();

    constructor(readonly data: Data) {
        this.cursor = Math.max(0, data.size - 1);
        [this.from, this.to] = this.whole();
    }

    listen(listener: Listener): void {
        this.listeners.push(listener);
    }
    /** Views are drawn anew once a frame, however much changed. */
    changed(...changes: Change[]): void {
        if (this.pending.size === 0) requestAnimationFrame(() => this.flush());
        for (const change of changes) this.pending.add(change);
    }
    flush(): void {
        const now = new Set(this.pending);
        this.pending.clear();
        for (const listener of this.listeners) listener(now);
    }

    whole(): [number, number] {
        const t = this.data.t;
        const first = this.data.raw.run.from ?? t[0] ?? 0;
        const last = t[t.length - 1] ?? first + 1;
        return last > first ? [first, last] : [first - 0.5, first + 0.5];
    }
    moveTo(point: number, hold = false): void {
        const at = Math.min(this.data.size - 1, Math.max(0, point));
        if (hold) this.held = true;
        if (at === this.cursor && !hold) return;
        this.cursor = at;
        const t = this.data.t[at]!;
        if (hold && (t < this.from || t > this.to)) this.pan(t);
        this.changed('cursor');
    }
    /** The mouse is over that time. */
    hover(t: number): void {
        if (!this.held && this.data.size > 0) this.moveTo(this.data.pointAt(t));
    }
    release(): void {
        this.held = false;
        this.changed('cursor');
    }
    show(from: number, to: number): void {
        const [first, last] = this.whole();
        const least = (last - first) / 1e6;
        this.from = Math.max(first, Math.min(from, to));
        this.to = Math.min(last, Math.max(from, to));
        if (this.to - this.from < least) [this.from, this.to] = [first, last];
        this.changed('range');
    }
    zoom(factor: number): void {
        const t = this.data.t[this.cursor] ?? this.from;
        this.show(t - (t - this.from) * factor, t + (this.to - t) * factor);
    }
    private pan(t: number): void {
        const width = this.to - this.from;
        this.show(t - width / 2, t + width / 2);
    }
}
