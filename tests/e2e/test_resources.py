"""The dialog and the texts as they stand in the shipped file."""
import struct

import pytest

from agent import EXECUTABLE
from permission_texts import TEXTS
from resources import DIALOG, Resources

STRING_BLOCK = 7  # identifiers 96 to 111
POPUP, CHILD, VISIBLE, CAPTION, SYSTEM_MENU, TAB_STOP, GROUP = (
    0x80000000, 0x40000000, 0x10000000, 0x00C00000, 0x00080000, 0x00010000, 0x00020000)
MODAL_FRAME, FIXED_SYSTEM, SET_FONT, DEFAULT_BUTTON = 0x80, 0x08, 0x40, 0x1
BUTTON, STATIC = 0x80, 0x82
MESSAGE = ("A crash has been detected and a report has been generated.\n"
           "This report contains no personal information and will help developers fix the issue.\n\n\n"
           "Would you like to submit this report?")


@pytest.fixture(scope="module")
def resources():
    return Resources(EXECUTABLE.read_bytes())


def test_has_the_texts_in_these_languages(resources):
    assert resources.languages(6, STRING_BLOCK) == set(TEXTS)


@pytest.mark.parametrize("language", TEXTS, ids=hex)
def test_texts_are_these(resources, language):
    assert resources.string_block(STRING_BLOCK, language) == TEXTS[language]


class Template:
    """Reads an extended dialog template from its beginning."""

    def __init__(self, data):
        self._data = data
        self._offset = 0

    def take(self, layout):
        values = struct.unpack_from("<" + layout, self._data, self._offset)
        self._offset += struct.calcsize("<" + layout)
        return values

    def take_name(self):
        """A text, or the number that stands for one."""
        first, = self.take("H")
        if first == 0xFFFF:
            return self.take("H")[0]
        units = []
        while first:
            units.append(first)
            first, = self.take("H")
        return struct.pack(f"<{len(units)}H", *units).decode("utf-16-le")

    def align(self):
        self._offset += -self._offset % 4


def test_dialog_is_this(resources):
    assert resources.languages(DIALOG, 101) == {0x0409}
    template = Template(resources.data(DIALOG, 101, 0x0409))
    assert template.take("HHIII") == (1, 0xFFFF, 0, 0,
                                      POPUP | CAPTION | SYSTEM_MENU | MODAL_FRAME | FIXED_SYSTEM | SET_FONT)
    assert template.take("H4h") == (3, 0, 0, 311, 121)
    assert [template.take_name() for _ in range(3)] == ["", "", "Morvane Crash Reporter"]
    assert template.take("HHBB") == (8, 400, 0, 1) and template.take_name() == "MS Shell Dlg"
    controls = []
    for _ in range(3):
        template.align()
        help_id, extended, style, *place, identifier = template.take("III4hI")
        assert (help_id, extended) == (0, 0)
        controls.append((identifier, style, tuple(place), template.take_name(), template.take_name()))
        template.take("H")
    assert controls == [
        (6, CHILD | VISIBLE | TAB_STOP | DEFAULT_BUTTON, (198, 100, 50, 14), BUTTON, "&Yes"),
        (2, CHILD | VISIBLE | TAB_STOP, (254, 100, 50, 14), BUTTON, "&No"),
        (102, CHILD | VISIBLE | GROUP, (7, 7, 297, 86), STATIC, MESSAGE),
    ]
