"""The program on a screen: started, seen, driven and closed as a person would."""

import os
import re
import signal
import subprocess
import tempfile

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from . import wait  # noqa: E402

COUNT = re.compile(r"^(\d+) fichiers traités depuis l'ouverture\.$")


def run(*command):
    """The output of a command that must not fail, as text."""
    return subprocess.run(command, capture_output=True, text=True, errors="replace", check=True).stdout


class Node:
    """Something on the screen, as a screen reader meets it."""

    def __init__(self, accessible):
        self.accessible = accessible

    @property
    def name(self):
        return self.accessible.get_name()

    @property
    def role(self):
        return self.accessible.get_role_name()

    def has(self, state):
        """Whether it is in a state: "focused", "checked", "showing"…"""
        return self.accessible.get_state_set().contains(getattr(Atspi.StateType, state.upper()))

    @property
    def value(self):
        return int(Atspi.Value.get_current_value(self.accessible))

    @property
    def box(self):
        """Where it is on the screen: (left, top, width, height)."""
        at = Atspi.Component.get_extents(self.accessible, Atspi.CoordType.SCREEN)
        return at.x, at.y, at.width, at.height

    @property
    def gone(self):
        try:
            return not self.has("showing")
        except GLib.Error:
            return True

    def press(self):
        Atspi.Action.do_action(self.accessible, 0)

    def inside(self):
        """Everything within, from above to below."""
        for index in range(self.accessible.get_child_count()):
            child = self.accessible.get_child_at_index(index)
            if child is None:
                continue
            node = Node(child)
            yield node
            yield from node.inside()


class Program:
    """One run of the program."""

    def __init__(self, path, documents=(), settings=None, cwd=None, prefix=(), environment=None):
        """`settings` is the folder of its preferences; `prefix` a command that starts it."""
        env = dict(os.environ, **(environment or {}))
        if settings is not None:
            env["XDG_CONFIG_HOME"] = os.fspath(settings)
        command = [*prefix, os.fspath(path), *documents]
        self.process = subprocess.Popen(command, cwd=cwd, env=env, stdin=subprocess.DEVNULL)

    def __enter__(self):
        return self

    def __exit__(self, failure, *_):
        if failure is not None:
            look = os.path.join(tempfile.gettempdir(), f"veltrane-failed-{self.process.pid}.png")
            subprocess.run(["import", "-silent", "-window", "root", look], check=False)
            print(f"the screen when it failed: {look}", flush=True)
        if self.running:
            self.process.kill()
        self.process.wait()

    @property
    def running(self):
        return self.process.poll() is None

    # -- What it shows

    def _tree(self, look):
        """What `look` finds; None when the program is busy or something went away meanwhile."""
        if not self.running:
            raise wait.Overdue(f"the program ended with status {self.process.returncode}")
        try:
            desktop = Atspi.get_desktop(0)
            for index in range(desktop.get_child_count()):
                application = desktop.get_child_at_index(index)
                if application is not None and application.get_process_id() == self.process.pid:
                    return look(Node(application))
        except GLib.Error:
            pass
        return None

    def find(self, role, name=None):
        """What has a role, and a name if one is given; None when nothing has."""

        def look(root):
            matches = (node for node in root.inside() if node.role == role and name in (None, node.name))
            return next(matches, None)

        return self._tree(look)

    def controls(self):
        """Everything in the window, from above to below; empty when it cannot be told now."""
        return self._tree(lambda root: list(root.inside())) or []

    def labels(self):
        """The texts of all labels."""
        return self._tree(lambda root: [node.name for node in root.inside() if node.role == "label"]) or []

    def taken(self):
        """How many files the window says to have taken in; None when it cannot be told now."""
        counts = [int(found[1]) for found in map(COUNT.match, self.labels()) if found]
        return counts[0] if counts else None

    def message(self):
        """The text of the open message box; None when there is none."""

        def look(root):
            for node in root.inside():
                if node.role in ("alert", "dialog") and node.has("showing"):
                    texts = [part.name for part in node.inside() if part.role == "label" and part.name]
                    return texts[0] if texts else None
            return None

        return self._tree(look)

    def window(self):
        """The number of the window; None before it is shown."""
        found = subprocess.run(
            [
                "xdotool",
                "search",
                "--onlyvisible",
                "--all",
                "--pid",
                str(self.process.pid),
                "--name",
                "^Veltrane V2",
            ],
            capture_output=True,
            text=True,
            check=False,
        ).stdout.split()
        return int(found[0]) if found else None

    def title(self):
        window = self.window()
        return None if window is None else run("xdotool", "getwindowname", str(window)).removesuffix("\n")

    # -- Waiting for it

    def shown(self):
        """Waits for the window; its number."""
        return wait.until(self.window, "the window")

    def idle(self, files):
        """Waits until the window says that it has taken in so many files."""
        wait.until(lambda: self.taken() == files, f"{files} files taken in (shown: {self.labels()})")

    def answer(self, button="OK"):
        """Waits for a message box, presses its button, waits until it has gone; the message."""
        message = wait.until(self.message, "a message box")
        pressed = wait.until(lambda: self.find("push button", button), f"the button {button}")
        pressed.press()
        # The next box may say the same: this one has gone when its own button has.
        wait.until(lambda: not self.running or pressed.gone, "the box to close")
        return message

    # -- Driving it

    def activate(self):
        run("xdotool", "windowactivate", "--sync", str(self.shown()))

    def keys(self, *keys):
        """Presses keys, one after the other, in the window that has the focus."""
        run("xdotool", "key", "--clearmodifiers", *keys)

    def resize(self, width, height):
        """Asks for a size of the whole window, menu bar and all."""
        run("xdotool", "windowsize", "--sync", str(self.shown()), str(width), str(height))

    def ask_to_close(self):
        """Asks the window manager, as the close button does."""
        run("wmctrl", "-i", "-c", str(self.shown()))

    def send(self, number):
        """Sends a signal."""
        self.process.send_signal(number)

    def terminate(self):
        self.send(signal.SIGTERM)

    def ended(self):
        """Waits for the end; the exit status."""
        try:
            return self.process.wait(timeout=wait.PATIENCE)
        except subprocess.TimeoutExpired:
            raise wait.Overdue("the program does not end") from None

    def close(self):
        """Closes the window by its button and waits; the exit status."""
        self.ask_to_close()
        return self.ended()
