import csv
import json


def read(name):
    return json.load(open(name + ".json"))


def lines(name):
    return list(csv.DictReader(open(name + ".csv")))


def numbers(measures):
    return {name: value for name, value in measures.items() if not isinstance(value, list)}


def told(line, prefix=""):
    """The measures in a line of the CSV, by the names of the JSON."""
    return {name: float(line[prefix + name]) if line[prefix + name] else None for name in names}


# The same measures in every file, by the same names.
alone, trails = read("alone"), read("trails")
assert [trail["measures"] for trail in alone["trails"]] == [trail["measures"] for trail in trails["trails"]]
assert alone["units"] == trails["units"]
ball = alone["trails"][0]["measures"]
names = list(numbers(ball))
for trail, line in zip(alone["trails"], lines("alone")):
    assert line["source"] == trail["source"]
    assert list(line) == ["source"] + names, line
    assert told(line) == numbers(trail["measures"]), line
assert (ball["length"], ball["mean_speed"], ball["top_jerk"], ball["hold_count"]) == (16, 48, 0, 0), ball
assert ball["figure_height"] is None and ball["slide_share"] is None
rest = alone["trails"][1]["measures"]
assert (rest["length"], rest["top_speed"], rest["sparc"], rest["holds"], rest["pops"]) == (0, 0, None, [], []), rest

# What changed: the ball's pop. What stands still did not change.
both = read("both")
before, after = both["trails"][0]["measures"], both["trails"][0]["compare"]["measures"]
assert after["top_pop_frame"] == 4 and after["top_pop_distance"] == 5, after
assert before["top_pop"] is None and len(after["pops"]) == 1
changes = both["trails"][0]["compare"]["changes"]
sizes = [change["change"] for change in changes]
assert sizes == sorted(sizes, reverse=True) and 0 < sizes[-1] and sizes[0] == 1, sizes
found = {change["measure"]: change for change in changes}
assert set(found) <= set(names) and not any(name.endswith("_frame") for name in found), set(found)
for name, change in found.items():
    assert (change["before"], change["after"]) == (before[name], after[name]), change
# From 16 to 6 + 7 + 3 + 6 in all.
assert found["length"] == {"measure": "length", "before": 16, "after": 22, "change": 6 / 22}, found["length"]
assert both["trails"][1]["compare"]["changes"] == []
assert both["changes"] == [dict(source="|ball", **changes[0])]
line = lines("both")[0]
assert told(line) == numbers(before) and told(line, "compare_") == numbers(after)
assert (line["compare_source"], line["changed"], line["change"]) == ("|ball", changes[0]["measure"], "1"), line
assert (lines("both")[1]["changed"], lines("both")[1]["change"]) == ("", "")

# Feet come down, and stand for half of a walk.
for foot in read("feet")["trails"]:
    measures = foot["measures"]
    assert 0.4 < measures["contact_share"] < 0.8, measures
    assert measures["slide_share"] < 0.3 and len(measures["contacts"]) >= 3, measures
    spans = sum(contact["slide_distance"] for contact in measures["contacts"])
    assert abs(spans - measures["slide_distance"]) < 1e-9

# The same robot in metres, with z up.
for one, other in zip(read("robot")["trails"], read("metres")["trails"]):
    one, other = one["measures"], other["measures"]
    assert abs(one["length"] - 100 * other["length"]) <= 1e-6 * one["length"]
    assert one["contact_share"] == other["contact_share"] and one["slide_share"] == other["slide_share"], one["contacts"]
assert any(trail["measures"]["contact_share"] for trail in read("robot")["trails"])

# Each scene of several has files of its own.
assert told(lines("line.measures")[0]) == numbers(before)
assert told(lines("popped.measures")[0]) == numbers(after)
