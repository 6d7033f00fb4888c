"""The module as a script sees it: names, arguments, live state, errors, reloading."""

import importlib
import os
import sys
import tempfile
import unittest

from support import MODULE, EngineTest


class Names(EngineTest):
    def test_every_published_name_is_there_and_no_other(self):
        self.assertEqual([n for n in self.engine.__all__ if not hasattr(self.engine, n)], [])
        published = [n for n in dir(self.engine) if not n.startswith("__")]
        self.assertEqual(sorted(published), sorted(self.engine.__all__))

    def test_the_list_of_names_follows_the_order_of_definition(self):
        names = self.engine.__all__
        self.assertEqual(names[:8], ["os", "sys", "time", "bisect_left", "bisect_right", "cmds", "om", "oma"])
        places = [names.index(n) for n in ("SCRIPT_NAME", "_REGISTRY", "_msg", "_smooth", "create_trail",
                                           "_rebuild_step", "pellark_entry")]
        self.assertEqual(places, sorted(places))

    def test_constants(self):
        e = self.engine
        self.assertEqual((e.SCRIPT_NAME, e.SCRIPT_VERSION, e.NODE_TYPE), ("Vantorelix", "v1_04", "vantorelix"))
        self.assertEqual((e._CHUNK_BUDGET, e._DEBOUNCE, e._CREATE_BUDGET), (0.008, 0.2, 0.15))
        self.assertEqual(list(e._VIEWPORT_TRAIL_FLAGS), ["motionTrails"])
        self.assertEqual(e._RAMP_STOPS[3], (0.7, (1.0, 1.0, 0.0)))
        self.assertEqual(len(e._RAMP_STOPS), 6)

    def test_the_plugin_file_lies_beside_the_module_wherever_the_process_is(self):
        self.assertEqual(self.engine.PLUGIN_FILE, os.path.join(MODULE, "Vantorelix_plugin.py"))


class ArgumentErrors(EngineTest):
    def test_wrong_counts_and_unknown_keywords_are_type_errors(self):
        e = self.engine
        for call in (lambda: e._color_ramp(), lambda: e._color_ramp(1, 2), lambda: e._color_ramp(q=1),
                     lambda: e._color_ramp(0.5, t=0.5), lambda: e.has_any_trail(1), lambda: e.create_trail(*range(8)),
                     lambda: e._schedule_rebuild(key=1), lambda: e._on_anim_edit(key=1),
                     lambda: e._rebuild_step(1), lambda: e._msg(), lambda: e.pellark_entry("a", "b")):
            self.assertRaises(TypeError, call)

    def test_arguments_go_by_name_as_well(self):
        e = self.engine
        self.assertEqual(e._smooth(window=0, values=[4.0, 8.0]), [4.0, 8.0])
        self.assertEqual(e._sample_at_times("|ball", sampler=lambda t: (t, t, t), times=[2.0]), [(2.0, 2.0, 2.0)])

    def test_texts_and_numbers_are_not_mixed_up(self):
        self.assertRaises(TypeError, self.engine._world_pos_at, 7, 1.0)
        self.assertRaises(TypeError, self.engine._color_ramp, "red")
        self.assertRaises(ValueError, self.engine._set_pref_samples, "many")


class LiveState(EngineTest):
    def test_the_state_starts_with_its_initial_values(self):
        e = self.engine
        e._set_msg_handler(None)
        self.assertEqual((e._GEN, e._PENDING, e._REBUILDING, e._LAST_EDIT), (0, False, False, 0.0))
        self.assertEqual((e._CB_ID, e._WORK, e._MSG_HANDLER), (None, None, None))
        self.assertEqual(dict(e._REGISTRY), {})

    def test_what_a_script_assigns_is_what_the_engine_uses(self):
        self.make_trail()
        self.engine._GEN = 41
        self.maya.now = 2000.0
        self.engine._schedule_rebuild()
        self.assertEqual((self.engine._GEN, self.engine._LAST_EDIT, self.engine._PENDING), (42, 2000.0, True))
        self.engine._PENDING = False
        self.engine._rebuild_step()
        self.assertIsNone(self.engine._WORK)

    def test_the_registry_is_one_mapping_for_good(self):
        registry = self.engine._REGISTRY
        self.make_trail()
        self.assertIs(registry, self.engine._REGISTRY)
        self.assertEqual(registry, {"vlx_ball_viz": {"source": "|ball", "samples_per_frame": 1, "ref": [1.0]}})
        self.engine.clear_trails()
        self.assertEqual(len(registry), 0)

    def test_settings_take_any_value_and_give_it_back(self):
        self.make_trail()
        settings = self.engine._REGISTRY["vlx_ball_viz"]
        for value in (None, True, 3, 10 ** 30, 2.5, "text", b"bytes", object(), {"a": 1}, EngineTest):
            settings["samples_per_frame"] = value
            self.assertEqual(settings["samples_per_frame"], value)
            self.assertIs(type(settings["samples_per_frame"]), type(value))

    def test_a_setting_that_is_deleted_is_missing_to_the_engine(self):
        self.make_trail()
        del self.engine._REGISTRY["vlx_ball_viz"]["samples_per_frame"]
        self.engine._rebuild_all_sync()
        self.assertIn(("cmds.warning", ("[Vantorelix] rebuild fail vlx_ball_viz: 'samples_per_frame'",), {}),
                      self.maya.taken())

    def test_a_density_that_changes_its_type_counts_as_a_number(self):
        class Dense(object):
            def __int__(self):
                return 2

        self.make_trail()
        self.engine._REGISTRY["vlx_ball_viz"]["samples_per_frame"] = Dense()
        self.engine._rebuild_all_sync()
        self.assertEqual(len(self.points()), 9)

    def test_work_is_read_field_by_field(self):
        self.maya.selection = ["|ball", "|cube"]
        self.make_trail()
        self.edit()
        self.maya.tick = 0.003
        self.maya.run_deferred()
        work = self.engine._WORK
        self.assertEqual((work["gen"], work["k"], work["start"], work["end"]), (1, 0, 1.0, 5.0))
        first, second = work["items"]
        self.assertEqual((first["viz"], first["times"], first["ki"]), ("vlx_ball_viz", [1.0, 2.0, 3.0, 4.0, 5.0], 0))
        self.assertEqual(first["pos"], [(1.0, 0.0, 0.0), (2.0, 0.0, 0.0)][:first["i"]])
        self.assertTrue(0 < first["i"] < 5)
        self.assertEqual(first["sampler"](3.0), (3.0, 0.0, 0.0))
        self.assertEqual((second["times"], second["ktimes"], second["sampler"], second["i"]), (None, None, None, 0))
        self.assertEqual(first["settings"], self.engine._REGISTRY["vlx_ball_viz"])
        self.assertEqual(sorted(first), sorted(["viz", "settings", "sampler", "times", "pos", "i", "ktimes", "kpos",
                                                "ki"]))

    def test_a_single_identifier_in_place_of_the_callbacks_is_removed_alone(self):
        self.make_trail()
        self.engine._CB_ID = 12
        self.engine._remove_callback()
        self.assertEqual(self.maya.taken(), [("om.MMessage.removeCallback", (12,), {})])
        self.assertIsNone(self.engine._CB_ID)

    def test_a_message_handler_may_be_assigned(self):
        heard = []
        self.engine._MSG_HANDLER = heard.append
        self.engine._msg(7)
        self.assertEqual(heard, [7])
        self.engine._set_msg_handler(42)
        self.assertIsNone(self.engine._MSG_HANDLER)

    def test_reloading_starts_anew_on_the_maya_of_the_moment(self):
        self.make_trail()
        self.engine._GEN = 7
        other = type(self.maya)()
        importlib.reload(self.engine)
        self.assertEqual((self.engine._GEN, dict(self.engine._REGISTRY), self.engine._CB_ID), (0, {}, None))
        self.assertIs(self.engine.cmds, other.cmds)
        self.engine.has_any_trail()
        self.assertEqual(other.taken(), [("cmds.ls", (), {"type": "vantorelix"})])


class Results(EngineTest):
    def test_positions_and_colours_are_tuples_in_lists(self):
        e = self.engine
        self.assertEqual(e._sample_positions("|cube", 1.0, 3.0, 1.0), [(0.0, 1.0, 1.0), (0.0, 4.0, 1.0), (0.0, 9.0, 1.0)])
        colours, ref = e._colors_from_positions([(0, 0, 0), (1, 0, 0), (2, 0, 0)])
        self.assertEqual([tuple(round(c, 12) for c in colour) for colour in colours], [(0.0, 1.0, 0.4)] * 3)
        self.assertEqual((list(ref), len(ref), ref[0]), ([1.0], 1, 1.0))

    def test_a_reference_is_shared_and_comes_back_as_it_was_given(self):
        e = self.engine
        mine = [2.0]
        self.assertIs(e._t_from_spacing([10.0], mine)[1], mine)
        self.assertIs(e._colors_from_positions([(0, 0, 0), (5, 0, 0)], ref=mine)[1], mine)
        self.make_trail()
        ref = e._REGISTRY["vlx_ball_viz"]["ref"]
        ref[0] = 100.0
        self.assertEqual(e._REGISTRY["vlx_ball_viz"]["ref"], [100.0])

    def test_a_reference_that_is_extended_by_itself_is_doubled(self):
        self.make_trail()
        settings = self.engine._REGISTRY["vlx_ball_viz"]
        settings["ref"].extend(settings["ref"])
        settings["ref"] += (value for value in (2.0, 3.0))
        self.assertEqual(settings["ref"], [1.0, 1.0, 2.0, 3.0])

    def test_the_sample_order_is_an_iterator(self):
        order = self.engine._bisect_indices(9)
        self.assertEqual(next(order), 0)
        self.assertEqual(list(order), [8, 4, 2, 6, 1, 3, 5, 7])
        self.assertRaises(StopIteration, next, order)

    def test_a_fast_sampler_is_callable_and_none_where_there_is_none(self):
        self.assertEqual(self.engine._make_fast_sampler("|ball")(2.5), (2.5, 0.0, 0.0))
        self.assertIsNone(self.engine._make_fast_sampler("|nobody"))

    def test_sparse_samples_are_filled(self):
        filled = self.engine._smooth_fill(5, {0: (0, 0, 0), 4: [4.0, 8.0, 0.0]})
        self.assertEqual(filled[2], (2.0, 4.0, 0.0))
        self.assertEqual(self.engine._smooth_fill(9, {5: (1, 2, 3)}), [(1.0, 2.0, 3.0)])
        self.assertEqual(self.engine._smooth_fill(9, {}), [])

    def test_the_colour_generators(self):
        e = self.engine
        self.maya.frame = 12.0
        past, future = (1.0, 0.75, 0.0), (0.0, 0.65, 0.65)
        self.assertEqual(e.compute_temperature_colors(5, 10.0, 1.0), [past] * 3 + [future] * 2)
        self.assertEqual([call[0] for call in self.maya.taken()],
                         ["oma.MAnimControl.currentTime", "om.MTime", "om.MTime.uiUnit", "om.MTime.asUnits"])
        white, green = (1.0, 1.0, 1.0), (0.15, 0.85, 0.25)
        self.assertEqual(e.compute_beats_colors(6, 0.0, 1.0, [4.0, 2.0]), [white] * 2 + [green] * 2 + [white] * 2)
        self.assertEqual(e.compute_beats_colors("2", 0.0, 1.0, None), [white] * 2)
        self.assertEqual(e.compute_standard_colors(0), [])

    def test_trail_data_is_a_pair_or_none(self):
        full, ref = self.engine._compute_trail_data("|ball", 2)
        self.assertEqual([len(part) for part in full], [9, 9, 2, 2, 2])
        self.assertEqual((full[4], list(ref)), ([1.0, 5.0], [0.5]))
        self.maya.range = (3.0, 3.0)
        self.assertIsNone(self.engine._compute_trail_data("|ball", 1))

    def test_items_and_settings_of_a_script_are_taken_as_they_are(self):
        self.make_trail()
        settings = {"source": "|ball"}
        item = {"viz": "vlx_ball_viz", "settings": settings, "pos": [(0, 0, 0), (1, 0, 0)], "ktimes": None, "kpos": []}
        self.engine._finish_trail(item, {"start": 3.0})
        self.assertEqual(settings["ref"], [1.0])
        arrays = [call[1][0] for call in self.maya.taken() if call[0] == "om.MVectorArray"]
        self.assertIs(arrays[0], item["pos"], "positions go out as the object that came in")
        self.assertEqual((self.maya.shape("ball")["startFrame"], self.maya.shape("ball")["frameStep"]), (3.0, 1.0))


    def test_nothing_to_colour_gives_a_reference_of_zero(self):
        e = self.engine
        for function in (e._t_from_spacing, e._colors_from_positions):
            for empty in (None, []):
                result, reference = function([], empty)
                self.assertEqual((result, list(reference)), ([], [0.0]))
                self.assertIsNot(reference, empty)
            kept = [2.0]
            self.assertIs(function([], kept)[1], kept)

    def test_no_version_is_an_empty_one(self):
        with tempfile.TemporaryDirectory() as folder:
            self.maya.user_folder = folder
            for version, parts in ((None, []), ("", []), ("2024.1", ["2024"]), (" 2025 ", ["2025"])):
                self.maya.cmds.about = lambda version, answer=version: answer
                found = self.engine._maya_user_plugins_dir()
                self.assertEqual(os.path.normpath(found), os.path.join(folder, *parts + ["plug-ins"]))

    def test_an_allowed_list_of_any_kind_is_converted(self):
        with tempfile.TemporaryDirectory() as made:
            folder = made.replace(os.sep, "/")  # as Maya has paths, on Windows, too
            known = [{folder: 1}, (folder,), {folder}, iter([folder]), folder, folder.encode()]
            for stored in known + [{"elsewhere": 1}, 7, None, []]:
                added = []
                self.maya.cmds.optionVar = lambda **flags: stored if "q" in flags else added.append(flags)
                self.engine._whitelist_folder(folder)
                wanted = [] if stored in known else [{"stringValueAppend": ("SafeModeAllowedlistPaths", folder)}]
                self.assertEqual(added, wanted, stored)


class Errors(EngineTest):
    class Odd(Exception):
        pass

    def test_an_error_of_the_host_arrives_as_the_object_that_was_raised(self):
        error = self.Odd("boom")
        self.maya.fail(1, error)
        with self.assertRaises(self.Odd) as raised:
            self.engine.has_any_trail()
        self.assertIs(raised.exception, error)

    def test_an_error_of_a_sampler_arrives_through_every_function_that_takes_one(self):
        error = self.Odd("no sample")

        def sampler(t):
            raise error

        e = self.engine
        for call in (lambda: e._sample_positions("|ball", 1.0, 2.0, 1.0, sampler),
                     lambda: e._sample_at_times("|ball", [1.0], sampler=sampler),
                     lambda: e._compute_trail_data("|ball", 1, sampler=sampler)):
            with self.assertRaises(self.Odd) as raised:
                call()
            self.assertIs(raised.exception, error)

    def test_a_handler_that_raises_sends_the_message_to_the_viewport(self):
        def handler(text):
            raise self.Odd("busy")

        self.engine._set_msg_handler(handler)
        self.engine._msg("hello")
        self.assertEqual(self.maya.taken(), [("cmds.inViewMessage", (), {
            "amg": "hello", "pos": "midCenter", "fade": True, "alpha": 0.9})])

    def test_interrupts_pass_every_guard(self):
        self.make_trail()
        guarded = [lambda e: e._opt_get_int("x", 1), lambda e: e._make_fast_sampler("|ball"), lambda e: e._is_file_io(),
                   lambda e: e._is_playing(), lambda e: e._ensure_trails_visible(), lambda e: e.set_ghost(),
                   lambda e: e._ensure_plugin(), lambda e: e._remove_callback(), lambda e: e._rebuild_all_sync()]
        for interrupt in (KeyboardInterrupt, SystemExit):
            for call in guarded:
                self.maya.fail(1, interrupt())
                self.assertRaises(interrupt, call, self.engine)

    def test_a_handler_that_interrupts_is_not_silenced(self):
        def handler(text):
            raise KeyboardInterrupt

        self.engine._set_msg_handler(handler)
        self.assertRaises(KeyboardInterrupt, self.engine._msg, "hello")

    def test_a_missing_setting_is_a_key_error_with_its_key(self):
        with self.assertRaises(KeyError) as raised:
            self.engine._rebuild_one("vlx_ball_viz", {})
        self.assertEqual(raised.exception.args, ("source",))

    def test_printing_goes_to_the_standard_output_of_the_moment(self):
        self.engine._set_msg_handler(None)
        lines = []
        sys.stdout.close()
        sys.stdout = type("Out", (), {"write": lambda self, text: lines.append(text), "flush": lambda self: None,
                                      "close": lambda self: None})()
        self.engine._msg("hello")
        self.assertEqual("".join(lines), "[Vantorelix] hello\n")

    def test_a_number_is_no_action(self):
        self.assertRaises(AttributeError, self.engine.pellark_entry, 7)


if __name__ == "__main__":
    unittest.main()
