"""A virtual screen with a window manager and buses of its own."""

import os
import shutil
import signal
import subprocess
import tempfile

from . import wait


def clean_environment():
    """The caller's environment without its screen, its buses, its toolkit's settings."""
    stripped = (
        "DISPLAY",
        "WAYLAND_DISPLAY",
        "XAUTHORITY",
        "DBUS_",
        "AT_SPI_",
        "QT_",
        "GTK_",
        "SESSION_MANAGER",
    )
    return {name: value for name, value in os.environ.items() if not name.startswith(stripped)}


class Screen:
    """X server, window manager and session bus, from `with` to its end.

    One for each process: the accessibility library finds its bus by the process's own environment, which is
    therefore changed.
    """

    def __init__(self, width=1280, height=1024):
        self.size = (width, height)
        self.folder = tempfile.mkdtemp(prefix="veltrane-screen-")
        self.servers = []
        self.environment = {}

    def __enter__(self):
        try:
            self._start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for server in reversed(self.servers):
            _end(server)
        shutil.rmtree(self.folder, ignore_errors=True)

    def _start(self):
        env = clean_environment()
        env.update(
            XDG_RUNTIME_DIR=self.folder,
            XDG_CURRENT_DESKTOP="",
            LC_ALL="C.UTF-8",
            NO_AT_BRIDGE="0",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            QT_QPA_PLATFORM="xcb",
        )
        width, height = self.size
        number = self._announced(
            ["Xvfb", "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp", "-noreset", "-displayfd"],
            env,
        )
        env["DISPLAY"] = ":" + number
        env["DBUS_SESSION_BUS_ADDRESS"] = self._announced(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"], env
        )
        self._serve(["openbox", "--sm-disable"], dict(env, XDG_CONFIG_HOME=self.folder))
        os.environ.clear()
        os.environ.update(env)
        self.environment = env
        wait.until(self._managed, "a window manager")

    def _announced(self, command, env):
        """Starts a server that writes where it is to be found to the file descriptor given last."""
        reading, writing = os.pipe()
        if command[-1] == "--print-address":
            command[-1] += f"={writing}"
        else:
            command.append(str(writing))
        self._serve(command, env, pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as answer:
            line = answer.readline().strip()
        if not line:
            raise RuntimeError(f"{command[0]} did not start:\n" + self._log(command[0]))
        return line

    def _serve(self, command, env, **options):
        log = open(os.path.join(self.folder, command[0] + ".log"), "wb")
        with log:
            self.servers.append(
                subprocess.Popen(
                    command,
                    env=env,
                    stdin=subprocess.DEVNULL,
                    stdout=log,
                    stderr=log,
                    start_new_session=True,
                    **options,
                )
            )

    def _log(self, name):
        with open(os.path.join(self.folder, name + ".log"), errors="replace") as log:
            return log.read()

    def _managed(self):
        answer = subprocess.run(
            ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True, text=True, check=False
        )
        return "window id" in answer.stdout

    def shoot(self, target, window="root"):
        """Saves what the screen, or one window, shows."""
        subprocess.run(["import", "-silent", "-window", str(window), target], check=True)

    def pixel(self, x, y):
        """The colour at a place of the screen: (red, green, blue)."""
        shot = subprocess.run(
            ["import", "-silent", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "rgb:-"],
            capture_output=True,
            check=True,
        )
        return tuple(shot.stdout[:3])


def _end(server):
    """Ends a server with what it has started."""
    for order in (signal.SIGTERM, signal.SIGKILL):
        try:
            os.killpg(server.pid, order)
            server.wait(timeout=5)
        except ProcessLookupError:
            break
        except subprocess.TimeoutExpired:
            continue
    server.wait()
