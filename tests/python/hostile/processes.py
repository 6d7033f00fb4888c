"""The end of the process, other interpreters, other threads."""

import os
import subprocess
import sys
import tempfile
import textwrap
import threading

from . import worlds
from .named import found_in
from .worlds import need

START = """
import sys
sys.path.insert(0, %r)
from support import import_engine
from hostile.worlds import RecordingWorld
"""


def _process(*parts, status=0):
    """Runs a script of several parts that ends with `status`; what it prints."""
    tests = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    script = START % tests + "".join(map(textwrap.dedent, parts))
    with tempfile.TemporaryFile() as out:
        ended = subprocess.call([sys.executable, "-X", "faulthandler", "-c", script], stdout=out, stderr=out,
                                timeout=50)
        out.seek(0)
        words = out.read().decode("utf-8", "replace")
    need(ended == status, "it ended with", ended, "\n" + words)
    return words


USED = """
    import ctypes, os
    world = RecordingWorld()
    e = world.engine
    world.make_trails()
    class Last(object):
        def __call__(self, text):
            pass
        def __del__(self):
            e._REGISTRY.clear()
    e._REGISTRY["vlx_x_viz"] = {"source": "|x", "ref": [Last()], "note": Last()}
    e._set_msg_handler(Last())
    e._CB_ID = (Last(), 1)
    world.edit()
    world.tick = 0.003
    world.pump()
    kept = list(e._WORK["items"]), e._WORK, e._make_fast_sampler("|ball"), e._bisect_indices(9), dict(e._REGISTRY)
"""


def the_process_ends_by_exit_of_c():
    _process(USED, "ctypes.CDLL(None).exit(7)", status=7)
    _process(USED, "ctypes.PyDLL(None).exit(7)", status=7)


def the_process_ends_by_exit_of_c_in_another_thread():
    _process(USED, """
    import threading, time
    t = threading.Thread(target=lambda: ctypes.CDLL(None).exit(7))
    t.start()
    time.sleep(5)
    """, status=7)


def the_process_ends_as_usual_with_everything_held():
    _process(USED, "sys.exit(7)", status=7)
    _process(USED, "os._exit(7)", status=7)
    _process(USED, """
    import atexit
    atexit.register(lambda: (e.create_trail(), e.clear_trails()))
    sys.late = Last()
    sys.exit(7)
    """, status=7)


def the_module_is_used_while_the_interpreter_ends():
    _process(USED, """
    class Late(object):
        def __init__(self):
            self.held = e, world
        def __del__(self):
            engine = self.held[0]
            try:
                engine._REGISTRY.clear()
                engine.clear_trails()
                engine._rebuild_all_sync()
            except Exception:
                pass
    sys.late = Late()
    e.late = Late()
    sys.modules["late"] = Late()
    """)


SECOND = '''
import sys
sys.path[:] = %r
sys.path.insert(0, %r)
from recording_maya import Maya
Maya()
try:
    import Vantorelix_engine
except ImportError as error:
    text = str(error)
    assert "interpreter" in text, text
    print("refused: " + text)
else:
    print("let in")
'''


RUN_SECOND = '''
def run_second(script):
    """Runs a script in a second interpreter, in whichever way this version has."""
    try:
        import _testcapi
        assert _testcapi.run_in_subinterp(script) == 0
    except ImportError:
        interpreters = __import__("_interpreters" if sys.version_info >= (3, 13) else "_xxsubinterpreters")
        second = interpreters.create()
        interpreters.run_string(second, script)
        interpreters.destroy(second)
'''


def a_second_interpreter_is_refused():
    """And the first one's engine goes on, with its own state and handles."""
    words = _process(RUN_SECOND, """
    import os
    world = RecordingWorld()
    world.make_trails()
    world.edit()
    script = %r %% (sys.path, os.environ["VANTORELIX_MODULE"])
    for _ in range(3):
        run_second(script)
        assert world.engine.cmds is world.maya.cmds
        assert len(world.engine._REGISTRY) == 2
    world.run_queue()
    world.must_be_exact("a trail of the first interpreter")
    world.must_be_usable()
    sys.stderr.write("went on")
    """ % SECOND)
    need(words.count("refused: ") == 3 and "let in" not in words and "went on" in words, words)


def a_second_interpreter_is_refused_also_when_it_comes_first():
    words = _process(RUN_SECOND, """
    import os
    run_second(%r %% (sys.path, os.environ["VANTORELIX_MODULE"]))
    world = RecordingWorld()
    world.make_trails()
    world.must_be_usable()
    sys.stderr.write("went on")
    """ % SECOND)
    need(words.count("refused: ") == 1 and "went on" in words, words)


# --- threads ---------------------------------------------------------------------------------------------------------

def _together(jobs, seconds=20):
    """Runs jobs in threads of their own that take turns as often as can be; their errors."""
    errors = []

    def run(job):
        try:
            job()
        except BaseException as error:
            errors.append(error)

    before = sys.getswitchinterval()
    sys.setswitchinterval(1e-6)
    threads = [threading.Thread(target=run, args=[job]) for job in jobs]
    for thread in threads:
        thread.daemon = True
        thread.start()
    for thread in threads:
        thread.join(seconds)
        need(not thread.is_alive(), "a thread does not end")
    sys.setswitchinterval(before)
    return errors


def _refused_clearly(errors):
    for error in errors:
        need(isinstance(error, RuntimeError) and "thread" in str(error), "a thread was given", repr(error))


def a_thread_leaves_a_push_while_another_is_in_one():
    """The first is held in its first call until the second is in one of its own, which then goes on alone."""
    world = worlds.RecordingWorld()
    world.make_trails()
    first_is_in, second_is_in, first_is_out = threading.Event(), threading.Event(), threading.Event()
    triples = [(float(i), 0.0, 0.0) for i in range(20)]
    original = world.maya.cmds.listRelatives

    def held(*arguments, **keywords):
        if not first_is_in.is_set():
            first_is_in.set()
            second_is_in.wait(10)
        elif not second_is_in.is_set():
            second_is_in.set()
            first_is_out.wait(10)
        return original(*arguments, **keywords)

    def first():
        try:
            world.engine._push_data_to_viz("vlx_ball_viz", (triples, triples, [], []), [1.0])
        finally:
            first_is_out.set()

    def second():
        first_is_in.wait(1)
        try:
            world.engine._push_data_to_viz("vlx_cube_viz", (list(triples), list(triples), [], []), [1.0])
        finally:
            second_is_in.set()

    world.maya.cmds.listRelatives = held
    _refused_clearly(_together([first, second]))
    world.maya.cmds.listRelatives = original
    world.must_be_usable()


def threads_push_data():
    world = worlds.RecordingWorld()
    world.make_trails()
    triples = [(float(i), 0.0, 0.0) for i in range(20)]

    def push():
        for _ in range(300):
            world.engine._push_data_to_viz("vlx_ball_viz", (triples, triples, [], []), [1.0])

    _refused_clearly(_together([push, push, push]))
    world.must_be_usable()


def threads_rebuild_read_and_change_everything():
    world = worlds.RecordingWorld()
    world.make_trails()
    e = world.engine

    def steps():
        for _ in range(60):
            e._PENDING = True
            e._GEN += 1
            world.quiet()
            e._rebuild_step()

    def reads():
        for _ in range(300):
            repr(e._REGISTRY), [dict(item) for item in (e._WORK or {"items": []})["items"]]

    def changes():
        for n in range(300):
            e._REGISTRY["vlx_%d_viz" % (n % 5)] = {"source": "|ball", "samples_per_frame": 1, "ref": [1.0]}
            e._REGISTRY.pop("vlx_%d_viz" % ((n + 2) % 5), None)
            e._set_msg_handler(None)
            e._msg("hello")

    def colours():
        for _ in range(100):
            e._colors_from_positions([(float(i), 0.0, 0.0) for i in range(50)])
            e._smooth_fill(50, {0: (0, 0, 0), 49: (1, 1, 1)})

    errors = _together([steps, steps, reads, changes, colours])
    _refused_clearly([error for error in errors if not isinstance(error, KeyError)])
    world.must_be_usable()


def a_thread_imports_the_module_first():
    words = _process("""
    import threading
    worlds = []
    thread = threading.Thread(target=lambda: worlds.append(RecordingWorld()))
    thread.start()
    thread.join()
    world = worlds[0] if worlds else RecordingWorld()
    world.must_be_usable()
    """)
    need("Error" not in words, words)


def cases(full):
    return found_in(globals())
