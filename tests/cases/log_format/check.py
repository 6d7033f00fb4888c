import json

# Each call by its exit code and its lines, without what differs from run to run.
calls, lines = [], []
for text in open("stderr.got", encoding="utf-8"):
    if text.startswith("exit "):
        calls.append((int(text[5:]), lines))
        lines = []
    elif text.startswith("{"):
        line = json.loads(text)
        if line["level"] == "done":
            assert line.pop("seconds") > 0, line
        lines.append(line)
    else:
        lines.append(text.strip())
assert not lines, lines


def about(scene, level, message, **more):
    return dict(more, level=level, scene=scene, message=message)


bad, joint = 'b"d.bvh', "the joint 'a b' has no '{'; add it or export again"
broken = about(bad, "error", bad + ":3: " + joint, file=bad, line=3)
node = about("driven.ma", "warning", "driven.ma: the node type 'expression' is not evaluated: what it drives keeps the "
             "value in the file; bake it before saving", file="driven.ma")
driven = ("1 trail may differ from the scene's own motion: ball.translateY is driven by expression wobble (out), which is "
          "not followed; it keeps its static value; bake it before saving")
usage = "--range: '5' is not a valid range; write FIRST:LAST, as 1:48; see 'vantorelix trails --help'"


def done(scene):
    return {"level": "done", "scene": scene, "trails": 1}


def same(code, *lines):
    got = calls.pop(0)
    for line in got[1]:  # the size of a file is not at stake here
        if isinstance(line, dict) and line["level"] == "note":
            line["message"] = line["message"].split(",")[0]
    assert got == (code, list(lines)), (got, code, lines)


same(1, broken)
same(0, node, about("driven.ma", "warning", driven), done("driven.ma"))
same(0, about("line.ma", "note", "line.csv: 1 trail"), done("line.ma"))
same(1, about("line.ma", "error", "line.ma: no object matches 'nobody'; see 'vantorelix info line.ma --all' for the names, "
              "and quote patterns with * or ?"))
same(1, about("line.ma", "error", "--frame 100: the frames are 0 to 8; name one of them, or widen --range"))
same(2, {"level": "error", "message": usage})
same(2, "vantorelix: " + usage)
same(2, {"level": "error", "message": "'trials' is not a command (did you mean 'trails'?); use one of trails, measure, view, page, info, "
         "curves, live, completion, manual; see 'vantorelix --help'"})
same(3, "vantorelix: --log-format: 'yaml' is not one of text, json; see 'vantorelix trails --help'")
same(1, about("line.ma", "note", "line.ma: line.json: 1 trail"), done("line.ma"), node,
     about("driven.ma", "warning", "driven.ma: " + driven), about("driven.ma", "note", "driven.ma: driven.json: 1 trail"),
     done("driven.ma"), broken, {"level": "error", "message": "1 of 3 scenes failed"})
assert not calls, calls
