"""The shipped agent with a configuration of the usual pipeline, its folders, and the game it runs beside."""
import json

from store.client import ACCESS_KEY, SECRET_KEY
from wine import BIN, Program, wait_until, windows_path

EXECUTABLE = BIN / "MorvaneCrashReporter.exe"
GAME = BIN / "SampleGame.exe"


class Site:
    """One installation: the folders below one scratch folder, and the configuration that names them.

    Tests change self.configuration before they start the agent.
    """

    def __init__(self, folder, store=None, bucket="crashes"):
        self.folder = folder
        self.dumps = folder / "dumps"
        self.packaged = folder / "app" / "PackagedDumps"
        self.work = folder / "app" / "PackageTemp"
        self.dumps.mkdir(parents=True)
        self.configuration = self._pipeline(store.endpoint if store else "http://127.0.0.1:1", bucket)

    def _pipeline(self, endpoint, bucket):
        return {
            "Application": {
                "Processes": {"Watcher": ["DumpWatcher", "PackageWatcher"], "Packager": ["Packager"],
                              "UploaderS3": ["Uploader"], "ProcessMonitor": ["ProcessMonitor"]},
                "Components": ["CloudComponent"],
                "ApplicationFolder": "",
            },
            "DumpWatcher": {"Folder": windows_path(self.dumps), "TimeBetweenChecks": 20},
            "Packager": {"WatcherName": "DumpWatcher", "TimeBetweenChecks": 20},
            "PackageWatcher": {"Folder": "PackagedDumps", "SentinelFile": "submission.pkg", "TimeBetweenChecks": 20},
            "Uploader": {"WatcherName": "PackageWatcher", "BucketName": bucket, "TimeBetweenChecks": 20,
                         "AccessKey": ACCESS_KEY, "SecretKey": SECRET_KEY, "AskPermission": False,
                         "EndpointOverride": endpoint, "UseVirtualAddressing": False},
            # The delay gives a slow machine time to package and send what the game left.
            "ProcessMonitor": {"TimeBetweenChecks": 100, "ShutdownDelay": 2000,
                               "WatchedApplications": ["SampleGame.exe"]},
        }

    def write_configuration(self, content=None):
        """Writes the configuration, or the given bytes in its place; returns the file."""
        path = self.folder / "agent.json"
        path.write_bytes(json.dumps(self.configuration).encode() if content is None else content)
        return path

    def start(self, *arguments, **options):
        """Starts the agent; it ends by itself when no game runs."""
        return Program(EXECUTABLE, f"-config={windows_path(self.write_configuration())}",
                       f"-appFolder={windows_path(self.folder / 'app')}", *arguments, **options)

    def start_with_game(self, *arguments, **options):
        """For tests that see for themselves when everything is done, and then quit."""
        self.configuration["ProcessMonitor"]["ShutdownDelay"] = 100
        return AgentBesideGame(self, arguments, options)

    # What still waits: folders whose sentinel would be taken.

    def waiting_dumps(self):
        return [folder for folder in self.dumps.iterdir() if is_complete(folder, "header.json")]

    def waiting_packages(self):
        if not self.packaged.is_dir():
            return []
        return [folder for folder in self.packaged.iterdir() if is_complete(folder, "submission.pkg")]

    def all_sent(self):
        return not self.waiting_dumps() and not self.waiting_packages()

    def wait_all_sent(self, seconds=30):
        wait_until(self.all_sent, seconds, "every submission packaged and sent")


def is_complete(folder, sentinel):
    """The hand-over rule: the sentinel is there and read-only."""
    try:
        return not (folder / sentinel).stat().st_mode & 0o222
    except OSError:  # not there, or it went this moment
        return False


class AgentBesideGame:
    """An agent with a game that runs on; quit() ends the game, upon which the agent ends by itself."""

    def __init__(self, site, arguments, options):
        self.game = Program(GAME, "--stay-alive", "900000", "--crash", "none", "--quiet",
                            variables=options.get("variables"))  # the agent looks for it among its own
        self.agent = site.start(*arguments, **options)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.agent.kill()
        self.game.kill()

    def quit(self, seconds=45):
        """The agent's exit code."""
        self.game.kill()
        return self.agent.wait(seconds)
