#!/usr/bin/env python3
"""Writes each fuzz target's seed corpus: an empty input and a few random ones from
a seeded generator (the same files on every run). Run it after adding a target."""
import os
import random

TARGETS = {  # name: (number of files, bytes per file)
    "ZEFBoolArrayFuzz": (6, 2000),
    "IDGeneratorFuzz": (6, 300),
    "ZEFPtrDListFuzz": (6, 400),
    "ZEFKeyArrayFuzz": (6, 300),
    "BinarySortFuzz": (6, 200),
    "LUDecompFuzz": (6, 600),
    "EnhancedMathFunctionsFuzz": (8, 8000),
    "GeometryQueriesFuzz": (8, 4000),
}

here = os.path.dirname(os.path.abspath(__file__))
for name, (count, size) in TARGETS.items():
    folder = os.path.join(here, "corpus", name)
    os.makedirs(folder, exist_ok=True)
    rng = random.Random(name)
    open(os.path.join(folder, "seed-empty"), "wb").close()
    for k in range(count):
        data = bytes(rng.randrange(256) for _ in range(rng.randrange(size // 4, size)))
        with open(os.path.join(folder, "seed-%d" % k), "wb") as f:
            f.write(data)
