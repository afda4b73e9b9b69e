#!/usr/bin/env python3
"""Makes a plant of so many channels and telemetry of so many steps, for a page of a long run.

    bench/page-plant.py FOLDER STEPS CHANNELS

Writes FOLDER/plant.itms and FOLDER/log.csv. Each pump has two sensors; now and then one of them fails for a while, or a pump stops.
The numbers are drawn from a seed, so that the files are the same every time.
"""
import random
import sys
from pathlib import Path

MODEL = """component Pump {{
    cond flow: low, high
    mode state {{ running initial, stopped fault }}
    law state = running -> flow = high
    law state = stopped -> flow = low
    fault  any -> stopped : 0.0001
    repair any -> running : 0.01
}}
component Sensor {{
    cond flow: low, high
    cond reading: low, high
    mode state {{ ok initial, dead fault }}
    law state = ok -> reading = flow
    law state = dead -> reading = low
    fault  any -> dead : 0.0002
    repair any -> ok : 0.01
}}
component Line {{
    pump: Pump
    first: Sensor
    second: Sensor
    law pump.flow = first.flow
    law pump.flow = second.flow
}}
system Works {{
    line[{pumps}]: Line
    step 1 s
    for i in 0..{last} {{
        observe line[i].first.reading  from "F-{{i}}-1" : low < 5 <= high
        observe line[i].second.reading from "F-{{i}}-2" : low < 5 <= high
    }}
}}
"""


def main() -> None:
    folder, steps, channels = Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
    pumps = channels // 2
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "plant.itms").write_text(MODEL.format(pumps=pumps, last=pumps - 1))
    draw = random.Random(7)
    # A thing that failed, and the step at which it works again: 0, 1 are the sensors of a pump, 2 is the pump.
    failed: dict[tuple[int, int], int] = {}
    with open(folder / "log.csv", "w") as log:
        log.write("t," + ",".join(f"F-{i}-{k}" for i in range(pumps) for k in (1, 2)) + "\n")
        for step in range(steps):
            for thing in [thing for thing, until in failed.items() if until <= step]:
                del failed[thing]
            if step % 500 == 300:
                failed[(draw.randrange(pumps), draw.randrange(3))] = step + draw.randrange(20, 200)
            cells = [str(1.7e9 + step).removesuffix(".0")]
            for i in range(pumps):
                for k in (0, 1):
                    level = 0.2 if (i, k) in failed or (i, 2) in failed else 9.0
                    cells.append(f"{level + draw.random():.3f}")
            log.write(",".join(cells) + "\n")


main()
