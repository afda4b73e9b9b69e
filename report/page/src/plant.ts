// The plant, coloured by how probably a component is not as it should be at the cursor.
import cytoscape from 'cytoscape';
import { Graph as Layered, layout as layered } from '@dagrejs/dagre';
import type { Conflict } from './data';
import { byId, cssColour, fill, h, onDemand, table } from './dom';
import { percent } from './format';
import { Boxes, type Graph, type GraphNode } from './plant-graph';
import type { State } from './state';

const wide = 600; // nodes, from which on layers would take too long

export interface PlantView {
    show: (component: number) => void;
}

export function makePlant(state: State, seeChannels: (text: string) => void): PlantView {
    const data = state.data;
    const boxes = new Boxes(data.plant);
    const holder = byId('graph');
    const side = byId('component');
    const modesOf = new Map<number, number[]>(); // modes, by component
    data.modes.forEach(({ variable }, index) => {
        const component = data.plant.variables[variable]!.component;
        modesOf.set(component, [...(modesOf.get(component) ?? []), index]);
    });

    const cy = cytoscape({
        container: holder,
        style: styles(),
        minZoom: 0.05,
        maxZoom: 4,
        boxSelectionEnabled: false,
    });
    let graph: Graph = boxes.graph();

    // A small plant need not fill the screen.
    const fitted = () => {
        cy.fit(undefined, 12);
        if (cy.zoom() <= 1.5) return;
        cy.zoom(1.5);
        cy.center();
    };
    const draw = (fit: boolean) => {
        graph = boxes.graph();
        const places = placesOf(graph, holder.clientWidth / Math.max(1, holder.clientHeight));
        cy.batch(() => {
            cy.elements().remove();
            cy.add([
                ...graph.nodes.map((node) => ({
                    group: 'nodes' as const,
                    data: { id: node.id, label: node.label, ...(node.parent === null ? {} : { parent: node.parent }) },
                    classes: node.kind,
                    ...(node.kind === 'open' ? {} : { position: places.get(node.id) ?? { x: 0, y: 0 } }),
                })),
                ...graph.edges.map(({ id, source, target }) => ({ group: 'edges' as const, data: { id, source, target } })),
            ]);
        });
        holder.dataset['nodes'] = String(graph.nodes.length);
        colour();
        if (fit) fitted();
    };

    const suspicionOf = (components: number[]) => {
        let most = 0;
        for (const component of components) most = Math.max(most, data.suspicion.get(component)?.[state.cursor] ?? 0);
        return most;
    };
    const modeText = (component: number) =>
        (modesOf.get(component) ?? [])
            .map((index) => {
                const mode = data.modes[index]!;
                const variable = data.plant.variables[mode.variable]!;
                return variable.values[mode.values[state.cursor] ?? -1] ?? '';
            })
            .join(', ');
    const labelOf = (node: GraphNode, p: number) => {
        const lines = [node.label];
        if (node.kind === 'component') {
            const mode = modeText(node.components[0]!);
            if (mode) lines.push(mode);
        }
        if (p >= 0.005 && node.kind !== 'open') lines.push(percent(p));
        return lines.join('\n');
    };

    const colour = () => {
        const conflict = data.conflicts.find((one) => one.conflict === state.conflict);
        const [parts, laws] = conflict ? partsOf(conflict, state) : [new Set<number>(), new Set<number>()];
        cy.batch(() => {
            for (const node of graph.nodes) {
                const element = cy.getElementById(node.id);
                const p = node.kind === 'junction' ? 0 : suspicionOf(node.components);
                element.data({ label: labelOf(node, p), p });
                element.toggleClass('suspect', p >= 0.005 && node.kind !== 'open');
                element.toggleClass('in-conflict', node.kind !== 'open' && node.components.some((one) => parts.has(one)) && node.kind !== 'junction');
                element.toggleClass('chosen', node.kind === 'component' && node.components[0] === state.component);
            }
            for (const edge of graph.edges) {
                const both = edge.laws.some((law) => laws.has(law)) && edge.components.filter((one) => parts.has(one)).length > 1;
                cy.getElementById(edge.id).toggleClass('in-conflict', both);
            }
        });
    };

    const toggle = (id: string) => {
        if (boxes.folded.has(id)) boxes.folded.delete(id);
        else boxes.folded.add(id);
        draw(true);
    };
    cy.on('tap', 'node.open, node.folded', (event) => toggle((event.target as cytoscape.NodeSingular).id()));
    cy.on('tap', 'node.component', (event) => {
        const node = graph.nodes.find((one) => one.id === (event.target as cytoscape.NodeSingular).id());
        if (node) choose(node.components[0]!);
    });
    const choose = (component: number) => {
        state.component = component;
        state.changed('component');
    };

    const button = (text: string, title: string, action: () => void) =>
        h('button', { type: 'button', class: 'small', title, onclick: action }, text);
    const scale = (factor: number) =>
        cy.zoom({ level: cy.zoom() * factor, renderedPosition: { x: cy.width() / 2, y: cy.height() / 2 } });
    fill(
        byId('graph-tools'),
        button('Fold all', 'show parts as one box each', () => {
            for (const id of boxes.boxes.keys()) boxes.folded.add(id);
            draw(true);
        }),
        button('Unfold all', 'show every component', () => {
            boxes.folded.clear();
            draw(true);
        }),
        button('+', 'larger', () => scale(1.3)),
        button('−', 'smaller', () => scale(1 / 1.3)),
        button('Fit', 'show all of the plant', fitted),
    );
    if (boxes.boxes.size === 0) byId('graph-tools').querySelectorAll('button').forEach((one, at) => (one.hidden = at < 2));

    // By keyboard: arrows move the picture.
    holder.addEventListener('keydown', (event) => {
        const by: Record<string, [number, number]> = { ArrowLeft: [60, 0], ArrowRight: [-60, 0], ArrowUp: [0, 60], ArrowDown: [0, -60] };
        const move = by[event.key];
        if (!move) return;
        cy.panBy({ x: move[0], y: move[1] });
        event.preventDefault();
        event.stopPropagation();
    });

    const say = () => {
        const component = state.component;
        if (component === null) {
            fill(side, h('p', { class: 'note' }, 'Click a component for its modes, laws and channels; click a box to fold it.'));
            return;
        }
        const name = data.plant.components[component]!;
        const laws = data.plant.laws.filter((law) => law.components.includes(component));
        const channels = data.plant.channels
            .map((channel, index) => [channel, index] as const)
            .filter(([channel]) => data.plant.variables[channel.variable]!.component === component);
        const p = suspicionOf([component]);
        fill(
            side,
            h('h3', {}, name, p > 0 ? h('span', { class: 'p' }, ` ${percent(p)} not as it should be`) : ''),
            h('p', {}, ...(modesOf.get(component) ?? []).map((index) => `${data.plant.variables[data.modes[index]!.variable]!.name} = ${data.plant.variables[data.modes[index]!.variable]!.values[data.modes[index]!.values[state.cursor] ?? -1] ?? ''} `)),
            channels.length > 0
                ? h(
                      'p',
                      {},
                      'Channels: ',
                      ...channels.flatMap(([, index]) => [
                          h('button', { type: 'button', class: 'link', onclick: () => seeChannels(data.channelName(index)) }, data.channelName(index)),
                          ' ',
                      ]),
                  )
                : '',
            h(
                'ul',
                { class: 'laws' },
                ...laws.slice(0, 30).map((law) => h('li', {}, h('code', {}, law.text), law.file === null ? '' : h('span', { class: 'place' }, ` ${law.file}:${law.line}`))),
            ),
            laws.length > 30 ? h('p', { class: 'note' }, `and ${laws.length - 30} more`) : '',
        );
    };

    const update = onDemand(byId('plant-table'), 'Components as a table', () =>
        table(
            `Step ${data.step[state.cursor]}`,
            ['component', 'modes', 'not as it should be', 'connected with'],
            data.plant.components.map((name, component) => {
                const near = new Set<number>();
                for (const one of data.plant.connections) {
                    if (one.components.includes(component)) one.components.forEach((other) => near.add(other));
                }
                near.delete(component);
                return [
                    h('button', { type: 'button', class: 'link', onclick: () => choose(component) }, name),
                    modeText(component),
                    percent(suspicionOf([component])),
                    [...near].map((other) => data.plant.components[other]).join(', '),
                ];
            }),
        ),
    );

    const worst = data.suspects.filter((component) => suspicionOf([component]) > 0.01).slice(0, 3);
    for (const component of worst) boxes.reveal(component);
    const [only, ...others] = boxes.graph().nodes;
    if (only?.kind === 'folded' && others.length === 0) boxes.folded.delete(only.id);
    draw(true);
    say();
    state.listen((changes) => {
        if (changes.has('theme')) cy.style(styles());
        if (changes.has('size')) {
            cy.resize();
            fitted();
        }
        if (changes.has('conflict') && state.conflict !== null) {
            const conflict = data.conflicts.find((one) => one.conflict === state.conflict);
            const opened = conflict ? [...partsOf(conflict, state)[0]].filter((one) => boxes.reveal(one)).length : 0;
            if (opened > 0) draw(true);
        }
        if (changes.has('cursor') || changes.has('conflict') || changes.has('component') || changes.has('theme')) colour();
        if (changes.has('component') || changes.has('cursor')) {
            say();
            update();
        }
    });
    return {
        show: (component) => {
            if (boxes.reveal(component)) draw(false);
            choose(component);
            const node = cy.getElementById(`c:${component}`);
            if (node.nonempty()) cy.animate({ center: { eles: node }, duration: 0 });
        },
    };
}

/** The components and the laws, by index, that a conflict rests on. */
function partsOf(conflict: Conflict, state: State): [Set<number>, Set<number>] {
    const plant = state.data.plant;
    const names = new Set<string>();
    const componentOf = (variable: string) => names.add(variable.slice(0, variable.lastIndexOf('.')));
    if (conflict.observed) componentOf(conflict.observed.variable);
    for (const one of [...conflict.modes, ...conflict.commands, ...conflict.readings]) componentOf(one.variable);
    for (const law of conflict.laws) if (law.gives) componentOf(law.gives.variable);
    const parts = new Set<number>();
    plant.components.forEach((name, index) => names.has(name) && parts.add(index));
    const applied = new Set(conflict.laws.map((law) => (law.file === null ? law.clause : `${law.file}:${law.line}`)));
    const laws = new Set<number>();
    plant.laws.forEach((law, index) => applied.has(law.file === null ? law.text : `${law.file}:${law.line}`) && laws.add(index));
    return [parts, laws];
}

type Places = Map<string, { x: number; y: number }>;
interface Block {
    places: Places;
    width: number;
    height: number;
}

/** Where the nodes go: what hangs together in layers, to the right or down, and these beside each other in rows. */
function placesOf(graph: Graph, aspect: number): Places {
    const leaves = graph.nodes.filter((node) => node.kind !== 'open');
    if (leaves.length > wide) {
        const columns = Math.ceil(Math.sqrt(leaves.length * aspect * 0.55));
        return new Map(leaves.map((node, at) => [node.id, { x: (at % columns) * 110, y: Math.floor(at / columns) * 60 }]));
    }
    const byRoot = new Map<string, Graph[]>(); // pieces in one array stand together
    for (const [root, piece] of pieces(graph)) byRoot.set(root, [...(byRoot.get(root) ?? []), piece]);
    const best = (make: (direction: 'LR' | 'TB') => Block) => {
        const ways = [make('LR'), make('TB')] as const;
        const size = (block: Block) => Math.max(block.width / aspect, block.height);
        return size(ways[0]) <= size(ways[1]) ? ways[0] : ways[1];
    };
    const groups = [...byRoot.values()];
    if (groups.length === 1 && groups[0]!.length === 1) return best((direction) => inLayers(graph, direction)).places;
    return inRows(groups.map((group) => inRows(group.map((piece) => inLayers(piece, 'LR')), aspect)), aspect).places;
}

/** The pieces of a graph that no edge and no box but that of an array connects, each with the array around it, or its own name. */
function pieces(graph: Graph): [string, Graph][] {
    const nodes = new Map(graph.nodes.map((node) => [node.id, node]));
    const leader = new Map<string, string>();
    const find = (id: string): string => {
        let at = id;
        while (leader.has(at)) at = leader.get(at)!;
        return at;
    };
    const join = (a: string, b: string) => {
        const [one, other] = [find(a), find(b)];
        if (one !== other) leader.set(one, other);
    };
    const isArray = (id: string) => id.endsWith('[]');
    for (const node of graph.nodes) if (node.parent !== null && !isArray(node.parent)) join(node.id, node.parent);
    for (const edge of graph.edges) join(edge.source, edge.target);
    const found = new Map<string, Graph>();
    for (const node of graph.nodes) {
        if (node.kind === 'open' && isArray(node.id)) continue;
        const id = find(node.id);
        if (!found.has(id)) found.set(id, { nodes: [], edges: [] });
        const parent = node.parent !== null && isArray(node.parent) ? null : node.parent;
        found.get(id)!.nodes.push({ ...node, parent });
    }
    for (const edge of graph.edges) found.get(find(edge.source))!.edges.push(edge);
    return [...found.values()].map((piece) => {
        let root = piece.nodes[0]!.id;
        for (let id = nodes.get(root)?.parent ?? null; id !== null; id = nodes.get(id)?.parent ?? null) if (isArray(id)) root = id;
        return [root, piece];
    });
}

function inRows(blocks: Block[], aspect: number): Block {
    const gap = 26;
    const area = blocks.reduce((sum, block) => sum + (block.width + gap) * (block.height + gap), 0);
    const most = Math.max(...blocks.map((block) => block.width), Math.sqrt(area * aspect));
    const places: Places = new Map();
    let [x, y, row, width] = [0, 0, 0, 0];
    for (const block of blocks) {
        if (x > 0 && x + block.width > most) [x, y, row] = [0, y + row + gap, 0];
        for (const [id, place] of block.places) places.set(id, { x: place.x + x, y: place.y + y });
        x += block.width + gap;
        row = Math.max(row, block.height);
        width = Math.max(width, x);
    }
    return { places, width, height: y + row };
}

function inLayers(graph: Graph, direction: 'LR' | 'TB'): Block {
    const layers = new Layered({ compound: true });
    layers.setGraph({ rankdir: direction, nodesep: 14, ranksep: direction === 'LR' ? 42 : 30, marginx: 8, marginy: 8 });
    layers.setDefaultEdgeLabel(() => ({}));
    for (const node of graph.nodes) {
        const size = node.kind === 'junction' ? { width: 10, height: 10 } : { width: 104, height: 46 };
        layers.setNode(node.id, node.kind === 'open' ? {} : size);
    }
    for (const node of graph.nodes) if (node.parent !== null) layers.setParent(node.id, node.parent);
    for (const edge of graph.edges) layers.setEdge(edge.source, edge.target);
    layered(layers);
    const block: Block = { places: new Map(), width: 0, height: 0 };
    for (const node of graph.nodes) {
        if (node.kind === 'open') continue;
        const { x, y } = layers.node(node.id) as { x: number; y: number };
        block.places.set(node.id, { x, y });
        block.width = Math.max(block.width, x + 60);
        block.height = Math.max(block.height, y + 31);
    }
    return block;
}

function styles(): cytoscape.StylesheetJson {
    const ink = cssColour('--ink');
    return [
        {
            selector: 'node',
            style: {
                label: 'data(label)',
                'text-wrap': 'wrap',
                'text-max-width': '92px',
                'font-size': 11,
                'font-family': 'system-ui, sans-serif',
                color: ink,
                'text-valign': 'center',
                'background-color': cssColour('--node'),
                'border-color': cssColour('--line'),
                'border-width': 1,
                shape: 'round-rectangle',
                width: 96,
                height: 44,
            },
        },
        { selector: 'node.suspect', style: { 'background-color': `mapData(p, 0, 1, ${cssColour('--suspect-0')}, ${cssColour('--suspect-1')})`, 'border-color': cssColour('--faulty'), 'border-width': 2 } },
        { selector: 'node.open', style: { 'background-color': cssColour('--box'), 'background-opacity': 0.6, 'text-valign': 'top', 'font-weight': 'bold', 'border-style': 'solid', padding: '8px' } },
        { selector: 'node.folded', style: { 'border-style': 'double', 'border-width': 4, 'font-weight': 'bold' } },
        { selector: 'node.junction', style: { width: 9, height: 9, shape: 'ellipse', 'background-color': cssColour('--soft') } },
        { selector: 'node.in-conflict', style: { 'border-color': cssColour('--conflict'), 'border-width': 4 } },
        { selector: 'node.chosen', style: { 'underlay-color': cssColour('--accent'), 'underlay-opacity': 0.5, 'underlay-padding': 6 } },
        { selector: 'edge', style: { width: 1.2, 'line-color': cssColour('--edge'), 'curve-style': 'bezier' } },
        { selector: 'edge.in-conflict', style: { width: 4, 'line-color': cssColour('--conflict') } },
    ];
}
