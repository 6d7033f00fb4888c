"""Vantorelix_engine.pyi, which editors and type checkers read, says what the module has."""

import ast
import os
import unittest

from support import MODULE, EngineTest

STUB = os.path.join(MODULE, "Vantorelix_engine.pyi")
PLAIN = {"str": str, "int": int, "float": float, "bool": bool}


def read_stub():
    with open(STUB, encoding="utf-8") as file:
        return file.read()


def variables(tree):
    """{name: annotation} of what the description says the module holds."""
    return {node.target.id: node.annotation for node in tree.body if isinstance(node, ast.AnnAssign)}


def functions(tree):
    return {node.name: node for node in tree.body if isinstance(node, ast.FunctionDef)}


def of_the_description_only(tree):
    named = {node.name for node in tree.body if isinstance(node, ast.ClassDef)}
    for node in tree.body:
        if isinstance(node, ast.Assign):
            named.update(target.id for target in node.targets if target.id != "__all__")
        elif isinstance(node, ast.ImportFrom):
            named.update(alias.asname or alias.name for alias in node.names)
    return named


def listed(tree):
    """Its own list of the names."""
    return [ast.literal_eval(node.value) for node in tree.body
            if isinstance(node, ast.Assign) and node.targets[0].id == "__all__"]


def text_signature(function):
    """As the module writes it: "(obj, times, sampler=None)"."""
    arguments = function.args
    parts = [argument.arg for argument in arguments.args]
    for i, default in enumerate(reversed(arguments.defaults), 1):
        parts[-i] += "={0!r}".format(ast.literal_eval(default))
    if arguments.vararg:
        parts.append("*" + arguments.vararg.arg)
    return "({0})".format(", ".join(parts))


def all_annotated(function):
    arguments = function.args.args + [function.args.vararg] * bool(function.args.vararg)
    return function.returns is not None and all(argument.annotation for argument in arguments)


def problems(text, engine):
    """What is not so in a description of the module."""
    tree = ast.parse(text)
    described, functions_described = variables(tree), functions(tree)
    found = ["nothing else than imports, types, variables and functions is read here"] * any(
        not isinstance(node, (ast.AnnAssign, ast.Assign, ast.ClassDef, ast.FunctionDef, ast.ImportFrom))
        for node in tree.body)
    names = sorted(described) + sorted(functions_described)
    published = set(engine.__all__)
    if listed(tree) != [engine.__all__]:
        found.append("__all__ is another list")
    found += ["{0} is not described".format(name) for name in sorted(published - set(names))]
    found += ["{0} is not in the module".format(name) for name in names if name not in published]
    found += ["{0} is in the module, too".format(name) for name in sorted(of_the_description_only(tree) & published)]
    for name in sorted(published & set(names)):
        value = getattr(engine, name)
        is_function = callable(value) and value.__module__ == engine.__name__
        if is_function != (name in functions_described):
            found.append("{0} is of another kind".format(name))
        elif name in functions_described:
            function = functions_described[name]
            if text_signature(function) != value.__text_signature__:
                found.append("{0} takes {1}".format(name, value.__text_signature__))
            if not all_annotated(function):
                found.append("{0} lacks a type".format(name))
        else:
            plain = getattr(described[name], "id", None)
            if plain in PLAIN and type(value) is not PLAIN[plain]:
                found.append("{0} is a {1}".format(name, type(value).__name__))
    return found


class Stub(EngineTest):
    def test_it_describes_every_published_name_with_its_signature_and_no_other(self):
        self.assertEqual(problems(read_stub(), self.engine), [])
        self.assertGreater(len(functions(ast.parse(read_stub()))), 60)

    def test_each_slip_in_it_would_be_found(self):
        slips = (("def has_any_trail() -> bool: ...\n", "", "has_any_trail is not described"),
                 ("_GEN: int\n", "", "_GEN is not described"),
                 ("_GEN: int\n", "_GEN: int\n_GENERATION: int\n", "_GENERATION is not in the module"),
                 ("_GEN: int\n", "_GEN: int\ndef made_up() -> None: ...\n", "made_up is not in the module"),
                 ("_GEN: int\n", "_GEN = int\n", "_GEN is not described"),
                 ("_GEN: int\n", "_GEN = int\n", "_GEN is in the module, too"),
                 ("_GEN: int\n", "_GEN: float\n", "_GEN is a int"),
                 ("_GEN: int\n", "def _GEN() -> int: ...\n", "_GEN is of another kind"),
                 ("degree: Any = 3", "degree: Any = 2", "convert_to_nurbs takes (degree=3)"),
                 ("degree: Any = 3", "degree: Any", "convert_to_nurbs takes (degree=3)"),
                 ("degree: Any = 3", "d: Any = 3", "convert_to_nurbs takes (degree=3)"),
                 ("degree: Any = 3", "degree=3", "convert_to_nurbs lacks a type"),
                 ("degree: Any = 3) -> None", "degree: Any = 3)", "convert_to_nurbs lacks a type"),
                 ("name: str, value: Any", "value: Any, name: str", "_opt_set_int takes (name, value)"),
                 ("_on_anim_edit(*args: Any)", "_on_anim_edit()", "_on_anim_edit takes (*args)"),
                 ("_on_anim_edit(*args: Any)", "_on_anim_edit(*args)", "_on_anim_edit lacks a type"),
                 ('"om", ', "", "__all__ is another list"), ('"os", "sys"', '"sys", "os"', "__all__ is another list"),
                 ("_GEN: int\n", "if True:\n    _GEN: int\n", "nothing else than imports, types"))
        right = read_stub()
        for before, after, words in slips:
            self.assertIn(before, right)
            found = problems(right.replace(before, after, 1), self.engine)
            self.assertTrue(any(words in problem for problem in found), (before, after, found))

    def test_state_that_is_none_at_first_is_optional(self):
        for name, annotation in variables(ast.parse(read_stub())).items():
            if getattr(self.engine, name) is None and getattr(annotation, "id", None) != "Any":
                self.assertEqual(annotation.value.id, "Optional", name)

    def test_work_and_items_have_the_fields_that_it_lists(self):
        fields = {node.name: sorted(field.target.id for field in node.body)
                  for node in ast.parse(read_stub()).body if isinstance(node, ast.ClassDef)}
        self.make_trail()
        self.edit()
        self.maya.tick = 0.003
        self.maya.run_deferred()
        work = self.engine._WORK
        self.assertEqual([sorted(work), sorted(work["items"][0]), sorted(work["items"][0]["settings"])],
                         [fields["_Work"], fields["_Item"], fields["_Settings"]])


if __name__ == "__main__":
    unittest.main()
