// The data of the page as the program writes it (docs/report.md), and as the views read it.
import type { Candidate, StepRecord } from './step-types';

export type Status = StepRecord['status'];
/** Pairs of an entry and how many points have it. */
type Runs<T> = (T | number)[];

export interface Variable {
    component: number;
    name: string;
    kind: 'mode' | 'cond' | 'command';
    values: string[];
    faults: number[];
}
export interface Channel {
    variable: number;
    channel: string | null;
    kind: 'observe' | 'input' | 'command';
    thresholds: { limits: number[]; values: number[] } | null;
    numbers: [number, number][];
}
export interface Law {
    file: string | null;
    line: number;
    text: string;
    components: number[];
}
export interface Plant {
    system: string;
    stepSeconds: number;
    components: string[];
    variables: Variable[];
    channels: Channel[];
    laws: Law[];
    connections: { components: number[]; laws: number[] }[];
    sources: { file: string; text: string | null }[];
}

export type Explanation = Pick<Candidate, 'modes' | 'since' | 'lost' | 'misread' | 'unexplained'>;

export interface Given {
    variable: string;
    value: string;
    channel: string | null;
}
export interface AssumedMode {
    variable: string;
    value: string;
    before: string;
    commands: string[];
    since: number | null;
}
export interface AppliedLaw {
    file: string | null;
    line: number | null;
    column: number | null;
    text: string | null;
    clause: string;
    gives: { variable: string; value: string; holds: boolean } | null;
}
export interface Conflict {
    conflict: number;
    step: number;
    t: number;
    believed: { rank: number; modes: Record<string, string>; since: Record<string, number> };
    observed: Given | null;
    expected: string | null;
    modes: AssumedMode[];
    commands: Given[];
    readings: Given[];
    laws: AppliedLaw[];
    cases: boolean;
    verified: boolean | null;
    minimal: boolean | null;
}

interface RawChannel {
    read: Runs<number>;
    believed: Runs<number>;
    held?: Runs<number>;
    low?: (number | null)[];
    high?: (number | null)[];
}
export interface RawData {
    format: string;
    v: number;
    model: string;
    telemetry: string;
    interrupted: boolean;
    linesLeftOut: number;
    plant: Plant;
    run: {
        steps: number;
        stepsPerPoint: number;
        counts: Partial<Record<Status, number>>;
        from: number | null;
        step: number[];
        t: number[];
        first?: number[];
        last?: number[];
        status: Runs<Status>;
        complete: Runs<number>;
        approximate: Runs<number>;
        limit: Runs<string>;
        gap: Runs<number | null>;
        fault: Runs<number>;
        missing: Runs<number>;
        silent: Runs<number>;
        kept: Runs<number>;
        dropped: Runs<number>;
        candidates: number[][];
        groups: Runs<number[]>;
        /** Step, time, status, and the first explanations: number, probability, number ... */
        events: [number, number, Status, ...number[]][];
        eventsLeftOut: number;
        explanations: Explanation[];
        suspects: { component: number; p: Runs<number> }[];
        modes: { variable: number; values: Runs<number> }[];
        channels: RawChannel[];
        conflicts: Conflict[];
        conflictsLeftOut: number;
    };
}

/** What a channel said at each point; -1 for a value that there is none of. */
export interface ChannelSeries {
    read: number[];
    believed: number[];
    held: number[] | null;
    low: (number | null)[] | null;
    high: (number | null)[] | null;
}

/** An explanation with how probable it is at a point. */
export interface Weighed {
    id: number;
    p: number;
}

/** Explanations that cannot be told apart, or a single one. */
export interface Group {
    p: number;
    members: Weighed[];
    /** What all of them say. */
    common: Explanation;
    /** The mode that each of them has alone; empty for a single one. */
    either: { variable: string; value: string }[];
    /** The step at which these began. */
    since: number;
}

export function expand<T>(runs: Runs<T>): T[] {
    const entries: T[] = [];
    for (let i = 0; i < runs.length; i += 2) {
        const count = runs[i + 1] as number;
        for (let k = 0; k < count; ++k) entries.push(runs[i] as T);
    }
    return entries;
}

export class Data {
    readonly plant: Plant;
    readonly size: number;
    readonly step: number[];
    readonly first: number[];
    readonly last: number[];
    readonly t: number[];
    readonly status: Status[];
    readonly complete: number[];
    readonly approximate: number[];
    readonly limit: string[];
    readonly gap: (number | null)[];
    readonly fault: number[];
    readonly missing: number[];
    readonly silent: number[];
    readonly kept: number[];
    readonly dropped: number[];
    /** How many candidates each group has, by point. */
    private readonly sizes: number[][];
    readonly explanations: Explanation[];
    readonly conflicts: Conflict[];
    /** Modes by point, of each mode variable. */
    readonly modes: { variable: number; values: number[] }[];
    /** How probably a component deviates, by point; only those that ever do. */
    readonly suspicion = new Map<number, number[]>();
    readonly suspects: number[];
    private readonly channelCache: (ChannelSeries | undefined)[] = [];

    constructor(readonly raw: RawData) {
        const run = raw.run;
        this.plant = raw.plant;
        this.size = run.step.length;
        this.step = run.step;
        this.first = run.first ?? run.step;
        this.last = run.last ?? run.step;
        this.t = run.t;
        this.status = expand<Status>(run.status);
        this.complete = expand<number>(run.complete);
        this.approximate = expand<number>(run.approximate);
        this.limit = expand<string>(run.limit);
        this.gap = expand<number | null>(run.gap);
        this.fault = expand<number>(run.fault);
        this.missing = expand<number>(run.missing);
        this.silent = expand<number>(run.silent);
        this.kept = expand<number>(run.kept);
        this.dropped = expand<number>(run.dropped);
        this.sizes = expand<number[]>(run.groups);
        this.explanations = run.explanations;
        this.conflicts = run.conflicts;
        this.modes = run.modes.map((one) => ({ variable: one.variable, values: expand<number>(one.values) }));
        for (const one of run.suspects) this.suspicion.set(one.component, expand<number>(one.p));
        const sum = (p: number[]) => p.reduce((a, b) => a + b, 0) / Math.max(1, p.length) + (p[p.length - 1] ?? 0);
        this.suspects = [...this.suspicion.entries()]
            .map(([component, p]) => [component, sum(p)] as const)
            .sort((a, b) => b[1] - a[1] || a[0] - b[0])
            .map(([component]) => component);
    }

    candidates(point: number): Weighed[] {
        return weighed(this.raw.run.candidates[point] ?? []);
    }
    /** The candidates of a point, those together that cannot be told apart. */
    groups(point: number): Group[] {
        const candidates = this.candidates(point);
        let next = 0;
        return (this.sizes[point] ?? []).map((size) => this.group(candidates.slice(next, (next += size))));
    }
    group(members: Weighed[]): Group {
        const all = members.map(({ id }) => this.explanations[id]!);
        const first = all[0]!;
        const alone = (one: Explanation) =>
            Object.keys(one.modes).find((variable) =>
                all.some((other) => other.modes[variable] !== one.modes[variable] || other.since[variable] !== one.since[variable]),
            );
        const names = all.length > 1 ? all.map((one) => alone(one)!) : [];
        const without = (table: Record<string, string>) => Object.fromEntries(Object.entries(table).filter(([name]) => name !== names[0]));
        return {
            p: members.reduce((sum, { p }) => sum + p, 0),
            members,
            common: { ...first, modes: without(first.modes) },
            either: names.map((variable, i) => ({ variable, value: all[i]!.modes[variable]! })),
            since: first.since[names[0] ?? ''] ?? 0,
        };
    }
    channel(index: number): ChannelSeries {
        return (this.channelCache[index] ??= this.readChannel(index));
    }
    private readChannel(index: number): ChannelSeries {
        const raw = this.raw.run.channels[index]!;
        return {
            read: expand<number>(raw.read),
            believed: expand<number>(raw.believed),
            held: raw.held ? expand<number>(raw.held) : null,
            low: raw.low ?? null,
            high: raw.high ?? raw.low ?? null,
        };
    }

    variableName(index: number): string {
        const variable = this.plant.variables[index]!;
        return `${this.plant.components[variable.component]}.${variable.name}`;
    }
    channelName(index: number): string {
        const channel = this.plant.channels[index]!;
        return channel.channel ?? this.variableName(channel.variable);
    }
    /** The point that has the step, or else the one before it. */
    pointOfStep(step: number): number {
        let low = 0;
        let high = this.size - 1;
        while (low < high) {
            const middle = (low + high + 1) >> 1;
            if (this.first[middle]! <= step) low = middle;
            else high = middle - 1;
        }
        return low;
    }
    /** The point whose time is nearest. */
    pointAt(t: number): number {
        let low = 0;
        let high = this.size - 1;
        while (high - low > 1) {
            const middle = (low + high) >> 1;
            if (this.t[middle]! <= t) low = middle;
            else high = middle;
        }
        return t - this.t[low]! <= this.t[high]! - t ? low : high;
    }
}

/** What is written as number of an explanation, probability, number ... */
export function weighed(flat: number[]): Weighed[] {
    const list: Weighed[] = [];
    for (let i = 0; i < flat.length; i += 2) list.push({ id: flat[i]!, p: flat[i + 1]! });
    return list;
}

/** What two explanations have in common when only their beginnings differ. */
export function gist(explanation: Explanation): string {
    const parts = statements(explanation);
    return parts.length === 0 ? 'nothing is wrong' : parts.join('; ');
}
function statements(explanation: Explanation): string[] {
    const modes = Object.entries(explanation.modes).map(([variable, value]) => `${variable} = ${value}`);
    return [...modes, ...losses(explanation)];
}
/** Commands that did not arrive, and readings that were wrong. */
export function losses(explanation: Explanation): string[] {
    return [
        ...explanation.lost.map((command) => `${command} did not arrive`),
        ...(explanation.misread ?? []).map((reading) => `${reading} was misread`),
    ];
}
/** The same of a group: "one of fan.state = torn, damper.position = shut; meter.state = dead". */
export function gistOfGroup(group: Group): string {
    if (group.either.length === 0) return gist(group.common);
    const names = group.either.map(({ variable, value }) => `${variable} = ${value}`);
    return [`one of ${names.join(', ')}`, ...statements(group.common)].join('; ');
}
