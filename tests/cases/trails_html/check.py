import base64
import json
import re
import struct

page = open("line.html", encoding="utf-8").read()
assert page.startswith("<!doctype html>") and page.rstrip().endswith("</html>")
assert "Content-Security-Policy" in page and "<!--trails-->" not in page


def block(kind, name):
    return re.search(r'<script type="application/%s" id="%s">(.*?)</script>' % (kind, name), page, re.S).group(1)


header = json.loads(block("json", "trails-header"))
data = base64.b64decode(block("octet-stream", "trails-data"), validate=True)
assert len(data) == header["bytes"]
wanted = json.load(open("line.json"))
for name in ("scene", "fps", "range", "unit", "up_axis"):
    assert header[name] == wanted[name], name
trail, other = header["trails"][0], wanted["trails"][0]
for name in ("viz", "source", "name", "samples_per_frame", "color_mode", "start_frame", "frame_step", "warnings"):
    assert trail[name] == other[name], name
assert trail["ghost"] is True and trail["count"] == len(other["points"])

# The line runs from x = 0 to x = 16.
assert trail["low"] == [0, 0, 0] and trail["step"][1:] == [0, 0]
places = struct.unpack_from("<%dI" % (3 * trail["count"]), data, header["sections"]["positions"])
for i, (x, _, _) in enumerate(other["points"]):
    assert abs(places[3 * i] * trail["step"][0] - x) <= trail["step"][0] / 2, i
colors = data[header["sections"]["colors"]:][:3 * trail["count"]]
assert list(colors) == [round(c * 255) for color in other["colors"] for c in color]
assert (trail["keys"], trail["keys_on_samples"], header["key_time_bytes"]) == (2, True, 4)
assert list(struct.unpack_from("<2f", data, header["sections"]["key_times"])) == other["key_times"]
