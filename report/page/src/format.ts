// Numbers, times and names as people read them.
import type { Data } from './data';

/** "100 %", "16.7 %", "<0.01 %": as the tables of the program have it. */
export function percent(p: number): string {
    if (p >= 1) return '100 %';
    if (p <= 0) return '0 %';
    if (p > 0.9995) return '>99.9 %';
    if (p < 0.0001) return '<0.01 %';
    const value = p * 100;
    return `${value >= 10 ? value.toFixed(1) : value.toFixed(2)} %`;
}

const year2000 = 946684800;
const year2100 = 4102444800;

/** Whether times are seconds since 1970, and so wall-clock time. */
export function isWallClock(data: Data): boolean {
    const first = data.t[0];
    return first !== undefined && first >= year2000 && first < year2100;
}

export function timeText(t: number, wall: boolean): string {
    if (!wall) return `t = ${plain(t)} s`;
    const date = new Date(t * 1000);
    const iso = date.toISOString();
    const fraction = date.getUTCMilliseconds() === 0 ? '' : iso.slice(19, 23);
    return `${iso.slice(0, 10)} ${iso.slice(11, 19)}${fraction} UTC`;
}

export function plain(value: number): string {
    return String(Number(value.toPrecision(10)));
}

export function counted(count: number, noun: string): string {
    return `${count.toLocaleString('en')} ${noun}${count === 1 ? '' : 's'}`;
}

/** The last part of a name: `branchB/valve` is `valve`. */
export function shortName(name: string): string {
    return name.slice(name.lastIndexOf('/') + 1);
}

export const statusText: Record<string, string> = {
    nominal: 'nothing is wrong',
    faulty: 'something is wrong',
    ambiguous: 'no explanation has more than half of the probability',
    inconsistent: 'nothing explains the observations',
    stale: 'nothing was observed',
};
