#!/usr/bin/env python3
"""Compares what was heard with what was said.

    scores.py words SAID HEARD     prints how many words are wrong, and how many were said
    scores.py turns SAID HEARD     prints who is heard after whom, by number, and how many thousandths
                                   of the speech are confused, missed, and made up

Words are compared without case and punctuation. A file of turns has a line a turn: start and end in
seconds, and who speaks. Speakers are matched by when they speak, whatever they are called.
"""
import itertools
import re
import sys
from pathlib import Path

FRAME = 0.01  # seconds


def words_of(text):
    return re.sub(r"[^a-z0-9' ]+", " ", text.lower()).split()


def word_errors(said, heard):
    """The least number of words to put in, take out and change; and how many were said."""
    said, heard = words_of(said), words_of(heard)
    row = list(range(len(heard) + 1))
    for i, word in enumerate(said, 1):
        before, row = row, [i]
        for j, other in enumerate(heard, 1):
            row.append(min(before[j] + 1, row[-1] + 1, before[j - 1] + (word != other)))
    return row[-1], len(said)


def turns_of(text):
    return [(float(start), float(end), name)
            for start, end, name in (line.split() for line in text.splitlines())]


def order(turns):
    """Who speaks after whom, numbered as they come: "1 2 1"."""
    names = [name for name, _ in itertools.groupby(name for _, _, name in sorted(turns))]
    first = list(dict.fromkeys(names))
    return " ".join(str(1 + first.index(name)) for name in names)


def frames(turns, count):
    speaking = [None] * count
    for start, end, name in turns:
        for i in range(round(start / FRAME), round(end / FRAME)):
            speaking[i] = name
    return speaking


def turn_errors(said, heard):
    """Parts of the speech: given to another speaker, to nobody, and heard where there is none."""
    count = 1 + round(max(end for _, end, _ in said + heard) / FRAME)
    pairs = list(zip(frames(said, count), frames(heard, count)))
    speech = sum(1 for true, _ in pairs if true)
    agreed = {}
    for pair in pairs:
        if all(pair):
            agreed[pair] = agreed.get(pair, 0) + 1
    names = list({name for *_, name in said})
    voices = list({name for *_, name in heard})
    voices += [None] * (len(names) - len(voices))
    best = max(sum(agreed.get(pair, 0) for pair in zip(names, chosen))
               for chosen in itertools.permutations(voices, len(names)))
    missed = sum(1 for true, voice in pairs if true and not voice)
    made_up = sum(1 for true, voice in pairs if voice and not true)
    return (sum(agreed.values()) - best) / speech, missed / speech, made_up / speech


def main():
    said, heard = (Path(path).read_text(encoding="utf-8") for path in sys.argv[2:4])
    if sys.argv[1] == "words":
        print(*word_errors(said, heard))
    else:
        said, heard = turns_of(said), turns_of(heard)
        print(order(heard))
        print(*(round(1000 * part) for part in turn_errors(said, heard)))


if __name__ == "__main__":
    main()
