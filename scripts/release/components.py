"""The third-party parts of a program, from what its linker read: a part without terms is never shipped."""
import os
from dataclasses import dataclass
from fnmatch import fnmatch
from pathlib import Path

import debian
import terms


@dataclass(frozen=True)
class Component:
    name: str
    packages: tuple  # of Debian; the first one's version is the component's
    licence: str  # an SPDX expression
    terms: str  # its file under licenses/
    files: str = "*"  # which files of the packages, where these bring more than one component


# A file belongs to the first component that names its package and its path. The terms beside ZPL-2.1 are those of the
# files that the programs link.
LINKED = (
    Component("zlib", ("libz-mingw-w64-dev",), "Zlib", "zlib.txt"),
    Component("libgcc", (terms.COMPILER,), "GPL-3.0-or-later WITH GCC-exception-3.1", "GCC-runtime.txt"),
    Component("libstdc++", (terms.CXX_COMPILER,), "GPL-3.0-or-later WITH GCC-exception-3.1 AND LicenseRef-STL",
              "GCC-runtime.txt"),
    Component("winpthreads", (terms.RUNTIME,), "MIT AND BSD-3-Clause AND LicenseRef-mingw-w64-public-domain",
              "mingw-w64.txt", "*/lib*pthread.a"),
    Component("mingw-w64", (terms.RUNTIME, "mingw-w64-common"),
              "ZPL-2.1 AND LicenseRef-mingw-w64-David-Gay AND LicenseRef-mingw-w64-Keith-Marshall"
              " AND LicenseRef-mingw-w64-Lucent AND LicenseRef-mingw-w64-public-domain", "mingw-w64.txt"),
)

# What the bytes depend on, beside sources and libraries.
TOOLS = {"gcc": terms.CXX_COMPILER, "binutils": "binutils-mingw-w64-x86-64"}

# Compiled in from headers alone, so no linker lists them. The second licence of this package is for headers that only
# old compilers need.
HEADERS_ONLY = (Component("RapidJSON", ("rapidjson-dev",), "MIT", "RapidJSON.txt"),)


def _component_of(path, package):
    for component in LINKED:
        if package in component.packages and fnmatch(path, component.files):
            return component
    raise SystemExit(f"release archive: {path} of {package} is linked, but scripts/release knows no terms for it")


def _linked_files(dependency_file, build):
    """The files in the linker's dependency file, one per line, relative to the build folder."""
    for line in dependency_file.read_text(encoding="utf-8").splitlines():
        if line.startswith("  "):
            yield Path(os.path.realpath(build / line.strip().removesuffix(" \\").replace("\\ ", " ")))


def components_of(dependency_file, root, build):
    """All components of the program that was linked; what lies in the repository or the build folder is our own."""
    foreign = {path for path in _linked_files(dependency_file, build)
               if not path.is_relative_to(root) and not path.is_relative_to(build)}
    found = {_component_of(path, package) for path, package in debian.owners(sorted(foreign)).items()}
    return sorted(found | set(HEADERS_ONLY), key=lambda component: component.name)
