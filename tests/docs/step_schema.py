"""Holds docs/step.schema.json against what itms run prints.

    step_schema.py PROGRAM    run at the root of the project

Every record of the runs below satisfies the schema, and together they show everything that a record can say; a record from
which a field was taken, or in which one was spoilt, does not satisfy it. Besides, what docs/output.md says of numbers that belong
together is checked of every record.
"""

import copy
import json
import subprocess
import sys
import tempfile

from records import validator_of, verdict

STATION = "examples/water/station.itms"
WATER = [STATION, "examples/water/stuck-valve.jsonl"]
POWER = ["examples/power/grid.itms", "examples/power/shorted-motor.jsonl"]
ADDER = ["examples/circuits/full-adder.itms", "examples/circuits/full-adder-run.jsonl"]
DUCT = ["examples/guide/duct.itms", "examples/guide/afternoon.csv"]
PLANTS = [WATER, POWER, ADDER, DUCT]
OPTIONS = [
    "", "-n 0 --mass 1", "-n 1 --mass 0", "--keep 1", "--keep 2 -n 0", "--look-back 0", "--max-rank 0", "--max-rank 1",
    "--max-records 1", "--max-seconds 1e-9",
]

# Commands that are lost, a gap, steps without observations, readings that are held.
LOST = "t,PT-121,ZS-131,outlet.request\n0,4,1,\n60,4,1,close\n600,4,0,\n"
STALE = '{"observations": {"PT-121": 4}}\n{}\n{"observations": {"PT-121": 0.3, "LS-102": 1}}\n'
HOLDING = """
component Tank {
    cond level: low, high
    mode state { tight initial, leaky fault }
    law state = leaky -> level = low
    fault tight -> leaky : 0.01
    idle any
}
system Plant {
    tank: Tank
    observe tank.level from "LT-1" : low < 1 <= high hold 5 s
}
"""
HELD = "t,LT-1\n0,2\n1,\n2,0.5\n3,\n"

SPOILT = {
    "v": [1, "2", None], "step": [0, -1, 1.5, "1", None], "t": ["0", None], "status": ["broken", None, 1],
    "complete": [0, None, "true"], "limit": ["candidates", 0, False], "gap": [0, -1, "60"], "held": [None, ["LT-1"], [1]],
    "approximate": [0, None, "true"], "fault": [-0.1, 1.1, "1", None], "missing": [-0.1, 1.1, None], "silent": [-0.1, 1.1, "0"], "components": [None, [], {"tank": 1.5}, {"tank": "1"}],
    "kept": [0, -1, None], "dropped": [-1, None], "candidates": [[], None, {}, [{}]],
    "marginals": [None, [], {"tank.state": {}}, {"tank.state": {"leaky": 1.5}}, {"tank.state": 1}], "work": [None, {}, []],
}
SPOILT_CANDIDATE = {
    "p": [-0.1, 1.1, "1", None], "rank": [-1, 0.5, None], "modes": [None, [], {"tank.state": 1}],
    "since": [None, {"tank.state": -1}, {"tank.state": "1"}], "lost": [None, ["close"]], "unexplained": [None, ["no"]],
}


class Runs:
    def __init__(self, program):
        self.program = program
        self.records = []  # pairs of the command line and the record

    def run(self, arguments, telemetry=None, steps=None):
        """The telemetry is given to standard input; `steps` is the number of records to expect."""
        done = subprocess.run([self.program, "run", *arguments], input=telemetry, stdout=subprocess.PIPE, encoding="utf-8")
        name = " ".join(arguments)
        if done.returncode not in (0, 3):
            sys.exit(f"{name}: status {done.returncode}")
        records = json.loads(done.stdout) if "json" in arguments else [json.loads(line) for line in done.stdout.splitlines()]
        if not records or steps not in (None, len(records)):
            sys.exit(f"{name}: {len(records)} records")
        self.records += [(name, record) for record in records]


def disagreements(record):
    """What of a record does not agree with the rest of it."""
    candidates = record["candidates"]
    # A limit cut the search before anything was found.
    cut = record["limit"] and record["status"] == "ambiguous" and candidates[0]["unexplained"]
    probabilities = [candidate["p"] for candidate in candidates]
    if len(candidates) > record["kept"]:
        yield "more candidates than are kept"
    if sum(probabilities) > 1 + 1e-5 or (len(candidates) == record["kept"] and sum(probabilities) < 1 - 1e-5):
        yield f"the probabilities add up to {sum(probabilities)}"
    if probabilities != sorted(probabilities, reverse=True):
        yield "the most probable candidate is not the first"
    for candidate in candidates:
        if candidate["modes"].keys() != candidate["since"].keys():
            yield "modes and since are of different variables"
        if any(step > record["step"] for step in candidate["since"].values()):
            yield "something is so since a later step"
        for variable, value in candidate["modes"].items():
            if record["marginals"].get(variable, {}).get(value, 0) < candidate["p"] - 1e-5:
                yield f"the marginal of {variable} is less than the candidate's probability"
        if candidate["unexplained"] and record["status"] != "inconsistent" and not cut:
            yield "something is unexplained, and the status is " + record["status"]
    if any(p > record["fault"] + 1e-5 for p in record["components"].values()):
        yield "a component is more probably at fault than the plant"
    if record["fault"] > sum(record["components"].values()) + 1e-5:
        yield "no component is at fault, but the plant is"
    differs = bool(candidates[0]["modes"] or candidates[0]["lost"])
    if record["status"] == "nominal" and (differs or probabilities[0] <= 0.5):
        yield "nominal without reason"
    if record["status"] == "faulty" and (not differs or probabilities[0] < 0.5):
        yield "faulty without reason"
    if record["status"] == "ambiguous" and probabilities[0] > 0.500001 and not cut:
        yield "ambiguous without reason"
    if record["limit"] and record["complete"]:
        yield "cut, and complete"


def seen(records):
    """What these records show, by name."""
    for record in records:
        yield "status " + record["status"]
        yield f"complete {record['complete']}"
        yield f"limit {record['limit']}"
        yield "gap" if record["gap"] else "no gap"
        for key in ("held", "dropped", "marginals", "components", "fault"):
            if record[key]:
                yield key
        for candidate in record["candidates"]:
            for key in ("modes", "lost", "unexplained", "rank"):
                if candidate[key]:
                    yield key


EVERYTHING = set(
    ["status " + status for status in ("nominal", "faulty", "ambiguous", "stale", "inconsistent")]
    + ["complete True", "complete False", "limit None", "limit records", "limit seconds", "gap", "no gap"]
    + ["held", "dropped", "marginals", "components", "fault", "modes", "lost", "unexplained", "rank"]
)


def spoilt(record):
    """Copies of the record that are wrong in one place, with a name for each."""
    places = [
        (record, SPOILT, lambda copied: copied),
        (record["candidates"][0], SPOILT_CANDIDATE, lambda copied: copied["candidates"][0]),
    ]
    for original, wrong, find in places:
        for key in original:
            copied = copy.deepcopy(record)
            del find(copied)[key]
            yield f"without {key}", copied
            for value in wrong[key]:
                copied = copy.deepcopy(record)
                find(copied)[key] = value
                yield f"{key} = {value}", copied


def main(program):
    validator = validator_of("docs/step.schema.json")

    runs = Runs(program)
    for plant in PLANTS:
        for options in OPTIONS:
            runs.run([*plant, *options.split()])
    runs.run([*WATER, "--format", "json"], steps=28)
    runs.run([STATION, "-"], telemetry=LOST, steps=3)
    runs.run([STATION, "-"], telemetry=STALE, steps=3)
    with tempfile.NamedTemporaryFile("w", suffix=".itms", encoding="utf-8") as model:
        model.write(HOLDING)
        model.flush()
        runs.run([model.name, "-"], telemetry=HELD, steps=4)

    failures = []
    for name, record in runs.records:
        error = next(iter(validator.iter_errors(record)), None)
        if error:
            failures.append(f"{name}: step {record['step']}: {error.json_path}: {error.message}")
        failures += [f"{name}: step {record['step']}: {what}" for what in disagreements(record)]
    missing = EVERYTHING - set(seen(record for _, record in runs.records))
    if missing:
        failures.append("no run shows: " + ", ".join(sorted(missing)))
    return verdict(failures, validator, spoilt(runs.records[-1][1]))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
