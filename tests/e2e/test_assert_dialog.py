"""The dialog of a failed check, in front of a program that fails them on purpose: read and answered as by a person."""
import re

import pytest

from agent import EXECUTABLE
from display import HEIGHT, WIDTH
from wine import BIN, Program, wait_until, windows_path

PROBE = BIN / "AssertDialogProbe.exe"
DEBUGGED = ["--debug", windows_path(PROBE)]
ASSERT_TITLE = "Assert Failed: AssertDialogProbe.exe"
DATA_TITLE = "Data Error Occurred: AssertDialogProbe.exe"
ALWAYS, ONCE, DEBUG, ABORT, REPORT, COPY = range(1001, 1007)
# In the order of the dialog: text, id, x in dialog units
BUTTONS = [("A&bort", ABORT, 28), ("&Copy To Clipboard", COPY, 103), ("&Debug", DEBUG, 178),
           ("Ignore &Always", ALWAYS, 253), ("&Ignore Once", ONCE, 328)]
KEYS = {ABORT: "alt+b", COPY: "alt+c", DEBUG: "alt+d", ALWAYS: "alt+a", ONCE: "alt+i"}
WHERE = r"File:  Libs/Tarnel/Platform/tests/AssertDialogProbe\r\nLine:  \d+\r\nExpression:  round < 0\r\n"
ASSERT_REPORT = (rf"Assert Failed\r\n\r\n{WHERE}Message:  Grüße an 太郎\r\n"
                 r"Time: \d+/\d+/20\d\d  \d+:\d\d:\d\d\r\n\r\n")
DATA_REPORT = rf"Data Error Occurred\r\n\r\n{WHERE}Message:\r\n\r\n\tGrüße an 太郎\r\n\r\n"


def start(display, *options):
    return Program(PROBE, *options, variables=display.variables())


def said(program):
    return [line.removeprefix("probe: ") for line in program.stdout.decode().splitlines() if line.startswith("probe")]


@pytest.mark.parametrize("options, title, report, focus", [
    ([], ASSERT_TITLE, ASSERT_REPORT, ONCE), (DEBUGGED, ASSERT_TITLE, ASSERT_REPORT, DEBUG),
    (["--data"], DATA_TITLE, "Grüße an 太郎", ONCE), ([*DEBUGGED, "--data"], DATA_TITLE, DATA_REPORT, ONCE)])
def test_each_kind_looks_as_designed(display, options, title, report, focus):
    with start(display, *options) as probe:
        window = display.wait_for_window(title)
        colours = display.colours(window.controls[0].x - 10, window.controls[0].centre[1])
        if focus == DEBUG:
            display.press("Return")
            assert probe.wait() == 0 and said(probe) == ["asks", "went on", "ended"]
            assert probe.text.count("debugger: break") == 2  # the first is the system's, when a debuggee starts
    buttons, edit = window.controls[:5], window.controls[5]
    assert [(button.text, button.id) for button in buttons] == [row[:2] for row in BUTTONS]
    assert edit.id == REPORT and re.fullmatch(report, edit.text)
    assert edit.style & 0x103008C4 == 0x103008C4 and edit.extendedStyle & 0x20000
    assert window.focus == focus and window.control(DEBUG).enabled == ("--debug" in options)
    across, down = buttons[0].width / 64, buttons[0].height / 14  # pixels of a dialog unit
    for button, (_, _, x) in zip(buttons, BUTTONS):
        assert (button.x - buttons[0].x, button.y) == pytest.approx(((x - 28) * across, buttons[0].y), abs=2)
    assert (edit.width, edit.height) == pytest.approx((386 * across, 211 * down), abs=4)
    assert window.centre == pytest.approx((WIDTH // 2, HEIGHT // 2), abs=2)
    assert (colours == {(255, 0, 0)}) == ("--data" in options)


def test_ignoring_once_and_always(display):
    with start(display, "--rounds", "4") as probe:
        display.wait_for_window(ASSERT_TITLE)
        display.press(KEYS[ONCE])
        probe.wait_for("went on")
        display.click(display.wait_for_window(ASSERT_TITLE).control(ALWAYS).centre)
        assert probe.wait() == 0
        assert said(probe) == ["asks", "went on"] * 4 + ["ended"]


def test_the_question_stays_open_until_it_is_answered(display):
    with start(display) as probe:
        window = display.wait_for_window(ASSERT_TITLE)
        display.press("Escape")
        display.click(window.control(DEBUG).centre)  # disabled
        display.press(KEYS[COPY])
        wait_until(lambda: display.clipboard() == window.control(REPORT).text, 10, "the copy")
        assert said(probe) == ["asks"]
        display.click(window.close_box)
        display.press(KEYS[COPY])
        assert display.windows(ASSERT_TITLE) and said(probe) == ["asks"]
        display.press(KEYS[ABORT])
        assert probe.wait() == 1
        assert said(probe) == ["asks"]
    assert display.clipboard() == window.control(REPORT).text, "the copy outlives the program"


def test_the_shipped_agent_never_asks(display, site):
    """It fails a check, even in front of a debugger: no window comes up, and it goes on."""
    with Program(PROBE, "--debug", windows_path(EXECUTABLE),
                 f"-config={windows_path(site.write_configuration())}",
                 f"-appFolder={windows_path(site.folder / 'app')}", variables=display.variables()) as agent:
        agent.wait_for("ASSERT File=Libs/Framework/Core/src/ApplicationFolders")
        agent.wait_for("starting shutdown delay timer")
        assert display.windows() == []
        assert agent.wait() == 0
        assert agent.text.count("debugger: break") == 1
