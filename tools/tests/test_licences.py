"""The licences that the program prints are those of the sources it is built from."""

import glob
import os
import re
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
# Where the build has what a library's authors say, and what of it the notice must hold.
SOURCES = {"mimalloc": "build/third_party/mimalloc-*/LICENSE", "three": "build/page/node_modules/three/LICENSE",
           "cgltf": "build/third_party/cgltf-*/cgltf.h"}


def words(path):
    """The text as one line of words, without the marks of a comment."""
    with open(path, encoding="utf-8") as file:
        return " ".join(re.sub(r"^ ?\*", "", line) for line in file).split()


class LicencesTest(unittest.TestCase):
    def test_each_notice_is_in_what_the_authors_say(self):
        for library, pattern in SOURCES.items():
            found = glob.glob(os.path.join(ROOT, *pattern.split("/")))
            if not found:
                continue  # a build with a page from elsewhere has no packages of npm
            notice = words(os.path.join(ROOT, "cmake", "licences", library + ".txt"))
            said = " ".join(words(found[0]))
            terms = " ".join(notice[notice.index("Permission"):])
            self.assertIn(terms, said, library)
            for holder in re.findall(r"Copyright (?:\(c\)|©) ([\d-]+ [A-Z]?\w+)", " ".join(notice)):
                self.assertIn(holder, said, library)

    def test_each_library_that_the_build_names_has_a_notice(self):
        named = set()
        for path in glob.glob(os.path.join(ROOT, "cmake", "*.cmake")) + [
                os.path.join(ROOT, "CMakeLists.txt"), os.path.join(ROOT, "cli", "CMakeLists.txt")]:
            with open(path, encoding="utf-8") as file:
                named |= set(re.findall(r"^ *vantorelix_licence\((\w+)\)", file.read(), re.M))
        self.assertLess(set(SOURCES), named)
        notices = os.listdir(os.path.join(ROOT, "cmake", "licences"))
        self.assertEqual(sorted(name + ".txt" for name in named), sorted(notices))


if __name__ == "__main__":
    unittest.main()
