"""Holds docs/events.schema.json against what itms run --events prints.

    events_schema.py PROGRAM    run at the root of the project

Every record satisfies the schema, what begins and what ends go together, and the summary counts them; a record from which a field was
taken, or in which one was spoilt, does not satisfy it.
"""

import sys

from records import errors, printed, spoilt, validator_of, verdict

NULLABLE = {"component", "variable", "value", "end", "duration", "endTime"}
RUNS = [
    ["examples/water/station.itms", "examples/water/stuck-valve.jsonl"],
    ["examples/power/grid.itms", "examples/power/shorted-motor.jsonl"],
    ["examples/guide/duct.itms", "examples/guide/afternoon.csv", "--alarm", "0.2"],
    ["examples/pump-loop/loop.itms", "examples/pump-loop/training.csv.gz"],
    ["examples/air-handler/unit.itms", "examples/air-handler/training.csv.gz"],
]


def disagreements(records):
    *events, summary = records
    begun = [event for event in events if event["event"] == "begins"]
    ended = {event["number"] for event in events if event["event"] == "ends"}
    if [event["number"] for event in begun] != list(range(1, len(begun) + 1)):
        yield "events are not numbered as they begin"
    if summary["event"] != "summary" or summary["events"] != len(begun):
        yield "the summary does not count them"
    if {one["number"] for one in summary["open"]} != {event["number"] for event in begun} - ended:
        yield "what is open is not what did not end"
    for event in events:
        if (event["event"] == "ends") != (event["end"] is not None):
            yield f"{event['number']} ends, and does not"
        if event["end"] is not None and abs(event["end"] - event["start"] - event["duration"]) > 1e-6:
            yield f"{event['number']} takes another time than it says"
        if (event["kind"] == "fault") != (event["variable"] is not None):
            yield f"{event['number']} names a part, and is no fault"


def main(program):
    validator = validator_of("docs/events.schema.json")
    failures = []
    wrong = []
    kinds = set()
    for run in RUNS:
        records = printed(program, ["run", *run, "--events"])
        name = " ".join(run)
        failures += [f"{name}: {what}" for what in disagreements(records)]
        for record in records:
            failures += errors(validator, name, record)
            kinds.add((record["event"], record.get("kind"), "startTime" in record))
        wrong += spoilt(records[0], NULLABLE, {"startTime", "endTime"}, {"among"})
        wrong += spoilt(records[-1], NULLABLE)
    for seen in (("begins", "fault", True), ("ends", "fault", True), ("begins", "fault", False), ("summary", None, False)):
        if seen not in kinds:
            failures.append(f"no run shows {seen}")
    return verdict(failures, validator, wrong)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
