#!/usr/bin/env bash
# Runs SCHEMA_schema.py with the first Python that has jsonschema.
#
#     schema.sh SCHEMA PROGRAM    SCHEMA: calibration, evaluation, events, model or step
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cd "$here/../.."
for python in python3 /usr/bin/python3; do
    if "$python" -c 'from jsonschema import Draft202012Validator' 2>/dev/null; then
        exec "$python" -B "$here/$1_schema.py" "$2"
    fi
done
echo 'schema.sh: there is no Python with jsonschema; scripts/install-packages.sh installs python3-jsonschema' >&2
exit 1
