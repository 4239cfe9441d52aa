#!/usr/bin/python3
"""Lets other people's programs read what the writers wrote, and compares with the tables that were to be written.

Usage: judge.py SCRATCH JOB...      a job is a folder with the tables, measurements.txt, and the formats under
                                    right/ and, with a mistake each, swapped/ (red and blue of the tables),
                                    transposed/ (their matrix), display_swapped/, display_transposed/ (the display that
                                    profiles tell of)

Every format under right/ must pass. What the others hold must be rejected, unless it is the same, and so must every
file of right/ cut short; SCRATCH/rejections.txt says why each was. Prints what each judge measured.
"""
import ctypes
import json
import math
import random
import re
import shutil
import struct
import subprocess
import sys
from pathlib import Path

import PyOpenColorIO as ocio

HERE = Path(__file__).resolve().parent
SCRATCH = Path(sys.argv[1]).resolve()


class Rejected(Exception):
    """A judge's verdict, or that it could not read the file."""


def require(good, why):
    if not good:
        raise Rejected(why)


def run(*command):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, errors="replace", cwd=SCRATCH,
                          timeout=120)
    require(done.returncode == 0, f"{command[0]} ends with {done.returncode}: {(done.stdout + done.stderr)[-200:]}")
    return done.stdout


def numbers(text):
    return [[float(word) for word in line.split()] for line in text.splitlines() if line.strip()]


def compare(got, want, tolerance, what):
    """Two lists of rows; returns the largest difference."""
    require(len(got) == len(want), f"{what}: {len(got)} rows, not {len(want)}")
    worst = max(abs(g - w) for row, wanted in zip(got, want) for g, w in zip(row, wanted))
    require(all(len(row) == len(wanted) for row, wanted in zip(got, want)), f"{what}: rows of another length")
    require(worst <= tolerance, f"{what}: off by {worst:.3g}, more than {tolerance:.3g}")
    return worst


class Job:
    """The tables as the program wrote them, and what a device makes of them."""

    def __init__(self, folder):
        self.folder = folder
        self.post = numbers((folder / "postLUT.txt").read_text())
        self.two = (folder / "matrix.txt").exists()
        self.pre = numbers((folder / "preLUT.txt").read_text()) if self.two else None
        if self.two:
            self.mix = numbers((folder / "matrix.txt").read_text())

    @staticmethod
    def look_up(table, channel, x):
        """Value, and the steepest slope around."""
        at = min(max(x, 0.0), 1.0) * (len(table) - 1)
        i = min(int(at), len(table) - 2)
        value = table[i][channel] + (table[i + 1][channel] - table[i][channel]) * (at - i)
        around = [abs(table[k + 1][channel] - table[k][channel]) for k in range(max(i - 1, 0), min(i + 2, len(table) - 1))]
        return value, max(around) * (len(table) - 1)

    def linear(self, rgb):
        if not self.two:
            return rgb
        light = [self.look_up(self.pre, c, rgb[c])[0] for c in range(3)]
        return [sum(self.mix[c][k] * light[k] for k in range(3)) for c in range(3)]

    def __call__(self, rgb):
        mixed = self.linear(rgb)
        return [self.look_up(self.post, c, mixed[c]) for c in range(3)]

    def table(self, name):
        return {"pre_lut": self.pre, "post_lut": self.post}[name]


def colours(count, grid=None):
    source = random.Random(20)
    grays = [[i / 1023] * 3 for i in range(1024)] if grid is None else []
    draw = source.random if grid is None else (lambda: source.randrange(grid) / (grid - 1))
    return grays + [[draw(), draw(), draw()] for _ in range(count)]


# ---- OpenColorIO ----

def applied(transform, config=None):
    config = config or ocio.Config.CreateRaw()
    processor = config.getProcessor(transform) if not isinstance(transform, tuple) else config.getProcessor(*transform)
    cpu = processor.getOptimizedCPUProcessor(ocio.OPTIMIZATION_NONE)
    return cpu.applyRGB


def judge_colours(shown, job, samples, fixed=1e-6, per_slope=3e-7):
    worst = 0.0
    flat = shown([v for rgb in samples for v in rgb])
    for n, rgb in enumerate(samples):
        for got, (want, slope) in zip(flat[3 * n:3 * n + 3], job(rgb)):
            worst = max(worst, abs(got - want))
            require(abs(got - want) <= fixed + per_slope * slope, f"{rgb}: {got}, not {want}")
    return f"OpenColorIO: {worst:.1e} at most over {len(samples)} colours"


def file_transform(path):
    return ocio.FileTransform(str(path), interpolation=ocio.INTERP_LINEAR)


def judge_lut_file(path, job):
    run("ociochecklut", path, "0.1", "0.5", "0.9")
    return judge_colours(applied(file_transform(path)), job, colours(5000))


def judge_clf(folder, job):
    run("xmllint", "--noout", folder / "correction.clf")
    return judge_lut_file(folder / "correction.clf", job)


def judge_spi(folder, job):
    run("ociocheck", "--iconfig", folder / "config.ocio")
    config = ocio.Config.CreateFromFile(str(folder / "config.ocio"))
    return judge_colours(applied(("drive", "corrected"), config), job, colours(5000))


def judge_baked(path, job, size, rounding):
    """Exact at the points of the grid; between them some codes of 255 are lost."""
    run("ociochecklut", path, "0.1", "0.5", "0.9")
    transform = ocio.FileTransform(str(path), interpolation=ocio.INTERP_TETRAHEDRAL)
    shown = applied(transform)
    said = judge_colours(shown, job, colours(3000, size), fixed=1e-6 + rounding)
    between = colours(3000)[1024:]
    flat = shown([v for rgb in between for v in rgb])
    off = [abs(g - w) * 255 for rgb, i in zip(between, range(0, len(flat), 3)) for g, (w, _) in zip(flat[i:i + 3], job(rgb))]
    require(sum(off) / len(off) < 1, f"between the points off by {sum(off) / len(off):.2f} codes of 255 on average")
    return said + f", between its points {max(off):.1f} codes of 255 (mean {sum(off) / len(off):.3f})"


# ---- ICC ----

def read_cal(text):
    rows = re.search(r"^BEGIN_DATA\n(.*)^END_DATA", text, re.S | re.M)
    require(rows, "no table came back")
    return [row[1:] for row in numbers(rows.group(1))]


def vcgt_of(profile):
    run("iccvcgt", "-x", profile, SCRATCH / "back.cal")
    return read_cal((SCRATCH / "back.cal").read_text())


def resampled(table, entries):
    return [[Job.look_up(table, c, i / (entries - 1))[0] for c in range(3)] for i in range(entries)]


def judge_cal(folder, job):
    run("iccvcgt", "-i", "/usr/share/color/argyll/ref/sRGB.icm", folder / "correction.cal", SCRATCH / "out.icc")
    back = vcgt_of(SCRATCH / "out.icc")
    return f"iccvcgt: {compare(back, resampled(job.post, len(back)), 1e-5, 'curves'):.1e}, {len(back)} entries back"


def measured(job):
    """The measured rows: drive 0 to 1 and X, Y, Z."""
    lines = [line for line in (job.folder / "measurements.txt").read_text().splitlines() if not line.startswith(";")]
    rows = numbers("\n".join(lines[1:]))
    full = max(max(row[:3]) for row in rows)
    return [[v / full for v in row[:3]] + row[3:] for row in rows]


def judge_profile(profile, job, colour_tolerance=0.01):
    """Can everybody read it, and are white and primaries those of the display?"""
    run("iccdump", "-v", "3", profile)
    run("cd-iccdump", profile)
    rows = measured(job)
    white = rows[0][4]
    wanted = [row[3:] for row in rows for full in ([1, 1, 1], [1, 0, 0], [0, 1, 0], [0, 0, 1]) if row[:3] == full]
    require(len(wanted) >= 4, "measurements without primaries")
    said = subprocess.run(["xicclu", "-ff", "-ia", "-px", profile], input="1 1 1\n1 0 0\n0 1 0\n0 0 1\n", text=True,
                          capture_output=True, cwd=SCRATCH).stdout
    shown = [[float(v) for v in line.split("->")[-1].split()[:3]] for line in said.splitlines() if "->" in line]
    worst = compare(shown, [[v / white for v in xyz] for xyz in wanted[:4]], colour_tolerance, "white and primaries")
    return f"iccdump, cd-iccdump; xicclu: white and primaries within {worst:.4f} of white"


def judge_icc(folder, job):
    profile = folder / "correction.icc"
    said = judge_profile(profile, job)
    back = vcgt_of(profile)
    off = compare(back, resampled(job.post, len(back)), 1e-5, "vcgt")
    said += f"; iccvcgt: {off:.1e}, {len(back)} entries; Little CMS: {judge_by_lcms(profile, job):.1e}"
    if len(back) != 256:
        return said  # the next judge picks entries instead of interpolating
    ramps = [[int(word, 16) for word in line.split()] for line in run("xcalib", "-n", "256", "-p", profile).splitlines()
             if re.fullmatch(r"[0-9a-f]+ [0-9a-f]+ [0-9a-f]+ ?", line)]
    off = compare(ramps, [[math.floor(v * 65535 + 0.5) for v in row] for row in resampled(job.post, 256)], 1, "xcalib")
    return said + f"; xcalib: {off:.0f} of 65535"


def lcms(name, *arguments, result=ctypes.c_void_p):
    function = getattr(lcms.library, name)
    function.restype = result
    return function(*arguments)


lcms.library = ctypes.CDLL("liblcms2.so.2")


def opened(profile):
    handle = ctypes.c_void_p(lcms("cmsOpenProfileFromFile", str(profile).encode(), b"r"))
    require(handle.value, "Little CMS cannot open it")
    return handle


def judge_by_lcms(profile, job):
    """Little CMS's own reading of `vcgt`."""
    curves = lcms("cmsReadTag", opened(profile), ctypes.c_uint32(0x76636774), result=ctypes.POINTER(ctypes.c_void_p))
    require(bool(curves), "Little CMS finds no vcgt")
    entries = [[lcms("cmsEvalToneCurveFloat", ctypes.c_void_p(curves[c]), ctypes.c_float(i / 255),
                     result=ctypes.c_float) for c in range(3)] for i in range(256)]
    return compare(entries, resampled(job.post, 256), 1e-4, "vcgt by Little CMS")


def judge_monitor_icc(folder, job):
    """ArgyllCMS compares the profile with every measured patch."""
    rows = measured(job)
    lines = ["CTI3   ", 'DESCRIPTOR "A display"', 'ORIGINATOR "judge"', 'CREATED "today"', 'DEVICE_CLASS "DISPLAY"',
             'COLOR_REP "RGB_XYZ"', 'NORMALIZED_TO_Y_100 "YES"', "NUMBER_OF_FIELDS 7", "BEGIN_DATA_FORMAT",
             "SAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z", "END_DATA_FORMAT", f"NUMBER_OF_SETS {len(rows)}",
             "BEGIN_DATA"]
    for n, row in enumerate(rows):
        values = [v * 100 for v in row[:3]] + [v / rows[0][4] * 100 for v in row[3:]]
        lines.append(" ".join([str(n + 1)] + [f"{v:.6f}" for v in values]))
    (SCRATCH / "measured.ti3").write_text("\n".join(lines + ["END_DATA", ""]))
    verdict = run("profcheck", "-k", SCRATCH / "measured.ti3", folder / "monitor.icc")
    most, mean = (float(v) for v in re.search(r"max\. = ([\d.]+), avg\. = ([\d.]+)", verdict).groups())
    require(mean < 0.6 and most < 3, f"profcheck: CIEDE2000 {mean} on average, {most} at most")
    said = judge_profile(folder / "monitor.icc", job)
    return said + f"; profcheck: CIEDE2000 {mean:.2f} on average, {most:.2f} at most over {len(rows)} patches"


def srgb_decode(v):
    return v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4


def srgb_encode(v):
    return 12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055


# IEC 61966-2-1, four decimals.
TO_XYZ = [[0.4124, 0.3576, 0.1805], [0.2126, 0.7152, 0.0722], [0.0193, 0.1192, 0.9505]]
TO_RGB = [[3.2406, -1.5372, -0.4986], [-0.9689, 1.8758, 0.0415], [0.0557, -0.2040, 1.0570]]


def times(m, v):
    return [sum(m[i][k] * v[k] for k in range(3)) for i in range(3)]


def judge_mhc2(folder, job):
    """The pipeline of Windows as its makers describe it, with the tag as Little CMS hands it out."""
    said = judge_profile(folder / "correction.icc", job)
    handle = opened(folder / "correction.icc")
    size = lcms("cmsReadRawTag", handle, ctypes.c_uint32(0x4D484332), None, ctypes.c_uint32(0), result=ctypes.c_uint32)
    room = ctypes.create_string_buffer(max(size, 1))
    got = lcms("cmsReadRawTag", handle, ctypes.c_uint32(0x4D484332), room, ctypes.c_uint32(size), result=ctypes.c_uint32)
    require(size > 36 and got == size, "Little CMS finds no whole MHC2 tag")
    entries, darkest, brightest, matrix_at, *tables_at = struct.unpack(">8xIiiIIII", room.raw[:36])
    fixed = lambda at, count: [v / 65536 for v in struct.unpack(f">{count}i", room.raw[at:at + 4 * count])]
    require(0 <= darkest < brightest, "luminances")
    rows = fixed(matrix_at, 12)
    matrix = [rows[4 * i:4 * i + 3] for i in range(3)]
    require(all(room.raw[at:at + 4] == b"sf32" for at in tables_at), "tables without their type")
    tables = list(zip(*(fixed(at + 8, entries) for at in tables_at)))
    of_tag, of_job = [], []
    for rgb in colours(3000):
        light = [srgb_decode(v) for v in rgb]
        mixed = times(TO_RGB, times(matrix, times(TO_XYZ, light)))
        shown = [Job.look_up(tables, c, srgb_encode(max(mixed[c], 0)))[0] for c in range(3)]
        for c, v in enumerate(times(job.mix, light)):
            want, slope = Job.look_up(job.post, c, v)
            of_tag.append(abs(shown[c] - want) * 255)
            # The published matrices have four decimals.
            require(of_tag[-1] <= 0.05 + 255 * 1e-4 * slope, f"{rgb}: {shown[c]}, not {want} as with the sRGB curve")
        of_job += [abs(a - b[0]) * 255 for a, b in zip(shown, job(rgb))]
    return said + (f"; MHC2 by Little CMS: {max(of_tag):.2f} codes of 255 at most from the correction with the sRGB "
                   f"curve, {max(of_job):.2f} (mean {sum(of_job) / len(of_job):.3f}) with the curve of the job")


# ---- Linux KMS ----

def judge_kms(folder, job, wide=False):
    read = lambda kind, name: [float(v) for v in run(SCRATCH / "read_kms", kind, folder / name).split()]
    steps = (2 ** 32 if wide else 2 ** 16) - 1
    lut, ctm = ("lut32", "ctm3x4") if wide else ("lut", "ctm")
    worst = 0.0
    for name, table in [("degamma_lut.bin", job.pre)] * job.two + [("gamma_lut.bin", job.post)]:
        flat = read(lut, name)
        require(len(flat) == 3 * (1024 if wide else 4096), f"{name}: not as many entries as asked for")
        want = [[min(max(v, 0), 1) for v in row] for row in resampled(table, len(flat) // 3)]
        rows = [flat[i:i + 3] for i in range(0, len(flat), 3)]
        worst = max(worst, compare(rows, want, 0.5 / steps + 1e-12, name))
    if job.two:
        flat = read(ctm, "ctm.bin")
        columns = 4 if wide else 3
        require(len(flat) == 3 * columns, "ctm.bin: size")
        rows = [flat[i:i + columns] for i in range(0, len(flat), columns)]
        compare(rows, [row + [0] * (columns - 3) for row in job.mix], 2 ** -33, "ctm.bin")
    return f"structures of libdrm: {worst:.1e} at most"


# ---- Memories ----

def codes(v, bits):
    return min(max(math.floor(v * (2 ** bits - 1) + 0.5), 0), 2 ** bits - 1)


class Memories:
    """The words to be found, by the name of their file."""

    def __init__(self, job, layout):
        self.bits, self.layout = {"": (10, "planar"), "interleaved": (16, "interleaved"), "packed": (12, "packed")}[layout]
        self.fraction = 16 if layout == "interleaved" else 14
        self.matrix_bits = 32 if layout == "interleaved" else 16
        self.words = {name: self.arranged(job.table(name)) for name in ["pre_lut"] * job.two + ["post_lut"]}
        if job.two:
            name = "matrix_q15_16" if self.fraction == 16 else "matrix_q2_14"
            self.words[name] = [math.floor(v * 2 ** self.fraction + 0.5) for row in job.mix for v in row]

    def arranged(self, table):
        entries = [[codes(v, self.bits) for v in row] for row in table]
        if self.layout == "planar":
            return [row[c] for c in range(3) for row in entries]
        if self.layout == "interleaved":
            return [v for row in entries for v in row]
        return [(r << 2 * self.bits) | (g << self.bits) | b for r, g, b in entries]

    def width(self, name):
        return self.matrix_bits if "matrix" in name else self.bits * (3 if self.layout == "packed" else 1)

    def compare(self, name, got):
        mask = 2 ** self.width(name) - 1
        want = [word & mask for word in self.words[name]]
        require(len(got) == len(want), f"{name}: {len(got)} words, not {len(want)}")
        wrong = sum(g != w for g, w in zip(got, want))
        require(wrong == 0, f"{name}: {wrong} of {len(want)} words are wrong")

    def all_files(self, read):
        for name in self.words:
            self.compare(name, read(name))
        return f"{sum(len(words) for words in self.words.values())} words of {'/'.join(self.words)}"


def judge_hex(folder, job, layout):
    memories = Memories(job, layout)

    def read(name):
        depth, width = len(memories.words[name]), memories.width(name)
        (SCRATCH / "bench.v").write_text(
            f"module bench; reg [{width - 1}:0] m [0:{depth - 1}]; integer i;\n"
            f'initial begin $readmemh("{folder / name}.hex", m);\n'
            f'for (i = 0; i < {depth}; i = i + 1) $display("%h", m[i]); $finish; end endmodule\n')
        run("iverilog", "-o", SCRATCH / "bench.vvp", SCRATCH / "bench.v")
        said = run("vvp", "-n", SCRATCH / "bench.vvp")
        require("WARNING" not in said and "ERROR" not in said, f"{name}: {said[:200]}")
        return [int(line, 16) for line in said.split()]

    return "iverilog: " + memories.all_files(read)


def mif_bytes(path):
    run("srec_info", path, "-mif")
    run("srec_cat", path, "-mif", "-o", SCRATCH / "mif.bin", "-binary")
    return (SCRATCH / "mif.bin").read_bytes()


def judge_mif(folder, job, layout):
    memories = Memories(job, layout)

    def read(name):
        bytes_of_word = (memories.width(name) + 7) // 8
        content = mif_bytes(folder / (name + ".mif"))
        require(len(content) % bytes_of_word == 0, f"{name}: half a word")
        return [int.from_bytes(content[i:i + bytes_of_word], "little") for i in range(0, len(content), bytes_of_word)]

    return "srec_info, srec_cat: " + memories.all_files(read)


def coe_words(text):
    require(re.search(r"memory_initialization_radix\s*=\s*16\s*;", text), "no radix")
    vector = re.search(r"memory_initialization_vector\s*=([^;]*);", text)
    require(vector, "no vector that ends")
    return [int(word, 16) for word in vector.group(1).split(",")]


def judge_coe(folder, job, layout):
    """No packaged program reads them. srec_cat writes them from the .mif of the same memory, but only 240 bytes at a
    time: short memories are compared with that."""
    memories = Memories(job, layout)

    def by_srec_cat(name):
        size = memories.width(name) // 8
        content = mif_bytes(folder.parents[1] / "right" / folder.name.replace("coe", "mif") / (name + ".mif"))
        words = []
        for at in range(0, len(content), 240):
            (SCRATCH / "part.bin").write_bytes(content[at:at + 240])
            run("srec_cat", SCRATCH / "part.bin", "-binary", "-byte-swap", size, "-o", SCRATCH / "part.coe", "-coe",
                8 * size, "-Output_Block_Size=240")
            words += coe_words((SCRATCH / "part.coe").read_text())
        return words

    def read(name):
        text = (folder / (name + ".coe")).read_text()
        got = coe_words(re.sub(r"^;.*$", "", text, flags=re.M))
        if memories.width(name) in (16, 32) and len(got) < 1000:
            require(got == by_srec_cat(name), f"{name}: not what srec_cat writes")
        return got

    return "srec_cat: " + memories.all_files(read)


def judge_c(folder, job, layout):
    memories = Memories(job, layout)
    header = folder / "correction_tables.h"
    lines = []
    for name in memories.words:
        kind = "int32_t" if "matrix" in name and memories.matrix_bits == 32 else "int16_t" if "matrix" in name else ""
        kind = kind or ("uint16_t" if layout != "packed" else "uint64_t")
        base = "matrix" if "matrix" in name else name
        lines += [f"const {kind}* {name}_p = (const {kind}*){name};",
                  f"for (i = 0; i < sizeof {name} / sizeof({kind}); ++i) printf(\"%lld\\n\", (long long){name}_p[i]);",
                  f"for (i = 0; i < sizeof {base}_float / sizeof(float); ++i)"
                  f" printf(\"%.9g\\n\", (double)((const float*){base}_float)[i]);"]
    (SCRATCH / "use.c").write_text(f'#include "{header}"\n#include "{header}"\n#include <stddef.h>\n#include <stdio.h>\n'
                                   "int main(void) {\nsize_t i;\n" + "\n".join(lines) + "\nreturn 0;\n}\n")
    strict = ["-Wall", "-Wextra", "-Werror"]
    run("gcc", "-std=c99", *strict, "-o", SCRATCH / "use", SCRATCH / "use.c")
    run("g++", *strict, "-fsyntax-only", "-x", "c++", SCRATCH / "use.c")
    said = run(SCRATCH / "use").split()
    for name, words in memories.words.items():
        memories.compare(name, [int(v) & (2 ** memories.width(name) - 1) for v in said[:len(words)]])
        table = job.mix if "matrix" in name else job.table(name)
        reals = [v for row in table for v in row]
        if layout == "" and "matrix" not in name:
            reals = [row[c] for c in range(3) for row in table]
        floats, said = said[len(words):len(words) + len(reals)], said[len(words) + len(reals):]
        compare([[float(v) for v in floats]], [reals], 1e-7, name + " as float")
    require(not said, "more numbers than expected")
    return f"gcc -std=c99, g++: {sum(len(words) for words in memories.words.values())} words, and as float"


def judge_json(folder, job):
    content = json.loads((folder / "correction.json").read_text())
    require(content["order"] == (["pre", "matrix", "post"] if job.two else ["post"]), "order")
    for key, table in [("pre", job.pre)] * job.two + [("post", job.post)]:
        part = content[key]
        rows = [list(row) for row in zip(part["red"], part["green"], part["blue"])]
        compare(rows, table, 0, key)
        require(len(part["axis"]) == len(table) and part["axis"][-1] == 1, "axis")
    if job.two:
        compare(content["matrix"], job.mix, 0, "matrix")
    return "Python's json: equal"


JUDGES = {
    "clf": judge_clf,
    "spi": judge_spi,
    "cube": lambda folder, job: judge_lut_file(folder / "correction.cube", job),
    "cube3d": lambda folder, job: judge_baked(folder / "correction33.cube", job, 33, 0),
    "3dl": lambda folder, job: judge_baked(folder / "correction17.3dl", job, 17, 0.5 / 4095),
    "cal": judge_cal,
    "icc": judge_icc,
    "icc1024": judge_icc,
    "monitor-icc": judge_monitor_icc,
    "mhc2": judge_mhc2,
    "kms": judge_kms,
    "kms-wide": lambda folder, job: judge_kms(folder, job, wide=True),
    "json": judge_json,
}
for layout in ("", "interleaved", "packed"):
    for kind, function in (("hex", judge_hex), ("mif", judge_mif), ("coe", judge_coe), ("c", judge_c)):
        JUDGES[kind + ("-" + layout if layout else "")] = (
            lambda folder, job, function=function, layout=layout: function(folder, job, layout))


# ---- The session ----

MISTAKES = ("swapped", "transposed", "display_swapped", "display_transposed")


def to_be_tried(kind):
    """The mistakes that a format can hold."""
    if kind == "mhc2":
        return MISTAKES
    if kind == "monitor-icc":
        return MISTAKES[2:]
    if kind.startswith("icc"):
        return ("swapped", *MISTAKES[2:])
    return ("swapped",) if kind in ("cube", "cal") else ("swapped", "transposed")


def verdict(kind, folder, job):
    """What was measured, or why it was rejected: by a judge's word, or because the file could not be parsed. Anything
    else is a mistake of this script, and ends it."""
    try:
        return True, JUDGES[kind](folder, job)
    except (Rejected, ocio.Exception, ValueError, KeyError, struct.error, subprocess.TimeoutExpired) as e:
        return False, f"{type(e).__name__}: {e}"


def same(a, b):
    return all((b / file.name).read_bytes() == file.read_bytes() for file in a.iterdir())


def cut_short(folder):
    """Copies of the folder, each with one file cut: to a half, and by its last word. Read-me files are for people."""
    for file in sorted(folder.iterdir()):
        if file.name == "README.txt":
            continue
        content = file.read_bytes()
        for size in (len(content) // 2, len(content) - 24):
            copy = SCRATCH / f"cut{cut_short.count}"  # a name of its own: OpenColorIO remembers files by name
            cut_short.count += 1
            shutil.copytree(folder, copy)
            (copy / file.name).write_bytes(content[:size])
            yield f"{file.name} cut to {size} of {len(content)} bytes", copy
            shutil.rmtree(copy)


cut_short.count = 0


def judge_format(kind, job, seen):
    right = job.folder / "right" / kind
    passed, said = verdict(kind, right, job)
    faults = [] if passed else [f"{kind} of {job.folder.name}: {said}"]
    wrong = []
    for mistake in MISTAKES:
        folder = job.folder / mistake / kind
        if folder.exists() and not same(right, folder):  # a writer may have refused it, or have nothing to confuse
            wrong.append((mistake, folder, verdict(kind, folder, job)))
    wrong += [(name, folder, verdict(kind, folder, job)) for name, folder in cut_short(right)]
    for name, _, (accepted, what) in wrong:
        with (SCRATCH / "rejections.txt").open("a") as log:
            log.write(f"{job.folder.name} {kind} {name}: {' '.join(what.split())[:200]}\n")
        seen.setdefault(kind, set()).add(name if " cut " not in name else "truncated")
        if accepted:
            faults.append(f"{kind} of {job.folder.name}: {name} was not noticed ({what})")
    print(f"  {kind:15} {said}; {len(wrong)} wrong ones, {len(faults)} faults", flush=True)
    return faults


def main():
    faults, seen = [], {}
    for folder in sys.argv[2:]:
        job = Job(Path(folder).resolve())
        print(f"{job.folder.name}: {len(job.post)} rows, {'two tables' if job.two else 'one table'}")
        for kind in JUDGES:
            if (job.folder / "right" / kind).exists():
                faults += judge_format(kind, job, seen)
    for kind in JUDGES:
        untried = {"truncated", *to_be_tried(kind)} - seen.get(kind, set())
        if untried:
            faults.append(f"{kind}: not tried: {', '.join(sorted(untried))}")
    for fault in faults:
        print("FAULT", fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
