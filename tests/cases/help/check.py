import os
import re

# The options that the manual promises for each command are those of the help, and every shell completes them.
manual = open(os.path.join(os.environ["DOCS"], "cli.md"), encoding="utf-8").read()
common = {"--quiet", "--strict", "--color", "--log-format", "--help"}
of_scenes = set(re.findall(r"^\| `(--[a-z-]+)", manual.split("\n## ")[0], re.M))
assert "--take" in of_scenes
sections = dict(re.findall(r"^## `vantorelix (\w+)[^\n]*\n(.*?)(?=^## |\Z)", manual, re.M | re.S))
assert set(sections) == {"trails", "measure", "view", "page", "info", "curves", "live", "completion", "manual"}, set(sections)
for command, text in sections.items():
    promised = set(re.findall(r"^\| `(--[a-z-]+)", text, re.M)) | common | (set() if command in ("page", "completion", "manual") else of_scenes)
    helped = open(command + ".txt").read()
    options = re.split("Examples?:", helped)[0].split("Options:")[1]
    told = set(re.findall(r"(--[a-z][a-z-]*)", re.sub(r"'--out=[^']*'", "", options.split("Without --out")[0])))
    told.discard("--no-ghost")
    assert told == promised, (command, told ^ promised)
    assert re.search("Examples?:", helped), command
    for shell in ("bash", "zsh", "fish"):
        script = open(shell + ".txt").read()
        for option in promised:
            assert (option if shell != "fish" else "-l " + option[2:]) in script, (shell, option)
program = open("program.txt").read()
for word in list(sections) + ["--version", "Exit codes", "--quiet"]:
    assert word in program, word
