#!/usr/bin/env python3
"""Prints, for a Google Benchmark JSON report, each benchmark's time per iteration and its ratio
to the floor of its group (the benchmark named "<Group>/floor"), by wall-clock time and by CPU
time. On a shared machine the CPU-time ratio is the steadier one: a benchmark descheduled for a
while loses wall-clock time but no CPU time."""
import json
import sys

report = json.load(open(sys.argv[1]))
rows = [b for b in report["benchmarks"] if b.get("run_type", "iteration") == "iteration"]
floors = {}
for b in rows:
    group, _, variant = b["name"].partition("/")
    if variant.split("/")[0] == "floor":
        floors[group] = b
print(f"# {sys.argv[1]}")
print(f"{'benchmark':<40} {'real':>12}     {'ratio':>8} {'cpu':>12}     {'ratio':>8}")
for b in rows:
    group, _, variant = b["name"].partition("/")
    floor = floors.get(group)
    cells = []
    for key in ("real_time", "cpu_time"):
        ratio = f"{b[key] / floor[key]:7.2f}x" if floor else "       -"
        cells.append(f"{b[key]:12.2f} {b['time_unit']:<3} {ratio}")
    print(f"{b['name']:<40} {' '.join(cells)}")
