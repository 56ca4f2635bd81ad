#!/usr/bin/env python3
"""Mutation check: puts each fault of mutations.txt into a scratch copy of the
sources in turn, rebuilds what changed, runs the tests and says whether they
caught it (killed) or not (survived).

    run.py [--only ID,ID] [--tests REGEX] [--write FILE] [--jobs N] [--scratch DIR]

A mutation that does not compile is "stillborn" and not counted. The copy
lives in build-mutants/ (or --scratch), builds in its build/ folder and is
refreshed from the working tree at each run, so a second run rebuilds only
what changed since.
"""
import argparse
import collections
import os
import re
import shutil
import signal
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.abspath(os.path.join(HERE, "..", "..", ".."))
DEFAULT_TESTS = None  # every test but the end-to-end and install ones


def ReadMutations(path):
    mutations, current = [], None
    with open(path, encoding="utf-8") as f:
        for number, line in enumerate(f, 1):
            line = line.rstrip("\n")
            header = re.match(r"^\[(\w+)\] (\S+) (\S+)$", line)
            if header:
                current = {"id": header[1], "subsystem": header[2], "path": header[3],
                           "tests": DEFAULT_TESTS, "line": number}
                mutations.append(current)
            elif current and line.startswith("tests: "):
                current["tests"] = line[7:].strip()
            elif current and line.startswith("- "):
                current["search"] = line[2:].strip()
            elif current and line.startswith("+ "):
                current["replace"] = line[2:].strip()
    for m in mutations:
        if "search" not in m or "replace" not in m:
            sys.exit(f"mutations.txt:{m['line']}: [{m['id']}] needs a '- ' and a '+ ' line")
    return mutations


def SyncTree(scratch):
    """Copies the tracked files of the working tree into scratch, writing only
    those that differ so the build there stays incremental."""
    source = scratch
    files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True,
                           capture_output=True).stdout.decode().split("\0")
    for name in filter(None, files):
        origin, copy = os.path.join(ROOT, name), os.path.join(source, name)
        if not os.path.isfile(origin):
            continue
        with open(origin, "rb") as f:
            data = f.read()
        if os.path.isfile(copy):
            with open(copy, "rb") as f:
                if f.read() == data:
                    continue
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        shutil.copy2(origin, copy)
    return source


def Configure(source, build):
    if os.path.isfile(os.path.join(build, "CMakeCache.txt")):
        return
    command = ["cmake", "-S", source, "-B", build, "-DCMAKE_BUILD_TYPE=RelWithDebInfo"]
    if shutil.which("ninja"):
        command += ["-G", "Ninja"]
    if shutil.which("ccache"):
        command += ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def Build(build, jobs, log):
    return subprocess.run(["cmake", "--build", build, "-j", str(jobs)], stdout=log,
                          stderr=subprocess.STDOUT).returncode == 0


def RunTests(build, jobs, tests, log):
    command = ["ctest", "--test-dir", build, "-j", str(jobs)]
    command += ["-R", tests] if tests else ["-LE", "e2e|install"]
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    # A mutation that loops for ever is caught by a time-out on the whole
    # run (the tests' own is minutes): the unit tests take well under a
    # minute, the end-to-end ones a few.
    process = subprocess.Popen(command, env=env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               text=True, start_new_session=True)
    try:
        output, _ = process.communicate(timeout=400 if tests else 120)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        output, _ = process.communicate()
        log.write(output)
        return False, ["(time-out)"]
    log.write(output)
    failed = re.findall(r"^\s*\d+ - (\S+) \(", output, re.M)
    return process.returncode == 0, failed


def Main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--only", help="comma-separated mutation ids")
    parser.add_argument("--tests", help="run only the tests this ctest regex selects")
    parser.add_argument("--write", help="also write the results to this file")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 2)
    parser.add_argument("--scratch", default=os.path.join(ROOT, "build-mutants"))
    parser.add_argument("--list", default=os.path.join(HERE, "mutations.txt"))
    args = parser.parse_args()

    mutations = ReadMutations(args.list)
    if args.only:
        wanted = set(args.only.split(","))
        mutations = [m for m in mutations if m["id"] in wanted]
    if args.tests:
        for m in mutations:
            m["tests"] = args.tests
    os.makedirs(args.scratch, exist_ok=True)
    # The copy's build sits where the tree's does, so ccache finds the
    # tree's objects for every file no mutation touched.
    os.environ.setdefault("CCACHE_BASEDIR", os.path.dirname(os.path.abspath(args.scratch)))
    os.environ.setdefault("CCACHE_NOHASHDIR", "true")
    source = SyncTree(args.scratch)
    build = os.path.join(args.scratch, "build")
    Configure(source, build)
    logPath = os.path.join(args.scratch, "mutants.log")
    results = []
    with open(logPath, "w") as log:
        if not Build(build, args.jobs, log):
            sys.exit(f"the unmutated tree does not build; see {logPath}")
        for m in mutations:
            path = os.path.join(source, m["path"])
            with open(path, encoding="utf-8") as f:
                original = f.read()
            count = original.count(m["search"])
            if count != 1:
                outcome, detail = "invalid", f"text found {count} times"
            else:
                started = time.monotonic()
                log.write(f"\n==== {m['id']}\n")
                try:
                    with open(path, "w", encoding="utf-8") as f:
                        f.write(original.replace(m["search"], m["replace"]))
                    if not Build(build, args.jobs, log):
                        outcome, detail = "stillborn", "does not compile"
                    else:
                        passed, failed = RunTests(build, args.jobs, m["tests"], log)
                        outcome = "survived" if passed else "killed"
                        detail = " ".join(failed)
                finally:
                    with open(path, "w", encoding="utf-8") as f:
                        f.write(original)
                detail = f"{time.monotonic() - started:.0f} s {detail}".strip()
            line = f"{m['id']:5} {m['subsystem']:12} {outcome:9} {detail}"
            print(line, flush=True)
            results.append((m, outcome, line))
            if args.write:  # after each one: a long run cut short keeps what it found
                Write(args.write, results)
        Build(build, args.jobs, log)  # leave the copy as the tree is

    summary, invalid = Summary(results)
    print("\n".join(summary))
    return 1 if invalid else 0


def Summary(results):
    totals = collections.defaultdict(collections.Counter)
    for m, outcome, _ in results:
        totals[m["subsystem"]][outcome] += 1
        totals["all"][outcome] += 1
    summary = [f"{name:12} killed {c['killed']:3}  survived {c['survived']:3}"
               + (f"  stillborn {c['stillborn']}" if c["stillborn"] else "")
               + (f"  invalid {c['invalid']}" if c["invalid"] else "")
               for name, c in sorted(totals.items(), key=lambda item: (item[0] == "all", item[0]))]
    return summary, totals["all"]["invalid"]


def Write(path, results):
    with open(path, "w") as f:
        f.write("\n".join(line for _, _, line in results) + "\n\n" + "\n".join(Summary(results)[0]) + "\n")


if __name__ == "__main__":
    sys.exit(Main())
