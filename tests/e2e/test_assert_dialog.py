"""The dialog of a failed check, in front of a program that fails them on purpose: read and answered as by a person."""
import re
from types import SimpleNamespace

import pytest

from agent import EXECUTABLE
from display import HEIGHT, WIDTH
from wine import BIN, Program, wait_until, windows_path

PROBE = BIN / "AssertDialogProbe.exe"
ASSERT_TITLE = "Assert Failed: AssertDialogProbe.exe"
DATA_TITLE = "Data Error Occurred: AssertDialogProbe.exe"
ALWAYS, ONCE, DEBUG, ABORT, REPORT, COPY = range(1001, 1007)
# In the order of the dialog: text, id, x in dialog units
BUTTONS = [("A&bort", ABORT, 28), ("&Copy To Clipboard", COPY, 103), ("&Debug", DEBUG, 178),
           ("Ignore &Always", ALWAYS, 253), ("&Ignore Once", ONCE, 328)]
KEYS = {ABORT: "alt+b", COPY: "alt+c", DEBUG: "alt+d", ALWAYS: "alt+a", ONCE: "alt+i"}
UNIT = r"Libs/Tarnel/Platform/tests/AssertDialogProbe"


@pytest.fixture
def start(display):
    """Starts the probe; what still runs after the test is ended."""
    started = []

    def start_probe(*options):
        started.append(Program(PROBE, *options, variables=display.variables()))
        return started[-1]

    yield start_probe
    for program in started:
        program.kill()


def said(program, who="probe"):
    lines = program.stdout.decode().splitlines()
    return [line.removeprefix(f"{who}: ") for line in lines if line.startswith(f"{who}: ")]


def answer_by_key(display, window, button):
    display.press(KEYS[button])


def answer_by_click(display, window, button):
    display.click(window.control(button).centre)


def answer_by_enter(display, window, button):
    assert window.focus == button
    display.press("Return")



def test_it_looks_as_designed(display, start):
    start("--message", "Grüße an 太郎")
    window = display.wait_for_window(ASSERT_TITLE)
    display.picture("assert-texts", window)
    assert window.text == ASSERT_TITLE
    buttons, report = window.controls[:5], window.controls[5]
    assert [(button.text, button.id) for button in buttons] == [row[:2] for row in BUTTONS]
    assert re.fullmatch(
        rf"Assert Failed\r\n\r\nFile:  {UNIT}\r\nLine:  \d+\r\nExpression:  round < 0\r\nMessage:  Grüße an 太郎\r\n"
        r"Time: \d+/\d+/20\d\d  \d+:\d\d:\d\d\r\n\r\n", report.text), report.text
    assert report.id == REPORT and report.style & 0x103008C4 == 0x103008C4  # read-only, several lines, scroll bars
    assert report.extendedStyle & 0x20000  # a static edge
    across, down = buttons[0].width / 64, buttons[0].height / 14  # pixels of a dialog unit
    for button, (_, _, x) in zip(buttons, BUTTONS):
        assert button.x - buttons[0].x == pytest.approx((x - 28) * across, abs=2)
        assert (button.y, button.width, button.height) == (buttons[0].y, buttons[0].width, buttons[0].height)
    assert (report.width, report.height) == pytest.approx((386 * across, 211 * down), abs=4)
    assert window.centre == pytest.approx((WIDTH // 2, HEIGHT // 2), abs=2)


@pytest.mark.parametrize("kind, title", [("--assert", ASSERT_TITLE), ("--data", DATA_TITLE)])
@pytest.mark.parametrize("debugger", [False, True])
def test_kinds_differ_and_debug_is_offered_only_under_a_debugger(display, start, kind, title, debugger):
    start(kind, "--message", "The lamp has no wick", *["--under-debugger"] * debugger)
    window = display.wait_for_window(title)
    display.picture(f"{kind.strip('-')}{'-under-debugger' * debugger}", window)
    enabled = {control.id for control in window.controls if control.enabled}
    assert enabled == {ABORT, COPY, ALWAYS, ONCE, REPORT} | ({DEBUG} if debugger else set())
    # The disabled button can't have the focus, so that it goes to the harmless answer.
    assert window.focus == (DEBUG if debugger and kind == "--assert" else ONCE)
    abort, report = window.control(ABORT), window.control(REPORT).text
    assert (display.colour(abort.x - 10, abort.centre[1]) == (255, 0, 0)) == (kind == "--data")
    if kind == "--data" and debugger:
        assert re.fullmatch(rf"Data Error Occurred\r\n\r\nFile:  {UNIT}\r\nLine:  \d+\r\nExpression:  round < 0\r\n"
                            r"Message:\r\n\r\n\tThe lamp has no wick\r\n\r\n", report)
    elif kind == "--data":
        assert report == "The lamp has no wick"


@pytest.mark.parametrize("answer", [answer_by_key, answer_by_click])
def test_ignore_once_asks_again_the_next_time(display, start, answer):
    with start("--rounds", "2") as probe:
        for rounds in (1, 2):
            answer(display, display.wait_for_window(ASSERT_TITLE), ONCE)
            wait_until(lambda: said(probe).count("went on") == rounds, 20, "the answer")
        assert probe.wait() == 0
        assert said(probe) == ["asks", "went on"] * 2 + ["ended"]


@pytest.mark.parametrize("answer", [answer_by_key, answer_by_click])
def test_ignore_always_is_asked_once(display, start, answer):
    with start("--rounds", "3") as probe:
        answer(display, display.wait_for_window(ASSERT_TITLE), ALWAYS)
        assert probe.wait() == 0
        assert said(probe) == ["asks", "went on"] * 3 + ["ended"]


@pytest.mark.parametrize("answer", [answer_by_key, answer_by_click])
def test_abort_ends_the_program_with_exit_code_1(display, start, answer):
    with start() as probe:
        answer(display, display.wait_for_window(ASSERT_TITLE), ABORT)
        assert probe.wait() == 1
        assert said(probe) == ["asks"]


@pytest.mark.parametrize("answer", [answer_by_key, answer_by_click, answer_by_enter])
def test_debug_breaks_into_the_debugger(display, start, answer):
    with start("--under-debugger", "--message", "look at this") as probe:
        answer(display, display.wait_for_window(ASSERT_TITLE), DEBUG)
        assert probe.wait() == 0
        assert said(probe, "debugger")[-1] == "break"
        assert said(probe) == ["asks", "went on", "ended"]
        # The debugger got the report before the question, and a line below it.
        output = probe.text.replace("\r", "")
        assert re.search(r"debugger: Assert Failed\n.*\nMessage:  look at this\n.*\n-{58}\n", output, re.S), output


def test_copy_to_clipboard_leaves_the_question_open(display, start):
    with start("--message", "Grüße an 太郎") as probe:
        window = display.wait_for_window(ASSERT_TITLE)
        report = window.control(REPORT).text
        assert "Grüße an 太郎" in report
        display.click(window.control(COPY).centre)
        clipboard = wait_until(lambda: copied(display, report), 10, "the copy")
        assert clipboard["narrow"] == report.encode()  # the program's own code page
        assert clipboard["formats"][0] == 13, "programs take the first form, which must be the wide one"
        assert display.wait_for_window(ASSERT_TITLE).focus == COPY
        display.press(KEYS[ONCE])
        assert probe.wait() == 0
    assert copied(display, report), "the copy outlives the program"


def copied(display, text):
    clipboard = display.clipboard()
    return clipboard if clipboard.get("wide") == text else None


@pytest.mark.parametrize("case", [
    SimpleNamespace(name="escape", options=["--assert"], act=lambda display, window: display.press("Escape")),
    SimpleNamespace(name="escape-data", options=["--data"], act=lambda display, window: display.press("Escape")),
    SimpleNamespace(name="close-box", options=["--assert"],
                    act=lambda display, window: display.click(window.close_box)),
    SimpleNamespace(name="alt-f4", options=["--assert"], act=lambda display, window: display.press("alt+F4")),
    SimpleNamespace(name="debug-key", options=["--assert"], act=lambda display, window: display.press(KEYS[DEBUG])),
    SimpleNamespace(name="debug-button", options=["--assert"],
                    act=lambda display, window: display.click(window.control(DEBUG).centre)),
], ids=lambda case: case.name)
def test_what_does_not_answer(display, start, case):
    with start(*case.options, "--message", case.name) as probe:
        window = display.wait_for_window("")
        case.act(display, window)
        display.press(KEYS[COPY])  # comes after it: once this is done, that had its chance
        report = window.control(REPORT).text
        assert case.name in report
        wait_until(lambda: copied(display, report), 10, "the copy")
        assert said(probe) == ["asks"]
        display.press(KEYS[ONCE])
        assert probe.wait() == 0


@pytest.mark.parametrize("close", [lambda display, window: display.click(window.close_box),
                                   lambda display, window: display.press("alt+F4")], ids=["close-box", "alt-f4"])
def test_closing_a_data_error_ignores_it_once(display, start, close):
    with start("--data", "--rounds", "2") as probe:
        close(display, display.wait_for_window(DATA_TITLE))
        probe.wait_for("went on")
        display.wait_for_window(DATA_TITLE)
        display.press(KEYS[ONCE])
        assert probe.wait() == 0
        assert said(probe) == ["asks", "went on"] * 2 + ["ended"]


def test_another_thread_waits_for_its_turn(display, start):
    with start("--other-thread", "--message", "first") as probe:
        display.wait_for_window(ASSERT_TITLE)
        probe.wait_for("other thread asks")
        windows = display.windows()
        assert len(windows) == 1 and "first" in windows[0].control(REPORT).text
        display.press(KEYS[ALWAYS])
        probe.wait_for("probe: went on")
        second = wait_until(lambda: [window for window in display.windows() if window.focus], 20, "its dialog")
        assert len(second) == 1 and "from another thread" in second[0].control(REPORT).text
        assert "other thread went on" not in said(probe)
        display.press(KEYS[ONCE])
        assert probe.wait() == 0
        assert said(probe) == ["asks", "other thread asks", "went on", "other thread went on", "ended"]


def test_the_dialogs_own_thread_goes_on(display, start):
    with start("--same-thread", "--message", "outer") as probe:
        window = display.wait_for_window(ASSERT_TITLE)
        probe.wait_for("same thread went on")
        windows = display.windows()
        assert len(windows) == 1 and windows[0].control(REPORT).text == window.control(REPORT).text
        assert "outer" in window.control(REPORT).text
        assert b"Message=from the same thread" in probe.stderr, "it is recorded all the same"
        display.press(KEYS[ONCE])
        assert probe.wait() == 0
        assert said(probe) == ["asks", "same thread went on", "went on", "ended"]


def test_the_shipped_agent_never_asks(display, site):
    """It fails a check, even in front of a debugger: no window comes up, and it goes on."""
    with Program(PROBE, "--nameless", windows_path(EXECUTABLE),
                 f"-config={windows_path(site.write_configuration())}",
                 f"-appFolder={windows_path(site.folder / 'app')}", variables=display.variables()) as agent:
        agent.wait_for("ASSERT File=Libs/Framework/Core/src/ApplicationFolders")
        agent.wait_for("starting shutdown delay timer")
        assert display.windows() == []
        assert agent.wait() == 0
        assert "debugger: break" not in agent.text
