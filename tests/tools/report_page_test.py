#!/usr/bin/python3
"""The page that `orva-strings report` writes, in a browser without a screen: at a desk's and a phone's
width, in light and dark, by keyboard, without a network, and made from a hostile file.

Usage: report_page_test.py ORVA_STRINGS [PICTURE]

Writes a picture of the page, as docs/images has it, if a name is given. Ends with 77 if the browser
is missing: scripts/setup page installs it.
"""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
except ImportError:
    print("skipped: selenium is missing; scripts/setup page installs it")
    sys.exit(77)
if not (shutil.which("chromium") and shutil.which("chromedriver")):
    print("skipped: Chromium or ChromeDriver is missing; scripts/setup page installs them")
    sys.exit(77)

TOOL = str(Path(sys.argv[1]).resolve())
FAULTS = []
COUNT = 0

SAMPLE = """QVLANG=English
MENU_OPEN="Open…"
MENU_SAVE="Save"
MENU_QUIT="Quit"
DIALOG_DELETE="Delete %d files?\\nThis can't be undone."
ERROR_DISK_FULL="The disk is full."
STATUS_READY="Ready"
IDE_TITLE="top secret"
QVLANG=Deutsch
MENU_OPEN="Öffnen…"
MENU_SAVE="Sichern"
MENU_QUIT="Beenden"
DIALOG_DELETE="%d Dateien löschen?\\nDas lässt sich nicht widerrufen."
ERROR_DISK_FULL="Die Platte ist voll."
STATUS_READY="Bereit"
IDE_TITLE="top secret"
QVLANG=Français
MENU_OPEN="Ouvrir…"
MENU_QUIT=""
DIALOG_DELETE="Supprimer %s fichiers ?"
ERROR_DISK_FULL="Le disque est plein."
QVLANG=العربية
MENU_OPEN="فتح…"
MENU_QUIT="إنهاء"
IDE_TITLE="top secret"
"""
EARLIER = SAMPLE.replace('"The disk is full."', '"Disk full."')
ATTACK = "<img src=x onerror=window.hit=1><script>window.hit=1</script>\"'><svg onload=window.hit=1>"
LONG = "A_KEY_WITHOUT_A_PLACE_TO_BREAK" * 8
HOSTILE = (f"QVLANG={ATTACK}\n{ATTACK.replace('=', '-')}=1\nAAAA={ATTACK}\n{LONG}=1\nBBBB=%d\n"
           + "".join(f"QVLANG={i}{ATTACK}\nAAAA={ATTACK}</td></table>\nBBBB=%s{LONG}\n"
                     for i in range(12)))

# Colours as the browser has computed them, and the contrast of each text with what is behind it.
CONTRASTS = """
const parse = (color) => color.match(/[\\d.]+/g).map(Number);
const luminance = ([r, g, b]) => [r, g, b].map((c) => c / 255)
    .map((c) => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
    .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
const behind = (element) => {
    for (let e = element; e; e = e.parentElement) {
        const color = parse(getComputedStyle(e).backgroundColor);
        if (color.length < 4 || color[3] > 0) return color;
    }
    return [255, 0, 255];
};
return [...document.querySelectorAll("main *, h1")]
    .filter((e) => [...e.childNodes].some((n) => n.nodeType === 3 && n.data.trim()))
    .filter((e) => e.checkVisibility() && !e.closest("select"))
    .map((e) => {
        const both = [luminance(parse(getComputedStyle(e).color)), luminance(behind(e))];
        return [e.className || e.tagName, (Math.max(...both) + 0.05) / (Math.min(...both) + 0.05)];
    });
"""


def expect(holds, fault):
    global COUNT
    COUNT += 1
    if not holds:
        FAULTS.append(fault)


def start():
    options = webdriver.ChromeOptions()
    # As root, as in a container, the browser can't make its sandbox.
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                     "--hide-scrollbars", "--lang=en"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(options=options, service=Service(shutil.which("chromedriver")))


def resize(browser, width, dark):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 500})
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
        {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})


def check_looks(browser, what):
    """The page fits each width, and can be read in light and dark."""
    backgrounds = set()
    for width in (320, 390, 1280):
        for dark in (False, True):
            resize(browser, width, dark)
            name = f"{what}, {width} wide, {'dark' if dark else 'light'}"
            scroll = browser.execute_script("return document.documentElement.scrollWidth")
            expect(scroll <= width, f"{name}: the page is {scroll} wide")
            contrasts = browser.execute_script(CONTRASTS)
            expect(len(contrasts) > 20, f"{name}: only {len(contrasts)} texts are shown")
            for element, contrast in contrasts:
                expect(contrast >= 4.5, f"{name}: {element} has a contrast of {contrast:.1f}")
            backgrounds.add(browser.execute_script(
                "return getComputedStyle(document.body).backgroundColor"))
    expect(len(backgrounds) == 2, f"{what}: light and dark have the backgrounds {backgrounds}")


def press(browser, *keys):
    browser.switch_to.active_element.send_keys(*keys)


def check_keyboard(browser):
    """By keyboard alone: the matrix can be scrolled to, findings filtered, texts opened."""
    resize(browser, 1280, False)
    reached = []
    browser.execute_script("document.activeElement.blur()")
    browser.find_element(By.TAG_NAME, "body").send_keys(Keys.TAB)
    for _ in range(40):
        element = browser.switch_to.active_element
        if element.tag_name == "body":
            break
        reached.append(element.get_attribute("class") or element.tag_name)
        outline = element.value_of_css_property("outline-style")
        expect(outline == "solid", f"{reached[-1]}: focus does not show ({outline})")
        if element.tag_name == "select":
            expect(not element.get_attribute("aria-hidden"), "the filter is hidden")
            groups = browser.find_elements(By.CSS_SELECTOR, "details[data-rule]")
            before = [group.is_displayed() for group in groups]
            expect(len(groups) > 2 and all(before), f"groups of findings before: {before}")
            press(browser, Keys.ARROW_DOWN)
            after = [group.is_displayed() for group in groups]
            expect(after == [True] + [False] * (len(groups) - 1), f"after one rule: {after}")
            shown = browser.find_element(By.TAG_NAME, "output").text
            items = groups[0].find_elements(By.TAG_NAME, "li")
            total = len(browser.find_elements(By.CSS_SELECTOR, ".findings li"))
            expect(shown == f"{len(items)} of {total} shown", f"the filter says: {shown}")
            press(browser, Keys.HOME)
            after = [group.is_displayed() for group in groups]
            expect(all(after), f"after all rules: {after}")
        if element.tag_name == "summary" and element.text == "Français":
            table = element.find_element(By.XPATH, "../table")
            expect(not table.is_displayed(), "the texts are open at first")
            press(browser, Keys.ENTER)
            expect(table.is_displayed(), "Enter does not open the texts")
            expect("Ouvrir…" in table.text and "line 18" in table.text, "a text or its line lacks")
        press(browser, Keys.TAB)
    for wanted in ("scroll", "select", "summary"):
        expect(wanted in reached, f"the tab key never reaches {wanted}: {reached}")


def check_network(browser, what):
    """Nothing is loaded, and no data runs as a script."""
    expect(browser.execute_script("return window.hit") is None, f"{what}: data has run")
    expect(len(browser.find_elements(By.TAG_NAME, "img")) == 0, f"{what}: data made an image")
    count = len(browser.find_elements(By.TAG_NAME, "script"))
    expect(count == 1, f"{what}: {count} scripts")
    messages = [entry["message"] for entry in browser.get_log("browser")]
    expect(not messages, f"{what}: the console says {messages}")
    requests = [entry["message"] for entry in browser.get_log("performance")
                if '"Network.requestWillBeSent"' in entry["message"]]
    others = [request for request in requests if "page.html" not in request]
    expect(requests and not others, f"{what}: requests {others}")
    # Even if an escape were forgotten, the policy would stop it.
    browser.execute_script("""
        const script = document.createElement("script");
        script.textContent = "window.hit = 1";
        document.body.append(script);
        document.body.insertAdjacentHTML("beforeend", "<a onclick='window.hit = 1'>x</a>");
        document.body.lastElementChild.click();
        script.remove();
        document.body.lastElementChild.remove();""")
    expect(browser.execute_script("return window.hit") is None, f"{what}: the policy allows scripts")
    expect(browser.get_log("browser"), f"{what}: the policy says nothing")


def open_page(browser, folder, text, *options):
    source = folder / "Sample.strings"
    source.write_text(text)
    page = folder / "page.html"
    subprocess.run([TOOL, "report", *options, "-o", page, "Sample.strings"], check=True, cwd=folder,
                   stderr=subprocess.DEVNULL)
    expect("top secret" not in page.read_text(), "a protected text is on the page")
    browser.get(page.as_uri())


with tempfile.TemporaryDirectory() as name:
    work = Path(name)
    (work / "earlier").write_text(EARLIER)
    driver = start()
    try:
        open_page(driver, work, SAMPLE, "--base", "earlier")
        if len(sys.argv) > 2:
            resize(driver, 1000, False)
            driver.save_screenshot(sys.argv[2])
        check_network(driver, "sample")
        check_keyboard(driver)
        driver.execute_script("document.querySelectorAll('details').forEach((e) => e.open = true)")
        check_looks(driver, "sample")
        open_page(driver, work, HOSTILE)
        check_network(driver, "hostile")
        driver.execute_script("document.querySelectorAll('details').forEach((e) => e.open = true)")
        check_looks(driver, "hostile")
        first = driver.find_element(By.CSS_SELECTOR, ".languages .name").text
        expect(first == ATTACK, f"a name reads {first}")
    finally:
        driver.quit()

print(f"{COUNT} expectations")
print(*FAULTS, sep="\n")
sys.exit(1 if FAULTS else 0)
