#!/usr/bin/env python3
"""Checks the house rules: tools/check.py [RULE...]. Exit code 1 when one is broken."""

import argparse
import os
import sys

from rules import formatting, headers, includes, mathematics, maya_names, python_syntax, reserved_names, sizes, tidy, words

RULES = {
    "includes": includes,
    "headers": headers,
    "reserved_names": reserved_names,
    "formatting": formatting,
    "tidy": tidy,
    "words": words,
    "mathematics": mathematics,
    "sizes": sizes,
    "python_syntax": python_syntax,
    "maya_names": maya_names,
}


def main(arguments):
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("rules", nargs="*", metavar="RULE", help="any of: %s (default: all)" % ", ".join(RULES))
    parser.add_argument("--root", default=root, help="the checkout to check")
    parser.add_argument("--compiler", default=os.environ.get("CXX", "c++"))
    parser.add_argument("--build", default=os.path.join(root, "build", "lint"), help="the folder of compile_commands.json")
    parser.add_argument("--all", action="store_true", help="clang-tidy over every file, not only those that changed")
    options = parser.parse_args(arguments)
    unknown = set(options.rules) - set(RULES)
    if unknown:
        parser.error("there is no rule %s; the rules are %s" % (", ".join(sorted(unknown)), ", ".join(RULES)))

    broken = 0
    for name in options.rules or RULES:
        problems = RULES[name].problems(options.root, options)
        print("%-15s %s" % (name, "%d problems" % len(problems) if problems else "ok"), flush=True)
        for problem in problems:
            print("  " + problem)
        broken += bool(problems)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
