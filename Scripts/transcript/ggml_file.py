"""Writes the model files that whisper-cli loads."""
import math
import struct
from array import array

MAGIC = 0x67676D6C
SAMPLE_RATE, WINDOW = 16000, 400
F32, F16 = 0, 1


def hertz(mel):
    """Slaney's scale: even up to 1 kHz, logarithmic above."""
    return mel * 200 / 3 if mel < 15 else 1000 * math.exp((mel - 15) * math.log(6.4) / 27)


def mel_filters(bands):
    """The weights of each band for each frequency of a window; every band has the same area. They
    are narrowed to 32 bits before and after the scaling, as those that the models learned with."""
    top = 15 + math.log(SAMPLE_RATE / 2 / 1000) / (math.log(6.4) / 27)
    edges = [hertz(top * i / (bands + 1)) for i in range(bands + 2)]
    frequencies = [SAMPLE_RATE * i / WINDOW for i in range(WINDOW // 2 + 1)]
    filters = []
    for low, peak, high in zip(edges, edges[1:], edges[2:]):
        triangle = array("f", (max(0, min((f - low) / (peak - low), (high - f) / (high - peak)))
                               for f in frequencies))
        filters.append(array("f", (2 / (high - low) * weight for weight in triangle)))
    return filters


def write(path, sizes, words, tensors):
    """`sizes`: of vocabulary, audio context, state, audio heads and layers, text context, state,
    heads and layers, mel bands. `words`: the text of the first tokens, as bytes. `tensors`: name,
    shape, F32 or F16, and the bytes."""
    with open(path, "wb") as file:
        file.write(struct.pack("<12i", MAGIC, *sizes, F16))
        filters = mel_filters(sizes[-1])
        file.write(struct.pack("<2i", len(filters), len(filters[0])))
        for row in filters:
            file.write(struct.pack(f"<{len(row)}f", *row))
        file.write(struct.pack("<i", len(words)))
        for word in words:
            file.write(struct.pack("<i", len(word)) + word)
        for name, shape, kind, data in tensors:
            size = math.prod(shape) * (2 if kind == F16 else 4)
            if len(data) != size:
                raise ValueError(f"{name} has {len(data)} bytes instead of {size}")
            file.write(struct.pack("<3i", len(shape), len(name), kind))
            file.write(struct.pack(f"<{len(shape)}i", *reversed(shape)) + name.encode())
            file.write(data)
