#!/usr/bin/env python3
"""Writes the tables and plots of docs/automation.md.

Runs the control loops on simulated cameras (build/release/bench/automation/
automation_loops) and replaces what stands between the page's markers; the plots go
to docs/images/automation-LAW.svg. Give the program's path as argument to use
another build.
"""
import csv
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/release/bench/automation/automation_loops"
PAGE = ROOT / "docs/automation.md"

SCENES = {"scene=chart;light=0.15": "dark", "scene=chart;light=1": "mixed",
          "scene=chart;light=6": "bright"}
LAWS = {"bisection": "Bisection: a bright chart, target 50 % (127)",
        "proportional": "Proportional law: a dark chart, target 50 % (127.5)",
        "older-balance": "White balance, older law: a chart in daylight",
        "newer-balance": "White balance, newer law: a bright chart in tungsten light"}
TARGET_BANDS = {"bisection": (122, 132), "proportional": (124, 131)}
CHANNELS = (("red", 3, "#c0392b"), ("green 1", 4, "#27ae60"), ("green 2", 5, "#16a085"),
            ("blue", 6, "#2962b0"))


def scene_name(scene):
    return SCENES.get(scene.replace(",", ";"), scene)


def exposure_tables(rows):
    """One table by scene and target, one by kind of camera, for each law."""
    text = []
    for generation, law in (("1", "Bisection (first generation)"),
                            ("2", "Proportional law (second generation)")):
        mine = [row for row in rows if row[1] == generation]
        swept = [row for row in mine if row[6] != "40"]
        percents = sorted({int(row[6]) for row in swept})
        text.append(f"**{law}**, colour, 8 bits, whole frame: changes of the exposure, and the "
                    "level it ended at.\n")
        text.append("| scene | " + " | ".join(f"{p} %" for p in percents) + " |")
        text.append("|---|" + "---|" * len(percents))
        for scene in dict.fromkeys(row[5] for row in swept):
            cells = {int(r[6]): f"{r[8]}, {r[9]}" + (f" (status {r[7]})" if r[7] != "0" else "")
                     for r in swept if r[5] == scene}
            text.append(f"| {scene_name(scene)} | " + " | ".join(cells[p] for p in percents) + " |")
        text.append("")
        text.append("The bright scene at 40 % (level 102) for each kind of camera:\n")
        text.append("| imager | bits | area | changes | level | exposure |")
        text.append("|---|---|---|---|---|---|")
        for row in mine:
            if row[6] == "40":
                text.append(f"| {row[2]} | {row[3]} | {row[4]} | {row[8]} | {row[9]} | "
                            f"{float(row[10]):.2f} ms |")
        text.append("")
    return "\n".join(text)


def balance_table(rows):
    text = ["| law | light | bits | area | status | gain changes | levels before (R G G B) | "
            "levels after | gain codes (R G B) |", "|---|---|---|---|---|---|---|---|---|"]
    for row in rows:
        law = "older" if row[1] == "1" else "newer"
        light = re.search(r"tint=([\w.:]+)", row[5]).group(1)
        text.append(f"| {law} | {light} | {row[3]} | {row[4]} | {row[6]} | {row[7]} | "
                    f"{' '.join(row[8:12])} | {' '.join(row[12:16])} | {' '.join(row[16:19])} |")
    return "\n".join(text) + "\n"


def plot(law, rows):
    """Levels over passes: one line for each kind of site."""
    width, height, left, bottom, top = 640, 320, 48, 40, 36
    passes = len(rows)

    def x(i):
        return left + 20 + i * (width - left - 130) / max(passes - 1, 1)

    def y(level):
        return height - bottom - level * (height - bottom - top) / 255

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
           'font-family="sans-serif" font-size="12">',
           f'<rect width="{width}" height="{height}" fill="white"/>',
           f'<text x="{left}" y="20" font-size="14">{LAWS[law]}</text>']
    if law in TARGET_BANDS:
        low, high = TARGET_BANDS[law]
        out.append(f'<rect x="{left}" y="{y(high):.1f}" width="{width - left - 100}" '
                   f'height="{y(low) - y(high):.1f}" fill="#f4e3b2"/>')
    for level in (0, 64, 128, 192, 255):
        out.append(f'<line x1="{left}" y1="{y(level):.1f}" x2="{width - 100}" y2="{y(level):.1f}" '
                   'stroke="#ddd"/>')
        out.append(f'<text x="{left - 6}" y="{y(level) + 4:.1f}" text-anchor="end">{level}</text>')
    for i in range(passes):
        out.append(f'<text x="{x(i):.1f}" y="{height - bottom + 18}" '
                   f'text-anchor="middle">{i}</text>')
    out.append(f'<text x="{(left + width - 100) / 2}" y="{height - 6}" text-anchor="middle">'
               'settings changed so far</text>')
    for n, (name, column, colour) in enumerate(CHANNELS):
        points = [(x(i), y(float(row[column]))) for i, row in enumerate(rows)]
        path = " ".join(f"{px:.1f},{py:.1f}" for px, py in points)
        out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
        out += [f'<circle cx="{px:.1f}" cy="{py:.1f}" r="3" fill="{colour}"/>' for px, py in points]
        out.append(f'<text x="{width - 88}" y="{top + 20 + 18 * n}" fill="{colour}">{name}</text>')
    out.append("</svg>\n")
    (ROOT / f"docs/images/automation-{law}.svg").write_text("\n".join(out))


def replace(page, marker, text):
    begin, end = f"<!-- {marker}: begin -->", f"<!-- {marker}: end -->"
    head, rest = page.split(begin)
    return head + begin + "\n" + text + end + rest.split(end)[1]


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else PROGRAM
    lines = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    rows = list(csv.reader(lines.splitlines()))
    page = PAGE.read_text()
    page = replace(page, "exposure", exposure_tables([r for r in rows if r[0] == "exposure"]))
    page = replace(page, "balance", balance_table([r for r in rows if r[0] == "balance"]))
    PAGE.write_text(page)
    for law in LAWS:
        plot(law, [r for r in rows if r[0] == "plot" and r[1] == law])


if __name__ == "__main__":
    main()
