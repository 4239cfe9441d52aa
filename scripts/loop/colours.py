#!/usr/bin/python3
"""The part of the closed loop that stands between other people's programs.

Usage: colours.py correct CHART.ti1 CORRECTION.clf CORRECTED.ti1
       colours.py spoil CORRECTION.clf SPOILT.clf
       colours.py target CHART.ti1 JOB.json GAMUT WHITE CURVE BLACK TARGET.ti3

correct: OpenColorIO applies a correction to the drives of a chart. spoil: the correction with its matrix transposed,
or, where it has none, with red and blue exchanged. target: the XYZ that the chart should have, from published
chromaticities and curves alone; nothing but the luminance of full white is taken from the job's record. GAMUT names
primaries, WHITE is x,y, CURVE an exponent or "srgb", BLACK the X,Y,Z that the display shows at no drive and adds to
every colour.
"""
import json
import sys
import xml.etree.ElementTree as xml

GAMUTS = {  # x, y of red, green, blue: IEC 61966-2-1, SMPTE EG 432-1, Adobe RGB (1998), ITU-R BT.2020
    "srgb": ((0.64, 0.33), (0.30, 0.60), (0.15, 0.06)),
    "display-p3": ((0.68, 0.32), (0.265, 0.69), (0.15, 0.06)),
    "adobe-rgb": ((0.64, 0.33), (0.21, 0.71), (0.15, 0.06)),
    "bt2020": ((0.708, 0.292), (0.17, 0.797), (0.131, 0.046)),
}


def chart(name):
    """The identifiers and the drives, 0 to 1, of a .ti1 or .ti3."""
    rows, fields, part = [], [], ""
    for line in open(name, encoding="latin-1"):
        words = line.split()
        if line.startswith(("BEGIN_DATA", "END_DATA")):
            part = words[0]
            if part == "END_DATA":
                break
        elif part == "BEGIN_DATA_FORMAT":
            fields = words
        elif part == "BEGIN_DATA" and words:
            row = dict(zip(fields, words))
            rows.append((row["SAMPLE_ID"], [float(row["RGB_" + c]) / 100 for c in "RGB"]))
    return rows


def write(name, kind, described, rows):
    """A .ti1 or .ti3 with rows of identifier, drives 0 to 1, XYZ."""
    with open(name, "w", encoding="ascii") as out:
        print(f'{kind}\n\nDESCRIPTOR "{described}"\nORIGINATOR "colours.py"\nCREATED "today"\nDEVICE_CLASS "DISPLAY"\n'
              f'COLOR_REP "{"RGB" if kind == "CTI1" else "RGB_XYZ"}"\n\nNUMBER_OF_FIELDS 7\nBEGIN_DATA_FORMAT\n'
              f"SAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n\n"
              f"NUMBER_OF_SETS {len(rows)}\nBEGIN_DATA", file=out)
        for identifier, drives, xyz in rows:
            print(identifier, *(f"{100 * d:.9f}" for d in drives), *(f"{v:.9f}" for v in xyz), file=out)
        print("END_DATA", file=out)


def correct(chart_name, correction, corrected):
    import PyOpenColorIO as ocio  # the system's Python has it
    transform = ocio.FileTransform(correction, interpolation=ocio.INTERP_LINEAR)
    apply = ocio.Config.CreateRaw().getProcessor(transform).getOptimizedCPUProcessor(ocio.OPTIMIZATION_NONE).applyRGB
    # A wire to a display carries nothing below 0 or above 1.
    rows = [(i, [min(max(c, 0.0), 1.0) for c in apply(drives)], (0, 0, 0)) for i, drives in chart(chart_name)]
    write(corrected, "CTI1", "drives behind the correction", rows)


def spoil(correction, spoilt):
    tree = xml.parse(correction)
    xml.register_namespace("", tree.getroot().tag[1:].split("}")[0])
    arrays = [a for a in tree.iter() if a.tag.endswith("Array")]
    matrices = [a for a in arrays if a.get("dim").startswith("3 3")]
    for array in matrices or arrays:
        rows = [line.split() for line in array.text.split("\n") if line.strip()]
        rows = zip(*rows) if matrices else (row[::-1] for row in rows)
        array.text = "\n" + "".join(" ".join(row) + "\n" for row in rows)
    tree.write(spoilt)


def solved(m, v):
    """x of m x = v by Cramer's rule, m as three columns."""
    def det(a, b, c):
        return (a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1])
                + c[0] * (a[1] * b[2] - a[2] * b[1]))
    whole = det(*m)
    return [det(*(v if k == j else m[k] for k in range(3))) / whole for j in range(3)]


def target(chart_name, record, gamut, white, curve, black, name):
    luminance = json.load(open(record, encoding="ascii"))["figures"]["luminance"]["after"]
    directions = [(x / y, 1.0, (1 - x - y) / y) for x, y in GAMUTS[gamut]]
    x, y = (float(word) for word in white.split(","))
    dark = [float(word) for word in black.split(",")]
    full = [luminance * x / y, luminance, luminance * (1 - x - y) / y]
    scale = solved(directions, [f - d for f, d in zip(full, dark)])

    def light(v):
        if curve == "srgb":
            return v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4
        return v ** float(curve)

    def shown(drives):
        return [dark[k] + sum(d[k] * s * light(v) for d, s, v in zip(directions, scale, drives)) for k in range(3)]

    write(name, "CTI3", "what the chart should show", [(i, drives, shown(drives)) for i, drives in chart(chart_name)])


{"correct": correct, "spoil": spoil, "target": target}[sys.argv[1]](*sys.argv[2:])
