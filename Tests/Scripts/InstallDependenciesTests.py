#!/usr/bin/env python3
"""Scripts/install-dependencies with a made-up package manager: what it would install, and as whom."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "Scripts/install-dependencies"

# Answers as if every package were installed but those in $MISSING.
DPKG_QUERY = """
for package in "$@"; do
    case "$package" in --*) continue ;; esac
    case " $MISSING " in
        *" $package "*) echo "not-installed $package" ;;
        *) echo "installed $package" ;;
    esac
done
"""
NOTE = 'echo "$(basename "$0") $*" >> "$CALLS"; '


class InstallDependenciesTests(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.tool("dpkg-query", DPKG_QUERY)
        self.tool("apt-get", NOTE + 'case " $* " in *" $BROKEN "*) exit 100 ;; esac')
        self.tool("sudo", NOTE + 'while [ "${1#-}" != "$1" ]; do shift; done; exec "$@"')
        self.tool("id", 'echo "$USER_ID"')
        self.tool("npm", "true")

    def tool(self, name, body):
        path = Path(self.folder.name, name)
        path.write_text(f"#!/bin/sh\n{body}\n", encoding="utf-8")
        path.chmod(0o755)

    def only(self, *tools):
        """A folder that has just these programs of the system."""
        folder = Path(self.folder.name, "system")
        folder.mkdir()
        for tool in tools:
            folder.joinpath(tool).symlink_to(shutil.which(tool))
        return str(folder)

    def install(self, what, missing="", user=0, broken="-", path=os.environ["PATH"]):
        """The exit status, and the calls of sudo and apt-get without their options."""
        calls = Path(self.folder.name, "calls")
        run = subprocess.run(
            [SCRIPT, what], stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False,
            env={**os.environ, "PATH": f"{self.folder.name}:{path}",
                 "CALLS": str(calls), "MISSING": missing, "USER_ID": str(user), "BROKEN": broken})
        lines = calls.read_text(encoding="utf-8").splitlines() if calls.exists() else []
        words = [[word for word in line.split() if "=" not in word and "::" not in word
                  and word != "--option"] for line in lines]
        return run.returncode, [" ".join(line) for line in words]

    def test_NothingMissing_CallsNeitherSudoNorApt(self):
        for what in ("run", "transcript", "test", "tools"):
            with self.subTest(what):
                self.assertEqual(self.install(what, user=1000), (0, []))

    def test_TwoMissing_RootInstallsJustThese(self):
        self.assertEqual(self.install("run", missing="g++ udisks2"), (0, [
            "apt-get update",
            "apt-get install --yes --no-install-recommends g++ udisks2"]))

    def test_OneMissing_UserWithoutTerminalUsesSudoWithoutQuestions(self):
        status, calls = self.install("run", missing="cmake", user=1000)
        self.assertEqual(status, 0)
        self.assertEqual(calls[0], "sudo -n env apt-get update")
        self.assertEqual(calls[2],
                         "sudo -n env apt-get install --yes --no-install-recommends cmake")

    def test_TestPackageMissing_RunDoesNotAskForIt(self):
        self.assertEqual(self.install("run", missing="libgtest-dev gcovr"), (0, []))
        self.assertEqual(self.install("test", missing="libgtest-dev gcovr")[1][1],
                         "apt-get install --yes --no-install-recommends libgtest-dev")

    def test_NpmFromElsewhere_ItsPackageIsNotAskedFor(self):
        self.assertEqual(self.install("transcript", missing="npm"), (0, []))

    def test_NoNpm_ItsPackageIsInstalled(self):
        path = self.only("bash", "basename", "dirname", "awk", "sort", "comm", "env")
        Path(self.folder.name, "npm").unlink()
        self.assertEqual(self.install("transcript", missing="npm", path=path)[1][1],
                         "apt-get install --yes --no-install-recommends npm")

    def test_PackageListsOutOfReach_InstallsFromTheOldOnes(self):
        status, calls = self.install("run", missing="cmake", broken="update")
        self.assertEqual(status, 0)
        self.assertEqual(len(calls), 2)

    def test_InstallationFails_Fails(self):
        self.assertNotEqual(self.install("run", missing="cmake", broken="install")[0], 0)

    def test_UnknownSet_SaysHowItIsUsed(self):
        self.assertEqual(self.install("everything"), (2, []))


if __name__ == "__main__":
    unittest.main()
