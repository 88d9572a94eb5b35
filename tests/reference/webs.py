"""Webs of linked points by plain loops over all pairs."""
import ctypes
import math

from algebra import add, cross, length, sub, times, unit
from volumes import Ramps

libc = ctypes.CDLL('libc.so.6')


def links(points, reference, least, most, perPoint):
    """[(i, j)] of all pairs in the band, in the order of i, then j."""
    found = []
    for i in range(len(points)):
        own = 0
        for j in range(i + 1, len(points)):
            a, b = (reference[i], reference[j]) if j < len(reference) else (points[i], points[j])
            x, y, z = sub(b, a)
            d = math.sqrt(x * x + y * y + z * z)
            if d >= least and d <= most:
                found.append((i, j))
                own += 1
                if perPoint >= 1 and own == perPoint:
                    break
    return found


def chainLinks(lengths, count):
    found, start = [], 0
    for n in lengths:
        n = max(n, 0)
        found += [(k, k + 1) for k in range(start, start + n - 1) if k + 1 < count]
        start += n
    return found


def secondLinks(counts, ids, first, second):
    if len(counts) != first or not ids:
        return []
    found, at = [], 0
    for i, n in enumerate(counts):
        for _ in range(max(n, 0)):
            if at < len(ids) and 0 <= ids[at] < second:
                found.append((i, first + ids[at]))
            at += 1
    return found


def mix(a, b, t):
    return tuple(x + (y - x) * t for x, y in zip(a, b))


class Web:
    """points, colors (r, g, b, a) and thickness: one entry a point; style: a dictionary of the node's settings."""

    def __init__(self, points, colors, thickness, found, style):
        self.points, self.colors, self.thickness, self.links, self.style = points, colors, thickness, found, style

    def places(self, link):
        """[(position, colour, thickness)] along a link."""
        i, j = link
        n, out = self.style['segments'], []
        step = tuple(x / n for x in sub(self.points[j], self.points[i]))
        for s in range(n + 1):
            t = s / n
            shift = tuple(Ramps().value(r, t) - 0.5 if r else 0.0 for r in self.style['shift'])
            thickness = self.thickness[i] + (self.thickness[j] - self.thickness[i]) * t
            if self.style['thickness']:
                thickness *= Ramps().value(self.style['thickness'], t)
            color = self.style['linksColor'] or mix(self.colors[i], self.colors[j], t)
            out.append((add(add(self.points[i], times(step, s)), shift), color, thickness))
        return out

    def segments(self):
        """[(link, begin, end)], ends as `places` has them."""
        out = []
        for k, link in enumerate(self.links):
            row = self.places(link)
            out += [(k, a, b) for a, b in zip(row, row[1:])]
        return out

    def instances(self):
        """Positions, directions, scales, thickness, colours of all segments."""
        out = [], [], [], [], []
        for _, (p, c, t), (q, d, u) in self.segments():
            along = sub(q, p)
            thickness = (t + u) / 2
            for array, value in zip(out, (times(add(p, q), 0.5), unit(along), (length(along), thickness, thickness),
                                          thickness, mix(c, d, 0.5))):
                array.append(value)
        return out

    def faces(self, seed, density, least, most):
        """Triangles of point numbers."""
        lists, out = {}, []
        for i, j in self.links:
            lists.setdefault(i, []).append(j)
        libc.srand(seed)
        threshold = min(max(1.0 - density, 0.0), 1.0)
        for a in sorted(lists):
            if threshold == 1.0 or libc.rand() * 4.656613e-10 < threshold:
                continue
            for b, c in zip(lists[a], lists[a][1:]):
                p, q, r = (self.points[k] for k in (a, b, c))
                if least <= 0.5 * length(cross(sub(q, p), sub(r, p))) <= most:
                    out.append((a, b, c))
        return out
