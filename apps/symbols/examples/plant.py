"""Draws the flow sheets of a small plant, in which symbols.txt finds pumps, valves and instruments:

    MCLIB_LIBRARIES=build/release/lib python3 apps/symbols/examples/plant.py FOLDER

makes sheet-1.mcd, sheet-2.mcd and sheet-3.mcd in the folder. They hold plain lines, circles, arcs, boxes and texts, as
older drawings do, and a few slips of the pen.
"""
import ctypes
import math
import os
import random
import sys

host = ctypes.CDLL(os.path.join(os.environ.get("MCLIB_LIBRARIES", ""), "libmchost.so"), ctypes.RTLD_GLOBAL)
MAIN = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_int, ctypes.POINTER(ctypes.c_char_p))
WRITE = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int32, ctypes.c_char_p)
host.mchost_lastError.restype = ctypes.c_char_p
element = ctypes.c_void_p.in_dll(host, "dgnBufP")


class Settings(ctypes.Structure):
    """McHostSettings of mchost/mdl/embed.h."""

    _fields_ = [("size", ctypes.c_size_t), ("answers", ctypes.c_char_p), ("yes", ctypes.c_int32),
                ("ask", ctypes.c_int32), ("answer", ctypes.c_void_p), ("write", WRITE), ("keyIn", ctypes.c_void_p),
                ("data", ctypes.c_void_p)]


class Point3d(ctypes.Structure):
    _fields_ = [("x", ctypes.c_double), ("y", ctypes.c_double), ("z", ctypes.c_double)]


class TextSize(ctypes.Structure):
    _fields_ = [("mode", ctypes.c_int32), ("width", ctypes.c_double), ("height", ctypes.c_double),
                ("aspect", ctypes.c_double)]


def expect(holds, what):
    if not holds:
        sys.exit(f"plant.py: {what} can't be made; {host.mchost_lastError().decode()}")


@WRITE
def write(_, kind, text):
    (sys.stderr if kind else sys.stdout).write(text.decode())


# ---- elements, in millimetres of the sheet ----

def add(status):
    expect(status == 0 and host.mdlElement_add(element) != 0, "an element")


def points(*corners):
    return (Point3d * len(corners))(*[(x, y, 0) for x, y in corners])


def line(x1, y1, x2, y2):
    add(host.mdlLine_create(element, None, points((x1, y1), (x2, y2))))


def box(x, y, width, height):
    corners = points((x, y), (x + width, y), (x + width, y + height), (x, y + height))
    add(host.mdlShape_create(element, None, corners, 4, 0))


def arc(x, y, radius, start, sweep):
    axis, start, sweep = (ctypes.c_double(value) for value in (radius, start, sweep))
    add(host.mdlArc_create(element, None, points((x, y)), axis, axis, None, start, sweep))


def circle(x, y, radius, parts=1):
    """As one element, or as so many arcs."""
    if parts == 1:
        add(host.mdlEllipse_create(element, None, points((x, y)), ctypes.c_double(radius), ctypes.c_double(radius),
                                   None, 0))
    for part in range(parts if parts > 1 else 0):
        arc(x, y, radius, 2 * math.pi * part / parts, 2 * math.pi / parts)


def text(x, y, words, height=2.5):
    size = TextSize(1, height, height, 1)
    add(host.mdlText_create(element, None, words.encode("cp1252"), points((x, y)), None, ctypes.byref(size), None, 0))


# ---- symbols ----

def pump(x, y, mark, power, parts):
    circle(x, y, 6, parts)
    line(x - 6, y, x + 6, y)
    text(x - 6, y - 11, mark)
    text(x - 6, y - 15, power)


def valve(x, y, mark, size):
    box(x - 4, y - 2.5, 8, 5)
    line(x - 4, y - 2.5, x + 4, y + 2.5)
    line(x - 4, y + 2.5, x + 4, y - 2.5)
    text(x - 6, y + 8, mark, 2)
    text(x - 6, y + 4.5, size, 2)


def instrument(x, y, letters, number, parts):
    circle(x, y, 5, parts)
    text(x - 3, y + 0.8, letters, 2)
    text(x - 4, y - 3, number, 2)
    line(x, y - 5, x, y - 12)


def frame(title):
    box(0, 0, 280, 190)
    box(180, 0, 100, 24)
    text(184, 14, "Granlia waterworks", 3)
    text(184, 5, title, 3)


SLIPS = {"P-103": "P-1O3", "V-207": "V-2O7"}  # letters for digits


def slip(words):
    return SLIPS.get(words, words)


def branch(sheet, row, rand):
    """A pump with its valves and instruments on a pipe."""
    number = 100 * sheet + row
    y = 160 - 42 * (row - 1)
    size = rand.choice([50, 65, 80, 100])

    line(15, y, 64, y)
    line(76, y, 265, y)
    pump(70, y, slip(f"P-{100 + row + 3 * (sheet - 1)}"), rand.choice(["4.0 kW", "5.5 kW", "7.5 kW"]),
         rand.choice([1, 2, 4]))
    for place, x in enumerate((35, 115, 190)):
        valve(x, y, slip(f"V-{number + 3 * place}"), f"DN {size}")
    instrument(150, y + 12, "PI", str(number), rand.choice([1, 2]))
    instrument(225, y + 12, rand.choice(["FT", "TI"]), str(number), rand.choice([1, 2]))
    text(90, y + 2, f"Water {size}", 2)
    circle(250, y, rand.uniform(1, 2))  # what is no symbol
    arc(250, y + 12, 5, 0, 4)


@MAIN
def draw(argc, argv):
    sheet = int(argv[2])
    host.mdlCurrTrans_begin()
    host.mdlCurrTrans_masterUnitsIdentity()
    frame(f"Pumping station, sheet {sheet} of 3")
    rand = random.Random(sheet)
    for row in range(1, 4):
        branch(sheet, row, rand)
    host.mdlCurrTrans_end()
    return 0


def main(folder):
    os.makedirs(folder, exist_ok=True)
    for sheet in range(1, 4):
        settings = Settings(size=ctypes.sizeof(Settings), yes=1, write=write)
        expect(host.mchost_begin(ctypes.byref(settings)) == 0, "a session")
        name = os.path.join(folder, f"sheet-{sheet}.mcd")
        if os.path.exists(name):
            os.remove(name)
        expect(host.mchost_newDesignFile(name.encode(), 0) == 0, name)
        number = (ctypes.c_char_p * 1)(str(sheet).encode())
        expect(host.mchost_start(b"plant", draw, None, 1, number) == 0, name)
        expect(host.mchost_end() == 0, name)
        print(f"plant.py: made {name}")


main(sys.argv[1] if len(sys.argv) > 1 else ".")
