"""The archive of the program: complete, the same results as the build of this checkout, runs on an older system.

VANTORELIX_RELEASE is the folder of the archive, VANTORELIX_PROGRAM the program of the build, VANTORELIX_BUILD its folder.
"""

import glob
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "python"))
from elf import Library, problems  # noqa: E402

ARCHIVE, = glob.glob(os.path.join(os.environ["VANTORELIX_RELEASE"], "vantorelix-*-linux-x86_64.tar.xz"))
TOP = os.path.basename(ARCHIVE)[:-len(".tar.xz")]
BUILT = os.environ["VANTORELIX_PROGRAM"]
SCENES = sorted(path for kind in ("ma", "bvh", "fbx", "gltf") for path in glob.glob(os.path.join(ROOT, "examples", "*." + kind)))
# Versions of Debian before the one that this is developed on, oldest first: not every mirror has them all.
OLDER = ("stretch", "buster", "bullseye")


def output(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if done.returncode != 0:
        raise AssertionError("%s: exit code %d, %s" % (command, done.returncode, done.stderr.decode()))
    return done.stdout


class Release(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        with tarfile.open(ARCHIVE) as archive:
            cls.names = archive.getnames()
            archive.extractall(cls.folder)
        cls.top = os.path.join(cls.folder, TOP)
        cls.program = os.path.join(cls.top, "bin", "vantorelix")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def text(self, *path):
        with open(os.path.join(self.top, *path), encoding="utf-8") as file:
            return file.read()


class Contents(Release):
    def test_everything_lies_in_one_folder_named_after_it(self):
        self.assertEqual({name.split("/")[0] for name in self.names}, {TOP})

    def test_it_holds_what_an_installation_of_this_build_holds(self):
        prefix = os.path.join(self.folder, "installed")
        output("cmake", "--install", os.environ["VANTORELIX_BUILD"], "--prefix", prefix)
        found = [os.path.relpath(os.path.join(folder, name), prefix) for folder, _, names in os.walk(prefix) for name in names]
        self.assertIn(os.path.join("share", "man", "man1", "vantorelix.1"), found)
        self.assertEqual(sorted(found), sorted(name[len(TOP) + 1:] for name in self.names))

    def test_the_manual_page_and_the_completions_are_those_of_the_program(self):
        for path, *arguments in (("man/man1/vantorelix.1", "manual"),
                                 ("bash-completion/completions/vantorelix", "completion", "bash"),
                                 ("zsh/site-functions/_vantorelix", "completion", "zsh"),
                                 ("fish/vendor_completions.d/vantorelix.fish", "completion", "fish")):
            self.assertEqual(self.text("share", path), output(self.program, *arguments).decode(), path)

    def test_the_pages_link_to_nothing_that_is_missing(self):
        folder = os.path.join("share", "doc", "vantorelix")
        pages = [name for name in os.listdir(os.path.join(self.top, folder)) if name.endswith(".md")]
        self.assertLessEqual({"cli.md", "formats.md", "install.md", "python.md", "shots.md", "viewer.md"}, set(pages))
        links = [(page, link) for page in pages for link in re.findall(r"\]\(([^)#]+)[^)]*\)", self.text(folder, page))]
        self.assertTrue(links)
        for page, link in links:
            if not re.match("[a-z]+:", link):
                self.assertTrue(os.path.exists(os.path.join(self.top, folder, link)), (page, link))

    def test_the_licences_name_what_only_this_build_links_in(self):
        own = output(self.program, "--licences").decode()
        self.assertEqual(self.text("share", "doc", "vantorelix", "licences.txt"), own)
        notices = dict(re.findall(r"^(\S+)\n=+\n\n(.*?)(?=^\S+\n=+\n|\Z)", own, re.M | re.S))
        for library, words in (("libc++", "LLVM Project"), ("zig", "Zig contributors"), ("mimalloc", "Daan Leijen"),
                               ("glibc", "permission to link the compiled version")):
            self.assertIn(words, notices[library], library)


class Program(Release):
    def test_it_needs_nothing_but_an_old_glibc(self):
        with open(self.program, "rb") as file:
            self.assertEqual(problems(Library(file.read())), [])

    def test_the_program_of_the_build_would_not_pass_that(self):
        with open(BUILT, "rb") as file:
            self.assertIn("needs libstdc++.so.6", problems(Library(file.read())))

    def test_it_is_of_this_version(self):
        version = output(self.program, "--version")
        self.assertEqual(version, output(BUILT, "--version"))
        self.assertIn(TOP.split("-")[1], version.decode())

    def test_its_outputs_are_those_of_the_build_byte_for_byte(self):
        self.assertGreaterEqual(len(SCENES), 6)
        for scene in SCENES:
            for arguments in [["trails", scene, "--out=-." + kind] for kind in ("json", "csv", "svg", "html")] + [
                    ["trails", scene], ["info", scene, "--all"], ["curves", scene, "--out=-.ma"]]:
                self.assertEqual(output(self.program, *arguments), output(BUILT, *arguments), arguments)

    def test_it_runs_on_an_older_debian(self):
        scene = os.path.join(ROOT, "examples", "walk.bvh")
        system = self.older_system()
        inside = os.path.join(system, "opt")
        shutil.copy(self.program, inside)
        shutil.copy(scene, inside)
        before = subprocess.run(["chroot", system, "ldd", "--version"], stdout=subprocess.PIPE).stdout.decode()
        glibc = tuple(map(int, re.search(r"(\d+)\.(\d+)\n", before).groups()))
        self.assertLess(glibc, (2, 36))
        self.assertEqual(output("chroot", system, "/opt/vantorelix", "trails", "/opt/walk.bvh", "--out=-.csv"),
                         output(BUILT, "trails", scene, "--out=-.csv"))

    def older_system(self):
        """The folder of the oldest Debian that can be had, kept for the next time."""
        if os.geteuid() != 0 or not shutil.which("debootstrap"):
            self.skipTest("to put up an older Debian takes root and the program debootstrap")
        for name in OLDER:
            folder = os.path.join(os.environ["VANTORELIX_BUILD"], "systems", name)
            done = os.path.join(folder, "complete")
            if not os.path.exists(done):
                shutil.rmtree(folder, ignore_errors=True)
                if subprocess.run(["debootstrap", "--variant=minbase", name, folder], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL).returncode != 0:
                    continue
                open(done, "w").close()
            return folder
        self.skipTest("no mirror here has one of Debian's " + ", ".join(OLDER))
        return None


if __name__ == "__main__":
    unittest.main()
