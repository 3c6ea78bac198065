#!/usr/bin/python3
"""Reads every source of the product for Windows with a second compiler: clang for the same target and headers as preset
release, with the warnings that are nearest to MSVC's /W4. Writes no objects. Exit code 0 if nothing was found."""
import json
import os
import re
import shlex
import subprocess
import sys
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COMMANDS = ROOT / "build" / "release" / "compile_commands.json"
STANDARD = ROOT / "build" / "clang" / "standard.h"

# What /W4 has beyond Warnings.cmake.
NEAREST_W4 = ["-Wshadow-all", "-Wno-shadow-field-in-constructor", "-Wshorten-64-to-32", "-Wconditional-uninitialized",
              "-Wunreachable-code", "-Wdeprecated",
              "-Wno-inconsistent-missing-override"]  # in a template, for only some bases have what it overrides


def target():
    """clang doesn't find the headers of Debian's second C++ library by itself."""
    gcc = Path(subprocess.run(["x86_64-w64-mingw32-g++-posix", "-print-file-name=include"], capture_output=True, text=True,
                              check=True).stdout.strip())
    folders = [gcc / "c++", gcc / "c++/x86_64-w64-mingw32", Path("/usr/x86_64-w64-mingw32/include")]
    return ["clang++-14", "--target=x86_64-w64-mingw32", "-nostdinc++", "-Wno-unknown-warning-option",
            "-Qunused-arguments", *(word for folder in folders for word in ("-isystem", str(folder)))]


def product():
    """(source, the options that preset release compiles it with)"""
    for entry in json.loads(COMMANDS.read_text(encoding="utf-8")):
        source = os.path.relpath(os.path.join(entry["directory"], entry["file"]), ROOT)
        if source.endswith(".cpp") and source.startswith(("app/", "Libs/", "Tools/")) and "/tests/" not in source:
            words = shlex.split(entry["command"])
            words = words[next(i for i, word in enumerate(words) if word.startswith("-")):]
            yield source, words[:words.index("-o")]


def precompiled(sources):
    """Reading the standard library anew for each source would take longer than the rest."""
    includes = Counter(line for source in sources for line in (ROOT / source).read_text(encoding="utf-8").splitlines()
                       if re.fullmatch(r"#include <[a-z_]+>", line))
    STANDARD.parent.mkdir(exist_ok=True)
    STANDARD.write_text("\n".join(line for line, count in includes.items() if count > 3) + "\n", encoding="utf-8")
    options = [word for word in sources["Libs/Shared/src/JsonConfig.cpp"] if not word.startswith("-I")]
    subprocess.run([*target(), *options, "-xc++-header", STANDARD, "-o", f"{STANDARD}.pch"], check=True)
    return ["-include-pch", f"{STANDARD}.pch"]


def main():
    subprocess.run(["cmake", "--preset", "release"], cwd=ROOT, stdout=subprocess.DEVNULL, check=True)
    sources = dict(product())
    clang = [*target(), *precompiled(sources)]

    def read(source):
        return subprocess.run([*clang, *sources[source], *NEAREST_W4, "-fsyntax-only", source], cwd=ROOT, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = list(pool.map(read, sources))
    for run in runs:
        print(run.stdout, end="")
    failed = sum(run.returncode != 0 for run in runs)
    print(f"clang: {len(runs)} sources, {failed} with warnings")
    return 1 if failed or not runs else 0


if __name__ == "__main__":
    sys.exit(main())
