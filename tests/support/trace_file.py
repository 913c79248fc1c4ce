"""An own reading of trace files, for tests in Python. It shares nothing with the reader of the product."""

import struct
from pathlib import Path

SWAP = 1022
EDITS = 0x17  # behind the length of the width table


def records(path):
    """Identifiers and payloads."""
    data = Path(path).read_bytes()
    assert data[:8] == b"Kestrail" and data[-10:] == bytes([19, 16] + [0] * 8), f"{path}: frame"
    at = EDITS + data[EDITS - 1]
    for _ in range(2):
        count, = struct.unpack_from("<I", data, at)
        assert count == 0, f"{path}: edits"
        at += 4
    while at < len(data) - 10:
        size, identifier = struct.unpack_from("<IH", data, at)
        yield identifier, data[at + 6:at + 6 + size]
        at += 6 + size
    assert at == len(data) - 10, f"{path}: a record runs over"


def pictures(path):
    """Width, height and RGBA bytes of each frame; none for one that holds no picture."""
    for identifier, payload in records(path):
        if identifier == SWAP:
            width, height, _, size = struct.unpack_from("<4I", payload, 20)
            yield (width, height, payload[36:36 + size]) if size else None
