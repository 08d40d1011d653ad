"""The host held by a script, as session.c does it, without anything to build: python3 session.py [DRAWING [PRINT]].

The libraries are looked for where the dynamic linker looks; MCLIB_LIBRARIES names another folder.
"""
import ctypes
import os
import sys

folder = os.environ.get("MCLIB_LIBRARIES", "")
host = ctypes.CDLL(os.path.join(folder, "libmchost.so"), ctypes.RTLD_GLOBAL)
mclib = ctypes.CDLL(os.path.join(folder, "libmclib.so"))
MAIN = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_int, ctypes.POINTER(ctypes.c_char_p))
WRITE = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int32, ctypes.c_char_p)
host.mchost_lastError.restype = ctypes.c_char_p
for pointer in (host.mdlModelRef_getActive, host.mdlSystem_findMdlDesc):
    pointer.restype = ctypes.c_void_p


class Settings(ctypes.Structure):
    """McHostSettings of mchost/mdl/embed.h."""

    _fields_ = [("size", ctypes.c_size_t), ("answers", ctypes.c_char_p), ("yes", ctypes.c_int32),
                ("ask", ctypes.c_int32), ("answer", ctypes.c_void_p), ("write", WRITE), ("keyIn", ctypes.c_void_p),
                ("data", ctypes.c_void_p)]


class Point3d(ctypes.Structure):
    _fields_ = [("x", ctypes.c_double), ("y", ctypes.c_double), ("z", ctypes.c_double)]


def expect(holds, what):
    if not holds:
        sys.exit(f"session.py: not so: {what}; {host.mchost_lastError().decode()}")


@WRITE
def write(_, kind, text):
    (sys.stderr if kind else sys.stdout).write(text.decode())


def begin():
    settings = Settings(size=ctypes.sizeof(Settings), yes=1, write=write)
    expect(host.mchost_begin(ctypes.byref(settings)) == 0, "a session")


@MAIN
def draw(argc, argv):
    """An application; its file name is argv[2]."""
    if mclib.mclibMain_initMcLib(b"drawing", argc, argv) != 0:
        return 1
    corners = (Point3d * 5)((0, 0, 0), (170, 0, 0), (170, 120, 0), (0, 120, 0), (0, 0, 0))
    page = ctypes.c_void_p()
    buffer = ctypes.c_void_p.in_dll(host, "dgnBufP")
    if mclib.mclibElement_createShape(corners, 5, 0, 0, None) or host.mdlElmdscr_new(ctypes.byref(page), None, buffer):
        return 1
    printed = host.mdlElmdscr_add(page) != 0 and mclib.mclibPrint_fopen(argv[2], 0) == 1
    if printed:
        size = [ctypes.c_double(length) for length in (20, 150, 170, 120)]
        mclib.mclibPrint_printElementDescr(page, *size)
        mclib.mclibPrint_fclose()
        printed = mclib.mclibPrint_jobStatus() == 0
    host.mdlElmdscr_freeAll(ctypes.byref(page))
    return 0 if printed else 1


drawing, output = (sys.argv[1:] + ["session.mcd", "session.ps"][len(sys.argv) - 1:])[:2]

begin()
host.mchost_define(b"JOB", b"4711", 4)
expect(host.mchost_newDesignFile(drawing.encode(), 0) == 0, "a new design file")
expect(host.mchost_start(b"drawing", draw, None, 1, (ctypes.c_char_p * 1)(output.encode())) == 0, "an application")
expect(host.mchost_serve() == 0, "nothing is left to do")
expect(host.mchost_end() == 0, "the application did its work")

begin()
expect(host.mdlSystem_getCfgVar(None, b"JOB", 0) != 0, "no variable of the first session")
expect(host.mdlModelRef_getActive() is None, "no design file of the first session")
expect(host.mdlSystem_findMdlDesc(b"drawing") is None, "no application of the first session")
expect(host.mchost_openDesignFile(drawing.encode()) == 0, "the file that the first one left")
expect(host.mchost_end() == 0, "a second session")
