"""A program that is not Notlet: a window which writes the letters typed into it to the file given to it."""
import sys

from Xlib import XK, X, Xutil, display

screen = display.Display()
window = screen.screen().root.create_window(60, 440, 320, 200, 0, X.CopyFromParent, X.InputOutput,
                                            background_pixel=screen.screen().white_pixel,
                                            event_mask=X.KeyPressMask)
window.set_wm_name("Other program")
window.set_wm_hints(flags=Xutil.InputHint, input=1)
window.set_wm_normal_hints(flags=Xutil.USPosition | Xutil.USSize, x=60, y=440, width=320, height=200)
window.map()
with open(sys.argv[1], "a", buffering=1) as typed:
    while True:
        event = screen.next_event()
        if event.type == X.KeyPress:
            typed.write(XK.keysym_to_string(screen.keycode_to_keysym(event.detail, event.state & X.ShiftMask)) or "")
            typed.flush()
