"""Holds job files against docs/job.schema.json: the good ones pass, each bad one fails.

usage: check_schema.py SCHEMA GOOD...
"""

import json
import sys

import jsonschema

BAD = [
    ("/version", 1),
    ("/variables/0/name", "ends in a blank "),
    ("/variables/0/value", "1"),
    ("/variables/0/vaule", 1),
    ("/tables/0/rowSelector", "VWidth"),
    ("/tables/0/rowSelector", "V(Width"),
    ("/tables/0/rowSelector", None),
    ("/tables/0/cells/0/0", "4.5"),
    ("/tables/0/cells/0/0", "V()"),
    ("/tables/0/cells", [[1]]),
]


def replace(document, pointer, value):
    *way, last = pointer.split("/")[1:]
    for step in way:
        document = document[int(step) if isinstance(document, list) else step]
    document[int(last) if isinstance(document, list) else last] = value


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


validator = jsonschema.Draft202012Validator(read(sys.argv[1]))
failures = 0
for path in sys.argv[2:]:
    for error in validator.iter_errors(read(path)):
        print(f"{path}: {error.json_path}: {error.message}")
        failures += 1
for pointer, value in BAD:
    document = read(sys.argv[2])
    replace(document, pointer, value)
    if validator.is_valid(document):
        print(f"{pointer}: {value!r} passes")
        failures += 1
sys.exit(failures != 0)
