"""Vectors and row-vector 4x4 matrices (lists of 16, p' = p M) in plain double precision."""
import math
import struct


def single(x):
    """x as single precision stores it."""
    try:
        return struct.unpack('f', struct.pack('f', x))[0]
    except OverflowError:
        return math.copysign(math.inf, x)


def add(a, b):
    return (a[0] + b[0], a[1] + b[1], a[2] + b[2])


def sub(a, b):
    return (a[0] - b[0], a[1] - b[1], a[2] - b[2])


def times(a, k):
    return (a[0] * k, a[1] * k, a[2] * k)


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def length(a):
    return math.sqrt(dot(a, a))


def unit(a):
    """a of length 1; a itself when its squared length is not above 1e-20."""
    n = length(a)
    return times(a, 1 / n) if n * n > 1e-20 else a


def angle(a, b):
    """0 to pi; 0 where one of the two has no length."""
    if length(a) == 0 or length(b) == 0:
        return 0.0
    return math.atan2(length(cross(a, b)), dot(a, b))


IDENTITY = [1.0, 0, 0, 0, 0, 1.0, 0, 0, 0, 0, 1.0, 0, 0, 0, 0, 1.0]


def product(a, b):
    return [sum(a[4 * i + k] * b[4 * k + j] for k in range(4)) for i in range(4) for j in range(4)]


def inverse(m):
    """Gauss-Jordan with pivots; None for a singular matrix."""
    rows = [list(m[4 * i:4 * i + 4]) + [float(i == j) for j in range(4)] for i in range(4)]
    for i in range(4):
        pivot = max(range(i, 4), key=lambda r: abs(rows[r][i]))
        if rows[pivot][i] == 0:
            return None
        rows[i], rows[pivot] = rows[pivot], rows[i]
        rows[i] = [x / rows[i][i] for x in rows[i]]
        for r in range(4):
            if r != i:
                rows[r] = [x - rows[r][i] * y for x, y in zip(rows[r], rows[i])]
    return [x for row in rows for x in row[4:]]


def homogeneous(p, m):
    """(x, y, z, w) of the point p through m."""
    return tuple(p[0] * m[j] + p[1] * m[4 + j] + p[2] * m[8 + j] + m[12 + j] for j in range(4))


def point(p, m):
    """The point p through m, cartesian."""
    x, y, z, w = homogeneous(p, m)
    return (x, y, z) if w in (0, 1) else (x / w, y / w, z / w)


def vector(v, m):
    return tuple(v[0] * m[j] + v[1] * m[4 + j] + v[2] * m[8 + j] for j in range(3))


def transposed3(m):
    return [m[0], m[4], m[8], 0, m[1], m[5], m[9], 0, m[2], m[6], m[10], 0, 0, 0, 0, 1.0]


def normalThrough(n, m):
    """A surface normal through m: it stays perpendicular to the surface."""
    back = inverse(m)
    return unit(vector(n, transposed3(back))) if back else n


class Box:
    """Axis-aligned; empty until a point is added."""

    def __init__(self, points=()):
        self.low, self.high = None, None
        for p in points:
            self.add(p)

    def add(self, p):
        p = tuple(p[:3])
        self.low = p if self.low is None else tuple(map(min, self.low, p))
        self.high = p if self.high is None else tuple(map(max, self.high, p))

    def holds(self, p):
        return self.low is not None and all(a <= x <= b for a, x, b in zip(self.low, p, self.high))

    def meets(self, other):
        return (self.low is not None and other.low is not None and
                all(a <= d and c <= b for a, b, c, d in zip(self.low, self.high, other.low, other.high)))
