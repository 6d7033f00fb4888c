"""The check of Maya's names is shown to speak on each kind of wrong name, against small descriptions of its own."""

import os
import sys
import tempfile
import unittest
from unittest import mock

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
from rules import maya_names, maya_stubs  # noqa: E402
from rules.maya_stubs import Stubs  # noqa: E402

COMMANDS = """
from typing import Any

def select(*args: Any, clear: bool = ..., replace: bool = ...) -> None: ...
@overload
def ls(
    *,
    selection: bool = ...,
    sl: bool = ...,
) -> List[
    str
]: ...
@overload
def ls(*, type: str = ...) -> List[str]:
    'Lists.'
"""
OBJECTS = """
class MPxNode:
    kLocatorNode: int = 1
    def thisMObject(self): ...
class MTime:
    def asUnits(self, unit: int) -> float: ...
MPoint: Incomplete
"""
WINDOWS = """
class MPxLocatorNode(maya.api.OpenMaya.MPxNode):
    def isBounded(self): ...
"""


class Names(unittest.TestCase):
    def setUp(self):
        self.stubs = {"one": Stubs(COMMANDS, {"om": OBJECTS, "omui": WINDOWS})}

    def check(self, found, trusted=None):
        return maya_names.check(found, self.stubs, {"one": {"a reason": trusted or ()}})

    def check_python(self, text, trusted=None):
        lines = maya_names.uses_in_python("import maya.cmds as cmds\nimport maya.api.OpenMaya as om\n"
                                          "import maya.api.OpenMayaUI as omui\n" + text, "a.py")
        return self.check({use: "a.py:%d" % line for use, line in lines.items()}, trusted)

    def check_cpp(self, text, trusted=None):
        return self.check({use: "a.cpp:%d" % line for use, line in maya_names.uses_in_cpp(text).items()}, trusted)

    def assert_one(self, wrong, beginning):
        self.assertEqual(len(wrong), 1, wrong)
        self.assertTrue(wrong[0].startswith(beginning), wrong[0])


class InPython(Names):
    def test_known_names_pass(self):
        self.assertEqual(self.check_python(
            "cmds.ls(sl=True, type='a')\ncmds.select(clear=True)\nt = om.MTime(1)\nt.asUnits(unit=om.MPxNode.kLocatorNode)\n"
            "class A(omui.MPxLocatorNode):\n    def isBounded(self):\n        return self.thisMObject()\n"), [])

    def test_an_unknown_command_is_named_with_its_line(self):
        self.assert_one(self.check_python("cmds.lss()\n"), "a.py:4: cmds.lss is not known to one")

    def test_an_unknown_keyword_is_named(self):
        self.assert_one(self.check_python("cmds.ls(long=True)\n"), "a.py:4: cmds.ls(long=) is not known")
        self.assert_one(self.check_python("om.MTime(1).asUnits(units=1)\n"), "a.py:4: ?.asUnits(units=) is not known")

    def test_keywords_in_a_dictionary_are_looked_at(self):
        self.assert_one(self.check_python("flags = {'clear': True}\nflags['clearr'] = 1\ncmds.select(**flags)\n"),
                        "a.py:6: cmds.select(clearr=)")

    def test_keywords_that_cannot_be_seen_are_named(self):
        self.assert_one(self.check_python("cmds.select(**flags())\n"), "a.py:4: cmds.select(**=)")

    def test_a_function_called_under_another_name_is_looked_at(self):
        with mock.patch.dict(maya_names.CALLED_AS, {("a.py", "make"): ("cmds.select",)}):
            self.assert_one(self.check_python("make = cmds.select\nmake(long=True)\n"), "a.py:5: cmds.select(long=)")

    def test_an_unknown_class_member_or_method_is_named(self):
        self.assert_one(self.check_python("om.MTimer()\n"), "a.py:4: om.MTimer is not known")
        self.assert_one(self.check_python("om.MPxNode.kLocator\n"), "a.py:4: om.MPxNode.kLocator is not known")
        self.assert_one(self.check_python("om.MTime().inUnits()\n"), "a.py:4: ?.inUnits is not known")

    def test_a_redefined_method_that_the_base_does_not_have_is_named(self):
        self.assert_one(self.check_python("class A(omui.MPxLocatorNode):\n    def isBound(self):\n        pass\n"),
                        "a.py:5: omui.MPxLocatorNode.isBound is not known")

    def test_what_a_class_has_from_a_base_in_another_module_is_known(self):
        self.assertEqual(self.check_python("omui.MPxLocatorNode.kLocatorNode\n"), [])

    def test_a_class_that_is_only_named_has_no_members(self):
        self.assertEqual(self.check_python("om.MPoint()\n"), [])
        self.assert_one(self.check_python("om.MPoint.kTolerance\n"), "a.py:4: om.MPoint.kTolerance")


class InCpp(Names):
    def test_known_names_pass(self):
        self.assertEqual(self.check_cpp('command<"ls", "sl">(true); construct<"MTime">(); method<"asUnits">(t);\n'
                                        'static_call<"om", "MPxNode", "thisMObject">(); attribute(a.get(), name<"asUnits">());'
                                        'global_attribute<"cmds", "select">(); global_attribute<"os", "environ">();'), [])

    def test_each_form_names_what_is_unknown(self):
        for text, wrong in (('command<"lss">()', "cmds.lss"), ('command<"ls", "sl",\n "long">(x)', "cmds.ls(long=)"),
                            ('construct<"MTimer">()', "om.MTimer"), ('om_class<"MTimer">()', "om.MTimer"),
                            ('method<"inUnits">(t)', "?.inUnits"), ('Method<"inUnits"> m(t)', "?.inUnits"),
                            ('attribute(a.get(), name<"inUnits">())', "?.inUnits"),
                            ('static_call<"om", "MTime", "now">()', "om.MTime.now"),
                            ('register_callback<"om", "MTime", "now">(f)', "om.MTime.now"),
                            ('global_attribute<"cmds", "lss">()', "cmds.lss")):
            self.assert_one(self.check_cpp("\n" + text), "a.cpp:2: %s is not known" % wrong)

    def test_methods_of_texts_need_not_be_known(self):
        self.assertEqual(self.check_cpp('method<"lower">(method<"strip">(x).get());'), [])

    def test_flags_that_come_as_values_are_found(self):
        self.assertEqual(set(maya_names.uses_in_cpp('model_editor(panel, "q", flag)\n_VIEWPORT_TRAIL_FLAGS = {"x"};')),
                         {("cmds.modelEditor", "q"), ("cmds.modelEditor", "x")})


class Trust(Names):
    def test_what_is_trusted_needs_not_be_known(self):
        self.assertEqual(self.check_python("cmds.lss()\n", ["cmds.lss"]), [])

    def test_trust_in_what_is_known_is_a_problem(self):
        self.assert_one(self.check_python("cmds.ls(sl=True)\n", ["cmds.ls(sl=)"]),
                        "tools/rules/maya_names.py:1: cmds.ls(sl=) is known to one")

    def test_trust_in_what_is_not_used_is_a_problem(self):
        self.assert_one(self.check_python("cmds.ls()\n", ["cmds.lss"]), "tools/rules/maya_names.py:1: cmds.lss is not used")

    def test_each_description_is_asked(self):
        self.stubs["other"] = Stubs("def select(*, clear: bool = ...) -> None: ...\n", {})
        self.assert_one(self.check_python("cmds.select(replace=True)\n"), "a.py:4: cmds.select(replace=) is not known to other")

    def test_a_short_flag_is_known_by_its_long_name(self):
        self.stubs["other"] = Stubs("def ls(*, selection: bool = ...) -> None: ...\n", {})
        self.assertEqual(self.check_python("cmds.ls(sl=True)\n"), [])


class Whole(unittest.TestCase):
    def test_a_checkout_without_such_names_means_that_the_search_is_broken(self):
        with tempfile.TemporaryDirectory() as root:
            self.assertIn("mend the patterns", maya_names.problems(root)[0])

    def test_descriptions_that_cannot_be_fetched_are_a_problem(self):
        root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
        with mock.patch.object(maya_stubs, "fetch", side_effect=maya_names.Failure("could not be fetched: why")):
            wrong = maya_names.problems(root)
        self.assertEqual(len(wrong), 1)
        self.assertIn("could not be fetched: why", wrong[0])


if __name__ == "__main__":
    unittest.main()
