#!/usr/bin/env python3
"""Makes a speech model that whisper-cli loads and that says what the script says, whatever it hears.

    scripted_model.py OUTPUT.en.bin CUE...

A cue is "START END WORDS", with the times in seconds in steps of 0.02. The first one starts within
the first second. The recording is as long as the last cue says, and no longer than 30 s: what is left
of it would be heard anew, and get the script from its start. At most 60 words and times are different.

It is a network without weights: each token has a code of its own, and each place of the sequence asks
for the code of the token that is due there.
"""
import struct
import sys
from math import prod
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[3] / "Scripts/transcript"))
import ggml_file  # noqa: E402

VOCABULARY, STATE, BANDS = 51864, 64, 80
AUDIO_CONTEXT, TEXT_CONTEXT = 1500, 448
END, FIRST_TIME = 50256, 50363


def code(number):
    """One of the 63 rows of signs that have no mean and are all at right angles."""
    return [-1.0 if (number & place).bit_count() % 2 else 1.0 for place in range(STATE)]


def tokens(cues):
    """The tokens in their order, and the words that they are made of."""
    words, sequence = [b" "], []
    for cue in cues:
        start, end, *said = cue.split()
        sequence.append(FIRST_TIME + round(float(start) * 50))
        for word in (f" {word}".encode() for word in said):
            if word not in words:
                words.append(word)
            sequence.append(words.index(word))
        sequence.append(FIRST_TIME + round(float(end) * 50))
    return [*sequence, END], words


def layers():
    """Name and shape of all weights of the two blocks, which are zero."""
    for block, attentions in (("encoder", ["attn"]), ("decoder", ["attn", "cross_attn"])):
        for attention in attentions:
            yield f"{block}.blocks.0.{attention}_ln.weight", [STATE]
            yield f"{block}.blocks.0.{attention}_ln.bias", [STATE]
            for part in ("query", "key", "value", "out"):
                yield f"{block}.blocks.0.{attention}.{part}.weight", [STATE, STATE]
                if part != "key":
                    yield f"{block}.blocks.0.{attention}.{part}.bias", [STATE]
        yield f"{block}.blocks.0.mlp_ln.weight", [STATE]
        yield f"{block}.blocks.0.mlp_ln.bias", [STATE]
        yield f"{block}.blocks.0.mlp.0.weight", [4 * STATE, STATE]
        yield f"{block}.blocks.0.mlp.0.bias", [4 * STATE]
        yield f"{block}.blocks.0.mlp.2.weight", [STATE, 4 * STATE]
        yield f"{block}.blocks.0.mlp.2.bias", [STATE]
    yield "encoder.conv1.weight", [STATE, BANDS, 3]
    yield "encoder.conv2.weight", [STATE, STATE, 3]
    yield "encoder.ln_post.weight", [STATE]
    yield "encoder.ln_post.bias", [STATE]
    yield "decoder.ln.bias", [STATE]


def zeros(name, shape):
    kind = ggml_file.F16 if len(shape) > 1 else ggml_file.F32
    return name, shape, kind, bytes(prod(shape) * (2 if kind == ggml_file.F16 else 4))


def wide(name, shape, numbers):
    return name, shape, ggml_file.F32, struct.pack(f"<{prod(shape)}f", *numbers)


def network(sequence):
    codes = {token: code(1 + i) for i, token in enumerate(dict.fromkeys(sequence))}
    if len(codes) >= STATE:
        sys.exit(f"{len(codes)} different words and times are more than {STATE - 1}")
    embeddings = bytearray(VOCABULARY * STATE * 2)
    for token, signs in codes.items():
        struct.pack_into(f"<{STATE}e", embeddings, token * STATE * 2, *(0.5 * x for x in signs))
    due = [*sequence, *[END] * (TEXT_CONTEXT - len(sequence))]
    yield from (zeros(*layer) for layer in layers())
    yield wide("encoder.positional_embedding", [AUDIO_CONTEXT, STATE], [0] * AUDIO_CONTEXT * STATE)
    yield wide("encoder.conv1.bias", [STATE, 1], [0] * STATE)
    yield wide("encoder.conv2.bias", [STATE, 1], [0] * STATE)
    yield wide("decoder.positional_embedding", [TEXT_CONTEXT, STATE],
               [16 * x for token in due for x in codes[token]])
    yield "decoder.token_embedding.weight", [VOCABULARY, STATE], ggml_file.F16, embeddings
    yield wide("decoder.ln.weight", [STATE], [1] * STATE)


def main():
    sequence, words = tokens(sys.argv[2:])
    sizes = [VOCABULARY, AUDIO_CONTEXT, STATE, 1, 1, TEXT_CONTEXT, STATE, 1, 1, BANDS]
    ggml_file.write(sys.argv[1], sizes, words, network(sequence))


if __name__ == "__main__":
    main()
