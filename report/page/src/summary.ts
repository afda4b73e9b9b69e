// The first lines of the page: what is wrong, since when, and how sure that is.
import { gist, losses, type Data, type Group } from './data';
import { byId, fill, h } from './dom';
import { counted, isWallClock, percent, timeText } from './format';

function began(data: Data, since: number): string {
    if (since === 0) return 'from the beginning';
    const t = data.t[data.pointOfStep(since)];
    const exact = data.raw.run.stepsPerPoint === 1 && t !== undefined;
    return `since step ${since}${exact ? `, ${timeText(t, isWallClock(data))}` : ''}`;
}

function whatIsWrong(data: Data, { common, either, members, since }: Group): string {
    const parts = Object.entries(common.modes).map(([variable, value]) => ({
        since: common.since[variable] ?? 0,
        what: `${variable} is ${value}${common.since[variable] === 0 ? ',' : ''}`,
    }));
    const names = either.map(({ variable, value }, i) => `${variable} is ${value} (${percent(members[i]!.p)})`);
    if (names.length > 0) parts.push({ since, what: `${names.slice(0, -1).join(', ')} or ${names.at(-1)},` });
    parts.sort((a, b) => a.since - b.since);
    const modes = parts.map((part) => `${part.what} ${began(data, part.since)}`);
    return [...modes, ...losses(common)].join('; ');
}

function verdict(data: Data): [string, Node[]] {
    const last = data.size - 1;
    const first = data.groups(last)[0];
    const status = data.status[last];
    if (first === undefined || status === undefined) return ['stale', ['There were no steps.'].map((text) => h('p', {}, text))];
    const nothing = first.either.length === 0 && gist(first.common) === 'nothing is wrong';
    const sure = h('span', { class: 'sure' }, percent(first.p));
    if (status === 'inconsistent')
        return [status, [h('p', { class: 'verdict' }, 'Nothing explains the last observations.')]];
    if (nothing && status !== 'ambiguous') {
        const was = (data.raw.run.counts.faulty ?? 0) + (data.raw.run.counts.ambiguous ?? 0);
        const text = was > 0 ? 'Nothing is wrong any more' : 'Nothing is wrong';
        return [status, [h('p', { class: 'verdict' }, `${text}. `, sure)]];
    }
    const prefix = status === 'ambiguous' && first.p <= 0.5 ? 'Not clear; most probably ' : '';
    const text = nothing ? 'nothing is wrong' : whatIsWrong(data, first);
    return [status, [h('p', { class: 'verdict' }, `${prefix}${text}. `, sure)]];
}

export function showSummary(data: Data): void {
    const raw = data.raw;
    const [status, lines] = verdict(data);
    const header = byId('summary');
    header.dataset['status'] = status;
    document.title = `itms: ${raw.plant.system || raw.model}`;
    const wall = isWallClock(data);
    const last = data.size - 1;
    const facts = [
        `${raw.model} with ${raw.telemetry === '-' ? 'standard input' : raw.telemetry}`,
        counted(raw.run.steps, 'step'),
        data.size > 0 ? `${timeText(raw.run.from ?? data.t[0]!, wall)} to ${timeText(data.t[last]!, wall)}` : '',
        Object.entries(raw.run.counts).map(([name, count]) => `${count} ${name}`).join(', '),
    ].filter((text) => text !== '');
    const notes: string[] = [];
    if (raw.interrupted) notes.push('The run was interrupted: what came later is not here.');
    if (raw.run.stepsPerPoint > 1)
        notes.push(
            `Each point stands for up to ${counted(raw.run.stepsPerPoint, 'step')} and shows the worst of them, the last one where several are equally bad; numbers that were read are shown from their smallest to their largest.`,
        );
    if (raw.linesLeftOut > 0) notes.push(`${counted(raw.linesLeftOut, 'bad line')} left out.`);
    if (data.complete.includes(0)) notes.push('At some steps the search was not complete: there may be other explanations.');
    fill(
        header,
        ...lines,
        h('p', { class: 'facts' }, facts.join(' · ')),
        ...notes.map((note) => h('p', { class: 'note' }, note)),
    );
}
