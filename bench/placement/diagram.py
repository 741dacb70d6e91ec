"""The reliability diagram, as SVG and as PNG: the same strokes for both, and no library for either."""

import struct
import zlib

SIZE, LEFT, TOP, RIGHT, BOTTOM = 400, 80, 20, 30, 65
WIDTH, HEIGHT = LEFT + SIZE + RIGHT, TOP + SIZE + BOTTOM
BLACK, GRAY, BLUE = (0, 0, 0), (160, 160, 160), (31, 95, 168)

# Letters of 5 x 7 dots, one number for each row, for what the diagram says.
LETTERS = {
    "0": (14, 17, 19, 21, 25, 17, 14), "1": (4, 12, 4, 4, 4, 4, 14), "2": (14, 17, 1, 2, 4, 8, 31),
    "3": (31, 2, 4, 2, 1, 17, 14), "4": (2, 6, 10, 18, 31, 2, 2), "5": (31, 16, 30, 1, 1, 17, 14),
    "6": (6, 8, 16, 30, 17, 17, 14), "7": (31, 1, 2, 4, 8, 8, 8), "8": (14, 17, 17, 14, 17, 17, 14),
    "9": (14, 17, 17, 15, 1, 2, 12), ".": (0, 0, 0, 0, 0, 12, 12), " ": (0,) * 7,
    "a": (0, 0, 14, 1, 15, 17, 15), "b": (16, 16, 22, 25, 17, 17, 30), "e": (0, 0, 14, 17, 31, 16, 14),
    "f": (6, 9, 8, 28, 8, 8, 8), "g": (0, 15, 17, 17, 15, 1, 14), "h": (16, 16, 22, 25, 17, 17, 17),
    "i": (4, 0, 12, 4, 4, 4, 14), "l": (12, 4, 4, 4, 4, 4, 14), "n": (0, 0, 22, 25, 17, 17, 17),
    "o": (0, 0, 14, 17, 17, 17, 14), "p": (0, 0, 30, 17, 30, 16, 16), "r": (0, 0, 22, 25, 16, 16, 16),
    "s": (0, 0, 14, 16, 14, 1, 30), "t": (8, 8, 28, 8, 8, 9, 6), "v": (0, 0, 17, 17, 17, 10, 4),
    "w": (0, 0, 17, 17, 21, 21, 10), "y": (0, 0, 17, 17, 15, 1, 14),
}


class Svg:
    def __init__(self):
        self.parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" '
                      'font-family="DejaVu Sans, sans-serif" font-size="13">',
                      '<rect width="100%" height="100%" fill="white"/>']

    def line(self, x1, y1, x2, y2, colour, thickness=1):
        self.parts.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="rgb{colour}" '
                          f'stroke-width="{thickness}"/>')

    def dot(self, x, y, radius, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="{radius}" fill="rgb{colour}"/>')

    def text(self, x, y, text, upright=False):
        """Centred about (x, y); upright runs from below to above."""
        turn = f' transform="rotate(-90 {x:.1f} {y:.1f})"' if upright else ""
        self.parts.append(f'<text x="{x:.1f}" y="{y + 4:.1f}" text-anchor="middle"{turn}>{text}</text>')

    def write(self, path):
        with open(path, "w") as file:
            file.write("\n".join([*self.parts, "</svg>"]) + "\n")


class Png:
    SCALE = 2

    def __init__(self):
        self.rows = [bytearray(b"\xff" * (3 * WIDTH * self.SCALE)) for _ in range(HEIGHT * self.SCALE)]

    def point(self, x, y, colour):
        """In dots of the picture."""
        if 0 <= x < WIDTH * self.SCALE and 0 <= y < HEIGHT * self.SCALE:
            self.rows[y][3 * x:3 * x + 3] = bytes(colour)

    def square(self, x, y, size, colour):
        for i in range(size):
            for j in range(size):
                self.point(round(x * self.SCALE) + i, round(y * self.SCALE) + j, colour)

    def line(self, x1, y1, x2, y2, colour, thickness=1):
        steps = max(1, round(max(abs(x2 - x1), abs(y2 - y1)) * self.SCALE))
        for i in range(steps + 1):
            self.square(x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps, thickness * self.SCALE, colour)

    def dot(self, x, y, radius, colour):
        reach = radius * self.SCALE
        for i in range(-reach, reach + 1):
            for j in range(-reach, reach + 1):
                if i * i + j * j <= reach * reach:
                    self.point(round(x * self.SCALE) + i, round(y * self.SCALE) + j, colour)

    def text(self, x, y, text, upright=False):
        for index, letter in enumerate(text):
            for row, bits in enumerate(LETTERS[letter]):
                for column in range(5):
                    if bits >> (4 - column) & 1:
                        along, across = 6 * index + column - 3 * len(text), row - 3.5
                        at = (x + across, y - along) if upright else (x + along, y + across)
                        self.square(*at, self.SCALE, BLACK)

    def write(self, path):
        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        header = struct.pack(">IIBBBBB", WIDTH * self.SCALE, HEIGHT * self.SCALE, 8, 2, 0, 0, 0)
        pixels = zlib.compress(b"".join(b"\0" + bytes(row) for row in self.rows), 9)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b""))


def interval(right, runs, z=1.96):
    """Wilson's 95 % interval of a share."""
    p = right / runs
    middle = (p + z * z / (2 * runs)) / (1 + z * z / runs)
    half = z / (1 + z * z / runs) * (p * (1 - p) / runs + z * z / (4 * runs * runs)) ** 0.5
    return max(0.0, middle - half), min(1.0, middle + half)


def draw(points, declared, path):
    """The share of right answers, with its 95 % interval, over the probability that they were given; beside each point
    the number of runs. A line stands where answers begin to be called right. Writes path.svg and path.png."""
    x = lambda p: LEFT + SIZE * p
    y = lambda p: TOP + SIZE * (1 - p)
    for canvas, extension in ((Svg(), ".svg"), (Png(), ".png")):
        for a, b in ((0, 0), (1, 1)):
            canvas.line(x(0), y(a), x(1), y(a), BLACK)
            canvas.line(x(b), y(0), x(b), y(1), BLACK)
        canvas.line(x(0), y(0), x(1), y(1), GRAY)
        canvas.line(x(declared), y(0), x(declared), y(1), GRAY)
        for tick in (0, 0.2, 0.4, 0.6, 0.8, 1):
            canvas.line(x(tick), y(0), x(tick), y(0) + 5, BLACK)
            canvas.line(x(0) - 5, y(tick), x(0), y(tick), BLACK)
            canvas.text(x(tick), y(0) + 17, f"{tick:g}")
            canvas.text(x(0) - 20, y(tick), f"{tick:g}")
        for point in points:
            low, high = interval(point["right"], point["runs"])
            middle, share = x(point["mean"]), point["right"] / point["runs"]
            canvas.line(middle, y(low), middle, y(high), BLUE, 2)
            canvas.dot(middle, y(share), 5, BLUE)
            canvas.text(middle + (-22 if point["mean"] > 0.5 else 22), y(share) + (14 if share > 0.5 else -14),
                        str(point["runs"]))
        canvas.text(x(0.5), y(0) + 45, "probability given")
        canvas.text(x(0) - 55, y(0.5), "share right", upright=True)
        canvas.write(path + extension)
