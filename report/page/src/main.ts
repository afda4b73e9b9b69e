// Reads the data of the page and makes its views.
import { Data, type RawData } from './data';
import { makeChannels } from './channels';
import { byId, fill, forgetColours, h } from './dom';
import { makeExplanations, Palette } from './explanations';
import { makeModes } from './modes';
import { makePlant } from './plant';
import { makeSearch, type Found } from './search';
import { State } from './state';
import { showSummary } from './summary';
import { makeTimeline, nextEvent } from './timeline';
import { makeWhy } from './why';

function start(): void {
    const data = new Data(JSON.parse(byId('data').textContent) as RawData);
    showSummary(data);
    if (data.size === 0) {
        byId('views').hidden = true;
        return;
    }
    const state = new State(data);
    const palette = new Palette(state);
    makeTimeline(state);
    makeExplanations(state, palette);
    makeWhy(state, palette);
    makeModes(state);
    listen(state);
    draw(state);
    const html = document.documentElement;
    html.dataset['seen'] = performance.now().toFixed(0);
    // What is further down comes when the first screen is there.
    setTimeout(() => {
        const channels = makeChannels(state);
        const seeChannels = (text: string) => {
            channels.filter(text);
            byId('channels').scrollIntoView();
        };
        const plant = makePlant(state, seeChannels);
        makeSearch(data, (found: Found) => {
            if (found.kind === 'channel') return seeChannels(data.channelName(found.index));
            plant.show(found.index);
            byId('plant').scrollIntoView();
        });
        draw(state);
        html.dataset['complete'] = performance.now().toFixed(0);
        html.dataset['ready'] = 'yes';
    }, 0);
}

function draw(state: State): void {
    state.changed('cursor', 'range', 'size');
    state.flush();
}

function listen(state: State): void {
    document.addEventListener('keydown', (event) => {
        const target = event.target as HTMLElement;
        if (event.ctrlKey || event.metaKey || event.altKey || /^(INPUT|SELECT|TEXTAREA)$/.test(target.tagName)) return;
        const by = event.shiftKey ? Math.max(10, Math.round(state.data.size / 20)) : 1;
        const actions: Record<string, () => void> = {
            ArrowLeft: () => state.moveTo(state.cursor - by, true),
            ArrowRight: () => state.moveTo(state.cursor + by, true),
            Home: () => state.moveTo(0, true),
            End: () => state.moveTo(state.data.size - 1, true),
            n: () => state.moveTo(nextEvent(state, 1), true),
            p: () => state.moveTo(nextEvent(state, -1), true),
            '+': () => state.zoom(0.5),
            '-': () => state.zoom(2),
            '0': () => state.show(...state.whole()),
            Escape: () => {
                state.alone = null;
                state.conflict = null;
                state.release();
                state.changed('alone', 'conflict');
            },
            '/': () => byId('search').focus(),
        };
        const action = actions[event.key];
        if (!action) return;
        action();
        event.preventDefault();
    });
    // What is printed is light; it is drawn before the next frame, of which there is none on paper.
    const inOtherColours = () => {
        forgetColours();
        state.changed('theme', 'cursor');
        state.flush();
    };
    for (const medium of ['print', '(prefers-color-scheme: dark)']) matchMedia(medium).addEventListener('change', inOtherColours);
    let width = document.documentElement.clientWidth;
    new ResizeObserver(() => {
        if (document.documentElement.clientWidth === width) return;
        width = document.documentElement.clientWidth;
        state.changed('size', 'cursor');
    }).observe(document.documentElement);
}

try {
    start();
} catch (error) {
    fill(byId('summary'), h('p', { class: 'verdict' }, 'This page could not be shown.'), h('p', {}, String(error)));
    throw error;
}
