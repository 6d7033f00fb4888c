#!/usr/bin/env python3
"""Hashes everything that the program writes about scenes, to tell whether a change left every result as it was.

    tools/hash_outputs.py --program build/bin/vantorelix --write before.txt SCENE_OR_FOLDER...
    tools/hash_outputs.py --program build/bin/vantorelix --against before.txt SCENE_OR_FOLDER...

Each scene is sampled in every way that the program knows, each take of it by itself, and written in every format but
the page, which holds the same numbers as the JSON. A line of the list is a SHA-256, the scene and what was made of it.
Texts (warnings, messages, exit codes) have lines of their own, "in words", so that a change of words is
not taken for a change of numbers. Exit codes: 0 all is equal, or the list is written; 1 something differs; 2 wrong
usage.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys
import tempfile

SUFFIXES = {".bvh", ".ma", ".fbx", ".gltf", ".glb"}
TIME_LIMIT = 600
WAYS = [
    ("plain", ["trails", "--all"], ["json", "csv", "svg"]),
    ("spacing", ["trails", "--samples-per-frame", "3", "--color-mode", "spacing"], ["json", "svg"]),
    ("flow", ["trails", "--color-mode", "flow"], ["json"]),
    ("beats", ["trails", "--samples-per-frame", "2", "--color-mode", "beats"], ["json"]),
    ("table", ["trails"], []),
    ("curves", ["curves", "--degree", "3", "--samples-per-frame", "2"], ["ma", "csv"]),
    ("info", ["info", "--json", "--all"], []),
]


def scenes_in(places):
    """Every scene at or below `places`, as (name, path); the name is relative to its place."""
    found = []
    for place in places:
        if place.is_dir():
            found += [(str(pathlib.Path(place.resolve().name, path.relative_to(place))), path)
                      for path in sorted(place.rglob("*")) if path.suffix.lower() in SUFFIXES]
        else:
            found.append((place.name, place))
    return found


def run(program, arguments, scene):
    """Exit code, standard output and standard error; the scene is named as seen from its own folder."""
    env = dict(os.environ, LC_ALL="C.UTF-8")
    done = subprocess.run([str(program)] + arguments, cwd=scene.parent, env=env, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=TIME_LIMIT, check=False)
    return done.returncode, done.stdout, done.stderr


def takes(program, scene):
    """The options that choose each take of a scene; one empty choice where there are none."""
    code, out, _ = run(program, ["info", "--json", scene.name], scene)
    names = json.loads(out).get("takes", []) if code == 0 else []
    names = [name["name"] if isinstance(name, dict) else name for name in names]
    return [["--take", name] for name in names] if len(names) > 1 else [[]]


def without_words(data):
    """JSON without its warnings, and the warnings."""
    words = []

    def strip(value):
        if isinstance(value, dict):
            words.extend(value.get("warnings", []))
            return {key: strip(inner) for key, inner in value.items() if key != "warnings"}
        return [strip(inner) for inner in value] if isinstance(value, list) else value

    return json.dumps(strip(json.loads(data)), sort_keys=True).encode(), json.dumps(words).encode()


def digest(data):
    return hashlib.sha256(data).hexdigest()


def lines_of(program, name, scene):
    """The lines of the list for one scene."""
    lines = []
    for take in takes(program, scene):
        for way, arguments, formats in WAYS:
            with tempfile.TemporaryDirectory() as folder:
                outs = [pathlib.Path(folder, "out." + suffix) for suffix in formats]
                options = [word for out in outs for word in ("--out", str(out))]
                code, stdout, stderr = run(program, arguments + take + options + [scene.name], scene)
                words = [str(code).encode(), stderr.replace(folder.encode(), b"")]
                made = [(out.suffix, out.read_bytes()) for out in outs if out.exists()]
            if stdout:
                made.append((".json" if way == "info" else "", stdout.replace(folder.encode(), b"")))
            for suffix, data in made:
                if suffix == ".json":
                    data, warnings = without_words(data)
                    words.append(warnings)
                lines.append("%s  %s" % (digest(data), " ".join([name] + take + [way + suffix])))
            lines.append("%s  %s" % (digest(b"\0".join(words)), " ".join([name] + take + [way, "in words"])))
    return lines


def differences(before, after):
    """A line for each entry that is not the same in two lists."""
    old, new = ({line[66:]: line[:64] for line in text.splitlines()} for text in (before, after))
    lines = ["no longer made: " + what for what in old if what not in new]
    lines += ["new: " + what for what in new if what not in old]
    return lines + ["differs: " + what for what in old if what in new and old[what] != new[what]]


def main():
    parser = argparse.ArgumentParser(description="Hashes everything that the program writes about scenes.")
    parser.add_argument("--program", required=True, type=pathlib.Path)
    result = parser.add_mutually_exclusive_group(required=True)
    result.add_argument("--write", type=pathlib.Path, metavar="LIST", help="write the list of hashes")
    result.add_argument("--against", type=pathlib.Path, metavar="LIST", help="compare with a list written before")
    parser.add_argument("scenes", nargs="+", type=pathlib.Path, help="scenes, or folders that hold some")
    options = parser.parse_args()
    program = options.program.resolve()
    if not program.is_file():
        parser.error("%s: no such program; build it first" % options.program)
    missing = [str(place) for place in options.scenes if not place.exists()]
    if missing:
        parser.error("%s: no such scene or folder" % ", ".join(missing))
    scenes = scenes_in(options.scenes)
    if not scenes:
        parser.error("no scenes there; they end in %s" % ", ".join(sorted(SUFFIXES)))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        listed = list(pool.map(lambda scene: lines_of(program, *scene), scenes))
    after = "".join(line + "\n" for lines in listed for line in lines)
    if options.write:
        options.write.write_text(after, encoding="utf-8")
        print("%d hashes of %d scenes are in %s" % (after.count("\n"), len(scenes), options.write))
        return 0
    found = differences(options.against.read_text(encoding="utf-8"), after)
    print("\n".join(found + ["%d of %d hashes of %d scenes differ" % (len(found), after.count("\n"), len(scenes))]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
