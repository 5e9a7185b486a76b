#!/usr/bin/env python3
"""Reports the library's coverage after the tests have run in a coverage build.

Writes, under <build>/coverage/: files.txt (line and branch coverage per source
file), coverage.json (gcovr's data), summary.txt (the totals) and
uncalled-exports.txt (exported functions of the library that no test reached).
Exits non-zero if line coverage is below --min-lines or an export was never called.
The counters (.gcda files) are deleted once read, so that the next run of the tests
is measured from zero and not on top of this one.
"""
import argparse
import json
import pathlib
import re
import subprocess
import sys


def exported_functions(library):
    """Demangled names of the library's own exported functions."""
    out = subprocess.run(["nm", "-DC", "--defined-only", library], check=True, capture_output=True,
                         text=True).stdout
    names = set()
    for line in out.splitlines():
        parts = line.split(None, 2)
        if len(parts) != 3 or parts[1] not in ("T", "W"):
            continue
        name = parts[2]
        # C symbols (the coverage runtime's) have no parameter list; standard
        # library templates instantiated here are not the library's own.
        if "(" not in name:
            continue
        qualified = name[:name.index("(")]
        if "std::" in qualified or "__gnu_cxx::" in qualified or qualified.startswith("decltype"):
            continue
        names.add(name)
    return names


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--gcovr", required=True)
    parser.add_argument("--root", required=True)
    parser.add_argument("--build", required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--min-lines", type=float, default=90.0)
    parser.add_argument("--allow", action="append", default=[],
                        help="an exported function that no test can call (a private member)")
    args = parser.parse_args()

    out = pathlib.Path(args.build) / "coverage"
    out.mkdir(exist_ok=True)
    root = pathlib.Path(args.root).resolve()
    summary = subprocess.run(
        [args.gcovr, "--root", str(root), "--filter", str(root / "zefcore") + "/",
         "--exclude-unreachable-branches", "--exclude-throw-branches",
         "--txt", str(out / "files.txt"), "--json", str(out / "coverage.json"),
         "--print-summary", args.build],
        check=True, capture_output=True, text=True).stdout
    (out / "summary.txt").write_text(summary)
    print(summary, end="")
    for counters in pathlib.Path(args.build).rglob("*.gcda"):
        counters.unlink()

    called = set()
    seen = set()
    for record in json.loads((out / "coverage.json").read_text())["files"]:
        for function in record.get("functions", []):
            seen.add(function["name"])
            if function["execution_count"] > 0:
                called.add(function["name"])
    uncalled = sorted(name for name in exported_functions(args.library)
                      if name not in called and name not in args.allow)
    (out / "uncalled-exports.txt").write_text("".join(name + "\n" for name in uncalled))
    print(f"exported functions never called: {len(uncalled)}")
    for name in uncalled:
        print("  " + name + ("" if name in seen else "  (no coverage data)"))

    match = re.search(r"lines: ([0-9.]+)%", summary)
    lines = float(match.group(1)) if match else 0.0
    if lines < args.min_lines:
        print(f"line coverage {lines}% is below {args.min_lines}%")
        return 1
    return 1 if uncalled else 0


if __name__ == "__main__":
    sys.exit(main())
