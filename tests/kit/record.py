#!/usr/bin/python3
"""record.py RECORD: compares a JSON object with lines of standard input, PATH = VALUE or PATH = VALUE +- TOLERANCE.

A path is keys and indices with slashes between them; # at its end is the number of elements. Without a tolerance the
value is the element itself, as JSON or as plain text. Prints what differs, or "as expected".
"""
import json
import sys


def no_duplicates(pairs):
    keys = [key for key, _ in pairs]
    assert len(keys) == len(set(keys)), f"a key comes twice: {keys}"
    return dict(pairs)


def no_constant(word):
    raise ValueError(f"{word} is not JSON")


def element(record, path):
    for key in path.split("/"):
        record = len(record) if key == "#" else record[int(key) if isinstance(record, list) else key]
    return record


def plain(text):
    try:
        return json.loads(text)
    except ValueError:
        return text


record = json.loads(sys.argv[1], object_pairs_hook=no_duplicates, parse_constant=no_constant)
differences, lines = [], 0
assert isinstance(record, dict), "not an object"
for line in sys.stdin:
    path, value = line.rstrip("\n").split(" = ")
    value, _, tolerance = value.partition(" +- ")
    lines += 1
    try:
        got = element(record, path)
        same = abs(got - float(value)) <= float(tolerance) if tolerance else got == plain(value)
    except (KeyError, IndexError, TypeError, ValueError) as why:
        differences.append(f"{path}: {why!r}")
        continue
    if not same:
        differences.append(f"{path} is {got!r}, expected {value}")
print("; ".join(differences) if differences else "as expected" if lines else "nothing was expected")
