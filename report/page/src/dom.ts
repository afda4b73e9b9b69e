// Elements made without markup: whatever a name contains is text.

type Child = Node | string | number | null | undefined | false;
type Props = Record<string, string | number | boolean | null | undefined | ((event: never) => void)>;

export function h<K extends keyof HTMLElementTagNameMap>(
    tag: K,
    props: Props = {},
    ...children: Child[]
): HTMLElementTagNameMap[K] {
    const element = document.createElement(tag);
    for (const [key, value] of Object.entries(props)) {
        if (value === null || value === undefined || value === false) continue;
        if (typeof value === 'function') element.addEventListener(key.slice(2), value as EventListener);
        else element.setAttribute(key, value === true ? '' : String(value));
    }
    append(element, children);
    return element;
}

export function append(element: Element, children: Child[]): void {
    for (const child of children) {
        if (child === null || child === undefined || child === false) continue;
        element.append(child instanceof Node ? child : String(child));
    }
}

export function fill(element: Element, ...children: Child[]): void {
    element.replaceChildren();
    append(element, children);
}

export function byId<T extends HTMLElement = HTMLElement>(id: string): T {
    const element = document.getElementById(id);
    if (!element) throw new Error(`no element ${id}`);
    return element as T;
}

/** A table with a heading row; a cell that is a number is set to the right. */
export function table(caption: string, heading: string[], rows: Child[][]): HTMLTableElement {
    return h(
        'table',
        { class: 'data' },
        h('caption', {}, caption),
        h('thead', {}, h('tr', {}, ...heading.map((cell) => h('th', { scope: 'col' }, cell)))),
        h(
            'tbody',
            {},
            ...rows.map((row) =>
                h('tr', {}, ...row.map((cell) => h('td', { class: typeof cell === 'number' ? 'number' : null }, cell))),
            ),
        ),
    );
}

/** A table that is made when it is opened, and again by the function that is returned. */
export function onDemand(into: HTMLElement, summary: string, make: () => Node): () => void {
    const body = h('div', { class: 'table-scroll', tabindex: 0 });
    const details = h('details', { class: 'as-table' }, h('summary', {}, summary), body);
    const update = () => {
        if (details.open) fill(body, make());
    };
    details.addEventListener('toggle', update);
    into.append(details);
    return update;
}

const colours = new Map<string, string>();

/** A colour of the style sheet, for canvases. */
export function cssColour(name: string): string {
    let colour = colours.get(name);
    if (colour === undefined) {
        colour = getComputedStyle(document.documentElement).getPropertyValue(name).trim();
        colours.set(name, colour);
    }
    return colour;
}
/** The system's setting has changed. */
export function forgetColours(): void {
    colours.clear();
}

/** A canvas ready to draw on in CSS pixels, as wide as its element. */
export function prepared(canvas: HTMLCanvasElement, height: number): [CanvasRenderingContext2D, number] {
    const width = Math.max(50, canvas.clientWidth);
    const ratio = window.devicePixelRatio || 1;
    const pixels = [Math.round(width * ratio), Math.round(height * ratio)] as const;
    if (canvas.width !== pixels[0] || canvas.height !== pixels[1]) {
        canvas.width = pixels[0];
        canvas.height = pixels[1];
        canvas.style.height = `${height}px`;
    }
    const context = canvas.getContext('2d')!;
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, width, height);
    return [context, width];
}
