#!/usr/bin/env python3
"""./run in a made-up tree with a made-up program: what it tells the program of the transcript's tools."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

TREE = Path(__file__).resolve().parents[2]
VARIABLES = ("KELDO_WHISPER_CLI", "KELDO_PYTHON")
KELDOBAY = 'echo "${KELDO_WHISPER_CLI-unset} ${KELDO_PYTHON-unset}"'


class RunCommandTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = Path(folder.name)
        shutil.copy(TREE / "run", self.tree)
        self.program("Scripts/install-dependencies", "true")
        self.program("bin/cmake", "true")
        self.program("build/release/bin/keldobay", KELDOBAY)
        (self.tree / "build/release/build.ninja").touch()
        self.tools = self.tree / "home/.local/share/keldobay"

    def program(self, path, body):
        file = self.tree / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(f"#!/bin/sh\n{body}\n", encoding="utf-8")
        file.chmod(0o755)

    def run_it(self, **variables):
        """What the program sees in the two variables."""
        environment = {name: value for name, value in os.environ.items()
                       if name not in (*VARIABLES, "XDG_DATA_HOME")}
        run = subprocess.run([self.tree / "run"], capture_output=True, text=True, check=True,
                             env={**environment, "HOME": f"{self.tree}/home", "DISPLAY": ":0",
                                  "PATH": f"{self.tree}/bin:{os.environ['PATH']}", **variables})
        return run.stdout.split()

    def install(self, folder="home/.local/share"):
        self.program(f"{folder}/keldobay/bin/whisper-cli", "true")
        python = self.tree / folder / "keldobay/python/bin/python3"
        python.parent.mkdir(parents=True)
        python.symlink_to("/bin/sh")

    def test_NothingInstalled_SetsNeither(self):
        self.assertEqual(self.run_it(), ["unset", "unset"])

    def test_Installed_NamesBothAndThePythonByItsOwnPath(self):
        self.install()
        self.assertEqual(self.run_it(), [f"{self.tools}/bin/whisper-cli",
                                         f"{self.tools}/python/bin/python3"])

    def test_InstalledInDataHome_NamesThose(self):
        self.install("data")
        self.assertEqual(self.run_it(XDG_DATA_HOME=f"{self.tree}/data"),
                         [f"{self.tree}/data/keldobay/bin/whisper-cli",
                          f"{self.tree}/data/keldobay/python/bin/python3"])

    def test_DataHomeIsRelative_DoesNotCount(self):
        self.install()
        self.assertEqual(self.run_it(XDG_DATA_HOME="data")[0], f"{self.tools}/bin/whisper-cli")

    def test_VariableIsSet_IsLeftAlone(self):
        self.install()
        self.assertEqual(self.run_it(KELDO_PYTHON="/own/python3"),
                         [f"{self.tools}/bin/whisper-cli", "/own/python3"])

    def test_OnlyWhisperInstalled_NamesThatAlone(self):
        self.program("home/.local/share/keldobay/bin/whisper-cli", "true")
        self.assertEqual(self.run_it(), [f"{self.tools}/bin/whisper-cli", "unset"])


if __name__ == "__main__":
    unittest.main()
