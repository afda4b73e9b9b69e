"""Holds docs/calibration.schema.json against what itms calibrate prints.

    calibration_schema.py PROGRAM    run at the root of the project

Every record satisfies the schema, and the numbers in it that belong together agree; a record from which a field was taken, or in which
one was spoilt, does not satisfy it.
"""

import sys

from records import errors, printed, spoilt, validator_of, verdict

NULLABLE = {"quantiles", "limit", "below", "suggested", "within", "suggestedWithin", "file", "line", "column"}
OPTIONAL = {"firstTime"}
FREE = {"values", "commands", "observed"}
RUNS = [
    ["examples/pump-loop/loop.itms", "examples/pump-loop/training.csv.gz"],
    ["examples/pump-loop/loop.itms", "examples/pump-loop/training.csv.gz", "--labels", "examples/pump-loop/training-labels.csv"],
    ["examples/air-handler/unit.itms", "examples/air-handler/training.csv.gz"],
    ["examples/water/station.itms", "examples/water/stuck-valve.jsonl", "--labels", "examples/water/labels.csv"],
]


def disagreements(record):
    if record["freeSteps"] > record["steps"] or record["contradicted"] > record["freeSteps"]:
        yield "more of the steps than there are"
    for channel in record["channels"]:
        name = channel["variable"]
        if (channel["quantiles"] is None) != (channel["count"] == 0):
            yield f"{name}: quantiles of nothing"
        if channel["quantiles"] is not None:
            values = list(channel["quantiles"].values())
            if values != sorted(values):
                yield f"{name}: quantiles do not rise"
        if sum(channel["values"].values()) > record["freeSteps"]:
            yield f"{name}: more values than steps"
        if sum(state["count"] for state in channel["states"]) + channel["inOtherStates"] != channel["count"]:
            yield f"{name}: states do not add up"
    for law in record["laws"]:
        if law["steps"] > record["contradicted"]:
            yield f"{law['text']}: contradicted more often than anything"


def main(program):
    validator = validator_of("docs/calibration.schema.json")
    failures = []
    wrong = []
    for run in RUNS:
        records = printed(program, ["calibrate", *run])
        if len(records) != 1:
            failures.append(f"{' '.join(run)}: {len(records)} records")
        for record in records:
            failures += errors(validator, " ".join(run), record)
            failures += [f"{' '.join(run)}: {what}" for what in disagreements(record)]
            wrong += spoilt(record, NULLABLE, OPTIONAL, FREE)
    return verdict(failures, validator, wrong)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
