"""Windows programs run under Wine, in a prefix of their own."""
import os
import subprocess
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
BIN = Path(os.environ.get("MORVANE_BIN", ROOT / "build" / "release" / "bin")).resolve()
SCRATCH = Path(os.environ.get("MORVANE_SCRATCH", ROOT / "build" / "e2e")).resolve()
TEMPLATE = ROOT / "build" / "wine"
PREFIX = SCRATCH / "wine"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def environment():
    """Without a display: no window can be shown. tests/e2e/display.py has one."""
    variables = {**os.environ, "WINEPREFIX": str(PREFIX), "LC_ALL": "C.UTF-8"}
    variables.pop("DISPLAY", None)
    return variables


def make_prefix(variables=None):
    """Copies the template that scripts/setup.sh makes and starts its server; variables like environment()'s.

    The server runs until stop_prefix(). The first program starts Wine's own services, which inherit its outputs and
    keep them open, so it must not be one whose outputs a test reads to the end.
    """
    variables = variables or environment()
    prefix = Path(variables["WINEPREFIX"])
    if prefix.exists():
        stop_prefix(variables)  # of an interrupted run
        subprocess.run(["rm", "-rf", prefix], check=True)
    prefix.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["cp", "-a", TEMPLATE, prefix], check=True)
    subprocess.run(["wineserver", "--persistent"], env=variables, check=True)
    subprocess.run([ROOT / "scripts" / "run-wine.sh", "cmd.exe", "/c", "exit"], env=variables, check=True,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def stop_prefix(variables=None):
    """Ends whatever still runs in the prefix, and its server."""
    subprocess.run(["wineserver", "-k"], env=variables or environment(), check=False)


def wait_until(condition, seconds, what):
    """Polls condition() until it is true and returns its value; fails the test after the time."""
    deadline = time.monotonic() + seconds
    while not (value := condition()):
        assert time.monotonic() < deadline, f"not within {seconds} s: {what}"
        time.sleep(0.02)
    return value


class Program:
    """One running program. The Unix process that Popen holds is the Windows process itself, so kill() is abrupt.

    Both outputs are read by threads as they come; lines keep their order within one output. With reads=False nobody
    reads them, and the pipes hold one page, until read() is called.
    """
    started = []  # all of them

    def __init__(self, executable, *arguments, cwd=None, command=(), variables=None, reads=True):
        self._process = subprocess.Popen(
            [*command, str(ROOT / "scripts" / "run-wine.sh"), str(executable), *arguments],
            cwd=cwd, env=variables or environment(), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, pipesize=-1 if reads else 4096)
        self._arrival = threading.Condition()
        self._output = {"stdout": b"", "stderr": b""}
        self._readers = [threading.Thread(target=self._read, args=(name,), daemon=True) for name in self._output]
        self.started.append(self)
        if reads:
            self.read()

    def read(self):
        for reader in self._readers:
            reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()

    def _read(self, name):
        stream = getattr(self._process, name)
        while block := stream.read1(1 << 16):
            with self._arrival:
                self._output[name] += block
                self._arrival.notify_all()
        stream.close()

    @property
    def pid(self):
        return self._process.pid

    @property
    def running(self):
        return self._process.poll() is None

    @property
    def stdout(self):
        with self._arrival:
            return self._output["stdout"]

    @property
    def stderr(self):
        with self._arrival:
            return self._output["stderr"]

    @property
    def text(self):
        """Standard output, then standard error, as text."""
        return (self.stdout + self.stderr).decode("utf-8")

    def wait_for(self, text, seconds=20):
        """Waits until one of the outputs contains the text."""
        deadline = time.monotonic() + seconds
        with self._arrival:
            while not any(text.encode() in output for output in self._output.values()):
                left = deadline - time.monotonic()
                assert left > 0 and self.running, f"never printed {text!r}:\n{self._said()}"
                self._arrival.wait(min(left, 0.2))

    def wait(self, seconds=30):
        """Waits until the program has ended by itself and its outputs are read; returns its exit code."""
        try:
            code = self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"still running after {seconds} s:\n{self._said()}") from None
        for reader in self._readers:
            if reader.ident:
                reader.join(3)  # another program that inherited the output may keep it open
        return code

    def kill(self):
        """Ends the program at once, whatever it is doing."""
        self._process.kill()
        self.wait()

    @classmethod
    def kill_all(cls):
        """All before any is waited for: Wine's desktop keeps the first one's outputs open until the last has ended."""
        for program in cls.started:
            program._process.kill()
        for program in cls.started:
            program.wait()
        cls.started.clear()

    def _said(self):
        return b"\n".join(self._output.values()).decode("utf-8", "replace")[-4000:]
