"""A shared library of 64-bit Linux: exports, needed libraries and the versions of the C library that it asks for."""

from binary import Bytes, require

DYNAMIC_SYMBOLS, DYNAMIC, VERSION_NEEDS = 11, 6, 0x6FFFFFFE
NEEDED, RUN_PATHS = 1, (15, 29)
FLAGS, FLAGS_1 = 30, 0x6FFFFFFB
RELRO = 0x6474E552


class LinuxLibrary:
    def __init__(self, data: bytes, name: str):
        self.at = at = Bytes(data, name)
        require(at.part(0, 6) == b"\x7fELF\x02\x01", f"{name} is not little-endian 64-bit ELF")
        self.machine = at.number(18, 2)
        table, size, count = at.number(40, 8), at.number(58, 2), at.number(60, 2)
        self.sections = [table + size * i for i in range(count)]
        self.exports, self.libraries, self.run_paths, self.versions = [], [], [], set()
        self.binds_at_start = False
        headers, size, count = at.number(32, 8), at.number(54, 2), at.number(56, 2)
        self.protects_addresses = any(at.number(headers + size * i, 4) == RELRO for i in range(count))
        for section in self.sections:
            kind = at.number(section + 4, 4)
            start, length = at.number(section + 24, 8), at.number(section + 32, 8)
            if kind not in (DYNAMIC_SYMBOLS, DYNAMIC, VERSION_NEEDS):
                continue
            strings = at.number(self.sections[at.number(section + 40, 4)] + 24, 8)
            if kind == DYNAMIC_SYMBOLS:
                for symbol in range(start + 24, start + length, 24):
                    if at.number(symbol + 6, 2) != 0:
                        self.exports.append(at.text(strings + at.number(symbol, 4)))
            elif kind == DYNAMIC:
                for entry in range(start, start + length, 16):
                    tag, value = at.number(entry, 8), at.number(entry + 8, 8)
                    if tag == NEEDED:
                        self.libraries.append(at.text(strings + value))
                    elif tag in RUN_PATHS:
                        self.run_paths.append(at.text(strings + value))
                    elif (tag, value & 8) == (FLAGS, 8) or (tag, value & 1) == (FLAGS_1, 1):
                        self.binds_at_start = True
            else:
                self.read_versions(start, strings, at.number(section + 44, 4))

    def read_versions(self, need: int, strings: int, count: int) -> None:
        at = self.at
        for _ in range(count):
            version = need + at.number(need + 8, 4)
            for _ in range(at.number(need + 2, 2)):
                self.versions.add(at.text(strings + at.number(version + 8, 4)))
                version += at.number(version + 12, 4)
            need += at.number(need + 12, 4)
