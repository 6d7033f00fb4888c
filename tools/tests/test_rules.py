"""Each rule is shown to hold its tongue on a sound checkout and to speak on a broken one."""

import os
import subprocess
import sys
import tempfile
import types
import unittest

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
from rules import (formatting, headers, includes, mathematics, python_syntax, reserved_names, sizes, tidy, words)  # noqa: E402

CXX = os.environ.get("CXX", "c++")


class Checkout(unittest.TestCase):
    """A checkout of a few files in a temporary folder."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name

    def write(self, path, text):
        full = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(text)

    def problems(self, rule, **options):
        return rule.problems(self.root, types.SimpleNamespace(compiler=CXX, **options))

    def assert_one(self, problems, place, advice):
        self.assertEqual(len(problems), 1, problems)
        self.assertTrue(problems[0].startswith(place), problems[0])
        self.assertIn(advice, problems[0])


class Includes(Checkout):
    def test_arrows_of_the_layout_are_allowed(self):
        self.write("host/value.h", "#include <string>\n")
        self.write("engine/a.cpp", '#include "engine/a.h"\n#include "host/value.h"\n#include <cmath>\n')
        self.write("engine/a_test.cpp", '#include "tests/support/host.h"\n#include <gtest/gtest.h>\n')
        self.write("engine/a_test_scene.h", "#include <gtest/gtest.h>\n")
        self.write("standalone/b.cpp", '#include <nlohmann/json.hpp>\n#include "host/value.h"\n')
        self.write("cli/c.cpp", '#include "engine/a.h"\n#include "standalone/b.h"\n#include <CLI/CLI.hpp>\n')
        self.assertEqual(self.problems(includes), [])

    def test_engine_may_not_include_the_standalone_host(self):
        self.write("engine/a.cpp", '\n#include "standalone/host/host.h"\n')
        self.assert_one(self.problems(includes), "engine/a.cpp:2:", "include only from base, engine, host")

    def test_host_may_not_include_the_engine(self):
        self.write("host/a.h", '#include "engine/a.h"\n')
        self.assert_one(self.problems(includes), "host/a.h:1:", "include only from base, host")

    def test_standalone_and_engine_do_not_know_each_other(self):
        self.write("standalone/a.cpp", '#include "engine/a.h"\n')
        self.assert_one(self.problems(includes), "standalone/a.cpp:1:", "include only from base, host, standalone")

    def test_engine_code_may_not_include_test_support(self):
        self.write("engine/a.cpp", '#include "tests/support/host.h"\n')
        self.assert_one(self.problems(includes), "engine/a.cpp:1:", "may not include tests/")

    def test_third_party_headers_stay_out_of_the_engine(self):
        self.write("engine/a.cpp", "#include <nlohmann/json.hpp>\n")
        self.assert_one(self.problems(includes), "engine/a.cpp:1:", "wrap what you need")

    def test_third_party_headers_stay_out_of_headers(self):
        self.write("standalone/a.h", "#include <nlohmann/json.hpp>\n")
        self.assert_one(self.problems(includes), "standalone/a.h:1:", "include it in the .cpp")

    def test_python_stays_in_the_python_module(self):
        self.write("standalone/a.cpp", "#include <Python.h>\n")
        self.assert_one(self.problems(includes), "standalone/a.cpp:1:", "wrap what you need in bench or maya/extension")

    def test_two_folders_that_include_each_other_are_named_however_long_the_way(self):
        self.write("engine/colour/a.h", '#include "engine/sampling/a.h"\n')
        self.write("engine/sampling/a.h", "")
        self.assertEqual(self.problems(includes), [])
        self.write("engine/sampling/a.cpp", '#include "engine/state/a.h"\n')
        self.write("engine/state/a.h", '\n#include "engine/colour/a.h"\n')
        problems = self.problems(includes)
        self.assertEqual(len(problems), 3, problems)
        self.assertIn("engine/state/a.h:2: engine/state/ and engine/colour/ are in a circle, engine/state -> engine/colour"
                      " -> engine/sampling -> engine/state", problems[2])

    def test_two_folders_of_the_page_that_import_each_other_are_named(self):
        self.write("viewer/src/model/a.ts", 'import {\n  b,\n} from "../source/b";\nimport { c } from "./c";\nimport "three";\n')
        self.write("viewer/src/main.ts", 'import { a } from "./model/a";\n')
        self.write("viewer/src/source/b.ts", "export const b = 1;\n")
        self.assertEqual(self.problems(includes), [])
        self.write("viewer/src/source/b.ts", '\nimport type { D } from "../view/d";\n')
        self.write("viewer/src/view/d.ts", 'export * from "../model/a";\n')
        problems = self.problems(includes)
        self.assertEqual(len(problems), 3, problems)
        self.assertTrue(problems[1].startswith("viewer/src/source/b.ts:2: "), problems[1])
        self.assertIn("viewer/src/source -> viewer/src/view -> viewer/src/model -> viewer/src/source", problems[1])
        self.assertTrue(problems[0].startswith("viewer/src/model/a.ts:3: "), problems[0])

    def test_a_test_may_look_at_what_stands_above_it(self):
        self.write("engine/colour/a.h", '#include "engine/sampling/a.h"\n')
        self.write("engine/sampling/a_test.cpp", '#include "engine/colour/a.h"\n')
        self.assertEqual(self.problems(includes), [])

    def test_a_header_that_keeps_to_its_folder_is_not_included_from_elsewhere(self):
        self.write("standalone/scene/graph/a.h", "// Nodes. For the files of this folder only.\n")
        self.write("standalone/scene/graph/a.cpp", '#include "standalone/scene/graph/a.h"\n')
        self.assertEqual(self.problems(includes), [])
        self.write("standalone/scene/b.cpp", '#include "standalone/scene/graph/a.h"\n')
        self.assert_one(self.problems(includes), "standalone/scene/b.cpp:1:", "for the files of standalone/scene/graph/ only")

    def test_a_header_may_keep_to_a_folder_above_its_own(self):
        self.write("standalone/scene/graph/a.h", "// For the files of standalone/scene only.\n")
        self.write("standalone/scene/b.cpp", '#include "standalone/scene/graph/a.h"\n')
        self.assertEqual(self.problems(includes), [])
        self.write("standalone/host/c.cpp", '#include "standalone/scene/graph/a.h"\n')
        self.assert_one(self.problems(includes), "standalone/host/c.cpp:1:", "for the files of standalone/scene/ only")

    def test_the_two_halves_of_maya_do_not_know_each_other(self):
        self.write("maya/extension/a.cpp", '#include "maya/standalone/a.h"\n')
        self.assert_one(self.problems(includes), "maya/extension/a.cpp:1:", "maya/extension/ may not include maya/standalone/")
        self.write("maya/extension/a.cpp", "#include <Python.h>\n")
        self.assertEqual(self.problems(includes), [])

    def test_base_includes_nothing_of_ours(self):
        self.write("base/a.h", '#include "host/value.h"\n')
        self.assert_one(self.problems(includes), "base/a.h:1:", "include only from base")

    def test_an_unknown_header_and_a_relative_path_are_named(self):
        self.write("engine/a.cpp", "#include <math.h>\n")
        self.assert_one(self.problems(includes), "engine/a.cpp:1:", "not a standard C++ header")
        self.write("engine/a.cpp", '#include "a.h"\n')
        self.assert_one(self.problems(includes), "engine/a.cpp:1:", "write the full path")


class Headers(Checkout):
    def test_a_header_with_all_its_includes_compiles_alone(self):
        self.write("host/a.h", "#pragma once\n#include <string>\nstruct A { std::string s; };\n")
        self.write("engine/b.h", '#pragma once\n#include "host/a.h"\nstruct B { A a; };\n')
        self.assertEqual(self.problems(headers), [])

    def test_a_header_that_leans_on_its_includer_is_named(self):
        self.write("host/a.h", "#pragma once\nstruct A { std::string s; };\n")
        self.assert_one(self.problems(headers), "host/a.h:1:", "include what it uses")

    def test_a_header_that_leans_on_another_is_named_although_a_source_includes_it(self):
        self.write("host/a.h", "#pragma once\nstruct A { std::string s; };\n")
        for path, text in (("host/a.cpp", '#include <string>\n#include "host/a.h"\n'),
                           ("host/b.cpp", 'using Int = int;\n#include "host/a.h"\n'),
                           ("host/a_test.cpp", '#include "host/a.h"\n'), ("tests/fuzz/a_fuzz.cpp", '#include "host/a.h"\n')):
            self.write(path, text)
            self.assert_one(self.problems(headers), "host/a.h:1:", "include what it uses")

    def test_a_header_that_a_source_begins_with_is_left_to_the_build(self):
        self.write("host/a.h", "#pragma once\nstruct A { std::string s; };\n")
        self.write("host/a.cpp", '// What it is.\n\n#include "host/a.h"\n')
        self.assertEqual(self.problems(headers), [])

    def test_a_header_without_a_guard_is_named(self):
        for text in ("struct A {};\n", "#include <string>\n#pragma once\n"):
            self.write("host/a.h", text)
            self.assert_one(self.problems(headers), "host/a.h:1:", "#pragma once")


class ReservedNames(Checkout):
    def test_names_that_no_standard_header_takes_pass(self):
        self.write("engine/a.h", "#include <string>\nextern int _REGISTRY;  // _GLIBCXX_IN_A_COMMENT\n")
        self.assertEqual(self.problems(reserved_names), [])

    def test_a_name_that_is_a_macro_of_a_used_header_is_named(self):
        self.write("engine/a.h", "extern int _TAKEN;\n")
        self.write("engine/a.cpp", "#include <cassert>\n")
        # A standard header of the test's own, which the include path finds before the real one.
        self.write("cassert", "#define _TAKEN 1\n")
        self.assert_one(self.problems(reserved_names), "engine:1:", "_TAKEN is a macro")

    def test_a_checkout_without_such_names_means_that_the_search_is_broken(self):
        self.write("engine/a.h", "extern int registry;\n")
        self.assert_one(self.problems(reserved_names), "engine:1:", "mend the pattern")


class Formatting(Checkout):
    def setUp(self):
        super().setUp()
        self.write(".clang-format", "BasedOnStyle: Google\n")

    def test_formatted_code_passes(self):
        self.write("engine/a.cpp", "int f() { return 1; }\n")
        self.assertEqual(self.problems(formatting), [])

    def test_unformatted_code_is_named(self):
        self.write("engine/a.cpp", "int  f( ){return 1 ;}\n")
        self.assert_one(self.problems(formatting), "engine/a.cpp:1:", "./dev format")


class Tidy(Checkout):
    def setUp(self):
        super().setUp()
        self.write(".clang-tidy", "Checks: '-*,bugprone-*'\n")
        self.write("engine/sound.cpp", "int sound() { return 1; }\n")
        self.write("engine/broken.cpp", "int broken(int a) {\n  if (a);\n  return 2;\n}\n")
        commands = ['{"directory": "%s", "command": "c++ -c %s", "file": "%s"}' % (self.root, p, p)
                    for p in ("engine/sound.cpp", "engine/broken.cpp")]
        self.write("build/compile_commands.json", "[%s]" % ",".join(commands))

    def tidy(self, **options):
        return self.problems(tidy, build=os.path.join(self.root, "build"), **options)

    def git(self, *arguments):
        subprocess.run(("git", "-c", "user.name=a", "-c", "user.email=a@b.c") + arguments, cwd=self.root, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def test_a_broken_file_is_named_and_a_sound_one_is_not(self):
        self.assert_one(self.tidy(all=True), "engine/broken.cpp:1:", "bugprone-suspicious-semicolon")

    def test_without_an_upstream_every_file_counts_as_changed(self):
        self.git("init", "-q")
        self.assert_one(self.tidy(all=False), "engine/broken.cpp:1:", "bugprone-suspicious-semicolon")

    def test_only_files_that_differ_from_upstream_are_looked_at(self):
        self.git("init", "-q")
        self.git("add", ".")
        self.git("commit", "-q", "-m", "one")
        self.git("update-ref", "refs/remotes/origin/main", "HEAD")
        self.write("engine/sound.cpp", "int sound() { return 3; }\n")
        self.git("commit", "-q", "-a", "-m", "two")
        self.assertEqual(self.tidy(all=False), [])
        self.write("engine/broken.cpp", "int broken(int a) {\n  if (a);\n  return 4;\n}\n")
        self.assertEqual(len(self.tidy(all=False)), 1)

    def test_a_changed_header_is_looked_at_through_a_source(self):
        self.write("engine/broken.h", "#pragma once\n")
        self.assertEqual(tidy.sources(self.root, {"engine/broken.h"}), ["engine/broken.cpp"])

    def test_a_missing_compilation_database_is_a_problem(self):
        os.remove(os.path.join(self.root, "build/compile_commands.json"))
        self.assertIn("configure it first", self.tidy(all=True)[0])


class Words(Checkout):
    def test_paths_of_one_machine_are_named(self):
        for text in ("/home/ann/scene.ma", "/root/x", "/work/x", "/tmp/x", "/var/tmp/x"):
            self.write("docs/a.md", "see %s\n" % text)
            self.assert_one(self.problems(words), "docs/a.md:1:", "root of the checkout")

    def test_registry_hosts_are_named(self):
        self.write("dev", "pip install --index-url x\n")
        self.assert_one(self.problems(words), "dev:1:", "package manager")

    def test_the_page_and_its_lock_file_are_looked_at_and_what_npm_installs_is_not(self):
        self.write("viewer/node_modules/a/b.json", "/root/x\n")
        self.assertEqual(self.problems(words), [])
        for name in ("src/a.ts", "index.html", "src/a.css"):
            self.write("viewer/" + name, "/root/x\n")
            self.assert_one(self.problems(words), "viewer/%s:1:" % name, "root of the checkout")
            os.remove(os.path.join(self.root, "viewer", name))
        self.write("viewer/package-lock.json", '"resolved": "https://registry.npmjs.org/a"\n')
        self.assert_one(self.problems(words), "viewer/package-lock.json:1:", "package manager")

    def test_paths_inside_the_checkout_and_marked_lines_pass(self):
        self.write("docs/a.md", "see engine/work/x and tests/root/y\n/home/ann/ any-machine: an example path\n")
        self.assertEqual(self.problems(words), [])


class Mathematics(Checkout):
    def test_functions_of_the_c_library_are_named_where_positions_are_made(self):
        for call in ("std::sin(x)", "1 + atan2(y, x)", "std::hypot(x, y, z)", "std::pow(x, 2)", "cosf(x)"):
            self.write("standalone/scene/a.cpp", "\ndouble f() { return %s; }\n" % call)
            self.assert_one(self.problems(mathematics), "standalone/scene/a.cpp:2:", "base/mathematics/mathematics.h")

    def test_our_own_and_exact_functions_tests_and_pictures_pass(self):
        self.write("standalone/a.cpp", "double f() { return base::sin(x) + std::sqrt(t.sin(x)) + std::abs(x); }  // sin(x)\n")
        self.write("standalone/a_test.cpp", "double f() { return std::sin(x); }\n")
        self.write("base/mathematics/mathematics.cpp", "double sin(double x) { return x; }\n")
        self.write("cli/output/a.cpp", "double f() { return std::pow(10.0, 3); }\n")
        self.assertEqual(self.problems(mathematics), [])


class Sizes(Checkout):
    def function(self, lines, comment=""):
        return "%sint f(int a,\n      int b) {\n%s}\n" % (comment, "  a += b;\n" * (lines - 3))

    def test_a_function_of_the_limit_passes_and_one_line_more_does_not(self):
        self.write("engine/a.cpp", self.function(60))
        self.assertEqual(self.problems(sizes), [])
        self.write("engine/a.cpp", self.function(61))
        self.assert_one(self.problems(sizes), "engine/a.cpp:1:", "a function of 61 lines")

    def test_a_method_and_a_test_are_functions_too(self):
        self.write("engine/a.h", "class A {\n  int f() {\n%s  }\n};\n" % ("    g();\n" * 60))
        self.write("engine/a_test.cpp", "TEST(A, B) {\n%s}\n" % ("  g();\n" * 60))
        self.assertEqual(len(self.problems(sizes)), 2)

    def test_typescript_keeps_the_same_sizes_and_a_group_of_tests_is_no_function(self):
        self.write("viewer/a.test.ts", 'describe("a", () => {\n%s});\n' % ("  f();\n" * 60))
        self.write("viewer/b.ts", "class A {\n  b(): void {\n%s  }\n}\n" % ("    f();\n" * 58))
        self.assertEqual(self.problems(sizes), [])
        self.write("viewer/a.ts", "export function a(): void {\n%s}\n" % ("  f();\n" * 59))
        self.assert_one(self.problems(sizes), "viewer/a.ts:1:", "a function of 61 lines")
        self.write("viewer/a.ts", "f();\n" * 451)
        self.assert_one(self.problems(sizes), "viewer/a.ts:1:", "451 lines")

    def test_a_written_reason_allows_a_long_function(self):
        self.write("engine/a.cpp", self.function(61, "// Long because it is one table.\n"))
        self.assertEqual(self.problems(sizes), [])

    def test_a_namespace_is_no_function(self):
        self.write("engine/a.cpp", "namespace n {\n%s}\n" % ("int f(int);\n" * 100))
        self.assertEqual(self.problems(sizes), [])

    def test_a_folder_holds_as_many_files_as_the_limit_and_its_tests_do_not_count(self):
        for number in range(24):
            self.write("engine/a/%d.cpp" % number, "")
        self.write("engine/a/0_test.cpp", "")
        self.write("engine/a/below/b.cpp", "")
        self.assertEqual(self.problems(sizes), [])
        self.write("engine/a/a.h", "")
        self.assert_one(self.problems(sizes), "engine/a:1:", "25 files")

    def test_a_long_file_needs_a_reason(self):
        self.write("engine/a.cpp", "int a;\n" * 451)
        self.assert_one(self.problems(sizes), "engine/a.cpp:1:", "451 lines")
        self.write("engine/a.cpp", "// Long because it is one table.\n" + "int a;\n" * 450)
        self.assertEqual(self.problems(sizes), [])


class PythonSyntax(Checkout):
    def test_syntax_newer_than_3_7_is_named(self):
        self.write("tools/a.py", "x = 1\nif (y := x):\n    pass\n")
        self.assert_one(self.problems(python_syntax), "tools/a.py:2:", "older way")

    def test_syntax_of_3_7_passes(self):
        self.write("tools/a.py", "x = f'{1}'\n")
        self.assertEqual(self.problems(python_syntax), [])


if __name__ == "__main__":
    unittest.main()
