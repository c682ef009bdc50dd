"""A moth over a compass ring: line art for a stencil, bold and fine, with dots and soft shades.

Drawn in millimetres about the middle of an A4 page, y upwards. What is on the left is the mirror
image of the right: each part is drawn once and again with x reversed.
"""
import math

import pdf

MM = 72 / 25.4
PAGE = (595.28, 841.89)


def mix(a, b, t):
    return (a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t)


def curve(*points, steps=24):
    """A chain of cubic Bezier curves as points: p0 c c p1 c c p2 ..."""
    result = [points[0]]
    for i in range(0, len(points) - 1, 3):
        a, b, c, d = points[i:i + 4]
        for step in range(1, steps + 1):
            t = step / steps
            ab, bc, cd = mix(a, b, t), mix(b, c, t), mix(c, d, t)
            result.append(mix(mix(ab, bc, t), mix(bc, cd, t), t))
    return result


def along(points, t):
    """The point at the share t of the line's length."""
    lengths = [math.dist(a, b) for a, b in zip(points, points[1:])]
    left = t * sum(lengths)
    for (a, b), length in zip(zip(points, points[1:]), lengths):
        if left <= length and length > 0:
            return mix(a, b, left / length)
        left -= length
    return points[-1]


def offset(points, distance):
    """The line moved sideways: to its left for a positive distance."""
    result = []
    for i, (x, y) in enumerate(points):
        ax, ay = points[max(i - 1, 0)]
        bx, by = points[min(i + 1, len(points) - 1)]
        length = math.dist((ax, ay), (bx, by)) or 1
        result.append((x - (by - ay) / length * distance, y + (bx - ax) / length * distance))
    return result


def scalloped(points, count, depth):
    """The line with count bows out to its left."""
    result = []
    total = len(points) - 1
    for i, (moved, plain) in enumerate(zip(offset(points, depth), points)):
        result.append(mix(plain, moved, abs(math.sin(math.pi * count * i / total))))
    return result


def circle(x, y, radius, steps=48):
    return [(x + radius * math.cos(2 * math.pi * i / steps),
             y + radius * math.sin(2 * math.pi * i / steps)) for i in range(steps)]


class Stencil(pdf.Page):
    def __init__(self):
        super().__init__(*PAGE)
        self.content.append(f"{MM:.6f} 0 0 {MM:.6f} {PAGE[0] / 2:.3f} {PAGE[1] / 2 + 41:.3f} cm")
        self.content.append("1 J 1 j")

    def stroke(self, points, width=0.35, closed=False):
        self.add("w", width)
        self.path(points, closed)
        self.add("S")

    def fill(self, points, gray=0, width=0):
        """An area, with a black outline when width is not 0."""
        self.add("g", gray)
        self.path(points, closed=True)
        if width:
            self.add("w", width)
        self.add("B" if width else "f")
        self.add("g", 0)

    def dot(self, x, y, radius, gray=0):
        self.fill(circle(x, y, radius, 16), gray)

    def inside(self, points):
        """What is drawn from here to outside() shows only within the area."""
        self.add("q")
        self.path(points, closed=True)
        self.add("W")
        self.add("n")

    def outside(self):
        self.add("Q")

    def both_sides(self, draw):
        draw()
        self.content.append("q -1 0 0 1 0 0 cm")
        draw()
        self.add("Q")


def ring(s):
    """A compass ring: degrees, a star of sixteen points behind the moth, and dotted circles."""
    for radius, width in ((88, 0.9), (86.6, 0.25), (80.5, 0.25), (79.6, 0.6)):
        s.stroke(circle(0, 0, radius, 180), width, closed=True)
    for degree in range(0, 360, 2):
        angle = math.radians(degree)
        inner = 80.5 if degree % 30 == 0 else 83.2 if degree % 10 == 0 else 84.8
        s.stroke([(r * math.cos(angle), r * math.sin(angle)) for r in (inner, 86.6)],
                 0.7 if degree % 30 == 0 else 0.22)
    for i in range(120):
        angle = math.radians(i * 3 + 1.5)
        s.dot(91.5 * math.cos(angle), 91.5 * math.sin(angle), 0.75 if i % 5 == 2 else 0.32)
    for reach, waist, turns in ((76, 17, (22.5, 67.5)), (94, 20, (45,)), (101, 22, (0, 90))):
        for quarter in range(4):
            for turn in turns:
                angle = math.radians(90 * quarter + turn)
                tip = (reach * math.cos(angle), reach * math.sin(angle))
                for side, shaded in ((1, True), (-1, False)):
                    base = (waist * math.cos(angle + side * 0.4),
                            waist * math.sin(angle + side * 0.4))
                    half = [tip, base, (0, 0)]
                    s.fill(half, 1, 0.45)
                    if shaded:
                        s.inside(half)
                        for line in range(3, 102, 2 if reach < 100 else 1):
                            foot = (line * math.cos(angle), line * math.sin(angle))
                            s.stroke([foot, (foot[0] + 30 * math.cos(angle + side * 1.9),
                                             foot[1] + 30 * math.sin(angle + side * 1.9))], 0.16)
                        s.outside()


def eye_spot(s, x, y, radius):
    s.fill(circle(x, y, radius), 1, 0.8)
    s.inside(circle(x, y, radius * 0.84))
    s.shade(3, (x - radius * 0.2, y + radius * 0.25, radius * 0.05, x, y, radius * 0.84),
            0.95, 0.25)
    s.outside()
    s.stroke(circle(x, y, radius * 0.84), 0.3, closed=True)
    s.dot(x, y, radius * 0.5)
    s.dot(x + radius * 0.16, y + radius * 0.2, radius * 0.15, 1)
    for i in range(28):
        angle = 2 * math.pi * i / 28
        s.stroke([(x + r * math.cos(angle), y + r * math.sin(angle))
                  for r in (radius * 1.08, radius * (1.32 if i % 2 else 1.2))], 0.22)


def wing(s, edge, margin, back, root, bows, shade, veins, bands):
    """A wing: the leading edge, the outer margin (with bows) and the way back to the root."""
    rim = scalloped(margin, bows, 2.0)
    outline = edge + rim[1:] + back[1:]
    s.fill(outline, 1)
    s.inside(outline)
    s.shade(3, (*root, 0, *root, shade), 0.35, 1)
    # Veins run from the root to the margin, thinner outwards; hairs of the down lie between them.
    for i in range(veins):
        end = along(margin, (i + 0.5) / veins)
        bend = mix(mix(root, end, 0.5), along(edge, 0.5), 0.22)
        s.stroke(curve(root, mix(root, bend, 0.7), bend, end), 0.3)
        for hair in range(1, 14):
            start = mix(root, end, 0.10 + 0.012 * hair)
            s.stroke([start, mix(start, mix(end, along(margin, (i + hair / 14) / veins), 0.8),
                                 0.16 + 0.05 * (hair % 3))], 0.14)
    # Bands follow the margin: two bold lines, beads, scales between bows, a dark rim.
    for inset, width in bands:
        s.stroke(offset(margin, -inset), width)
    beads = offset(margin, -(bands[0][0] + bands[1][0]) / 2)
    for i in range(bows * 2):
        x, y = along(beads, (i + 0.5) / (bows * 2))
        s.dot(x, y, 0.95 if i % 2 else 0.5)
    for i in range(bows):
        middle = along(margin, (i + 0.5) / bows)
        s.stroke(circle(*middle, 2.1, 24), 0.3, closed=True)
        s.dot(*middle, 0.8)
    for i in range(bows * 9):
        foot = along(rim, i / (bows * 9))
        s.stroke([foot, mix(foot, root, 0.035 + 0.012 * (i % 2))], 0.2)
    # Stippling: denser toward the outer bands.
    for row in range(7):
        line = offset(margin, -(bands[-1][0] + 1.6 + 1.5 * row))
        for i in range(54 - 6 * row):
            x, y = along(line, (i + 0.5 * (row % 2) + 0.25) / (54 - 6 * row))
            s.dot(x, y, 0.3 - 0.028 * row)
    s.outside()
    s.stroke(outline, 1.0, closed=True)
    s.stroke(offset(edge, -1.3), 0.3)


def right_wings(s):
    root = (4, -2)
    edge = curve(root, (14, -12), (34, -14), (54, -9))
    margin = curve((54, -9), (61, -20), (58, -36), (44, -46), (39, -50), (36, -58), (37, -68))
    back = curve((37, -68), (28, -60), (22, -44), (14, -34), (9, -28), (5, -20), root)
    wing(s, edge, margin, back, root, 9, 34, 7, ((4.4, 0.5), (8.2, 0.5), (9.2, 0.22)))
    eye_spot(s, 35, -25.5, 6.2)

    root = (4, 10)
    edge = curve(root, (16, 28), (44, 46), (78, 50))
    margin = curve((78, 50), (82, 40), (76, 26), (66, 14), (60, 6), (57, -2), (55, -12))
    back = curve((55, -12), (40, -8), (18, -6), (5, 0))
    wing(s, edge, margin, back, root, 9, 44, 8, ((4.6, 0.5), (8.6, 0.5), (9.7, 0.22)))
    eye_spot(s, 47, 21, 7.4)
    s.stroke(curve((22, 14), (26, 20), (32, 14), (28, 9)), 0.5)
    s.stroke(curve((22, 14), (23, 8), (26, 7), (28, 9)), 0.5)


def right_antenna(s):
    stem = curve((1.6, 23), (6, 34), (14, 44), (27, 49))
    s.stroke(stem, 0.7)
    for i in range(3, 40):
        at = along(stem, i / 40)
        ahead = along(stem, min(1, i / 40 + 0.02))
        angle = math.atan2(ahead[1] - at[1], ahead[0] - at[0])
        reach = 5.2 * math.sin(math.pi * min(1, i / 40 + 0.08)) ** 0.8 + 0.4
        for side in (1, -1):
            tip = (at[0] + reach * math.cos(angle + side * 0.95),
                   at[1] + reach * math.sin(angle + side * 0.95))
            s.stroke([at, tip], 0.26)


def body(s):
    """The tapering abdomen in rings, the downy thorax, the head."""
    side = curve((0, -40), (3.5, -33), (6.6, -16), (5.4, 0))
    outline = side + [(-x, y) for x, y in reversed(side)]
    s.fill(outline, 1)
    s.inside(outline)
    s.shade(2, (-6, 0, 1.5, 0), 0.25, 1)
    for ringed in range(10):
        y = -36 + 4 * ringed
        s.stroke(curve((-8, y + 1.6), (-4, y - 1), (4, y - 1), (8, y + 1.6)), 0.6)
        for i in range(-16, 17):
            s.stroke([(i * 0.42, y - 0.2), (i * 0.44, y + 1.1 + 0.5 * (i % 2))], 0.16)
    s.outside()
    s.stroke(outline, 0.9, closed=True)

    thorax = circle(0, 8.5, 8.6, 60)
    thorax = [(x * 0.84, 8.5 + (y - 8.5) * 1.25) for x, y in thorax]
    s.fill(thorax, 1)
    s.inside(thorax)
    s.shade(3, (1.5, 12, 1, 0, 8, 12), 1, 0.3)
    s.outside()
    for layer in range(9):
        share = 1.02 - 0.11 * layer
        for i in range(72 - 6 * layer):
            angle = 2 * math.pi * (i + 0.5 * (layer % 2)) / (72 - 6 * layer)
            x, y = 7.2 * share * math.cos(angle), 8.5 + 10.75 * share * math.sin(angle)
            s.stroke([(x, y), (x * 1.10 + 0.1, 8.5 + (y - 8.5) * 1.10 - 1.3)], 0.24)
    s.fill([(x * 1.15, y) for x, y in circle(0, 21.4, 3.6)], 1, 0.8)
    for i in range(-4, 5):
        s.stroke([(i * 0.7, 18.6), (i * 0.85, 23.2 - abs(i) * 0.3)], 0.22)
    for x in (-3.4, 3.4):
        s.dot(x, 21.8, 1.5)
        s.dot(x + 0.4, 22.3, 0.4, 1)


def moon(s):
    """A crescent over the moth, with rays and stars."""
    outer = [(19 * math.cos(t), 74 + 19 * math.sin(t))
             for t in (math.radians(200 + i * 2) for i in range(71))]
    inner = curve(outer[-1], (9, 55.5), (-9, 55.5), outer[0])
    crescent = outer + inner[1:]
    s.fill(crescent, 1)
    s.inside(crescent)
    s.shade(2, (0, 54, 0, 66), 0.2, 1)
    s.outside()
    s.stroke(crescent, 0.8, closed=True)
    for x, y, size in ((-36, 62, 3.2), (36, 62, 3.2), (-43, 57, 1.5), (43, 57, 1.5)):
        star = [((size if i % 2 == 0 else size * 0.3) * math.cos(math.pi * i / 4 + math.pi / 2) + x,
                 (size * 1.3 if i % 4 == 0 else size if i % 2 == 0 else size * 0.3)
                 * math.sin(math.pi * i / 4 + math.pi / 2) + y) for i in range(8)]
        s.fill(star, 0)


def pendants(s):
    """Chains of beads with drops, below."""
    for x, top, length in ((0, -84, 34), (15, -82.5, 22), (30, -78.5, 14)):
        s.stroke([(x, top), (x, top - length)], 0.25)
        for i in range(int(length / 3.2)):
            s.fill(circle(x, top - 2 - 3.2 * i, 0.95 if i % 3 else 1.45, 24), 1, 0.35)
        y = top - length
        drop = curve((x, y), (x + 1.2, y - 4), (x + 4.2, y - 6.5), (x + 3.4, y - 9.6),
                     (x + 2.6, y - 12.2), (x - 2.6, y - 12.2), (x - 3.4, y - 9.6),
                     (x - 4.2, y - 6.5), (x - 1.2, y - 4), (x, y))
        s.fill(drop, 1)
        s.inside(drop)
        s.shade(3, (x - 0.8, y - 7.2, 0.3, x, y - 8.6, 4.6), 1, 0.15)
        s.outside()
        s.stroke(drop, 0.7, closed=True)


def draw():
    s = Stencil()
    ring(s)
    moon(s)
    s.both_sides(lambda: right_wings(s))
    s.both_sides(lambda: right_antenna(s))
    body(s)
    s.both_sides(lambda: pendants(s))
    return s
