#!/usr/bin/python3
"""Lets HTML Tidy, libxml2 and Chromium read reports.

Usage: judge_report.py SCRATCH REPORT...

Each report must be sound HTML without an address of any other place and below 500 kB; each of its pictures sound XML
with a title and a description; and in the browser, from the width of a telephone to that of a wide screen, in light
and in dark, it must be neither blank nor wider than the window, and say nothing in the console. Spoilt copies of the
first report must be rejected. Screenshots stay in SCRATCH.
"""
import re
import subprocess
import sys
from pathlib import Path

from PIL import Image

SCRATCH = Path(sys.argv[1]).resolve()
WIDTHS = (390, 768, 1280, 1600)
SVG = re.compile(r"<svg\b.*?</svg>", re.DOTALL)


class Rejected(Exception):
    """A judge's verdict."""


def require(good, why):
    if not good:
        raise Rejected(why)


def run(*command, text=None):
    return subprocess.run([str(word) for word in command], input=text, capture_output=True, text=True, timeout=120)


def tidy(page):
    said = run("tidy", "-quiet", "-errors", text=page).stderr.strip()
    require(not said, f"tidy: {said[:300]}")


def pictures(page):
    found = SVG.findall(page)
    require(len(found) >= 10, f"{len(found)} pictures only")
    for picture in found:
        name = re.search(r'id="([^"]*)"', picture)
        said = run("xmllint", "--noout", "--nonet", "-", text=picture).stderr.strip()
        require(not said, f"xmllint on {name and name[1]}: {said[:300]}")
        require("<title>" in picture and "<desc>" in picture, f"{name and name[1]} has no title or description")


def addresses(page):
    require(len(page.encode()) < 500_000, f"{len(page.encode())} bytes")
    without_names = page.replace("http://www.w3.org/2000/svg", "")
    outside = re.search(r"(?i)https?:|\b(src|srcset|action|data)=|url\(|@import|<(script|link|iframe|object|embed|base)\b",
                        without_names)
    require(outside is None, f"refers to something else: {outside and outside[0]}")


def chromium(*arguments):
    return run("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--enable-logging=stderr",
               *arguments)


def browser(page, name):
    folder = SCRATCH / name
    folder.mkdir(parents=True, exist_ok=True)
    # A window of the browser may refuse to be narrow; a frame does not.
    framed = folder / "framed.html"
    (folder / "page.html").write_text(page, encoding="utf-8")
    frames = "".join(f'<iframe src="page.html" data-width="{width}" style="width:{width}px;height:600px;border:0">'
                     "</iframe>" for width in WIDTHS)
    framed.write_text(f"""<!DOCTYPE html><title></title>{frames}<script>
      addEventListener("load", () => {{
        document.title = [...document.querySelectorAll("iframe")].map(f =>
          f.dataset.width + ":" + f.contentDocument.documentElement.scrollWidth).join(" ");
      }});</script>""", encoding="utf-8")
    shown = chromium("--allow-file-access-from-files", "--virtual-time-budget=3000", "--dump-dom", framed.as_uri())
    require("CONSOLE" not in shown.stderr, f"the console says {shown.stderr[-300:]}")
    title = re.search(r"<title>([^<]+)</title>", shown.stdout)
    require(title, "the browser did not show the page")
    for pair in title[1].split():
        width, needed = map(int, pair.split(":"))
        require(needed <= width, f"{needed} pixels wide in a window of {width}")

    inks = []
    for width, dark in ((390, False), (1280, False), (1280, True)):
        picture = folder / f"{width}{'-dark' if dark else ''}.png"
        chromium(f"--window-size={width},2000", *(["--blink-settings=preferredColorScheme=0"] if dark else []),
                 f"--screenshot={picture}", (folder / "page.html").as_uri())
        require(picture.exists(), "no screenshot")
        with Image.open(picture) as image:
            gray = image.convert("L")
        histogram = gray.histogram()
        paper = max(range(256), key=histogram.__getitem__)
        ink = 1 - sum(histogram[max(0, paper - 24):paper + 25]) / sum(histogram)
        require(0.005 < ink < 0.5, f"{picture.name}: {100 * ink:.1f} % of it is not paper")
        require((paper < 96) == dark, f"{picture.name}: paper of brightness {paper}")
        inks.append(f"{100 * ink:.0f} %")
    return inks


def judge(page, name):
    tidy(page)
    addresses(page)
    pictures(page)
    return browser(page, name)


MISTAKES = {
    "cut short": lambda p: p[:len(p) // 2],
    "an unknown attribute": lambda p: p.replace("<table", '<table colour="red"', 1),
    "a picture that is no XML": lambda p: p.replace("</title>", "& </title>", 2),
    "a picture without description": lambda p: re.sub("<desc>.*?</desc>", "", p, count=1),
    "an address": lambda p: p.replace("<main", '<img alt="" src="http://example.org/x.png"><main', 1),
    "something too wide": lambda p: p.replace("</h1>", '</h1><div style="width:500px">m</div>', 1),
    "nothing to see": lambda p: p.replace("<body", '<body style="visibility:hidden"', 1),
}

reports = [Path(name) for name in sys.argv[2:]]
for report in reports:
    try:
        ink = judge(report.read_text(encoding="utf-8"), report.parent.name)
    except Rejected as why:
        sys.exit(f"{report}: {why}")
    print(f"  {report.parent.name}/{report.name}: {report.stat().st_size // 1000} kB, ink {', '.join(ink)}")

page = reports[0].read_text(encoding="utf-8")
for mistake, spoil in MISTAKES.items():
    spoilt = spoil(page)
    assert spoilt != page, mistake
    try:
        judge(spoilt, "spoilt")
    except Rejected as why:
        print(f"  {mistake}: {why}".splitlines()[0][:118])
        continue
    sys.exit(f"a report with {mistake} passed")
