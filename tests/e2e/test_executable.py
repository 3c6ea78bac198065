"""The shipped files: exports, hardening, the libraries they need, version and texts."""
import hashlib
import re
import subprocess

import pytest

from agent import EXECUTABLE
from permission_texts import TEXTS, YES_TO_ALL
from wine import BIN

EXPORTS = {"EXP_SetLogRoot", "EXP_GetLogPath", "EXP_SetLogEventCallback", "EXP_GetLogEventCallback",
           "EXP_GetAssertState", "EXP_GetBugState", "EXP_GetStringPalette", "EXP_GetEmptyBasicString",
           "EXP_GetTempHeap"}
# In every Windows 10 and 11.
SYSTEM_LIBRARIES = {"advapi32.dll", "bcrypt.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "normaliz.dll", "ntdll.dll",
                    "ole32.dll", "psapi.dll", "shell32.dll", "shlwapi.dll", "ucrtbase.dll", "user32.dll",
                    "version.dll", "winhttp.dll", "ws2_32.dll"}


def headers_of(program):
    return subprocess.run(["x86_64-w64-mingw32-objdump", "-p", program], check=True, capture_output=True,
                          text=True).stdout


def test_exports_exactly_these_and_is_hardened():
    headers = headers_of(EXECUTABLE)
    table = headers[headers.index("[Ordinal/Name Pointer] Table"):]
    assert set(re.findall(r"^\s*\[\s*\d+\]\s+(\S+)$", table, re.MULTILINE)) == EXPORTS
    for mark in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT", "(Windows GUI)"):
        assert mark in headers


@pytest.mark.parametrize("program", [EXECUTABLE, BIN / "PackageTool.exe"], ids=lambda path: path.stem)
def test_needs_nothing_but_the_system(program):
    needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers_of(program))}
    assert needed and needed <= SYSTEM_LIBRARIES


def test_carries_its_version_and_the_text_that_no_dialog_shows():
    assert hashlib.md5(repr(TEXTS).encode()).hexdigest() == "7cb7d5accfb6188c350aa63f518cc268", "a text was changed: on purpose?"
    content = EXECUTABLE.read_bytes()
    for text in ["1.0.0.0 (1)", *(texts[YES_TO_ALL] for texts in TEXTS.values())]:
        assert text.encode("utf-16-le") in content
