"""Holds docs/evaluation.schema.json against what itms evaluate prints.

    evaluation_schema.py PROGRAM    run at the root of the project

Every record satisfies the schema, and the numbers in it that belong together agree; a record from which a field was taken, or in which one was
spoilt, does not satisfy it.
"""

import sys
import tempfile

from records import errors, printed, spoilt, validator_of, verdict

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


def main(program):
    validator = validator_of("docs/evaluation.schema.json")
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
            records += [(" ".join(run), record) for record in printed(program, ["evaluate", *run])]
    for name, record in records:
        failures += errors(validator, name, record)
        failures += [f"{name}: {what}" for what in disagreements(record)]
    return verdict(failures, validator, spoilt(records[0][1], NULLABLE, {"startTime", "endTime"}))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
