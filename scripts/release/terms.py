"""The terms of the third-party parts, word for word from the packages that were linked."""
import re
from functools import partial

import debian

COMPILER = "gcc-mingw-w64-x86-64-posix"
CXX_COMPILER = "g++-mingw-w64-x86-64-posix"
RUNTIME = "mingw-w64-x86-64-dev"


def _whole(package, ending):
    return debian.file_of(package, ending).read_text(encoding="utf-8")


def _notice(package, header):
    """The comments that a header begins with, up to its documentation and code."""
    return re.split(r"^(?:#|/\*[*!])", _whole(package, header), maxsplit=1, flags=re.MULTILINE)[0].strip() + "\n"


def _paragraph(package, name):
    """The text of one licence of a copyright file that keeps to Debian's machine-readable form."""
    text = debian.copyright_of(package)
    found = re.search(rf"^License: {re.escape(name)}\n((?: .*\n?)+)", text, re.MULTILINE)
    if not found:
        raise SystemExit(f"release archive: the terms of {package} have no text named {name}")
    return re.sub(r"^ (\.$)?", "", found[1], flags=re.MULTILINE)


# The files under licenses/, each put together from these.
FILES = {
    "zlib.txt": [partial(debian.copyright_of, "libz-mingw-w64-dev")],
    "RapidJSON.txt": [partial(_notice, "rapidjson-dev", "/rapidjson/rapidjson.h"),
                      partial(debian.copyright_of, "rapidjson-dev")],
    "GCC-runtime.txt": [partial(debian.copyright_of, COMPILER),
                        partial(_notice, CXX_COMPILER, "/c++/bits/stl_algo.h"),
                        partial(_whole, "base-files", "/common-licenses/GPL-3")],
    "mingw-w64.txt": [partial(debian.copyright_of, RUNTIME)],
}

# Licences that SPDX has no name for.
UNLISTED = {
    "LicenseRef-STL": partial(_notice, CXX_COMPILER, "/c++/bits/stl_algo.h"),
    **{f"LicenseRef-mingw-w64-{name}": partial(_paragraph, RUNTIME, name)
       for name in ("David-Gay", "Keith-Marshall", "Lucent", "public-domain")},
}


def licence_files():
    """Name under licenses/ -> content."""
    rule = "\n" + "-" * 100 + "\n\n"
    return {name: rule.join(part() for part in parts).encode() for name, parts in FILES.items()}
