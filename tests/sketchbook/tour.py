"""Uses Sketchbook as people do for ten minutes, and keeps a picture of each step. Fails when the
program dies, or when something is not there that a step should have brought.
usage: tour.py PROGRAM PICTURES"""
import pathlib
import plistlib
import sys
import tempfile
import time
import xml.etree.ElementTree as xml

from artist import Artist, expect, names, shapes
from person import Missed, until


def draws(self):
    self.opens()
    self.picture("the sample")
    self.draws("r", [(541, 39), (580, 80), (642, 121)],
               meanwhile=lambda: self.picture("drawing a rectangle"))
    self.sees_frame(540, 40, 100, 80)
    self.clicks("Green", "check box")
    self.draws("p", [(600 + 12 * k, 260 - 40 * (k % 3)) for k in range(12)],
               meanwhile=lambda: self.picture("drawing a curve"))
    until(lambda: self.reads("Name") == "Path", "the new curve")
    self.presses("t")
    self.clicks_at(600, 320)
    self.sees("Label", "text")
    self.types("our garden")
    self.presses("Return")
    self.types("in May")
    self.picture("writing a label")
    self.presses("Escape")
    until(lambda: self.reads("Name") == "Label", "the new label")
    self.picture("a label")


def drags(self):
    corner = (640, 120)
    for name, to, keys, frame in [
            ("over both edges", (460, 20), [], (460, 20, 80, 20)),
            ("with Shift", (720, 130), ["shift"], (540, 40, 180, 144)),
            ("with Alt", (672, 150), ["alt"], (514, 10, 152, 140))]:
        self.clicks_at(590, 80)
        self.sees_frame(540, 40, 100, 80)
        self.drags(self.at(corner, to), keys, lambda: self.picture(f"a handle {name}"))
        self.sees_frame(*frame)
        self.presses("ctrl+z")
        self.sees_frame(540, 40, 100, 80)
    self.chooses("View", "Snap to Grid")
    self.drags(self.at((590, 80), (400, 170), (273, 199)),
               meanwhile=lambda: self.picture("guides"))
    self.sees_frame(225, 159, 100, 80)
    self.chooses("View", "Snap to Grid")
    self.drags(self.at((275, 199), (335, 145)), ["shift"])
    self.picture("moved by 45 degrees")
    self.sees_frame(r"28\d", r"10\d", 100, 80)


def arranges(self):
    self.clicks_at(210, 230)
    self.clicks_at(300 + 10, 390, "shift")
    self.clicks_at(410, 260, "shift")
    self.sees("3 selected")
    self.picture("three selected")
    self.clicks("Arrange", "menu item")
    self.sees("Align Left", "menu item")
    self.picture("the menu to arrange")
    self.clicks("Align Left", "menu item")
    self.sees_frame(200, 220, 260, 180)
    self.picture("aligned")
    self.drags(self.at((140, 30), (300, 200), (700, 440)),
               meanwhile=lambda: self.picture("an area to select"))
    self.chooses("Arrange", "Distribute Horizontally")
    self.picture("distributed")
    self.presses("ctrl+z", "ctrl+z")
    self.clicks_at(410, 260)
    self.sees_frame(385, 250, 50, 50)
    self.presses("ctrl+c", "ctrl+v")
    until(lambda: self.reads("Name") == "Right window 2", "the pasted window")
    self.presses("ctrl+d")
    until(lambda: self.reads("Name") == "Right window 3", "the duplicate")
    self.picture("pasted and duplicated")


def undoes(self):
    self.saves_as("Plan")
    plan = self.home / "Plan.sketch"
    before = shapes(plan)
    self.presses(*["ctrl+z"] * 30)
    self.sees("Plan* — Sketchbook", "frame")
    self.picture("all undone")
    self.saves("Plan")
    expect(len(shapes(plan)) == 10, f"the sample alone, not {names(plan)}")
    self.presses(*["ctrl+shift+z"] * 30)
    self.sees("Plan* — Sketchbook", "frame")
    self.saves("Plan")
    expect(shapes(plan) == before, "all redone")


def zooms(self):
    self.clicks_at(230, 445)
    self.hands("keydown", "ctrl", "click", "--repeat", 8, 4, "keyup", "ctrl")
    self.picture("zoomed in about the pointer")
    self.presses(*["ctrl+minus"] * 16)
    self.picture("zoomed out")
    self.presses("ctrl+0")
    self.picture("all in the window")
    self.presses("ctrl+1")
    self.clicks("Smoke", "list item")
    until(lambda: self.reads("Name") == "Smoke", "the smoke")
    self.picture("selected in the list")


def finds(self):
    self.presses("ctrl+f")
    self.fills("Find", "our")
    self.picture("words that stand in labels")
    self.presses("Escape", "Return")
    self.sees("“Our house”")
    self.picture("found")
    self.clicks("Any part", "combo box")
    self.clicks("Whole words", "list item")
    self.fills("Replace by", "their")
    self.clicks("Replace All", "push button")
    self.sees("2 replaced.")
    self.picture("replaced")
    self.presses("ctrl+a")
    self.clicks("Find", "text")
    self.fills("Find", "[")
    self.clicks("Regular expression", "check box")
    self.clicks("Find Next", "push button")
    self.picture("no regular expression")
    self.chooses("View", "Find")
    self.saves("Plan")
    texts = str(shapes(self.home / "Plan.sketch"))
    expect("their house" in texts and "their garden" in texts, texts)


def addresses(self):
    self.clicks_at(230, 500)
    until(lambda: self.reads("Name") == "Hint", "the hint")
    self.fills("Address", "ssh://example.org/")
    self.sees("Only “http”, “https” and files can be opened.")
    self.picture("an address that is refused")
    self.fills("Address", "example.org/a")
    self.presses("Return")
    until(lambda: self.reads("Address") == "http://example.org/a", "the whole address")
    (self.home / "Notes from the garden.txt").write_text("Water the roses.")
    self.chooses("File", "Attach File…")
    self.fills("File name:", "Notes from the garden.txt")
    self.presses("Return")
    self.sees("Notes from the garden.txt", "label")
    self.picture("an attachment")
    self.saves("Plan")
    attached = self.home / "Plan.sketch/Attachments/Notes from the garden.txt"
    expect(attached.read_text() == "Water the roses.", "what is attached")


def closes_and_opens(self):
    self.clicks_at(230, 500)
    self.presses("Left")
    self.sees("Plan* — Sketchbook", "frame")
    self.presses("ctrl+w")
    self.sees("Save the changes of “Plan”?")
    self.picture("the question before it closes")
    self.clicks("Save", "push button")
    self.leaves()
    self.opens()
    self.presses("ctrl+o")
    self.fills("Directory:", "Plan.sketch")
    self.picture("opening")
    self.presses("Return")
    self.sees("Plan — Sketchbook", "frame")
    self.sees_no("Untitled — Sketchbook", "frame")
    self.picture("opened")
    self.presses("ctrl+q")
    self.leaves()


def exports(self):
    # So much that it takes its time: the shapes of the plan, many times.
    large = self.home / "Large.sketch"
    large.mkdir()
    (large / "format").write_bytes((self.home / "Plan.sketch/format").read_bytes())
    archive = plistlib.loads((self.home / "Plan.sketch/drawing").read_bytes())
    root = archive["$objects"][archive["$top"]["root"].data]
    root["NS.objects"] *= 12000
    (large / "drawing").write_bytes(plistlib.dumps(archive, fmt=plistlib.FMT_BINARY))
    self.opens(large)
    self.picture("many shapes")
    # What is out of sight need not be drawn each time that a menu closes.
    self.hands("mousemove", *self.at((400, 300))[0], "click", "--repeat", 40, 5)
    self.chooses("File", "Export PNG…")
    self.sees("File name:", "text")
    self.picture("where to export")
    self.fills("File name:", "Large.png")
    self.presses("Return")
    self.sees("Exporting PNG")
    self.picture("exporting", still=False)
    self.clicks("Cancel", "push button")
    self.sees_no("Exporting PNG")
    self.chooses("File", "Export SVG…")
    self.fills("File name:", "Large.svg")
    self.presses("Return")
    self.sees("Exported.")
    self.picture("exported")
    expect(not (self.home / "Large.png").exists(), "no picture of a cancelled export")
    expect(xml.parse(self.home / "Large.svg"), "a picture")
    self.presses("ctrl+w")
    self.leaves()


def shares(self):
    plan = self.home / "Plan.sketch"
    first = self.opens(plan)
    self.draws("r", [(20, 20), (80, 60)])
    self.sees_frame(20, 20, 60, 40)
    second = self.opens(plan)
    self.draws("r", [(120, 20), (180, 60)])
    self.sees_frame(120, 20, 60, 40)
    self.saves("Plan")
    self.turns_to(first)
    self.presses("ctrl+s")
    self.sees("“Plan.sketch” has been changed elsewhere since it was opened.")
    self.picture("changed elsewhere")
    self.clicks("Save As…", "push button")
    self.fills("File name:", "Plan of mine")
    self.presses("Return")
    self.sees("Plan of mine — Sketchbook", "frame")
    self.picture("two documents")
    def has(document, x):
        return any(isinstance(part, dict) and part.get("x") == x and part.get("y") == "20"
                   for _, parts in shapes(document) for part in parts)
    mine = self.home / "Plan of mine.sketch"
    expect(has(mine, "20") and not has(mine, "120"), f"mine: {shapes(mine)}")
    expect(has(plan, "120") and not has(plan, "20"), f"yours: {shapes(plan)}")
    self.turns_to(second)
    self.presses("ctrl+q")
    self.leaves()
    self.turns_to(first)


def crashes(self):
    self.draws("r", [(220, 20), (280, 60)])
    self.sees_frame(220, 20, 60, 40)
    unsaved = self.home / "data/Sketchbook/Unsaved"
    until(lambda: any('x="220" y="20"' in copy.read_text()
                      for copy in unsaved.glob("*/copy.sketch/preview.svg")), "a copy of the work")
    self.kills()
    self.starts(self.sketchbook)
    self.sees("There are unsaved changes of “Plan of mine”. Open them?")
    self.picture("after a crash")
    self.clicks("Yes", "push button")
    self.sees("Plan of mine* — Sketchbook", "frame")
    self.picture("recovered")
    self.saves("Plan of mine")
    expect('x="220" y="20"' in (self.home / "Plan of mine.sketch/preview.svg").read_text(),
           "the last change")
    self.presses("ctrl+q")
    self.leaves()
    expect(not list(unsaved.iterdir()), "nothing left behind")


def damages(self):
    broken = self.home / "Broken.sketch"
    broken.mkdir()
    (broken / "format").write_text("Sketchbook 1\nA\n")
    (broken / "drawing").write_text("bplist00")
    self.opens()
    self.presses("ctrl+o")
    self.fills("Directory:", "Broken.sketch")
    self.presses("Return")
    self.sees("“Broken.sketch” is damaged.")
    self.picture("a damaged document")
    self.presses("Return")
    self.presses("ctrl+n")
    until(lambda: self.texts().count("Untitled — Sketchbook") == 2, "a new window")
    self.picture("an empty document")
    self.presses("ctrl+q")
    self.leaves()


def sleeps(self):
    process = self.opens()
    self.picture("at rest")
    def wakes():
        return sum(int(line.split()[1]) for status in
                   pathlib.Path(f"/proc/{process.pid}/task").glob("*/status")
                   for line in status.read_text().splitlines()
                   if line.startswith("voluntary_ctxt_switches"))
    def wakes_within(seconds):
        before = wakes()
        time.sleep(seconds)
        return wakes() - before
    until(lambda: wakes_within(1) == 0, "a second of rest")
    woken = wakes_within(10)
    expect(woken == 0, f"no wake-ups in ten seconds, but {woken}")
    self.presses("ctrl+q")
    self.leaves()


def speaks_german(self):
    self.opens(LANGUAGE="de", LC_ALL="de_DE.UTF-8", drawing="Zeichnung")
    self.picture("auf Deutsch")
    for menu in ["Datei", "Bearbeiten", "Anordnen", "Ansicht"]:
        self.clicks(menu, "menu item")
        self.picture(f"Menü {menu}")
        self.presses("Escape")
    self.fills("Adresse", "ssh://example.org/")
    self.sees("Nur „http“, „https“ und Dateien lassen sich öffnen.")
    self.picture("abgelehnte Adresse")
    self.presses("ctrl+f")
    self.fills("Suchen", "haus")
    self.presses("Escape", "Return")
    self.sees("„Unser Haus“")
    self.picture("gefunden")
    self.presses("Right")
    self.clicks_at(330, 350)
    self.presses("Right")
    self.presses("ctrl+w")
    self.sees("Die Änderungen an „Ohne Titel“ speichern?")
    self.picture("Frage vor dem Schließen")
    self.clicks("Verwerfen", "push button")
    self.leaves()


def darkens(self):
    theme = self.home / "config/qt6ct"
    theme.mkdir(parents=True)
    (theme / "qt6ct.conf").write_text("[Appearance]\ncustom_palette=true\nstyle=Fusion\n"
                                      "color_scheme_path=/usr/share/qt6ct/colors/darker.conf\n")
    self.opens(QT_QPA_PLATFORMTHEME="qt6ct")
    self.presses("ctrl+f")
    self.picture("in the dark")
    self.hands("mousemove", *self.at((230, 445))[0], "click", "--repeat", 2, 1)
    self.sees("Label", "text")
    self.picture("writing in the dark")
    self.presses("Escape")
    self.sees_no("Label", "text")
    self.presses("ctrl+q")
    self.leaves()


STEPS = [draws, drags, arranges, undoes, zooms, finds, addresses, closes_and_opens, exports, shares,
         crashes, damages, sleeps, speaks_german, darkens]


def main(program, pictures):
    with tempfile.TemporaryDirectory() as home:
        artist = Artist(program, pictures, pathlib.Path(home))
        for step in STEPS:
            print(step.__name__, flush=True)
            try:
                step(artist)
            except Missed as missed:
                artist.picture("missed", still=False)
                print("missed", missed)
                sys.exit(1)
    print(f"{artist.taken} pictures are in {pictures}")


main(*sys.argv[1:])
