#!/usr/bin/python3
"""A window that offers what stands in a file as a drag: dragsource.py FILE

FILE holds the bytes of the text/uri-list. Built on GTK, so that sender and receiver of a drag come from
different toolkits. What happens is told line by line: ready, begun, over, takes, refuses, failed, ended.
"""

import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

URI_LIST = 0
OFFERED = open(sys.argv[1], "rb").read()


def tell(word):
    print(word, flush=True)


class Source(Gtk.Window):
    """At the screen's corner, unmanaged: where it lies is known."""

    def __init__(self):
        super().__init__(type=Gtk.WindowType.POPUP)
        self.set_default_size(100, 100)
        self.move(0, 0)
        self.last = None
        target = Gtk.TargetEntry.new("text/uri-list", 0, URI_LIST)
        self.drag_source_set(
            Gdk.ModifierType.BUTTON1_MASK, [target], Gdk.DragAction.COPY | Gdk.DragAction.MOVE
        )
        self.connect("drag-data-get", self.give)
        self.connect("drag-begin", self.begin)
        self.connect("drag-failed", self.failed)
        self.connect("drag-end", self.end)
        self.connect("map-event", lambda *_: tell("ready"))
        self.show_all()

    def give(self, _widget, _context, selection, _info, _time):
        selection.set(selection.get_target(), 8, OFFERED)

    def begin(self, _widget, context):
        tell("begun")
        self.watch = GLib.timeout_add(5, self.look, context)

    def look(self, context):
        """Tells what the window under the pointer has answered so far."""
        now = None
        if context.get_dest_window() is not None and context.get_protocol() == Gdk.DragProtocol.XDND:
            now = "takes" if context.get_selected_action() else "over"
        if now is not None and now != self.last:
            tell(now)
        self.last = now
        return GLib.SOURCE_CONTINUE

    def failed(self, *_):
        tell("failed")
        return True

    def end(self, *_):
        GLib.source_remove(self.watch)
        tell("ended")


Source()
Gtk.main()
