#!/usr/bin/env python3
"""Build and run ZEFCore's benchmark programs and print one comparison table.

For each case: our time per item for each ZEFCore route, the best peer's time
measured in the same run, and the ratio (ours / peer: above 1 means we are
slower). Times are the median over repetitions of the CPU time per item.

    python3 bench/run.py                 # configure, build (preset "bench"), run, print
    python3 bench/run.py --no-build      # run what is built
    python3 bench/run.py --filter mat4   # only cases matching a regular expression

The table goes to standard output as Markdown; the programs' own progress goes
to standard error. Standard library only.
"""

import argparse
import json
import os
import platform
import re
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PROGRAMS = ["zefbench_matrix", "zefbench_solver", "zefbench_sort", "zefbench_bits", "zefbench_bbox"]
OURS = "zef"


def log(message):
    print(message, file=sys.stderr, flush=True)


def build():
    for command in (["cmake", "--preset", "bench"], ["cmake", "--build", "--preset", "bench"]):
        log("$ " + " ".join(command))
        subprocess.run(command, cwd=ROOT, check=True, stdout=sys.stderr)


def listed_rows(exe, filter_regex):
    """Returns the names of the rows the program would run."""
    command = [exe, "--benchmark_list_tests=true"]
    if filter_regex:
        command.append("--benchmark_filter=" + filter_regex)
    out = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return [line.strip() for line in out.splitlines() if line.strip()]


def run_program(exe, args):
    """Runs one program; returns (context, {row: median entry}, {row: error message})."""
    with tempfile.TemporaryDirectory() as tmp:
        out_file = os.path.join(tmp, "out.json")
        command = [
            exe,
            "--benchmark_repetitions=%d" % args.repetitions,
            "--benchmark_report_aggregates_only=true",
            "--benchmark_out=" + out_file,
            "--benchmark_out_format=json",
        ]
        if args.min_time:
            command.append("--benchmark_min_time=%g" % args.min_time)
        if args.filter:
            command.append("--benchmark_filter=" + args.filter)
        log("$ " + " ".join(command))
        subprocess.run(command, check=True, stdout=sys.stderr)
        with open(out_file) as f:
            data = json.load(f)
    medians, errors = {}, {}
    for entry in data.get("benchmarks", []):
        name = entry.get("run_name", entry["name"])
        if entry.get("error_occurred"):
            errors[name] = entry.get("error_message", "error")
        elif entry.get("aggregate_name") == "median":
            medians[name] = entry
        elif entry.get("run_type") == "iteration" and args.repetitions == 1:
            medians[name] = entry  # one repetition: no aggregate, the run itself
    return data.get("context", {}), medians, errors


def seconds_per_item(entry):
    rate = entry.get("items_per_second")
    return 1.0 / rate if rate else None


def format_time(seconds, label):
    if seconds is None:
        return "-"
    for scale, unit in ((1.0, "s"), (1e-3, "ms"), (1e-6, "us"), (1e-9, "ns")):
        if seconds >= scale or unit == "ns":
            return "%.3g %s / %s" % (seconds / scale, unit, label)
    return "-"


def format_rate(seconds, label):
    rate = 1.0 / seconds
    for scale, unit in ((1e9, "G "), (1e6, "M "), (1e3, "k "), (1.0, "")):
        if rate >= scale:
            return "%.3g %s%s/s" % (rate / scale, unit, label)
    return "%.3g %s/s" % (rate, label)


def machine(context, build_dir):
    model, cores = platform.processor() or platform.machine(), str(context.get("num_cpus", "?"))
    try:
        lscpu = subprocess.run(["lscpu"], capture_output=True, text=True).stdout
        for line in lscpu.splitlines():
            key, _, value = line.partition(":")
            if key.strip() == "Model name":
                model = value.strip()
            elif key.strip() == "CPU(s)":
                cores = value.strip()
    except OSError:
        pass
    compiler = "?"
    try:
        with open(os.path.join(build_dir, "CMakeCache.txt")) as f:
            cache = f.read()
        cxx = re.search(r"^CMAKE_CXX_COMPILER:[A-Z]+=(.*)$", cache, re.M)
        build_type = re.search(r"^CMAKE_BUILD_TYPE:[A-Z]+=(.*)$", cache, re.M)
        if cxx:
            compiler = subprocess.run([cxx.group(1), "--version"], capture_output=True, text=True).stdout.splitlines()[0]
        if build_type:
            compiler += ", " + build_type.group(1)
    except (OSError, IndexError):
        pass
    return "%s, %s cores; %s" % (model, cores, compiler)


def library_state():
    """Returns the commit the library was built from, and whether zefcore/ had local changes."""
    try:
        head = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, capture_output=True,
                              text=True, check=True).stdout.strip()
        dirty = subprocess.run(["git", "status", "--porcelain", "--", "zefcore"], cwd=ROOT, capture_output=True,
                               text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return "unknown"
    return head + (" with local changes in zefcore/" if dirty else "")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build-dir", default=os.path.join(ROOT, "build", "bench"))
    parser.add_argument("--no-build", action="store_true", help="run the programs already built")
    parser.add_argument("--filter", help="regular expression on the row names")
    parser.add_argument("--repetitions", type=int, default=5)
    parser.add_argument("--min-time", type=float, help="seconds per repetition (Google Benchmark's default otherwise)")
    args = parser.parse_args()

    if not args.no_build:
        build()
    state = library_state()

    rows, medians, errors, context = [], {}, {}, {}
    for program in PROGRAMS:
        exe = os.path.join(args.build_dir, "bench", program)
        if not os.path.exists(exe):
            log("%s is not built: its cases are skipped" % program)
            continue
        listed = listed_rows(exe, args.filter)
        if not listed:
            continue
        context, m, e = run_program(exe, args)
        rows += listed
        medians.update(m)
        errors.update(e)

    # Cases in the order the programs list them; rows "<case>/<lib>:<route>".
    cases = {}
    for name in rows:
        case, _, route = name.partition("/")
        lib = route.split(":", 1)[0]
        cases.setdefault(case, {"ours": [], "peers": []})["ours" if lib == OURS else "peers"].append(name)

    notes, failed = [], False
    print("Machine: %s. Library: %s." % (machine(context, args.build_dir), state))
    print("Median of %d repetitions, CPU time per item; ratio = ours / best peer (above 1: slower)." % args.repetitions)
    print()
    print("| Case | ZEFCore route | ZEFCore | Best peer | Peer | Ratio | Other peers |")
    print("|---|---|---|---|---|---|---|")
    for case, members in cases.items():
        best, best_time, timed = None, None, []
        for name in members["peers"]:
            if name in errors or name not in medians:
                why = errors.get(name, "no result")
                notes.append("`%s` skipped: %s" % (name, why))
                failed = failed or "not found" not in why
                continue
            t = seconds_per_item(medians[name])
            timed.append((name, t))
            if t is not None and (best_time is None or t < best_time):
                best, best_time = name, t
        for name in members["ours"]:
            route = name.partition(":")[2]
            if name in errors or name not in medians:
                notes.append("`%s` failed: %s" % (name, errors.get(name, "no result")))
                failed = True
                print("| %s | %s | failed | | | | |" % (case, route))
                continue
            entry = medians[name]
            label = entry.get("label", "item")
            ours = seconds_per_item(entry)
            if best is None:
                print("| %s | %s | %s (%s) | no peer | | | |"
                      % (case, route, format_time(ours, label), format_rate(ours, label)))
                continue
            others = "; ".join("%s %s" % (n.partition("/")[2], format_time(t, label).split(" / ")[0])
                               for n, t in timed if n != best)
            print("| %s | %s | %s | %s | %s | %.2f | %s |"
                  % (case, route, format_time(ours, label), best.partition("/")[2], format_time(best_time, label),
                     ours / best_time, others))
    if notes:
        print()
        for note in notes:
            print("- " + note)
    if context.get("library_build_type") == "debug":
        print()
        print("- Google Benchmark itself was built as debug (Debian's package); it times our code, it is not timed.")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
