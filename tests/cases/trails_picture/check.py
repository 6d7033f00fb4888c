import re
import xml.etree.ElementTree as xml
from pathlib import Path

SVG = "{http://www.w3.org/2000/svg}"


def picture(name):
    return xml.parse(name + ".svg").getroot()


def texts(root):
    return ["".join(t.itertext()) for t in root.iter(SVG + "text")]


def dots(root, color):
    """The places of the dots of a colour, from left to right."""
    found = [p.get("d") for p in root.iter(SVG + "path") if p.get("stroke") == color and "h0" in p.get("d")]
    return sorted(float(x) for d in found for x in re.findall(r"M([-\d.]+) ?[-\d.]+h0", d))


def circles(root, kind):
    return [float(c.get("cx")) for g in root.iter(SVG + "g") if kind in g.get("class", "").split() for c in g.iter(SVG + "circle")]


# The ball moves from frame 0 to 8. At frame 6 seven samples are past, two are to come.
flow = picture("flow")
assert len(dots(flow, "#ffbf00")) == 7 and len(dots(flow, "#00a6a6")) == 2, flow
assert "object at frame 6" in texts(flow)
ring = [c for c in flow.iter(SVG + "circle") if c.get("class") == "ring lit" and c.get("fill") != "none"]
assert [abs(float(c.get("cx")) - dots(flow, "#ffbf00")[6]) < 0.11 for c in ring] == [True], ring
assert [c.get("fill") for c in ring] == ["#ffbf00"]

# Every second frame around frame 4, from 0 to 8, is two before and two after it.
onion = picture("onion")
assert (onion.get("width"), onion.get("height")) == ("800", "600")
assert "A <line>" in texts(onion) and "line.ma" not in texts(onion)
before, after = circles(onion, "before"), circles(onion, "after")
assert len(before) == 2 and len(after) == 2, (before, after)
here = [float(c.get("cx")) for c in onion.iter(SVG + "circle") if c.get("class") == "ring lit"][0]
steps = sorted(before) + [here] + sorted(after)
assert max(before) < here < min(after)
assert max(b - a for a, b in zip(steps, steps[1:])) - min(b - a for a, b in zip(steps, steps[1:])) < 0.21, steps
strengths = [float(g.get("opacity")) for g in onion.iter(SVG + "g") if "skin" in g.get("class", "") and g.get("opacity")]
assert strengths == sorted(strengths) and strengths[0] < strengths[-1], strengths

# The keys are at frames 0 and 8; the drawn frame is one of them.
keys = picture("keys")
assert len(circles(keys, "before")) + len(circles(keys, "after")) in (1, 2)
assert "Colour: each object its own" in texts(keys)
assert len(dots(keys, "#e69f00")) == 9

# Four samples a frame have dots on whole frames only, in the colours of the other palette.
safe = picture("safe")
assert len(dots(safe, "#0073b3")) + len(dots(safe, "#f2e640")) == 9, texts(safe)
assert "a dot every frame" in texts(safe) and "these are not the engine's own colours" in texts(safe)

assert '"current": 6,' in Path("page.html").read_text(encoding="utf-8")
