// Finds channels, components and explanations by name.
import type { Data } from './data';
import { byId, fill, h } from './dom';

export interface Found {
    kind: 'channel' | 'component' | 'explanation';
    text: string;
    index: number;
}

const most = 12;

/** Those that have all of the words, names that begin with them first. */
export function find(data: Data, text: string): Found[] {
    const words = text.trim().toLowerCase().split(/\s+/).filter((word) => word !== '');
    if (words.length === 0) return [];
    const all: Found[] = [
        ...data.plant.components.map((name, index): Found => ({ kind: 'component', text: name, index })),
        ...data.plant.channels.map(
            (channel, index): Found => ({
                kind: 'channel',
                text: channel.channel === null ? data.variableName(channel.variable) : `${channel.channel} ${data.variableName(channel.variable)}`,
                index,
            }),
        ),
    ];
    const matches = all.filter((one) => words.every((word) => one.text.toLowerCase().includes(word)));
    const starts = (one: Found) => Number(one.text.toLowerCase().startsWith(words[0]!));
    return matches.sort((a, b) => starts(b) - starts(a) || a.text.length - b.text.length || a.index - b.index).slice(0, most);
}

export function makeSearch(data: Data, go: (found: Found) => void): void {
    const input = byId<HTMLInputElement>('search');
    const list = byId('found');
    let matches: Found[] = [];
    let at = 0;

    const close = () => {
        list.hidden = true;
        input.setAttribute('aria-expanded', 'false');
    };
    const show = () => {
        matches = find(data, input.value);
        at = Math.min(at, Math.max(0, matches.length - 1));
        fill(
            list,
            ...matches.map((one, index) =>
                h(
                    'li',
                    {
                        role: 'option',
                        id: `found-${index}`,
                        'aria-selected': String(index === at),
                        onmousedown: (event: Event) => {
                            event.preventDefault();
                            choose(one);
                        },
                    },
                    one.text,
                    h('span', { class: 'tag' }, one.kind),
                ),
            ),
            matches.length === 0 && input.value.trim() !== '' ? h('li', { class: 'note' }, 'nothing has this name') : '',
        );
        list.hidden = input.value.trim() === '';
        input.setAttribute('aria-expanded', String(!list.hidden));
        input.setAttribute('aria-activedescendant', matches.length > 0 ? `found-${at}` : '');
    };
    const choose = (one: Found) => {
        close();
        input.blur();
        go(one);
    };
    input.addEventListener('input', () => ((at = 0), show()));
    input.addEventListener('focus', show);
    input.addEventListener('blur', close);
    input.addEventListener('keydown', (event) => {
        event.stopPropagation();
        if (event.key === 'Escape') input.blur();
        else if (event.key === 'Enter' && matches[at]) choose(matches[at]!);
        else if (event.key === 'ArrowDown') at = Math.min(matches.length - 1, at + 1);
        else if (event.key === 'ArrowUp') at = Math.max(0, at - 1);
        else return;
        event.preventDefault();
        if (!list.hidden) show();
    });
}
