#!/usr/bin/env python3
"""Scripts/screen-sizes on made-up trees."""
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "Scripts/screen-sizes"


class ScreenSizesTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.app = Path(folder.name) / "Sources/keldo-app"
        self.tree = folder.name

    def lines(self, path, count):
        file = self.app / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("line\n" * count, encoding="utf-8")

    def sizes(self):
        run = subprocess.run([SCRIPT, self.tree], capture_output=True, text=True, check=False)
        return run.returncode, run.stdout

    def test_ScreenAtTheLimit_IsCountedWithItsCode(self):
        self.lines("Sync/SyncScreen.qml", 400)
        self.lines("Sync/SyncViewModel.cpp", 500)
        self.lines("Sync/SyncViewModel.h", 100)
        self.assertEqual(self.sizes(), (0, "  1000  Sync (QML 400)\n"))

    def test_OneLineMore_Fails(self):
        self.lines("Sync/SyncScreen.qml", 1001)
        self.assertEqual(self.sizes(), (1, "  1001  Sync (QML 1001)  more than 1000\n"))

    def test_FolderOfNoScreen_IsNotCounted(self):
        self.lines("Plan/PlanScreen.qml", 1)
        self.lines("Components/Card.qml", 2000)
        self.lines("Shell/ContentView.qml", 2000)
        self.assertEqual(self.sizes(), (0, "     1  Plan (QML 1)\n"))

    def test_NoScreens_Fails(self):
        self.app.mkdir(parents=True)
        self.assertEqual(self.sizes(), (1, ""))


if __name__ == "__main__":
    unittest.main()
