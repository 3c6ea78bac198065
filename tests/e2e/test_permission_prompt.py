"""The question to the player, on a real desktop: read as a person reads it, answered with real keys and clicks."""
import re
import time

import pytest

from display import HEIGHT, WIDTH
from permission_texts import MESSAGE, NO, TEXTS, TITLE, YES
from submissions import write_small
from wine import Program, wait_until

MESSAGE_CONTROL, YES_BUTTON, NO_BUTTON = 102, 6, 2
ENGLISH = TEXTS[0x0409][TITLE]
TOPMOST, IN_TASKBAR = 0x8, 0x40000
SETTLED = 1.2  # seconds after which an answer counts
# Locales of this machine and the language that the player is to see.
LOCALES = {"de_DE": 0x0407, "en_US": 0x0409, "es_ES": 0x040a, "fr_FR": 0x040c, "it_IT": 0x0410, "ja_JP": 0x0411,
           "ko_KR": 0x0412, "pl_PL": 0x0415, "pt_BR": 0x0416, "ru_RU": 0x0419, "zh_CN": 0x0804, "zh_TW": 0x7c04,
           "zh_HK": 0x7c04, "nl_NL": 0x0409}

pytestmark = pytest.mark.limit(120)


@pytest.fixture
def site(site):
    site.configuration["Uploader"]["AskPermission"] = True
    write_small(site.dumps, "one")
    return site


def prompted(site, display, **variables):
    """An agent that found one submission, and goes on running after the answer."""
    return site.start_with_game(variables={**display.variables("en_US"), **variables})


def hurry(display, is_ready, act):
    """Acts on the prompt as soon as it is ready, if that surely is within half a second: nothing may come of it."""
    before = earlier = 0.0  # when the last two looks for it ended in vain
    while not (found := [window for window in display.windows(ENGLISH) if is_ready(window)]):
        earlier, before = before, time.monotonic()
    if time.monotonic() < earlier + 0.5:
        act(found[0])


def settled_prompt(display):
    """The prompt, with the keyboard, once it takes answers. A key that is held since before that does not answer it."""
    hurry(display, lambda window: window.foreground and window.focus, lambda _: display.press("Escape", action="keydown"))
    time.sleep(SETTLED)
    display.press("Escape", action="keyup")
    return display.wait_for_window(ENGLISH)


def wait_all_gone(site):
    # A submission's folder is deleted only after its package is complete.
    wait_until(lambda: not any(site.dumps.iterdir()) and not any(site.packaged.iterdir()), 20,
               "every package sent or deleted")


def check_outcome(site, agent, store, bucket, sent):
    wait_all_gone(site)
    assert agent.quit() == 0
    assert len(store.keys(bucket)) == sent
    assert "Error=" not in agent.agent.text


@pytest.mark.parametrize("locale, language", LOCALES.items())
def test_speaks_the_language_of_the_player(site, display, locale, language):
    texts = TEXTS[language]
    site.configuration["ProcessMonitor"]["ShutdownDelay"] = 60_000  # no game runs
    with site.start(variables=display.variables(locale)):
        window = display.wait_for_window(texts[TITLE])
        assert [(control.id, control.text) for control in window.controls] == [
            (MESSAGE_CONTROL, texts[MESSAGE]), (YES_BUTTON, texts[YES]), (NO_BUTTON, texts[NO])]
        # On top, and in the middle of the screen.
        assert window.centre == pytest.approx((WIDTH // 2, HEIGHT // 2), abs=1)
        assert window.extendedStyle & TOPMOST and window.extendedStyle & IN_TASKBAR and window.focus == YES_BUTTON


@pytest.mark.parametrize("act, sent", [
    (lambda display, _: display.press("Return"), 1), (lambda display, _: display.press("alt+y"), 1),
    (lambda display, window: display.click(window.control(YES_BUTTON).centre), 1),
    (lambda display, _: display.press("Escape"), 0),
    (lambda display, window: display.click(window.control(NO_BUTTON).centre), 0),
    (lambda display, window: display.click(window.close_box), 0),
], ids=["enter", "yes-key", "yes-click", "escape", "no-click", "close-box"])
def test_answer_decides(site, store, bucket, display, act, sent):
    with prompted(site, display) as agent:
        act(display, settled_prompt(display))
        display.wait_for_no_window(ENGLISH)
        check_outcome(site, agent, store, bucket, sent)


@pytest.mark.parametrize("key, sent", [("Return", 3), ("Escape", 0)])
def test_asks_once_a_run(site, store, bucket, display, key, sent):
    def click_no(window):
        time.sleep(0.4)  # before, the prompt can't be activated
        display.click(window.control(NO_BUTTON).centre)

    with prompted(site, display) as agent:
        hurry(display, lambda _: True, click_no)
        settled_prompt(display)
        write_small(site.dumps, "two")
        agent.agent.wait_for("Packaged folder two")
        assert len(display.windows(ENGLISH)) == 1
        display.press(key)
        wait_all_gone(site)
        write_small(site.dumps, "three")
        agent.agent.wait_for("Packaged folder three")
        check_outcome(site, agent, store, bucket, sent)
    assert re.findall(r" The player (\w+)", agent.agent.text) == ["agreed" if sent else "refused"]


@pytest.mark.parametrize("uploader", ["UploaderS3", "UploaderPresigned"])
def test_nothing_leaves_before_yes(site, store, bucket, display, signer, uploader):
    site.configuration["Uploader"]["EndpointOverride"] = f"http://localhost:{store.ports['http']}"
    if uploader == "UploaderPresigned":
        site.use_signer(f"http://localhost:{signer.port}", AskPermission=True)
    with prompted(site, display, WINEDEBUG="trace+winsock") as agent:
        settled_prompt(display)
        assert "getaddrinfo" not in agent.agent.text
        assert store.uploads() == []
        display.press("Return")
        wait_all_gone(site)
        assert 'getaddrinfo' in agent.agent.text  # so a look-up would have been seen
        assert agent.quit() == 0
    assert len(store.keys(bucket)) == 1


def test_a_yes_after_the_agent_was_told_to_end_is_for_the_next_run(site, store, display):
    with site.start(variables=display.variables()) as agent:  # no game: told to end after two seconds
        settled_prompt(display)
        agent.wait_for("requesting shutting down")
        display.press("Return")
        assert agent.wait() == 0
    assert " The player agreed too late: " in agent.text
    assert len(site.waiting_packages()) == 1
    assert store.uploads() == []


def test_without_a_dialog_the_answer_is_no(site, store):
    with site.start_with_game() as agent:  # without a display
        agent.agent.wait_for("Packaged folder one")
        wait_all_gone(site)
        assert agent.quit() == 0
        assert (" Failed to get user's permission to upload crash report. "
                "Error=Failed to show the permission dialog") in agent.agent.text
    assert store.uploads() == []


# What was meant for the game.

def test_the_game_keeps_the_keyboard(site, display):
    with Program("notepad.exe", variables=display.variables()):
        wait_until(lambda: any(window.foreground for window in display.windows("Notepad")), 20, "the game")
        with prompted(site, display):
            expected = ""
            while not display.windows(ENGLISH):
                display.press("w", "y")
                expected += "wy"
            display.press("y", "n", "d")
            time.sleep(SETTLED)
            prompt, game = display.windows()[:2]
            assert prompt.text == ENGLISH and prompt.extendedStyle & TOPMOST
            assert game.foreground and game.controls[0].text == expected + "ynd"
            display.click((prompt.centre[0], prompt.y + 14))
            wait_until(lambda: display.windows(ENGLISH)[0].foreground, 5, "the prompt noticed")
            display.click((game.x + 40, game.y + game.height - 40))
            wait_until(lambda: display.windows("Notepad")[0].foreground, 5, "the game again")
            assert not display.windows(ENGLISH)[0].extendedStyle & TOPMOST
