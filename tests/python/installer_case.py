"""What the tests of the installer share: made-up packages, and a folder of Maya that is not the user's."""

import glob
import hashlib
import importlib.util
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

CHECKOUT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PACKAGE = os.path.join(CHECKOUT, "maya", "package")
INSTALLER = os.path.join(PACKAGE, "install_vantorelix.py")
PLUGIN = "contents/plug-ins/Vantorelix_plugin.py"
PATHS = ("MAYA_MODULE_PATH", "MAYA_PLUG_IN_PATH", "MAYA_SCRIPT_PATH", "PYTHONPATH")


def load_installer():
    description = importlib.util.spec_from_file_location("install_vantorelix", INSTALLER)
    module = importlib.util.module_from_spec(description)
    description.loader.exec_module(module)
    return module


def write(path, text):
    folder = os.path.dirname(path)
    if not os.path.isdir(folder):
        os.makedirs(folder)
    with open(path, "w", newline="") as file:
        file.write(text)
    return path


def read(path):
    with open(path, newline="") as file:
        return file.read()


def tree(folder):
    """Every file below `folder` with what it holds."""
    return {os.path.relpath(os.path.join(above, name), folder): read(os.path.join(above, name))
            for above, _, names in os.walk(folder) for name in names}


class InstallerTest(unittest.TestCase):
    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.maya = os.path.join(self.folder, "maya")
        environment = mock.patch.dict(os.environ, MAYA_APP_DIR=self.maya)
        environment.start()
        self.addCleanup(environment.stop)
        for variable in PATHS:
            os.environ.pop(variable, None)
        self.installer = load_installer()
        self.modules = os.path.join(self.maya, "modules")
        self.installed = os.path.join(self.modules, "vantorelix")
        self.package = self.make_package("1")

    def make_package(self, version):
        package = os.path.join(self.folder, "vantorelix-" + version)
        files = {"contents/linux/python-3.7/_vantorelix.so": "binary " + version,
                 "contents/linux/python-3.7/Vantorelix_engine.py": "engine " + version,
                 "contents/linux/python-3.11/Vantorelix_engine.py": "engine " + version,
                 "contents/windows/python-3.7/_vantorelix.pyd": "binary " + version,
                 "contents/windows/python-3.7/Vantorelix_engine.py": "engine " + version,
                 PLUGIN: "plugin " + version}
        files["install_vantorelix.py"] = read(INSTALLER)
        files["Vantorelix.mod"] = read(os.path.join(PACKAGE, "Vantorelix.mod")) + "// " + version
        for path, text in files.items():
            write(os.path.join(package, path), text)
        write(os.path.join(package, "manifest.json"),
              json.dumps({path: hashlib.sha256(text.encode()).hexdigest() for path, text in files.items()}))
        return package

    def install(self, package=None):
        return self.installer.install(package or self.package, self.modules)

    def engine(self):
        return read(os.path.join(self.installed, "contents", "linux", "python-3.7", "Vantorelix_engine.py"))

    def copy_of_plugin(self, version, text):
        """What the engine, or somebody else, has put in the plug-ins folder of a version of Maya."""
        return write(os.path.join(self.maya, version, "plug-ins", "Vantorelix_plugin.py"), text)

    def run_installer(self, *arguments, **flags):
        """(exit code, standard output, standard error)."""
        script = os.path.join(flags.get("package", self.package), "install_vantorelix.py")
        done = subprocess.run([sys.executable, script] + list(arguments), stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              universal_newlines=True)
        return done.returncode, done.stdout.strip(), done.stderr.strip()


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ and "VANTORELIX_HOST" in os.environ,
                     "VANTORELIX_MODULE and VANTORELIX_HOST name no folders")
class RealPackageTest(InstallerTest):
    """A package of the module and of what lies beside it, for the interpreter that runs the test."""

    PYTHON = os.path.join("windows" if os.name == "nt" else "linux", "python-{0}.{1}".format(*sys.version_info[:2]))

    def make_package(self, version):
        package = super(RealPackageTest, self).make_package(version)
        companion, python = os.path.join(CHECKOUT, "maya", "companion"), os.path.join(package, "contents", self.PYTHON)
        shutil.rmtree(os.path.join(package, "contents"))
        shutil.copytree(os.environ["VANTORELIX_MODULE"], python, ignore=shutil.ignore_patterns("__pycache__"))
        for path in glob.glob(os.path.join(companion, "*.py")):
            shutil.copy2(path, python)
        os.remove(os.path.join(python, "Vantorelix_plugin.py"))
        os.makedirs(os.path.dirname(os.path.join(package, PLUGIN)))
        shutil.copy2(os.path.join(companion, "Vantorelix_plugin.py"), os.path.join(package, PLUGIN))
        os.remove(os.path.join(package, "manifest.json"))
        files = {os.path.relpath(os.path.join(above, name), package).replace(os.sep, "/"): self.installer.digest(
            os.path.join(above, name)) for above, _, names in os.walk(package) for name in names}
        write(os.path.join(package, "manifest.json"), json.dumps(files))
        return package
