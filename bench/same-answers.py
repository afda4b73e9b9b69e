#!/usr/bin/env python3
"""Compares the answers of two builds, byte for byte.

    bench/same-answers.py BEFORE AFTER [--plants N] [--first SEED]

Draws small plants, lets the older build simulate each with random commands, faults and what nothing determines, and follows what is read
with both. Readings are left out and changed here and there, so that steps are explained by faults, by lost commands, late, or not at
all. Ends with status 1 at the first answer that differs, and keeps the model and the telemetry of it.
"""

import argparse
import json
import os
import random
import subprocess
import sys
import tempfile


def machine(draw, name):
    """A component with a mode, mostly a command, and conditions that follow from both."""
    values = ["low", "high"] if draw.random() < 0.6 else ["low", "mid", "high"]
    modes = ["off initial", "on", "stuck fault"] + (["worn fault"] if draw.random() < 0.4 else [])
    faults = [mode.split()[0] for mode in modes if mode.endswith("fault")]
    lost = f" lost {draw.choice([0.01, 0.2])}" if draw.random() < 0.3 else ""
    lines = [f"component {name} {{", f"    command request: none, start, stop{lost}",
             f"    cond inflow: {', '.join(values)}", f"    cond outflow: {', '.join(values)}",
             "    cond heat: cold, hot", f"    mode state {{ {', '.join(modes)} }}",
             "    law state = on -> outflow = inflow", "    law state = off -> outflow = low"]
    if draw.random() < 0.7:
        lines.append("    law state = stuck -> outflow = low")
    lines.append(draw.choice(["    law state = on <-> heat = hot", "    law inflow = low -> heat = cold",
                              "    law heat = hot & state = on -> outflow = low", ""]))
    sure = draw.choice([0.9, 0.99, 1])
    on = draw.choice(["request = start", "request = start & inflow != low", "request = start | heat = hot",
                      "inflow = high"])
    lines += [f"    nominal off -> on when {on} : {sure}", f"    nominal on -> off when request = stop : {sure}"] if sure < 1 else [
        f"    nominal off -> on when {on}", "    nominal on -> off when request = stop"]
    for fault in faults:
        guard = " when heat = hot" if draw.random() < 0.2 else ""
        lines.append(f"    fault off, on -> {fault}{guard} : {draw.choice([0.0005, 0.003, 0.004])}")
    if draw.random() < 0.4:
        lines.append(f"    repair {faults[0]} -> off : {draw.choice([0.01, 0.2])}")
    return values, lines + ["}"]


def plant(draw):
    lines, parts, kinds = [], [], []
    for kind in range(draw.randint(1, 3)):
        values, text = machine(draw, f"Kind{kind}")
        lines += text
        kinds.append(values)
    system = ["system Plant {"]
    body = []
    fed = set()
    for i in range(draw.randint(2, 5)):
        kind = draw.randrange(len(kinds))
        parts.append(kinds[kind])
        system.append(f"    m{i}: Kind{kind}")
        before = [j for j in range(i) if parts[j] == parts[i]]
        if before and draw.random() < 0.7:
            body.append(f"    law m{draw.choice(before)}.outflow = m{i}.inflow")
            fed.add(i)
    for i in range(len(parts)):
        for name in ("inflow", "outflow", "heat"):
            if draw.random() < 0.6:
                kind = "input" if name == "inflow" and i not in fed and draw.random() < 0.6 else "observe"
                extra = " hold 2 s" if draw.random() < 0.2 else ""
                if kind == "observe" and draw.random() < 0.2:
                    extra += " varies 0.1"
                values = parts[i] if name != "heat" else ["cold", "hot"]
                readings = ", ".join(f'{value} = "{value}"' for value in values)
                body.append(f'    {kind} m{i}.{name} from "C-{i}-{name}" : {readings}{extra}')
    return "\n".join(lines + system + body + ["    step 1 s", "}"]) + "\n"


def spoiled(draw, telemetry):
    """The telemetry with readings that are missing, or those of another step."""
    steps = [json.loads(line) for line in telemetry.splitlines()]
    for i, step in enumerate(steps):
        read = step.get("observations", {})
        for name in list(read):
            if draw.random() < 0.1:
                del read[name]
            elif draw.random() < 0.01:
                other = draw.choice(steps).get("observations", {})
                if name in other:
                    read[name] = other[name]
    return "".join(json.dumps(step) + "\n" for step in steps)


def answer(program, verb, model, telemetry, *options):
    done = subprocess.run([program, verb, model, *telemetry, *options], check=False, capture_output=True)
    return done.returncode, done.stdout, done.stderr


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("before")
    parser.add_argument("after")
    parser.add_argument("--plants", type=int, default=300)
    parser.add_argument("--first", type=int, default=1)
    options = parser.parse_args()
    followed = steps = faulty = unread = 0
    with tempfile.TemporaryDirectory() as folder:
        model, telemetry = os.path.join(folder, "plant.itms"), os.path.join(folder, "plant.jsonl")
        for seed in range(options.first, options.first + options.plants):
            draw = random.Random(seed)
            with open(model, "w", encoding="utf-8") as file:
                file.write(plant(draw))
            status, simulated, _ = answer(options.before, "simulate", model, [], "--steps", "25", "--seed", str(seed),
                                          "--random", str(seed), "-q")
            if status != 0 or not simulated:
                unread += 1
                continue
            with open(telemetry, "w", encoding="utf-8") as file:
                file.write(spoiled(draw, simulated.decode()))
            search = draw.choice([[], ["--max-rank", "2"], ["--keep", "3"], ["--look-back", "3"], ["--follow", "0.3"]])
            ways = [("run", "--format", "jsonl", *search), ("run", "--format", "table", "--every-step"),
                    ("explain", "--format", "json")]
            for verb, *rest in ways if seed % 4 == 0 else ways[:1]:
                both = [answer(program, verb, model, [telemetry], "-q", *rest)
                        for program in (options.before, options.after)]
                if both[0] != both[1]:
                    kept = tempfile.mkdtemp(prefix="differs-")
                    os.rename(model, os.path.join(kept, "plant.itms"))
                    os.rename(telemetry, os.path.join(kept, "plant.jsonl"))
                    sys.exit(f"seed {seed}: itms {verb} {' '.join(rest)} differs; see {kept}")
                if verb == "run" and "jsonl" in rest:
                    followed += 1
                    steps += both[0][1].count(b"\n")
                    faulty += both[0][1].count(b'"status":"faulty"')
    print(f"{followed} plants, {steps} steps, of which {faulty} with a fault: the same bytes ({unread} plants could not be simulated)")


if __name__ == "__main__":
    main()
