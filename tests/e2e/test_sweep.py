"""A fixed part of scripts/fault-sweep.sh, with some calls of each class, spread over the road of a report."""
import pytest

from fault_sweep import CLASSES, Fault, Run

CALLS = {"open": (9, 25), "attributes": (90,), "delete": (5,), "list": (60,), "folder": (9,), "read": (11,), "write": (3,),
         "flush": (1, 5), "rename": (1, 2), "allocate": (34, 700, 1400, 1900), "thread": (4,), "winhttp": (12,), "bcrypt": (1,),
         "processes": (3,), "console": (2,), "dialog": (1,)}
KEYLESS = {"winhttp": (17, 33, 50), "allocate": (1800,)}  # the signer's answer on its way


@pytest.mark.limit(150)
@pytest.mark.parametrize("kind, calls, keyless", [
    *((kind, calls, False) for kind, calls in CALLS.items()), *((kind, calls, True) for kind, calls in KEYLESS.items())])
def test_a_call_that_fails_loses_nothing(scratch, store, kind, calls, keyless):
    for call in calls:
        error = CLASSES[kind][call % len(CLASSES[kind])]
        bucket = f"sweep-{kind}-{call}{'-keyless' if keyless else ''}"
        run = Run(scratch / str(call), store, bucket, Fault(kind, call, call, error, keyless=keyless))
        outcome = run.go()
        assert run.is_met, f"there is no {kind} {call}"
        assert not run.problems, f"{run.fault}:\n{run.log}"
        assert outcome != "lost as documented" or kind == "dialog"
