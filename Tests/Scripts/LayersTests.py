#!/usr/bin/env python3
"""Scripts/layers on small made-up trees: each rule is seen to hold and seen to break."""
import subprocess
import tempfile
import unittest
from pathlib import Path

LAYERS = Path(__file__).resolve().parents[2] / "Scripts/layers"


class LayersTests(unittest.TestCase):
    def findings(self, files):
        """The findings on a tree that holds `files` and nothing else."""
        with tempfile.TemporaryDirectory() as folder:
            for path, content in files.items():
                file = Path(folder, path)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(content, encoding="utf-8")
            run = subprocess.run([LAYERS, folder], capture_output=True, text=True, check=False)
        *found, count = run.stdout.splitlines()
        self.assertEqual(run.stderr, "")
        self.assertEqual(count, f"layers: {len(files)} files, {len(found)} findings")
        self.assertEqual(run.returncode, 1 if found else 0)
        return found

    def includes(self, path, target):
        """The findings on a file at `path` that includes the existing file `target`."""
        name = target.removeprefix("Sources/").removeprefix("Tests/")
        return self.findings({path: f'#include "{name}"\n', target: "#pragma once\n"})

    def allows(self, path, target):
        self.assertEqual(self.includes(path, target), [])

    def refuses(self, path, target):
        layer = str(Path(path).parent) + "/"
        self.assertEqual(self.includes(path, target),
                         [f"{path}:1: {layer} may not include {target}"])

    def line(self, path, line):
        return self.findings({path: f"\n{line}\n"})

    def test_Library_FoldersIncludePlatformAndModels_Allowed(self):
        self.allows("Sources/ReelCore/Offload/A.cpp", "Sources/ReelCore/Platform/B.h")
        self.allows("Sources/ReelCore/Models/A.cpp", "Sources/ReelCore/Platform/B.h")
        self.allows("Sources/ReelCore/Reports/A.cpp", "Sources/ReelCore/Offload/B.h")

    def test_Library_FoldersIncludeDownwards_Allowed(self):
        for path, target in (
            ("CardFormat", "Offload"), ("Offload", "Hashing"), ("Hashing", "Models"),
            ("Reports", "Sync"), ("Reports", "Planning"), ("Reports", "Transcode"),
            ("Sync", "Transcribe"), ("Sync", "Transcode"), ("Vision", "Transcribe"),
            ("Transcribe", "Transcode"), ("Transcode", "Models"), ("Planning", "Platform"),
        ):
            with self.subTest(f"{path} -> {target}"):
                self.allows(f"Sources/ReelCore/{path}/A.cpp", f"Sources/ReelCore/{target}/B.h")

    def test_Library_FoldersIncludeUpwardsOrAside_Refused(self):
        for path, target in (
            ("Offload", "Reports"), ("Offload", "CardFormat"), ("Hashing", "Offload"),
            ("Sync", "Reports"), ("Sync", "Vision"), ("Sync", "Offload"),
            ("Transcribe", "Sync"), ("Transcode", "Transcribe"), ("Planning", "Transcode"),
            ("Planning", "Models"), ("Vision", "Sync"), ("CardFormat", "Reports"),
        ):
            with self.subTest(f"{path} -> {target}"):
                self.refuses(f"Sources/ReelCore/{path}/A.cpp", f"Sources/ReelCore/{target}/B.h")

    def test_Library_RunAloneIncludesTheHashListOfReports(self):
        run = "Sources/ReelCore/Offload/OffloadRun"
        self.allows(f"{run}.cpp", "Sources/ReelCore/Reports/MHLWriter.h")
        self.allows(f"{run}.cpp", "Sources/ReelCore/Offload/ReelFolder.h")
        self.assertEqual(self.includes(f"{run}.cpp", "Sources/ReelCore/Reports/Report.h"),
                         [f"{run}.cpp:1: {run} may not include "
                          "Sources/ReelCore/Reports/Report.h"])
        self.refuses("Sources/ReelCore/Offload/A.cpp", "Sources/ReelCore/Reports/MHLWriter.h")

    def test_Library_FolderWithoutARule_MayIncludeNoOther(self):
        self.assertEqual(self.includes("Sources/ReelCore/New/A.h", "Sources/ReelCore/Models/B.h"),
                         ["Sources/ReelCore/New/A.h:1: Sources/ReelCore/ may not include "
                          "Sources/ReelCore/Models/B.h"])

    def test_Library_PlatformAndModelsIncludeUpwards_Refused(self):
        self.refuses("Sources/ReelCore/Platform/A.h", "Sources/ReelCore/Models/B.h")
        self.refuses("Sources/ReelCore/Models/A.h", "Sources/ReelCore/Offload/B.h")

    def test_Library_IncludesApplicationTestsOrQt_Refused(self):
        path = "Sources/ReelCore/Offload/A.h"
        for target in ("Sources/keldo-app/Support/B.h", "Tests/Support/B.h"):
            self.assertEqual(self.includes(path, target),
                             [f"{path}:1: Sources/ReelCore/Offload/ may not include {target}"])
        self.assertEqual(self.line(path, "#include <QString>"),
                         [f"{path}:2: <QString> may not be included here"])

    def test_Application_ScreensStandOnComponentsAndSupport_NotOnEachOther(self):
        self.allows("Sources/keldo-app/Offload/A.h", "Sources/keldo-app/Support/B.h")
        self.allows("Sources/keldo-app/Shell/A.cpp", "Sources/keldo-app/Offload/B.h")
        self.refuses("Sources/keldo-app/Support/A.h", "Sources/keldo-app/Offload/B.h")
        self.refuses("Sources/keldo-app/Components/A.h", "Sources/keldo-app/Shell/B.h")
        path, target = "Sources/keldo-app/Plan/A.h", "Sources/keldo-app/Offload/B.h"
        self.assertEqual(self.includes(path, target),
                         [f"{path}:1: Sources/keldo-app/ may not include {target}"])

    def test_Includes_RingOfThreeFiles_FoundOnce(self):
        folder = "Sources/ReelCore/Offload"
        found = self.findings({
            f"{folder}/A.h": '#include "ReelCore/Offload/B.h"',
            f"{folder}/B.h": '#include "ReelCore/Offload/C.h"',
            f"{folder}/C.h": '#include "A.h"',
        })
        self.assertEqual(found, [f"{folder}/C.h:1: include cycle: {folder}/A.h -> {folder}/B.h -> "
                                 f"{folder}/C.h -> {folder}/A.h"])

    def test_Includes_DiamondWithoutRing_Allowed(self):
        self.assertEqual(self.findings({
            "Sources/ReelCore/Sync/A.h": '#include "B.h"\n#include "C.h"',
            "Sources/ReelCore/Sync/B.h": '#include "D.h"',
            "Sources/ReelCore/Sync/C.h": '#include "D.h"',
            "Sources/ReelCore/Sync/D.h": "",
        }), [])

    def test_Includes_FileThatIsNotThere_Found(self):
        path = "Sources/ReelCore/Sync/A.h"
        self.assertEqual(self.line(path, '#include "Missing.h"'),
                         [f'{path}:2: "Missing.h" is no file of ours'])
        self.assertEqual(self.line("Sources/keldo-app/Shell/A.cpp", '#include "A.moc"'), [])

    def test_Includes_InComments_PassedOver(self):
        path = "Sources/ReelCore/Sync/A.h"
        self.assertEqual(self.line(path, "// #include <QString>"), [])
        self.assertEqual(self.line(path, "/*\n#include <QString>\n*/"), [])
        self.assertEqual(self.line(path, "c == '\"'; /*\n#include <QString>\n'\"' */"), [])
        self.assertEqual(self.line(path, 'auto a = "/*";\n#include <QString>\nauto b = "*/";'),
                         [f"{path}:3: <QString> may not be included here"])

    def test_Libraries_EachInItsOwnPlace_Allowed(self):
        for path, header in (
            ("Sources/ReelCore/Hashing/A.cpp", "openssl/evp.h"),
            ("Sources/ReelCore/Platform/Text.cpp", "unicode/unistr.h"),
            ("Sources/ReelCore/Reports/A.cpp", "pango/pangocairo.h"),
            ("Sources/ReelCore/Reports/A.cpp", "cairo-pdf.h"),
            ("Sources/ReelCore/Sync/A.cpp", "fmt/format.h"),
            ("Sources/ReelCore/Platform/A.cpp", "sys/stat.h"),
            ("Sources/keldo-app/Shell/A.cpp", "QQuickView"),
            ("Sources/keldo-diskutil/A.cpp", "gio/gio.h"),
            ("Tests/ReelCore/A.cpp", "gtest/gtest.h"),
            ("Benchmarks/A.cpp", "benchmark/benchmark.h"),
            ("Sources/ReelCore/Sync/A.cpp", "string_view"),
        ):
            with self.subTest(header):
                self.assertEqual(self.line(path, f"#include <{header}>"), [])

    def test_Libraries_Elsewhere_Refused(self):
        for path, header in (
            ("Sources/ReelCore/Offload/A.cpp", "openssl/evp.h"),
            ("Sources/ReelCore/Platform/File.cpp", "unicode/unistr.h"),
            ("Sources/keldo-app/Shell/A.cpp", "pango/pangocairo.h"),
            ("Sources/keldo-app/Shell/A.cpp", "gio/gio.h"),
            ("Sources/ReelCore/Sync/A.cpp", "gtest/gtest.h"),
            ("Sources/ReelCore/Sync/A.cpp", "xxhash.h"),
            ("Tests/ReelCore/A.cpp", "QtTest/QtTest"),
        ):
            with self.subTest(header):
                self.assertEqual(self.line(path, f"#include <{header}>"),
                                 [f"{path}:2: <{header}> may not be included here"])

    def test_Libraries_NeverDecidedFor_Refused(self):
        path = "Sources/ReelCore/Sync/A.cpp"
        self.assertEqual(self.line(path, "#include <boost/json.hpp>"),
                         [f"{path}:2: <boost/json.hpp> is of no library that we have decided for"])

    def test_OperatingSystem_AskedForOutsidePlatform_Refused(self):
        path = "Sources/ReelCore/Offload/A.cpp"
        self.assertEqual(self.line(path, "#include <unistd.h>"),
                         [f"{path}:2: the system's <unistd.h> belongs into "
                          "Sources/ReelCore/Platform"])
        for line in ("#ifdef __linux__", "#  if defined(__APPLE__)", "#elif defined(Q_OS_MACOS)"):
            with self.subTest(line):
                self.assertEqual(self.line(path, line),
                                 [f"{path}:2: asks for the operating system outside "
                                  "Sources/ReelCore/Platform"])
                self.assertEqual(self.line("Sources/ReelCore/Platform/A.cpp", line), [])

    def test_QML_ComponentReachesUpwards_Refused(self):
        path = "Sources/keldo-app/Components/Card.qml"
        for line, finding in (
            ("import keldo.Offload", "a component may not import keldo.Offload"),
            ('import "../Offload"', "a component may not import a folder"),
            ("required property OffloadViewModel m", "a component may not know a view model"),
        ):
            with self.subTest(line):
                self.assertEqual(self.line(path, line), [f"{path}:2: {finding}"])
        self.assertEqual(self.line(path, "import QtQuick.Layouts\nimport keldo.Components"), [])
        self.assertEqual(self.line("Sources/keldo-app/Shell/A.qml", "import keldo.Offload"), [])

    def test_QML_RepeaterInALayout_Refused(self):
        path = "Sources/keldo-app/Offload/A.qml"
        for place in ("ColumnLayout", "RowLayout", "Card", "Page"):
            text = f"{place} {{\n    id: a\n    Repeater {{\n    }}\n}}\n"
            self.assertEqual(self.line(path, text),
                             [f"{path}:4: a Repeater belongs into a Column or a Row"])
        for place in ("Column", "Row", "Item"):
            text = f"Card {{\n    {place} {{\n        Repeater {{\n        }}\n    }}\n}}\n"
            self.assertEqual(self.line(path, text), [])

    def test_QML_LiteralLooksOutsideTheme_Refused(self):
        path = "Sources/keldo-app/Offload/A.qml"
        for line, what in (
            ('border { color: Theme.a; radius: 1 } property var c: "#ff00aa"', "colour"),
            ('color: "red"', "colour"),
            ('tint: "green"', "colour"),
            ("color: Qt.rgba(0.5, 0, 0, 1)", "colour"),
            ('font.family: "Arial"', "font family"),
        ):
            with self.subTest(line):
                self.assertEqual(self.line(path, line),
                                 [f"{path}:2: a literal {what} outside Theme.qml"])
                self.assertEqual(self.line("Sources/keldo-app/Components/Theme.qml", line), [])
        for line in ('color: "transparent"', "color: Theme.accent", "font.family: Theme.mono",
                     "color: Qt.rgba(Theme.accent.r, 0, 0, 1)"):
            with self.subTest(line):
                self.assertEqual(self.line(path, line), [])

    def test_Code_LeftBehindMarks_Refused(self):
        path = "Sources/ReelCore/Sync/A.cpp"
        for mark in ("TODO", "FIXME", "XXX", "HACK", "DISABLED_", "#if 0"):
            with self.subTest(mark):
                self.assertEqual(self.line(path, mark), [f"{path}:2: left behind: {mark}"])
        self.assertEqual(self.line(path, "// XXXL todo"), [])

    def test_Docs_PlaceholderLeftBehind_Refused(self):
        with tempfile.TemporaryDirectory() as folder:
            for path, content in (("Sources/A.cpp", "a@HERE@b"), ("docs/b.md", "cost: @COST_X@"),
                                  ("docs/formats/a.md", "mail a@B.org, TODO\n@ @A @a@")):
                Path(folder, path).parent.mkdir(parents=True, exist_ok=True)
                Path(folder, path).write_text(content, encoding="utf-8")
            run = subprocess.run([LAYERS, folder], capture_output=True, text=True, check=False)
        self.assertEqual(run.stdout, "docs/b.md:1: left behind: @COST_X@\n"
                                     "layers: 1 files, 1 findings\n")
        self.assertEqual(run.returncode, 1)

    def test_Tree_WithoutSources_Fails(self):
        with tempfile.TemporaryDirectory() as folder:
            run = subprocess.run([LAYERS, folder], capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertIn("no sources", run.stderr)


if __name__ == "__main__":
    unittest.main()
