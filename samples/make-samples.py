#!/usr/bin/env python3
"""Draws the sample pictures and packs them: samples/make-samples.py [path of zmi-pack.exe] [--keep FOLDER]

Everything is computed here, with Python's standard library alone. --keep leaves the drawn PNG files in FOLDER.
"""
import argparse
import math
import os
import struct
import subprocess
import tempfile
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


# ---- numbers

def clamp(value, low=0.0, high=1.0):
    return low if value < low else high if value > high else value


def smooth(start, end, value):
    t = clamp((value - start) / (end - start))
    return t * t * (3 - 2 * t)


def mix(a, b, t):
    return (a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t)


def rgb(text):
    return tuple(int(text[i:i + 2], 16) / 255 for i in (0, 2, 4))


def gradient(stops, t):
    for (t0, c0), (t1, c1) in zip(stops, stops[1:]):
        if t <= t1:
            return mix(c0, c1, clamp((t - t0) / (t1 - t0)))
    return stops[-1][1]


def chance(x, y=0, seed=0):
    """A fixed random number in [0, 1) for each whole x, y."""
    n = (x * 374761393 + y * 668265263 + seed * 2147483647) & 0xFFFFFFFF
    n = ((n ^ (n >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((n ^ (n >> 16)) & 0xFFFFFF) / 0x1000000


def noise(x, y, seed=0):
    ix, iy = math.floor(x), math.floor(y)
    fx, fy = smooth(0, 1, x - ix), smooth(0, 1, y - iy)
    top = chance(ix, iy, seed) * (1 - fx) + chance(ix + 1, iy, seed) * fx
    bottom = chance(ix, iy + 1, seed) * (1 - fx) + chance(ix + 1, iy + 1, seed) * fx
    return top * (1 - fy) + bottom * fy


def clouds(x, y, seed=0, octaves=4):
    total = weight = 0.0
    for octave in range(octaves):
        share = 0.5 ** octave
        total += share * noise(x * 2 ** octave, y * 2 ** octave, seed + octave)
        weight += share
    return total / weight


# ---- drawing

class Canvas:
    """Colours in [0, 1]. Shapes are functions that give the distance to their edge in pixels, negative inside."""

    def __init__(self, width, height, color):
        self.width, self.height = width, height
        shade = color if callable(color) else lambda x, y: color
        self.pixels = [shade(x + 0.5, y + 0.5) for y in range(height) for x in range(width)]

    def cover(self, amount, color, box=None):
        """Lays color over the pixels of box, as much of it as amount(x, y) says."""
        left, top, right, bottom = box or (0, 0, self.width, self.height)
        shade = color if callable(color) else lambda x, y: color
        for y in range(max(0, int(top)), min(self.height, int(bottom) + 1)):
            for x in range(max(0, int(left)), min(self.width, int(right) + 1)):
                part = clamp(amount(x + 0.5, y + 0.5))
                if part > 0:
                    i = y * self.width + x
                    self.pixels[i] = mix(self.pixels[i], shade(x + 0.5, y + 0.5), part)

    def fill(self, distance, color, box=None, opacity=1.0):
        self.cover(lambda x, y: opacity * clamp(0.5 - distance(x, y)), color, box)

    def glow(self, cx, cy, radius, color, strength):
        """Adds light that fades with the distance from a point."""
        for y in range(self.height):
            for x in range(self.width):
                d = math.hypot(x + 0.5 - cx, y + 0.5 - cy)
                light = strength * math.exp(-d / radius)
                if light > 0.004:
                    i = y * self.width + x
                    self.pixels[i] = tuple(p + (1 - p) * c * light for p, c in zip(self.pixels[i], color))

    def at(self, x, y):
        """The colour at a place between pixels."""
        x, y = clamp(x - 0.5, 0, self.width - 1.001), clamp(y - 0.5, 0, self.height - 1.001)
        ix, iy = int(x), int(y)
        i = iy * self.width + ix
        top = mix(self.pixels[i], self.pixels[i + 1], x - ix)
        bottom = mix(self.pixels[i + self.width], self.pixels[i + self.width + 1], x - ix)
        return mix(top, bottom, y - iy)

    def png(self, path):
        raw = bytearray()
        for y in range(self.height):
            raw.append(0)
            for pixel in self.pixels[y * self.width:(y + 1) * self.width]:
                raw.extend(round(clamp(c) * 255) for c in pixel)

        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        head = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) +
                       chunk(b"IDAT", zlib.compress(bytes(raw))) + chunk(b"IEND", b""))


def circle(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) - radius


def segment(x0, y0, x1, y1, thickness):
    dx, dy = x1 - x0, y1 - y0

    def distance(x, y):
        t = clamp(((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy))
        return math.hypot(x - x0 - t * dx, y - y0 - t * dy) - thickness / 2
    return distance


def polygon(*points):
    """A convex polygon, its corners clockwise as seen on the screen."""
    edges = []
    for (x0, y0), (x1, y1) in zip(points, points[1:] + points[:1]):
        length = math.hypot(x1 - x0, y1 - y0)
        edges.append((x0, y0, (y1 - y0) / length, -(x1 - x0) / length))
    return lambda x, y: max((x - x0) * nx + (y - y0) * ny for x0, y0, nx, ny in edges)


def pine(cx, base, height):
    def distance(x, y):
        t = (y - base + height) / height  # 0 at the tip, 1 at the foot
        if t < 0 or y > base + 2:
            return 1.0
        branch = (t * 7) % 1
        return abs(x - cx) - height * 0.2 * (0.10 * t + 0.62 * t * (0.45 + 0.55 * branch)) - 0.4
    return distance, (cx - height * 0.2, base - height, cx + height * 0.2, base + 2)


def stars(canvas, bottom, density, seed):
    for y in range(bottom):
        for x in range(canvas.width):
            if chance(x, y, seed) < density:
                light = (0.25 + 0.75 * chance(x, y, seed + 1)) * (1 - y / bottom)
                canvas.cover(lambda px, py: light * clamp(1.3 - math.hypot(px - x - 0.5, py - y - 0.5)),
                             rgb("fff6e0"), (x - 1, y - 1, x + 1, y + 1))


def water(canvas, shore, tint, swell):
    """Below shore the picture is mirrored, with waves that grow towards the viewer."""
    above = Canvas(1, 1, (0, 0, 0))
    above.width, above.height, above.pixels = canvas.width, shore, canvas.pixels[:shore * canvas.width]

    def mirrored(x, y):
        depth = y - shore
        near = depth / (canvas.height - shore)
        wave = math.sin(depth * 2.6 / (0.4 + near) + 2 * noise(x / 40, depth / 5, 91)) * swell * near
        wave += (clouds(x / 22, depth / 2.2, 77, 3) - 0.5) * swell * 1.4 * near
        color = above.at(x + wave * 1.6, shore - depth * 0.98 - 0.5 + wave)
        return mix(color, tint, 0.22 + 0.3 * near)
    canvas.cover(lambda x, y: 1.0 if y > shore else 0.0, mirrored, (0, shore, canvas.width, canvas.height))


# ---- the pictures

def lake():
    width, height, shore = 420, 280, 176
    sun = (286.0, 138.0)
    sky = [(0.0, rgb("141d45")), (0.30, rgb("39346e")), (0.55, rgb("8a4a7c")), (0.76, rgb("e2716a")),
           (0.90, rgb("fba765")), (1.0, rgb("ffd58a"))]
    canvas = Canvas(width, height, lambda x, y: gradient(sky, y / shore))
    stars(canvas, 84, 0.006, 5)
    canvas.glow(*sun, 70, rgb("ffc070"), 0.55)
    canvas.cover(lambda x, y: 0.75 * smooth(0.53, 0.72, clouds(x / 105, y / 17, 21)) * smooth(20, 90, y),
                 lambda x, y: mix(rgb("5c3b73"), rgb("ffb48a"), smooth(40, 150, y)), (0, 20, width, shore))
    canvas.fill(circle(*sun, 17), rgb("fff3c4"))
    canvas.glow(*sun, 16, rgb("fff0c0"), 0.7)

    ridges = [(128, 58, 95, 3, "8d5f8c", "d28a80"), (146, 42, 70, 13, "5f4a7c", "a06c7c"),
              (160, 26, 48, 29, "3b3767", "6c4d6c"), (171, 13, 30, 47, "211f47", "3a2c4c")]
    for base, rise, scale, seed, shaded, lit in ridges:
        # A valley lets the sun through between the far mountains.
        crest = [base - rise * (clouds(x / scale, 0.5, seed, 6) - 0.35) * 1.7
                 + rise * 0.72 * math.exp(-((x - sun[0]) / 44) ** 2) for x in range(width + 2)]

        def distance(x, y):
            i = int(x)
            return (crest[i] + (crest[i + 1] - crest[i]) * (x - i) - y) * 0.8

        def rock(x, y):
            below = y - crest[int(x)]
            i = int(clamp(x + below * 0.55 * math.sin(x / 37 + seed), 0, width - 5))  # flanks lean to either side
            rough = clouds(x / 12 + below / 16, y / 15, seed + 7, 4) - 0.5
            slope = clamp(0.5 + (crest[i] - crest[i + 4]) * 0.13 + rough * 1.3)
            haze = smooth(0, 50, below) * 0.35
            return mix(mix(rgb(lit), rgb(shaded), slope), rgb("f0a080"), haze * (1 if seed < 20 else 0.3))
        canvas.fill(distance, rock, (0, 0, width - 1, shore))
    for i in range(52):
        x = chance(i, 1, 8) * width
        tree, box = pine(x, shore + 1, 5 + 9 * chance(i, 2, 8) * (0.4 + abs(x - 210) / 260))
        canvas.fill(tree, rgb("15163a"), box)

    canvas.fill(polygon((112, 166), (113, 192), (96, 192)), rgb("fbe9d2"), (94, 150, 114, shore))
    water(canvas, shore, rgb("1c2450"), 7)
    canvas.cover(lambda x, y: 0.9 * math.exp(-((x - sun[0]) / (7 + (y - shore) * 0.26)) ** 2)
                 * smooth(0.50, 0.68, clouds(x / 13, y / 1.7, 61, 2)), rgb("ffe0a0"), (180, shore, 400, height))

    # The boat stands in front of the far shore, so it is drawn once more with its own, shorter reflection.
    canvas.cover(lambda x, y: 0.45 * smooth(222, 197, y) * clamp(0.5 - (abs(x - 110 - 2 * math.sin(y)) - 7)),
                 rgb("f3dcc8"), (95, 197, 125, 222))
    canvas.fill(polygon((112, 158), (113, 192), (94, 192)), rgb("fff2dc"), (92, 155, 115, 194))
    canvas.fill(polygon((115, 163), (126, 192), (115, 192)), rgb("f2c9a8"), (113, 160, 128, 194))
    canvas.fill(polygon((90, 193), (130, 193), (124, 199), (97, 199)), rgb("2a1830"), (88, 191, 132, 201))

    bank = [height - 20 + 11 * math.cos((x - 120) / 92) - 14 * clouds(x / 26, 0.3, 17) for x in range(width + 2)]
    canvas.fill(lambda x, y: (bank[int(x)] - y) * 0.8, rgb("0b0b22"), (0, 200, width - 1, height))
    for i in range(26):
        side = -1 if i % 2 else 1
        x = 210 + side * (90 + 118 * chance(i, 3, 4) ** 0.7)
        tree, box = pine(x, bank[int(x)] + 6, 30 + 92 * chance(i, 4, 4) * smooth(90, 210, abs(x - 210)))
        canvas.fill(tree, mix(rgb("0b0b22"), rgb("141436"), chance(i, 5, 4)), box)
    for x, y, size in ((196, 62, 9), (214, 71, 7), (182, 74, 6)):
        for side in (-1, 1):
            canvas.fill(segment(x, y, x + side * size * 0.5, y - size * 0.34, 1.5), rgb("241c3f"),
                        (x - size, y - size, x + size, y + size))
            canvas.fill(segment(x + side * size * 0.5, y - size * 0.34, x + side * size, y - size * 0.1, 1.2),
                        rgb("241c3f"), (x - size - 2, y - size, x + size + 2, y + size))
    return canvas


WHEEL_GROUND = "18202c"


def hue(turn, lightness=1.0, saturation=1.0):
    channels = (clamp(abs((turn + shift) % 1 * 6 - 3) - 1) for shift in (0, 2 / 3, 1 / 3))
    return tuple(lightness * (1 - saturation + saturation * c) for c in channels)


def wheel():
    size, middle = 224, 112.0
    canvas = Canvas(size, size, rgb(WHEEL_GROUND))
    box = (0, 0, size, size)

    def ring(x, y):
        r, turn = math.hypot(x - middle, y - middle), math.atan2(y - middle, x - middle) / math.tau % 1
        return hue(turn, 0.35 + 0.65 * smooth(108, 88, r))
    canvas.fill(lambda x, y: abs(math.hypot(x - middle, y - middle) - 97) - 11, ring, box)
    for i in range(12):
        angle = i * math.tau / 12
        cx, cy = middle + 70 * math.cos(angle), middle + 70 * math.sin(angle)
        canvas.fill(circle(cx, cy, 13), lambda x, y: mix((1, 1, 1), hue(i / 12, 0.95),
                    clamp(math.hypot(x - cx + 5, y - cy + 6) / 15 + 0.15)), (cx - 15, cy - 15, cx + 15, cy + 15))
    canvas.fill(circle(middle, middle, 49), lambda x, y: hue(
        math.atan2(y - middle, x - middle) / math.tau % 1, 1.0, clamp(math.hypot(x - middle, y - middle) / 49)),
        (60, 60, 164, 164))
    return canvas


def lighthouse():
    width, height, sea = 180, 300, 226
    lamp = (96.0, 74.0)
    sky = [(0.0, rgb("070b24")), (0.5, rgb("16265a")), (0.85, rgb("2f5a8c")), (1.0, rgb("6f9fb4"))]
    canvas = Canvas(width, height, lambda x, y: gradient(sky, y / sea))
    stars(canvas, 170, 0.010, 41)
    canvas.fill(circle(38, 44, 19), lambda x, y: mix(rgb("fdf6d8"), rgb("cfc8a8"), clouds(x / 9, y / 9, 31) ** 2),
                (15, 20, 62, 70))
    canvas.glow(38, 44, 26, rgb("d8e0ff"), 0.3)

    for direction in (math.radians(172), math.radians(-14)):
        def beam(x, y):
            dx, dy = x - lamp[0], y - lamp[1]
            r = math.hypot(dx, dy) + 0.001
            off = abs((math.atan2(dy, dx) - direction + math.pi) % math.tau - math.pi)
            return 0.8 * smooth(0.15, 0.02, off) * math.exp(-r / 110)
        canvas.cover(beam, rgb("ffe9a0"))

    def sea_color(x, y):
        t = (y - sea) / (height - sea)
        crest = smooth(0.52, 0.75, clouds(x / (14 + 30 * t), y / (1.5 + 5 * t), 51, 3))
        return mix(mix(rgb("48788f"), rgb("0a1c3c"), smooth(0, 0.8, t)), rgb("a9c9d0"), crest * (0.5 - 0.25 * t))
    canvas.cover(lambda x, y: clamp(y - sea), sea_color)
    canvas.cover(lambda x, y: 0.5 * math.exp(-((x - 38) / (5 + (y - sea) * 0.2)) ** 2)
                 * smooth(0.48, 0.66, clouds(x / 9, y / 1.6, 63, 2)), rgb("fdf6d8"), (0, sea, 80, height))

    rocks = [258 - 40 * math.exp(-((x - 104) / 40) ** 2) + 9 * clouds(x / 9, 0.4, 71) + 0.9 * max(0, 62 - x)
             for x in range(width + 2)]
    canvas.fill(lambda x, y: (rocks[int(x)] - y) * 0.8, lambda x, y: mix(
        rgb("10131f"), rgb("4b5162"), smooth(0.45, 0.75, clouds(x / 8, y / 6, 81)) * smooth(60, 0, y - rocks[int(x)])),
        (0, 190, width - 1, height))

    def tower_side(y):
        return 13 + (y - 92) * 0.062

    def paint(x, y):
        around = (x - lamp[0]) / tower_side(y)
        light = 0.35 + 0.75 * math.sqrt(max(0.0, 1 - (around + 0.35) ** 2 * 0.62))
        band = rgb("d8372f") if int((y - 92 + around * around * 3) // 22) % 2 == 0 else rgb("f4efe4")
        return tuple(clamp(c * light) for c in band)
    canvas.fill(lambda x, y: max(abs(x - lamp[0]) - tower_side(y), 92 - y, y - 228), paint, (60, 90, 130, 230))
    for x, y in ((94, 122), (99, 166), (93, 206)):
        canvas.fill(lambda px, py: max(abs(px - x) - 2.4, abs(py - y) - 4), rgb("ffd67a"), (x - 4, y - 6, x + 4, y + 6))
    canvas.fill(lambda x, y: max(abs(x - 96) - 10, abs(y - 76) - 12), lambda x, y: mix(
        rgb("fffbe0"), rgb("f4b84a"), clamp(abs(x - 96) / 11)), (84, 62, 108, 90))
    for x in (86.5, 93, 99, 105.5):
        canvas.fill(segment(x, 64, x, 88, 1.3), rgb("20242f"), (x - 2, 62, x + 2, 90))
    canvas.fill(polygon((96, 48), (110, 64), (82, 64)), rgb("b3261f"), (80, 46, 112, 66))
    canvas.fill(circle(96, 47, 2.6), rgb("e8c05a"), (92, 43, 100, 51))
    canvas.fill(lambda x, y: max(abs(x - 96) - 19, abs(y - 90) - 2.2), rgb("2a2f3c"), (75, 86, 117, 94))
    canvas.glow(*lamp, 17, rgb("ffefb0"), 0.85)
    return canvas


def skyline():
    width, height, shore = 560, 124, 88
    sky = [(0.0, rgb("1b2a5c")), (0.45, rgb("5a4f8f")), (0.75, rgb("d57a8c")), (1.0, rgb("ffc38a"))]
    canvas = Canvas(width, height, lambda x, y: gradient(sky, y / shore))
    stars(canvas, 36, 0.006, 15)
    canvas.cover(lambda x, y: 0.5 * smooth(0.5, 0.72, clouds(x / 120, y / 9, 27)) * smooth(8, 34, y),
                 rgb("f0a0a0"), (0, 10, width, shore))
    for layer, (far, color, lit) in enumerate(((0.2, "8a6590", 0.12), (0.5, "4b4274", 0.3), (1.0, "1d1f42", 0.5))):
        x = -8
        while x < width:
            n = x + 1000 * layer
            wide = 13 + int(20 * chance(n, 1, 3))
            # A tall centre, low at either end.
            tall = (18 + 52 * chance(n, 2, 3) ** 1.6 * math.exp(-((x - 330 + 60 * layer) / 170) ** 2)
                    + 10 * chance(n, 3, 3)) * (1.12 - 0.2 * layer)
            top = shore - tall
            left, right = x, x + wide
            canvas.fill(lambda px, py: max(left - px, px - right, top - py), lambda px, py: mix(
                rgb(color), rgb("f59a86"), (1 - far) * 0.6 * smooth(top, shore, py)),
                (left - 1, top - 1, right + 1, shore))
            if chance(n, 4, 3) < 0.35:
                canvas.fill(segment((left + right) / 2, top, (left + right) / 2, top - 9, 1.2), rgb(color),
                            (left, top - 11, right, top + 1))
            for wy in range(int(top) + 4, shore - 3, 5):
                for wx in range(left + 3, right - 3, 4):
                    if chance(wx, wy, layer) < lit:
                        glow = mix(rgb("ffb45a"), rgb("fff0b8"), chance(wx, wy, 9))
                        canvas.fill(lambda px, py: max(abs(px - wx - 1) - 1, abs(py - wy - 1) - 1.2), glow,
                                    (wx - 1, wy - 1, wx + 3, wy + 3), 0.45 + 0.5 * far)
            x += wide + (2 if chance(n, 5, 3) < 0.3 else 0)
    water(canvas, shore, rgb("1a2148"), 2.6)
    return canvas


def moon(phase, craters):
    """Phase from 0 (new) over 0.5 (full) to 1."""
    size, radius = 96, 40.0
    canvas = Canvas(size, size, lambda x, y: mix(rgb("0a0e22"), rgb("1c2548"), clamp(y / size)))
    stars(canvas, 300, 0.008, 3)
    angle = phase * math.tau
    sun = (math.sin(angle), -0.12, -math.cos(angle))
    length = math.sqrt(sum(c * c for c in sun))

    def surface(px, py):
        x, y = (px - 48) / radius, (py - 48) / radius
        z = math.sqrt(max(0.0, 1 - x * x - y * y))
        tone = 0.80 - 0.34 * smooth(0.46, 0.66, clouds(x * 1.7 + 5, y * 1.7 + z, 19)) \
            + 0.10 * (clouds(x * 7, y * 7, 23) - 0.5)
        tilt = [x, y, z]
        for cx, cy, cr in craters:
            dx, dy = x - cx, y - cy
            d = math.hypot(dx, dy) / cr
            if d < 1.3:
                push = math.sin(clamp(d / 1.3) * math.pi * 2) * 0.55 / (d * cr + 0.02) * cr * 0.6
                tilt[0] -= dx * push
                tilt[1] -= dy * push
                tone += 0.06 * smooth(0.6, 1.0, d) - 0.04 * smooth(0.8, 0.2, d)
        light = sum(a * b for a, b in zip(tilt, sun)) / length
        day = tone * smooth(-0.05, 0.75, light) * 1.08
        earthshine = 0.19 * tone * (1 - clamp(1.6 * day))
        return (day + earthshine * 0.75, day * 0.97 + earthshine * 0.9, day * 0.88 + earthshine * 1.3)
    canvas.fill(circle(48, 48, radius), surface, (6, 6, 90, 90))
    return canvas


def moons():
    craters = []
    for i in range(200):
        x, y, r = chance(i, 1, 6) * 2 - 1, chance(i, 2, 6) * 2 - 1, 0.05 + 0.16 * chance(i, 3, 6) ** 3
        if 0.06 < x * x + y * y < 0.85 and all(math.hypot(x - a, y - b) > (r + c) * 1.1 for a, b, c in craters):
            craters.append((x, y, r))
    return [moon((i + 0.6) / 8.2, craters) for i in (3, 4, 5, 6, 7, 0, 1, 2)]


def poster():
    width, height = 400, 300
    cx, cy = 200.0, 128.0

    def ground(x, y):
        r = math.hypot(x - cx, y - cy)
        rays = 0.5 + 0.5 * math.sin(math.atan2(y - cy, x - cx) * 24)
        return (clamp(0.25 + 0.62 * smooth(0.35, 0.65, rays) * smooth(60, 260, r) + 0.25 * smooth(230, 90, r)),) * 3
    canvas = Canvas(width, height, ground)
    canvas.cover(lambda x, y: 0.85 * math.exp(-(((x - cx) / 90) ** 2 + ((y - 218) / 9) ** 2)), (0, 0, 0))

    def ball(x, y):
        nx, ny = (x - cx) / 84, (y - cy) / 84
        nz = math.sqrt(max(0.0, 1 - nx * nx - ny * ny))
        light = clamp(-0.52 * nx - 0.58 * ny + 0.62 * nz)
        shine = clamp(-0.30 * nx - 0.34 * ny + 0.89 * nz) ** 60
        return (clamp(0.03 + 0.80 * light + 0.75 * shine + 0.16 * smooth(0.4, 0.0, nz)),) * 3
    canvas.fill(circle(cx, cy, 84), ball, (110, 40, 290, 215))

    canvas.fill(lambda x, y: abs(y - 258) - 34, (1, 1, 1), (0, 220, width, height))
    canvas.fill(lambda x, y: abs(abs(y - 258) - 31) - 1, (0, 0, 0), (0, 220, width, height))
    letters = ([(132, 240, 172, 240), (172, 240, 132, 276), (132, 276, 172, 276)],
               [(194, 276, 194, 240), (194, 240, 212, 262), (212, 262, 230, 240), (230, 240, 230, 276)],
               [(252, 240, 252, 276)])
    for letter in letters:
        for stroke in letter:
            canvas.fill(segment(*stroke, 9), (0, 0, 0), (100, 230, 300, 286))
    for x in (64, 88, 312, 336):
        canvas.fill(circle(x, 258, 6), (0, 0, 0), (x - 8, 248, x + 8, 268))
    return canvas


def heart():
    rows = ("................", "...ooo....ooo...", "..orrro..orrro..", ".orwwrrooorrrdo.", ".orwwrrrrrrrrdo.",
            ".orwrrrrrrrrrdo.", ".orrrrrrrrrrrdo.", ".orrrrrrrrrrrdo.", "..orrrrrrrrrdo..", "...orrrrrrrdo...",
            "....orrrrrdo....", ".....orrrdo.....", "......ordo......", ".......oo.......", "................",
            "................")
    colors = {".": rgb("f8f4e8"), "o": rgb("501028"), "r": rgb("e02848"), "w": rgb("ffffff"), "d": rgb("a01838")}
    return Canvas(16, 16, lambda x, y: colors[rows[int(y)][int(x)]])


def main():
    arguments = argparse.ArgumentParser(description="Draws the sample pictures and packs them into this folder.")
    arguments.add_argument("packer", nargs="?", help="zmi-pack.exe",
                           default=os.path.join(ROOT, "build", "mingw-release", "bin", "zmi-pack.exe"))
    arguments.add_argument("--keep", metavar="FOLDER", help="leave the drawn PNG files there")
    options = arguments.parse_args()

    with tempfile.TemporaryDirectory() as scratch:
        folder = options.keep or scratch
        os.makedirs(folder, exist_ok=True)

        def draw(name, canvas):
            path = os.path.join(folder, name + ".png")
            canvas.png(path)
            return path

        def pack(name, *what):
            subprocess.run([os.path.join(ROOT, "scripts", "wine"), options.packer, *what,
                            os.path.join(HERE, name + ".zmi")], check=True)

        evening = draw("lake", lake())
        pack("lake", "--title", "Evening at the lake", evening)
        pack("lake-256-colours", "--mode", "8", "--title", "The lake in 256 colours", evening)
        pack("lake-black-and-white", "--mode", "1", "--title", "The lake in black and white", evening)
        pack("lighthouse", "--mode", "8", "--title", "The lighthouse", draw("lighthouse", lighthouse()))
        pack("skyline", "--title", "City lights", draw("skyline", skyline()))
        pack("colour-wheel", "--transparent", WHEEL_GROUND, "--title", "Colour wheel", draw("colour-wheel", wheel()))
        pack("poster", "--mode", "1", "--title", "Poster", draw("poster", poster()))
        pack("heart", "--no-dither", draw("heart", heart()))
        pack("moon", "--mode", "8", "--title", "Eight phases of the moon",
             *[draw(f"moon-{i + 1}", frame) for i, frame in enumerate(moons())])
        pack("blank", "--blank")


if __name__ == "__main__":
    main()
