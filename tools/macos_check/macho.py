"""What a linked macOS file says of itself, read with LLVM's tools."""

import re
import shutil
import subprocess
import tempfile
from collections.abc import Sequence
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path

LLVM = "14"
UNIVERSAL = b"\xca\xfe\xba\xbe"  # the first bytes of a file for several architectures
TEXT = 0x100000000  # the address of the first byte of an executable


def tool(name: str, *arguments: str | Path) -> str:
    """The output of one of LLVM's tools."""
    command = [f"llvm-{name}-{LLVM}", *map(str, arguments)]
    return subprocess.run(command, check=True, text=True, errors="replace",
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout


def architectures(path: Path) -> list[str]:
    """The architectures that a universal or plain file holds."""
    return sorted(tool("lipo", "-archs", path).split())


def undefined(paths: Sequence[Path]) -> set[str]:
    """The undefined symbols of object files."""
    lines = tool("nm", "--undefined-only", "--format=just-symbols", *paths).splitlines()
    return {line.strip() for line in lines if line.startswith("_")}


def exported(stub: Path) -> set[str]:
    """Every symbol that a link stub names."""
    return set(re.findall(r"[\w$]+", stub.read_text(encoding="utf-8")))


@dataclass(frozen=True)
class Undefined:
    """A symbol that another library must supply."""

    name: str
    dylib: str


class Slice:
    """The part of a file for one architecture, as a file of its own."""

    def __init__(self, path: Path, architecture: str, scratch: Path) -> None:
        self.name, self.architecture = path.name, architecture
        # A folder of its own: every bundle has a tool of the same name.
        self.path = Path(tempfile.mkdtemp(dir=scratch)) / f"{path.name}.{architecture}"
        if path.read_bytes().startswith(UNIVERSAL):
            tool("lipo", path, "-thin", architecture, "-output", self.path)
        else:
            shutil.copyfile(path, self.path)  # lipo refuses a plain file
        self.data = self.path.read_bytes()

    @cached_property
    def libraries(self) -> list[str]:
        """Install names of the libraries that the file loads."""
        text = tool("objdump", "--macho", "--dylibs-used", self.path)
        return [line.split(" (")[0].strip() for line in text.splitlines()[1:]]

    @cached_property
    def minimum_system(self) -> str:
        text = tool("objdump", "--macho", "--private-headers", self.path)
        found = re.search(r"LC_BUILD_VERSION.*?minos ([\d.]+)"
                          r"|LC_VERSION_MIN_MACOSX.*?version ([\d.]+)", text, re.DOTALL)
        return (found.group(1) or found.group(2)) if found else "none"

    @cached_property
    def undefined(self) -> list[Undefined]:
        """What other libraries must supply; without dyld_stub_binder, which the linker adds."""
        pattern = re.compile(r"\(undefined\) (?:weak )?external (_\S+)(?: \(from (\S+)\))?")
        found = pattern.findall(tool("nm", "--undefined-only", "-m", self.path))
        return [Undefined(name, dylib) for name, dylib in found]

    @cached_property
    def implemented(self) -> set[tuple[str, str]]:
        """(class, selector) of every method of the file's own classes."""
        pattern = re.compile(r"[-+]\[(\w+)(?:\(\w+\))? ([^\]]+)\]")
        return set(pattern.findall(tool("nm", "--defined-only", self.path)))

    @cached_property
    def sent(self) -> set[str]:
        """Every selector that the file sends or otherwise names."""
        # The names are in the segment with which the file begins.
        text = tool("objdump", "--macho", "--section=__DATA,__objc_selrefs", self.path)
        starts = [int(address, 16) - TEXT for address in re.findall(r"  0x(\w+)", text)]
        return {self.data[start:self.data.index(b"\0", start)].decode() for start in starts}
