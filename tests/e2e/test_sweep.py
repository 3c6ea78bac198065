"""A fixed part of scripts/fault-sweep.sh, with some calls of each class, spread over the road of a report."""
import pytest

from fault_sweep import CLASSES, Fault, Run

CALLS = {"open": (9, 25), "attributes": (90,), "delete": (5,), "list": (60,), "folder": (9,), "read": (11,), "write": (3,),
         "flush": (1,), "allocate": (34, 700, 1400, 1900), "thread": (4,), "winhttp": (12,), "bcrypt": (1,),
         "processes": (3,), "console": (2,), "dialog": (1,)}


@pytest.mark.limit(150)
@pytest.mark.parametrize("kind", CALLS)
def test_a_call_that_fails_loses_nothing(scratch, store, kind):
    for call in CALLS[kind]:
        error = CLASSES[kind][call % len(CLASSES[kind])]
        run = Run(scratch / str(call), store, f"sweep-{kind}-{call}", Fault(kind, call, call, error))
        outcome = run.go()
        assert run.is_met, f"there is no {kind} {call}"
        assert not run.problems, f"{run.fault}:\n{run.log}"
        assert outcome != "lost as documented" or kind == "dialog"
