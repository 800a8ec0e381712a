"""Two small canvases for the pictures of the windows: one of bits, saved as XBM, and one of colours, saved as XPM or PNG.

Shapes are polygons, lists of points; x runs to the right, y down, a pixel's centre lies at a half.
"""
import math
import struct
import zlib


def spans(points, y):
    """Where the horizontal line at y is inside the polygon: pairs of x."""
    crossings = []
    for (x1, y1), (x2, y2) in zip(points, points[1:] + points[:1]):
        if (y1 <= y) != (y2 <= y):
            crossings.append(x1 + (y - y1) * (x2 - x1) / (y2 - y1))
    crossings.sort()
    return zip(crossings[::2], crossings[1::2])


def rect(x, y, width, height):
    return [(x, y), (x + width, y), (x + width, y + height), (x, y + height)]


def arc(cx, cy, rx, ry, start=0, end=360, steps=40):
    """Points of an ellipse, in degrees, from the right downwards."""
    angles = [math.radians(start + (end - start) * i / steps) for i in range(steps + (abs(end - start) < 360))]
    return [(cx + rx * math.cos(a), cy + ry * math.sin(a)) for a in angles]


def rounded(x, y, width, height, r):
    """A rectangle with round corners."""
    return (arc(x + r, y + r, r, r, 180, 270, 8) + arc(x + width - r, y + r, r, r, 270, 360, 8) +
            arc(x + width - r, y + height - r, r, r, 0, 90, 8) + arc(x + r, y + height - r, r, r, 90, 180, 8))


def thick(points, width, closed=False):
    """Polygons that cover a line of the given width, its joints and ends round."""
    out = []
    pairs = list(zip(points, points[1:] + points[:1]))
    for (x1, y1), (x2, y2) in pairs if closed else pairs[:-1]:
        length = math.hypot(x2 - x1, y2 - y1)
        if length == 0:
            continue
        nx, ny = -(y2 - y1) / length * width / 2, (x2 - x1) / length * width / 2
        out.append([(x1 + nx, y1 + ny), (x2 + nx, y2 + ny), (x2 - nx, y2 - ny), (x1 - nx, y1 - ny)])
    return out + [arc(x, y, width / 2, width / 2, steps=16) for x, y in points]


# Patterns of the bits: whether a place is black.
def white(x, y):
    return False


def black(x, y):
    return True


def faint(x, y):
    return x % 4 == 0 and y % 2 == 0 and (x // 4 + y // 2) % 2 == 0


def light(x, y):
    return (x % 4 == 0 and y % 4 == 0) or (x % 4 == 2 and y % 4 == 2)


def middle(x, y):
    return x % 2 == 0 and y % 2 == 0


def half(x, y):
    return (x + y) % 2 == 0


def dark(x, y):
    return not middle(x, y)


def lines(x, y):
    return y % 3 == 0


def slanted(x, y):
    return (x + y) % 4 == 0


class Bits:
    def __init__(self, width, height):
        self.width, self.height = width, height
        self.rows = [[False] * width for _ in range(height)]

    def set(self, x, y, value=True):
        if 0 <= x < self.width and 0 <= y < self.height:
            self.rows[y][x] = value

    def fill(self, points, pattern):
        for y in range(self.height):
            for x1, x2 in spans(points, y + 0.5):
                for x in range(max(0, math.ceil(x1 - 0.5)), min(self.width, math.ceil(x2 - 0.5))):
                    self.rows[y][x] = pattern(x, y)

    def line(self, points, width=1, closed=False):
        for (x1, y1), (x2, y2) in zip(points, points[1:] + (points[:1] if closed else [])):
            steps = max(1, round(max(abs(x2 - x1), abs(y2 - y1))))
            for i in range(steps + 1):
                x, y = math.floor(x1 + (x2 - x1) * i / steps), math.floor(y1 + (y2 - y1) * i / steps)
                for k in range(width * width):
                    self.set(x + k % width, y + k // width)

    def shape(self, points, pattern=white, width=1):
        """Filled, with an outline."""
        self.fill(points, pattern)
        self.line(points, width, closed=True)

    def save(self, path, name):
        row_bytes = (self.width + 7) // 8
        values = []
        for row in self.rows:
            padded = row + [False] * (row_bytes * 8 - self.width)
            values += [sum(padded[8 * i + k] << k for k in range(8)) for i in range(row_bytes)]
        with open(path, 'w') as out:
            out.write(f'#define {name}_width {self.width}\n#define {name}_height {self.height}\n')
            out.write(f'static unsigned char {name}_bits[] = {{\n')
            for i in range(0, len(values), 12):
                end = ',' if i + 12 < len(values) else '};'
                out.write('   ' + ', '.join(f'0x{v:02x}' for v in values[i:i + 12]) + end + '\n')


class Colours:
    """Shapes with soft edges, brought to the nearest of the palette's colours; the outline against what lies
    behind is hard, because that is not known here."""

    FINE = 8  # samples a pixel, each way

    def __init__(self, width, height, palette):
        self.width, self.height, self.palette = width, height, palette
        self.pixels = [[(0.0, 0.0, 0.0, 0.0)] * width for _ in range(height)]  # red, green, blue, cover

    def fill(self, points, colour, strength=1.0):
        for y in range(self.height):
            cover = [0.0] * self.width
            for k in range(self.FINE):
                for x1, x2 in spans(points, y + (k + 0.5) / self.FINE):
                    for x in range(max(0, int(x1)), min(self.width, int(x2) + 1)):
                        cover[x] += max(0.0, min(x2, x + 1) - max(x1, x)) / self.FINE
            for x, part in enumerate(cover):
                if part > 0:
                    self.mix(x, y, colour, min(1.0, part) * strength)

    def mix(self, x, y, colour, part):
        old = self.pixels[y][x]
        new = [int(colour[i:i + 2], 16) for i in (1, 3, 5)]
        cover = part + old[3] * (1 - part)
        mixed = [(n * part + o * old[3] * (1 - part)) / cover for n, o in zip(new, old)]
        self.pixels[y][x] = (*mixed, cover)

    def line(self, points, width, colour, closed=False):
        # One cover for the whole line: its pieces overlap.
        mask = Mask(self.width, self.height, self.FINE)
        for piece in thick(points, width, closed):
            mask.add(piece)
        for y in range(self.height):
            for x in range(self.width):
                part = mask.part(x, y)
                if part > 0:
                    self.mix(x, y, colour, part)

    def nearest(self, pixel):
        if pixel[3] < 0.5:
            return None
        def distance(colour):
            return sum((int(colour[i:i + 2], 16) - pixel[k])**2 for k, i in enumerate((1, 3, 5)))
        return min(self.palette, key=distance)

    def save(self, path, name):
        colours = [[self.nearest(pixel) for pixel in row] for row in self.pixels]
        used = [None] + [c for c in self.palette if any(c in row for row in colours)]
        keys = dict(zip(used, ' .+@#$%&*=-o>,)!~{]^/(_:<[}|1234567890abcdefghijklmn'))
        with open(path, 'w') as out:
            out.write('/* XPM */\n')
            out.write(f'static char *{name}[] = {{\n"{self.width} {self.height} {len(used)} 1",\n')
            for colour in used:
                out.write(f'"{keys[colour]} c {colour}",\n')
            rows = [''.join(keys[c] for c in row) for row in colours]
            out.write(',\n'.join(f'"{row}"' for row in rows) + '};\n')

    def save_png(self, path):
        """Every colour as it was mixed, and the cover as transparency."""
        rows = b''.join(b'\0' + bytes(round(v) for *rgb, cover in row for v in (*rgb, 255 * cover)) for row in self.pixels)
        def chunk(kind, data):
            return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
        header = struct.pack('>IIBBBBB', self.width, self.height, 8, 6, 0, 0, 0)  # 8 bits each of red, green, blue, cover
        with open(path, 'wb') as out:
            out.write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', header) + chunk(b'IDAT', zlib.compress(rows, 9)) + chunk(b'IEND', b''))


class Mask:
    """The cover of several polygons together."""

    def __init__(self, width, height, fine):
        self.fine = fine
        self.width, self.height = width * fine, height * fine
        self.rows = [bytearray(self.width) for _ in range(self.height)]

    def add(self, points):
        for y in range(self.height):
            for x1, x2 in spans(points, (y + 0.5) / self.fine):
                first = max(0, math.ceil(x1 * self.fine - 0.5))
                last = min(self.width, math.ceil(x2 * self.fine - 0.5))
                if last > first:
                    self.rows[y][first:last] = b'\1' * (last - first)

    def part(self, x, y):
        f = self.fine
        return sum(sum(self.rows[y * f + k][x * f:(x + 1) * f]) for k in range(f)) / (f * f)
