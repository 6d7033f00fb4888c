import os
import re

# Each library that the program is built from has its notice, with whose it is and on which terms.
text = open("licences.txt", encoding="utf-8").read()
notices = dict(re.findall(r"^(\S+)\n=+\n\n(.*?)(?=^\S+\n===|\Z)", text, re.M | re.S))
sources = os.path.join(os.environ["DOCS"], os.pardir, "cmake")
linked = [name[:-len(".cmake")] for name in os.listdir(sources) if name in ("ufbx.cmake", "cgltf.cmake")]
assert len(linked) == 2
for name in linked + ["three", "CLI11", "nlohmann_json"]:
    assert "Copyright" in notices[name], (name, sorted(notices))
    assert "WITHOUT WARRANTY" in notices[name] or "WARRANTIES" in notices[name], name
