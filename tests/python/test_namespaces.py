"""Namespaces: the commands of the package `maya`."""

import unittest

from namespace_case import NamespaceTest


class NewNodes(NamespaceTest):
    def test_a_namespace_in_the_name_is_made_with_those_above_it(self):
        self.assertEqual(self.cmds.createNode("transform", name="a:b:x"), "a:b:x")
        self.assertEqual(self.all_namespaces(), ["a", "a:b"])

    def test_a_plain_name_is_in_the_current_namespace_and_a_colon_in_front_means_the_root(self):
        self.make("rig")
        self.cmds.namespace(set=":rig")
        for name, made in (("x", "rig:x"), (":x", "x"), ("a:x", "a:x"), (":a:y", "a:y")):
            self.assertEqual(self.cmds.createNode("transform", name=name), made)
        self.assertEqual(self.cmds.createNode("joint"), "rig:joint1")
        self.assertEqual(self.cmds.group(empty=True, name="g"), "rig:g")
        self.assertEqual(self.cmds.curve(degree=1, point=[(0, 0, 0), (1, 0, 0)], name="c"), "rig:c")
        self.assertEqual(self.cmds.listRelatives("rig:c", shapes=True), ["rig:curveShape1"])

    def test_what_is_made_above_a_shape_is_in_the_current_namespace(self):
        for current, above in ((":", "vantorelix1"), ("rig", "rig:vantorelix1")):
            self.host.restart()
            self.make("rig")
            self.cmds.namespace(set=current)
            shape = self.cmds.createNode("vantorelix", name="vlx_char:ctrl_vizShape")
            self.assertEqual(self.cmds.listRelatives(shape, parent=True, fullPath=True), ["|" + above])
            self.assertEqual(self.all_namespaces(), ["rig", "vlx_char"])

    def test_nodes_of_a_file_bring_their_namespaces_and_a_new_scene_has_none(self):
        self.make("before")
        self.cmds.namespace(set="before")
        self.open_arms("a:b", "c")
        self.assertEqual((self.all_namespaces(), self.current()), (["a", "a:b", "c"], ":"))
        self.cmds.file(newFile=True, force=True)
        self.assertEqual(self.all_namespaces(), [])

    def test_names_are_looked_up_from_the_root(self):
        self.cmds.createNode("transform", name="rig:x")
        for current in (":", "rig"):
            self.cmds.namespace(set=":" + current)
            for name in ("rig:x", ":rig:x", "|rig:x"):
                self.assertTrue(self.cmds.objExists(name))
                self.assertEqual(self.cmds.ls(name), ["rig:x"])
            self.assertFalse(self.cmds.objExists("x") or self.cmds.objExists(":x"))


class Rename(NamespaceTest):
    WARNING = "Warning: Removing invalid characters from name\n"

    def rename(self, current, old, new):
        self.cmds.namespace(set=current)
        self.shown.seek(0)
        self.shown.truncate()
        name = self.cmds.rename(old, new)
        return name, self.shown.getvalue()

    def test_a_namespace_below_the_current_one_counts_and_another_is_dropped(self):
        self.make("nsA", "nsB")
        self.cmds.createNode("transform", name="nsA:sphere2")
        self.assertEqual(self.rename(":", "nsA:sphere2", "nsB:sphere2"), ("nsB:sphere2", ""))
        self.assertEqual(self.rename(":nsA", "nsB:sphere2", "nsB:sphere3"), ("nsA:sphere3", self.WARNING))
        self.assertEqual(self.rename(":nsB", "nsA:sphere3", ":nsC:sphere4"), ("nsC:sphere4", ""))
        self.assertEqual(self.all_namespaces(), ["nsA", "nsB", "nsC"])

    def test_by_the_other_reading_a_namespace_counts_after_a_colon_alone(self):
        self.make("nsA", "nsB")
        self.cmds.createNode("transform", name="nsA:sphere2")
        self.host.rename_looks_up_namespaces = False
        self.assertEqual(self.rename(":", "nsA:sphere2", "nsB:sphere2"), ("sphere2", ""))
        self.assertEqual(self.rename(":nsA", "sphere2", "nsB:sphere3"), ("nsA:sphere3", ""))
        self.assertEqual(self.rename(":nsB", "nsA:sphere3", ":nsC:sphere4"), ("nsC:sphere4", ""))
        self.host.restart()
        self.assertTrue(self.host.rename_looks_up_namespaces)

    def test_a_plain_name_leads_into_the_current_namespace(self):
        self.make("nsA")
        self.cmds.createNode("transform", name="x")
        self.assertEqual(self.rename(":nsA", "x", "y"), ("nsA:y", ""))
        self.assertEqual(self.rename(":nsA", "nsA:y", ":y"), ("y", ""))

    def test_a_name_that_is_a_namespace_alone_is_refused(self):
        self.make("a")
        self.cmds.createNode("transform", name="x")
        for name in ("", ":", "a:"):
            self.raises(RuntimeError, "New name has no legal characters.", self.cmds.rename, "x", name)


class Commands(NamespaceTest):
    def test_a_namespace_is_made_below_the_current_one_or_below_that_given(self):
        self.assertEqual(self.cmds.namespace(add="a"), "a")
        self.cmds.namespace(set="a")
        self.assertEqual(self.cmds.namespace(add="b"), "a:b")
        self.assertEqual(self.cmds.namespace(add=":c"), "c")
        self.assertEqual(self.cmds.namespace(add="d", parent=":c"), "c:d")
        self.assertEqual(self.all_namespaces(), ["a", "a:b", "c", "c:d"])
        self.raises(RuntimeError, "The namespace 'b' already exists.", self.cmds.namespace, add="b")

    def test_existence_is_asked_relative_to_the_current_one(self):
        self.make("a:b")
        asked = ("a", "b", ":a", ":b", "a:b", ":a:b", ":")
        self.assertEqual([self.cmds.namespace(exists=name) for name in asked], [True, False, True, False, True, True, True])
        self.cmds.namespace(set="a")
        self.assertEqual([self.cmds.namespace(exists=name) for name in asked],
                         [False, True, True, False, False, True, True])

    def test_the_current_one_is_told_and_set(self):
        self.make("a:b")
        self.assertEqual(self.current(), ":")
        self.cmds.namespace(set="a")
        self.cmds.namespace(set="b")
        self.assertEqual(self.current(), "a:b")
        self.assertEqual(self.cmds.namespaceInfo(currentNamespace=True, absoluteName=True), ":a:b")
        self.assertEqual(self.cmds.namespaceInfo(parent=True), "a")
        self.raises(RuntimeError, "No namespace matches name: 'nobody'.", self.cmds.namespace, set="nobody")
        self.cmds.namespace(set=":")
        self.assertEqual(self.current(), ":")

    def test_the_current_and_a_full_one_cannot_be_removed(self):
        self.make("a:b", "c")
        self.cmds.createNode("transform", name="c:x")
        self.cmds.namespace(set=":a:b")
        for name, text in ((":a", "not empty"), (":a:b", "current"), (":c", "not empty"), (":d", "No namespace")):
            self.raises(RuntimeError, text, self.cmds.namespace, removeNamespace=name)
        self.cmds.namespace(set=":")
        self.cmds.namespace(removeNamespace="a:b")
        self.assertEqual(self.all_namespaces(), ["a", "c"])

    def test_what_is_in_one_can_be_removed_with_it(self):
        self.make("other")
        for name in ("a:x", "a:b:y", "a:b:c:z", "keep"):
            self.cmds.createNode("transform", name=name)
        self.cmds.namespace(removeNamespace="a", deleteNamespaceContent=True)
        self.assertEqual((self.all_namespaces(), self.cmds.ls()), (["other"], ["keep"]))

    def test_what_is_in_one_is_listed(self):
        for name in ("x", "a:x", "a:b:y"):
            self.cmds.createNode("transform", name=name)
        info = self.cmds.namespaceInfo
        self.assertEqual(info("a", listNamespace=True), ["a:x", "a:b"])
        self.assertEqual(info("a", listNamespace=True, recurse=True), ["a:x", "a:b:y", "a:b"])
        self.assertEqual(info("a", listOnlyDependencyNodes=True, absoluteName=True), [":a:x"])
        self.assertEqual(info(listOnlyNamespaces=True), ["a"])
        self.assertIsNone(info("a:b", listOnlyNamespaces=True))
        self.cmds.namespace(set="a")
        self.assertEqual(info("b", listNamespace=True), ["a:b:y"])
        self.assertEqual(info(listOnlyDependencyNodes=True), ["a:x"])

    def test_what_is_not_covered_says_so(self):
        self.raises(RuntimeError, "not covered", self.cmds.namespace)
        self.raises(TypeError, "not covered", self.cmds.namespace, relativeNames=True)


if __name__ == "__main__":
    unittest.main()
