import json
import math


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
