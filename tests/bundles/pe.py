"""A library of Windows: its exports, imports, resources and what its header says."""

from binary import Bytes, require

EXPORTS, IMPORTS, RESOURCES = 0, 1, 2
RT_VERSION = 16


class WindowsLibrary:
    def __init__(self, data: bytes, name: str):
        self.at = Bytes(data, name)
        require(self.at.part(0, 2) == b"MZ", f"{name} does not start with MZ")
        header = self.at.number(0x3C, 4)
        require(self.at.part(header, 4) == b"PE\0\0", f"{name} is not a portable executable")
        self.machine = self.at.number(header + 4, 2)
        self.date = self.at.number(header + 8, 4)
        self.is_library = bool(self.at.number(header + 22, 2) & 0x2000)
        optional = header + 24
        require(self.at.number(optional, 2) == 0x20B, f"{name} is not 64-bit")
        self.hardening = self.at.number(optional + 70, 2)
        self.directories = optional + 112
        sections = optional + self.at.number(header + 20, 2)
        self.sections = [sections + 40 * i for i in range(self.at.number(header + 6, 2))]

    def place(self, address: int) -> int:
        """Where in the file an address of the loaded library is."""
        for section in self.sections:
            start, size = self.at.number(section + 12, 4), self.at.number(section + 16, 4)
            if start <= address < start + size:
                return address - start + self.at.number(section + 20, 4)
        require(False, f"{self.at.name}: no section holds the address {address:#x}")
        return 0

    def directory(self, index: int) -> int:
        address = self.at.number(self.directories + 8 * index, 4)
        require(address != 0, f"{self.at.name} lacks directory {index}")
        return self.place(address)

    def exports(self) -> list[str]:
        table = self.directory(EXPORTS)
        names = self.place(self.at.number(table + 32, 4))
        return [self.at.text(self.place(self.at.number(names + 4 * i, 4))) for i in range(self.at.number(table + 24, 4))]

    def imports(self) -> list[str]:
        table, libraries = self.directory(IMPORTS), []
        while self.at.number(table + 12, 4) != 0:
            libraries.append(self.at.text(self.place(self.at.number(table + 12, 4))).lower())
            table += 20
        return libraries

    def resources(self) -> dict[tuple[str | int, str | int], bytes]:
        """Content by type and name; a number stands for a name that is one."""
        root, found = self.directory(RESOURCES), {}

        def entries(folder: int) -> list[tuple[str | int, int]]:
            count = self.at.number(folder + 12, 2) + self.at.number(folder + 14, 2)
            return [(name(self.at.number(entry, 4)), self.at.number(entry + 4, 4) & 0x7FFFFFFF)
                    for entry in range(folder + 16, folder + 16 + 8 * count, 8)]

        def name(word: int) -> str | int:
            if not word & 0x80000000:
                return word
            text = root + (word & 0x7FFFFFFF)
            return self.at.part(text + 2, 2 * self.at.number(text, 2)).decode("utf-16-le")

        for kind, kind_folder in entries(root):
            for identity, folder in entries(root + kind_folder):
                for _language, leaf in entries(root + folder):
                    address, size = self.at.number(root + leaf, 4), self.at.number(root + leaf + 4, 4)
                    found[kind, identity] = self.at.part(self.place(address), size)
        return found
