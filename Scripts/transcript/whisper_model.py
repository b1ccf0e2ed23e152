#!/usr/bin/env python3
"""Makes of a speech model of CTranslate2 the file that whisper-cli loads.

    whisper_model.py FOLDER OUTPUT

FOLDER has model.bin, in 16-bit floats, and vocabulary.txt. No weight is reckoned anew: they are
put in another order.
"""
import struct
import sys
from pathlib import Path

import ggml_file
from ggml_file import F16, F32

HALF = 4  # CTranslate2's number for 16-bit floats
TEXT_TOKENS = 50257


class Reader:
    def __init__(self, data):
        self.data, self.at = data, 0

    def number(self, kind):
        value, = struct.unpack_from("<" + kind, self.data, self.at)
        self.at += struct.calcsize(kind)
        return value

    def bytes(self, size):
        self.at += size
        return self.data[self.at - size:self.at]

    def text(self):
        return self.bytes(self.number("H")).rstrip(b"\0").decode()


def read_weights(path):
    """The weights by name: shape and bytes."""
    reader = Reader(path.read_bytes())
    version, kind, _ = reader.number("I"), reader.text(), reader.number("I")
    if kind != "WhisperSpec" or version not in (5, 6):
        sys.exit(f"{path} is no speech model that this knows: {kind!r}, version {version}")
    weights = {}
    for _ in range(reader.number("I")):
        name = reader.text()
        shape = [reader.number("I") for _ in range(reader.number("B"))]
        numbers = reader.number("B")
        data = reader.bytes(reader.number("I"))
        if shape and numbers != HALF:
            sys.exit(f"{path}: {name} is not in 16-bit floats")
        weights[name] = (shape, data)
    for _ in range(reader.number("I")):
        alias = reader.text()
        weights[alias] = weights[reader.text()]
    return weights


def read_words(path):
    """The text of each token. The file spells a byte that is not printable as another letter."""
    printable = [*range(33, 127), *range(161, 173), *range(174, 256)]
    others = [byte for byte in range(256) if byte not in printable]
    byte_of = {chr(byte): byte for byte in printable}
    byte_of |= {chr(256 + i): byte for i, byte in enumerate(others)}
    lines = path.read_bytes().decode().split("\n")
    return [bytes(byte_of[letter] for letter in line) for line in lines[:TEXT_TOKENS]]


class Model:
    """The weights of one model under the names of the other."""

    def __init__(self, weights):
        self.weights, self.tensors = weights, []

    def shape(self, name):
        return self.weights[name][0]

    def layers(self, side):
        return len({name.split("/")[1] for name in self.weights
                    if name.startswith(f"{side}/layer_") and not name.startswith(f"{side}/layer_norm")})

    def add(self, target, source, part=slice(None), wide=False):
        """`part`: which rows. `wide`: in 32-bit floats, as all that has one dimension."""
        shape, data = self.weights[source]
        row = len(data) // shape[0]
        rows = range(shape[0])[part]
        shape, data = [len(rows), *shape[1:]], data[rows.start * row:rows.stop * row]
        if wide or len(shape) == 1:
            values = struct.unpack(f"<{len(data) // 2}e", data)
            self.tensors.append((target, shape, F32, struct.pack(f"<{len(values)}f", *values)))
        else:
            self.tensors.append((target, shape, F16, data))

    def norm(self, target, source):
        self.add(f"{target}.weight", f"{source}/gamma")
        self.add(f"{target}.bias", f"{source}/beta")

    def linear(self, target, source, part=slice(None), bias=True):
        self.add(f"{target}.weight", f"{source}/weight", part)
        if bias:
            self.add(f"{target}.bias", f"{source}/bias", part)

    def convolution(self, target, source):
        self.linear(target, source)
        name, shape, kind, data = self.tensors.pop()
        self.tensors.append((name, [*shape, 1], kind, data))

    def attention(self, target, source, inputs):
        """`inputs`: which of query, key and value each linear layer but the last one holds."""
        self.norm(f"{target}_ln", f"{source}/layer_norm")
        state = self.shape("decoder/embeddings/weight")[1]
        for layer, names in enumerate(inputs):
            for i, name in enumerate(names):
                self.linear(f"{target}.{name}", f"{source}/linear_{layer}",
                            slice(i * state, (i + 1) * state), bias=name != "key")
        self.linear(f"{target}.out", f"{source}/linear_{len(inputs)}")

    def blocks(self, side):
        for i in range(self.layers(side)):
            target, source = f"{side}.blocks.{i}", f"{side}/layer_{i}"
            self.attention(f"{target}.attn", f"{source}/self_attention", [["query", "key", "value"]])
            if side == "decoder":
                self.attention(f"{target}.cross_attn", f"{source}/attention",
                               [["query"], ["key", "value"]])
            self.norm(f"{target}.mlp_ln", f"{source}/ffn/layer_norm")
            self.linear(f"{target}.mlp.0", f"{source}/ffn/linear_0")
            self.linear(f"{target}.mlp.2", f"{source}/ffn/linear_1")

    def convert(self):
        self.add("encoder.positional_embedding", "encoder/position_encodings/encodings", wide=True)
        self.convolution("encoder.conv1", "encoder/conv1")
        self.convolution("encoder.conv2", "encoder/conv2")
        self.blocks("encoder")
        self.norm("encoder.ln_post", "encoder/layer_norm")
        self.add("decoder.positional_embedding", "decoder/position_encodings/encodings", wide=True)
        self.add("decoder.token_embedding.weight", "decoder/embeddings/weight")
        self.blocks("decoder")
        self.norm("decoder.ln", "decoder/layer_norm")
        return self.tensors

    def sizes(self):
        vocabulary, state = self.shape("decoder/embeddings/weight")
        heads = state // 64
        return [vocabulary, self.shape("encoder/position_encodings/encodings")[0], state, heads,
                self.layers("encoder"), self.shape("decoder/position_encodings/encodings")[0], state,
                heads, self.layers("decoder"), self.shape("encoder/conv1/weight")[1]]


def main():
    folder, output = Path(sys.argv[1]), sys.argv[2]
    model = Model(read_weights(folder / "model.bin"))
    ggml_file.write(output, model.sizes(), read_words(folder / "vocabulary.txt"), model.convert())


if __name__ == "__main__":
    main()
