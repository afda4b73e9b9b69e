"""Compares texts with the first one: whether they are the same, or the same but for the last digits of some numbers.

    same_but_last_digits.py FIRST OTHER...        status 1 where something else differs
"""

import re
import sys

NUMBER = re.compile(r"(-?\d+\.?\d*(?:[eE][-+]?\d+)?)")


def nearly(one, other):
    """Whether two pieces of a text are the same, or numbers of which at most the sixth digit differs."""
    if one == other:
        return True
    try:
        a, b = float(one), float(other)
    except ValueError:
        return False
    return abs(a - b) <= 2e-5 * max(abs(a), abs(b)) or max(abs(a), abs(b)) < 1e-12


def compare(first, other):
    """The lines in which last digits differ, and those in which something else does."""
    digits, different = [], []
    for number, (one, two) in enumerate(zip(first, other), 1):
        if one == two:
            continue
        pieces = NUMBER.split(one), NUMBER.split(two)
        same = len(pieces[0]) == len(pieces[1]) and all(map(nearly, *pieces))
        (digits if same else different).append(number)
    if len(first) != len(other):
        different.append(min(len(first), len(other)) + 1)
    return digits, different


def main():
    texts = [open(name, encoding="utf-8", errors="replace").read().split("\n") for name in sys.argv[1:]]
    failed = False
    for name, text in zip(sys.argv[2:], texts[1:]):
        digits, different = compare(texts[0], text)
        print(f"{name.rsplit('/', 1)[-1]}: {len(text)} lines, last digits differ in {len(digits)}, more in {len(different)}")
        for number in different[:5]:
            failed = True
            for lines in (texts[0], text):
                print(f"  {number}: {lines[number - 1][:300] if number <= len(lines) else '(nothing)'}")
    return 1 if failed else 0


sys.exit(main())
