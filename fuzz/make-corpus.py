#!/usr/bin/env python3
"""Writes each fuzz target's seed corpus: an empty input and random ones, the same on every run."""
import os
import random

TARGETS = {"ZEFBoolArrayFuzz": (6, 2000), "IDGeneratorFuzz": (6, 300), "ZEFPtrDListFuzz": (6, 400),
           "ZEFKeyArrayFuzz": (6, 300), "BinarySortFuzz": (6, 200), "LUDecompFuzz": (10, 1000),
           "EnhancedMathFunctionsFuzz": (8, 8000), "GeometryQueriesFuzz": (8, 4000)}  # files, bytes

for name, (count, size) in TARGETS.items():
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", name)
    os.makedirs(folder, exist_ok=True)
    rng = random.Random(name)
    open(os.path.join(folder, "seed-empty"), "wb").close()
    for k in range(count):
        with open(os.path.join(folder, "seed-%d" % k), "wb") as f:
            f.write(bytes(rng.randrange(256) for _ in range(rng.randrange(size // 4, size))))
