"""Numbers and strings in the bytes of a file. Reading past the end is an error that names the file."""

import struct


class Malformed(Exception):
    """What a file holds that it must not, in one sentence."""


def require(condition: bool, sentence: str) -> None:
    if not condition:
        raise Malformed(sentence)


class Bytes:
    def __init__(self, data: bytes, name: str, big_endian: bool = False):
        self.data, self.name, self.order = data, name, ">" if big_endian else "<"

    def part(self, offset: int, size: int) -> bytes:
        require(0 <= offset and 0 <= size and offset + size <= len(self.data), f"{self.name} ends before byte {offset + size}")
        return self.data[offset : offset + size]

    def number(self, offset: int, size: int) -> int:
        return struct.unpack(self.order + {1: "B", 2: "H", 4: "I", 8: "Q"}[size], self.part(offset, size))[0]

    def text(self, offset: int) -> str:
        end = self.data.find(b"\0", offset)
        require(end >= 0, f"{self.name}: the text at {offset} does not end")
        return self.data[offset:end].decode("latin-1")
