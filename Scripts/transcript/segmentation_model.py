#!/usr/bin/env python3
"""Adds to the segmentation model what sherpa-onnx asks a model to tell of itself.

    segmentation_model.py INPUT OUTPUT
"""
import sys
from pathlib import Path

import onnx_file

FACTS = {"model_type": "pyannote-segmentation-3.0", "version": 1, "license": "MIT",
         "sample_rate": 16000, "window_size": 160000, "num_speakers": 3, "num_classes": 7,
         "powerset_max_classes": 2, "receptive_field_size": 991, "receptive_field_shift": 270}

if __name__ == "__main__":
    Path(sys.argv[2]).write_bytes(Path(sys.argv[1]).read_bytes() + onnx_file.metadata(**FACTS))
