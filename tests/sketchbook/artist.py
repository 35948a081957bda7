"""Uses Sketchbook, and reads what it has saved."""
import re
import xml.etree.ElementTree as xml

from person import Missed, Person, until


class Artist(Person):
    """Somebody who knows where things are on the sheet when it is shown in its actual size."""

    def __init__(self, program, pictures, home):
        super().__init__(pictures, {
            "HOME": str(home), "XDG_DATA_HOME": str(home / "data"),
            "XDG_CONFIG_HOME": str(home / "config"), "XDG_RUNTIME_DIR": str(home / "run"),
            "LANGUAGE": "en", "LC_ALL": "C.UTF-8",
            "QT_ACCESSIBILITY": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        (home / "run").mkdir(mode=0o700)
        self.home = home
        self.sketchbook = program

    def opens(self, *arguments, drawing="Drawing", **environment):
        process = self.starts(self.sketchbook, *map(str, arguments), **environment)
        self.drawing = drawing
        self.sees(drawing)
        self.presses("ctrl+1")
        self.sees("100 %")
        return process

    def at(self, *points):
        """Tells where points of the sheet are on the screen."""
        left, top, *_ = self.place(self.drawing)
        return [(left + x, top + y) for x, y in points]

    def clicks_at(self, x, y, *keys):
        self.drags(self.at((x, y)), keys)

    def draws(self, tool, points, **options):
        self.presses(tool)
        self.drags(self.at(*points), **options)

    def sees_frame(self, x, y, width, height):
        """Sees that the inspector says so, “.” for what does not matter."""
        pattern = re.compile(f"{x}, {y} · {width} × {height}")
        until(lambda: any(pattern.fullmatch(text) for text in self.texts()),
              lambda: f"{pattern.pattern} among {self.texts()}")

    def saves_as(self, name):
        self.chooses("File", "Save As…")
        self.fills("File name:", name)
        self.presses("Return")
        self.sees(f"{name} — Sketchbook", "frame")

    def saves(self, name):
        self.presses("ctrl+s")
        self.sees(f"{name} — Sketchbook", "frame")


def shapes(document):
    """Lists the names and the texts or positions of what the document's preview shows."""
    def told(group):
        title, *elements = group
        return title.text, [element.text or element.attrib for element in elements]
    return [told(group) for group in xml.parse(document / "preview.svg").getroot()]


def names(document):
    return [name for name, _ in shapes(document)]


def expect(condition, what):
    if not condition:
        raise Missed(what)
