"""Waiting for what is to become true."""

import time

PATIENCE = 120.0  # seconds: only ever spent by what fails


class Overdue(Exception):
    """What was waited for did not come."""


def until(condition, what, patience=PATIENCE):
    """The first true result of `condition`; raises Overdue, naming `what`, when there is none."""
    end = time.monotonic() + patience
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise Overdue(f"waited {patience:.0f} s in vain: {what}")
        time.sleep(0.02)
