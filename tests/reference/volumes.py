"""Volumes as consumers see them: the test of a point, what a volume gives there, and falloff ramps.

Slow and literal on purpose: it is what the toolkit's consumers are compared with.
"""
import math

from algebra import (IDENTITY, Box, add, homogeneous, inverse, length, point, single, sub, vector)

SPHERE, CUBE, CAPSULE, CLOUD = range(4)
BARREL, TOP, BOTTOM = 'barrel', 'top', 'bottom'
NONE, LINEAR, SMOOTH, SPLINE = range(4)


def between(entries, d):
    """The entries around d, and the weight of the second: ((position, value, interpolation), same, 0 to 1)."""
    entries = sorted(entries, key=lambda entry: entry[0])
    if d < entries[0][0]:
        return entries[0], entries[0], 0.0
    for low, high in zip(entries, entries[1:]):
        if low[0] <= d < high[0]:
            t = (d - low[0]) / (high[0] - low[0])
            return low, high, {NONE: 0.0, LINEAR: t, SMOOTH: t * t * (3 - 2 * t)}[low[2]]
    return entries[-1], entries[-1], 0.0


class Ramps:
    """Ramp look-ups.

    `shift` moves look-ups and their values a little, to see whether a result hangs on a step or on rounding to single
    precision; up or down by the bits of `bits`, in turns of four.
    """

    def __init__(self, shift=0.0, bits=15):
        self.shift, self.bits, self.turn = shift, bits, 0

    def moved(self):
        self.turn = (self.turn + 1) % 4
        return self.shift if self.bits >> self.turn & 1 else -self.shift

    def value(self, entries, d):
        if math.isnan(d):
            return math.nan
        shift = self.moved()
        low, high, t = between(entries, single(d) + shift)
        return low[1] + (high[1] - low[1]) * t + shift * max(abs(low[1]), abs(high[1]))

    def color(self, entries, d):
        if math.isnan(d):
            return (math.nan,) * 3
        low, high, t = between(entries, single(d) + self.moved())
        return tuple(a + (b - a) * t for a, b in zip(low[1], high[1]))


class Volume:
    """One element of a consumer's `boundingObjects`.

    ramps: position, weight, color, alpha, normal, radius -> [(position, value, interpolation)]
    cloud: (points, normals, radii, weights, rgba) of the kind CLOUD, else five empty lists
    """

    def __init__(self, kind=SPHERE, matrix=IDENTITY, envelope=True, contained=True, top=1.0, topScale=(1.0, 1.0, 1.0),
                 bottom=1.0, bottomScale=(1.0, 1.0, 1.0), normal=0, ramps=None, cloud=None):
        self.kind, self.matrix, self.envelope, self.contained = kind, matrix, envelope, contained
        self.top, self.topScale, self.bottom, self.bottomScale = top, topScale, bottom, bottomScale
        self.normal, self.ramps, self.cloud = normal, ramps, cloud or ([], [], [], [], [])
        self.inverse = inverse(matrix)
        self.origin = tuple(matrix[12:15])
        self.box = Box()
        for q, r in zip(self.cloud[0], self.cloud[2]):
            if r != 0:
                self.box.add(sub(q, (r, r, r)))
                self.box.add(add(q, (r, r, r)))

    def capsule(self, p):
        """(region, d) of a local point; region None where no test applies. Inside when d is not above 1."""
        t, b = self.top, self.bottom
        (tx, ty, tz), (bx, by, bz) = self.topScale, self.bottomScale
        x, y, z = p
        if -b <= y <= t:
            if not (abs(x) <= max(bx, tx) and abs(z) <= max(bz, tz)):
                return None, math.inf
            height = t + b
            if height == 0:
                return None, math.nan
            rx = tx + (bx - tx) * (t - y) / height
            rz = tz + (bz - tz) * (t - y) / height
            return BARREL, math.sqrt(ratio(x, rx) ** 2 + ratio(z, rz) ** 2)
        if y > t and abs(x) <= tx and abs(z) <= tz and y <= t + ty:
            return TOP, math.sqrt(ratio(x, tx) ** 2 + ratio(y - t, ty) ** 2 + ratio(z, tz) ** 2)
        if abs(x) <= bx and abs(z) <= bz and -bx - by <= y < b:
            return BOTTOM, math.sqrt(ratio(x, bx) ** 2 + ratio(y + b, by) ** 2 + ratio(z, bz) ** 2)
        return None, math.inf

    def beyond(self, p):
        """d of a world point however far outside: a capsule's barrel and caps go on, each in its band of heights."""
        if self.kind != CAPSULE:
            return self.distance(p)
        x, y, z = self.local(p)
        t, b = self.top, self.bottom
        if y > t:
            offset, (rx, ry, rz) = y - t, self.topScale
        elif y < -b:
            offset, (rx, ry, rz) = y + b, self.bottomScale
        else:
            offset, ry, share = 0.0, 1.0, (t - y) / (t + b)
            rx, rz = (a + (c - a) * share for a, c in zip(self.topScale[::2], self.bottomScale[::2]))
        return math.sqrt(ratio(x, rx) ** 2 + ratio(offset, ry) ** 2 + ratio(z, rz) ** 2)

    def local(self, p):
        return point(p, self.inverse)

    def distance(self, p):
        """d of a world point in an analytic volume; above 1 outside."""
        local = self.local(p)
        if self.kind == SPHERE:
            return length(local)
        if self.kind == CUBE:
            return max(map(abs, local)) if length(local) > 9.999999974752427e-07 else length(local)
        return self.capsule(local)[1]

    def reached(self, p):
        """[(d, cloud point or -1)] of the candidates that p gets here."""
        if self.kind == CLOUD:
            found = []
            if self.box.holds(p):
                for j, (q, r) in enumerate(zip(self.cloud[0], self.cloud[2])):
                    away = length(sub(p, q))
                    if away <= r and r > 0:
                        found.append((away / r, j))
            return found
        d = self.distance(p)
        return [(d, -1)] if d <= 1 else []

    def target(self, p, j, cartesian):
        """Where p is pulled to; None in a capsule's gap. Not `cartesian`: w is left out of account for capsules."""
        if self.kind == CLOUD:
            return self.cloud[0][j]
        if self.kind != CAPSULE:
            return self.origin
        local = self.local(p) if cartesian else homogeneous(p, self.inverse)[:3]
        region, d = self.capsule(local)
        if region is None or not cartesian and d > 1:
            return None
        onAxis = {BARREL: local[1], TOP: self.top, BOTTOM: -self.bottom}[region]
        to = (0.0, onAxis, 0.0)
        return point(to, self.matrix) if cartesian else homogeneous(to, self.matrix)[:3]

    def direction(self, p, j, before):
        """The normal given at p; `before` is what the previous influence gave."""
        if self.kind == CLOUD:
            return self.cloud[1][j]
        if self.normal < 3:
            return vector([(1.0, 0, 0), (0, 1.0, 0), (0, 0, 1.0)][self.normal], self.matrix)
        if self.kind != CAPSULE:
            return sub(p, self.origin)
        local = self.local(p)
        region = self.capsule(local)[0]
        if region == BARREL:
            return vector((local[0], 0.0, local[2]), self.matrix)
        if region is None:
            return before
        return sub(p, point((0.0, self.top if region == TOP else -self.bottom, 0.0), self.matrix))


def ratio(a, b):
    if b:
        return a / b
    return math.nan if a == 0 else math.inf
