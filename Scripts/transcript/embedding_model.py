#!/usr/bin/env python3
"""Makes of the CAM++ checkpoint of PyTorch the embedding model that sherpa-onnx loads.

    embedding_model.py CHECKPOINT OUTPUT
"""
import collections
import pickle
import sys
import zipfile
from math import prod

import onnx_file

BANDS, SEGMENT = 80, 100  # of a frame; frames
FACTS = {"framework": "3d-speaker", "language": "Chinese, English", "sample_rate": 16000,
         "normalize_samples": 1, "feature_normalize_type": "global-mean",
         "url": "https://github.com/modelscope/3D-Speaker", "comment": "CAM++"}


class Checkpoint(pickle.Unpickler):
    """Weights by name: shape and bytes. Refuses all that is not a plain weight."""

    def __init__(self, path):
        self.archive = zipfile.ZipFile(path)
        index, = (name for name in self.archive.namelist() if name.endswith("/data.pkl"))
        self.folder = index.removesuffix("data.pkl") + "data/"
        super().__init__(self.archive.open(index))

    def find_class(self, module, name):
        if (module, name) == ("collections", "OrderedDict"):
            return collections.OrderedDict
        if (module, name) == ("torch._utils", "_rebuild_tensor_v2"):
            return self.weight
        if (module, name) in [("torch", "FloatStorage"), ("torch", "LongStorage")]:
            return name
        raise pickle.UnpicklingError(f"{module}.{name} is no weight")

    def persistent_load(self, pid):
        return pid

    def weight(self, storage, offset, shape, strides, *_):
        _, kind, key, _, count = storage
        if offset or count != prod(shape) or \
                strides != tuple(prod(shape[i + 1:]) for i in range(len(shape))):
            raise pickle.UnpicklingError(f"{key} is a part of another weight")
        return kind, shape, self.archive.read(self.folder + key)


class Network:
    """CAM++: a small residual network over the bands, then three dense blocks over time."""

    def __init__(self, weights):
        self.weights, self.used = weights, set()
        self.graph = onnx_file.Graph("embedding", 13, {"x": ["N", "T", BANDS]})

    def weight(self, name):
        self.used.add(name)
        kind, shape, data = self.weights[name]
        if kind != "FloatStorage":
            raise ValueError(f"{name} is not in 32-bit floats")
        return self.graph.constant(shape, data)

    def convolution(self, x, name, **attributes):
        bias = [self.weight(f"{name}.bias")] if f"{name}.bias" in self.weights else []
        return self.graph.node("Conv", x, self.weight(f"{name}.weight"), *bias, **attributes)

    def norm(self, x, name):
        mean, variance = self.weight(f"{name}.running_mean"), self.weight(f"{name}.running_var")
        if f"{name}.weight" in self.weights:
            scale, bias = self.weight(f"{name}.weight"), self.weight(f"{name}.bias")
        else:
            size = self.weights[f"{name}.running_mean"][1][0]
            scale, bias = self.graph.floats(*[1.0] * size), self.graph.floats(*[0.0] * size)
        return self.graph.node("BatchNormalization", x, scale, bias, mean, variance, epsilon=1e-5)

    def relu(self, x):
        return self.graph.node("Relu", x)

    def residual(self, x, name, stride):
        """The stride is over the bands."""
        y = self.convolution(x, f"{name}.conv1", pads=[1] * 4, strides=[stride, 1])
        y = self.convolution(self.relu(self.norm(y, f"{name}.bn1")), f"{name}.conv2", pads=[1] * 4)
        y = self.norm(y, f"{name}.bn2")
        if f"{name}.shortcut.0.weight" in self.weights:
            x = self.norm(self.convolution(x, f"{name}.shortcut.0", strides=[stride, 1]),
                          f"{name}.shortcut.1")
        return self.relu(self.graph.node("Add", y, x))

    def head(self):
        graph = self.graph
        x = graph.node("Unsqueeze", graph.node("Transpose", "x", perm=[0, 2, 1]), graph.integers(1))
        x = self.relu(self.norm(self.convolution(x, "head.conv1", pads=[1] * 4), "head.bn1"))
        for layer in ("layer1", "layer2"):
            x = self.residual(x, f"head.{layer}.0", 2)
            x = self.residual(x, f"head.{layer}.1", 1)
        x = self.convolution(x, "head.conv2", pads=[1] * 4, strides=[2, 1])
        x = self.relu(self.norm(x, "head.bn2"))
        channels = self.weights["head.conv2.weight"][1][0] * BANDS // 8
        return graph.node("Reshape", x, graph.integers(0, channels, -1))

    def context(self, x, frames):
        """The mean of the whole and of each segment, for every frame."""
        graph = self.graph
        means = graph.node("AveragePool", x, kernel_shape=[SEGMENT], strides=[SEGMENT], ceil_mode=1)
        means = graph.node("Unsqueeze", means, graph.integers(3))
        means = graph.node("Expand", means, graph.integers(1, 1, 1, SEGMENT))
        means = graph.node("Reshape", means, graph.integers(0, 0, -1))
        means = graph.node("Slice", means, graph.integers(0), frames, graph.integers(2))
        return graph.node("Add", graph.node("ReduceMean", x, axes=[2], keepdims=1), means)

    def dense_layer(self, x, name, dilation, frames):
        y = self.convolution(self.relu(self.norm(x, f"{name}.nonlinear1.batchnorm")),
                             f"{name}.linear1")
        y = self.relu(self.norm(y, f"{name}.nonlinear2.batchnorm"))
        mask = self.convolution(self.context(y, frames), f"{name}.cam_layer.linear1")
        mask = self.convolution(self.relu(mask), f"{name}.cam_layer.linear2")
        y = self.convolution(y, f"{name}.cam_layer.linear_local", pads=[dilation] * 2,
                             dilations=[dilation])
        y = self.graph.node("Mul", y, self.graph.node("Sigmoid", mask))
        return self.graph.node("Concat", x, y, axis=1)

    def dense_blocks(self, x):
        graph = self.graph
        shape = graph.node("Shape", x)
        frames = graph.node("Slice", shape, graph.integers(2), graph.integers(3))
        for block, dilation in ((1, 1), (2, 2), (3, 2)):
            layer = 1
            while f"xvector.block{block}.tdnnd{layer}.linear1.weight" in self.weights:
                x = self.dense_layer(x, f"xvector.block{block}.tdnnd{layer}", dilation, frames)
                layer += 1
            x = self.relu(self.norm(x, f"xvector.transit{block}.nonlinear.batchnorm"))
            x = self.convolution(x, f"xvector.transit{block}.linear")
        return self.relu(self.norm(x, "xvector.out_nonlinear.batchnorm")), frames

    def statistics(self, x, frames):
        """Mean and standard deviation over time."""
        graph = self.graph
        mean = graph.node("ReduceMean", x, axes=[2], keepdims=1)
        off = graph.node("Sub", x, mean)
        squares = graph.node("ReduceSum", graph.node("Mul", off, off), graph.integers(2), keepdims=1)
        others = graph.node("Sub", graph.node("Cast", frames, to=onnx_file.FLOAT), graph.floats(1.0))
        deviation = graph.node("Sqrt", graph.node("Div", squares, others))
        return graph.node("Concat", mean, deviation, axis=1)

    def write(self, path):
        x = self.convolution(self.head(), "xvector.tdnn.linear", pads=[2, 2], strides=[2])
        x, frames = self.dense_blocks(self.relu(self.norm(x, "xvector.tdnn.nonlinear.batchnorm")))
        x = self.convolution(self.statistics(x, frames), "xvector.dense.linear")
        x = self.norm(x, "xvector.dense.nonlinear.batchnorm")
        self.graph.node("Squeeze", x, self.graph.integers(2), result="embedding")
        left = {name for name in self.weights
                if not name.endswith("num_batches_tracked")} - self.used
        if left:
            raise ValueError(f"weights that this network does not have: {sorted(left)}")
        size = self.weights["xvector.dense.linear.weight"][1][0]
        self.graph.write(path, {"embedding": ["N", size]}, output_dim=size, **FACTS)


if __name__ == "__main__":
    Network(Checkpoint(sys.argv[1]).load()).write(sys.argv[2])
