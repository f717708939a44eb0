#!/usr/bin/python3
"""Reads the running panel as a screen reader does, from outside over AT-SPI:

    check-accessibility.py PANEL

PANEL has the stand-in daemon beside it. Ends with 0 only where everything has its name, the table
its values, the stop of the daemon shows, and the buttons can be pressed.
"""

import os
import signal
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
import pyatspi  # noqa: E402
from gi.repository import GLib  # noqa: E402

# Exceeded by a hang only.
PATIENCE = 60
PAUSE = 0.02
APPLICATION = "corvane-panel"
NOTICE = "统一服务未启动"
REPAIR = "修复朔川服务"
NO_REPAIR = "统一服务运行正常，无需修复。"


def within(node):
    """The accessible NODE and all below it, in their order."""
    # What was read before may have changed since; the client would go by its memory.
    node.clear_cache()
    yield node
    for child in node:
        if child:
            yield from within(child)


def role_name(node):
    """Newer AT-SPI calls a push button only "button"."""
    name = node.getRoleName()
    return "push button" if name == "button" else name


def is_showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def shown(root, *roles):
    return [node for node in within(root) if is_showing(node) and role_name(node) in roles]


def labelled(root, role, name):
    return [node for node in shown(root, role) if node.name == name]


def press_named(root, name):
    """Presses the one button NAME."""
    buttons = shown(root, "push button")
    matching = [node for node in buttons if node.name == name]
    compare("buttons named " + name + " among " + ", ".join(node.name for node in buttons), len(matching), 1)
    press(matching[0])


def on_bus():
    """What to tell of the accessibility bus where a wait was in vain."""
    try:
        names = [node.name for node in pyatspi.Registry.getDesktop(0) if node]
    except GLib.Error as error:
        return f"no answer: {error.message}"
    return ", ".join(names) or "no application: its services or Qt's bridge haven't started"


def wait_for(what, question):
    """What QUESTION answers as soon as that is anything; the panel may be busy meanwhile."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        try:
            answer = question()
        except GLib.Error:
            answer = None
        if answer:
            return answer
        time.sleep(PAUSE)
    sys.exit(f"waited {PATIENCE} s in vain for {what}; on the accessibility bus there is {on_bus()}")


def compare(what, actual, expected):
    if actual != expected:
        sys.exit(f"{what}:\n  actual   {actual}\n  expected {expected}")


def application():
    for node in pyatspi.Registry.getDesktop(0):
        if node and node.name == APPLICATION and node.childCount:
            return node
    return None


def field_name(node):
    """What NODE is called: the text of its label, if it has one, or its own name."""
    for relation in node.getRelationSet():
        if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY:
            return relation.getTarget(0).name
    return node.name


def press(node):
    action = node.queryAction()
    names = [action.getName(i) for i in range(action.nActions)]
    if not action.doAction(names.index("Press")):
        sys.exit(f"{node.name} can't be pressed")


def cells(panel):
    return [cell.name for cell in shown(panel, "table cell")]


def check_names(panel):
    """What the names are is tested where they are given: here, that a client is told them."""
    to_use = ("tree", "push button", "combo box", "spin button", "check box")
    used = [node for node in within(panel) if role_name(node) in to_use]
    compare("roles", sorted({role_name(node) for node in used}), sorted(to_use))
    compare("nameless", [role_name(node) for node in used if not field_name(node).strip()], [])
    compare("named with a blank", [node.name for node in used if node.name.startswith(" ")], [])


def check_table(panel):
    """Returns a pidfd of the process in the row."""
    row = wait_for("the row", lambda: cells(panel))
    headers = [header.name for header in shown(panel, "table column header")]
    compare("number of values", len(row), len(headers))
    compare("empty", [text for text in headers + row if not text.strip()], [])
    command, pid = row[:2]
    compare("process", command, "Corvane")
    daemon = os.pidfd_open(int(pid))
    compare("name of process " + pid, os.readlink(f"/proc/{pid}/exe").split("/")[-1], "Corvane")
    compare("the notice", labelled(panel, "label", NOTICE), [])
    return daemon


def check_repair(panel):
    press_named(panel, REPAIR)
    wait_for("the box", lambda: labelled(panel, "push button", "OK"))
    compare("text of the box", len(labelled(panel, "label", NO_REPAIR)), 1)
    press_named(panel, "OK")
    wait_for("the box's end", lambda: not labelled(panel, "push button", "OK"))


def check_stop(panel, daemon):
    signal.pidfd_send_signal(daemon, signal.SIGKILL)
    wait_for("the notice", lambda: labelled(panel, "label", NOTICE))
    compare("cells without a daemon", cells(panel), [])


def main():
    # Before the panel: Qt registers with the services once, and those that are only starting may miss it.
    wait_for("the accessibility services", lambda: pyatspi.Registry.getDesktop(0).name)
    environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    process = subprocess.Popen([sys.argv[1]], env=environment)
    try:
        panel = wait_for("the panel", application)
        wait_for("the window", lambda: shown(panel, "push button"))
        daemon = check_table(panel)
        check_names(panel)
        check_repair(panel)
        check_stop(panel, daemon)
        press_named(panel, "关闭")
        compare("exit status", process.wait(PATIENCE), 0)
    finally:
        process.kill()


main()
