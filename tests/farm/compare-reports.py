#!/usr/bin/env python3
"""compare-reports.py WHOLE JOINED: the joined reports of a job's tasks must tell what the report of one run does, except
times, command lines and the folder of the files."""
import json
import pathlib
import sys

OF_A_RUN = {"arguments", "begin", "seconds", "outputTime", "decodeSeconds", "renderSeconds", "encodeSeconds"}


def told(report):
    record = json.loads(pathlib.Path(report).read_text())
    for part in (record, *record["frames"]):
        for name in OF_A_RUN & part.keys():
            del part[name]
    for frame in record["frames"]:
        frame["output"] = pathlib.Path(frame["output"]).name
    return record


whole, joined = (told(report) for report in sys.argv[1:])
for name in whole.keys() | joined.keys():
    if whole.get(name) != joined.get(name):
        sys.exit(f"{name}: {json.dumps(joined.get(name))}\nand not: {json.dumps(whole.get(name))}")
