import re

# The manual page has a section for each command, with every option of its help and all that the help says after them.
page = open("vantorelix.1").read()
assert page.startswith('.TH VANTORELIX 1 "" "vantorelix '), page[:80]
sections = re.findall(r"^\.SH (.*)", page, re.M)
assert sections == ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "COMMANDS", "EXAMPLES AND EXIT CODES"], sections


def shown(text):
    """What a reader sees of a page's text."""
    text = re.sub(r"^\.(?:PP|nf|fi|TP)\n", "", text, flags=re.M)
    return re.sub(r"\\f[BIR]|\\&", "", text).replace("\\-", "-").replace("\\e", "\\")


commands = dict(re.findall(r"^\.SS \\fBvantorelix (\w+).*\n((?:(?!\.S[SH]).*\n)*)", page, re.M))
assert set(commands) == {"trails", "measure", "view", "page", "info", "curves", "live", "completion", "manual"}, set(commands)
for command, text in commands.items():
    helped = open(command + ".txt").read()
    options, rest = re.split(r"\n\n\n", helped.split("Options:\n")[1], maxsplit=1)
    wanted = set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", options, re.M))
    assert {"--help", "--quiet"} <= wanted
    told = set(re.findall(r"^(?:-\w, )?(--[a-z-]+)", shown(text), re.M))
    assert told == wanted, (command, told ^ wanted)
    assert rest.strip("\n") in shown(text), command
