#!/usr/bin/env python3
"""Compares `itms diagnose` with gringo and clasp: all sets of faulty gates of least size, for files of problems, or all minimal ones.

    bench/circuits.py [--program FILE] [--seconds S] [--runs N] [--all-minimal N] FOLDER...

For every NAME.bench with a NAME.jsonl beside it, prints how many problems have the same sets, and the ratio of user CPU time,
program to gringo and clasp together: below 1, the program is faster. A problem that one of the two does not solve within S seconds (60)
counts with the time until then, and with no sets. Of N runs in turn (1) the fastest counts. With --all-minimal N, all sets of up to N gates that contain no other one take the place of
those of least size. The encodings are bench/diagnosis.lp and bench/all-minimal.lp.
Exit status 1 when sets differ.
"""
import argparse
import json
import re
import resource
import statistics
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
ENCODING = ROOT / "bench" / "diagnosis.lp"
MINIMAL = ROOT / "bench" / "all-minimal.lp"  # beside it
KINDS = {"NOT": "inverter", "BUFF": "buf"}  # "not" has a meaning of its own there


def facts(circuit, problem):
    lines = []
    for line in circuit.splitlines():
        line = line.split("#")[0].strip()
        if "=" not in line:
            continue
        name, kind = (part.strip() for part in line[:line.index("(")].split("="))
        inputs = [part.strip() for part in line[line.index("(") + 1:line.rindex(")")].split(",")]
        lines.append(f'gate("{name}",{KINDS.get(kind.upper(), kind.lower())}).')
        lines += [f'in("{name}",{i},"{signal}").' for i, signal in enumerate(inputs, 1)]
    lines += [f'input("{signal}",{value}).' for signal, value in problem["inputs"].items()]
    lines += [f'seen("{signal}",{value}).' for signal, value in problem["observed"].items()]
    return "\n".join(lines) + "\n"


def timed(commands, given, seconds):
    """The output of the commands, each with the output of the one before, and their seconds of user CPU; no output after a timeout."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    output = given
    for command in commands:
        # `timeout` ends what it runs, so that its time counts.
        run = subprocess.run(["timeout", str(seconds), *command], input=output, text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        output = run.stdout if run.returncode != 124 else None
        if output is None:
            break
    return output, resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def of_program(program, path, problem, seconds, most):
    wanted = ["--all-minimal", "--up-to", str(most)] if most else []
    output, used = timed([[program, "diagnose", str(path), "--problems", "-", "--format", "jsonl", "-n",
                           "0", "--max-seconds", str(seconds), *wanted]], json.dumps(problem), seconds + 5)
    answer = json.loads(output) if output else {"complete": False}
    if not answer["complete"]:
        return None, used
    return {frozenset(mode[:-len(".mode")] for mode in one["modes"])
            for one in answer["candidates"]}, used


def minimal_of_solver(text, problem, seconds, most):
    output, used = timed([["gringo", str(ENCODING), str(MINIMAL), "-", "-c", f"most={most}"],
                          ["clasp", "--opt-mode=ignore", "--heuristic=Domain", "--enum-mode=domRec", "-n", "0"]],
                         facts(text, problem), seconds)
    if not output or "Models       : " not in output or "INTERRUPTED" in output:
        return None, used
    models = re.findall(r"^Answer: \d+\n(.*)$", output, re.MULTILINE)
    return {frozenset(re.findall(r'faulty\("([^"]*)"\)', model)) for model in models}, used


def of_solver(text, problem, seconds, most):
    if most:
        return minimal_of_solver(text, problem, seconds, most)
    output, used = timed([["gringo", str(ENCODING), "-"],
                          ["clasp", "--opt-mode=optN", "--opt-strategy=usc", "-n", "0"]],
                         facts(text, problem), seconds)
    if not output or "OPTIMUM FOUND" not in output:
        return None, used
    models = re.findall(r"^Answer: \d+\n(.*)\nOptimization: (\d+)", output, re.MULTILINE)
    least = min((int(cost) for _, cost in models), default=0)
    return {frozenset(re.findall(r'faulty\("([^"]*)"\)', model))
            for model, cost in models if int(cost) == least}, used


def compare(path, options):
    text = path.read_text()
    same, both, ratios, ours, theirs = 0, 0, [], [], []
    for line in path.with_suffix(".jsonl").read_text().splitlines():
        problem = json.loads(line)
        runs = [(of_program(options.program, path, problem, options.seconds, options.all_minimal),
                 of_solver(text, problem, options.seconds, options.all_minimal)) for _ in range(options.runs)]
        (found, _), (expected, _) = runs[0]
        ours.append(min(run[0][1] for run in runs))
        theirs.append(min(run[1][1] for run in runs))
        ratios.append(ours[-1] / max(theirs[-1], 0.001))
        if found is not None and expected is not None:
            both += 1
            same += found == expected
    print(f"{path.stem:<14}{len(ratios):>9}{both:>7}{same:>6}{statistics.median(ratios):>10.2f}"
          f"{max(ratios):>8.2f}{statistics.median(ours):>10.3f}{max(ours):>9.3f}"
          f"{statistics.median(theirs):>10.3f}{max(theirs):>9.3f}", flush=True)
    return same == both


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--program", default=str(ROOT / "build/release/bin/itms"))
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--runs", type=int, default=1)
    parser.add_argument("--all-minimal", type=int, default=0, metavar="N")
    parser.add_argument("folders", nargs="+", type=Path)
    options = parser.parse_args()
    print(f"{'':<36}{'ratio':>18}{'itms, s':>19}{'clasp, s':>19}")
    print(f"{'circuit':<14}{'problems':>9}{'both':>7}{'same':>6}{'median':>10}{'worst':>8}"
          f"{'median':>10}{'worst':>9}{'median':>10}{'worst':>9}")
    agree = [compare(path, options) for folder in options.folders
             for path in sorted(folder.glob("*.bench")) if path.with_suffix(".jsonl").exists()]
    return 0 if all(agree) else 1


if __name__ == "__main__":
    sys.exit(main())
