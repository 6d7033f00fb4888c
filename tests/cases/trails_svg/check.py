import re
import xml.etree.ElementTree as xml

SVG = "{http://www.w3.org/2000/svg}"


def picture(name):
    root = xml.parse(name + ".svg").getroot()
    assert root.tag == SVG + "svg"
    return root


def texts(root):
    return ["".join(t.itertext()) for t in root.iter(SVG + "text")]


def strokes(root):
    return [p.get("stroke") for p in root.iter(SVG + "path") if p.get("stroke")]


for name in ("persp", "front", "side", "top"):
    root = picture(name)
    words = texts(root)
    assert "line.ma" in words and "ball" in words and "Colour: standard" in words, words
    style = next(root.iter(SVG + "style")).text
    assert "prefers-color-scheme" in style
    # Standard colour (0.15, 0.75, 0.65).
    assert "#26bfa6" in strokes(root), strokes(root)

front = picture("front")
assert "0" in texts(front) and "8" in texts(front)
# The line from x = 0 to x = 16 lies level; its nine dots are as far apart as their samples.
dots = [p for p in front.iter(SVG + "path") if p.get("stroke") == "#26bfa6" and "h0" in p.get("d")]
assert len(dots) == 1, dots
places = [tuple(map(float, m)) for m in re.findall(r"M([-\d.]+) ?([-\d.]+)h0", dots[0].get("d"))]
assert len(places) == 9, places
assert len({y for _, y in places}) == 1
steps = [b[0] - a[0] for a, b in zip(places, places[1:])]
assert max(steps) - min(steps) < 0.21 and min(steps) > 50, steps

bare = picture("bare")
assert "prefers-color-scheme" not in next(bare.iter(SVG + "style")).text
assert not any("h0" in p.get("d") for p in bare.iter(SVG + "path"))
# Only the swatch of the legend has the colour.
assert len(strokes(bare)) == 1, strokes(bare)

# Key 1 at frame 0 begins a green beat, key 2 at frame 8 a white one without length: its dot alone is white.
beats = picture("beats")
lines = [p for p in beats.iter(SVG + "path") if p.get("stroke") == "#26d940" and "l" in p.get("d")]
assert len(lines) == 1, strokes(beats)
white = [p for p in beats.iter(SVG + "path") if p.get("stroke") == "#ffffff" and p.get("d").count("h0") == 1]
assert len(white) == 1, strokes(beats)
