#!/usr/bin/env python3
"""Prints what the engine's benchmarks take as a part of what the plain second engine takes.

    bench/engine-ratio.py PROGRAM [--before PROGRAM] [--rounds N] [--filter EXPRESSION]

PROGRAM is itms_bench_engine. Each round runs every program once, in turn; a row is the median of its rounds, processor time. With
--before another build of the program runs in turn, and its time over that of the first is one more column.
"""
import argparse
import collections
import json
import re
import statistics
import subprocess
import sys
import tempfile

NAME = re.compile(r"(\w+)(?:<(\w+)>)?/(\d+)")


def measure(program, expression, seconds):
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run([program, f"--benchmark_out={out.name}", "--benchmark_out_format=json",
                        f"--benchmark_min_time={seconds}", f"--benchmark_filter={expression}"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return {run["name"]: run["cpu_time"] / 1000 for run in json.load(out)["benchmarks"]}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--before")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--seconds", type=float, default=0.1, help="least time for a benchmark")
    parser.add_argument("--filter", default=".")
    arguments = parser.parse_args()

    times = collections.defaultdict(list)
    for _ in range(arguments.rounds):
        for which in ("program", "before"):
            program = getattr(arguments, which)
            if program:
                without_plain = which == "before" and arguments.filter == "."
                chosen = "-Plain" if without_plain else arguments.filter
                for name, spent in measure(program, chosen, arguments.seconds).items():
                    times[which, name].append(spent)

    def median(which, name):
        return statistics.median(times[which, name]) if (which, name) in times else None

    print("| benchmark | components | µs | plain / now | before / now |\n|---|---|---|---|---|")
    for which, name in sorted(times, key=lambda key: (key[1].split("/")[0], int(key[1].split("/")[1]))):
        benchmark, engine, size = NAME.fullmatch(name).groups()
        if which != "program" or engine not in (None, "itms"):
            continue
        now = median("program", name)
        plain = median("program", f"{benchmark}<PlainEngine>/{size}")
        before = median("before", name)

        def ratio(other):
            return f"{other / now:.1f}" if other else ""

        print(f"| {benchmark} | {int(size):,} | {now:,.1f} | {ratio(plain)} | {ratio(before)} |")


if __name__ == "__main__":
    sys.exit(main())
