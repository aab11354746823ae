#!/usr/bin/env python3
"""Tests the real app binary on a real X server, operated only through assistive technology.

accessibility.py APP SERVER PORT DIRECTORY

Starts an X server, the accessibility bus, the reference server on PORT and the app on the current session bus, signs in
and checks in by accessible names and actions, and stops only the processes that it started. The exit status is 0 when
all checks pass.
"""

import os
import re
import signal
import subprocess
import sys
import time

LIMIT = 60.0  # seconds for anything to appear


def fail(message):
    raise SystemExit(f"FAILED: {message}")


class Processes:
    def __init__(self):
        self.started = []

    def start(self, *command, **options):
        process = subprocess.Popen(command, **options)
        self.started.append(process)
        return process

    def end(self):
        for process in reversed(self.started):
            if process.poll() is None:
                process.send_signal(signal.SIGTERM)
                try:
                    process.wait(10)
                except subprocess.TimeoutExpired:
                    process.kill()


def start_display(processes):
    reading, writing = os.pipe()
    processes.start("Xvfb", "-displayfd", str(writing), "-screen", "0", "1024x1024x24", "-nolisten", "tcp",
                    pass_fds=[writing], stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as pipe:
        return ":" + pipe.readline().strip()


def demo_facts(server, database):
    said = subprocess.run([server, "demo", "--database", database], capture_output=True, text=True, check=True,
                          timeout=60).stdout
    return dict(re.findall(r"^  (\S+) {2,}(.+)$", said, re.MULTILINE))


class Tree:
    """The app as a screen reader sees it."""

    def __init__(self, atspi, name):
        self.atspi = atspi
        self.name = name

    def application(self):
        desktop = self.atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child and child.get_name() == self.name:
                return child
        return None

    def showing(self):
        """All visible elements, in tree order."""
        found = []

        def visit(element, depth):
            if element is None or depth > 40:
                return
            try:
                states = element.get_state_set()
                if element.get_name() and states.contains(self.atspi.StateType.SHOWING):
                    found.append(element)
                for index in range(element.get_child_count()):
                    visit(element.get_child_at_index(index), depth + 1)
            except Exception:  # an element that was destroyed meanwhile
                pass

        visit(self.application(), 0)
        return found

    def find(self, name, role=None, prefix=False):
        for element in self.showing():
            matches = element.get_name().startswith(name) if prefix else element.get_name() == name
            if matches and (role is None or element.get_role() in role):
                return element
        return None

    def wait(self, name, role=None, prefix=False):
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            element = self.find(name, role, prefix)
            if element:
                return element
            time.sleep(0.2)
        names = [f"{e.get_role_name()} {e.get_name()!r}" for e in self.showing()]
        fail(f"{name!r} never showed; the screen has " + ", ".join(names))

    def is_enabled(self, element):
        states = element.get_state_set()
        return states.contains(self.atspi.StateType.ENABLED) and states.contains(self.atspi.StateType.SENSITIVE)

    def press(self, element):
        for index in range(element.get_n_actions()):
            if element.get_action_name(index).lower() == "press":
                return element.do_action(index)
        fail(f"{element.get_name()!r} has no press action")

    def type(self, element, text):
        element.grab_focus()
        time.sleep(0.3)
        self.atspi.generate_keyboard_event(0, text, self.atspi.KeySynthType.STRING)
        time.sleep(0.3)


def walk(tree, facts):
    roles = tree.atspi.Role
    entry = (roles.ENTRY, roles.TEXT)
    secret = (roles.PASSWORD_TEXT,)
    button = (roles.PUSH_BUTTON,)
    tab = (roles.PAGE_TAB,)

    tree.wait("Sign in to mark attendance", (roles.LABEL,))
    sign_in = tree.wait("Sign in", button)
    if tree.is_enabled(sign_in):
        fail("an empty form can be sent")
    for link in ("Forgot password?", "Create an account"):
        tree.wait(link, (roles.LINK,))
    tree.type(tree.wait("Email", entry), facts["e-mail"])
    password = tree.wait("Password", secret)
    tree.type(password, facts["password"])
    if facts["password"] in (password.get_text(0, -1) if password.get_character_count() else ""):
        fail("the password can be read from the accessibility tree")
    sign_in = tree.wait("Sign in", button)
    if not tree.is_enabled(sign_in):
        fail("a filled form cannot be sent")
    tree.press(sign_in)

    tree.wait("Inside geofence", (roles.LABEL,))
    for label in ("Attendance", "History", "Summary", "Profile"):
        tree.wait(label, tab)
    if tree.find("Sign in"):
        fail("the sign-in screen is still showing")
    images = [element.get_name() for element in tree.showing() if element.get_role() in (roles.IMAGE, roles.ICON)]
    if images:
        fail(f"icons are in the tree: {images}")
    tree.press(tree.wait("Check In", button))
    tree.wait("Checked in at ", prefix=True)
    tree.wait("Check Out", button)

    tree.press(tree.wait("History", tab))
    tree.wait("History", (roles.LABEL,))
    if tree.find("Check Out"):
        fail("the hidden tab is showing")
    tree.press(tree.wait("Attendance", tab))
    tree.wait("Check Out", button)
    sign_out(tree, facts)


def sign_out(tree, facts):
    roles = tree.atspi.Role
    button = (roles.PUSH_BUTTON,)
    tree.press(tree.wait("Profile", (roles.PAGE_TAB,)))
    tree.wait(facts["e-mail"], (roles.LABEL,))
    tree.press(tree.wait("Sign out", button))
    dialog = tree.wait("Sign out of Qor?", (roles.DIALOG,))
    if not dialog.get_state_set().contains(tree.atspi.StateType.MODAL):
        fail("the dialog is not marked as modal")
    for hidden in ("Change password", "History"):
        if tree.find(hidden):
            fail(f"{hidden!r} can be reached below the dialog")
    tree.press(tree.wait("Cancel", button))
    tree.wait("Change password", button)
    tree.press(tree.wait("Sign out", button))
    tree.wait("Sign out of Qor?", (roles.DIALOG,))
    tree.press(tree.wait("Sign out", button))
    tree.wait("Sign in to mark attendance", (roles.LABEL,))


def main():
    app, server, port, directory = sys.argv[1:5]
    os.makedirs(directory, exist_ok=True)
    database = os.path.join(directory, "demo.db")
    for suffix in ("", "-wal", "-shm"):
        if os.path.exists(database + suffix):
            os.remove(database + suffix)
    processes = Processes()
    try:
        os.environ["DISPLAY"] = start_display(processes)
        processes.start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        facts = demo_facts(server, database)
        port_file = os.path.join(directory, "port")
        if os.path.exists(port_file):
            os.remove(port_file)
        log = open(os.path.join(directory, "server.log"), "w", encoding="utf-8")
        serving = processes.start(server, "serve", "--database", database, "--listen", f"127.0.0.1:{port}",
                                  "--port-file", port_file, stdout=log, stderr=log)
        end = time.monotonic() + LIMIT
        while not os.path.exists(port_file):
            if serving.poll() is not None or time.monotonic() > end:
                fail(f"the server did not start; is port {port} in use? See {log.name}")
            time.sleep(0.1)
        environment = dict(os.environ, QT_QPA_PLATFORM="xcb", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                           QT_LOGGING_RULES="*=true", QT_FORCE_STDERR_LOGGING="1",
                           CLOCKWELL_SIMULATED_LOCATION=facts["coordinates"] + ",8")
        printed = os.path.join(directory, "app.log")
        with open(printed, "w", encoding="utf-8") as output:
            under = os.environ.get("CLOCKWELL_RUN_UNDER", "").split()
            processes.start(*under, app, env=environment, stdout=output, stderr=output)

        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        Atspi.init()
        # Without a window manager the window under the pointer has the keyboard focus.
        Atspi.generate_mouse_event(195, 700, "abs")
        walk(Tree(Atspi, "clockwell"), facts)
        with open(printed, encoding="utf-8", errors="replace") as output:
            said = output.read(1000)
        if said and not under:
            fail(f"the app printed, asked for all that Qt has to say:\n{said}")
        print("signed in and checked in by accessible names and actions alone, and nothing was printed")
    finally:
        processes.end()


main()
