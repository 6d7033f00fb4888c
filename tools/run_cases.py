#!/usr/bin/env python3
"""Runs the cases of the program: folders with a command, its input and its expected results.

    tools/run_cases.py --program build/dev/bin/vantorelix [--keep] [NAME...]

A case is a folder below tests/cases with
    cmd            a shell script; the program is on its PATH
    scenes         names of files from tests/cases/scenes that it needs, one per line (optional)
    exit           the exit code (default 0)
    stdout, stderr the complete text expected there (default: nothing)
    stdout.has, stderr.has   instead of these: lines, each of which must be part of the text
    files/         files that the command must make, byte for byte
    makes          names of other files that it makes, one per line; no others may appear
    posix          why it holds on POSIX systems alone: with --windows it is left out
    check.py       a script that checks more: it is run in the case's folder after the command, and fails by its exit
                   code; what the command printed is there as stdout.got and stderr.got
Everything else in the folder is input. Each case runs in a temporary copy, so it can write where it likes.
"""

import argparse
import concurrent.futures
import difflib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIME_LIMIT = 300  # in Wine each start of the program takes a second
EXPECTATIONS = {"cmd", "scenes", "exit", "stdout", "stderr", "stdout.has", "stderr.has", "files", "makes", "posix", "check.py"}


def names(path):
    """The lines of a list, or none where there is no list."""
    return [line for line in path.read_text(encoding="utf-8").splitlines() if line] if path.exists() else []


def prepare(case, scenes, work):
    """Puts the input of a case into its working folder."""
    for item in case.iterdir():
        if item.name not in EXPECTATIONS:
            (shutil.copytree if item.is_dir() else shutil.copy)(item, work / item.name)
    for name in names(case / "scenes"):
        shutil.copy(scenes / name, work / name)


def difference(what, want, got):
    lines = difflib.unified_diff(want.splitlines(), got.splitlines(), "expected", "got", lineterm="", n=2)
    return ["%s differs:" % what] + ["    " + line for line in lines]


def check_text(case, what, got):
    """Complaints about the text that came out of `what`, stdout or stderr."""
    parts = case / (what + ".has")
    if parts.exists():
        return ["%s lacks: %s\n    in: %s" % (what, line, got) for line in names(parts) if line not in got]
    expected = case / what
    want = expected.read_text(encoding="utf-8") if expected.exists() else ""
    return [] if got == want else difference(what, want, got)


def files_below(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()}


def check_files(case, before, work):
    """Complaints about the files that the command made."""
    complaints = []
    expected = case / "files"
    wanted = files_below(expected) if expected.exists() else set()
    made = files_below(work) - before
    for name in sorted(made - wanted - set(names(case / "makes"))):
        complaints.append("an unexpected file was made: " + name)
    for name in sorted((wanted | set(names(case / "makes"))) - made):
        complaints.append("a file was not made: " + name)
    for name in sorted(wanted & made):
        want, got = (expected / name).read_bytes(), (work / name).read_bytes()
        if want != got:
            complaints += difference(name, want.decode(errors="replace"), got.decode(errors="replace"))
    return complaints


def environment(program):
    env = {key: value for key, value in os.environ.items() if key not in ("NO_COLOR", "PYTHONPATH")}
    env["PATH"] = os.pathsep.join([str(program.parent), env.get("PATH", os.defpath)])
    env["LC_ALL"] = "C.UTF-8"
    env["DOCS"] = str(ROOT / "docs")
    env["EXAMPLES"] = str(ROOT / "examples")
    return env


def run_script(command, work, env):
    return subprocess.run(command, cwd=work, env=env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=TIME_LIMIT, check=False)


def run_case(case, program, scenes, keep=False):
    """All complaints about one case; none when it passes."""
    work = pathlib.Path(tempfile.mkdtemp(prefix="case-"))
    env = environment(program)
    try:
        prepare(case, scenes, work)
        before = files_below(work)
        script = (case / "cmd").read_text(encoding="utf-8")
        done = run_script(["sh", "-c", script], work, env)
        stdout, stderr = (text.decode(errors="replace") for text in (done.stdout, done.stderr))
        want = int((names(case / "exit") or ["0"])[0])
        complaints = [] if done.returncode == want else ["exit code %d instead of %d" % (done.returncode, want)]
        complaints += check_text(case, "stdout", stdout) + check_text(case, "stderr", stderr)
        complaints += check_files(case, before, work)
        if (case / "check.py").exists():
            (work / "stdout.got").write_bytes(done.stdout)
            (work / "stderr.got").write_bytes(done.stderr)
            check = run_script([sys.executable, str(case / "check.py")], work, env)
            if check.returncode != 0:
                complaints.append("check.py: " + (check.stdout + check.stderr).decode(errors="replace"))
        return complaints
    except subprocess.TimeoutExpired:
        return ["took longer than %d seconds" % TIME_LIMIT]
    finally:
        if keep:
            print("%s: kept in %s" % (case.name, work))
        else:
            shutil.rmtree(work, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description="Runs the cases of the program.")
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--cases", type=pathlib.Path, default=ROOT / "tests" / "cases")
    parser.add_argument("--windows", action="store_true", help="the program is for Windows, run by Wine")
    parser.add_argument("--keep", action="store_true", help="keep the working folders")
    parser.add_argument("names", nargs="*", help="only these cases")
    options = parser.parse_args()
    program = options.program.resolve()
    if not program.is_file():
        parser.error("%s: no such program; build it first" % options.program)
    cases = sorted(path.parent for path in options.cases.glob("*/cmd"))
    if options.names:
        cases = [case for case in cases if case.name in options.names]
    if not cases or len(options.names) > len(cases):
        parser.error("no such case in %s" % options.cases)
    skipped = [case for case in cases if options.windows and (case / "posix").exists()]
    for case in skipped:
        print("skip %s: %s" % (case.name, " ".join(names(case / "posix"))))
    cases = [case for case in cases if case not in skipped]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(run_case, case, program, options.cases / "scenes", options.keep) for case in cases]
        for case, run in zip(cases, runs):
            complaints = run.result()
            failed += bool(complaints)
            print("%s %s" % ("FAIL" if complaints else "ok  ", case.name))
            for complaint in complaints:
                print("  " + complaint.replace("\n", "\n  "))
    print("%d of %d cases passed" % (len(cases) - failed, len(cases)) + (", %d skipped" % len(skipped) if skipped else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
