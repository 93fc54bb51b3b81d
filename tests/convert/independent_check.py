#!/usr/bin/env python3
"""Compares the built library's conversions with independent_routines.py, byte for byte.

usage: independent_check.py LIBRARY [--seed N] [--tiers scalar,avx2]

Every code, form and Bayer phase on every size from 1 x 1 to 20 x 20 and on wider
frames that fill every vector register, with each instruction-set tier; monochrome
expansion, colour correction and the status codes. The library is used as an
application uses it, with simulated cameras. Prints the seed, and of a difference the
first pixel with what surrounds it.
"""
import argparse
import collections
import ctypes
import os
import sys
import tempfile
import time

import numpy as np

import independent_routines as routines

CODES = (0, 1, 2, 3, 4, 5, 16, 17, 18, 255)
TIERS = ("scalar", "ssse3", "avx2", "avx512")
# One camera for each Bayer phase, then a monochrome one.
CAMERAS = "pace=fast,generation=1,phase={}"
DESCRIPTION = ";".join(CAMERAS.format(phase) for phase in range(3)) + ";pace=fast,imager=mono"
MONOCHROME = 3
GUARD = 96
WIDE_SIZES = ((64, 5), (66, 4), (68, 7), (70, 3), (127, 4), (128, 5), (129, 4), (130, 6),
              (131, 5), (132, 3), (191, 4), (193, 5), (256, 6), (260, 7), (261, 4), (1031, 3),
              (4100, 4), (4101, 4))

Form = collections.namedtuple("Form", "function source_bytes target_bytes maximum rounding")
# Code 1 rounds the means of 8-bit frames up and those of 16-bit frames down on every
# processor that can run this; 48-bit images have no accelerated form.
FORMS = {
    "8 to 24": Form("OrmidexConvertColor8BppTo24Bpp", 1, 1, 255, routines.UP),
    "16 to 24": Form("OrmidexConvertColor16BppTo24Bpp", 2, 1, 255, routines.DOWN),
    "16 to 48": Form("OrmidexConvertColor16BppTo48Bpp", 2, 2, 65535, None),
}

Case = collections.namedtuple("Case", "name form code phase samples source expected written")


class Mismatch(Exception):
    pass


# ---- frames ----


def random_frame(generator, height, width, maximum):
    return generator.integers(0, maximum + 1, (height, width))


def extreme_frame(generator, height, width, maximum):
    return generator.choice([0, 1, maximum - 1, maximum], (height, width), p=[.4, .1, .1, .4])


def ramp_frame(generator, height, width, maximum):
    """Even slopes with a jump, where directions tie and thresholds are met."""
    slope_x, slope_y = generator.integers(-12, 13, 2)
    y, x = np.mgrid[:height, :width]
    level = maximum // 2 + slope_x * x + slope_y * y
    level = level + np.where(x + y > (height + width) // 2, generator.integers(0, 40), 0)
    return np.clip(level, 0, maximum)


def gentle_frame(generator, height, width, maximum):
    """Differences on either side of the threshold 9, which 16-bit samples share."""
    base = int(generator.choice([0, 1, maximum // 2, maximum - 24]))
    return base + generator.integers(0, 25, (height, width))


CONTENTS = {"random": random_frame, "extremes": extreme_frame, "ramp": ramp_frame,
            "gentle": gentle_frame}


def image_bytes(image, sample_bytes):
    """Blue first, the bottom row first."""
    kind = np.uint8 if sample_bytes == 1 else np.dtype("<u2")
    return image[::-1, :, ::-1].astype(kind).tobytes()


def source_bytes(generator, samples, form):
    if form.source_bytes == 1:
        return samples.astype(np.uint8).tobytes()
    if form.target_bytes == 1:  # the lower bytes must not matter
        samples = samples * 256 + generator.integers(0, 256, samples.shape)
    return samples.astype("<u2").tobytes()


def cases_of_frame(generator, content, height, width, all_phases):
    turn = int(generator.integers(0, 3))
    for maximum in (255, 65535):
        samples = CONTENTS[content](generator, height, width, maximum)
        forms = {name: form for name, form in FORMS.items() if form.maximum == maximum}
        sources = {name: source_bytes(generator, samples, form) for name, form in forms.items()}
        for code in CODES:
            written = routines.written_columns(code, width)
            phases = range(3) if code == 1 or all_phases else (turn,)
            images = {}
            for name, form in forms.items():
                for phase in phases:
                    # Only code 1 knows of phase and rounding.
                    key = (phase, form.rounding) if code == 1 else ()
                    if key not in images:
                        images[key] = image_bytes(
                            routines.convert(samples, code, maximum, phase, form.rounding),
                            form.target_bytes)
                    yield Case(f"{content}, {name}", form, code, phase, samples, sources[name],
                               images[key], written)


def all_cases(generator):
    for height in range(1, 21):
        for width in range(1, 21):
            for content in CONTENTS:
                yield from cases_of_frame(generator, content, height, width,
                                          content == "random")
    for width, height in WIDE_SIZES:
        for content in CONTENTS:
            yield from cases_of_frame(generator, content, height, width, False)


# ---- the library ----


class Buffer:
    """Bytes at a chosen offset, between guards."""

    def __init__(self, size):
        self.block = np.empty(size + 2 * GUARD + 64, np.uint8)
        # Guards and unwritten pixels are told by these.
        self.pattern = np.random.default_rng(5).integers(0, 256, len(self.block), np.uint8)

    def fill(self, content, offset):
        self.begin, self.end = GUARD + offset, GUARD + offset + len(content)
        self.block[:self.end + GUARD] = self.pattern[:self.end + GUARD]
        self.block[self.begin:self.end] = content
        return ctypes.c_void_p(self.block.ctypes.data + self.begin)

    def blank(self, size, offset):
        begin = GUARD + offset
        return self.fill(self.pattern[begin:begin + size], offset)

    @property
    def content(self):
        return self.block[self.begin:self.end]

    def check_guards(self):
        for side, part in (("before", slice(0, self.begin)),
                           ("behind", slice(self.end, self.end + GUARD))):
            touched = np.flatnonzero(self.block[part] != self.pattern[part])
            if len(touched):
                raise Mismatch(f"{len(touched)} bytes {side} the image were written")


class Library:
    def __init__(self, path):
        self.functions = ctypes.CDLL(path)
        self.handles = []
        for index in range(4):
            handle = ctypes.c_void_p()
            self.call("OrmidexInitialize", 0, ctypes.c_char_p(b""), ctypes.c_uint(index),
                      ctypes.byref(handle))
            self.handles.append(handle)

    def status(self, name, *arguments):
        return getattr(self.functions, name)(*arguments) & 0xFFFFFFFF

    def call(self, name, wanted, *arguments):
        status = self.status(name, *arguments)
        if status != wanted:
            raise Mismatch(f"{name}: status {status} instead of {wanted}")

    def close(self):
        for handle in self.handles:
            self.call("OrmidexUninitialize", 0, ctypes.byref(handle))


def surroundings(case, got, index):
    """Names the pixel of the first wrong byte, and shows the samples around it."""
    height, width = case.samples.shape
    row_bytes = 3 * case.form.target_bytes * width
    y, rest = height - 1 - index // row_bytes, index % row_bytes
    x, channel = divmod(rest // case.form.target_bytes, 3)
    kind = np.uint8 if case.form.target_bytes == 1 else np.dtype("<u2")
    pixel = (height - 1 - y) * width + x
    wanted, found = (np.frombuffer(bytes(data), kind)[3 * pixel:3 * pixel + 3]
                     for data in (case.expected, got))
    top, left = max(y - 3, 0), max(x - 3, 0)
    return (f"source row {y}, column {x}, channel {'BGR'[channel]}: {found} instead of {wanted} "
            f"(blue, green, red)\nsamples from row {top}, column {left}:\n"
            f"{case.samples[top:y + 4, left:x + 4]}")


def expected_content(case, target):
    """What the destination holds afterwards: unwritten pixels as they were."""
    expected = np.frombuffer(case.expected, np.uint8)
    height, width = case.samples.shape
    if case.written < width:
        rows = expected.reshape(height, -1).copy()
        begin = case.written * 3 * case.form.target_bytes
        rows[:, begin:] = target.content.reshape(height, -1)[:, begin:]
        expected = rows.reshape(-1)
    return expected


def check_case(library, case, source, target, offset):
    height, width = case.samples.shape
    source_pointer = source.fill(np.frombuffer(case.source, np.uint8),
                                 offset if case.form.source_bytes == 1 else 0)
    target_pointer = target.blank(len(case.expected), offset)
    expected = expected_content(case, target)
    try:
        library.call(case.form.function, 0, library.handles[case.phase], source_pointer,
                     ctypes.c_uint(width), ctypes.c_uint(height), target_pointer,
                     ctypes.c_uint(case.code))
        wrong = np.flatnonzero(target.content != expected)
        if len(wrong):
            raise Mismatch(f"{len(wrong)} bytes differ, first at " +
                           surroundings(case, target.content, int(wrong[0])))
        target.check_guards()
        source.check_guards()
        if source.content.tobytes() != case.source:
            raise Mismatch("the source was changed")
    except Mismatch as problem:
        raise Mismatch(f"code {case.code}, {case.name}, phase {case.phase}, {width} x {height}, "
                       f"destination offset {offset}: {problem}") from None


def check_colour(library, cases):
    largest = max(len(case.expected) for case in cases)
    source, target = Buffer(largest), Buffer(largest)
    problems = []
    for number, case in enumerate(cases):
        try:
            check_case(library, case, source, target, number % 5)
        except Mismatch as problem:
            problems.append(str(problem))
    if problems:
        # One of each code and form says more than many of one.
        kinds = {problem.split(", phase")[0]: problem for problem in reversed(problems)}
        raise Mismatch(f"{len(problems)} conversions differ\n" +
                       "\n".join(list(kinds.values())[:12]))
    return len(cases)


# ---- the other conversions ----


def check_mono(library, seed):
    generator = np.random.default_rng(seed)
    source, target = Buffer(100000), Buffer(100000)
    count = 0
    for width in (*range(1, 70), 127, 128, 130, 131, 260, 1031):
        for height in (1, 2, 5):
            for name, kind in (("8", np.uint8), ("16", np.dtype("<u2"))):
                samples = generator.integers(0, 1 << int(name), (height, width)).astype(kind)
                high = samples >> (int(name) - 8)
                expected = np.repeat(high[::-1, :, None], 3, axis=2).astype(np.uint8).tobytes()
                offset = count % 5
                arguments = (source.fill(np.frombuffer(samples.tobytes(), np.uint8), 0),
                             ctypes.c_uint(width), ctypes.c_uint(height),
                             target.blank(len(expected), offset))
                library.call(f"OrmidexConvertMono{name}BppTo24Bpp", 0,
                             library.handles[MONOCHROME], *arguments)
                if target.content.tobytes() != expected:
                    raise Mismatch(f"mono, {name} bits, {width} x {height}")
                target.check_guards()
                count += 1
    return count


AMOUNTS = (0, 1, -1, 2, -2, 3, 7, 10, -10, 25, 33, 50, -50, 66, 77, 99, 100, -100, 101, -99, 150,
           -150, 199, 200, -200, 255, 333, 1000, -1000, 12345, -54321, 2**24 + 1, 2**31 - 1, -2**31)


def corrected_frames(generator):
    """Images of many pixels, and small ones of every width."""
    greys = np.repeat(np.arange(256)[:, None], 3, axis=1)
    corners = np.array(np.meshgrid(*[[0, 1, 100, 200, 254, 255]] * 3)).reshape(3, -1).T
    yield np.concatenate([greys, corners, generator.integers(0, 256, (20000, 3))])
    for pixels in range(1, 50):
        yield generator.integers(0, 256, (pixels, 3))


def check_correction(library, seed):
    generator = np.random.default_rng(seed)
    target = Buffer(100000)
    count = 0
    for amount in (*AMOUNTS, *map(int, generator.integers(-400, 400, 20))):
        for image in corrected_frames(generator):
            expected = routines.colour_corrected(image, amount, 255).astype(np.uint8)
            pointer = target.fill(image.astype(np.uint8).reshape(-1), count % 5)
            library.call("OrmidexColorCorrectRgb", 0, library.handles[count % 3],
                         ctypes.c_uint(len(image)), ctypes.c_uint(1), pointer,
                         ctypes.c_int(amount))
            wrong = np.flatnonzero(target.content != expected.reshape(-1))
            if len(wrong):
                pixel = wrong[0] // 3
                raise Mismatch(f"colour correction by {amount}: {image[pixel]} becomes "
                               f"{target.content.reshape(-1, 3)[pixel]}, not {expected[pixel]}")
            target.check_guards()
            count += 1
    return count + check_correction_sizes(library, target)


def check_correction_sizes(library, target):
    """The number of pixels is (3 width height + 2) / 3, with the product in 32 bits."""
    image = np.tile(np.array([200, 100, 0], np.uint8), 4)
    sizes = ((0, 7, 0), (7, 0, 0), (0x80000000, 2, 0), (0x10000, 0x10000, 0), (0x55555556, 1, 1),
             (0x55555557, 1, 2), (2, 1, 2))
    for width, height, pixels in sizes:
        expected = image.copy()
        expected[:3 * pixels] = np.tile(np.array([255, 100, 0], np.uint8), pixels)
        library.call("OrmidexColorCorrectRgb", 0, library.handles[0], ctypes.c_uint(width),
                     ctypes.c_uint(height), target.fill(image, 1), ctypes.c_int(100))
        if target.content.tobytes() != expected.tobytes():
            raise Mismatch(f"colour correction of {width} x {height}: {target.content}")
        target.check_guards()
    return len(sizes)


def tiff_samples(data):
    """The samples of an uncompressed TIFF file as (height, width, channels)."""
    if data[:4] != b"II*\0":
        raise Mismatch("not a little-endian TIFF file")
    word = lambda at, size: int.from_bytes(data[at:at + size], "little")
    directory = word(4, 4)
    tags = {}
    for entry in range(directory + 2, directory + 2 + 12 * word(directory, 2), 12):
        size = {1: 1, 3: 2, 4: 4}.get(word(entry + 2, 2), 1)
        number = word(entry + 4, 4)
        begin = entry + 8 if size * number <= 4 else word(entry + 8, 4)
        tags[word(entry, 2)] = [word(begin + size * k, size) for k in range(number)]
    width, height, bits, channels = tags[256][0], tags[257][0], tags[258][0], tags[277][0]
    begin = tags[273][0]
    kind = np.uint8 if bits == 8 else np.dtype("<u2")
    size = width * height * channels * bits // 8
    return np.frombuffer(data[begin:begin + size], kind).reshape(height, width, channels)


def check_correction_in_files(library, seed, folder):
    """Images with 16 bits a channel are corrected only on their way into a TIFF file."""
    generator = np.random.default_rng(seed)
    camera, width, height = library.handles[0], 128, 96
    library.call("OrmidexSetSubWindow", 0, camera, *map(ctypes.c_uint, (1, 0, 0, width, height)))
    status = library.status("OrmidexSetDataTransferSize", camera, ctypes.c_uint(16))
    if status not in (0, 18):  # 18: slower clocking
        raise Mismatch(f"16 bits a sample: status {status}")
    path = os.path.join(folder, "image.tiff")
    count = 0
    for amount in (*AMOUNTS, *map(int, generator.integers(-400, 400, 6))):
        content = list(CONTENTS.values())[count % len(CONTENTS)]
        samples = content(generator, height, width, 65535)
        frame = samples.astype("<u2").tobytes()
        library.call("OrmidexSaveFrameAsTiff", 0, camera, frame, path.encode(), ctypes.c_uint(1),
                     ctypes.c_int(amount), ctypes.c_uint(3))
        with open(path, "rb") as file:
            found = tiff_samples(file.read())
        plain = routines.convert(samples, 3, 65535)
        wanted = routines.colour_corrected(plain, amount, 65535)
        if found.shape != wanted.shape or found.dtype.itemsize != 2:
            raise Mismatch(f"TIFF file of {found.shape}, {found.dtype}")
        wrong = np.argwhere((found != wanted).any(axis=2))
        if len(wrong):
            y, x = wrong[0]
            raise Mismatch(f"48-bit colour correction by {amount}, row {y}, column {x}: "
                           f"{plain[y, x]} becomes {found[y, x]}, not {wanted[y, x]}")
        count += 1
    library.call("OrmidexSetDataTransferSize", 0, camera, ctypes.c_uint(8))
    return count


# ---- status codes ----


def status_table(camera, mono, source, target):
    """(wanted status, function, arguments) for every check, in its order."""
    none, two = None, ctypes.c_uint(2)
    for bits in ("8", "16"):
        name = f"OrmidexConvertColor{bits}BppTo24Bpp"
        yield 1, name, (none, none, two, two, none, ctypes.c_uint(300))
        for pointers in ((none, target), (source, none), (none, none)):
            yield 2, name, (mono, pointers[0], two, two, pointers[1], ctypes.c_uint(300))
        yield 12, name, (mono, source, two, two, target, ctypes.c_uint(300))
        yield 12, name, (mono, source, two, two, target, ctypes.c_uint(255))
        yield from code_table(name, camera, source, target)
    name = "OrmidexConvertColor16BppTo48Bpp"
    yield 1, name, (none, none, two, two, none, ctypes.c_uint(300))
    for pointers in ((none, target), (source, none), (none, none)):
        yield 7, name, (mono, pointers[0], two, two, pointers[1], ctypes.c_uint(1))
    yield from code_table(name, camera, source, target)
    yield from code_table(name, mono, source, target)
    for bits in ("8", "16"):
        name = f"OrmidexConvertMono{bits}BppTo24Bpp"
        yield 1, name, (none, none, two, two, none)
        for pointers in ((none, target), (source, none)):
            yield 2, name, (camera, pointers[0], two, two, pointers[1])
        yield 12, name, (camera, source, two, two, target)
        yield 12, name, (camera, source, two, ctypes.c_uint(0), target)
        yield 0, name, (mono, source, two, ctypes.c_uint(0), target)
        yield 0, name, (mono, source, two, two, target)
    name, amount = "OrmidexColorCorrectRgb", ctypes.c_int(5)
    yield 1, name, (none, two, two, none, amount)
    yield 2, name, (mono, two, two, none, amount)
    yield 12, name, (mono, two, two, target, amount)
    yield 12, name, (mono, ctypes.c_uint(0), two, target, amount)
    yield 0, name, (camera, two, two, target, amount)


def code_table(name, camera, source, target):
    two = ctypes.c_uint(2)
    for code in (*range(300), 511, 0x7FFFFFFF, 0xFFFFFFFF, 0x100, 0x101):
        yield (0 if code in CODES else 7), name, (camera, source, two, two, target,
                                                  ctypes.c_uint(code))


def check_statuses(library):
    source, target = Buffer(100), Buffer(100)
    camera, mono = library.handles[0], library.handles[MONOCHROME]
    source_pointer = source.blank(8, 0)
    count = 0
    for wanted, name, arguments in status_table(camera, mono, source_pointer,
                                                target.blank(24, 0)):
        target.blank(24, 0)
        before = target.content.tobytes()
        library.call(name, wanted, *arguments)
        if wanted != 0 and target.content.tobytes() != before:
            raise Mismatch(f"{name}: status {wanted}, and the destination was written")
        count += 1
    return count + check_empty(library, source_pointer, target)


def check_empty(library, source, target):
    count = 0
    for form in FORMS.values():
        for code in CODES:
            for width, height in ((0, 0), (0, 3), (3, 0)):
                pointer = target.blank(24, 0)
                before = target.content.tobytes()
                library.call(form.function, 0, library.handles[0], source, ctypes.c_uint(width),
                             ctypes.c_uint(height), pointer, ctypes.c_uint(code))
                if target.content.tobytes() != before:
                    raise Mismatch(f"{form.function}: {width} x {height} wrote something")
                count += 1
    return count


# ---- all of it ----


def check_tier(path, tier, cases, seed):
    os.environ["ORMIDEX_TIER"] = tier
    library = Library(path)
    start, counts, good = time.time(), [], True
    with tempfile.TemporaryDirectory() as folder:
        parts = {
            "statuses": lambda: check_statuses(library),
            "colour": lambda: check_colour(library, cases),
            "monochrome": lambda: check_mono(library, seed),
            "corrections": lambda: check_correction(library, seed),
            "corrections of 48 bits": lambda: check_correction_in_files(library, seed, folder),
        }
        for name, part in parts.items():
            try:
                counts.append(f"{part()} {name}")
            except Mismatch as problem:
                good = False
                counts.append(f"{name} FAILED")
                print(f"{tier}: {name}: {problem}")
    library.close()
    print(f"{tier}: {', '.join(counts)} in {time.time() - start:.1f} s", flush=True)
    return good


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("library")
    parser.add_argument("--seed", type=int, default=int(os.environ.get("ORMIDEX_TEST_SEED", 20041)))
    parser.add_argument("--tiers", default=",".join(TIERS))
    options = parser.parse_args()
    os.environ["ORMIDEX_SIMULATOR"] = DESCRIPTION
    start = time.time()
    cases = list(all_cases(np.random.default_rng(options.seed)))
    print(f"seed {options.seed} (--seed), {len(cases)} conversions worked out in "
          f"{time.time() - start:.1f} s", flush=True)
    good = True
    for tier in options.tiers.split(","):
        # The library chooses its kernels once in a process.
        child = os.fork()
        if child == 0:
            os._exit(0 if check_tier(os.path.abspath(options.library), tier, cases,
                                     options.seed) else 1)
        good = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0 and good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
