"""Holds docs/model.schema.json against models.

    model_schema.py PROGRAM    run at the root of the project

What the program exports satisfies the schema, and so do the documents that are read elsewhere in the tests; files of
tests/language/errors/json that are wrong in their form, and not only in what they say, do not.
"""

import json
import re
import subprocess
import sys
import tempfile

from records import validator_of

WRONG_IN_FORM = """
an-array another-format another-version command-that-is-an-input command-that-varies command-that-waits computed-badly
components-are-missing components-are-no-array component-without-variables guard-missing-its-array
input-that-is-a-text input-that-varies law-without-literals literal-is-a-number literal-without-value lost-condition
mode-without-initial name-with-a-blank negative-hold no-format one-value place-of-line-zero probability-above-one
probability-is-a-text readings-that-cannot-be step-of-zero thresholds-and-readings unknown-key unknown-kind unknown-kind-of-transition
values-are-texts varies-always varies-never
""".split()


def main(program):
    failures = []

    def expect(valid, name, document):
        error = next(iter(validator.iter_errors(document)), None)
        if valid and error:
            failures.append(f"{name}: {error.json_path}: {error.message}")
        if not valid and not error:
            failures.append(f"{name}: satisfies the schema")

    validator = validator_of("docs/model.schema.json")

    with open("docs/language.md", encoding="utf-8") as file:
        blocks = re.findall(r"^```(itms|json)\n(.*?)^```$", file.read(), re.DOTALL | re.MULTILINE)
    written = [text for kind, text in blocks if kind == "json"]
    if not written:
        failures.append("docs/language.md: there is no example in JSON")
    for text in written:
        expect(True, "docs/language.md", json.loads(text))

    models = ["examples/models/valve.itms", "fuzz/corpus/model_json/plant.json"]
    with tempfile.TemporaryDirectory() as folder:
        # The examples are read in another test; here those count that are right.
        for number, text in enumerate(text for kind, text in blocks if kind == "itms"):
            path = f"{folder}/{number}.itms"
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
            if subprocess.run([program, "check", path], stdout=subprocess.DEVNULL).returncode == 0:
                models.append(path)
        if len(models) < 4:
            failures.append("docs/language.md: there are not two models that can be exported")
        for model in models:
            exported = subprocess.run([program, "export", model], stdout=subprocess.PIPE, check=True)
            expect(True, model, json.loads(exported.stdout))
    for name in WRONG_IN_FORM:
        path = f"tests/language/errors/json/{name}.json"
        with open(path, encoding="utf-8") as file:
            expect(False, path, json.load(file))

    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
