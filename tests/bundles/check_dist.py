#!/usr/bin/env python3
"""check_dist.py FOLDER: reads back what `make bundles` put in a folder and fails where an archive holds what it must not.

Where LLVM's tools are installed they are asked the same, as a second opinion.
"""

import hashlib
import pathlib
import platform
import plistlib
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import elf  # noqa: E402
import macho  # noqa: E402
import pe  # noqa: E402
import pipl  # noqa: E402
from binary import Malformed, require  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]
PIPL_KEYS = ["8664", "aeFL", "catg", "eGL2", "eGLO", "eINF", "eMNA", "ePVR", "eSVR", "eVER", "kind", "ma64", "mi64", "name"]
WINDOWS_LIBRARIES = {"advapi32.dll", "kernel32.dll", "msvcrt.dll"}
LINUX_LIBRARIES = {"libc.so.6", "libm.so.6", "libdl.so.2", "libpthread.so.0", "ld-linux-x86-64.so.2"}
LLVM_LIBRARIES = ("libc++", "libc++abi", "compiler_rt")
HARDENED = 0x160  # any address, also above 4 GiB; data are not run


def setting(name: str) -> str:
    return re.search(rf"^set\({name} ([^ )]+)", (ROOT / "cmake/Version.cmake").read_text(), re.M)[1]


VERSION = setting("KESTREL_VERSION")
MACOS_MINIMUM = setting("KESTREL_MACOS_MINIMUM")


def same(what: str, expected: object, actual: object) -> None:
    require(expected == actual, f"{what}: expected {expected}, found {actual}")


def unpack(archive: pathlib.Path) -> dict[str, bytes]:
    """Content by name within the archive's one folder, which is named as the archive."""
    if archive.suffix == ".zip":
        with zipfile.ZipFile(archive) as packed:
            files = {name: packed.read(name) for name in packed.namelist()}
    else:
        with tarfile.open(archive) as packed:
            files = {entry.name: packed.extractfile(entry).read() for entry in packed if entry.isfile()}
    top = archive.name.removesuffix(".zip").removesuffix(".tar.gz") + "/"
    for name in files:
        require(name.startswith(top), f"{archive.name}: {name} is not in {top}")
    return {name.removeprefix(top): content for name, content in files.items()}


def check_readme(files: dict[str, bytes], archive: str) -> None:
    lines = files["README.txt"].decode("ascii").splitlines()
    same(f"{archive}, lines of README.txt", 3, len(lines))
    require(f"Kestrel {VERSION}," in lines[0] and "@" not in "".join(lines), f"{archive}: README.txt does not name the version")
    for line, start in zip(lines[1:], ("To install:", "To remove:")):
        require(line.startswith(start), f"{archive}: a line of README.txt does not start with {start}")


def check_notices(files: dict[str, bytes], archive: str, *libraries: str) -> None:
    named = re.findall(r"^(.+), a part of which is in this product:$", files["NOTICES.txt"].decode("utf-8"), re.M)
    same(f"{archive}, libraries of NOTICES.txt", list(libraries), named)


def check_no_path(name: str, content: bytes) -> None:
    require(str(ROOT).encode() not in content, f"{name} names the folder that it was built in")


def check_list(properties: dict[str, object], name: str) -> dict[str, object]:
    same(f"{name}, keys", PIPL_KEYS, sorted(properties))
    expected = {"kind": "eFKT", "name": "Kestrel", "eMNA": "Quillon Kestrel", "8664": "PluginMain",
                "mi64": "PluginMain", "ma64": "PluginMain", "ePVR": (2, 0)}
    for key, value in expected.items():
        same(f"{name}, {key}", value, properties[key])
    major, minor, bugfix = map(int, VERSION.split("."))
    packed = (major >> 3) << 26 | (major & 7) << 19 | minor << 15 | bugfix << 11 | 3 << 9 | int(setting("KESTREL_BUILD"))
    same(f"{name}, eVER", packed, properties["eVER"])
    return properties


def tool(*command: str) -> str | None:
    """What one of LLVM's tools prints; None where it is not installed."""
    program = shutil.which(command[0] + "-14") or shutil.which(command[0])
    if program is None:
        return None
    return subprocess.run([program, *command[1:]], check=True, capture_output=True, text=True).stdout


def second_opinion(what: str, ours: list[str], printed: str | None, pattern: str) -> None:
    if printed is not None:
        same(f"{what}, as LLVM reads it", sorted(set(ours)), sorted(set(re.findall(pattern, printed, re.M))))


def check_vectors(what: str, path: pathlib.Path, *options: str) -> None:
    """Every level's kernels are in a library for x86-64: the widest registers occur."""
    printed = tool("llvm-objdump", "--disassemble", *options, str(path))
    require(printed is None or "%zmm" in printed, f"{what} lacks the kernels of AVX-512")


def check_windows(archive: pathlib.Path, folder: pathlib.Path) -> dict[str, object]:
    files = unpack(archive)
    same(f"{archive.name}, files", ["Kestrel.aex", "NOTICES.txt", "README.txt"], sorted(files))
    check_readme(files, archive.name)
    check_notices(files, archive.name, "libstdc++, libgcc and libssp", "mingw-w64")
    content = files["Kestrel.aex"]
    check_no_path("Kestrel.aex", content)
    library = pe.WindowsLibrary(content, "Kestrel.aex")
    require(library.is_library and library.machine == 0x8664, "Kestrel.aex is not a library for x86-64")
    same("Kestrel.aex, date", 0, library.date)
    same("Kestrel.aex, hardening", HARDENED, library.hardening & HARDENED)
    same("Kestrel.aex, exports", ["PluginMain"], library.exports())
    foreign = set(library.imports()) - WINDOWS_LIBRARIES
    require(not foreign, f"Kestrel.aex needs {', '.join(foreign)}")
    resources = library.resources()
    same("Kestrel.aex, resources", {("PIPL", 16000), ("BE_PIPL", 16000), (pe.RT_VERSION, 1)}, set(resources))
    theirs = pipl.read_list(resources["PIPL", 16000], "the host's list in Kestrel.aex", windows=True)
    own = pipl.read_list(resources["BE_PIPL", 16000], "the plug-in's list in Kestrel.aex", windows=False)
    same("Kestrel.aex, lists in both byte orders", theirs, own)
    details = resources[pe.RT_VERSION, 1].decode("utf-16-le", "replace")
    for text in ("FileVersion", VERSION, "Quillon", "Kestrel.aex"):
        require(text in details, f"Kestrel.aex: its version block lacks {text}")

    path = folder / "Kestrel.aex"
    path.write_bytes(content)
    check_vectors("Kestrel.aex", path)
    printed = tool("llvm-readobj", "--coff-exports", str(path))
    second_opinion("Kestrel.aex, exports", library.exports(), printed, r"^  Name: (\S+)")
    printed = tool("llvm-readobj", "--coff-imports", str(path))
    second_opinion("Kestrel.aex, imports", library.imports(), printed and printed.lower(), r"^  name: (\S+)")
    printed = tool("llvm-readobj", "--coff-resources", str(path))
    second_opinion("Kestrel.aex, resources", ["BE_PIPL", "PIPL", "VERSIONINFO"], printed, r"^  Type: (\w+)")
    return check_list(own, "Kestrel.aex")


def check_bundle(files: dict[str, bytes], library: str, archive: str) -> dict[str, object]:
    """What the bundles of both systems share."""
    contents = "Kestrel.plugin/Contents/"
    bundle = sorted(name for name in files if name.startswith("Kestrel.plugin/"))
    expected = ["Info.plist", library, "PkgInfo", "Resources/Kestrel.rsrc"]
    same(f"{archive}, bundle", sorted(contents + name for name in expected), bundle)
    same(f"{archive}, PkgInfo", b"eFKTFXTC", files[contents + "PkgInfo"])
    check_readme(files, archive)
    check_no_path(archive, files[contents + library])
    keys = plistlib.loads(files[contents + "Info.plist"])
    same(f"{archive}, Info.plist", {
        "CFBundleDevelopmentRegion": "en",
        "CFBundleExecutable": "Kestrel",
        "CFBundleGetInfoString": f"Kestrel {VERSION}",
        "CFBundleIdentifier": "quillon.kestrel",
        "CFBundleInfoDictionaryVersion": "6.0",
        "CFBundleName": "Kestrel",
        "CFBundlePackageType": "eFKT",
        "CFBundleShortVersionString": VERSION,
        "CFBundleSignature": "FXTC",
        "CFBundleSupportedPlatforms": ["MacOSX"],
        "CFBundleVersion": VERSION,
        "LSMinimumSystemVersion": MACOS_MINIMUM,
    }, keys)
    resource = pipl.read_resource_file(files[contents + "Resources/Kestrel.rsrc"], f"{archive}, Kestrel.rsrc")
    return check_list(pipl.read_list(resource, f"{archive}, property list", windows=False), archive)


def check_macos(archive: pathlib.Path, folder: pathlib.Path) -> dict[str, object]:
    files = unpack(archive)
    properties = check_bundle(files, "MacOS/Kestrel", archive.name)
    check_notices(files, archive.name, *LLVM_LIBRARIES)
    content = files["Kestrel.plugin/Contents/MacOS/Kestrel"]
    libraries = macho.read_universal(content, "Kestrel")
    same("Kestrel, processors", ["arm64", "x86_64"], sorted(libraries))
    path = folder / "Kestrel"
    path.write_bytes(content)
    for processor, library in libraries.items():
        name = library.at.name
        same(f"{name}, kind", macho.BUNDLE, library.kind)
        same(f"{name}, exports", ["_PluginMain"], library.exports)
        same(f"{name}, needed libraries", ["/usr/lib/libSystem.B.dylib"], library.libraries)
        same(f"{name}, install names and run paths", [], library.paths)
        same(f"{name}, minimum system", MACOS_MINIMUM, library.minimum_system)
        require(library.is_signed or processor != "arm64", f"{name} is not signed")
        arch = f"--arch={processor}"
        if processor == "x86_64":
            check_vectors(name, path, "--macho", arch)
        printed = tool("llvm-objdump", "--macho", arch, "--exports-trie", str(path))
        second_opinion(f"{name}, exports", library.exports, printed, r"^0x[0-9A-F]+ +(\S+)")
        printed = tool("llvm-objdump", "--macho", arch, "--dylibs-used", str(path))
        second_opinion(f"{name}, needed libraries", library.libraries, printed, r"^\t(\S+)")
        printed = tool("llvm-objdump", "--macho", arch, "--private-headers", str(path))
        second_opinion(f"{name}, minimum system", [library.minimum_system], printed, r"^ +minos (\S+)")
        second_opinion(f"{name}, signature", ["LC_CODE_SIGNATURE"] * library.is_signed, printed, r"LC_CODE_SIGNATURE")
    return properties


def check_runs(archive: pathlib.Path, folder: pathlib.Path) -> None:
    """perch tries the plug-in beside it, and unloads it, where what is in the archive runs."""
    if platform.system() != "Linux" or platform.machine() != "x86_64":
        return
    with tarfile.open(archive) as packed:
        packed.extractall(folder)
    program = folder / archive.name.removesuffix(".tar.gz") / "bin/perch"
    result = subprocess.run([program, "check"], capture_output=True, text=True)
    require(result.returncode == 0, f"perch check ends with {result.returncode}: {result.stdout}{result.stderr}")


def check_linux(archive: pathlib.Path, folder: pathlib.Path) -> dict[str, object]:
    files = unpack(archive)
    name = "Linux-x86-64/Kestrel.so"
    properties = check_bundle(files, name, archive.name)
    others = sorted(name for name in files if not name.startswith("Kestrel.plugin/"))
    programs = ["bin/perch", "lib/perch/pictures.so", "lib/perch/view.so"]
    same(f"{archive.name}, files beside the bundle", ["NOTICES.txt", "README.txt", *programs, "share/man/man1/perch.1"], others)
    check_notices(files, archive.name, *LLVM_LIBRARIES, "libunwind", "CLI11", "JSON for Modern C++", "Lit")
    for program in programs:
        check_no_path(program, files[program])
    content = files["Kestrel.plugin/Contents/" + name]
    library = elf.LinuxLibrary(content, "Kestrel.so")
    same("Kestrel.so, processor", 62, library.machine)
    same("Kestrel.so, exports", ["PluginMain"], library.exports)
    same("Kestrel.so, run paths", [], library.run_paths)
    require(library.binds_at_start and library.protects_addresses, "Kestrel.so keeps the addresses of calls writable")
    foreign = set(library.libraries) - LINUX_LIBRARIES
    require(not foreign, f"Kestrel.so needs {', '.join(foreign)}")
    for version in library.versions:
        numbers = tuple(map(int, version.removeprefix("GLIBC_").split(".")))
        require(numbers <= (2, 17), f"Kestrel.so needs {version}")
    path = folder / "Kestrel.so"
    path.write_bytes(content)
    check_vectors("Kestrel.so", path)
    printed = tool("llvm-readobj", "--needed-libs", str(path))
    second_opinion("Kestrel.so, needed libraries", library.libraries, printed, r"^  (\S+\.so\S*)$")
    printed = tool("llvm-readobj", "--version-info", str(path))
    second_opinion("Kestrel.so, versions", library.versions, printed, r"^ +Name: (GLIBC_\S+)$")
    check_runs(archive, folder)
    return properties


def check_source(archive: pathlib.Path) -> None:
    files = unpack(archive)
    for name in ("Makefile", "CMakeLists.txt", "README.md", "Kestrel/AEKestrel.cpp", "scripts/bundles.sh"):
        require(name in files, f"{archive.name} lacks {name}")
    date = files["cmake/source-date.txt"].strip()
    require(date.isdigit(), f"{archive.name} does not tell the date of its commit")


def check_sums(dist: pathlib.Path) -> None:
    sums = dict(reversed(line.split("  ")) for line in (dist / "SHA256SUMS").read_text().splitlines())
    files = sorted(path.name for path in dist.iterdir() if path.name != "SHA256SUMS")
    same("SHA256SUMS, files", files, sorted(sums))
    for name, checksum in sums.items():
        same(f"SHA256SUMS, {name}", checksum, hashlib.sha256((dist / name).read_bytes()).hexdigest())


def main() -> None:
    if len(sys.argv) != 2:
        sys.exit("usage: check_dist.py FOLDER")
    dist = pathlib.Path(sys.argv[1])
    try:
        check_sums(dist)
        with tempfile.TemporaryDirectory() as temporary:
            folder = pathlib.Path(temporary)
            lists = [
                check_windows(dist / f"Kestrel-{VERSION}-windows-x64.zip", folder),
                check_macos(dist / f"Kestrel-{VERSION}-macos-universal.zip", folder),
                check_linux(dist / f"Kestrel-{VERSION}-linux-x64.tar.gz", folder),
            ]
        source = dist / f"Kestrel-{VERSION}-source.tar.gz"
        if source.exists():  # made from a git checkout alone
            check_source(source)
        same("the effect's description on Windows and macOS", lists[0], lists[1])
        same("the effect's description on Windows and Linux", lists[0], lists[2])
    except (Malformed, OSError, KeyError, subprocess.CalledProcessError) as error:
        sys.exit(f"check_dist.py: {error}")
    print(f"{dist} holds what it should")


if __name__ == "__main__":
    main()
