#!/usr/bin/env python3
"""./test in a made-up tree with a made-up cmake and ctest: what it counts, and that it goes on."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

TREE = Path(__file__).resolve().parents[2]

CASE = '<testcase name="{}" status="{}">{}</testcase>'
PASSED = CASE.format("A", "run", "")
FAILED = CASE.format("B", "fail", '<failure message=""/>')
SKIPPED = CASE.format("C", "notrun", '<skipped message="SKIP_REGULAR_EXPRESSION_MATCHED"/>'
                      "<system-out>CTests.cpp:7: Skipped\nneeds a\nloop device\n\n"
                      "[  SKIPPED ] C (0 ms)</system-out>")

# "cmake --preset X" and "cmake --build build/X" fail for the X in $BROKEN, and make the rest's
# programs; ctest copies the results that the test has laid down for the build.
CMAKE = """
name=$(basename "$2"); [ "$name" = "$BROKEN" ] && echo "no compiler" && exit 1
mkdir -p build/$name/bin
[ $name = release ] && cp -p /bin/true build/release/bin/keldobay-tour
[ $name = release ] && cp -p /bin/true build/release/bin/HashingBenchmark
true
"""
CTEST = """
name=$(basename "$2")
echo "<testsuite>$RESULTS</testsuite>" > build/$name/junit.xml
case "$RESULTS" in *failure*) exit 8 ;; esac
"""


class TestCommandTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = Path(folder.name)
        (self.tree / "Scripts").mkdir()
        shutil.copy(TREE / "test", self.tree)
        shutil.copy(TREE / "Scripts/junit-counts", self.tree / "Scripts")
        for script in ("install-dependencies", "layers", "screen-sizes", "format", "qmllint"):
            self.script(f"Scripts/{script}", "true")
        self.script("Scripts/install-transcript", 'echo "$@" > installed')
        self.script("Tests/Scripts/SomeTests.py", "true")
        self.script("Fuzz/run", "true")
        self.script("bin/cmake", CMAKE)
        self.script("bin/ctest", CTEST)

    def script(self, path, body):
        file = self.tree / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(f"#!/bin/sh\n{body}\n", encoding="utf-8")
        file.chmod(0o755)

    def run_test(self, *options, results=PASSED, broken="-"):
        """The exit status and the lines of a run."""
        environment = {name: value for name, value in os.environ.items()
                       if name != "KELDO_TEST_TRANSCRIPT"}
        run = subprocess.run(
            [self.tree / "test", *options], capture_output=True, text=True, check=False,
            env={**environment, "PATH": f"{self.tree}/bin:{os.environ['PATH']}",
                 "XDG_CACHE_HOME": f"{self.tree}/cache", "RESULTS": results, "BROKEN": broken})
        return run.returncode, run.stdout.splitlines()

    # layers, sizes, scripts, format, transcript; three presets configured and built; qmllint, tour,
    # benchmark, fuzzers.
    STAGES = 5 + 6 + 4

    def test_AllPasses_CountsStagesAndTestsOfThreeBuilds(self):
        status, lines = self.run_test(results=PASSED)
        self.assertEqual(lines[-1], f"{self.STAGES + 3} passed, 0 failed, 0 skipped")
        self.assertEqual(status, 0)

    def test_Quick_RunsChecksAndReleaseTestsAlone(self):
        status, lines = self.run_test("--quick", results=PASSED * 2)
        self.assertEqual(lines[-1], "10 passed, 0 failed, 0 skipped")
        self.assertEqual(status, 0)

    def test_OneTestFails_FailsAndShowsIt(self):
        status, lines = self.run_test("--quick", results=PASSED + FAILED)
        self.assertEqual(lines[-3:], ["Failed:", "  release tests", "9 passed, 1 failed, 0 skipped"])
        self.assertEqual(status, 1)

    def test_OneTestSkips_NamesItAndItsReason(self):
        status, lines = self.run_test("--quick", results=PASSED + SKIPPED)
        self.assertEqual(lines[-3:], ["Skipped:", "  release: C: needs a loop device",
                                      "9 passed, 0 failed, 1 skipped"])
        self.assertEqual(status, 0)

    def test_NoTestFound_Fails(self):
        self.script("bin/ctest", "exit 8")
        status, lines = self.run_test("--quick")
        self.assertEqual(lines[-1], "8 passed, 1 failed, 0 skipped")
        self.assertEqual(status, 1)

    def test_LayersFail_GoesOnToTheTests(self):
        self.script("Scripts/layers", "echo a finding; exit 1")
        status, lines = self.run_test("--quick")
        self.assertIn("        a finding", lines)
        self.assertEqual(lines[-1], "8 passed, 1 failed, 0 skipped")
        self.assertEqual(status, 1)

    def test_SanitizerBuildFails_GoesOnToTheOthers(self):
        status, lines = self.run_test(broken="asan")
        self.assertEqual(lines[-1], f"{self.STAGES - 2 + 2} passed, 1 failed, 0 skipped")
        self.assertEqual(status, 1)

    def test_TranscriptToolsNotToBeHad_CountsThemAsSkippedAndGoesOn(self):
        self.script("Scripts/install-transcript", "echo Not there: bin/whisper-cli; exit 1")
        status, lines = self.run_test("--quick")
        self.assertEqual(lines[-3:], ["Skipped:", "  transcript tools: Not there: bin/whisper-cli",
                                      "8 passed, 0 failed, 1 skipped"])
        self.assertEqual(status, 0)

    def test_CacheFolder_TakesTheTranscriptTools(self):
        self.run_test("--quick")
        self.assertEqual((self.tree / "installed").read_text(encoding="utf-8"),
                         f"--multilingual {self.tree}/cache/keldobay-transcript\n")

    def test_TourBenchmarksAndFuzzersGone_Fails(self):
        self.script("bin/cmake", "mkdir -p build/$(basename $2)")
        (self.tree / "Fuzz/run").unlink()
        status, lines = self.run_test()
        self.assertEqual(lines[-5:], ["Failed:", "  tour", "  benchmarks: no programs found",
                                      "  fuzzers",
                                      f"{self.STAGES - 3 + 3} passed, 3 failed, 0 skipped"])
        self.assertEqual(status, 1)

    def test_InstallationFails_StopsWithOneFailure(self):
        self.script("Scripts/install-dependencies", "exit 1")
        status, lines = self.run_test()
        self.assertEqual(lines[-1], "0 passed, 1 failed, 0 skipped")
        self.assertEqual(status, 1)


if __name__ == "__main__":
    unittest.main()
