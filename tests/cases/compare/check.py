import json
import math
import re
import xml.etree.ElementTree as xml


def read(name):
    return json.load(open(name + ".json"))


def distances(a, b):
    return [math.dist(p, q) for p, q in zip(a["points"], b["points"])]


# Fields are added, and nothing else changes; the CSV gets nothing.
both, alone = read("both"), read("alone")
assert both.pop("compare") == {"scene": "fewer.ma", "take": None}
found = {t["source"]: t.pop("compare") for t in both["trails"]}
assert both == alone
assert open("both.csv").read() == open("alone.csv").read()
assert found["|rest"] is None
assert found["|ball"]["distances"] == [i / 2 for i in range(17)], found
assert list(found["|ball"]) == ["source", "distances", "largest", "frame"]
assert (found["|ball"]["source"], found["|ball"]["largest"], found["|ball"]["frame"]) == ("|ball", 8, 8)

# Two takes of a file, against each take by itself.
takes, reach, wave = read("takes"), read("reach"), read("wave")
assert takes["compare"]["take"] == "wave"
wave = {t["source"]: t for t in wave["trails"]}
assert takes["range"] == [5, 20]
compared = [t for t in takes["trails"] if t["compare"]]
assert len(compared) == len(reach["trails"]) == 6
for trail, same in zip(takes["trails"], reach["trails"]):
    assert trail["points"] == same["points"]
    truth = distances(same, wave[trail["source"]])
    assert len(trail["compare"]["distances"]) == len(truth) == 16
    assert all(abs(d - t) <= 1e-12 * (1 + t) for d, t in zip(trail["compare"]["distances"], truth)), trail["source"]
    assert trail["compare"]["largest"] == max(trail["compare"]["distances"])
    assert trail["compare"]["distances"][int(trail["compare"]["frame"]) - 5] == trail["compare"]["largest"]
assert max(t["compare"]["largest"] for t in compared) > 100

# The same motion is nowhere apart from itself, turned and scaled or not.
turned = read("turned")
assert (turned["unit"], turned["up_axis"]) == ("m", "z")
assert all(t["compare"]["largest"] < 1e-9 for t in turned["trails"])
assert all(t["compare"]["largest"] == 0 for t in read("same_rate")["trails"])
assert max(t["compare"]["largest"] for t in read("rates")["trails"]) > 0.01

# In the picture the ball of the second scene, which is half as fast again, ends 8 farther: a third of its way.
SVG = "{http://www.w3.org/2000/svg}"
picture = xml.parse("named.svg").getroot()
texts = ["".join(t.itertext()) for t in picture.iter(SVG + "text")]
assert "largest distance to named.ma: ball, 8 cm at frame 8" in texts and "8 cm at frame 8" in texts, texts


def ends(kind):
    """Where a line without bends of this kind begins and ends, from left to right."""
    d = [p.get("d") for p in picture.iter(SVG + "path") if p.get("class") == kind][0]
    x, _, *steps = [float(number) for number in re.findall(r"-?(?:\d+\.?\d*|\.\d+)", d)]
    return x, x + sum(steps[::2])


start, end = ends("second")
assert abs((ends("apart")[1] - ends("apart")[0]) - (end - start) / 3) < 0.3, (ends("apart"), start, end)
# At frame 4 the ball is half of its way in either scene.
here, there = ends("second there")
assert abs(there - (start + end) / 2) < 0.2 and abs((there - here) - (end - start) / 6) < 0.3, (here, there)
