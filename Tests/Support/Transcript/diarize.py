#!/usr/bin/env python3
"""Tells who speaks when, as the library's diarizer does, with the python and models of FOLDER.

    FOLDER/keldobay/python/bin/python3 diarize.py SEGMENTATION EMBEDDING WAV [SPEAKERS]

Prints a line a turn: start and end in seconds, and the number of the voice.
"""
import sys
import wave

import numpy
import sherpa_onnx as sherpa


def diarize(segmentation, embedding, talk, speakers=-1):
    """The turns: start, end, and the number of the voice."""
    diarizer = sherpa.OfflineSpeakerDiarization(sherpa.OfflineSpeakerDiarizationConfig(
        segmentation=sherpa.OfflineSpeakerSegmentationModelConfig(
            pyannote=sherpa.OfflineSpeakerSegmentationPyannoteModelConfig(model=str(segmentation))),
        embedding=sherpa.SpeakerEmbeddingExtractorConfig(model=str(embedding)),
        clustering=sherpa.FastClusteringConfig(num_clusters=speakers, threshold=0.5),
        min_duration_on=0.3, min_duration_off=0.5))
    with wave.open(str(talk)) as file:
        samples = numpy.frombuffer(file.readframes(file.getnframes()), numpy.int16)
    turns = diarizer.process(samples.astype(numpy.float32) / 32768).sort_by_start_time()
    return [(turn.start, turn.end, str(turn.speaker)) for turn in turns]


if __name__ == "__main__":
    for start, end, voice in diarize(*sys.argv[1:4], *map(int, sys.argv[4:])):
        print(f"{start:.3f} {end:.3f} {voice}")
