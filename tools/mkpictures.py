#!/usr/bin/env python3
"""Draws the pictures of the printer models, data/icon/MODEL/static.xbm, and of the family.

usage: mkpictures.py ICONDIR
"""
import os
import sys

from raster import Bits, arc, black, dark, faint, half, light, lines, middle, rect, rounded, slanted, white

WIDTH, HEIGHT = 250, 200


class Pen:
    """Draws at a place and a scale of its own."""

    def __init__(self, canvas, x=0, y=0, scale=1.0):
        self.canvas, self.x, self.y, self.scale = canvas, x, y, scale

    def at(self, points):
        return [(self.x + px * self.scale, self.y + py * self.scale) for px, py in points]

    def shape(self, points, pattern=white, width=1):
        self.canvas.shape(self.at(points), pattern, width)

    def fill(self, points, pattern):
        self.canvas.fill(self.at(points), pattern)

    def line(self, points, width=1, closed=False):
        self.canvas.line(self.at(points), width, closed)


class Box:
    """A body seen from the front, a little from the right and from above."""

    def __init__(self, pen, x, y, width, height, depth):
        self.pen, self.x, self.y, self.width, self.height = pen, x, y, width, height
        self.kx, self.ky = depth * 0.62, depth * 0.36

    def top(self, u, v):
        """A point of the upper face: u along the front, v to the back, both 0 to 1."""
        return (self.x + u * self.width + v * self.kx, self.y - v * self.ky)

    def side(self, u, v):
        """A point of the right face: u to the back, v downwards."""
        return (self.x + self.width + u * self.kx, self.y + v * self.height - u * self.ky)

    def draw(self, front=white, top=white, side=middle):
        p = self.pen
        p.shape([self.side(0, 0), self.side(1, 0), self.side(1, 1), self.side(0, 1)], side)
        p.shape([self.top(0, 0), self.top(0, 1), self.top(1, 1), self.top(1, 0)], top)
        p.shape(rect(self.x, self.y, self.width, self.height), front)
        return self

    def outline(self):
        p = self.pen
        p.line([self.top(0, 0), self.top(0, 1), self.top(1, 1), self.side(1, 1), self.side(0, 1),
                (self.x, self.y + self.height)], 2, closed=True)


def shadow(pen, x, y, width, depth):
    """On the floor, under a body whose front stands at x, y."""
    kx, ky = depth * 0.62, depth * 0.36
    pen.fill([(x - 4, y + 4), (x + 2, y - 2), (x + width + kx, y - ky - 3), (x + width + kx + 16, y - ky + 2),
              (x + width + 12, y + 4)], half)


def tray(pen, x, y, width, height):
    """The front of a cassette: a grip, a window that shows how full it is."""
    pen.shape(rect(x, y, width, height))
    grip = min(34, width * 0.3)
    pen.shape(rounded(x + (width - grip) / 2, y + height * 0.35, grip, height * 0.38, height * 0.17), dark)
    pen.shape(rect(x + width - 13, y + height * 0.28, 5, height * 0.5))
    pen.fill(rect(x + width - 13, y + height * 0.55, 6, height * 0.28), black)


def panel(pen, x, y, width, height):
    """A display with lines of text, and keys."""
    pen.shape(rounded(x, y, width, height, 3))
    screen = width * 0.5
    pen.shape(rect(x + 4, y + 4, screen, height - 8), black)
    keys = int((width - screen - 12) // 7)
    for i in range(keys):
        pen.shape(rect(x + screen + 9 + 7 * i, y + height / 2 - 2, 4, 4), black if i == 0 else white)


def lamps(pen, x, y, count):
    for i in range(count):
        pen.fill(arc(x + 9 * i, y, 3.4, 3.4, steps=16), black)
        if i > 0:
            pen.fill(arc(x + 9 * i, y, 2.3, 2.3, steps=16), white)


def badge(pen, x, y):
    """The maker's plate: a T."""
    pen.fill(rounded(x, y, 13, 13, 3), black)
    pen.fill(rect(x + 3, y + 3, 7, 2), white)
    pen.fill(rect(x + 5.5, y + 3, 2, 7), white)


def sheet_lines(pen, points, count):
    """Text on a sheet of four corners, from the far edge to the near one."""
    (ax, ay), (bx, by), (cx, cy), (dx, dy) = points  # near left, far left, far right, near right
    for i in range(1, count + 1):
        v = i / (count + 1)
        lx, ly = bx + (ax - bx) * v, by + (ay - by) * v
        rx, ry = cx + (dx - cx) * v, cy + (dy - cy) * v
        long = 0.85 if i % 3 else 0.6
        pen.line([(lx + (rx - lx) * 0.12, ly + (ry - ly) * 0.12), (lx + (rx - lx) * long, ly + (ry - ly) * long)])


def output(pen, box, left=0.1, right=0.78):
    """A recess in the upper face from which a sheet comes out towards the viewer."""
    pen.shape([box.top(left, 0.12), box.top(left, 0.92), box.top(right, 0.92), box.top(right, 0.12)], half)
    pen.shape([box.top(left, 0.72), box.top(left, 0.92), box.top(right, 0.92), box.top(right, 0.72)], black)
    sheet = [box.top(left + 0.08, 0.02), box.top(left + 0.08, 0.76), box.top(right - 0.08, 0.76),
             box.top(right - 0.08, 0.02)]
    pen.shape(sheet)
    sheet_lines(pen, sheet, 4)


def feet(pen, box, casters=False):
    for u in (0.06, 0.9):
        x = box.x + box.width * u
        if casters:
            pen.shape(arc(x + 4, box.y + box.height + 5, 5, 5, steps=16), dark)
        else:
            pen.shape(rect(x, box.y + box.height, 9, 4), black)


# ---- the models, each at 0, 0 in a space of 250 by 200

def desktop(pen):
    """P210: small, one tray."""
    shadow(pen, 40, 172, 140, 70)
    body = Box(pen, 40, 96, 140, 76, 74)
    feet(pen, body)
    body.draw(side=middle)
    output(pen, body)
    pen.shape(rect(40, 96, 140, 10), light)
    badge(pen, 49, 115)
    lamps(pen, 150, 121, 3)
    pen.line([(40, 138), (180, 138)])
    tray(pen, 46, 144, 128, 22)
    body.outline()


def desktop_tall(pen):
    """P340: two trays, a display, the duplex unit at the back."""
    shadow(pen, 38, 184, 146, 76)
    unit = Box(pen, 84, 56, 112, 60, 26)
    unit.draw(top=light)
    unit.outline()
    body = Box(pen, 38, 86, 146, 98, 70)
    feet(pen, body)
    body.draw()
    output(pen, body, 0.08, 0.7)
    badge(pen, 47, 96)
    panel(pen, 106, 93, 70, 20)
    pen.line([(38, 119), (184, 119)])
    pen.shape(rect(46, 124, 130, 8), white)
    pen.line([(96, 131), (126, 131)], 2)
    tray(pen, 44, 137, 134, 20)
    tray(pen, 44, 160, 134, 20)
    pen.line([body.side(0, 0.52), body.side(1, 0.52)])
    for v in (0.18, 0.24, 0.30, 0.36):
        pen.line([body.side(0.25, v), body.side(0.75, v)])
    body.outline()


def desktop_old(pen):
    """X150: two cassettes that stand out, the envelope feeder above them."""
    shadow(pen, 44, 180, 126, 72)
    body = Box(pen, 44, 84, 126, 96, 80)
    feet(pen, body)
    body.draw(side=slanted)
    for u in range(6):  # slits above the fuser
        pen.line([body.top(0.12 + 0.05 * u, 0.6), body.top(0.12 + 0.05 * u, 0.9)])
    pen.shape([body.top(0.48, 0.2), body.top(0.48, 0.88), body.top(0.92, 0.88), body.top(0.92, 0.2)], light)
    badge(pen, 52, 92)
    lamps(pen, 102, 99, 4)
    pen.shape(rect(140, 95, 20, 8), black)
    pen.line([(44, 113), (170, 113)])
    body.outline()
    pen.shape(rect(58, 117, 86, 5), black)  # the slot; an envelope lies on the feeder in front of it
    pen.shape([(38, 141), (62, 122), (144, 122), (126, 141)], light)
    pen.shape([(54, 136), (70, 122), (136, 122), (122, 136)], white)
    pen.line([(70, 122), (97, 131), (136, 122)])
    pen.shape([(38, 141), (126, 141), (126, 144), (38, 144)], white)
    for y in (148, 165):
        pen.shape(rect(38, y, 138, 14))
        pen.shape(rounded(88, y + 4, 38, 6, 3), dark)
        pen.line([(39, y + 14), (176, y + 14)], 2)


def workgroup(pen, finisher=True, trays=3):
    """W520: A3, on the floor, trays below, a stacker at the left."""
    shadow(pen, 66, 186, 124, 66)
    body = Box(pen, 66, 60, 124, 122, 64)
    if finisher:
        stacker = Box(pen, 22, 92, 40, 90, 56)
        feet(pen, stacker, casters=True)
        stacker.draw(side=middle)
        for y in (104, 122):
            pen.shape([(22, y), (8, y - 9), (8, y - 6), (22, y + 5)], white)
            pen.shape([(20, y - 2), (6, y - 11), (6, y - 9), (20, y)], white)
        pen.line([(42, 140), (42, 182)])
        stacker.outline()
    feet(pen, body, casters=True)
    body.draw()
    output(pen, body, 0.06, 0.56)
    scanner = [body.top(0.62, 0.1), body.top(0.62, 0.9), body.top(0.96, 0.9), body.top(0.96, 0.1)]
    pen.shape(scanner, light)
    badge(pen, 74, 68)
    panel(pen, 108, 66, 74, 20)
    pen.line([(66, 92), (190, 92)])
    pen.shape(rect(74, 97, 108, 12), white)
    pen.line([(112, 106), (144, 106)], 2)
    height = (182 - 115) / trays
    for i in range(trays):
        tray(pen, 70, 114 + i * height, 116, height - 3)
    pen.line([body.side(0, 0.45), body.side(1, 0.45)])
    body.outline()
    return body


def production(pen):
    """W760: the large feeder at the right, the finisher with the booklet tray at the left."""
    shadow(pen, 78, 186, 140, 46)
    body = Box(pen, 78, 58, 100, 124, 54)
    finisher = Box(pen, 18, 74, 56, 108, 54)
    feet(pen, finisher, casters=True)
    finisher.draw()
    for y in (88, 106):
        pen.shape([(18, y + 6), (4, y - 6), (4, y - 3), (18, y + 10)], white)
    pen.shape([(16, y - 2), (2, y - 13), (2, y - 10), (16, y + 2)], white)
    pen.shape([(18, 160), (4, 160), (4, 164), (18, 168)], white)  # booklets
    pen.shape([(17, 157), (5, 156), (5, 159), (17, 160)], light)
    pen.line([(46, 84), (46, 182)])
    pen.shape(rect(26, 82, 40, 8), black)
    finisher.outline()
    feet(pen, body, casters=True)
    body.draw(side=middle)
    pen.shape([body.top(0.05, 0.1), body.top(0.05, 0.9), body.top(0.5, 0.9), body.top(0.5, 0.1)], light)
    screen = [(126, 50), (128, 32), (166, 32), (168, 50)]  # a screen that stands on the body
    pen.shape(screen, white, 1)
    pen.fill([(130, 47), (132, 35), (162, 35), (164, 47)], black)
    pen.line([(147, 50), (147, 54)], 3)
    badge(pen, 85, 66)
    lamps(pen, 150, 73, 3)
    pen.line([(78, 88), (178, 88)])
    pen.line([(128, 88), (128, 130)])
    pen.shape(rounded(120, 100, 5, 16, 2), dark)
    pen.shape(rounded(132, 100, 5, 16, 2), dark)
    for i in range(3):
        tray(pen, 82, 132 + 16.5 * i, 92, 14)
    body.outline()
    feeder = Box(pen, 180, 100, 36, 82, 44)
    feet(pen, feeder, casters=True)
    feeder.draw()
    pen.shape(rect(185, 106, 26, 70), white)
    pen.shape(rect(190, 112, 16, 58), lines)
    feeder.outline()


def colour_desktop(pen):
    """C410: a cube with four colours behind the front door."""
    shadow(pen, 46, 184, 124, 80)
    body = Box(pen, 46, 74, 124, 110, 80)
    feet(pen, body)
    body.draw()
    output(pen, body, 0.08, 0.74)
    badge(pen, 54, 83)
    panel(pen, 96, 80, 66, 18)
    pen.shape(rounded(54, 104, 108, 40, 6))
    colours(pen, 62, 110, 92, 28)
    pen.line([(46, 152), (170, 152)])
    tray(pen, 52, 157, 112, 21)
    pen.line([body.side(0, 0.7), body.side(1, 0.7)])
    for v in (0.2, 0.26, 0.32, 0.38):
        pen.line([body.side(0.3, v), body.side(0.75, v)])
    body.outline()


def colours(pen, x, y, width, height):
    """Four toners: without colour they tell themselves apart by their patterns."""
    step = width / 4
    for i, pattern in enumerate((black, half, slanted, light)):
        pen.shape(rounded(x + i * step + 2, y, step - 5, height, 4), pattern)


def colour_workgroup(pen):
    """C650: A3 in colour, on the floor, four trays, the finisher at the left."""
    shadow(pen, 76, 186, 118, 66)
    body = Box(pen, 76, 54, 118, 128, 66)
    finisher = Box(pen, 26, 82, 46, 100, 58)
    feet(pen, finisher, casters=True)
    finisher.draw()
    for y in (96, 116):
        pen.shape([(26, y), (10, y - 10), (10, y - 6), (26, y + 5)], white)
    pen.shape(rect(33, 92, 32, 7), black)
    pen.shape([(40, 148), (58, 148), (58, 152), (44, 152), (44, 158), (40, 158)], black)  # a staple
    pen.line([(26, 138), (72, 138)])
    finisher.outline()
    feet(pen, body, casters=True)
    body.draw()
    output(pen, body, 0.06, 0.6)
    badge(pen, 84, 62)
    panel(pen, 116, 59, 70, 20)
    pen.shape(rounded(84, 85, 102, 30, 5))
    colours(pen, 90, 89, 90, 22)
    for i in range(4):
        tray(pen, 80, 119 + 15.8 * i, 110, 13)
    pen.line([body.side(0, 0.5), body.side(1, 0.5)])
    body.outline()


def label_printer(pen):
    """L90: a small body with a roll, a strip of labels comes out."""
    shadow(pen, 70, 150, 96, 70)
    body = Box(pen, 70, 88, 96, 62, 76)
    feet(pen, body)
    body.draw()
    pen.shape([body.top(0.1, 0.1), body.top(0.1, 0.9), body.top(0.9, 0.9), body.top(0.9, 0.1)], half)
    body.outline()
    (x, y), (end, _) = body.top(0.2, 0.42), body.top(0.8, 0.42)  # the roll lies in a cradle
    pen.shape(arc(x, y - 14, 11, 19), white, 2)
    pen.fill([(x, y - 33), (end, y - 33), (end, y + 5), (x, y + 5)], white)
    pen.line([(x, y - 33), (end, y - 33)], 2)
    pen.line([(x, y + 5), (end, y + 5)], 1)
    for u in (0.3, 0.52, 0.74):  # labels on it
        pen.line(arc(x + (end - x) * u, y - 14, 8, 18, 90, 270, 12))
    pen.shape(arc(end, y - 14, 11, 19), light, 2)
    pen.shape(arc(end, y - 14, 4, 7), white)
    badge(pen, 78, 94)
    lamps(pen, 140, 101, 3)
    pen.shape(rect(82, 118, 72, 7), black)
    strip = [(90, 122), (146, 122), (134, 186), (74, 186)]
    pen.shape(strip, white)
    for i, wide in enumerate((2, 1, 3, 1, 1, 2, 3, 1, 2, 1, 1, 3)):  # a bar code on the near label
        left = 92 + 3.2 * i
        pen.fill([(left, 142), (left + wide * 0.8, 142), (left + wide * 0.8 - 4, 162), (left - 4, 162)], black)
    pen.line([(86, 134), (140, 134)])
    pen.line([(88, 167), (118, 167)], 2)
    pen.line([(80, 174), (136, 174)])


def generic(pen):
    """Any printer: paper in at the back, out at the front."""
    shadow(pen, 50, 168, 120, 60)
    body = Box(pen, 50, 104, 120, 64, 62)
    feet(pen, body)
    body.draw()
    pen.shape([body.top(0.1, 0.42), body.top(0.1, 0.66), body.top(0.9, 0.66), body.top(0.9, 0.42)], black)
    body.outline()
    pen.shape([body.top(0.14, 0.5), (96, 30), (182, 30), body.top(0.86, 0.5)])
    sheet_lines(pen, [body.top(0.14, 0.5), (96, 30), (182, 30), body.top(0.86, 0.5)], 6)
    badge(pen, 59, 112)
    lamps(pen, 140, 119, 3)
    pen.shape(rect(62, 136, 96, 9), black)
    out = [(68, 142), (152, 142), (142, 186), (52, 186)]
    pen.shape(out)
    sheet_lines(pen, [out[3], out[0], out[1], out[2]], 6)


def family(pen):
    """A floor model, a desktop and a label printer before it."""
    canvas = pen.canvas
    workgroup(Pen(canvas, 28, -16, 0.88))
    desktop_tall(Pen(canvas, -18, 66, 0.68))
    label_printer(Pen(canvas, 100, 82, 0.62))


MODELS = {
    'tv_generic': generic,
    'tv_p210': desktop,
    'tv_p340': desktop_tall,
    'tv_x150': desktop_old,
    'tv_w520': workgroup,
    'tv_w760': production,
    'tv_c410': colour_desktop,
    'tv_c650': colour_workgroup,
    'tv_l90': label_printer,
}


def main():
    target = sys.argv[1]
    for model, draw in MODELS.items():
        canvas = Bits(WIDTH, HEIGHT)
        draw(Pen(canvas))
        os.makedirs(f'{target}/{model}', exist_ok=True)
        canvas.save(f'{target}/{model}/static.xbm', 'static')
    canvas = Bits(WIDTH, HEIGHT)
    family(Pen(canvas))
    canvas.save(f'{target}/prfamily.xbm', 'prfamily')


if __name__ == '__main__':
    main()
