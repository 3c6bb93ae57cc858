#!/usr/bin/env python3
"""Prints, for a Google Benchmark JSON report, each benchmark's time per iteration and its ratio
to the floor of its group (the benchmark named "<Group>/floor")."""
import json
import sys

report = json.load(open(sys.argv[1]))
rows = [b for b in report["benchmarks"] if b.get("run_type", "iteration") == "iteration"]
floors = {}
for b in rows:
    group, _, variant = b["name"].partition("/")
    if variant.split("/")[0] == "floor":
        floors[group] = b["real_time"]
print(f"# {sys.argv[1]}")
for b in rows:
    group, _, variant = b["name"].partition("/")
    floor = floors.get(group)
    ratio = f"{b['real_time'] / floor:8.2f}x" if floor else "        -"
    print(f"{b['name']:<48} {b['real_time']:12.2f} {b['time_unit']:<3} {ratio}")
