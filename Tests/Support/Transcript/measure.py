#!/usr/bin/env python3
"""How well the tools that Scripts/install-transcript has set up hear speech that is known.

    FOLDER/keldobay/python/bin/python3 measure.py human|flite|talks FOLDER

Prints the figures, and fails if they are beyond what the models reach.
"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path

import scores

HERE = Path(__file__).resolve().parent
MOST_WRONG_WORDS = {"human": 0.08, "flite": 0.12}
# How many speakers are asked for (-1: not told), who is due after whom, how much may be confused.
TALKS = [("three-voices", -1, "1 2 3 1 3 2", 0.05), ("two-people", 2, "1 2 1", 0.0)]


def transcribe(tools, clip):
    """On one thread: several of them wait for each other where the machine is busy."""
    output = clip.with_suffix("")
    subprocess.run([tools / "bin/whisper-cli", "-m", tools / "models/ggml-tiny.en.bin", "-f", clip,
                    "-l", "en", "-oj", "-of", output, "-t", "1"], check=True, capture_output=True)
    result = json.loads(output.with_suffix(".json").read_text(encoding="utf-8"))
    return "".join(piece["text"] for piece in result["transcription"])


def measure_words(tools, corpus, kind):
    clips = sorted(corpus.glob(f"{kind}-*.wav"))
    wrong = total = 0
    for clip in clips:
        heard = transcribe(tools, clip)
        errors, said = scores.word_errors(clip.with_suffix(".txt").read_text(), heard)
        print(f"    {clip.stem}: {errors} of {said} wrong:{heard}")
        wrong, total = wrong + errors, total + said
    print(f"{kind}: {len(clips)} clips, {wrong} of {total} words wrong, {wrong / total:.1%}")
    return wrong <= MOST_WRONG_WORDS[kind] * total


def measure_talks(tools, corpus):
    from diarize import diarize  # Only a python with sherpa-onnx can.
    models = tools / "models/diarization"
    fine = True
    for name, speakers, due, most in TALKS:
        heard = diarize(models / "segmentation.onnx", models / "embedding.onnx",
                        corpus / f"{name}.wav", speakers)
        said = scores.turns_of((corpus / f"{name}.turns").read_text())
        confused, missed, made_up = scores.turn_errors(said, heard)
        print(f"{name}: {len({who for *_, who in heard})} speakers, {scores.order(heard)}, "
              f"{confused:.1%} confused, {missed:.1%} missed, {made_up:.1%} made up")
        fine = fine and scores.order(heard) == due and confused <= most
    return fine


def main():
    tools = Path(sys.argv[2]) / "keldobay"
    with tempfile.TemporaryDirectory() as corpus:
        subprocess.run([sys.executable, HERE / "corpus.py", corpus, tools / "samples/jfk.wav"],
                       check=True)
        if sys.argv[1] == "talks":
            return 0 if measure_talks(tools, Path(corpus)) else 1
        return 0 if measure_words(tools, Path(corpus), sys.argv[1]) else 1


if __name__ == "__main__":
    sys.exit(main())
