#!/usr/bin/env python3
"""Sums up a test run: tools/summary.py BUILD-FOLDER STAGE:EXIT-CODE:SECONDS...

Reads what CTest and the test programs wrote into BUILD-FOLDER/STAGE/reports. The last line is the total. A stage that
ended in an error without a failed test (because it did not build, or a program crashed) counts as one failure. The exit
code is 1 if anything failed.
"""

import os
import sys
import xml.etree.ElementTree as ElementTree


def _cases(path):
    """(passed, failed, skipped) in the report of a test program; zeros if it wrote none."""
    try:
        suites = ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError):
        return 0, 0, 0
    failed = skipped = total = 0
    for case in suites.iter("testcase"):
        total += 1
        if case.find("failure") is not None:
            failed += 1
        elif case.find("skipped") is not None or case.get("status") == "notrun":
            skipped += 1
    return total - failed - skipped, failed, skipped


def stage(folder, code):
    """(passed, failed, skipped, names of the failed programs) of one stage."""
    passed = failed = skipped = 0
    broken = []
    reports = os.path.join(folder, "reports")
    try:
        programs = ElementTree.parse(os.path.join(reports, "ctest.xml")).getroot().iter("testcase")
    except (OSError, ElementTree.ParseError):
        programs = []
    for program in programs:
        name, ended_well = program.get("name"), program.get("status") == "run"
        inside = _cases(os.path.join(reports, name + ".xml"))
        if inside == (0, 0, 0):
            inside = (1, 0, 0) if ended_well else (0, 1, 0)
        elif not ended_well and not inside[1]:
            inside = (inside[0], 1, inside[2])
        passed, failed, skipped = passed + inside[0], failed + inside[1], skipped + inside[2]
        if inside[1]:
            broken.append(name)
    if code and not failed:
        failed, broken = 1, ["the stage itself, exit code %d" % code]
    return passed, failed, skipped, broken


def main(arguments):
    build, all_passed, all_failed = arguments[0], 0, 0
    print("\n%-8s %8s %8s %8s %9s" % ("stage", "passed", "failed", "skipped", "seconds"))
    for argument in arguments[1:]:
        name, code, seconds = argument.split(":")
        passed, failed, skipped, broken = stage(os.path.join(build, name), int(code))
        print("%-8s %8d %8d %8d %9s%s" % (name, passed, failed, skipped, seconds,
                                          "   failed: " + ", ".join(broken) if broken else ""))
        all_passed, all_failed = all_passed + passed, all_failed + failed
    print("\n%d passed, %d failed" % (all_passed, all_failed))
    return 1 if all_failed or not all_passed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
