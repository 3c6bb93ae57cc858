#!/usr/bin/env python3
"""Prints, for a Google Benchmark JSON report, each benchmark's time per iteration and its ratio
to the floor of its group (the benchmark named "<Group>/floor", with the same arguments when the
benchmark takes some: "<Group>/floor/1000" is the floor of "<Group>/model/1000"), by wall-clock
time and by CPU
time. On a shared machine the CPU-time ratio is the steadier one: a benchmark descheduled for a
while loses wall-clock time but no CPU time. Benchmarks that report "peakMB" and "fileMB" also get
their peak memory above their floor's, as a multiple of the input file's size."""
import json
import sys

report = json.load(open(sys.argv[1]))
rows = [b for b in report["benchmarks"] if b.get("run_type", "iteration") == "iteration"]
def floor_key(name):
    group, _, variant = name.partition("/")
    _, _, arguments = variant.partition("/")
    return group, arguments


floors = {}
for b in rows:
    group, _, variant = b["name"].partition("/")
    if variant.split("/")[0] == "floor":
        floors[floor_key(b["name"])] = b
print(f"# {sys.argv[1]}")
print(f"{'benchmark':<40} {'real':>12}     {'ratio':>8} {'cpu':>12}     {'ratio':>8}")
for b in rows:
    floor = floors.get(floor_key(b["name"]))
    cells = []
    for key in ("real_time", "cpu_time"):
        ratio = f"{b[key] / floor[key]:7.2f}x" if floor else "       -"
        cells.append(f"{b[key]:12.2f} {b['time_unit']:<3} {ratio}")
    print(f"{b['name']:<40} {' '.join(cells)}")
for b in rows:
    floor = floors.get(floor_key(b["name"]))
    if not floor or floor is b or "peakMB" not in b or "peakMB" not in floor or not b.get("fileMB"):
        continue
    above = b["peakMB"] - floor["peakMB"]
    print(f"{b['name']:<40} peak {b['peakMB']:.1f} MB, floor {floor['peakMB']:.1f} MB: "
          f"{above:+.1f} MB = {above / b['fileMB']:.2f}x the {b['fileMB']:.1f} MB file")
