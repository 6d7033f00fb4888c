import json

report = json.load(open("report.json"))
assert report["trails"] == 1 and report["edits"] == 4, report
# Nine samples, and keys at 0 and 5 of translateX and 2 of rotateZ.
assert report["exact"] is True and report["positions_wrong"] == 0 and report["positions_compared"] == 9 + 3, report
assert report["steps"] >= 1 and report["waits"] > 10, report
assert 0 < report["longest_step_ms"] <= report["total_steps_ms"], report
# Playback from 0.1 on and writing until 0.5 keep the queue waiting, longer than the quiet time after the edit at 0.06.
assert report["last_edit_to_exact_ms"] > 400, report
