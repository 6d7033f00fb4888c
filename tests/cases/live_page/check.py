import base64
import json
import os
import re

REFUSAL = ("vantorelix: this program was built without the engine for live pages; build it with './dev build', which says why "
           "where it leaves the engine out, or take a released program")


def said(name):
    """The exit code, and what was said."""
    code, text = open(name + ".txt", encoding="utf-8").read().split("\n", 1)
    return code, text.rstrip()


page, live = said("page"), said("live")
if page[0] == "exit 1":
    assert page[1] == live[1] == REFUSAL, (page, live)
    assert live[0] == "exit 1" and os.path.getsize("page.html") == os.path.getsize("live.html") == 0
else:
    assert page == ("exit 0", "page.html: the engine"), page
    assert live == ("exit 0", "live.html: 2 files and the engine"), live
    text = open("live.html", encoding="utf-8").read()
    assert 'id="scene-header"' not in open("page.html", encoding="utf-8").read()
    header = json.loads(re.search(r'id="scene-header">(.*?)</script>', text, re.S).group(1))
    data = base64.b64decode(re.search(r'id="scene-data">(.*?)</script>', text, re.S).group(1), validate=True)
    assert [file["name"] for file in header["files"]] == ["beside.gltf", "beside.bin"], header
    assert data == b"".join(open(name, "rb").read() for name in ("beside.gltf", "beside.bin"))
    assert header["trails"]["patterns"] == ["*"] and header["trails"]["last"] == 5 and header["lineWidth"] == 3
