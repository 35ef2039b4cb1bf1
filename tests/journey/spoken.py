"""What a screen reader gets of the running editor: walks the accessibility tree, works in it, and listens.

spoken.py: run with the editor open on a picture, below a session bus; prints what is wrong and ends with 1, or nothing.
"""
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

faults = []
heard = []


def expect(condition, text):
    if not condition:
        faults.append(text)


def editor():
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application and application.get_name() == "Pictorel":
            return application
    sys.exit("no editor in the tree")


def nodes(node):
    yield node
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child:
            yield from nodes(child)


def find(role, name):
    for node in nodes(editor()):
        if node.get_role_name() == role and node.get_name() == name:
            return node
    faults.append(f"no {role} named {name!r}")
    return None


def has(node, state):
    return node is not None and node.get_state_set().contains(state)


def listen(seconds=1.0):
    until = time.monotonic() + seconds
    while time.monotonic() < until:
        GLib.MainContext.default().iteration(False)
        time.sleep(0.005)


def check_tree():
    roles = set()
    for node in nodes(editor()):
        role = node.get_role_name()
        if not has(node, Atspi.StateType.SHOWING):
            continue
        roles.add(role)
        if role in ("push button", "slider", "spin button", "check box", "radio button", "combo box", "text", "image",
                    "frame", "page tab", "page tab list", "scroll bar", "progress bar", "tree"):
            expect(node.get_name().strip(), f"a {role} without a name")
        if has(node, Atspi.StateType.FOCUSABLE) and role == "filler":
            faults.append(f"{node.get_name()!r} takes the focus and has no role")
    for role in ("frame", "image", "slider", "push button", "page tab", "tree", "table cell", "scroll bar"):
        expect(role in roles, f"no {role} is showing")
    for name in ("Brightness", "Contrast"):
        for node in nodes(editor()):
            if node.get_role_name() == "push button" and node.get_name() == name:
                faults.append(f"the icon of {name} is taken for a button")


def value_of(name):
    slider = find("slider", name)
    return None if slider is None else Atspi.Value.get_current_value(slider)


def check_values():
    expect(value_of("Contrast") == 1.0, f"Contrast says {value_of('Contrast')} and shows 1.00")
    expect(value_of("Colorize (B)") == 255, "Colorize (B) does not say 255")
    lock = find("check box", "Lock proportions")
    expect(has(lock, Atspi.StateType.CHECKED), "the lock does not say that it is on")
    find("slider", "Sharpen / Blur")
    spinner = find("spin button", "Step the percentage")
    expect(spinner is not None and Atspi.Value.get_maximum_value(spinner) > 100, "the spinner has no range")


def check_held_preview():
    place = Atspi.Component.get_extents(find("slider", "Saturation"), Atspi.CoordType.SCREEN)
    middle = [str(place.x + place.width // 2), str(place.y + place.height // 2 - 2)]
    heard.clear()
    subprocess.run(["xdotool", "mousemove", *middle, "mousedown", "1"], check=True)
    listen()
    expect("Saturation, preview" in heard, f"the held preview is not announced: {heard}")
    find("frame", "Saturation")
    subprocess.run(["xdotool", "key", "Escape", "mouseup", "1"], check=True)
    listen()
    expect("Saturation, given up" in heard, f"a slider given up is not announced: {heard}")


def check_edits():
    find("table cell", "Open, active")
    button = find("push button", "Invert")
    Atspi.Action.do_action(button, 0)
    listen()
    find("table cell", "Invert, active")
    expect(any("Invert, state 2 of 2" in text for text in heard), f"the end of an edit is not announced: {heard}")
    slider = find("slider", "Contrast")
    heard.clear()
    Atspi.Value.set_current_value(slider, 1.25)
    listen(1.5)
    expect(value_of("Contrast") == 1.25, "Contrast was not set")
    find("table cell", "Contrast, active")
    check_held_preview()
    undo = find("push button", "Undo")
    Atspi.Action.do_action(undo, 0)
    listen()
    find("table cell", "Contrast, can be redone")
    find("table cell", "Invert, active")
    find("table cell", "Open")
    expect(has(find("push button", "Redo"), Atspi.StateType.ENABLED), "Redo does not say that it can be used")


def hear(event):
    try:
        if event.source and event.source.get_role_name() == "notification":
            heard.append(event.source.get_name())
    except GLib.Error:
        pass  # the control that the event is about is gone


listener = Atspi.EventListener.new(hear)
listener.register("object:property-change:accessible-name")
check_tree()
check_values()
check_edits()
for fault in faults:
    print(fault)
sys.exit(1 if faults else 0)
