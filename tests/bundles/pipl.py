"""The property list, in both byte orders, as values that can be compared."""

from binary import Bytes, require

KEYS_OF_TEXT = {"name", "catg", "eMNA", "mi64", "ma64"}
KEYS_OF_SHORTS = {"ePVR", "eSVR"}


def code(number: int) -> str:
    return number.to_bytes(4, "big").decode("latin-1")


def read_list(data: bytes, name: str, windows: bool) -> dict[str, object]:
    """Key to value: a string, a number, or a pair. `windows`: little-endian numbers behind the bytes 01 00."""
    start = 0
    if windows:
        require(data[:2] == b"\1\0", f"{name} does not start with 01 00")
        start = 2
    at = Bytes(data[start:], name, big_endian=not windows)
    require(at.number(0, 4) == 0, f"{name}: the list's version is not 0")
    properties: dict[str, object] = {}
    offset = 8
    for _ in range(at.number(4, 4)):
        require(code(at.number(offset, 4)) == "8BIM", f"{name}: a property's vendor is not 8BIM")
        key = code(at.number(offset + 4, 4))
        require(at.number(offset + 8, 4) == 0, f"{name}: the identifier of {key} is not 0")
        length = at.number(offset + 12, 4)
        value = at.part(offset + 16, length)
        padded = (length + 3) // 4 * 4
        require(not any(at.part(offset + 16 + length, padded - length)), f"{name}: {key} is not padded with zeros")
        require(not windows or length % 4 == 0, f"{name}: the length of {key} is not a multiple of 4")
        require(key not in properties, f"{name}: {key} stands twice")
        properties[key] = read_value(key, Bytes(value, f"{name}, {key}", big_endian=not windows))
        offset += 16 + padded
    require(offset == len(at.data), f"{name}: bytes follow the last property")
    return properties


def read_value(key: str, at: Bytes) -> object:
    if key in KEYS_OF_TEXT:
        return at.part(1, at.number(0, 1)).decode("ascii")
    if key == "8664":
        return at.text(0)
    if key in KEYS_OF_SHORTS:
        return at.number(0, 2), at.number(2, 2)
    if key == "kind":
        return code(at.number(0, 4))
    return at.number(0, min(len(at.data), 4))  # eINF has two sizes


def read_resource_file(data: bytes, name: str) -> bytes:
    """The one resource in a resource file: 'PiPL', 16000."""
    at = Bytes(data, name, big_endian=True)
    data_offset, map_offset = at.number(0, 4), at.number(4, 4)
    types = map_offset + at.number(map_offset + 24, 2)
    require(at.number(types, 2) == 0 and code(at.number(types + 2, 4)) == "PiPL", f"{name} holds other than one type, PiPL")
    references = types + at.number(types + 8, 2)
    require(at.number(types + 6, 2) == 0 and at.number(references, 2) == 16000, f"{name} holds other than resource 16000")
    offset = data_offset + (at.number(references + 4, 4) & 0xFFFFFF)
    return at.part(offset + 4, at.number(offset, 4))
