import json

trails = json.load(open("twins.json"))["trails"]
# Both objects are called ctrl; each has its trail, in the order of the scene.
assert [t["source"] for t in trails] == ["|left|ctrl", "|right|ctrl"]
assert [t["name"] for t in trails] == ["ctrl", "ctrl"]
assert trails[0]["points"] == [[2 * i, 0, 0] for i in range(5)]
assert trails[1]["points"] == [[2 * i, 10, 0] for i in range(5)]
