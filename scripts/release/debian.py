"""What dpkg knows about installed packages: the owner of a file, the version, the licence."""
import subprocess
from dataclasses import dataclass
from pathlib import Path
from urllib.parse import quote


@dataclass(frozen=True)
class Package:
    """An installed package; `source` is the source package it was built from, with its version."""
    name: str
    version: str
    architecture: str
    source: str

    @property
    def url(self):
        return f"pkg:deb/debian/{quote(self.name, safe='')}@{quote(self.version, safe='')}?arch={self.architecture}"


def _dpkg_query(*arguments):
    return subprocess.run(["dpkg-query", *arguments], check=True, stdout=subprocess.PIPE, text=True,
                          env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"}).stdout


def installed(name):
    form = "${Version}\\t${Architecture}\\t${source:Package} ${source:Version}"
    return Package(name, *_dpkg_query("--show", "--showformat", form, name).split("\t"))


def owners(files):
    """The package of each file, by path. A file of no package ends the program with dpkg's message."""
    found = {}
    for line in _dpkg_query("--search", *map(str, files)).splitlines():
        packages, path = line.split(": ", 1)
        found[Path(path)] = packages.split(",")[0].split(":")[0]
    return found


def file_of(package, ending):
    """The only file of the package whose path has this ending."""
    paths = [path for path in _dpkg_query("--listfiles", package).splitlines() if path.endswith(ending)]
    if len(paths) != 1:
        raise SystemExit(f"release archive: {package} has {len(paths)} files that end in {ending}")
    return Path(paths[0])


def copyright_of(package):
    return Path("/usr/share/doc", package, "copyright").read_text(encoding="utf-8")
