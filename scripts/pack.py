#!/usr/bin/env python3
"""pack.py ARCHIVE FOLDER: packs a folder into ARCHIVE, a .zip or .tar.gz, with the folder's name at the top.

The same files give the same bytes: sorted by name, dated SOURCE_DATE_EPOCH (in a .zip 1980 at the earliest), owned by
nobody, and of two kinds only, what may be run and what may not.
"""

import gzip
import os
import pathlib
import sys
import tarfile
import time
import zipfile

FIRST_ZIP_DATE = 315532800  # 1 January 1980


def files_of(folder: pathlib.Path) -> list[tuple[str, pathlib.Path, int]]:
    """The name in the archive, the path and the mode of each file."""
    paths = sorted(path for path in folder.rglob("*") if path.is_file())
    return [
        (str(path.relative_to(folder.parent)), path, 0o755 if os.access(path, os.X_OK) else 0o644) for path in paths
    ]


def pack_zip(archive: pathlib.Path, folder: pathlib.Path, date: int) -> None:
    with zipfile.ZipFile(archive, "w") as packed:
        for name, path, mode in files_of(folder):
            entry = zipfile.ZipInfo(name, time.gmtime(max(date, FIRST_ZIP_DATE))[:6])
            entry.create_system = 3  # Unix, so that the mode below counts
            entry.external_attr = (0o100000 | mode) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            packed.writestr(entry, path.read_bytes(), compresslevel=9)


def pack_tar(archive: pathlib.Path, folder: pathlib.Path, date: int) -> None:
    with open(archive, "wb") as file, gzip.GzipFile("", "wb", 9, file, mtime=date) as zipped:
        with tarfile.open(fileobj=zipped, mode="w", format=tarfile.USTAR_FORMAT) as packed:
            for name, path, mode in files_of(folder):
                entry = tarfile.TarInfo(name)
                entry.size, entry.mtime, entry.mode = path.stat().st_size, date, mode
                with open(path, "rb") as content:
                    packed.addfile(entry, content)


def main() -> None:
    if len(sys.argv) != 3 or "SOURCE_DATE_EPOCH" not in os.environ:
        sys.exit("usage: SOURCE_DATE_EPOCH=SECONDS pack.py ARCHIVE FOLDER")
    archive, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    if not folder.is_dir():
        sys.exit(f"pack.py: {folder} is not a folder")
    pack = pack_zip if archive.suffix == ".zip" else pack_tar
    pack(archive, folder, int(os.environ["SOURCE_DATE_EPOCH"]))


if __name__ == "__main__":
    main()
