#!/usr/bin/env python3
"""Prints which share of the product's lines and branches each layer of tests covers.

    table.py REPORT...

A REPORT is gcovr's in JSON, named <layer>.json. The last column counts what any of them covers.
"""

import json
import sys
from collections import defaultdict
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "lint"))
from includes import ROOMS, room_of  # noqa: E402

GENERATED = "generated/"


def room(file):
    if f"/{GENERATED}" in file:
        return GENERATED.rstrip("/")
    return room_of(file)


def read(path):
    """By room, what can be covered, each with whether it is: lines, and branches by their lines."""
    lines, branches = defaultdict(dict), defaultdict(dict)
    for file in json.loads(path.read_text())["files"]:
        name = file["file"]
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            place = (name, line["line_number"])
            lines[room(name)][place] = line["count"] > 0
            for number, branch in enumerate(line["branches"]):
                branches[room(name)][(*place, number)] = branch["count"] > 0
    return lines, branches


def percent(covered, places):
    return f"{100 * sum(covered.get(place, False) for place in places) / max(1, len(places)):.1f}"


def main():
    layers = {Path(path).stem: read(Path(path)) for path in sys.argv[1:]}
    rooms = [name for name in (*ROOMS, GENERATED.rstrip("/"))
             if any(name in lines for lines, _ in layers.values())]
    everything = "all rooms"
    for what, kind in enumerate(("lines", "branches")):
        print(f"{kind + ', percent':20}{'count':>8}" + "".join(f"{layer:>10}" for layer in layers) +
              f"{'together':>10}")
        total = defaultdict(dict)
        for name in (*rooms, everything):
            covered = {layer: total[layer] if name == everything else found[what][name]
                       for layer, found in layers.items()}
            together = {}
            for layer, places in covered.items():
                if name != everything:
                    total[layer].update(places)
                for place, hit in places.items():
                    together[place] = together.get(place, False) or hit
            shares = [percent(covered[layer], together) for layer in layers]
            print(f"{name:20}{len(together):8}" + "".join(f"{share:>10}" for share in shares) +
                  f"{percent(together, together):>10}")
        print()


if __name__ == "__main__":
    main()
