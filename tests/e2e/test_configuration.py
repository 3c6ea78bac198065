"""Every fault of the configuration file gives its text; only some of them stop the program."""
import json

import pytest

from submissions import write_small
from wine import windows_path


def test_a_fault_of_the_application_stops_it(site):
    site.configuration["Application"]["Processes"] = []
    with site.start() as agent:
        assert agent.wait() == 2
    assert b" Initialization failure. Error=Element is not an object\r\n" in agent.stderr


FAULTY_PROCESSES = {
    # instance: (class, section or None, error)
    "A no section": ("Watcher", None, "configuration section not found"),
    "A no folder": ("Watcher", {}, "Field not found in json"),
    "A no metrics": ("Watcher", {"Folder": "f", "MetricsCollectorName": "M"},
                     "No metrics process to provide metrics collection for watcher"),
    "B regex": ("Packager", {"WatcherName": "DumpWatcher", "AttachmentBlacklist": ["a", "("]},
                "Invalid regular expression in attachment black list"),
    "C unknown key": ("UploaderS3", {"WatcherName": "PackageWatcher", "BucketName": "b", "AccessKey": "k",
                                     "SecretKey": "s", "askpermission": True},
                      "configuration section has an unknown or repeated key"),
    "C address": ("UploaderPresigned", {"WatcherName": "PackageWatcher", "SignerUrl": "http://x/"},
                  "SignerUrl is not an https address"),
}


def test_a_fault_of_one_process_drops_that_process(site):
    processes = site.configuration["Application"]["Processes"]
    for name, (maker, section, _) in FAULTY_PROCESSES.items():
        processes[maker] = processes.get(maker, []) + [name]
        if section is not None:
            site.configuration[name] = section
    errors = site.run().stderr.decode()
    for name, (_, _, error) in FAULTY_PROCESSES.items():
        assert f" Failed to initialize process {name}, Error: {error}\r\n" in errors


@pytest.mark.parametrize("key", ["PackagedFolder", "PackageWorkFolder"])
def test_a_packager_does_not_start_that_would_delete_what_nobody_sent(site, key):
    write_small(site.dumps, "unsent")
    site.configuration["Packager"][key] = windows_path(site.dumps.parent / "elsewhere" / ".." / "DUMPS")
    assert (f" Failed post initialize step for process Packager, Error: {key} is the folder that the packager's"
            " watcher watches\r\n") in site.run().text
    assert site.waiting_dumps()


def test_what_is_suspicious_is_reported_and_does_no_harm(site):
    write_small(site.dumps, "sent")
    site.configuration |= {"//": "Notes for people", "$schema": "s.json"}
    site.configuration["Packager"] |= {"// limits": [], "$comment": 1, "AttachmentLimit": []}
    repeated = json.dumps(site.configuration).replace('"Watcher": [', '"Watcher": [], "Watcher": [', 1).replace(
        '"AttachmentLimit": ', '"WatcherName": "", "AttachmentLimit": ')
    path = site.write_configuration(repeated.encode())
    site.write_configuration = lambda: path
    agent = site.run()
    assert site.all_sent()
    assert [line.split("\t")[1] for line in agent.stderr.decode().splitlines()] == [
        ' Class "Watcher" appears twice under Processes, the last list counts',
        ' Key "WatcherName" appears twice in section "Packager", the first counts',
        ' Unknown key "AttachmentLimit" in section "Packager", did you mean "AttachmentLimits"?']
