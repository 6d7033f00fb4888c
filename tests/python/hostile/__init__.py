"""What scripts, tools and callbacks may do to the module while it works, and that it lives through all of it.

A group of cases is a module of this folder with `cases(full)`: (name, function) pairs, the same ones in the same order
each time. They run in child processes, so that a crash costs no more than its own case:

    VANTORELIX_MODULE=... VANTORELIX_HOST=... python3 tests/python/hostile/child.py calls full --only "clear / cmds.delete"

runs one of them by hand, with a Python traceback where it crashes.
"""
