#!/usr/bin/env python3
"""A plain limit alarm, to compare a monitor with: each column has a lowest and a highest reading, and whatever is beyond is an alarm.

    limit_alarm.py TRAINING TRAINING-LABELS EVALUATION EVALUATION-LABELS GRACE COLUMN...

The limits are the least and the greatest reading of the fault-free part of the training stretch, the outermost 0.1 % of each side left
out, widened by a tenth of the range. They hold for each state of the columns that are named with a sign of equality, `FAN=`. An alarm counts
once it has lasted for two rows, so that a single wild reading is none. The measures are those of itms evaluate; a column that raises an
alarm says nothing of what is wrong, so there is no isolation.
"""

import csv
import gzip
import sys
from datetime import datetime


def seconds(text):
    try:
        return float(text)
    except ValueError:
        return datetime.fromisoformat(text.replace("Z", "+00:00")).timestamp()


def rows_of(path):
    with gzip.open(path, "rt", encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file))
    time = next(iter(rows[0]))
    return [(seconds(row[time]), row) for row in rows]


def labels_of(path):
    with open(path, encoding="utf-8", newline="") as file:
        return [(seconds(row["start"]), seconds(row["end"] or "inf"), row["what"]) for row in csv.DictReader(file)]


def limits_of(rows, labels, grace, columns, states):
    readings = {}
    for t, row in rows:
        if any(start <= t < end + grace for start, end, _ in labels):
            continue
        for column in columns:
            if row[column]:
                readings.setdefault((column, tuple(row[state] for state in states)), []).append(float(row[column]))
    limits = {}
    for key, values in readings.items():
        values.sort()
        cut = len(values) // 1000
        low, high = values[cut], values[-1 - cut]
        limits[key] = (low - 0.1 * (high - low), high + 0.1 * (high - low))
    return limits


def beyond(row, limits, columns, states):
    for column in columns:
        key = (column, tuple(row[state] for state in states))
        if row[column] and key in limits and not limits[key][0] <= float(row[column]) <= limits[key][1]:
            return True
    return False


def main():
    training, training_labels, evaluation, evaluation_labels, grace, *names = sys.argv[1:]
    grace = float(grace)
    states = [name[:-1] for name in names if name.endswith("=")]
    columns = [name for name in names if not name.endswith("=")]
    limits = limits_of(rows_of(training), labels_of(training_labels), grace, columns, states)
    rows, labels = rows_of(evaluation), labels_of(evaluation_labels)
    delays = [None] * len(labels)
    free = alarms = free_alarms = 0
    seconds_free = 0.0
    before = alarm_before = False
    for i, (t, row) in enumerate(rows):
        now = beyond(row, limits, columns, states)
        alarm, before = now and before, now
        for n, (start, end, _) in enumerate(labels):
            if start <= t < end and alarm and delays[n] is None:
                delays[n] = t - start
        if not any(start <= t < end + grace for start, end, _ in labels):
            free += 1
            seconds_free += rows[i + 1][0] - t if i + 1 < len(rows) else 0.0
            free_alarms += alarm
            alarms += alarm and not alarm_before
            alarm_before = alarm
        else:
            alarm_before = False
    found = sorted(delay for delay in delays if delay is not None)
    median = (found[(len(found) - 1) // 2] + found[len(found) // 2]) / 2 / 60 if found else float("nan")
    print(f"detection     {len(found)} of {len(labels)} faults, median {median:.3g} min, at most {max(found, default=0) / 60:.3g} min")
    for label, delay in zip(labels, delays):
        print(f"              {label[2]}: {'not found' if delay is None else f'after {delay / 60:.3g} min'}")
    print(f"false alarms  {alarms}: {alarms * 86400 / seconds_free:.3g} a day; at {100 * free_alarms / free:.2f} % of the steps")


if __name__ == "__main__":
    main()
