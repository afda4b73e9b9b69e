// The plant as nodes and edges: parts of parts in boxes that fold, laws across components as edges.
import type { Plant } from './data';
import { shortName } from './format';

export interface Box {
    id: string; // the name of the part, or of an array: `branchA`, `cell[]`
    label: string;
    parent: string | null;
    children: string[]; // boxes
    members: number[]; // components directly in it
    total: number; // components in it, however deep
}

export interface GraphNode {
    id: string;
    label: string;
    parent: string | null;
    kind: 'component' | 'open' | 'folded' | 'junction';
    components: number[]; // that it stands for
    laws: number[];
}
export interface GraphEdge {
    id: string;
    source: string;
    target: string;
    laws: number[];
    components: number[];
}
export interface Graph {
    nodes: GraphNode[];
    edges: GraphEdge[];
}

const many = 60; // components, from which on arrays are boxes, too
const readable = 16; // components, from which on boxes are folded at first

export class Boxes {
    readonly boxes = new Map<string, Box>();
    readonly boxOf: (string | null)[];
    readonly folded = new Set<string>();
    /** A component without variables is but the box of its parts. */
    private readonly withVariables = new Set<number>();

    constructor(private readonly plant: Plant) {
        const names = plant.components;
        for (const variable of plant.variables) this.withVariables.add(variable.component);
        const parts = new Set<string>();
        for (const name of names) {
            for (let at = name.indexOf('/'); at >= 0; at = name.indexOf('/', at + 1)) parts.add(name.slice(0, at));
        }
        const arrays = new Map<string, number>();
        for (const name of new Set([...parts, ...names])) {
            const array = arrayOf(name);
            if (array) arrays.set(array, (arrays.get(array) ?? 0) + 1);
        }
        const large = names.length > many;
        const parentOf = (name: string): string | null => {
            const array = arrayOf(name);
            if (array && large && arrays.get(array)! > 3) return array;
            const at = name.lastIndexOf('/');
            return at < 0 ? null : name.slice(0, at);
        };
        const need = (id: string): void => {
            if (this.boxes.has(id)) return;
            const at = id.lastIndexOf('/');
            const parent = id.endsWith('[]') ? (at < 0 ? null : id.slice(0, at)) : parentOf(id);
            if (parent !== null) need(parent);
            const label = id.endsWith('[]') ? `${shortName(id).slice(0, -2)}[${arrays.get(id)}]` : shortName(id);
            this.boxes.set(id, { id, label, parent, children: [], members: [], total: 0 });
            if (parent !== null) this.boxes.get(parent)!.children.push(id);
        };
        this.boxOf = names.map((name) => {
            const box = parts.has(name) ? name : parentOf(name);
            if (box !== null) need(box);
            return box;
        });
        this.boxOf.forEach((id, component) => {
            if (id === null || !this.withVariables.has(component)) return;
            this.boxes.get(id)!.members.push(component);
            for (let box = this.boxes.get(id); box; box = box.parent === null ? undefined : this.boxes.get(box.parent)) ++box.total;
        });
        if (names.length > readable) for (const box of this.boxes.values()) this.folded.add(box.id);
    }

    /** Opens what the component is in, and folds what it folded around no other. */
    reveal(component: number): boolean {
        let changed = false;
        for (let id = this.boxOf[component] ?? null; id !== null; id = this.boxes.get(id)!.parent) {
            changed = this.folded.delete(id) || changed;
        }
        return changed;
    }
    /** The outermost folded box around a component, or around a box. */
    private cover(box: string | null): string | null {
        let found: string | null = null;
        for (let id = box; id !== null; id = this.boxes.get(id)!.parent) if (this.folded.has(id)) found = id;
        return found;
    }
    private nodeOf(component: number): string {
        return this.cover(this.boxOf[component] ?? null) ?? `c:${component}`;
    }
    membersOf(id: string): number[] {
        const box = this.boxes.get(id)!;
        return [...box.members, ...box.children.flatMap((child) => this.membersOf(child))];
    }

    graph(): Graph {
        const nodes: GraphNode[] = [];
        const shown = new Set<string>();
        const add = (node: GraphNode) => {
            if (shown.has(node.id)) return;
            shown.add(node.id);
            nodes.push(node);
        };
        for (const box of this.boxes.values()) {
            if (box.parent !== null && this.cover(box.parent) !== null) continue;
            const kind = this.folded.has(box.id) ? 'folded' : 'open';
            const label = kind === 'folded' ? `${box.label} (${box.total})` : box.label;
            add({ id: box.id, label, parent: box.parent, kind, components: this.membersOf(box.id), laws: [] });
        }
        this.plant.components.forEach((name, component) => {
            const box = this.boxOf[component] ?? null;
            if (this.cover(box) !== null || (box === name && !this.withVariables.has(component))) return;
            const label = box === name ? `${shortName(name)} itself` : shortName(name);
            add({ id: `c:${component}`, label, parent: box, kind: 'component', components: [component], laws: [] });
        });
        return { nodes, edges: this.connect(add) };
    }

    private connect(add: (node: GraphNode) => void): GraphEdge[] {
        const edges = new Map<string, GraphEdge>();
        const edge = (source: string, target: string, laws: number[], components: number[]) => {
            const id = source < target ? `${source}|${target}` : `${target}|${source}`;
            const known = edges.get(id);
            if (known) {
                known.laws.push(...laws);
                known.components.push(...components);
            } else edges.set(id, { id: `e:${id}`, source, target, laws: [...laws], components: [...components] });
        };
        this.plant.connections.forEach(({ components, laws }, index) => {
            const ends = [...new Set(components.map((component) => this.nodeOf(component)))];
            if (ends.length < 2) return;
            if (ends.length === 2) return edge(ends[0]!, ends[1]!, laws, components);
            const junction = `j:${index}`;
            add({ id: junction, label: '', parent: this.common(components), kind: 'junction', components, laws });
            for (const end of ends) edge(end, junction, laws, components);
        });
        return [...edges.values()];
    }
    /** The innermost box around all of them that is open. */
    private common(components: number[]): string | null {
        const chain = (component: number) => {
            const ids: string[] = [];
            for (let id = this.boxOf[component] ?? null; id !== null; id = this.boxes.get(id)!.parent) ids.push(id);
            return ids;
        };
        const chains = components.map(chain);
        return chains[0]!.find((id) => chains.every((ids) => ids.includes(id)) && this.cover(id) === null) ?? null;
    }
}

/** `rack[2]` is in the array `rack[]`. */
function arrayOf(name: string): string | null {
    const match = /^(.*)\[\d+\]$/.exec(name);
    return match ? `${match[1]}[]` : null;
}
