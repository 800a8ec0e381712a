#!/usr/bin/env python3
"""Draws the icons of the windows: the tool buttons, the banner, the logo, the hint.

usage: mkicons.py ICONDIR

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


def button():
    return Colours(27, 27, PALETTE)


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
    c = button()
    outlined(c, arc(13.5, 13.5, 9.6, 9.6), BLUE, 1.4)
    c.line(arc(13.5, 10.9, 3.4, 3.3, 190, 375, 20) + [(14.6, 13.9), (13.5, 15.6)], 2.3, PAPER)
    c.fill(arc(13.5, 19.2, 1.45, 1.45), PAPER)
    return c


def draw_refresh():
    c = button()
    for turn in (0, 180):
        c.line(arc(13.5, 13.5, 7.6, 7.6, 200 + turn, 330 + turn, 30), 4.6, INK)
    for turn in (0, 180):
        c.line(arc(13.5, 13.5, 7.6, 7.6, 200 + turn, 330 + turn, 30), 2.6, GREEN)
        a = math.radians(338 + turn)
        tip = (13.5 + 7.6 * math.cos(a), 13.5 + 7.6 * math.sin(a))
        arrow(c, tip, 70 + turn, 5.8, INK)
        arrow(c, tip, 70 + turn, 3.7, GREEN)
    return c


def draw_add_queue():
    c = button()
    outlined(c, [(8, 4), (17.5, 4), (17.5, 11), (8, 11)], PAPER)  # paper at the back
    c.line([(10, 6.6), (15.5, 6.6)], 0.9, SLATE)
    c.line([(10, 8.6), (15.5, 8.6)], 0.9, SLATE)
    outlined(c, rounded(3.5, 10, 18.5, 8.6, 1.6), GREY)
    c.fill(rect(4.3, 11, 17, 2), PALE)
    c.fill(rect(6, 15.3, 13.5, 1.7), INK)
    outlined(c, [(7.4, 16.2), (18.1, 16.2), (19.3, 22), (6.2, 22)], PAPER)
    c.line([(9, 18.2), (14, 18.2)], 0.9, SLATE)
    c.line([(8.8, 20), (13, 20)], 0.9, SLATE)
    cross = [(18.2, 14), (21.4, 14), (21.4, 17.4), (24.8, 17.4), (24.8, 20.6), (21.4, 20.6), (21.4, 24),
             (18.2, 24), (18.2, 20.6), (14.8, 20.6), (14.8, 17.4), (18.2, 17.4)]
    c.line(cross, 2.6, INK, closed=True)
    c.fill(cross, GREEN)
    return c


def draw_web_page():
    c = button()
    outlined(c, rounded(3, 4, 21, 18.6, 1.8), PAPER)
    c.fill([(3.6, 9), (3.6, 5.8), (5, 4.6), (22, 4.6), (23.4, 5.8), (23.4, 9)], STEEL)
    for x in (6, 9, 12):
        c.fill(arc(x, 6.8, 0.95, 0.95), MIST)
    c.line([(3, 9.2), (24, 9.2)], 1.0, INK)
    outlined(c, arc(13.5, 15.8, 5.2, 5.2), SKY, 1.2)
    c.line(arc(13.5, 15.8, 2.2, 5.2), 0.8, INK, closed=True)
    c.line([(8.3, 15.8), (18.7, 15.8)], 0.8, INK)
    return c


def draw_properties():
    c = button()
    outlined(c, rounded(4.5, 3.6, 18, 19.8, 1.6), PAPER)
    for y, at in ((8.2, 10), (13.5, 17.2), (18.8, 12.6)):
        c.line([(7.4, y), (19.6, y)], 1.5, SLATE)
        outlined(c, arc(at, y, 2.1, 2.1), AMBER, 1.3)
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
    c = Colours(32, 32, PALETTE)
    mark(c, 0, 0, 32)
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


def draw_banner():
    c = Colours(580, 50, PALETTE)
    c.fill(rect(0, 0, 580, 50), MIST)
    c.fill(rect(0, 0, 580, 26), '#D5E4F1')
    c.fill([(330, 50), (372, 0), (580, 0), (580, 50)], '#A5C4E1')
    c.fill([(384, 50), (426, 0), (580, 0), (580, 50)], SKY)
    c.fill([(438, 50), (480, 0), (580, 0), (580, 50)], '#5A87B8')
    for i in range(3):  # sheets on their way
        x = 462 + 34 * i
        sheet = [(x, 40), (x + 12, 10), (x + 34, 10), (x + 22, 40)]
        c.fill([(px + 2, py + 2) for px, py in sheet], STEEL, 0.5)
        c.fill(sheet, PAPER)
        for k in range(4):
            left = x + 12 - 12 * (k + 1) / 5.5 + 3
            c.line([(left, 15 + 5.6 * k), (left + (15 if k < 3 else 9), 15 + 5.6 * k)], 1.2, GREY)
    c.fill(rect(0, 48.6, 580, 1.4), STEEL)
    mark(c, 12, 8, 32)
    letters(c, 58, 36, 24, STEEL)
    return c


def draw_hint():
    """A lamp: 32 by 32 bits, in the colours of its label."""
    b = Bits(32, 32)
    b.fill(arc(16, 12, 9, 9), black)
    b.fill([(10, 17), (22, 17), (19.6, 23), (12.4, 23)], black)
    b.fill(arc(16, 12, 7.4, 7.4), white)
    b.fill([(11, 16.5), (21, 16.5), (18.2, 23), (13.8, 23)], white)
    b.line([(13, 12), (15, 15), (17, 15), (19, 12)])  # the wire
    b.line([(15, 15), (15, 22)])
    b.line([(17, 15), (17, 22)])
    for y in (23, 26):
        b.fill(rounded(11.5, y, 9, 2, 1), black)
    b.fill(rect(14, 29, 4, 2), black)
    for angle in (180, 225, 270, 315, 360):
        a = math.radians(angle)
        b.line([(16 + 11.6 * math.cos(a), 12 + 11.6 * math.sin(a)), (16 + 14.4 * math.cos(a), 12 + 14.4 * math.sin(a))])
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
    target = sys.argv[1]
    os.makedirs(f'{target}/P36W50', exist_ok=True)
    for name, draw in COLOUR_ICONS.items():
        draw().save(f'{target}/{name}.xpm', os.path.basename(name))
    draw_hint().save(f'{target}/unixhint.xbm', 'unixhint')


if __name__ == '__main__':
    main()
