#!/usr/bin/env python3
"""Makes tests/streams/golden.txt from the plain recurrences, in exact integers.

    tools/golden_streams.py > tests/streams/golden.txt

A line: origin, identifier, initial values, leapfrog k/n or -, skip count, outputs n, interval a b,
then the first word (WH: of four), and hashes (FNV-1a, 64 bits) of the words, doubles and singles of
one call of n outputs and of the generator state after it.
"""
import re
import struct
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
U32 = 0xFFFFFFFF


def fnv(data):
    h = 0xCBF29CE484222325
    for byte in data:
        h = (h ^ byte) * 0x100000001B3 & 0xFFFFFFFFFFFFFFFF
    return h


def affine(words, unit, a, b):
    scale = (b - a) * unit
    return [float(u) * scale + a for u in words]


class Mcg31:
    m, unit = 2**31 - 1, 4.656612875245797e-10

    def __init__(self, seed, member):
        self.x, self.a = (seed[0] % self.m if seed else 0) or 1, 1132489760

    def leapfrog(self, k, n):
        self.skip(k)
        self.a = pow(self.a, n, self.m)

    def skip(self, count):
        self.x = self.x * pow(self.a, count, self.m) % self.m

    def word(self):
        word, self.x = self.x, self.x * self.a % self.m
        return word

    def finish(self, n):
        pass

    def state(self):
        return struct.pack("<2I", self.x, self.a)

    pack = staticmethod(lambda words: struct.pack(f"<{len(words)}I", *words))

    def reals(self, words, a, b):
        return affine(words, self.unit, a, b)

    def singles(self, words, a, b):
        return self.reals(words, a, b)


class Mcg59(Mcg31):
    m, unit = 2**59, 2.0**-59

    def __init__(self, seed, member):
        x = seed[0] if seed else 0
        if len(seed) > 1:
            x += (seed[1] & 0x7FFFFFF) << 32
        self.x, self.a = x or 1, 13**13

    def state(self):
        return struct.pack("<2Q", self.x, self.a)

    pack = staticmethod(lambda words: struct.pack(f"<{len(words)}Q", *words))

    def reals(self, words, a, b):
        s = (b - a) * self.unit
        return [(float(u & U32) * s + float(u >> 32 << 32) * s) + a for u in words]

    def singles(self, words, a, b):
        s = (b - a) * self.unit
        return [(float(u & U32) + float(u >> 32 << 32)) * s + a for u in words]


class Mrg32k3a(Mcg31):
    m1, m2, unit = 2**32 - 209, 2**32 - 22853, 2.328306549837829e-10

    def __init__(self, seed, member):
        words = (list(seed[:6]) + [1] * 6)[:6]
        self.x = [w - self.m1 if w >= self.m1 else w for w in words[:3]]
        self.y = [w - self.m2 if w >= self.m2 else w for w in words[3:]]
        for v in (self.x, self.y):
            if not any(v):
                v[0] = 1

    def skip(self, count):
        for _ in range(count):
            self.word()

    def word(self):
        self.x = self.x[1:] + [(1403580 * self.x[1] - 810728 * self.x[0]) % self.m1]
        self.y = self.y[1:] + [(527612 * self.y[2] - 1370589 * self.y[0]) % self.m2]
        z = self.x[2] - self.y[2]
        return z + self.m1 if z < 0 else z

    def state(self):
        return struct.pack("<6I", *self.x, *self.y)


class R250(Mcg31):
    unit = 2.0**-32

    def __init__(self, seed, member):
        if len(seed) >= 250:
            self.w = list(seed[:250])
        else:
            s = (seed[0] if seed else 1) or 1
            self.w = [s * pow(69069, t + 1, 2**32) & U32 for t in range(250)]
            for k in range(32):
                self.w[7 * k + 3] = self.w[7 * k + 3] & (U32 >> k) | 0x80000000 >> k
        self.i, self.j = 0, 103

    def word(self):
        self.w[self.i] ^= self.w[self.j]
        word = self.w[self.i]
        self.i, self.j = (self.i + 1) % 250, (self.j + 1) % 250
        return word

    def finish(self, n):
        if n >= 250:
            self.w, self.i, self.j = self.w[self.i :] + self.w[: self.i], 0, 103

    def state(self):
        return struct.pack("<252I", *self.w, self.i, self.j)


class Wh(Mcg31):
    table = [
        [int(v) for v in re.findall(r"\d+", line)]
        for line in (ROOT / "streams/generators/wh_table.h").read_text().splitlines()
        if line.startswith("    {{")
    ]

    def __init__(self, seed, member):
        self.m, self.a = self.table[member][:4], self.table[member][4:]
        self.x = [(s % m) or 1 for s, m in zip((list(seed[:4]) + [1] * 4)[:4], self.m)]

    def leapfrog(self, k, n):
        self.skip(k)
        self.a = [pow(a, n, m) for a, m in zip(self.a, self.m)]

    def skip(self, count):
        self.x = [x * pow(a, count, m) % m for x, a, m in zip(self.x, self.a, self.m)]

    def word(self):
        word = list(self.x)
        self.skip(1)
        return word

    def state(self):
        return struct.pack("<8I", *self.x, *self.a)

    pack = staticmethod(lambda words: b"".join(struct.pack("<4I", *w) for w in words))

    def reals(self, words, a, b):
        r = [(2**76 // m) * 2.0**-76 for m in self.m]
        out = []
        for x in words:
            total = ((r[0] * x[0] + r[1] * x[1]) + r[2] * x[2]) + r[3] * x[3]
            out.append((total - float(int(total))) * (b - a) + a)
        return out


NAMES = {1: Mcg31, 2: R250, 3: Mrg32k3a, 4: Mcg59, 5: Wh}
KEY = [pow(1664525, k + 1, 2**32) for k in range(250)]


def cases():
    for n in (1, 37, 1000, 5003):
        for generator in NAMES:
            yield generator << 20, [7777777], None, 0, n, (0.0, 1.0)
    yield 0x100000, [], None, 0, 100, (-1.5, 2.25)
    yield 0x100000, [2**31 - 1], None, 0, 100, (0.0, 1.0)
    yield 0x100000, [2**31], None, 0, 100, (0.0, 1.0)
    yield 0x100000, [1], (2, 3), 5, 333, (0.0, 3.0)
    yield 0x200000, [], None, 0, 250, (-1.5, 2.25)
    yield 0x200000, [0], None, 0, 249, (0.0, 1.0)
    yield 0x200000, KEY, None, 0, 600, (0.0, 1.0)
    yield 0x200000, KEY[:249], None, 0, 600, (0.0, 1.0)
    yield 0x300000, [12345] * 6, None, 0, 1000, (0.0, 1.0)
    yield 0x300000, [4294967087] * 7, None, 0, 100, (0.0, 1.0)
    yield 0x300000, [5, 4, 3, 4294944443, 4294944443, 4294944443], None, 0, 100, (-7.5, -7.25)
    yield 0x300000, [1, 2, 3], None, 1001, 500, (0.0, 1.0)
    yield 0x400000, [0, 0x8000000], None, 0, 100, (0.0, 1.0)
    yield 0x400000, [4294967295, 4294967295], None, 0, 1000, (-1.0, 1.0)
    yield 0x400000, [3, 4], (1, 7), 9, 333, (0.0, 1.0)
    for member in (1, 2, 100, 200, 272, 50):
        yield 0x500000 + member, [1, 2, 3, 4], None, 0, 1000, (0.0, 1.0)
    yield 0x500000, [], (3, 4), 10, 333, (-1.0, 1.0)
    yield 4 + 272, [16766363, 0, 5], None, 0, 64, (0.0, 1.0)


def line(case):
    brng, seed, leap, skip, n, (a, b) = case
    generator = NAMES[brng >> 20 or 5]
    member = brng & 0xFFFFF if brng >> 20 else brng - 4
    g = generator(seed, member)
    if leap:
        g.leapfrog(*leap)
    g.skip(skip) if skip else None
    words = [g.word() for _ in range(n)]
    g.finish(n)
    doubles = struct.pack(f"<{n}d", *g.reals(words, a, b))
    singles = struct.pack(f"<{n}f", *g.singles(words, a, b))
    first = words[0][0] if isinstance(words[0], list) else words[0]
    hashes = [fnv(bytes_) for bytes_ in (g.pack(words), doubles, singles, g.state())]
    return " ".join(
        ["recurrence", hex(brng), ",".join(map(str, seed)) or "-"]
        + ["%d/%d" % leap if leap else "-", str(skip), str(n), str(a), str(b), str(first)]
        + ["%016x" % h for h in hashes]
    )


def main():
    print("# Made by tools/golden_streams.py, which has the meaning of a line. Not to be edited.")
    for case in cases():
        print(line(case))


if __name__ == "__main__":
    sys.exit(main())
