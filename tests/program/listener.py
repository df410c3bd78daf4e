#!/usr/bin/python3
"""Writes a line for each name that changes on the accessibility bus: the role, a tab, the new name."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402


def told(event):
    # The news itself brings no text: readers ask for it.
    print(event.source.get_role_name(), event.source.get_name(), sep="\t", flush=True)


listener = Atspi.EventListener.new(told)
listener.register("object:property-change:accessible-name")
print("ready", flush=True)
Atspi.event_main()
