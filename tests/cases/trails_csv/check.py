import csv

text = open("line.csv", newline="").read()
assert text.startswith("source,sample,frame,x,y,z,r,g,b\n"), text
rows = list(csv.DictReader(text.splitlines()))
want = [("|ball", i, 2 + i, 4 + 2 * i) for i in range(3)] + [("|rest", i, 2 + i, 0) for i in range(3)]
assert [(r["source"], int(r["sample"]), float(r["frame"]), float(r["x"])) for r in rows] == want, rows
assert all(float(r["y"]) == 0 == float(r["z"]) for r in rows)
# What rests is blue.
assert all((float(r["r"]), float(r["g"]), float(r["b"])) == (0, 0, 1) for r in rows[3:]), rows


def frames(name):
    with open(name, newline="") as file:
        return [float(row["frame"]) for row in csv.DictReader(file)]


# An open range ends, or begins, where the scene's own does: at 8, and at 0.
assert frames("late.csv") == [6, 7, 8], frames("late.csv")
assert frames("early.csv") == [0, 1], frames("early.csv")

# 48 units a second, up to the last sample; keys at 0 and 8.
text = open("more.csv", newline="").read()
assert text.startswith("source,sample,frame,x,y,z,r,g,b,speed,key\n"), text
rows = list(csv.DictReader(text.splitlines()))
assert [row["speed"] for row in rows] == ["48"] * 8 + [""], rows
assert [row["key"] for row in rows] == ["1"] + ["0"] * 7 + ["1"], rows
assert open("keys.txt").read() == "b,key\n"
