"""The undo queue of the package `maya`, and that the package survives what callbacks and threads do."""

import threading
import unittest

from companion import HostTest


class UndoTest(HostTest):
    def count(self):
        return self.cmds.undoInfo(query=True)

    def asked(self, name):
        return self.cmds.undoInfo(query=True, **{name: True})


class Entries(UndoTest):
    def test_each_command_that_changes_the_scene_is_one(self):
        commands = (
            ("createNode", lambda: self.cmds.createNode("transform", name="ball")),
            ("createNode", lambda: self.cmds.createNode("transform", name="box")),
            ("group", lambda: self.cmds.group(empty=True, name="both")),
            ("parent", lambda: self.cmds.parent("ball", "both")),
            ("rename", lambda: self.cmds.rename("box", "cube")),
            ("setAttr", lambda: self.cmds.setAttr("ball.tx", 4)),
            ("addAttr", lambda: self.cmds.addAttr("ball", ln="weight", at="double")),
            ("setKeyframe", lambda: self.cmds.setKeyframe("ball", at="ty", t=1, v=2)),
            ("setKeyframe", lambda: self.cmds.setKeyframe("ball", at="ty", t=5, v=3)),
            ("keyframe", lambda: self.cmds.keyframe("ball", edit=True, time=5, valueChange=4)),
            ("keyTangent", lambda: self.cmds.keyTangent("ball", edit=True, itt="linear")),
            ("setInfinity", lambda: self.cmds.setInfinity("ball", poi="cycle")),
            ("cutKey", lambda: self.cmds.cutKey("ball", t=5)),
            ("connectAttr", lambda: self.cmds.connectAttr("ball_translateY.output", "cube.tx")),
            ("disconnectAttr", lambda: self.cmds.disconnectAttr("ball_translateY.output", "cube.tx")),
            ("curve", lambda: self.cmds.curve(d=1, p=[(0, 0, 0), (1, 1, 1)], name="path")),
            ("lockNode", lambda: self.cmds.lockNode("path")),
            ("select", lambda: self.cmds.select("cube")),
            ("delete", lambda: self.cmds.delete("cube")),
        )
        states = [self.state()]
        for number, (name, command) in enumerate(commands, 1):
            command()
            self.assertEqual((self.count(), self.asked("undoName")), (number, name))
            states.append(self.state())
        for before, after in zip(states, states[1:]):
            self.assertNotEqual(before, after)
        for before in reversed(states[:-1]):
            self.cmds.undo()
            self.assertEqual(self.state(), before)
        for after in states[1:]:
            self.cmds.redo()
            self.assertEqual(self.state(), after)

    def state(self):
        """All that the commands above change."""
        nodes, state = self.cmds.ls(long=True), [self.cmds.ls(selection=True)]
        for node in nodes:
            attributes = [name for name in ("tx", "ty", "weight") if self.cmds.objExists(node + "." + name)]
            curve = self.cmds.nodeType(node).startswith("animCurve")
            state.append((node, [self.cmds.getAttr(node + "." + name) for name in attributes],
                          [self.cmds.keyframe(node, query=True, tc=True, vc=True), self.cmds.keyTangent(
                              node, query=True, itt=True), self.cmds.setInfinity(node, query=True, poi=True)]
                          if curve else self.cmds.keyframe(node, query=True, name=True), self.is_locked(node)))
        return state

    def is_locked(self, node):
        """Nothing asks for it, so it is tried, where the queue does not see it."""
        try:
            self.host.call("rename", self.host.call("named", node), node.split("|")[-1])
            return False
        except RuntimeError:
            return True

    def test_a_command_that_changes_nothing_is_one_too(self):
        self.ball()
        before = self.count()
        self.cmds.setAttr("ball.ry", 0)
        self.assertEqual(self.count(), before + 1)

    def test_questions_the_interface_and_the_current_time_are_none(self):
        self.ball()
        before = self.count()
        self.cmds.keyframe("ball", query=True, keyframeCount=True)
        self.cmds.keyTangent("ball", q=True, itt=True)
        self.cmds.ls()
        self.cmds.refresh()
        self.cmds.optionVar(intValue=("x", 1))
        self.cmds.currentTime(5)
        self.cmds.modelEditor("modelPanel1", edit=True, motionTrails=True)
        self.cmds.undoInfo(openChunk=True)
        self.cmds.undoInfo(closeChunk=True)
        self.assertEqual(self.count(), before)

    def test_what_the_api_does_is_none_and_drops_nothing(self):
        self.ball()
        self.cmds.createNode("vantorelix", name="trailShape")
        self.cmds.setAttr("ball.ry", 3)
        self.cmds.undo()
        before = self.count()
        data = self.om.MFnVectorArrayData().create(self.om.MVectorArray([(1, 2, 3)]))
        self.plug("trailShape", "points").setMObject(data)
        self.plug("ball", "rotateX").setDouble(9)
        self.assertEqual((self.count(), self.asked("redoName")), (before, "setAttr"))
        self.cmds.redo()
        self.assertEqual((self.cmds.getAttr("ball.rx"), self.cmds.getAttr("ball.ry")), (9, 3))

    def test_a_failed_command_is_none(self):
        before = self.count()
        self.assertRaises(ValueError, self.cmds.setAttr, "nothing.tx", 1)
        self.assertRaises(ValueError, self.cmds.delete, "nothing")
        self.assertEqual(self.count(), before)

    def test_a_new_one_drops_what_could_be_done_again(self):
        self.cmds.createNode("transform", name="ball")
        self.cmds.undo()
        self.assertFalse(self.asked("redoQueueEmpty"))
        self.cmds.select(clear=True)
        self.assertTrue(self.asked("redoQueueEmpty"))
        self.raises(RuntimeError, "no more commands to redo", self.cmds.redo)

    def test_those_of_a_callback_are_their_own(self):
        self.ball()
        self.oma.MAnimMessage.addAnimCurveEditedCallback(lambda *_: self.cmds.setAttr("ball.rz", 5))
        before = self.count()
        self.cmds.setKeyframe("ball", at="tx", t=1, v=7)
        self.assertEqual((self.count(), self.asked("undoName")), (before + 2, "setAttr"))

    def test_what_is_deleted_comes_back_as_the_same_object(self):
        self.ball()
        handle = self.om.MObjectHandle(self.om.MSelectionList().add("ball").getDependNode(0))
        self.assertTrue(handle.isValid() and handle.isAlive())
        self.cmds.delete("ball")
        self.assertTrue(handle.isAlive() and not handle.isValid())
        self.cmds.undo()
        self.assertTrue(handle.isValid())
        self.assertEqual(self.om.MFnDependencyNode(handle.object()).name(), "ball")
        self.cmds.delete("ball")
        self.cmds.flushUndo()
        self.assertFalse(handle.isAlive())


class Questions(UndoTest):
    def test_of_an_empty_queue(self):
        self.assertEqual(self.count(), 0)
        self.assertEqual([self.asked(name) for name in (
            "undoName", "redoName", "undoQueueEmpty", "redoQueueEmpty", "state", "stateWithoutFlush", "length",
            "infinity", "chunkName")], ["", "", True, True, True, True, 50, False, ""])
        self.raises(RuntimeError, "no more commands to undo", self.cmds.undo)

    def test_short_names_and_unknown_flags(self):
        self.cmds.createNode("transform")
        self.assertEqual(self.cmds.undoInfo(q=True, un=True), "createNode")
        self.raises(TypeError, "not covered", self.cmds.undoInfo, query=True, undoCount=True)

    def test_the_length(self):
        self.cmds.undoInfo(length=3)
        for _ in range(5):
            self.cmds.createNode("transform")
        self.assertEqual((self.count(), self.asked("length")), (3, 3))
        self.cmds.undoInfo(infinity=True)
        for _ in range(60):
            self.cmds.createNode("transform")
        self.assertEqual((self.count(), self.asked("infinity")), (63, True))
        self.raises(RuntimeError, "below 0", self.cmds.undoInfo, length=-1)


class Switches(UndoTest):
    def setUp(self):
        super(Switches, self).setUp()
        self.ball()
        self.cmds.undo()
        self.before = self.count()

    def test_off_without_flush_keeps_both_queues(self):
        self.cmds.undoInfo(stateWithoutFlush=False)
        self.assertFalse(self.asked("state"))
        self.cmds.setAttr("ball.ry", 3)
        self.raises(RuntimeError, "switched off", self.cmds.undo)
        self.cmds.undoInfo(stateWithoutFlush=True)
        self.assertEqual((self.count(), self.asked("redoQueueEmpty")), (self.before, False))
        self.cmds.redo()

    def test_off_empties_both(self):
        self.cmds.undoInfo(state=False)
        self.cmds.setAttr("ball.ry", 3)
        self.cmds.undoInfo(state=True)
        self.assertEqual((self.count(), self.asked("redoQueueEmpty")), (0, True))
        self.cmds.setAttr("ball.ry", 4)
        self.cmds.undo()
        self.assertEqual(self.cmds.getAttr("ball.ry"), 3)

    def test_a_new_scene_and_an_opened_one_empty_both(self):
        for change in (lambda: self.cmds.file(new=True, force=True), self.open_arm):
            self.ball()
            self.cmds.undo()
            change()
            self.assertEqual((self.count(), self.asked("redoQueueEmpty")), (0, True))
            self.cmds.file(new=True, force=True)


class Chunks(UndoTest):
    def test_one_is_one_entry(self):
        before = self.cmds.ls()
        self.cmds.undoInfo(openChunk=True, chunkName="a ball")
        self.assertEqual(self.asked("chunkName"), "a ball")
        self.ball()
        self.cmds.undoInfo(openChunk=True)
        self.cmds.setAttr("ball.ry", 3)
        self.cmds.undoInfo(closeChunk=True)
        self.assertEqual(self.count(), 0)
        self.raises(RuntimeError, "chunk is open", self.cmds.undo)
        self.cmds.undoInfo(closeChunk=True)
        self.assertEqual((self.count(), self.asked("undoName")), (1, "a ball"))
        self.cmds.undo()
        self.assertEqual(self.cmds.ls(), before)
        self.assertEqual(self.asked("redoName"), "a ball")
        self.cmds.redo()
        self.assertEqual(self.cmds.getAttr("ball.ry"), 3)
        self.assertEqual(self.cmds.keyframe("ball", query=True, timeChange=True), [1, 11])


class Events(UndoTest):
    def test_undo_and_redo_are_told_when_they_are_done(self):
        told = []
        for event in ("Undo", "Redo"):
            self.om.MEventMessage.addEventCallback(
                event, lambda data, event=event: told.append((event, data, self.cmds.objExists("ball"))), 7)
        self.cmds.createNode("transform", name="ball")
        self.cmds.undo()
        self.cmds.redo()
        self.assertEqual(told, [("Undo", 7, False), ("Redo", 7, True)])
        self.raises(RuntimeError, "not covered", self.om.MEventMessage.addEventCallback, "SelectionChanged", print)

    def test_while_keys_are_undone_an_edit_is_told(self):
        self.ball()
        told = []
        self.oma.MAnimMessage.addAnimCurveEditedCallback(
            lambda curves, _: told.append((len(curves), self.om.MGlobal.isUndoing(), self.om.MGlobal.isRedoing())))
        self.cmds.undo()
        self.cmds.redo()
        self.assertEqual(told, [(1, True, False), (1, False, True)])
        self.assertFalse(self.om.MGlobal.isUndoing())


class InsideACallback(UndoTest):
    def on_edit(self, function):
        self.ball()
        self.oma.MAnimMessage.addAnimCurveEditedCallback(lambda *_: function())

    def test_a_restart_is_refused(self):
        errors = []

        def restart():
            try:
                self.host.restart()
            except RuntimeError as error:
                errors.append(str(error))

        self.on_edit(restart)
        self.cmds.setKeyframe("ball", at="tx", t=1, v=7)
        self.assertEqual(len(errors), 1)
        self.assertIn("refused inside a callback", errors[0])
        self.assertEqual(self.cmds.keyframe("ball", query=True, valueChange=True), [7, 10])
        self.host.restart()
        self.assertEqual(self.cmds.ls(type="animCurve"), [])

    def test_another_scene_may_be_opened(self):
        for change in (lambda: self.cmds.file(new=True, force=True), self.open_arm):
            self.on_edit(change)
            self.cmds.cutKey("ball_translateX", t=1)
            self.assertFalse(self.cmds.objExists("ball"))
            self.assertEqual((self.count(), self.asked("redoQueueEmpty")), (0, True))
            self.cmds.createNode("transform", name="ball")
            self.cmds.undo()
            self.assertFalse(self.cmds.objExists("ball"))
            self.host.restart()
            self.assertEqual(self.host.failures, 0)


class Threads(UndoTest):
    def test_take_turns_so_that_each_gets_its_own_answers(self):
        names = ["thread_%d_%s" % (number, "x" * 40 * number) for number in range(6)]
        for name in names:
            self.cmds.createNode("transform", name=name)
        wrong = []

        def work(name):
            try:
                for value in range(300):
                    self.cmds.setAttr(name + ".tx", value)
                    found = (self.cmds.ls(name), self.cmds.getAttr(name + ".tx"))
                    if found != ([name], value):
                        wrong.append(found)
                    try:
                        self.cmds.getAttr(name + "_missing.tx")
                    except ValueError as error:
                        if name + "_missing" not in str(error):
                            wrong.append(error)
            except Exception as error:
                wrong.append(error)

        threads = [threading.Thread(target=work, args=(name,)) for name in names]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong[:3], [])
        self.assertEqual(self.asked("undoName"), "setAttr")


if __name__ == "__main__":
    unittest.main()
