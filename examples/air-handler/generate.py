#!/usr/bin/env python3
"""Makes the telemetry of an air handling unit, with faults, and the labels that go with them.

    generate.py FOLDER      writes training.csv.gz, evaluation.csv.gz and their labels; the same bytes every time

The unit mixes outdoor and return air, heats or cools the mixture, and blows it into a building from 6 to 20 o'clock on weekdays. One
controller moves, in sequence, the heating valve, the dampers and the cooling valve to hold the supply temperature. Every sensor has
noise, the dampers lag, coils have thermal mass, and now and then a reading is missing or wild. A row is 2 minutes.
"""

import math
import random
import sys
from datetime import datetime, timedelta, timezone
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent))
from logger_files import spoil, write

STEP = 120.0  # seconds
BEGIN = datetime(2024, 3, 4, tzinfo=timezone.utc)  # a Monday

# Day and hours from the beginning of the stretch, what is wrong, and what the label says. Training has three faults, by which the
# model was tried; evaluation has all kinds.
TRAINING_DAYS = 14
TRAINING = [
    (3, 11.0, 13.0, "beltBroken", "fan.belt = broken"),
    (8, 9.0, 13.0, "damperClosed", "mixing.damper = stuckClosed"),
    (9, 10.0, 15.0, "heatingLeak", "heating.valve = leaking"),
]
EVALUATION_DAYS = 14
EVALUATION = [
    (0, 10.5, 16.0, "mixSensor", "mixSensor.state = biased"),
    (1, 9.0, 13.5, "heatingLeak", "heating.valve = leaking"),
    (2, 7.0, 12.0, "damperOpen", "mixing.damper = stuckOpen"),
    (3, 14.0, 16.0, "beltBroken", "fan.belt = broken"),
    (4, 9.5, 18.0, "coolingClosed", "cooling.valve = stuckClosed"),
    (7, 11.0, 16.0, "damperClosed", "mixing.damper = stuckClosed"),
    (8, 8.0, 9.5, "motorDead", "fan.motor = dead"),
    (9, 6.5, 10.5, "heatingClosed", "heating.valve = stuckClosed"),
    (10, 10.0, 17.0, "coolingLeak", "cooling.valve = leaking"),
    (11, 9.0, 14.0, "damperClosed", "mixing.damper = stuckClosed"),
]


class Unit:
    """The plant and its controller, one step after the other."""

    def __init__(self, rng):
        self.rng = rng
        self.drift = 0.0  # of the weather
        self.damper, self.heat, self.cool = 20.0, 0.0, 0.0  # where they are, in percent
        self.heating, self.cooling = 0.0, 0.0  # what the coils do to the air, in kelvin
        self.control = 0.0  # -100..0 heats, 0..100 opens the dampers, 100..200 cools
        self.supply = 20.0
        self.error = 0.0

    def outdoor(self, day, hour):
        self.drift += -0.002 * self.drift + self.rng.gauss(0, 0.05)
        season = 2.0 + 0.15 * day + 5.0 * math.sin(day / 2.3)
        return season + 8.0 * math.sin((hour - 9.0) / 24.0 * 2.0 * math.pi) + self.drift

    def step(self, day, hour, fault):
        weekday = day % 7 < 5
        on = weekday and 6.0 <= hour < 20.0
        outdoor = self.outdoor(day + hour / 24.0, hour)
        gains = 2.5 * math.exp(-((hour - 14.5) / 4.0) ** 2) if weekday else 0.0
        inside = 21.5 + gains
        goal = min(20.0, max(13.0, 20.5 - 0.5 * outdoor))
        runs = on and fault not in ("beltBroken", "motorDead")
        demand = self.regulate(on, goal)
        self.move(on, demand, fault)
        share = self.damper / 100.0
        mixed = share * outdoor + (1.0 - share) * inside
        if runs:
            heated = 22.0 * (max(self.heat, 30.0) if fault == "heatingLeak" else self.heat) / 100.0
            cooled = 11.0 * (max(self.cool, 45.0) if fault == "coolingLeak" else self.cool) / 100.0
            self.heating += (heated - self.heating) * 0.4
            self.cooling += (cooled - self.cooling) * 0.4
            target = mixed + self.heating - self.cooling + 0.8
            self.supply += (target - self.supply) * 0.6
        else:
            self.heating *= 0.8
            self.cooling *= 0.8
            self.supply += (inside - self.supply) * 0.05
            mixed = inside + 0.3 * (outdoor - inside)
        pressure = 420.0 if runs else 0.0
        current = 0.0 if not on or fault == "motorDead" else 2.1 if fault == "beltBroken" else 6.8
        return self.readings(on, goal, demand, outdoor, inside, mixed, pressure, current, fault)

    def regulate(self, on, goal):
        if not on:
            self.control, self.error = 0.0, 0.0
            return 0.0, 0.0, 0.0
        error = self.supply - goal
        self.control += 0.9 * error + 4.0 * (error - self.error)
        self.error = error
        self.control = min(200.0, max(-100.0, self.control))
        return max(0.0, -self.control), min(100.0, max(20.0, self.control)), max(0.0, self.control - 100.0)

    def move(self, on, demand, fault):
        heat, damper, cool = demand if on else (0.0, 0.0, 0.0)
        goal = 20.0 if fault == "damperClosed" and on else 100.0 if fault == "damperOpen" else damper
        self.damper += min(12.0, max(-12.0, goal - self.damper))
        self.heat += (0.0 if fault == "heatingClosed" else heat) - self.heat
        self.cool += (0.0 if fault == "coolingClosed" else cool) - self.cool

    def readings(self, on, goal, demand, outdoor, inside, mixed, pressure, current, fault):
        noise = self.rng.gauss
        bias = 4.0 if fault == "mixSensor" else 0.0
        values = [
            outdoor + noise(0, 0.15), inside + noise(0, 0.1), mixed + bias + noise(0, 0.3),
            self.supply + noise(0, 0.15), goal,
            demand[1], demand[0], demand[2],
            1 if on else 0, max(0.0, pressure + noise(0, 12.0 if pressure else 2.0)), max(0.0, current + noise(0, 0.15 if current else 0.02)),
        ]
        texts = [f"{value:.1f}" for value in values[:5]] + [f"{value:.0f}" for value in values[5:9]]
        texts += [f"{values[9]:.0f}", f"{values[10]:.1f}"]
        for i in (0, 1, 2, 3, 9, 10):
            texts[i] = spoil(self.rng, texts[i], ["0.0", f"{values[i] * 1.6:.1f}"])
        return texts


HEADER = ["timestamp", "T-out", "T-ret", "T-mix", "T-sup", "T-set", "DMP", "HTG", "CLG", "FAN", "DP-fan", "I-fan"]


def stretch(seed, first_day, days, faults):
    unit = Unit(random.Random(seed))
    rows = [",".join(HEADER)]
    for i in range(int(days * 86400 / STEP)):
        seconds = i * STEP
        day, hour = int(seconds // 86400), seconds % 86400 / 3600.0
        fault = next((f for d, begin, end, f, _ in faults if d == day and begin <= hour < end), None)
        time = BEGIN + timedelta(days=first_day, seconds=seconds)
        rows.append(",".join([time.strftime("%Y-%m-%dT%H:%M:%SZ"), *unit.step(first_day + day, hour, fault)]))
    labels = ["start,end,what"]
    for day, begin, end, _, what in faults:
        at = [BEGIN + timedelta(days=first_day + day, hours=hours) for hours in (begin, end)]
        labels.append(",".join([*(time.strftime("%Y-%m-%dT%H:%M:%SZ") for time in at), what]))
    return rows, labels


def main():
    folder = sys.argv[1]
    write(folder, "training", *stretch(11, 0, TRAINING_DAYS, TRAINING))
    write(folder, "evaluation", *stretch(31, TRAINING_DAYS, EVALUATION_DAYS, EVALUATION))


if __name__ == "__main__":
    main()
