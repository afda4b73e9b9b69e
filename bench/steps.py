#!/usr/bin/env python3
"""Times what a step costs in plants of growing size.

    bench/steps.py [--program FILE] [--before FILE] [--sizes N,N,...] [--steps N] [--repeat N] [--json FILE]

Writes banks of pumps beside one another, and chains in which each pump is fed by the one before, in the model language, and follows
each through telemetry of these kinds:

  quiet    nothing is reported
  reading  one reading at every step, of which every other one differs from the one before: the bank's first pump is switched,
           the chain's feed comes and goes near its end
  fault    a pump fails at some step, and the readings of its neighbours are there
  repair   the same, and it is mended some steps later
  stretch  one pump of 22 is read at every step, and the last one that is shows at some step that nothing flows, so that 22 pumps
           explain it (chains only, and only where it is asked for)

What a quiet step and a reading cost is the difference between a long run and a short one, divided by their steps: user time of the
processor. A fault, and a repair, are one step each: the program follows them live, and what it used of the processor is read, from
/proc, between the answer before and that of the step. Of some runs it is the least. With --before, another build is measured, too; the
answers must be the same bytes, but for the work that was counted. Memory and work are not limited.
"""

import argparse
import json
import os
import re
import resource
import subprocess
import sys
import tempfile
import time

PUMP = """component Pump {
    command request: none, start, stop
    cond    inflow:  zero, positive
    cond    outflow: zero, positive
    mode    state { off initial, on, broken fault }
    law state = on             -> outflow = inflow
    law state in {off, broken} -> outflow = zero
    nominal off -> on  when request = start
    nominal on  -> off when request = stop
    fault   off, on -> broken : 1e-6
    repair  broken -> off : 1e-3
}
"""


FAILS, MENDED = 15, 25  # steps
STRETCH = 22  # pumps from one that is read to the next


def bank(count):
    return PUMP + f"""system Bank {{
    pump[{count}]: Pump {{ initially state = on }}
    for i in 0..{count - 1}: input pump[i].inflow
    step 1 s
}}
"""


def chain(count):
    return PUMP + f"""component Feed {{
    cond flow: zero, positive
    mode state {{ ready initial, dry fault }}
    law state = ready -> flow = positive
    law state = dry   -> flow = zero
    fault ready -> dry : 1e-6
    repair dry -> ready : 1e-3
}}
system Chain {{
    feed: Feed
    pump[{count}]: Pump {{ initially state = on }}
    law feed.flow = pump[0].inflow
    for i in 1..{count - 1}: law pump[i - 1].outflow = pump[i].inflow
    step 1 s
}}
"""


MODELS = {"bank": bank, "chain": chain}


def steps_of(plant, kind, count, steps):
    """Yields one object for each step."""
    # In the chain, what changes reaches to its end: the last ten pumps.
    pump = 0 if plant == "bank" else max(0, count - 10)
    last = f"pump[{pump}].outflow" if plant == "bank" else f"pump[{count - 1}].outflow"
    for number in range(1, steps + 1):
        step = {"t": number}
        flows = True
        if kind == "reading":
            on = number % 4 < 2
            if number % 2 == 0:
                step["commands"] = {f"pump[{pump}].request": "start" if on else "stop"}
            flows = on
            step["observations"] = {last: "positive" if flows else "zero"}
            if plant == "bank":
                step["observations"][f"pump[{pump}].inflow"] = "positive"
        if kind == "stretch":
            read = range(STRETCH - 1, count, STRETCH)
            step["observations"] = {f"pump[{i}].outflow": "positive" for i in read}
            if number >= FAILS:
                step["observations"][f"pump[{read[-1]}].outflow"] = "zero"
        if kind in ("fault", "repair"):
            broken = number >= FAILS and (kind == "fault" or number < MENDED)
            step["observations"] = {f"pump[{pump}].outflow": "zero" if broken else "positive"}
            if plant == "bank":
                step["observations"][f"pump[{pump}].inflow"] = "positive"
            if kind == "repair" and number == MENDED:
                step["commands"] = {f"pump[{pump}].request": "start"}
        yield step


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def command(program, model, telemetry):
    return [program, "run", model, telemetry, "--format", "jsonl", "-q", "--max-memory", "0", "--max-work", "0"]


def seconds_at(program, model, steps, at):
    """Seconds of the processor for one of the steps, from the answer before it to its own."""
    followed = subprocess.Popen(command(program, model, "-"), stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def used():
        time.sleep(0.02)  # until it waits for more
        with open(f"/proc/{followed.pid}/schedstat", encoding="ascii") as file:
            return int(file.read().split()[0]) * 1e-9

    before = 0.0
    for number, step in enumerate(steps, 1):
        if number == at:
            before = used()
        followed.stdin.write(json.dumps(step).encode() + b"\n")
        followed.stdin.flush()
        if followed.stdout.readline() == b"":
            sys.exit(f"{program} ended")
    taken = used() - before
    followed.stdin.close()
    followed.stdout.read()
    followed.wait()
    return taken


def run(program, model, telemetry):
    """User seconds and the answer."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    done = subprocess.run(command(program, model, telemetry), check=False, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE)
    if done.returncode not in (0, 3):
        sys.exit(f"{program}: {done.stderr.decode()}")
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before, done.stdout


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", default="build/release/bin/itms")
    parser.add_argument("--before", help="another build, run in turn")
    parser.add_argument("--sizes", default="100,1000,10000,100000")
    parser.add_argument("--steps", type=int, default=20000, help="of a run, at most")
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--kinds", default="quiet,reading,fault,repair")
    parser.add_argument("--plants", default="bank,chain")
    parser.add_argument("--json", help="write what was measured to this file")
    options = parser.parse_args()
    programs = [options.program] + ([options.before] if options.before else [])
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        for plant in options.plants.split(","):
            for size in map(int, options.sizes.split(",")):
                model = os.path.join(folder, f"{plant}{size}.itms")
                write(model, MODELS[plant](size))
                for kind in options.kinds.split(","):
                    if plant == "chain" or kind != "stretch":
                        rows.append(measure(programs, model, plant, kind, size, options, folder))
    if options.json:
        write(options.json, json.dumps(rows, indent=1) + "\n")


def seconds_of(program, model, kind, plant, size, steps, folder, repeat):
    """The least user time of some runs of so many steps, and their answer."""
    path = os.path.join(folder, f"{plant}-{kind}-{steps}.jsonl")
    if not os.path.exists(path):
        write(path, "".join(json.dumps(step) + "\n" for step in steps_of(plant, kind, size, steps)))
    runs = [run(program, model, path) for _ in range(repeat)]
    return min(seconds for seconds, _ in runs), runs[0][1]


def cost_of(program, model, kind, plant, size, options, folder):
    """Seconds of a step: of the one at which something happens, or of many that are alike."""
    def seconds(steps):
        return seconds_of(program, model, kind, plant, size, steps, folder, options.repeat)[0]

    if kind in ("fault", "repair", "stretch"):
        at = MENDED if kind == "repair" else FAILS
        return min(seconds_at(program, model, steps_of(plant, kind, size, at), at) for _ in range(options.repeat))
    # So many steps that they take long enough beside reading the model.
    few = 10
    begun = seconds(few)
    steps = 20
    while True:
        taken = seconds(few + steps) - begun
        if taken > 0.3 * begun + 0.3 or steps >= options.steps:
            return taken / steps
        steps *= 10


def measure(programs, model, plant, kind, size, options, folder):
    answers = [re.sub(rb'"work":{[^}]*}', b"", seconds_of(program, model, kind, plant, size, 30, folder, 1)[1])
               for program in programs]
    if len(set(answers)) > 1:
        sys.exit(f"{plant} of {size}, {kind}: the answers differ")
    costs = [cost_of(program, model, kind, plant, size, options, folder) for program in programs]
    row = {"plant": plant, "kind": kind, "components": size, "microseconds": costs[0] * 1e6}
    text = f"{plant:6} {kind:8} {size:7}  {costs[0] * 1e6:11.1f} us a step"
    if len(costs) > 1:
        row["microsecondsBefore"] = costs[1] * 1e6
        text += f"  before {costs[1] * 1e6:11.1f} us  ratio {costs[0] / costs[1] if costs[1] else 0:7.4f}"
    print(text, flush=True)
    return row


if __name__ == "__main__":
    main()
