#!/usr/bin/env python3
"""Writes the seed corpus of each fuzz target: a handful of small inputs from a
seeded generator (the same files on every run), plus an empty input. Run it after
adding a target; the fuzzers grow their own corpora from these."""
import os
import random

TARGETS = {
    # name: (number of files, bytes per file)
    "ZEFBoolArrayFuzz": (6, 400),
    "IDGeneratorFuzz": (6, 300),
    "ZEFPtrDListFuzz": (6, 400),
    "ZEFKeyArrayFuzz": (6, 300),
    "BinarySortFuzz": (6, 200),
    "LUDecompFuzz": (6, 600),
    "EnhancedMathFunctionsFuzz": (8, 600),
    "GeometryQueriesFuzz": (8, 600),
}

here = os.path.dirname(os.path.abspath(__file__))
for name, (count, size) in TARGETS.items():
    folder = os.path.join(here, "corpus", name)
    os.makedirs(folder, exist_ok=True)
    rng = random.Random(name)
    with open(os.path.join(folder, "seed-empty"), "wb"):
        pass
    for k in range(count):
        data = bytes(rng.randrange(256) for _ in range(rng.randrange(size // 4, size)))
        with open(os.path.join(folder, "seed-%d" % k), "wb") as f:
            f.write(data)
