# Runs a sample window, chooses each language in its menu, and reads what it shows as a screen reader
# would. Then takes a screenshot and closes the window with its button.
#
# Usage: windows_test.py EXECUTABLE TOOLKIT LANGUAGE SCREENSHOT,
#        in a D-Bus session of its own; LANGUAGE is that of the screenshot
import os
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
gi.require_version("GdkPixbuf", "2.0")
from gi.repository import Atspi, GdkPixbuf  # noqa: E402

executable, toolkit, screenshot_language, screenshot = sys.argv[1:]

LANGUAGES = ["English", "Deutsch", "Français", "العربية"]
TITLES = {
    "English": "%s example",
    "Deutsch": "Beispiel für %s",
    "Français": "Exemple pour %s",
    "العربية": "مثال %s",
}
TEXTS = {
    "English": [
        "Language:", "English", "Save your changes?\nThey are lost otherwise.", "Save",
        "Don't save", "Evaluation copy: 30 days left.", "MISSING_KEY"],
    "Deutsch": [
        "Sprache:", "Deutsch", "Änderungen sichern?\nSie gehen sonst verloren.", "Sichern",
        "Nicht sichern", "Testversion: noch 30 Tage.", "MISSING_KEY"],
    "Français": [
        "Langue :", "Français", "Enregistrer les modifications ?\nElles seront perdues sinon.",
        "Enregistrer", "Ne pas enregistrer", "Version d'évaluation : encore 30 jours.",
        "MISSING_KEY"],
    "العربية": [
        "اللغة:", "العربية", "هل تريد حفظ التغييرات؟\nستُفقد إن لم تحفظها.", "حفظ", "عدم الحفظ",
        "نسخة تجريبية: بقي 30 يومًا.", "MISSING_KEY"],
}  # fmt: skip


def within(seconds, read, is_right):
    """What read() answers once it is right, or at the end of the time."""
    deadline = time.monotonic() + seconds
    while not is_right(answer := read()) and time.monotonic() < deadline:
        time.sleep(0.1)
    return answer


def nodes(root):
    """The accessible objects of a window that users can see, in reading order."""
    if root.get_state_set().contains(Atspi.StateType.VISIBLE):
        yield root
        for i in range(root.get_child_count()):
            child = root.get_child_at_index(i)
            if child is not None:
                yield from nodes(child)


def window():
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for i in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(i)
        if application is not None and application.get_child_count() > 0:
            return application.get_child_at_index(0)
    return None


def place(node):
    return node.get_extents(Atspi.CoordType.WINDOW)


def shown():
    """The window's title, and the texts in it."""
    root = window()
    if root is None:
        return None
    # Qt's menu has the name of the chosen language, GTK's has a label with it. GTK's buttons have
    # labels of the same name; an object without a name has that of its type, and "(None)" no width.
    roles = ("label", "push button") + (("combo box",) if toolkit == "Qt 6" else ())
    texts = []
    for node in nodes(root):
        name = node.get_name()
        if node.get_role_name() in roles and not name.startswith("Gtk") and place(node).width > 0:
            if texts[-1:] != [name]:
                texts.append(name)
    return root.get_name(), texts


def find(role):
    return next(node for node in nodes(window()) if node.get_role_name() == role)


def is_right_to_left():
    return place(find("label")).x > place(find("combo box")).x


def expected(language):
    return TITLES[language] % toolkit, TEXTS[language]


def choose(language):
    # On a busy machine, keys may come before the list is open.
    for _ in range(5):
        subprocess.run(["xdotool", "key", "Escape"], check=True)
        menu = find("combo box")
        opener = menu if menu.get_n_actions() > 0 else menu.get_child_at_index(0)
        opener.do_action(0)
        time.sleep(1)
        downs = ["Down"] * LANGUAGES.index(language)
        keys = ["Home", *downs, "space", "Return"]  # GTK selects with the one, closes with the other
        subprocess.run(["xdotool", "key", "--delay", "50", *keys], check=True)
        if within(5, shown, lambda answer: answer == expected(language)) == expected(language):
            break


def check(language):
    found = within(30, shown, lambda answer: answer == expected(language))
    assert found == expected(language), f"{toolkit} shows {found}, not {expected(language)}"
    rtl = language == "العربية"
    found = within(5, is_right_to_left, lambda answer: answer == rtl)
    assert found == rtl, f"{toolkit} shows {language} in the wrong direction"
    print(f"{toolkit}: {language}", flush=True)


def xdotool(command):
    """What it prints; nothing if the window manager has no answer yet."""
    return subprocess.run(["xdotool", command], capture_output=True).stdout.strip()


def take_screenshot():
    # On a busy machine, the menu that closes may leave no window with the focus.
    focus = ["xdotool", "search", "--onlyvisible", "--name", toolkit, "windowactivate", "windowfocus"]
    shoot = ["scrot", "--focused", "--border", "--overwrite", screenshot]

    def status():
        return subprocess.run(focus).returncode or subprocess.run(shoot).returncode

    found = within(30, status, lambda answer: answer == 0)
    assert found == 0, f"no screenshot: status {found}"
    image = GdkPixbuf.Pixbuf.new_from_file(screenshot)
    pixels, width = image.get_pixels(), image.get_n_channels()
    colours = {pixels[i : i + width] for i in range(0, len(pixels), width)}
    assert len(colours) > 16, f"{toolkit}'s window has {len(colours)} colours"


ready, display = os.pipe()
# Without a reset when the last program leaves, during which others can't connect.
server = subprocess.Popen(
    ["Xvfb", "-noreset", "-screen", "0", "640x480x24", "-displayfd", str(display)],
    pass_fds=[display])
os.close(display)
os.environ["DISPLAY"] = ":" + os.fdopen(ready).readline().strip()
started = [server]
try:
    started.append(subprocess.Popen(["openbox"]))
    assert within(30, lambda: xdotool("get_num_desktops"), bool), "openbox does not answer"
    subprocess.run(["xdotool", "mousemove", "0", "0"], check=True)
    process = subprocess.Popen([executable], env={**os.environ, "LANGUAGE": "de_AT:fr"})
    started.append(process)
    check("Deutsch")
    # The last one was shown before.
    for language in ["English", "Français", "العربية", "Deutsch"]:
        choose(language)
        check(language)
        if language == screenshot_language:
            take_screenshot()
    next(node for node in nodes(window()) if node.get_name() == "Sichern").do_action(0)
    assert process.wait(30) == 0, f"{toolkit}'s window ended with {process.returncode}"
finally:
    for process in reversed(started):
        process.kill()
