# SPDX-License-Identifier: GPL-3.0-or-later
"""What a screen shows, and who has windows on it: the X library through ctypes, with a connection of its own."""

import ctypes
import functools
import struct

Window, Atom, ulong, c_int, c_uint = ctypes.c_ulong, ctypes.c_ulong, ctypes.c_ulong, ctypes.c_int, ctypes.c_uint
Pointer, byref = ctypes.c_void_p, ctypes.byref

Z_PIXMAP, ALL_PLANES, CLIENT_MESSAGE, IS_VIEWABLE, ANY_PROPERTY_TYPE = 2, 0xffffffff, 33, 2, 0


class XImage(ctypes.Structure):
    """The head of the library's own structure, as far as it is read here."""
    _fields_ = [("width", c_int), ("height", c_int), ("xoffset", c_int), ("format", c_int), ("data", Pointer),
                ("byte_order", c_int), ("bitmap_unit", c_int), ("bitmap_bit_order", c_int), ("bitmap_pad", c_int),
                ("depth", c_int), ("bytes_per_line", c_int), ("bits_per_pixel", c_int)]


class XWindowAttributes(ctypes.Structure):
    _fields_ = [("x", c_int), ("y", c_int), ("width", c_int), ("height", c_int), ("border_width", c_int),
                ("depth", c_int), ("visual", Pointer), ("root", Window), ("window_class", c_int),
                ("bit_gravity", c_int), ("win_gravity", c_int), ("backing_store", c_int), ("backing_planes", ulong),
                ("backing_pixel", ulong), ("save_under", c_int), ("colormap", ulong), ("map_installed", c_int),
                ("map_state", c_int), ("all_event_masks", ctypes.c_long), ("your_event_mask", ctypes.c_long),
                ("do_not_propagate_mask", ctypes.c_long), ("override_redirect", c_int), ("screen", Pointer)]


class XClientMessageEvent(ctypes.Structure):
    _fields_ = [("type", c_int), ("serial", ulong), ("send_event", c_int), ("display", Pointer), ("window", Window),
                ("message_type", Atom), ("format", c_int), ("data", ctypes.c_long * 5), ("room", ctypes.c_long * 24)]


@functools.lru_cache(maxsize=None)
def x_library():
    library = ctypes.CDLL("libX11.so.6")
    results = {"XOpenDisplay": Pointer, "XDefaultRootWindow": Window, "XGetImage": ctypes.POINTER(XImage),
               "XInternAtom": Atom}
    for name in ("XOpenDisplay", "XDefaultRootWindow", "XGetImage", "XInternAtom", "XDestroyImage", "XCloseDisplay",
                 "XQueryTree", "XGetWindowAttributes", "XTranslateCoordinates", "XGetWindowProperty", "XFree",
                 "XSendEvent", "XSync", "XSetErrorHandler"):
        function = getattr(library, name)
        function.restype = results.get(name, c_int)
    # A window may go between being listed and being asked. The library would end the tests for it.
    library.quiet = ctypes.CFUNCTYPE(c_int, Pointer, Pointer)(lambda _display, _error: 0)
    library.XSetErrorHandler(library.quiet)
    return library


class Picture:
    """A rectangle of the screen. Pixels are numbers of the form 0xrrggbb, asked for by their place on the screen."""

    def __init__(self, x, y, width, height, rows):
        self.x, self.y, self.width, self.height, self.rows = x, y, width, height, rows

    def at(self, x, y):
        return self.rows[y - self.y][x - self.x]

    def where(self, colour):
        """All places that have exactly that colour."""
        return [(self.x + i, self.y + j) for j, row in enumerate(self.rows) for i, pixel in enumerate(row)
                if pixel == colour]

    def count(self, accepts):
        return sum(1 for row in self.rows for pixel in row if accepts(pixel))

    def __eq__(self, other):
        return self.rows == other.rows

    def is_like(self, other):
        """The same but for rounding: a scaled picture that is painted in parts may differ by a shade at their seams."""
        return all(abs((one >> shift & 255) - (two >> shift & 255)) <= 3 for row, others in zip(self.rows, other.rows)
                   if row != others for one, two in zip(row, others) for shift in (0, 8, 16))


class Screen:
    def __init__(self, environment):
        self.x = x_library()
        self.display = Pointer(self.x.XOpenDisplay(environment["DISPLAY"].encode()))
        if not self.display:
            raise RuntimeError("no connection to " + environment["DISPLAY"])
        self.root = Window(self.x.XDefaultRootWindow(self.display))

    def close(self):
        self.x.XCloseDisplay(self.display)

    def picture(self, x, y, width, height):
        image = self.x.XGetImage(self.display, self.root, c_int(x), c_int(y), c_uint(width), c_uint(height),
                                 ulong(ALL_PLANES), c_int(Z_PIXMAP))
        if not image:
            raise RuntimeError(f"no picture of {width}x{height} at {x}, {y}")
        content = image.contents
        assert content.bits_per_pixel == 32 and content.byte_order == 0, "a screen of 24 bits, low byte first"
        data, stride = ctypes.string_at(content.data, content.bytes_per_line * height), content.bytes_per_line
        self.x.XDestroyImage(image)
        # The top byte is padding of any content.
        rows = [[pixel & 0xffffff for pixel in struct.unpack_from(f"<{width}I", data, j * stride)]
                for j in range(height)]
        return Picture(x, y, width, height, rows)

    def pixel(self, x, y):
        return self.picture(x, y, 1, 1).at(x, y)

    def windows_of(self, process):
        """A process's visible windows, those on top first: (id, x, y, width, height)."""
        return [found for found in self._windows_in(self.root) if self._process_of(found[0]) == process]

    def _windows_in(self, window):
        """All visible windows in it and in these: a window manager wraps each one into a window of its own."""
        root, parent, children, number = Window(), Window(), ctypes.POINTER(Window)(), c_uint()
        if not self.x.XQueryTree(self.display, window, byref(root), byref(parent), byref(children), byref(number)):
            return
        inner = [Window(children[i]) for i in range(number.value)]
        if number.value:
            self.x.XFree(children)
        for child in reversed(inner):
            attributes, x, y, below = XWindowAttributes(), c_int(), c_int(), Window()
            if (self.x.XGetWindowAttributes(self.display, child, byref(attributes))
                    and attributes.map_state == IS_VIEWABLE
                    and self.x.XTranslateCoordinates(self.display, child, self.root, c_int(0), c_int(0), byref(x),
                                                     byref(y), byref(below))):
                yield child.value, x.value, y.value, attributes.width, attributes.height
                yield from self._windows_in(child)

    def _process_of(self, window):
        """What the window says of itself in _NET_WM_PID, or None."""
        name = Atom(self.x.XInternAtom(self.display, b"_NET_WM_PID", c_int(0)))
        kind, bits, number, left, data = Atom(), c_int(), ulong(), ulong(), ctypes.POINTER(ulong)()
        self.x.XGetWindowProperty(self.display, Window(window), name, ctypes.c_long(0), ctypes.c_long(1), c_int(0),
                                  Atom(ANY_PROPERTY_TYPE), byref(kind), byref(bits), byref(number), byref(left),
                                  byref(data))
        if not number.value:
            return None
        process = data[0]
        self.x.XFree(data)
        return process

    def introduce_window_managers(self):
        """Makes the words in which window managers speak known to the server, as the first of them to run does.
        A program that starts before does not understand them."""
        for word in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW"):
            self.x.XInternAtom(self.display, word, c_int(0))

    def ask_to_close(self, window):
        """What a window manager sends when its close button is clicked."""
        self.send(window, b"WM_PROTOCOLS", self.x.XInternAtom(self.display, b"WM_DELETE_WINDOW", c_int(0)))

    def nudge(self, window):
        """An event that means nothing to anybody."""
        self.send(window, b"CORVANE_TESTS_NUDGE", 0)

    def send(self, window, kind, value):
        event = XClientMessageEvent(type=CLIENT_MESSAGE, window=window, format=32,
                                    message_type=self.x.XInternAtom(self.display, kind, c_int(0)))
        event.data[0] = value
        self.x.XSendEvent(self.display, Window(window), c_int(0), ctypes.c_long(0), byref(event))
        self.x.XSync(self.display, c_int(0))
