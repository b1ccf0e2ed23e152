#!/usr/bin/env python3
"""Makes two models that sherpa-onnx loads, and that tell dull sounds from bright ones.

    stub_diarization.py FOLDER        leaves segmentation.onnx and embedding.onnx there

They have no learned weights: whatever is louder than a hum counts as speech, and how much of it lies
in high frequencies counts as a voice.
"""
import sys
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[3] / "Scripts/transcript"))
import onnx_file  # noqa: E402
from segmentation_model import FACTS  # noqa: E402

FRAME, STEP, BANDS = FACTS["receptive_field_size"], FACTS["receptive_field_shift"], 80
LOUD, BRIGHT = 0.01, 0.33  # mean of the samples' size; of the steps between them, against that


def segmentation(path):
    """For each frame the scores of: nobody, the first voice, the second one, and four that never
    win."""
    graph = onnx_file.Graph("segmentation", 13, {"x": ["N", 1, "T"]})

    def mean(x, frames):
        """The mean over each frame, and over those around it."""
        x = graph.node("AveragePool", graph.node("Abs", x), kernel_shape=[FRAME], strides=[STEP])
        return graph.node("AveragePool", x, kernel_shape=[frames], pads=[frames // 2] * 2)

    def scaled(x, offset, factor):
        x = graph.node("Sub", x, graph.floats(offset))
        return graph.node("Mul", x, graph.floats(factor))

    steps = graph.node("Conv", "x", graph.floats(-1.0, 1.0, shape=[1, 1, 2]), kernel_shape=[2],
                       pads=[1, 0])
    loudness = graph.node("Add", mean("x", 61), graph.floats(1e-4))
    bright = scaled(graph.node("Div", mean(steps, 61), loudness), BRIGHT, 2.0)
    speech = scaled(mean("x", 31), LOUD, 300.0)
    nobody = graph.node("Mul", speech, graph.floats(0.0))
    never = graph.node("Sub", nobody, graph.floats(1000.0))
    scores = graph.node("Concat", nobody, graph.node("Add", speech, bright),
                        graph.node("Sub", speech, bright), never, never, never, never, axis=1)
    graph.node("Transpose", scores, result="y", perm=[0, 2, 1])
    graph.write(path, {"y": ["N", "F", FACTS["num_classes"]]}, **FACTS)


def embedding(path):
    """The spectrum of a voice, without its loudness."""
    graph = onnx_file.Graph("embedding", 13, {"x": ["N", "T", BANDS]})
    spectrum = graph.node("ReduceMean", "x", axes=[1], keepdims=0)
    level = graph.node("ReduceMean", spectrum, axes=[1], keepdims=1)
    graph.node("Sub", spectrum, level, result="y")
    graph.write(path, {"y": ["N", BANDS]}, framework="wespeaker", language="none", url="none",
                comment="stub", sample_rate=FACTS["sample_rate"], output_dim=BANDS,
                normalize_samples=1)


if __name__ == "__main__":
    segmentation(Path(sys.argv[1]) / "segmentation.onnx")
    embedding(Path(sys.argv[1]) / "embedding.onnx")
