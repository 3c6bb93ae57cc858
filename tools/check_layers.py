#!/usr/bin/env python3
"""Checks that every file under src/<Subsystem> includes only its own subsystem and the
subsystems src/layers.txt lets it use (directly or through the layers below)."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
direct = {}
for line in (root / "src/layers.txt").read_text().splitlines():
    line = line.strip()
    if not line or line.startswith("#"):
        continue
    name, _, deps = line.partition(":")
    direct[name.strip()] = deps.split()


def allowed(layer, seen=None):
    seen = set() if seen is None else seen
    for dep in direct.get(layer, []):
        if dep not in seen:
            seen.add(dep)
            allowed(dep, seen)
    return seen | {layer}


include = re.compile(r'^\s*#\s*include\s*"([A-Za-z]+)/')
problems = []
for layer in direct:
    permitted = allowed(layer)
    for path in sorted((root / "src" / layer).rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        for number, text in enumerate(path.read_text(errors="replace").splitlines(), 1):
            match = include.match(text)
            if match and match.group(1) in direct and match.group(1) not in permitted:
                problems.append(f"{path.relative_to(root)}:{number}: {layer} may not include "
                                f"{match.group(1)} ({text.strip()})")
for folder in sorted(p.name for p in (root / "src").iterdir() if p.is_dir()):
    if folder not in direct:
        problems.append(f"src/{folder}: not declared in src/layers.txt")
print("\n".join(problems) if problems else f"{len(direct)} layers, includes follow src/layers.txt")
sys.exit(1 if problems else 0)
