#!/usr/bin/env python3
"""Makes of the NanoDet model of TensorFlow.js the ONNX file that OpenCV loads.

    person_model.py MODEL.json OUTPUT

That model has the channels last in each convolution: the data are padded, turned, and turned back.
Here the channels stay first, the padding is the convolution's own, and all turns go.
"""
import json
import struct
import sys
from array import array
from math import prod
from pathlib import Path

import onnx_file

PREFIX = "PartitionedCall/"
HEADS = {"Add_29": 8, "Add_33": 16, "Add_37": 32}  # each with its pixels a cell
SIDE = 416
CHANNELS = 128  # of what is resized
VALUES = 80 + 4 * 11  # of a cell: the score of each class, and where each side of the box is
CODES = {"float16": "e", "int32": "i"}


def read_weights(folder, groups):
    """The weights by name: shape and numbers."""
    weights = {}
    for group in groups:
        data, at = b"".join((folder / path).read_bytes() for path in group["paths"]), 0
        for weight in group["weights"]:
            layout = f"<{prod(weight['shape'])}{CODES[weight.get('quantization', weight)['dtype']]}"
            weights[weight["name"]] = weight["shape"], struct.unpack_from(layout, data, at)
            at += struct.calcsize(layout)
    return weights


def channels_first(shape, numbers):
    """A kernel that was laid out as rows, columns, inputs, outputs."""
    rows, columns, inputs, outputs = shape
    numbers, turned = array("f", numbers), array("f")
    for output in range(outputs):
        plane = numbers[output::outputs]
        for channel in range(inputs):
            turned.extend(plane[channel::inputs])
    return [outputs, inputs, rows, columns], turned.tobytes()


class Converter:
    def __init__(self, path):
        model = json.loads(path.read_text())
        self.operations = {node["name"]: node for node in model["modelTopology"]["node"]}
        self.weights = read_weights(path.parent, model["weightsManifest"])
        self.graph = onnx_file.Graph("persons", 11, {"input": [1, 3, SIDE, SIDE]})
        self.done = {}

    def value(self, name, result=None):
        """The name that a result of the old graph has in the new one."""
        if name not in self.done:
            operation = self.operations[name]
            kind, inputs = operation["op"], operation.get("input", [])
            self.done[name] = getattr(self, kind)(operation["attr"], result, *inputs)
        return self.done[name]

    def padded(self, name):
        """What stands before a turn, and how it is padded there."""
        source = self.operations[self.operations[name]["input"][0]]
        if source["op"] not in ("Pad", "PadV2"):
            return self.value(source["name"]), [0] * 4
        paddings = self.weights[source["input"][1]][1]
        return self.value(source["input"][0]), [*paddings[4::2], *paddings[5::2]]

    @staticmethod
    def over_pixels(attribute):
        """The middle two of the four sizes of an attribute."""
        return [int(size) for size in attribute["list"]["i"][1:3]]

    def Placeholder(self, attributes, result):
        return "input"

    def Transpose(self, attributes, result, x, _):
        return self.value(x)

    def Add(self, attributes, result, x, y):
        """Of two data, or of a convolution and its bias."""
        if y not in self.weights:
            return self.graph.node("Add", self.value(x), self.value(y))
        convolution = self.operations[x]
        source, kernel = convolution["input"]
        source, pads = self.padded(source)
        shape, data = channels_first(*self.weights[kernel])
        return self.graph.node(
            "Conv", source, self.graph.constant(shape, data), self.graph.floats(*self.weights[y][1]),
            result=result, kernel_shape=shape[2:], pads=pads,
            strides=self.over_pixels(convolution["attr"]["strides"]))

    def LeakyRelu(self, attributes, result, x):
        return self.graph.node("LeakyRelu", self.value(x), alpha=attributes["alpha"]["f"])

    def ConcatV2(self, attributes, result, *inputs):
        return self.graph.node("Concat", *map(self.value, inputs[:-1]), axis=1)

    def MaxPool(self, attributes, result, x):
        source, pads = self.padded(x)
        return self.graph.node("MaxPool", source, pads=pads,
                               kernel_shape=self.over_pixels(attributes["ksize"]),
                               strides=self.over_pixels(attributes["strides"]))

    def ResizeBilinear(self, attributes, result, x, sides):
        none = self.graph.floats()
        return self.graph.node("Resize", self.value(x), none, none,
                               self.graph.integers(1, CHANNELS, *self.weights[sides][1]),
                               mode="linear", coordinate_transformation_mode="half_pixel")

    def write(self, path):
        outputs = {}
        for i, (head, cell) in enumerate(HEADS.items()):
            self.value(PREFIX + head, f"out{i}")
            outputs[f"out{i}"] = [1, VALUES, SIDE // cell, SIDE // cell]
        self.graph.write(path, outputs)


if __name__ == "__main__":
    Converter(Path(sys.argv[1])).write(sys.argv[2])
