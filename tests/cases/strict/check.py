import json

warnings = json.load(open("driven.json"))["trails"][0]["warnings"]
assert len(warnings) == 1 and "wobble" in warnings[0], warnings
assert "! not exact" in open("table").read()
