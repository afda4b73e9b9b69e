#!/usr/bin/env python3
"""Makes circuits, and problems of circuits: what outputs show when some gates are faulty.

    bench/circuit-problems.py FOLDER                     multipliers, adders and a parity tree, with problems
    bench/circuit-problems.py FOLDER CIRCUIT.bench ...   problems of these circuits, which are copied there

Writes NAME.bench and NAME.jsonl into the folder. Of each circuit there are problems of one, two and three faulty gates: random inputs,
and gates drawn until some output is wrong (in a parity tree, two faults never show). A faulty gate shows the opposite of what it should.
The same call writes the same files.
"""
import json
import random
import sys
from pathlib import Path

PROBLEMS_OF_EACH = 3
MOST_FAULTS = 3
MOST_DRAWS = 1000


class Draft:
    """A circuit that is being made, gate by gate."""

    def __init__(self):
        self.lines, self.count = [], 0

    def input(self, name):
        self.lines.append(f"INPUT({name})")
        return name

    def output(self, name):
        self.lines.append(f"OUTPUT({name})")

    def gate(self, kind, *inputs):
        self.count += 1
        name = f"g{self.count}"
        self.lines.append(f"{name} = {kind}({', '.join(inputs)})")
        return name

    def half_adder(self, a, b):
        both = self.gate("NOR", a, b)
        carry = self.gate("NOR", self.gate("NOT", a), self.gate("NOT", b))
        return self.gate("NOR", both, carry), carry

    def full_adder(self, a, b, c):
        """Nine NOR gates, and one for the carry's sense."""
        n1 = self.gate("NOR", a, b)
        n4 = self.gate("NOR", self.gate("NOR", a, n1), self.gate("NOR", n1, b))
        n5 = self.gate("NOR", n4, c)
        total = self.gate("NOR", self.gate("NOR", n4, n5), self.gate("NOR", n5, c))
        return total, self.gate("NOR", n1, n5)

    def text(self):
        return "\n".join(self.lines) + "\n"


def multiplier(bits):
    draft = Draft()
    a = [draft.input(f"a{i}") for i in range(bits)]
    b = [draft.input(f"b{i}") for i in range(bits)]
    row = [draft.gate("AND", a[i], b[0]) for i in range(bits)]
    draft.output(row[0])
    row = row[1:]
    for j in range(1, bits):
        products = [draft.gate("AND", a[i], b[j]) for i in range(bits)]
        sums, carry = [], None
        for i, product in enumerate(products):
            terms = [product] + ([row[i]] if i < len(row) else []) + ([carry] if carry else [])
            if len(terms) == 1:
                total, carry = terms[0], None
            elif len(terms) == 2:
                total, carry = draft.half_adder(*terms)
            else:
                total, carry = draft.full_adder(*terms)
            sums.append(total)
        draft.output(sums[0])
        row = sums[1:] + ([carry] if carry else [])
    for signal in row:
        draft.output(signal)
    return draft.text()


def adder(bits):
    draft = Draft()
    carry = draft.input("c")
    for i in range(bits):
        a, b = draft.input(f"a{i}"), draft.input(f"b{i}")
        either = draft.gate("XOR", a, b)
        draft.output(draft.gate("XOR", either, carry))
        carry = draft.gate("OR", draft.gate("AND", a, b), draft.gate("AND", either, carry))
    draft.output(carry)
    return draft.text()


def parity(bits):
    draft = Draft()
    level = [draft.input(f"a{i}") for i in range(bits)]
    while len(level) > 1:
        level = [draft.gate("XOR", *level[i:i + 2]) for i in range(0, len(level), 2)]
    draft.output(level[0])
    return draft.text()


def read(text):
    inputs, outputs, gates = [], [], {}
    for line in text.splitlines():
        line = line.split("#")[0].strip()
        if not line:
            continue
        inner = line[line.index("(") + 1:line.rindex(")")]
        if "=" in line:
            name, kind = (part.strip() for part in line[:line.index("(")].split("="))
            gates[name] = (kind.upper(), [part.strip() for part in inner.split(",")])
        elif line.upper().startswith("INPUT"):
            inputs.append(inner.strip())
        else:
            outputs.append(inner.strip())
    order, done = [], set(inputs)

    def visit(first):
        stack = [first]
        while stack:
            missing = [i for i in gates[stack[-1]][1] if i not in done] if stack[-1] not in done else []
            if missing:
                stack.extend(missing)
                continue
            name = stack.pop()
            if name not in done:
                done.add(name)
                order.append(name)

    for name in gates:
        visit(name)
    return inputs, outputs, gates, order


FUNCTIONS = {
    "AND": all, "NAND": lambda v: not all(v), "OR": any, "NOR": lambda v: not any(v),
    "XOR": lambda v: sum(v) % 2 == 1, "XNOR": lambda v: sum(v) % 2 == 0,
    "NOT": lambda v: not v[0], "BUF": lambda v: v[0], "BUFF": lambda v: v[0],
}


def simulate(gates, order, values, faulty):
    values = dict(values)
    for name in order:
        kind, inputs = gates[name]
        values[name] = int(bool(FUNCTIONS[kind]([values[i] for i in inputs])) != (name in faulty))
    return values


def problems(name, text):
    draw = random.Random(name)
    inputs, outputs, gates, order = read(text)
    for faults in range(1, MOST_FAULTS + 1):
        for number in range(1, PROBLEMS_OF_EACH + 1):
            for _ in range(MOST_DRAWS):
                given = {i: draw.randrange(2) for i in inputs}
                faulty = draw.sample(order, faults)
                right = simulate(gates, order, given, ())
                seen = simulate(gates, order, given, faulty)
                if any(right[o] != seen[o] for o in outputs):
                    yield {"id": f"{name}-{faults}-{number}", "inputs": given,
                           "observed": {o: seen[o] for o in outputs}, "injected": faulty}
                    break


def main(folder, paths):
    texts = {Path(path).stem: Path(path).read_text() for path in paths} or {
        "multiplier8": multiplier(8), "multiplier16": multiplier(16), "multiplier19": multiplier(19), "adder32": adder(32),
        "adder256": adder(256), "parity64": parity(64)}
    Path(folder).mkdir(parents=True, exist_ok=True)
    for name, text in texts.items():
        (Path(folder) / f"{name}.bench").write_text(text)
        lines = [json.dumps(problem, separators=(",", ":")) for problem in problems(name, text)]
        (Path(folder) / f"{name}.jsonl").write_text("\n".join(lines) + "\n")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2:])
