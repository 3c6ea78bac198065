"""Options, exit codes and what the two outputs carry."""
import re

import pytest

from agent import EXECUTABLE
from submissions import catalog, header, write_folder, write_small
from wine import Program, wait_until, windows_path

LINE = re.compile(rb"\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\]\t [^\r\n]*\r\n")


@pytest.fixture
def idle(site):
    """An installation whose agent does nothing and ends soon."""
    site.configuration = {
        "Application": {"Processes": {"ProcessMonitor": ["Monitor"]}, "Components": [], "ApplicationFolder": ""},
        "Monitor": {"TimeBetweenChecks": 50, "ShutdownDelay": 50, "WatchedApplications": []}}
    return site


def run(*arguments):
    with Program(EXECUTABLE, *arguments) as program:
        return program.wait(), program


def test_a_quiet_run_says_exactly_this(idle):
    agent = idle.run()
    app = windows_path(idle.folder / "app")
    messages = [line.split(b"\t ", 1)[1].decode() for line in agent.stdout.split(b"\r\n")[:-1]]
    assert messages == [
        "MorvaneCrashReporter version 1.0.0.0 - 1", "initializing application...",
        f"Using config: {windows_path(idle.folder / 'agent.json')}",
        f"Using application folder: {app}", f"Using log folder: {app}",
        "running application processes...",
        "All monitored processes have closed, starting shutdown delay timer...",
        "ProcessMonitor requesting shutting down...",
        "shutting down application processes...", "exiting application...",
    ]
    assert agent.stderr == b"" and re.fullmatch(rb"(%s)+" % LINE.pattern, agent.stdout)


def test_the_agent_explains_its_options_instead_of_starting(idle):
    for question, answers in (("-?", ["1.0.0.0 (1)", *"-config= -appFolder= -log= -console -process=".split()]),
                              ("--VERSION", ["MorvaneCrashReporter 1.0.0.0 (1)\r\n"])):
        said = idle.run(question).text
        assert all(answer in said for answer in answers) and not (idle.folder / "app").exists()
    agent = idle.run("-proces=Game.exe", "-console=1", "-LOGS=x", "plain")
    assert re.findall(r'option "(.*?)", did you mean "(.*?)"', agent.stderr.decode()) == [
        ("-proces=Game.exe", "-process="), ("-console=1", "-console")]


def test_folders_are_made_with_their_parents(idle):
    app, log = idle.folder / "a 太郎" / "b", idle.folder / "logs" / "deep"
    code, agent = run(f"-config={windows_path(idle.write_configuration())}", f"-APPFOLDER={windows_path(app)}",
                      f"-LOG={windows_path(log)}")
    assert code == 0 and app.is_dir() and log.is_dir()
    assert f" Using application folder: {windows_path(app)}\r\n" in agent.text
    assert f" Using log folder: {windows_path(log)}\r\n" in agent.text
    assert not list(log.iterdir())  # lines go to the outputs, not to files


def test_the_application_folder_lies_in_the_documents(idle):
    for name, last in (("太郎 Game", "太郎 Game"), ("", "MorvaneCrashReporter")):
        idle.configuration["Application"]["ApplicationFolder"] = name
        code, agent = run(f"-config={windows_path(idle.write_configuration())}")
        folder = re.search(r" Using application folder: (.*)\r\n", agent.text).group(1)
        assert code == 0 and folder.rstrip("\\").endswith("\\Documents\\" + last), agent.text


def test_the_log_file_goes_on_from_run_to_run(idle):
    """After a kill, too; a disk that is full and a file that can't be written cost one line."""
    app = idle.folder / "app"
    log, older = app / "agent.log", app / "agent.log.old"
    idle.configuration["Application"]["LogFile"] = "agent.log"
    with idle.start() as killed:
        killed.wait_for(" running application processes...")
        killed.kill()
    log.write_bytes(log.read_bytes().ljust((1 << 20) - 100, b"."))  # the next run fills it
    agent = idle.run()
    assert agent.stderr == b""
    assert older.read_bytes()[:500] == killed.stdout[:500] and older.stat().st_size <= 1 << 20
    assert (older.read_bytes() + log.read_bytes()).endswith(agent.stdout) and log.stat().st_size > 500
    log.unlink()
    for spoil in (log.mkdir, lambda: log.rmdir() or log.symlink_to("/dev/full")):
        spoil()
        agent = idle.run()
        assert agent.stderr.count(b"\r\n") == agent.stderr.count(b" Failed to write the log file ") == 1


# A launcher makes pipes for the outputs and never reads them, or only late.

def test_an_output_that_nobody_reads_holds_nobody(site, store, bucket):
    for number in range(20):
        write_small(site.dumps, f"dump-{number}")
    with site.start_with_game(reads=False) as agent:
        wait_until(lambda: len(store.keys(bucket)) == 20, 40, "every submission sent")
        assert agent.quit(10) == 0


def test_a_late_reader_learns_what_was_dropped(site):
    names = [f"{number:04}-" + "x" * 500 for number in range(3000)]  # more than the queue takes
    write_folder(site.dumps / "dump", {}, header(Catalog=catalog(attachments=names)))
    with site.start_with_game(reads=False) as agent:
        wait_until(lambda: not site.waiting_dumps(), 40, "the submission packaged")
        agent.agent.read()
        agent.agent.wait_for(" lines dropped")
        assert agent.quit() == 0
        assert re.fullmatch(rb"(%s)+" % LINE.pattern, agent.agent.stdout + agent.agent.stderr)
        text = agent.agent.text
        dropped = int(re.search(r"(\d+) lines dropped", text).group(1))
        kept = text.count("\r\n") - 1
        assert kept > 1000 and 3000 < kept + dropped < 6100
        assert " exiting application..." in text
