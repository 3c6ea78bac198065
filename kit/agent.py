"""The shipped agent with the usual pipeline as its configuration, its folders, and the game beside which it runs."""
import json

from package_reader import read_package
from store.client import ACCESS_KEY, SECRET_KEY
from wine import BIN, Program, wait_until, windows_path

EXECUTABLE = BIN / "MorvaneCrashReporter.exe"
GAME = BIN / "SampleGame.exe"


class Site:
    """One installation: its folders, all in one scratch folder, and the configuration that names them.

    Tests change self.configuration before they start the agent.
    """

    def __init__(self, folder, store=None, bucket="crashes"):
        self.folder = folder
        self.dumps = folder / "dumps"
        self.packaged = folder / "app" / "PackagedDumps"
        self.work = folder / "app" / "PackageTemp"
        self.dumps.mkdir(parents=True)
        self._store, self._bucket = store, bucket
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
            # The delay gives a slow machine the time to package and send the crash.
            "ProcessMonitor": {"TimeBetweenChecks": 100, "ShutdownDelay": 2000,
                               "WatchedApplications": ["SampleGame.exe"]},
        }

    def use_signer(self, url, **keys):
        """The uploader without a key, in place of the one with a key."""
        application = self.configuration["Application"]
        application["Processes"]["UploaderPresigned"] = application["Processes"].pop("UploaderS3")
        del application["Components"]
        self.configuration["Uploader"] = {"WatcherName": "PackageWatcher", "SignerUrl": url, "TimeBetweenChecks": 20,
                                          **keys}

    def write_configuration(self, content=None):
        """Writes the configuration, or the given bytes instead; returns the path."""
        path = self.folder / "agent.json"
        path.write_bytes(json.dumps(self.configuration).encode() if content is None else content)
        return path

    def start(self, *arguments, **options):
        """Starts the agent; it ends by itself when no game runs."""
        return Program(EXECUTABLE, f"-config={windows_path(self.write_configuration())}",
                       f"-appFolder={windows_path(self.folder / 'app')}", *arguments, **options)

    def run(self, *arguments):
        """An agent that has ended well by itself, because no game runs."""
        with self.start(*arguments) as agent:
            assert agent.wait() == 0, agent.text
        return agent

    def start_with_game(self, *arguments, **options):
        """For tests that wait for something themselves and then call quit()."""
        self.configuration["ProcessMonitor"]["ShutdownDelay"] = 100
        return AgentBesideGame(self, arguments, options)

    def run_until_sent(self, seconds=30):
        """An agent beside a game that has packaged and sent everything, and ended well."""
        with self.start_with_game() as beside:
            self.wait_all_sent(seconds)
            assert beside.quit() == 0
        return beside.agent

    def sent_packages(self):
        """What is in the bucket, read."""
        return [read_package(self._store.get(self._bucket, key)) for key in self._store.keys(self._bucket)]

    # What still waits: complete folders.

    def waiting_dumps(self):
        return list(complete_folders(self.dumps, "header.json"))

    def waiting_packages(self):
        return list(complete_folders(self.packaged, "submission.pkg"))

    def all_sent(self):
        """Looks no further than to the first that waits: tests ask often, beside a busy agent."""
        return not (any(complete_folders(self.dumps, "header.json")) or any(complete_folders(self.packaged, "submission.pkg")))

    def left_on_disk(self):
        """What there is in the three folders, sorted."""
        return sorted(path for folder in (self.dumps, self.packaged, self.work) if folder.is_dir()
                      for path in folder.iterdir())

    def wait_all_sent(self, seconds=30):
        wait_until(self.all_sent, seconds, "every submission packaged and sent")


def complete_folders(area, sentinel):
    return (folder for folder in area.iterdir() if is_complete(folder, sentinel)) if area.is_dir() else iter(())


def is_complete(folder, sentinel):
    """True if the sentinel is there and read-only."""
    try:
        return not (folder / sentinel).stat().st_mode & 0o222
    except OSError:  # it is not there, or was deleted just now
        return False


def play(**options):
    """A game that runs until it is killed."""
    return Program(GAME, "--stay-alive", "900000", "--crash", "none", "--quiet", **options)


class AgentBesideGame:
    """An agent and a game that keeps running. quit() ends the game, and then the agent ends by itself."""

    def __init__(self, site, arguments, options):
        self.game = play(variables=options.get("variables"))  # same prefix and display as the agent's
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
