#!/usr/bin/python3
"""The window says whose it is: its icon, and the name that leads desktops to the program's entry."""

import configparser
import re
import subprocess

from table import ROOT, check, equal


def property_of(window, name):
    command = ["xprop", "-id", str(window), "-notype", name]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def icon(place):
    with place.start() as program:
        told = property_of(program.shown(), "_NET_WM_ICON")
    equal(re.findall(r"Icon \((\d+ x \d+)\)", told), ["16 x 16", "32 x 32", "48 x 48"], "the icon's sizes")


def class_name(place):
    entry = configparser.ConfigParser(interpolation=None)
    entry.read(ROOT / "desktop/org.veltrane.veltrane.desktop", encoding="utf-8")
    with place.start() as program:
        told = property_of(program.shown(), "WM_CLASS")
    equal(told.split('"')[-2], entry["Desktop Entry"]["StartupWMClass"], "the window's class")


check(
    [
        ("a window manager without desktop entries shows a blank icon", icon),
        ("the task bar does not find the window's entry", class_name),
    ]
)
