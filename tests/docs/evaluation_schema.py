"""Holds docs/evaluation.schema.json against what itms evaluate prints.

    evaluation_schema.py PROGRAM    run at the root of the project

Every record satisfies the schema, and the numbers in it that belong together agree; a record from which a field was taken, or in which one was
spoilt, does not satisfy it.
"""

import copy
import json
import subprocess
import sys
import tempfile

from jsonschema import Draft202012Validator
from records import verdict

STATION = ["examples/water/station.itms", "examples/water/stuck-valve.jsonl"]
LOOP = ["examples/pump-loop/loop.itms", "examples/pump-loop/training.csv.gz"]
LABELS = [
    "start,end,what\n600,,branchB/valve\n",
    "start,end,what\n600,900,fault\n5000,6000,branchB/valve\n",
    "start,end,what\n0,120,branchA/valve.position = stuckClosed\n",
]
NULLABLE = {"rate", "share", "perDay", "detectionDelay", "isolationDelay", "end"}
RUNS = [[*STATION, "--labels", None], [*STATION, "--labels", None, "--alarm", "0.9", "--grace", "300"]]


def disagreements(record):
    detection, isolation, events = record["detection"], record["isolation"], record["events"]
    if detection["events"] != sum(event["steps"] > 0 for event in events):
        yield "events are not counted"
    if detection["detected"] != sum(event["detected"] is True for event in events):
        yield "detected events are not counted"
    if isolation["isolated"] != sum(event["isolated"] is True for event in events):
        yield "isolated events are not counted"
    for event in events:
        if (event["detectionDelay"] is not None) != (event["detected"] is True):
            yield "a delay without a detection"
        if event["isolated"] and event["isolationDelay"] < event["detectionDelay"]:
            yield "isolated before it was detected"
        if event["isolatedSteps"] > event["alarmSteps"] or event["alarmSteps"] > event["steps"]:
            yield "more steps with an alarm than steps"


def places(record, path=()):
    """Every value within, with its key and the way to it; of the events the first one."""
    for key, value in record.items():
        yield path, key, value
        if isinstance(value, dict):
            yield from places(value, (*path, key))
        if key == "events" and not path:
            yield from places(value[0], ("events", 0))


def spoilt(record):
    """Copies of the record that are wrong in one place, with a name for each."""
    for path, key, value in list(places(record)):
        is_number = isinstance(value, (int, float)) and not isinstance(value, bool)
        for wrong in (None if is_number else 17.5, [17], "gone"):
            copied = copy.deepcopy(record)
            within = copied
            for step in path:
                within = within[step]
            if wrong == "gone":
                del within[key]
                if key not in ("startTime", "endTime"):
                    yield f"without {path} {key}", copied
            elif not (wrong is None and key in NULLABLE) and not (wrong == 17.5 and value is None):
                within[key] = wrong
                yield f"{path} {key} = {wrong}", copied


def main(program):
    with open("docs/evaluation.schema.json", encoding="utf-8") as file:
        schema = json.load(file)
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(schema)
    failures = []
    records = []
    runs = [[*LOOP, "--labels", "examples/pump-loop/training-labels.csv"]]
    with tempfile.TemporaryDirectory() as folder:
        for i, labels in enumerate(LABELS):
            name = f"{folder}/{i}.csv"
            with open(name, "w", encoding="utf-8") as file:
                file.write(labels)
            runs += [[name if word is None else word for word in run] for run in RUNS]
        for run in runs:
            done = subprocess.run([program, "evaluate", *run, "-q"], stdout=subprocess.PIPE, encoding="utf-8")
            if done.returncode not in (0, 3):
                sys.exit(f"{' '.join(run)}: status {done.returncode}")
            records.append((" ".join(run), json.loads(done.stdout)))
    for name, record in records:
        failures += [f"{name}: {error.json_path}: {error.message}" for error in validator.iter_errors(record)]
        failures += [f"{name}: {what}" for what in disagreements(record)]
    return verdict(failures, validator, spoilt(records[0][1]))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
