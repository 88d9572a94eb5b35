"""What scatter throws, one ray against every triangle, one point against every other point.

Places are rounded to single precision where they are stored; random numbers come from the C library.
"""
import ctypes
import math

from algebra import Box, add, angle, cross, dot, inverse, length, normalThrough, point, single, sub, times, unit, vector

LIBC = ctypes.CDLL(None)
VOLUME, SURFACE, BOTH = range(3)


def single3(v):
    return tuple(map(single, v))


def drawn():
    return single(single(LIBC.rand()) * 4.656613e-10)


def hitTriangle(source, along, corners):
    """Parameter of the ray where it meets a triangle; None if it does not."""
    a, b, c = corners
    e, f = sub(b, a), sub(c, a)
    h = cross(along, f)
    det = dot(e, h)
    if det == 0:
        return None
    s = sub(source, a)
    u = dot(s, h) / det
    q = cross(s, e)
    v = dot(along, q) / det
    t = dot(f, q) / det
    return t if u >= 0 and v >= 0 and u + v <= 1 and t >= 0 else None


def nearestOnSegment(p, a, b):
    along = sub(b, a)
    n = dot(along, along)
    t = min(1.0, max(0.0, dot(sub(p, a), along) / n)) if n else 0.0
    return add(a, times(along, t))


def nearestOnTriangle(p, corners):
    a, b, c = corners
    n = cross(sub(b, a), sub(c, a))
    if dot(n, n):
        foot = sub(p, times(n, dot(sub(p, a), n) / dot(n, n)))
        if all(dot(cross(sub(y, x), sub(foot, x)), n) >= 0 for x, y in ((a, b), (b, c), (c, a))):
            return foot
    edges = [nearestOnSegment(p, x, y) for x, y in ((a, b), (b, c), (c, a))]
    return min(edges, key=lambda q: length(sub(p, q)))


class Camera:
    """Tests a point in the camera's own space: its half width grows evenly from the near to the far plane."""

    def __init__(self, world, scale, apertures, offsets, near, far, focal, squeeze, expand):
        self.toCamera, self.near, self.far, self.expand = inverse(world), near, far, expand
        inches = focal * 0.03937 or 1.0
        self.slopes = [a * squeeze * scale / inches * 0.5 for a in apertures]
        self.shifts = [o * 0.725716 for o in offsets]

    def sees(self, p):
        x, y, z = point(p, self.toCamera)
        d = -z
        return self.near <= d <= self.far and all(abs(value - shift * d) <= slope * d + self.expand
                                                  for value, shift, slope in zip((x, y), self.shifts, self.slopes))


class Checker:
    """Two by two cells: the lower left and the upper right one have the first colour. A tile repeats."""

    def __init__(self, one, two):
        self.colors = (two, one)

    def keeps(self, u, v):
        t = LIBC.rand() * 4.656612870908988e-10
        return any(t < x for x in self.colors[(u % 1 >= 0.5) == (v % 1 >= 0.5)])


class UvTexture:
    def __init__(self, checker, uvs):
        self.checker, self.uvs = checker, uvs

    def keeps(self, world, triangle, place, p):
        a, b, c = (world[v] for v in triangle)
        n = cross(sub(b, a), sub(c, a))
        shares = [dot(cross(sub(y, x), sub(place, x)), n) / dot(n, n) for x, y in ((b, c), (c, a), (a, b))]
        return self.checker.keeps(*[sum(s * self.uvs[v][k] for s, v in zip(shares, triangle)) for k in (0, 1)])


class Projector:
    def __init__(self, checker, matrix, contained):
        self.checker, self.contained, self.toProjector = checker, contained, inverse(matrix)

    def keeps(self, world, triangle, place, p):
        x, y, _ = point(p, self.toProjector)
        inside = -0.5 <= x <= 0.5 and -0.5 <= y <= 0.5
        return self.checker.keeps(x + 0.5, y + 0.5) if inside else not self.contained


ORDER = (1, 2, 3, 4, 5, 6, 8, 10, 12, 13, 15, 16, 17, 18, 7, 9, 11, 14, 19, 20)


class Scatter:
    """mesh: the triangles' vertex numbers, local points and matrix; rules: the node's attributes by name."""

    def __init__(self, triangles, local, matrix, **rules):
        self.triangles, self.matrix = triangles, matrix
        self.world = [point(p, matrix) for p in local]
        self.normals = [normalThrough(unit(cross(sub(local[b], local[a]), sub(local[c], local[a]))), matrix)
                        for a, b, c in triangles]
        self.bounds = Box(local)
        self.__dict__.update({'mode': VOLUME, 'count': 2000, 'most': 10000, 'seed': 12345, 'tolerance': 25.0, 'offset': 0.0,
                              'reach': -1.0, 'spacing': 0.0, 'density': None, 'distances': None, 'given': None,
                              'camera': None, 'textures': []}, **rules)
        self.flatten()
        if self.given is not None:
            self.count = self.most = len(self.given)

    def flatten(self):
        low, high = list(self.bounds.low), list(self.bounds.high)
        for k in range(3):
            if not high[k] - low[k] > 0.0001:
                self.mode, low[k], high[k] = SURFACE, low[k] - 1, high[k] + 1
        self.low, self.size = single3(low), single3(sub(high, low))
        if self.mode == SURFACE or self.reach < 0:
            self.reach = 9999999.0

    def corners(self, face):
        return [self.world[v] for v in self.triangles[face]]

    def nearest(self, p):
        found = [nearestOnTriangle(p, self.corners(f)) for f in range(len(self.triangles))]
        return single3(min(found, key=lambda q: length(sub(p, q))))

    def hit(self, source, along):
        """(face, place) of the first hit, or None."""
        found = [(t, f) for f in range(len(self.triangles))
                 for t in [hitTriangle(source, along, self.corners(f))] if t is not None and t <= self.reach]
        if not found:
            return None
        t, face = min(found)
        return face, single3(add(source, times(along, t)))

    def aim(self, i):
        if self.given is not None:
            source = single3(self.given[i])
            return source, unit(single3(sub(self.nearest(source), source)))
        p = [drawn() for _ in range(3)]
        d = [drawn() - 0.5 for _ in range(3)]
        source = [single(single(x * size) + low) for x, size, low in zip(p, self.size, self.low)]
        return single3(point(source, self.matrix)), single3(vector(d, self.matrix))

    def tooNear(self, p, face):
        distance = self.spacing
        if self.distances:
            distance = sum(self.distances[v] for v in self.triangles[face]) * distance / 3
        return distance > 0.0001 and any(length(sub(p, q)) <= distance for q, _, _ in self.found)

    def offer(self, p, face, place):
        """False where the throw ends: the density mask has refused the point."""
        if self.density and drawn() > min(1.0, sum(self.density[v] for v in self.triangles[face]) / 3):
            return False
        self.counter += 1
        if not self.tooNear(p, face):
            self.found.append((p, face, place))
        return True

    def throw(self, i):
        """False when all is done."""
        source, along = self.aim(i)
        hit = self.hit(source, along) if length(along) > 0 else None
        if hit is None:
            return True
        face, place = hit
        if self.mode != SURFACE and math.degrees(angle(along, self.normals[face])) <= self.tolerance:
            if self.offset > 0.0001 and length(sub(self.nearest(source), source)) < self.offset:
                return True
            if not self.offer(source, face, place):
                return True
        if self.counter == self.most:
            return False
        if self.mode == VOLUME:
            return True
        return not self.offer(place, face, place) or self.counter != self.most

    def run(self):
        LIBC.srand(ctypes.c_uint(self.seed))
        self.found, self.counter = [], 0
        for i in range(self.count):
            if not self.throw(i):
                break
        for texture in self.textures:
            self.found = [(p, face, place) for p, face, place in self.found
                          if texture.keeps(self.world, self.triangles[face], place, p)]
        return [p for p, _, _ in self.found if self.camera is None or self.camera.sees(p)]
