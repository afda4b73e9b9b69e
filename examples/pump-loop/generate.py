#!/usr/bin/env python3
"""Makes the telemetry of a loop with two pumps, with faults, and the labels that go with them.

    generate.py FOLDER      writes training.csv.gz, evaluation.csv.gz and their labels; the same bytes every time

One of two pumps takes water from a tank and sends it through a filter and a control valve to a consumer, from where it returns. The
pumps change over every eight hours. The valve follows the demand of a day in steps of five percent, and a float opens the make-up water.
Every sensor has noise, the valve takes time to move, and now and then a reading is missing or wild. A row is 30 seconds.
"""

import math
import random
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent))
from logger_files import spoil, write

STEP = 30.0  # seconds
HEAD, PUMP, FILTER, VALVE, STATIC = 4.0, 0.004, 0.002, 0.0037, 1.0  # bar, and bar per (l/s)^2
TANK = 20000.0  # litres
MAKE_UP, LOSS = 3.0, 0.05  # l/s

# Begin and end in hours, what is wrong, and what the label says. Training has one fault, so that leaving it out is part of the exercise.
TRAINING_HOURS = 48
TRAINING = [(30.0, 33.0, "clogged", "filter.state = clogged")]
EVALUATION_HOURS = 96
EVALUATION = [
    (4.0, 7.0, "leak", "pipe.state = leaking"),
    (10.0, 11.0, "tripB", "pumpB.state = tripped"),
    (17.5, 21.0, "wornA", "pumpA.state = worn"),
    (28.0, 31.0, "deadMeter", "meter1.state = dead"),
    (35.0, 38.5, "stuckValve", "valve.position = stuck"),
    (43.0, 46.0, "highMeter", "meter1.state = high"),
    (52.0, 55.0, "clogged", "filter.state = clogged"),
    (60.0, 61.5, "tripB", "pumpB.state = tripped"),
    (65.0, 67.0, "deadMeter2", "meter2.state = dead"),
    (74.0, 78.0, "leak", "pipe.state = leaking"),
    (82.5, 86.0, "wornA", "pumpA.state = worn"),
]

HEADER = ["t", "A", "B", "VLV", "MKP", "I-A", "I-B", "PT-1", "PT-2", "PT-3", "PT-4", "FT-1", "FT-2", "LT-1"]


class Loop:
    def __init__(self, rng):
        self.rng = rng
        self.level = 70.0  # percent
        self.opening = 50.0  # of the valve, percent
        self.asked = 50.0
        self.make_up = False
        self.flow = 0.0

    def demand(self, hour):
        peaks = math.exp(-((hour - 7.5) / 2.0) ** 2) + math.exp(-((hour - 18.5) / 2.5) ** 2)
        return 40.0 + 35.0 * peaks + self.rng.gauss(0, 2.0)

    def step(self, seconds, fault):
        hours = seconds / 3600.0
        if seconds % 900.0 == 0.0:
            self.asked = 5.0 * round(self.demand(hours % 24.0) / 5.0)
        if fault != "stuckValve":
            self.opening += min(10.0, max(-10.0, self.asked - self.opening))
        a = hours // 8.0 % 2.0 == 0.0
        runs = fault != "tripB" or a
        head = (HEAD * (0.75 if fault == "wornA" and a else 1.0)) if runs else 0.0
        clog = 5.0 if fault == "clogged" else 1.0
        resistance = FILTER * clog + VALVE / (self.opening / 100.0) ** 2
        goal = math.sqrt(max(0.0, head - STATIC) / (PUMP + resistance))
        self.flow += (goal - self.flow) * 0.8
        leak = 2.0 if fault == "leak" and runs else 0.0
        self.make_up = self.level < 60.0 or (self.make_up and self.level < 80.0)
        self.level += ((MAKE_UP if self.make_up else 0.0) - LOSS - leak) * STEP / TANK * 100.0
        return self.readings(a, runs, head, clog, leak, fault)

    def readings(self, a, runs, head, clog, leak, fault):
        q, noise = self.flow, self.rng.gauss
        suction = 0.2 + 0.003 * self.level
        discharge = suction + max(0.0, head - PUMP * q * q)
        filtered = discharge - FILTER * clog * q * q
        behind = filtered - VALVE / (self.opening / 100.0) ** 2 * q * q
        current = 3.0 + 0.35 * q if runs else 0.0
        first = 0.0 if fault == "deadMeter" else q + (2.0 if fault == "highMeter" else 0.0)
        second = 0.0 if fault == "deadMeter2" else q - leak
        values = [
            current if a else 0.0, 0.0 if a else current, suction, discharge, filtered, behind, max(0.0, first), max(0.0, second),
        ]
        sigmas = [0.15, 0.15, 0.01, 0.02, 0.02, 0.02, 0.15, 0.15]
        texts = [f"{max(0.0, value + noise(0, sigma)):.2f}" for value, sigma in zip(values, sigmas)]
        texts.append(f"{self.level + noise(0, 0.08):.2f}")
        texts = [spoil(self.rng, text, ["0.00", f"{float(text) * 1.7:.2f}"]) for text in texts]
        return [f"{int(a)}", f"{int(not a)}", f"{self.asked:.0f}", f"{int(self.make_up)}", *texts]


def stretch(seed, hours, faults):
    loop = Loop(random.Random(seed))
    rows = [",".join(HEADER)]
    for i in range(int(hours * 3600 / STEP)):
        seconds = i * STEP
        fault = next((f for begin, end, f, _ in faults if begin * 3600 <= seconds < end * 3600), None)
        rows.append(",".join([f"{seconds:.0f}", *loop.step(seconds, fault)]))
    labels = ["start,end,what"]
    labels += [f"{begin * 3600:.0f},{end * 3600:.0f},{what}" for begin, end, _, what in faults]
    return rows, labels


def main():
    folder = sys.argv[1]
    write(folder, "training", *stretch(21, TRAINING_HOURS, TRAINING))
    write(folder, "evaluation", *stretch(32, EVALUATION_HOURS, EVALUATION))


if __name__ == "__main__":
    main()
