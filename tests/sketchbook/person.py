"""Uses a program as a person does: sees what it shows by its accessible names, points and types with
xdotool, and takes pictures of the screen. Nothing is waited for by the clock alone: whoever looks for
something looks until it is there."""
import os
import pathlib
import signal
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


# Busy programs answer late, and are looked at again.
Atspi.set_timeout(5000, 5000)


class Missed(Exception):
    """Something was not there in time."""


def until(condition, what, limit=60):
    """Gives what the condition gives, as soon as that is something."""
    end = time.monotonic() + limit
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise Missed(what() if callable(what) else what)
        time.sleep(0.03)


class Person:
    def __init__(self, pictures, environment):
        self.pictures = pathlib.Path(pictures)
        self.environment = dict(os.environ, **environment)
        self.program = None
        self.taken = 0

    def starts(self, *command, **environment):
        """Starts a program, and gives its process; all that follows is about it."""
        self.program = subprocess.Popen(command, env=dict(self.environment, **environment),
                                        cwd=self.environment["HOME"])
        return self.program

    def turns_to(self, program):
        """Brings another program to the front."""
        self.program = program
        window = subprocess.run(
            ["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.pid), "--name", "."],
            env=self.environment, check=True, capture_output=True, text=True).stdout.split()[-1]
        self.hands("windowactivate", "--sync", window)

    def kills(self):
        """Kills the program in the way a crash does."""
        self.program.send_signal(signal.SIGKILL)
        self.program.wait()

    def leaves(self):
        """Waits until the program has ended by itself."""
        until(lambda: self.program.poll() is not None, "the end of the program")
        if self.program.returncode != 0:
            raise Missed(f"the program ended with {self.program.returncode}")

    # What is seen

    def nodes(self):
        """Walks all that the program shows."""
        desktop = Atspi.get_desktop(0)
        desktop.set_cache_mask(Atspi.Cache.NONE)
        for k in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(k)
            if application and application.get_process_id() == self.program.pid:
                application.set_cache_mask(Atspi.Cache.NONE)
                yield from self._below(application)

    def _below(self, node):
        # Nobody reads all of a long list.
        for k in range(min(node.get_child_count(), 30)):
            child = node.get_child_at_index(k)
            if child is None:
                continue
            if child.get_role_name() != "application" and \
                    not child.get_state_set().contains(Atspi.StateType.SHOWING):
                continue
            yield child
            yield from self._below(child)

    def _find(self, name, role):
        if self.program.poll() is not None:
            raise Missed(f"the program, which ended with {self.program.returncode},"
                         f" before it showed “{name}”")
        try:
            found = [node for node in self.nodes()
                     if node.get_name() == name and role in ("", node.get_role_name())]
        except GLib.Error:
            return None  # It went away meanwhile.
        # What came last is in front.
        return found[-1] if found else None

    def sees(self, name, role=""):
        """Gives what has that name or text, when it is there."""
        return until(lambda: self._find(name, role), lambda: f"“{name}” among {self.texts()}")

    def sees_no(self, name, role=""):
        until(lambda: not self._find(name, role), f"“{name}” has not gone")

    def texts(self):
        """Lists all that can be read."""
        return [node.get_name() for node in self.nodes() if node.get_name()]

    def reads(self, name):
        """Gives what stands in the field."""
        text = self.sees(name, "text").get_text_iface()
        return Atspi.Text.get_text(text, 0, -1)

    def place(self, name, role=""):
        """Gives x, y, width, height on the screen."""
        extents = self.sees(name, role).get_extents(Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    # What is done

    def hands(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True)

    def clicks(self, name, role="", button=1):
        x, y, width, height = self.place(name, role)
        self.hands("mousemove", x + width // 2, y + height // 2, "click", button)

    def chooses(self, *names):
        """Takes an item of a menu by the names on the way to it."""
        for name in names:
            self.clicks(name, "menu item")

    def presses(self, *keys):
        self.hands("key", "--clearmodifiers", *keys)

    def types(self, text):
        self.hands("type", "--delay", 15, text)

    def fills(self, name, text):
        """Replaces what stands in a field."""
        self.clicks(name, "text")
        self.presses("ctrl+a")
        self.types(text)
        until(lambda: self.reads(name) == text, f"“{text}” in “{name}”")

    def drags(self, points, keys=(), meanwhile=None):
        """Drags through points of the screen with keys held, and does something before letting go."""
        (x, y), *others = points
        words = ["mousemove", x, y]
        for key in keys:
            words += ["keydown", key]
        words += ["mousedown", 1]
        for x, y in others:
            # As fast as a hand, so that the program sees all of the way.
            words += ["sleep", 0.02, "mousemove", x, y]
        self.hands(*words)
        if meanwhile:
            meanwhile()
        words = ["mouseup", 1]
        for key in keys:
            words += ["keyup", key]
        self.hands(*words)

    def picture(self, name, still=True):
        """Takes a picture of the screen, when it stands still."""
        def look():
            return subprocess.run(["maim", "--format=png"], env=self.environment, check=True,
                                  capture_output=True).stdout

        last = [b""]

        def stands():
            before, last[0] = last[0], look()
            return not still or before == last[0]

        until(stands, f"a still picture of {name}")
        self.taken += 1
        file = self.pictures / f"{self.taken:02} {name}.png"
        file.write_bytes(last[0])
        return file
