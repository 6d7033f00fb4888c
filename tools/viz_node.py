#!/usr/bin/env python3
"""Writes the viz node's attributes as C++, from their one definition: the tables at the top of the node plug-in.

    tools/viz_node.py --plugin maya/companion/Vantorelix_plugin.py --source build/viz_node_attributes.cpp
"""

import argparse
import ast
import pathlib
import sys

# The tables, and the numbers that they are written with.
TABLES = ("ARRAYS", "DOUBLES", "SWITCHES", "INTEGERS")


def tables(text, name):
    """The tables of the plug-in, as dictionaries. Only constants of the plug-in are run. ValueError names what is
    missing."""
    wanted, found = set(TABLES), {}
    for statement in ast.parse(text, name).body:
        if isinstance(statement, ast.Assign):
            code = compile(ast.Module([statement], []), name, "exec")
            try:
                exec(code, {"__builtins__": {"range": range}}, found)
            except (NameError, AttributeError):
                continue  # this constant needs Maya, which the tables do not
    missing = sorted(wanted - set(found))
    if missing:
        raise ValueError("%s: the table %s is missing; tools/viz_node.py reads it from there" % (name, ", ".join(missing)))
    return {table: found[table] for table in TABLES}


def cpp(found):
    """The source of the two tables that standalone/host/viz_node.h declares."""
    def literal(value):
        if isinstance(value, bool):
            return "true" if value else "false"
        return repr(value)

    plain = [(name, literal(row[1])) for table in TABLES[1:] for name, row in found[table].items()]
    return "\n".join(
        ["// Made by tools/viz_node.py from the node plug-in.", '#include "standalone/host/viz_node.h"', "",
         "namespace vantorelix::standalone::viz_node {", "",
         "const std::vector<std::string_view>& vector_arrays() {",
         "  static const std::vector<std::string_view> names = {"]
        + ['      "%s",' % name for name in found["ARRAYS"]]
        + ["  };", "  return names;", "}", "", "const std::vector<PlainAttribute>& plain_attributes() {",
           "  static const std::vector<PlainAttribute> attributes = {"]
        + ['      {"%s", %s},' % row for row in plain]
        + ["  };", "  return attributes;", "}", "", "}  // namespace vantorelix::standalone::viz_node", ""])


def main():
    parser = argparse.ArgumentParser(description="Writes the viz node's attributes as C++.")
    parser.add_argument("--plugin", required=True, type=pathlib.Path)
    parser.add_argument("--source", required=True, type=pathlib.Path)
    options = parser.parse_args()
    try:
        text = cpp(tables(options.plugin.read_text(encoding="utf-8"), str(options.plugin)))
    except (OSError, SyntaxError, ValueError) as error:
        print("viz_node: %s" % error, file=sys.stderr)
        return 1
    if not options.source.exists() or options.source.read_text(encoding="utf-8") != text:
        options.source.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
