"""What a logger makes of readings, for the generators of the examples."""

import gzip


def spoil(rng, text, wild):
    """A logger loses a reading now and then, and a long cable catches one: then it is one of the wild ones."""
    chance = rng.random()
    if chance < 0.0005:
        return ""
    if chance < 0.0008:
        return rng.choice(wild)
    return text


def write(folder, name, rows, labels):
    """Writes NAME.csv.gz, the same bytes at any time, and NAME-labels.csv."""
    with open(f"{folder}/{name}.csv.gz", "wb") as file:
        with gzip.GzipFile(fileobj=file, mode="wb", filename="", mtime=0, compresslevel=9) as packed:
            packed.write(("\n".join(rows) + "\n").encode())
    with open(f"{folder}/{name}-labels.csv", "w", encoding="utf-8") as file:
        file.write("\n".join(labels) + "\n")
