"""The session bus, watched and spoken to by tools that are not ours."""

import os
import subprocess
import threading

from gi.repository import Gio, GLib

from table import until

NAME, PATH, INTERFACE = "org.veltrane.veltrane", "/org/veltrane/veltrane", "org.freedesktop.Application"


class Calls:
    """The calls of org.freedesktop.Application that are made from `with` to its end, by their names."""

    def __init__(self, environment=()):
        self.made, self.ready = [], threading.Event()
        watch = ["dbus-monitor", "--profile", f"type=method_call,interface={INTERFACE}"]
        env = dict(os.environ, **dict(environment))
        self.monitor = subprocess.Popen(watch, env=env, stdout=subprocess.PIPE, text=True)
        self.reader = threading.Thread(target=self._read, daemon=True)

    def _read(self):
        for line in self.monitor.stdout:
            # Its own name is taken from the monitor once it listens.
            self.ready.set()
            self.made.append(line.split()[-1])

    def __enter__(self):
        self.reader.start()
        until(self.ready.is_set, "the monitor of the bus")
        return self

    def __exit__(self, *_):
        self.monitor.kill()
        self.monitor.wait()
        self.reader.join()

    def wait_for(self, call):
        until(lambda: call in self.made, f"the call {call} (made: {self.made})")


def connected(environment=()):
    address = dict(os.environ, **dict(environment))["DBUS_SESSION_BUS_ADDRESS"]
    flags = Gio.DBusConnectionFlags
    return Gio.DBusConnection.new_for_address_sync(
        address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None
    )


class Calling(threading.Thread):
    """A call of a method of the program, as desktops make it; `answer` tells what came of it."""

    def __init__(self, method, arguments, environment=()):
        super().__init__(daemon=True)
        self.called, self.answer = (NAME, PATH, INTERFACE, method, arguments), None
        self.bus = connected(environment)
        self.start()

    def run(self):
        try:
            self.bus.call_sync(*self.called, None, Gio.DBusCallFlags.NONE, 60_000, None)
            self.answer = "done"
        except GLib.Error as refusal:
            self.answer = Gio.DBusError.get_remote_error(refusal) or refusal.message


def call(method, kind, *arguments, environment=()):
    """Calls and waits: "done", or the name of the error."""
    calling = Calling(method, GLib.Variant(kind, arguments), environment)
    calling.join()
    return calling.answer


def opened(*addresses, environment=()):
    """Has the program open addresses, as a file manager does."""
    return call("Open", "(asa{sv})", addresses, {}, environment=environment)


def windows():
    """How many windows of the program are on the screen."""
    search = ["xdotool", "search", "--onlyvisible", "--name", "^Veltrane V2"]
    return len(subprocess.run(search, capture_output=True, check=False).stdout.split())


def close_window():
    subprocess.run(["wmctrl", "-c", "Veltrane V2"], check=True)


CONFIGURATION = """<busconfig>
  <type>session</type>
  <listen>unix:path=%s/bus</listen>
  <servicedir>%s</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""

SERVICE = "[D-BUS Service]\nName=%s\nExec=%s\n"


class Bus:
    """A session bus of its own that knows how to start the program, from `with` to its end.

    It knows no accessibility: what the program does is seen from its window and its files.
    """

    def __init__(self, place, program):
        self.place = place
        self.folder = place.settings / "bus"
        self.folder.mkdir()
        (self.folder / "service").write_text(SERVICE % (NAME, program))
        (self.folder / "conf").write_text(CONFIGURATION % (self.folder, self.folder))
        (self.folder / "service").rename(self.folder / f"{NAME}.service")
        self.environment = {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/bus"}

    def __enter__(self):
        env = dict(os.environ, XDG_CONFIG_HOME=os.fspath(self.place.settings))
        command = ["dbus-daemon", f"--config-file={self.folder}/conf", "--nofork", "--nopidfile"]
        self.daemon = subprocess.Popen(command, env=env, stderr=subprocess.DEVNULL)
        until((self.folder / "bus").exists, "the bus")
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        self.daemon.kill()
        self.daemon.wait()

    def owner(self):
        """The number of the process that the program's name belongs to; 0 when it is nobody's."""
        asked = ("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID")
        name = GLib.Variant("(s)", (NAME,))
        try:
            bus = connected(self.environment)
            return bus.call_sync(*asked, name, None, Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
        except GLib.Error:
            return 0
