"""Writes ONNX files: as much of the format as our models need, and nothing but Python."""
import struct
from math import prod

FLOAT, INT64 = 1, 7
WIDTH = {FLOAT: 4, INT64: 8}


def varint(number):
    number &= 2**64 - 1
    out = bytearray()
    while number > 0x7F:
        out.append(number & 0x7F | 0x80)
        number >>= 7
    return bytes([*out, number])


def field(number, value):
    """One field of a message: an int, a float, a text, or the bytes of another message."""
    if isinstance(value, int):
        return varint(number << 3) + varint(value)
    if isinstance(value, float):
        return varint(number << 3 | 5) + struct.pack("<f", value)
    value = value.encode() if isinstance(value, str) else value
    return varint(number << 3 | 2) + varint(len(value)) + value


def fields(number, values):
    return b"".join(field(number, value) for value in values)


def attribute(name, value):
    if isinstance(value, int):
        content = field(3, value) + field(20, 2)
    elif isinstance(value, float):
        content = field(2, value) + field(20, 1)
    elif isinstance(value, str):
        content = field(4, value) + field(20, 3)
    else:
        content = fields(8, value) + field(20, 7)
    return field(1, name) + content


def metadata(**entries):
    """Entries of a model's metadata. Put behind a model's bytes, they become part of it."""
    return fields(14, [field(1, key) + field(2, str(value)) for key, value in entries.items()])


def tensor(name, shape):
    """The description of a float tensor; a size that is a text is open."""
    sizes = [field(2 if isinstance(size, str) else 1, size) for size in shape]
    return field(1, name) + field(2, field(1, field(1, FLOAT) + field(2, fields(1, sizes))))


class Graph:
    """A graph that grows node by node. Each operation returns the name of its result."""

    def __init__(self, name, opset, inputs):
        self.name, self.opset, self.inputs = name, opset, inputs
        self.nodes, self.constants = [], {}

    def node(self, kind, *inputs, result=None, **attributes):
        result = result or f"n{len(self.nodes)}"
        self.nodes.append(fields(1, inputs) + field(2, result) + field(3, result) + field(4, kind)
                          + fields(5, [attribute(*entry) for entry in attributes.items()]))
        return result

    def constant(self, shape, data, kind=FLOAT):
        """A constant of little-endian bytes. Equal constants are held once."""
        if len(data) != prod(shape) * WIDTH[kind]:
            raise ValueError(f"{len(data)} bytes for the shape {shape}")
        key = (tuple(shape), bytes(data), kind)
        return self.constants.setdefault(key, f"c{len(self.constants)}")

    def floats(self, *values, shape=None):
        return self.constant(shape or [len(values)], struct.pack(f"<{len(values)}f", *values))

    def integers(self, *values):
        return self.constant([len(values)], struct.pack(f"<{len(values)}q", *values), INT64)

    def write(self, path, outputs, **entries):
        """`outputs` maps a result's name to its shape."""
        constants = [fields(1, shape) + field(2, kind) + field(8, name) + field(9, data)
                     for (shape, data, kind), name in self.constants.items()]
        graph = (fields(1, self.nodes) + field(2, self.name) + fields(5, constants)
                 + fields(11, [tensor(*entry) for entry in self.inputs.items()])
                 + fields(12, [tensor(*entry) for entry in outputs.items()]))
        with open(path, "wb") as file:
            file.write(field(1, 7) + field(7, graph) + field(8, field(2, self.opset))
                       + metadata(**entries))
