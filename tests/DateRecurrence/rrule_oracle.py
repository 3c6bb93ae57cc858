#!/usr/bin/env python3
"""Expands iCalendar recurrence patterns with python-dateutil, an implementation independent of
libical, for the recurrence tests.

Reads a JSON list of cases, each {"start": "YYYY-MM-DD", "patterns": [RRULE body, ...],
"take": N}, and prints a JSON list with, per case, the first N dates (YYYY-MM-DD) of the
patterns merged in date order. A date that two patterns produce is listed once per pattern."""
import datetime
import heapq
import itertools
import json
import re
import sys

from dateutil import rrule, tz


def dates(pattern, start):
    # dateutil wants the start in UTC when the end is a UTC time stamp; the dates stay the same.
    if re.search(r"UNTIL=\d{8}T\d{6}Z", pattern, re.IGNORECASE):
        start = start.replace(tzinfo=tz.UTC)
    return (d.date() for d in rrule.rrulestr(pattern, dtstart=start))


def main():
    results = []
    for case in json.load(sys.stdin):
        start = datetime.datetime.strptime(case["start"], "%Y-%m-%d")
        # heapq.merge is stable: on a tie the earlier pattern's date comes first.
        merged = heapq.merge(*(dates(p, start) for p in case["patterns"]))
        results.append([d.isoformat() for d in itertools.islice(merged, case["take"])])
    json.dump(results, sys.stdout)


main()
