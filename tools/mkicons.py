#!/usr/bin/env python3
"""Draws the icons of the windows: the tool buttons, the banner, the logo, the hint; and the program's for a desktop.

usage: mkicons.py ICONDIR
       mkicons.py --desktop SIZE FILE    a PNG, SIZE pixels wide and high

All share one small palette, so that a screen of 256 colours has room for them beside everything else, and
every icon can be told by its shape alone.
"""
import math
import os
import sys

from raster import Bits, Colours, arc, black, rect, rounded, white

INK, STEEL, BLUE, SKY, MIST = '#1E2A38', '#3C5570', '#2F6099', '#86AFD6', '#C4D9EC'
PAPER, PALE, GREY, SLATE = '#FFFFFF', '#E6EAEE', '#B4BDC6', '#7C8894'
GREEN, AMBER = '#2E8B57', '#E0952B'
PALETTE = [INK, STEEL, BLUE, SKY, MIST, PAPER, PALE, GREY, SLATE, GREEN, AMBER, '#5A87B8', '#A5C4E1', '#D5E4F1']


class Button:
    """An icon of 27 by 27. Of that a button with its frames shows the 19 by 19 in the middle: what is drawn between
    the two corners is brought there."""

    SHOWN = 19

    def __init__(self, left, top, right, bottom):
        self.canvas = Colours(27, 27, PALETTE)
        self.scale = (self.SHOWN - 0.4) / max(right - left, bottom - top)
        self.x, self.y = 13.5 - self.scale * (left + right) / 2, 13.5 - self.scale * (top + bottom) / 2
        self.save = self.canvas.save

    def at(self, points):
        return [(self.x + px * self.scale, self.y + py * self.scale) for px, py in points]

    def fill(self, points, colour):
        self.canvas.fill(self.at(points), colour)

    def line(self, points, width, colour, closed=False):
        self.canvas.line(self.at(points), max(width * self.scale, 0.8), colour, closed)


def outlined(canvas, points, fill, width=1.4, colour=INK):
    canvas.fill(points, fill)
    canvas.line(points, width, colour, closed=True)


def arrow(canvas, tip, angle, size, colour):
    """A head that points along the angle, in degrees."""
    a = math.radians(angle)
    canvas.fill([(tip[0] + size * math.cos(a), tip[1] + size * math.sin(a)),
                 (tip[0] + size * math.cos(a + 2.2), tip[1] + size * math.sin(a + 2.2)),
                 (tip[0] + size * math.cos(a - 2.2), tip[1] + size * math.sin(a - 2.2))], colour)


def draw_help():
    c = Button(3.2, 3.2, 23.8, 23.8)
    outlined(c, arc(13.5, 13.5, 9.6, 9.6), BLUE, 1.4)
    c.line(arc(13.5, 10.7, 3.5, 3.4, 190, 375, 20) + [(14.6, 13.9), (13.5, 15.6)], 2.6, PAPER)
    c.fill(arc(13.5, 19.4, 1.7, 1.7), PAPER)
    return c


def draw_refresh():
    c = Button(3.0, 3.4, 22.8, 23.2)
    end = math.radians(262)
    tip = (13 + 7.2 * math.cos(end), 14 + 7.2 * math.sin(end))
    for colour, width, size in ((INK, 5, 6.6), (GREEN, 2.6, 4.4)):
        c.line(arc(13, 14, 7.2, 7.2, -20, 255, 40), width, colour)
        arrow(c, (tip[0] + 2, tip[1]), 352, size, colour)
    return c


def draw_add_queue():
    """A printer and a plus."""
    c = Button(3, 3, 25, 25)
    outlined(c, [(7.5, 3.8), (17, 3.8), (17, 11), (7.5, 11)], PAPER)  # paper at the back
    c.line([(9.6, 7.2), (14.8, 7.2)], 1.0, SLATE)
    outlined(c, rounded(3.8, 9.6, 17.6, 8.6, 1.6), GREY)
    c.fill(rect(4.8, 10.8, 15.6, 2.2), PALE)
    outlined(c, [(7.4, 15.6), (17.6, 15.6), (18.6, 23), (6.4, 23)], PAPER)
    c.line([(8.8, 18.6), (12.4, 18.6)], 1.0, SLATE)
    x, y, arm, half = 19, 19, 5.4, 1.7
    cross = [(x - half, y - arm), (x + half, y - arm), (x + half, y - half), (x + arm, y - half), (x + arm, y + half),
             (x + half, y + half), (x + half, y + arm), (x - half, y + arm), (x - half, y + half),
             (x - arm, y + half), (x - arm, y - half), (x - half, y - half)]
    c.line(cross, 2.4, INK, closed=True)
    c.fill(cross, GREEN)
    return c


def draw_web_page():
    c = Button(2.6, 2.6, 24.4, 24.4)
    outlined(c, rounded(3.4, 3.8, 20.2, 19.4, 1.6), PAPER)
    c.fill([(4, 8.6), (4, 5), (5, 4.4), (22, 4.4), (23, 5), (23, 8.6)], STEEL)
    c.fill(rect(6, 5.7, 15, 1.9), PALE)  # the address
    c.line([(3.4, 9.2), (23.6, 9.2)], 1.0, INK)
    outlined(c, arc(13.5, 16.1, 5.2, 5.2), SKY, 1.3)
    c.line(arc(13.5, 16.1, 2.1, 5.2), 0.9, INK, closed=True)
    c.line([(8.3, 16.1), (18.7, 16.1)], 0.9, INK)
    return c


def draw_properties():
    """A sheet with three slides."""
    c = Button(3.2, 3.2, 23.8, 23.8)
    outlined(c, rounded(4.4, 4, 18.2, 19, 1.4), PAPER)
    for y, at in ((8.3, 9.8), (13.5, 17.2), (18.7, 12.6)):
        c.line([(7, y), (20, y)], 1.6, SLATE)
        outlined(c, arc(at, y, 1.9, 1.9), AMBER, 1.4)
    return c


def mark(c, x, y, size):
    """The maker's mark: a T of two sheets on a tile."""
    def s(points):
        return [(x + px * size / 32, y + py * size / 32) for px, py in points]
    c.fill(s(rounded(1, 1, 30, 30, 6)), BLUE)
    c.fill(s(rounded(1, 1, 30, 15, 6)), '#5A87B8', 0.35)
    c.fill(s([(7, 8), (25, 8), (25, 13.4), (7, 13.4)]), PAPER)
    c.fill(s([(13, 14.6), (19, 14.6), (19, 25.4), (13, 25.4)]), PAPER)
    c.fill(s([(19, 21.8), (19, 25.4), (15.4, 25.4)]), SKY)  # a turned corner
    c.line(s(rounded(1, 1, 30, 30, 6)), 1.3 * size / 32, INK, closed=True)


def draw_logo():
    c = Colours(24, 24, PALETTE)  # the buttons beside it grow as high
    mark(c, 0, 0, 24)
    return c


def draw_program(size):
    """A printer with a sheet that bears the maker's mark; on a grid of 48."""
    c = Colours(size, size, PALETTE)
    c.FINE = max(2, c.FINE * 48 // size)
    def framed(x, y, width, height, r, colour):
        for inset, fill in ((0, INK), (1, colour)):
            shape = rounded(x + inset, y + inset, width - 2 * inset, height - 2 * inset, max(0.1, r - inset))
            c.fill([(px * size / 48, py * size / 48) for px, py in shape], fill)
    framed(12, 3, 24, 18, 1.5, PAPER)
    for y in (7.5, 11):
        c.fill([(px * size / 48, py * size / 48) for px, py in rect(16, y, 16, 1.5)], GREY)
    framed(3, 15, 42, 21, 4, STEEL)
    framed(3, 15, 42, 11, 4, SKY)
    framed(36, 18.5, 5, 4, 2, GREEN)
    framed(9, 26, 30, 5, 2, SLATE)
    framed(12, 28, 24, 18, 1.5, PAPER)
    mark(c, 17.5 * size / 48, 30.5 * size / 48, 13 * size / 48)
    return c


def letters(c, x, base, height, colour):
    """The name, in strokes of one width."""
    w, r = height * 0.17, height * 0.29
    top, middle = base - height, base - r
    def bowl(cx):
        c.line(arc(cx, middle, r, r, steps=48), w, colour, closed=True)
    c.line([(x, top + w / 2), (x + height * 0.66, top + w / 2)], w, colour)  # T
    c.line([(x + height * 0.33, top + w / 2), (x + height * 0.33, base)], w, colour)
    x += height * 0.98
    bowl(x)  # a
    c.line([(x + r, middle - r), (x + r, base)], w, colour)
    x += height * 0.72
    c.line([(x, middle - r), (x, base)], w, colour)  # r
    c.line(arc(x + r * 0.95, middle, r * 0.95, r, 180, 285, 20), w, colour)
    x += height * 0.5
    c.line([(x, middle - r), (x + r, base), (x + 2 * r, middle - r)], w, colour)  # v
    bowl(x + height * 1.04)  # o


WIDTH = 608


def draw_banner():
    c = Colours(WIDTH, 50, PALETTE)  # as wide as the main window
    c.fill(rect(0, 0, WIDTH, 50), MIST)
    c.fill(rect(0, 0, WIDTH, 26), '#D5E4F1')
    c.fill([(358, 50), (400, 0), (WIDTH, 0), (WIDTH, 50)], '#A5C4E1')
    c.fill([(412, 50), (454, 0), (WIDTH, 0), (WIDTH, 50)], SKY)
    c.fill([(466, 50), (508, 0), (WIDTH, 0), (WIDTH, 50)], '#5A87B8')
    for i in range(3):  # sheets on their way
        x = 490 + 34 * i
        sheet = [(x, 40), (x + 12, 10), (x + 34, 10), (x + 22, 40)]
        c.fill([(px + 2, py + 2) for px, py in sheet], STEEL, 0.5)
        c.fill(sheet, PAPER)
        for k in range(4):
            left = x + 12 - 12 * (k + 1) / 5.5 + 3
            c.line([(left, 15 + 5.6 * k), (left + (15 if k < 3 else 9), 15 + 5.6 * k)], 1.2, GREY)
    c.fill(rect(0, 48.6, WIDTH, 1.4), STEEL)
    mark(c, 12, 8, 32)
    letters(c, 58, 36, 24, STEEL)
    return c


def draw_hint():
    """A lamp: 26 by 26 bits, in the colours of its label. A hint's frame has no room for more."""
    b = Bits(26, 26)
    b.fill(arc(13, 10, 7.4, 7.4), black)
    b.fill([(8, 14), (18, 14), (16, 19), (10, 19)], black)
    b.fill(arc(13, 10, 6, 6), white)
    b.fill([(9, 13.5), (17, 13.5), (14.8, 19), (11.2, 19)], white)
    b.line([(10, 10), (12, 12), (14, 12), (16, 10)])  # the wire
    b.line([(12, 12), (12, 18)])
    b.line([(14, 12), (14, 18)])
    for y in (19, 22):
        b.fill(rounded(9.5, y, 7, 2, 1), black)
    b.fill(rect(11, 24, 4, 2), black)
    for angle in (180, 225, 270, 315, 360):
        a = math.radians(angle)
        b.line([(13 + 9.4 * math.cos(a), 10 + 9.4 * math.sin(a)), (13 + 12 * math.cos(a), 10 + 12 * math.sin(a))])
    return b


COLOUR_ICONS = {
    'P36W50/Brand_Banner_Hrz': draw_banner,
    'P36W50/ButtonIcon_Help': draw_help,
    'P36W50/ButtonIcon_Refresh': draw_refresh,
    'P36W50/ButtonIcon_AddQueue': draw_add_queue,
    'P36W50/ButtonIcon_QBWS': draw_web_page,
    'P36W50/ButtonIcon_SNMPServices': draw_properties,
    'TLogo': draw_logo,
}


def main():
    if sys.argv[1] == '--desktop':
        draw_program(int(sys.argv[2])).save_png(sys.argv[3])
        return
    target = sys.argv[1]
    os.makedirs(f'{target}/P36W50', exist_ok=True)
    for name, draw in COLOUR_ICONS.items():
        draw().save(f'{target}/{name}.xpm', os.path.basename(name))
    draw_hint().save(f'{target}/unixhint.xbm', 'unixhint')


if __name__ == '__main__':
    main()
