#!/usr/bin/env python3
"""Makes speech whose words and speakers are known, as 16 kHz mono WAV files.

    corpus.py FOLDER SAMPLE

SAMPLE is the jfk.wav that comes with whisper.cpp; the rest is of the Debian packages
pocketsphinx-testdata and flite. It leaves in FOLDER:

    human-*.wav, flite-*.wav           a clip each; the .txt beside it has the words
    three-voices.wav, two-people.wav   a talk each; the .turns beside it has a line a turn: start and
                                       end in seconds, and who speaks
"""
import re
import subprocess
import sys
import wave
from array import array
from pathlib import Path

RATE = 16000
RECORDINGS = Path("/usr/share/pocketsphinx/test/data")
SAID = {
    "jfk": "And so my fellow Americans ask not what your country can do for you ask what you can do "
           "for your country",
    "goforward": "go forward ten meters",
    "something": "go somewhere and do something",
}
SENTENCES = [
    "Scene twelve, take three. Camera set, quiet on the set please.",
    "The generator is running late, so we will shoot the kitchen scene before lunch.",
    "I never said that I would sell the house. You must have heard it from my brother.",
    "Roll sound. Roll camera. Mark it. Action.",
    "Could you move the lamp a little to the left and close the window behind her?",
]
TALKS = {
    "three-voices": ["flite-slt-3", "flite-rms-2", "flite-awb-5", "flite-slt-5", "flite-awb-3",
                     "flite-rms-5"],
    "two-people": ["human-0870", "human-jfk", "human-0890", "human-0920"],
}
SPEAKERS = {"human-jfk": "jfk", "flite-slt": "slt", "flite-rms": "rms", "flite-awb": "awb",
            "human-0": "reader"}


def silence(seconds):
    return array("h", bytes(2 * round(seconds * RATE)))


def read_wav(path):
    with wave.open(str(path)) as file:
        if file.getparams()[:3] != (1, 2, RATE):
            sys.exit(f"{path} is not 16 kHz, mono, 16 bits")
        return array("h", file.readframes(file.getnframes()))


def write_wav(path, samples):
    with wave.open(str(path), "wb") as file:
        file.setparams((1, 2, RATE, 0, "NONE", ""))
        file.writeframes(samples.tobytes())


def spoken(samples):
    """Without the quiet before and behind, and all at the same loudness."""
    block = RATE // 50
    loud = [start for start in range(0, len(samples), block)
            if sum(map(abs, samples[start:start + block])) > 120 * block]
    samples = samples[max(0, loud[0] - RATE // 20):loud[-1] + block + RATE // 20]
    mean = (sum(sample * sample for sample in samples) / len(samples)) ** 0.5
    return array("h", (max(-32768, min(32767, round(2000 / mean * sample))) for sample in samples))


def human_clips(sample):
    yield "jfk", read_wav(sample), SAID["jfk"]
    text = (RECORDINGS / "librivox/transcription").read_text(encoding="utf-8")
    for words, name in re.findall(r"<s> (.*) </s> \((.*)\)", text):
        yield name.rsplit("-", 1)[1], read_wav(RECORDINGS / f"librivox/{name}.wav"), words
    for name in ("goforward", "something"):
        yield name, array("h", (RECORDINGS / f"{name}.raw").read_bytes()), SAID[name]


def synthetic_clips(folder):
    for voice in ("slt", "rms", "awb"):
        for number, sentence in enumerate(SENTENCES, 1):
            path = folder / "speaking.wav"
            subprocess.run(["flite", "-voice", voice, "-t", sentence, "-o", path], check=True)
            yield f"{voice}-{number}", read_wav(path), sentence
            path.unlink()


def talk(clips):
    """The samples, and the turns."""
    samples, turns = silence(0.5), []
    for name in clips:
        start = len(samples)
        samples += spoken(clips[name])
        speaker, = (who for prefix, who in SPEAKERS.items() if name.startswith(prefix))
        turns.append(f"{start / RATE:.3f} {len(samples) / RATE:.3f} {speaker}\n")
        samples += silence(0.6)
    return samples, turns


def main():
    folder, sample = Path(sys.argv[1]), sys.argv[2]
    clips = {}
    for kind, made in (("human", human_clips(sample)), ("flite", synthetic_clips(folder))):
        for name, samples, words in made:
            clips[f"{kind}-{name}"] = samples
            write_wav(folder / f"{kind}-{name}.wav", silence(0.3) + samples + silence(0.5))
            (folder / f"{kind}-{name}.txt").write_text(words + "\n", encoding="utf-8")
    for name, parts in TALKS.items():
        samples, turns = talk({part: clips[part] for part in parts})
        write_wav(folder / f"{name}.wav", samples)
        (folder / f"{name}.turns").write_text("".join(turns), encoding="utf-8")


if __name__ == "__main__":
    main()
