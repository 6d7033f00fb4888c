import json

pairs = json.load(open("line.json"), object_pairs_hook=list)
assert [key for key, _ in pairs] == ["scene", "fps", "range", "unit", "up_axis", "units", "trails"], pairs
scene = dict(pairs)
assert (scene["scene"], scene["fps"], scene["range"], scene["unit"], scene["up_axis"]) == ("line.ma", 24, [0, 8], "cm", "y")
assert len(scene["trails"]) == 1
assert [key for key, _ in scene["trails"][0]] == [
    "viz", "source", "name", "node", "parent", "samples_per_frame", "color_mode", "start_frame", "frame_step", "points",
    "colors", "key_times", "key_points", "key_colors", "warnings", "length", "mean_speed",
    "top_speed", "mean_speed_per_frame", "top_speed_per_frame", "measures"]
trail = dict(scene["trails"][0])
assert (trail["viz"], trail["source"], trail["name"], trail["node"]) == ("vlx_ball_viz", "|ball", "ball", None)
assert trail["parent"] is None
assert (trail["samples_per_frame"], trail["color_mode"]) == (2, 1)
assert (trail["start_frame"], trail["frame_step"]) == (0, 0.5)
# Two units a frame, two samples a frame: a unit a sample, 8 * 2 + 1 of them.
assert trail["points"] == [[i, 0, 0] for i in range(17)], trail["points"]
# The usual speed lies at 1 / 2.5 = 0.4 of the ramp, 60 % of the way from cyan at 0.25 to green at 0.5.
assert len(trail["colors"]) == 17
for color in trail["colors"]:
    assert all(abs(a - b) < 1e-12 for a, b in zip(color, [0, 1, 0.4])), color
assert trail["key_times"] == [0, 8]
assert trail["key_points"] == [[0, 0, 0], [16, 0, 0]]
assert trail["key_colors"] == [[1, 1, 1], [1, 1, 1]]
assert trail["warnings"] == []
# Two units a frame at 24 frames a second, eight frames long.
assert (trail["length"], trail["mean_speed"], trail["top_speed"]) == (16, 48, 48), trail
assert (trail["mean_speed_per_frame"], trail["top_speed_per_frame"]) == (2, 2), trail
units = dict(scene["units"])
assert units["length"] == "cm" and units["top_speed"] == "cm per second", units
assert units["top_speed_per_frame"] == "cm per frame", units
measures = dict(trail["measures"])
# A line at constant speed: no jerk, and so no smoothness of it.
assert (measures["length"], measures["top_speed"], measures["spacing_variation"]) == (16, 48, 0), measures
assert measures["top_acceleration"] == measures["top_jerk"] == measures["top_curvature"] == 0, measures
assert measures["ldlj"] is None and measures["sparc"] < -1, measures
lists = {name for name, value in measures.items() if isinstance(value, list)}
assert lists == {"holds", "pops", "contacts"}, lists
assert set(units) == set(measures) - lists | {"mean_speed_per_frame", "top_speed_per_frame"}, units
