"""A universal library of macOS: for each processor its kind, exports, needed libraries, minimum system and signature."""

from binary import Bytes, require

PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}
BUNDLE = 8
SEGMENT, SYMBOLS, LOAD_LIBRARY, ID_LIBRARY, RUN_PATH = 0x19, 0x2, 0xC, 0xD, 0x8000001C
SIGNATURE, DYLD_INFO, EXPORTS_TRIE, BUILD_VERSION = 0x1D, 0x80000022, 0x80000033, 0x32


def read_universal(data: bytes, name: str) -> dict[str, "MacLibrary"]:
    at = Bytes(data, name, big_endian=True)
    require(at.number(0, 4) == 0xCAFEBABE, f"{name} is not universal")
    libraries = {}
    for i in range(at.number(4, 4)):
        entry = 8 + 20 * i
        processor = PROCESSORS.get(at.number(entry, 4), hex(at.number(entry, 4)))
        offset, size, alignment = (at.number(entry + field, 4) for field in (8, 12, 16))
        require(offset % (1 << alignment) == 0, f"{name}: the part for {processor} is not aligned")
        libraries[processor] = MacLibrary(at.part(offset, size), f"{name} for {processor}")
    return libraries


class MacLibrary:
    def __init__(self, data: bytes, name: str):
        self.at = at = Bytes(data, name)
        require(at.number(0, 4) == 0xFEEDFACF, f"{name} is not 64-bit Mach-O")
        self.processor, self.kind = PROCESSORS.get(at.number(4, 4)), at.number(12, 4)
        self.libraries: list[str] = []
        self.paths: list[str] = []  # install names and run paths: a bundle has none
        self.minimum_system, self.is_signed, self.exports = "", False, []
        command = 32
        for _ in range(at.number(16, 4)):
            kind, size = at.number(command, 4), at.number(command + 4, 4)
            if kind in (LOAD_LIBRARY, ID_LIBRARY, RUN_PATH):
                path = at.text(command + at.number(command + 8, 4))
                (self.libraries if kind == LOAD_LIBRARY else self.paths).append(path)
            elif kind == BUILD_VERSION:
                require(at.number(command + 8, 4) == 1, f"{name} is not for macOS")
                minimum = at.number(command + 12, 4)
                self.minimum_system = f"{minimum >> 16}.{minimum >> 8 & 255}"
            elif kind == SIGNATURE:
                self.is_signed = self.read_signature(at.number(command + 8, 4))
            elif kind == DYLD_INFO:
                self.exports = self.read_trie(at.number(command + 40, 4), at.number(command + 44, 4))
            elif kind == EXPORTS_TRIE:
                self.exports = self.read_trie(at.number(command + 8, 4), at.number(command + 12, 4))
            command += size

    def read_signature(self, offset: int) -> bool:
        """Whether the signature holds a code directory that is marked ad-hoc."""
        at = Bytes(self.at.part(offset, len(self.at.data) - offset), self.at.name + ", signature", big_endian=True)
        require(at.number(0, 4) == 0xFADE0CC0, f"{at.name} is malformed")
        directory = at.number(16, 4)
        return at.number(directory, 4) == 0xFADE0C02 and bool(at.number(directory + 12, 4) & 2)

    def read_trie(self, start: int, size: int) -> list[str]:
        at = Bytes(self.at.part(start, size), self.at.name + ", exports")
        names: list[str] = []

        def number(offset: int) -> tuple[int, int]:
            value = shift = 0
            while True:
                byte = at.number(offset, 1)
                value |= (byte & 0x7F) << shift
                offset, shift = offset + 1, shift + 7
                if byte < 0x80:
                    return value, offset

        def walk(offset: int, prefix: str, depth: int) -> None:
            require(depth < 64, f"{at.name} is nested too deeply")
            length, offset = number(offset)
            if length:
                names.append(prefix)
            offset += length
            children = at.number(offset, 1)
            offset += 1
            for _ in range(children):
                edge = at.text(offset)
                child, offset = number(offset + len(edge) + 1)
                walk(child, prefix + edge, depth + 1)

        walk(0, "", 0)
        return names
