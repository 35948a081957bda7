"""Shows objects, references, selectors, blocks and plane geometry in gdb as what they mean.

gdb loads this file together with the library. Objects are asked by calling NSDebugDescription and
NSDebugElements in the program, so that libraries without debug information do. Where no call can be
made, as in a core dump, strings are read from memory, and other objects show their class.
"""
import re

import gdb
import gdb.printing
import gdb.types
import gdb.xmethod

ESCAPES = {code: f"\\{code:03o}" for code in range(32)} | str.maketrans(
    {'"': r"\"", "\\": r"\\", "\n": r"\n", "\t": r"\t"})
WORD = 8
PAGE = 4096
LONGEST_NAME = 1000


class NotAnObject(Exception):
    """What a variable holds before it has been given a value, or after it has died."""


def mangled_class(address):
    """The name of an object's class as C++'s run-time type information has it."""
    pointer = gdb.lookup_type("void").pointer().pointer()
    try:
        table = gdb.Value(address).cast(pointer.pointer()).dereference()
        info = (table - 1).dereference().cast(pointer)
        name = (info + 1).dereference().cast(gdb.lookup_type("char").pointer()).string("ascii")
    except (gdb.error, UnicodeDecodeError) as error:
        raise NotAnObject from error
    name = name.lstrip("*")
    if not re.fullmatch(r"[A-Za-z0-9_.$]+", name):
        raise NotAnObject
    return name


def class_of(address):
    name = mangled_class(address)
    answer = gdb.execute(f"demangle -l c++ -- _ZTI{name}", to_string=True).strip()
    return answer.removeprefix("typeinfo for ")


def call(function, address, result):
    """Calls a function of the library with the object; None where that cannot be done.

    Other threads stand still meanwhile.
    """
    if not gdb.selected_inferior().threads():
        return None
    changed = []
    try:
        for setting in ("unwindonsignal", "scheduler-locking"):
            # A core file has no scheduler.
            former = gdb.parameter(setting)
            gdb.execute(f"set {setting} on")
            changed.append((setting, former))
        return gdb.parse_and_eval(f"(({result} (*)(void *)) {function})((void *) {address:#x})")
    except gdb.error:
        return None
    finally:
        for setting, former in changed:
            gdb.execute(f"set {setting} {former if isinstance(former, str) else 'on' if former else 'off'}")


def block_place(block_class):
    """Where the callable of a block is written, as " at file:line", if its code is there alone."""
    block = re.fullmatch(r"NSCallableBlock<.*?, (.*(?:\{lambda\((.*)\)#\d+\}|\$_\d+))>", block_class)
    if not block:
        return ""
    operator = f"{block[1]}::operator()"
    # g++ tells the callables of a function apart in the names of its symbols only.
    names = [operator] if block[2] is None else [f"{operator}({block[2]}){end}" for end in (" const", "")]
    for name in names:
        try:
            place = gdb.find_pc_line(int(gdb.parse_and_eval(f"(long) &'{name}'")))
        except gdb.error:
            continue
        if place.symtab:
            return f" at {place.symtab.filename.rsplit('/', 1)[-1]}:{place.line}"
    return ""


def string_in_memory(address):
    """The text of a string, whose units and their number stand behind the table and the count."""
    word = gdb.lookup_type("unsigned long").pointer()
    units, size = (int(gdb.Value(address + offset).cast(word).dereference()) for offset in (16, 24))
    text = gdb.selected_inferior().read_memory(units, 2 * min(size, 1000)).tobytes()
    text = text.decode("utf-16-le", "replace").translate(ESCAPES)
    return f'"{text}{"…" if size > 1000 else ""}"'


def describe(address):
    if address == 0:
        return "nil"
    try:
        name = class_of(address)
    except NotAnObject:
        return f"(no object at {address:#x})"
    if name.startswith("NSCallableBlock<"):
        return f"<{name}: {address:#x}>{block_place(name)}"
    text = call("NSDebugDescription", address, "char *")
    if text is not None:
        return text.string("utf-8", "replace")
    if name in ("NSString", "NSMutableString"):
        try:
            return string_in_memory(address)
        except gdb.error:
            pass
    return f"<{name}: {address:#x}>"


def elements_of(address):
    """The addresses of a collection's elements; None for other objects."""
    if address == 0:
        return None
    try:
        mangled_class(address)
    except NotAnObject:
        return None
    first = call("NSDebugElements", address, "void **")
    if first is None or int(first) == 0:
        return None
    # In pages, as how many there are is not known before the null after the last.
    place, elements = int(first), []
    while True:
        size = PAGE - place % PAGE
        for word in gdb.selected_inferior().read_memory(place, size).cast("B").cast("Q"):
            if word == 0:
                return elements
            elements.append(word)
        place += size


def is_own(kind):
    """Whether a class is the program's, not the library's."""
    return not re.match(r"(NS|ZK)[A-Z]|dispatch_", kind.strip_typedefs().name or "")


def object_address(pointer):
    """Where the NSObject of a pointer to any class stands; in the library's classes it comes first."""
    if is_own(pointer.type.target()):
        try:
            pointer = pointer.cast(gdb.lookup_type("NSObject").pointer())
        except gdb.error:
            pass
    return int(pointer)


class ObjectPrinter:
    """A collection shows its elements, any other object its description."""

    def __init__(self, address, reference, pointer=None):
        self._address = address
        self._reference = reference
        self._pointer = pointer
        self._elements = elements_of(address)
        self._is_map = self._elements is not None and "Dictionary" in class_of(address)

    def to_string(self):
        if self._elements is None:
            return describe(self._address)
        count = len(self._elements) // (2 if self._is_map else 1)
        return f"{class_of(self._address)} of {count}"

    def display_hint(self):
        if self._elements is None:
            return None
        return "map" if self._is_map else "array"

    def children(self):
        if self._elements is not None:
            for index, element in enumerate(self._elements):
                yield f"[{index}]", gdb.Value(element.to_bytes(WORD, "little"), self._reference)
        elif self._pointer is not None:
            yield "get()", self._pointer


def any_reference(reference):
    """The type of references to objects of any class; all have one form."""
    try:
        kind = gdb.lookup_type("NSRef<NSObject>")
        return kind if kind.fields() else reference
    except gdb.error:
        return reference


def print_reference(value):
    pointer = value["_object"]
    # Of a class of the program's own the members are of interest.
    shows_members = is_own(pointer.type.target()) and int(pointer) != 0
    return ObjectPrinter(
        object_address(pointer), any_reference(value.type), pointer if shows_members else None)


class TextPrinter:
    def __init__(self, text):
        self._text = text

    def to_string(self):
        return self._text


def print_weak_reference(value):
    return TextPrinter("weak " + describe(int(value["_anchor"]["_object"])))


def print_selector(value):
    try:
        name = value["_definition"].dereference()["name"]
        size = int(name["_M_len"])
        if size > LONGEST_NAME:
            raise NotAnObject
        return TextPrinter(name["_M_str"].string("utf-8", length=size))
    except (gdb.error, NotAnObject, UnicodeDecodeError):
        return TextPrinter("(no selector)")


def print_exception(value):
    # The class is complete only where the library has debug information, but std::runtime_error keeps
    # its text behind the table of virtual functions.
    text = gdb.lookup_type("char").pointer().pointer()
    text = gdb.Value(int(value.address) + WORD).cast(text).dereference().string("utf-8", "replace")
    return TextPrinter(f'"{text.translate(ESCAPES)}"')


class Follow(gdb.xmethod.XMethodWorker):
    """Follows a reference by `*` or `->` without a call in the program."""

    def __init__(self, method):
        self._gives_object = method == "operator*"

    def get_arg_types(self):
        return None

    def get_result_type(self, reference):
        return self(reference).type

    def __call__(self, reference):
        pointer = reference["_object"]
        return pointer.dereference() if self._gives_object else pointer


class References(gdb.xmethod.XMethodMatcher):
    """Finds what follows references."""

    def __init__(self):
        super().__init__("NSRef")

    def match(self, kind, method):
        is_known = method in ("operator*", "operator->") and (kind.tag or "").startswith("NSRef<")
        return Follow(method) if is_known else None


def numbers(*values):
    return "{" + ", ".join(repr(float(value)).removesuffix(".0") for value in values) + "}"


def print_point(value):
    return TextPrinter(numbers(value["x"], value["y"]))


def print_size(value):
    return TextPrinter(numbers(value["width"], value["height"]))


def print_rect(value):
    origin, size = value["origin"], value["size"]
    return TextPrinter(
        "{%s, %s}" % (numbers(origin["x"], origin["y"]), numbers(size["width"], size["height"])))


class Printers(gdb.printing.PrettyPrinter):
    """Finds the printer for a value by its type."""

    values = {
        "NSException": print_exception,
        "NSSelector": print_selector,
        "NSPoint": print_point,
        "NSSize": print_size,
        "NSRect": print_rect,
    }

    def __call__(self, value):
        kind = gdb.types.get_basic_type(value.type)
        name = kind.tag or ""
        if name.startswith("NSRef<"):
            return print_reference(value)
        if name.startswith("NSWeakRef<"):
            return print_weak_reference(value)
        if name in self.values:
            return self.values[name](value)
        return None


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers("ZKFoundation"), replace=True)
gdb.xmethod.register_xmethod_matcher(gdb.current_objfile(), References(), replace=True)
