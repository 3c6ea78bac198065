"""Submission folders as a game's crash handler writes them: every file first, then the header, read-only last."""
import json


def header(**changes):
    """A header with every required field; changes replace or add top-level ones."""
    return {
        "Host": "player", "Time": "2024-05-06T07:08:09Z", "Application": "Game", "SubmissionType": "Crash",
        "Catalog": catalog(), "Exception": {"Message": "boom", "StackTrace": ""},
        "Callstack": [1, 2, 3], "ModuleInfo": [], "Changelist": 7, **changes,
    }


def catalog(dump="", log="", attachments=()):
    return {"Dump": file_record(dump), "Log": file_record(log),
            "Attachments": [file_record(name) for name in attachments]}


def file_record(name):
    return {"File": name, "MD5": ""}


def write_folder(folder, files, header_content, complete=True):
    """files: name (with / for sub-folders) to bytes; header_content: a dictionary, or raw bytes."""
    folder.mkdir(parents=True)
    for name, content in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
    sentinel = folder / "header.json"
    sentinel.write_bytes(header_content if isinstance(header_content, bytes)
                         else json.dumps(header_content, ensure_ascii=False).encode())
    if complete:
        sentinel.chmod(0o444)
    return folder


def write_small(dumps, name):
    """A small submission, unlike any other: a log and one attachment that contain its name."""
    files = {"game.log": f"log of {name}\n".encode(), "note.txt": f"note of {name}\n".encode() * 20}
    return write_folder(dumps / name, files,
                        header(Key=name, Catalog=catalog(log="game.log", attachments=["note.txt"])))
