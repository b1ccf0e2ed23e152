#!/usr/bin/env python3
"""The programs that lay models out anew, on small made-up models of the same form."""
import io
import pickle
import struct
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

PROGRAMS = Path(__file__).resolve().parents[2] / "Scripts/transcript"
sys.path.append(str(PROGRAMS))
sys.dont_write_bytecode = True
import onnx_file  # noqa: E402


def halves(*numbers):
    return struct.pack(f"<{len(numbers)}e", *numbers)


def convert(program, *arguments):
    return subprocess.run([sys.executable, "-B", PROGRAMS / program, *arguments],
                          capture_output=True, text=True, check=False)


def messages(data):
    """The fields of a message of an ONNX file: pairs of number and value."""
    at, found = 0, []

    def varint():
        nonlocal at
        value = shift = 0
        while True:
            byte, at = data[at], at + 1
            value |= (byte & 0x7F) << shift
            shift += 7
            if byte < 0x80:
                return value

    while at < len(data):
        tag = varint()
        if tag & 7 == 0:
            found.append((tag >> 3, varint()))
        elif tag & 7 == 5:
            found.append((tag >> 3, struct.unpack_from("<f", data, at)[0]))
            at += 4
        else:
            size = varint()
            found.append((tag >> 3, data[at:at + size]))
            at += size
    return found


def parts(data, number):
    return [value for field, value in messages(data) if field == number]


class SpeechModelTests(unittest.TestCase):
    """A model of CTranslate2 with one layer a side, a state of 64 and the tokens of English."""
    STATE, BANDS, AUDIO, TEXT, VOCABULARY = 64, 2, 3, 4, 50258

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        words = ["a", "\u0120b", "\u00e9", *[f"w{i}" for i in range(self.VOCABULARY - 3)]]
        (self.folder / "vocabulary.txt").write_text("\n".join(words) + "\n", encoding="utf-8")

    def weights(self):
        s = self.STATE
        shapes = {"encoder/conv1/weight": [s, self.BANDS, 3], "encoder/conv1/bias": [s],
                  "encoder/conv2/weight": [s, s, 3], "encoder/conv2/bias": [s],
                  "encoder/position_encodings/encodings": [self.AUDIO, s],
                  "decoder/position_encodings/encodings": [self.TEXT, s],
                  "decoder/embeddings/weight": [self.VOCABULARY, s]}
        norms = ["encoder/layer_norm", "decoder/layer_norm"]
        linears = {}
        for side, attentions in (("encoder", ["self_attention"]),
                                 ("decoder", ["self_attention", "attention"])):
            layer = f"{side}/layer_0"
            norms += [f"{layer}/{part}/layer_norm" for part in (*attentions, "ffn")]
            linears |= {f"{layer}/self_attention/linear_0": [3 * s, s],
                        f"{layer}/self_attention/linear_1": [s, s],
                        f"{layer}/ffn/linear_0": [4 * s, s], f"{layer}/ffn/linear_1": [s, 4 * s]}
        linears |= {f"decoder/layer_0/attention/linear_{i}": [rows * s, s]
                    for i, rows in enumerate((1, 2, 1))}
        for name in norms:
            shapes |= {f"{name}/gamma": [s], f"{name}/beta": [s]}
        for name, shape in linears.items():
            shapes |= {f"{name}/weight": shape, f"{name}/bias": shape[:1]}
        return shapes

    def write(self, version=6, kind="WhisperSpec", numbers=4):
        """Each weight's rows are filled with their own number, so that a slice is told."""
        def text(value):
            return struct.pack("<H", len(value) + 1) + value.encode() + b"\0"

        data = struct.pack("<I", version) + text(kind) + struct.pack("<2I", 3, len(self.weights()))
        for name, shape in self.weights().items():
            width = 1
            for size in shape[1:]:
                width *= size
            rows = b"".join(halves(row % 1000) * width for row in range(shape[0]))
            data += text(name) + struct.pack(f"<B{len(shape)}I", len(shape), *shape)
            data += struct.pack("<BI", numbers, len(rows)) + rows
        (self.folder / "model.bin").write_bytes(data + struct.pack("<I", 0))

    def read(self, path):
        """The sizes, the words, and the tensors by name."""
        data = path.read_bytes()
        sizes, at = struct.unpack_from("<12i", data), 48
        bands, steps = struct.unpack_from("<2i", data, at)
        at += 8 + 4 * bands * steps
        count, = struct.unpack_from("<i", data, at)
        at, words, tensors = at + 4, [], {}
        for _ in range(count):
            size, = struct.unpack_from("<i", data, at)
            words.append(data[at + 4:at + 4 + size])
            at += 4 + size
        while at < len(data):
            rank, length, half = struct.unpack_from("<3i", data, at)
            shape = struct.unpack_from(f"<{rank}i", data, at + 12)[::-1]
            at += 12 + 4 * rank
            name, at, size = data[at:at + length].decode(), at + length, 2 if half else 4
            for part in shape:
                size *= part
            tensors[name] = shape, half, data[at:at + size]
            at += size
        return sizes, words, tensors

    def test_SmallModel_HasEachWeightUnderItsNameAndEachWordInItsBytes(self):
        self.write()
        output = self.folder / "ggml.bin"
        run = convert("whisper_model.py", self.folder, output)
        self.assertEqual(run.returncode, 0, run.stderr)
        sizes, words, tensors = self.read(output)
        self.assertEqual(sizes, (0x67676D6C, self.VOCABULARY, 3, 64, 1, 1, 4, 64, 1, 1, 2, 1))
        self.assertEqual((len(words), words[:3]), (50257, [b"a", b" b", b"\xe9"]))
        self.assertEqual(len(tensors), 7 + 2 + 2 + 15 + 24)
        value = "decoder.blocks.0.cross_attn.value"
        self.assertEqual(tensors[f"{value}.weight"][:2], ((64, 64), 1))
        self.assertEqual(tensors[f"{value}.weight"][2][:2], halves(64))
        self.assertEqual(tensors[f"{value}.bias"], ((64,), 0, struct.pack("<64f", *range(64, 128))))
        self.assertEqual(tensors["encoder.blocks.0.attn.query.weight"][2][:2], halves(0))
        self.assertNotIn("encoder.blocks.0.attn.key.bias", tensors)
        self.assertEqual(tensors["encoder.conv1.bias"][0], (64, 1))
        self.assertEqual(tensors["encoder.positional_embedding"][:2], ((3, 64), 0))

    def test_OtherKindsOfModel_AreRefused(self):
        for kind in ({"version": 7}, {"kind": "TransformerSpec"}, {"numbers": 1}):
            with self.subTest(kind):
                self.write(**kind)
                run = convert("whisper_model.py", self.folder, self.folder / "ggml.bin")
                self.assertEqual(run.returncode, 1)
                self.assertNotIn("Traceback", run.stderr)
                self.assertFalse((self.folder / "ggml.bin").exists())


class ONNXFileTests(unittest.TestCase):
    def test_Graph_IsReadBackAsWritten(self):
        graph = onnx_file.Graph("small", 13, {"x": [1, "T"]})
        twice = graph.node("Mul", "x", graph.floats(2.0))
        graph.node("Concat", twice, graph.floats(2.0), result="y", axis=-1, scale=0.5, mode="linear",
                   pads=[1, 300])
        with tempfile.NamedTemporaryFile() as file:
            graph.write(file.name, {"y": [1, "T"]}, version=1)
            model = Path(file.name).read_bytes()
        written, = parts(model, 7)
        self.assertEqual([parts(node, 4) for node in parts(written, 1)], [[b"Mul"], [b"Concat"]])
        constant, = parts(written, 5)  # One, though it was asked for twice.
        self.assertEqual(messages(constant), [(1, 1), (2, 1), (8, b"c0"),
                                              (9, struct.pack("<f", 2))])
        attributes = {parts(entry, 1)[0]: messages(entry)[1:] for entry in
                      parts(parts(written, 1)[1], 5)}
        self.assertEqual(attributes, {b"axis": [(3, 2**64 - 1), (20, 2)],
                                      b"scale": [(2, 0.5), (20, 1)],
                                      b"mode": [(4, b"linear"), (20, 3)],
                                      b"pads": [(8, 1), (8, 300), (20, 7)]})
        entry, = parts(model, 14)
        self.assertEqual(messages(entry), [(1, b"version"), (2, b"1")])

    def test_ConstantOfAnotherSize_IsRefused(self):
        with self.assertRaises(ValueError):
            onnx_file.Graph("small", 13, {}).constant([2, 2], b"1234")


class CheckpointTests(unittest.TestCase):
    def refuse(self, thing):
        """What the embedding's converter says to a checkpoint that holds this."""
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "model.pt"
            with zipfile.ZipFile(path, "w") as archive:
                archive.writestr("archive/data.pkl", pickle.dumps(thing))
            run = convert("embedding_model.py", path, Path(folder) / "out.onnx")
            self.assertFalse((Path(folder) / "out.onnx").exists())
        self.assertEqual(run.returncode, 1)
        return run.stderr

    def test_CheckpointThatNamesAFunction_IsRefused(self):
        self.assertIn("is no weight", self.refuse({"w": io.BytesIO}))
        self.assertIn("posix.system is no weight", self.refuse({"w": __import__("os").system}))


if __name__ == "__main__":
    unittest.main()
