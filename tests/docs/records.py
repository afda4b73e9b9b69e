"""What the tests of the schemas of records have in common."""

import copy
import json
import subprocess
import sys

from jsonschema import Draft202012Validator


def validator_of(path):
    with open(path, encoding="utf-8") as file:
        schema = json.load(file)
    Draft202012Validator.check_schema(schema)
    return Draft202012Validator(schema)


def printed(program, arguments):
    """The records that the program prints as JSON Lines."""
    done = subprocess.run([program, *arguments, "--format", "jsonl", "-q"], stdout=subprocess.PIPE, encoding="utf-8")
    if done.returncode not in (0, 3):
        sys.exit(f"{' '.join(arguments)}: status {done.returncode}")
    return [json.loads(line) for line in done.stdout.splitlines()]


def places(record, free, path=()):
    """Every value within, with its key and the way to it; of a list the first one. Keys within those that are free are any."""
    for key, value in record.items():
        yield path, key, value
        if isinstance(value, list) and value:
            path_within, value = (*path, key, 0), value[0]
        else:
            path_within = (*path, key)
        if isinstance(value, dict) and key not in free:
            yield from places(value, free, path_within)


def spoilt(record, nullable, optional=(), free=()):
    """Copies of the record that are wrong in one place, with a name for each."""
    for path, key, value in list(places(record, free)):
        is_number = isinstance(value, (int, float)) and not isinstance(value, bool)
        for wrong in (None if is_number else 17.5, [17], "gone"):
            copied = copy.deepcopy(record)
            within = copied
            for step in path:
                within = within[step]
            if wrong == "gone":
                del within[key]
                if key not in optional:
                    yield f"without {path} {key}", copied
            elif not (wrong is None and key in nullable) and not (wrong == 17.5 and value is None):
                within[key] = wrong
                yield f"{path} {key} = {wrong}", copied


def errors(validator, name, record):
    return [f"{name}: {error.json_path}: {error.message}" for error in validator.iter_errors(record)]


def verdict(failures, validator, spoilt_records):
    """Prints what is wrong, records that the schema should refuse among it. Returns an exit status."""
    failures = failures + [f"a record {what} satisfies the schema" for what, record in spoilt_records if validator.is_valid(record)]
    for failure in failures[:20]:
        print(failure)
    return 1 if failures else 0
