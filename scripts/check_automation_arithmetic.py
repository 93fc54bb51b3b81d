#!/usr/bin/env python3
"""A second opinion on the arithmetic of auto exposure and white balance.

Works the control laws out once more, with whole numbers and fractions where the
result is defined exactly and with Python's floats (IEEE doubles) where each
operation rounds, over whole domains of inputs. Prints one CRC-32 for each domain;
tests/automation/arithmetic_test.cpp holds the same domains and these figures.
"""
import struct
import zlib
from fractions import Fraction

MASK32 = 0xFFFFFFFF


class Digest:
    def __init__(self):
        self.crc = 0

    def words(self, *values):
        self.crc = zlib.crc32(struct.pack(f"<{len(values)}I", *values), self.crc)


class Random:
    """The tests' generator: the upper byte of a linear congruential sequence."""

    def __init__(self, seed):
        self.state = seed

    def byte(self):
        self.state = (self.state * 1664525 + 1013904223) & MASK32
        return self.state >> 24


def float32(value):
    """The float nearest to an exact value, ties to even."""
    value = Fraction(value)
    if value == 0:
        return 0.0
    sign = -1 if value < 0 else 1
    value = abs(value)
    exponent = 0
    while value >= 1 << 24:
        value /= 2
        exponent += 1
    while value < 1 << 23:
        value *= 2
        exponent -= 1
    return sign * round(value) * 2.0**exponent


def bits32(value):
    return struct.unpack("<I", struct.pack("<f", value))[0]


def bits64(value):
    return struct.unpack("<II", struct.pack("<d", value))


HUNDREDTH = Fraction(float32(Fraction(1, 100)))
FIFTH = Fraction(float32(Fraction(1, 5)))


def older_brightness(red, green, blue):
    return max(int((green * 0.7154 + blue * 0.0721) + red * 0.2125), 1)


def newer_brightness(red, green1, green2, blue):
    return max(int(((green1 + green2) * 0.3577 + blue * 0.0721) + red * 0.2125), 1)


def proportional_target(gamma, percent):
    return float32(((Fraction(gamma) - 1) * FIFTH + percent * HUNDREDTH) * 255)


def next_exposure(target, brightness, exposure):
    error = int(Fraction(target) - brightness)
    if abs(error) <= 3:
        return exposure
    return min(max(float32(Fraction(target) * Fraction(exposure) / brightness), 1.0), 300.0)


def factor_code(factor):
    return min(int(factor * 20.0), 63)


class OlderBalance:
    def __init__(self):
        self.counter = 0
        self.factors = None

    def step(self, levels):
        if max(levels) - min(levels) <= 4:
            return None
        self.counter += 1
        if self.counter == 1:
            return (0, 0, 0)
        red, green, blue = (max(level, 1) for level in levels)
        if self.counter == 2:
            if red >= green and red >= blue:
                self.factors = [0.0, red / green, red / blue]
            elif blue <= green and green >= red:
                self.factors = [green / red, 0.0, green / blue]
            else:
                self.factors = [blue / red, blue / green, 0.0]
        else:
            own = (red, green, blue)
            reference = own[self.factors.index(0.0)]
            self.factors = [f * reference / o if f else f for f, o in zip(self.factors, own)]
        return tuple(factor_code(f) for f in self.factors)


def gain_from_code(code):
    if code > 31:
        return (code - 31) * 0.0435 + 1.3475
    return code * 0.02175 + 0.695


def code_from_gain(gain):
    if gain > 1.37:
        return int(min((gain - 1.3475) * 22.98850574712644 + 31.5, 63.0))
    return int((gain - 0.695) * 45.97701149425288 + 0.5) if gain >= 0.695 else 0


class NewerBalance:
    def __init__(self):
        self.counter = 0
        self.reference = 0

    def step(self, codes, levels):  # both red, green 1, green 2, blue
        if max(levels) - min(levels) <= 16:
            return None
        gains = [gain_from_code(code) for code in codes]
        if self.counter == 0:
            raw = [int(level / gain) for level, gain in zip(levels, gains)]
            brightest = max(raw)
            self.reference = raw.index(brightest)
            gains = [brightest / r if r else float("inf") for r in raw]
        else:
            reference = levels[self.reference]
            gains = [g * reference / o if o else float("inf") for g, o in zip(gains, levels)]
        self.counter += 1
        return tuple(code_from_gain(gain) for gain in gains)


def older_brightness_digest():
    digest = Digest()
    for green in range(256):
        for blue in range(0, 256, 5):
            for red in range(0, 256, 5):
                digest.words(older_brightness(red, green, blue))
    for grey in range(256):
        digest.words(older_brightness(grey, grey, grey))
    return digest.crc


def newer_brightness_digest():
    digest = Digest()
    for green1 in range(256):
        green2 = (green1 * 7 + 3) & 255
        for blue in range(0, 256, 15):
            for red in range(0, 256, 5):
                digest.words(newer_brightness(red, green1, green2, blue))
    for grey in range(256):
        digest.words(newer_brightness(grey, grey, grey, grey))
    return digest.crc


def targets_digest():
    digest = Digest()
    for percent in range(101):
        digest.words(int(percent * HUNDREDTH * 255))
    for gamma in (0.0, 0.25, 0.45, 1.0, 1.8, 2.2, 3.5):
        for percent in range(101):
            digest.words(bits32(proportional_target(float32(Fraction(gamma)), percent)))
    return digest.crc


def exposures_digest():
    digest = Digest()
    for percent in range(0, 101, 5):
        target = proportional_target(1.0, percent)
        for brightness in range(1, 256):
            for exposure in (1.0, 2.5, 12.3, 33.3, 50.0, 77.7, 123.4, 299.9):
                digest.words(bits32(next_exposure(target, brightness, float32(Fraction(exposure)))))
    return digest.crc


def older_balance_digest():
    digest = Digest()
    random = Random(1)
    for _ in range(4000):
        law = OlderBalance()
        for _ in range(10):
            codes = law.step((random.byte(), random.byte(), random.byte()))
            digest.words(*(codes if codes else (MASK32,)))
    return digest.crc


def gain_curve_digest():
    digest = Digest()
    for code in range(256):
        digest.words(*bits64(gain_from_code(code)))
    for most in range(1, 367):
        for raw in range(1, most + 1):
            digest.words(code_from_gain(most / raw))
    return digest.crc


def newer_balance_digest():
    digest = Digest()
    random = Random(2)
    for _ in range(4000):
        law = NewerBalance()
        codes = tuple(random.byte() & 63 for _ in range(4))
        for _ in range(10):
            result = law.step(codes, tuple(random.byte() for _ in range(4)))
            digest.words(*(result if result else (MASK32,)))
            codes = result or codes
    return digest.crc


def weights_digest():
    digest = Digest()
    random = Random(3)
    for _ in range(20000):
        targets = [random.byte() for _ in range(3)]
        levels = [random.byte() for _ in range(3)]
        reference = max(targets)
        if len(set(targets)) != 1:
            weights = [reference / target if target else 0.0 for target in targets]
            levels = [min(int(level * weight), 255) for level, weight in zip(levels, weights)]
        digest.words(*levels)
    return digest.crc


def main():
    for name, digest in (
        ("older brightness", older_brightness_digest),
        ("newer brightness", newer_brightness_digest),
        ("targets", targets_digest),
        ("exposures", exposures_digest),
        ("older balance", older_balance_digest),
        ("gain curve", gain_curve_digest),
        ("newer balance", newer_balance_digest),
        ("weights", weights_digest),
    ):
        print(f"{name:18} 0x{digest():08X}")


if __name__ == "__main__":
    main()
