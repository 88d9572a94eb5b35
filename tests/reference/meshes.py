"""Topology of a mesh as plain tables, from what commands tell of it."""
import math

import maya.cmds as mc

from algebra import cross, length, sub
from scenes import faces, numbersOf

VERTEX, EDGE, FACE, MAP, CURVE_CV, SURFACE_CV, PARTICLE = range(7)
NAMES = {VERTEX: 'vtx', EDGE: 'e', FACE: 'f', MAP: 'map', CURVE_CV: 'cv', SURFACE_CV: 'cv', PARTICLE: 'vtx'}


class Topology:
    """edges: [(a, b)]; faces: [[vertex]]; by vertex: its edges, faces and UVs; by face: its edges; by edge: its faces"""

    def __init__(self, points, faces, edges=None):
        self.points, self.faces = points, faces
        around = {frozenset(pair) for f in faces for pair in zip(f, f[1:] + f[:1])}
        self.edges = edges or [tuple(sorted(edge)) for edge in around]
        number = {frozenset(edge): i for i, edge in enumerate(self.edges)}
        self.faceEdges = [[number[frozenset((a, b))] for a, b in zip(f, f[1:] + f[:1])] for f in self.faces]
        self.vertexEdges = inverted(self.edges, len(points))
        self.vertexFaces = inverted(self.faces, len(points))
        self.edgeFaces = inverted(self.faceEdges, len(self.edges))
        self.vertexUvs, self.uvCount, self.uvs = [], 0, []

    @classmethod
    def ofShape(cls, shape, points):
        found = cls(points, faces(shape), [tuple(numbersOf(line)[:2]) for line in mc.polyInfo(shape, edgeToVertex=True)])
        found.uvCount = mc.polyEvaluate(shape, uvcoord=True)
        found.vertexUvs = [uvsOf(shape, i) for i in range(len(points))]
        flat = mc.polyEditUV(shape + '.map[*]', query=True)
        found.uvs = list(zip(flat[::2], flat[1::2]))
        return found

    def count(self, type):
        return {EDGE: len(self.edges), FACE: len(self.faces), MAP: self.uvCount}.get(type, len(self.points))

    def vertices(self, type, i):
        """Of one component."""
        if type == EDGE:
            return list(self.edges[i])
        if type == FACE:
            return self.faces[i]
        if type == MAP:
            return [v for v, uvs in enumerate(self.vertexUvs) if i in uvs]
        return [i]

    def neighbours(self, v):
        return [a + b - v for a, b in (self.edges[e] for e in self.vertexEdges[v])]

    def around(self, type, i):
        """Components of the same type beside one: of edges those that share a vertex, of faces those that share an edge."""
        if type == EDGE:
            return {e for v in self.edges[i] for e in self.vertexEdges[v]} - {i}
        if type == FACE:
            return {f for e in self.faceEdges[i] for f in self.edgeFaces[e]} - {i}
        return set(self.neighbours(i))

    def edgeLength(self, e):
        a, b = self.edges[e]
        return length(sub(self.points[a], self.points[b]))

    def areas(self):
        """(least, greatest) of each face of up to four corners: a bent one's area depends on which diagonal splits it."""
        found = []
        for face in self.faces:
            corners = [self.points[v] for v in face]
            splits = []
            for c in (corners, corners[1:] + corners[:1]):
                splits.append(sum(length(cross(sub(a, c[0]), sub(b, c[0]))) / 2 for a, b in zip(c[1:], c[2:])))
            found.append((min(splits), max(splits)))
        return found

    def uvLength(self, e):
        """Of an edge whose ends have one UV each."""
        (a,), (b,) = (self.vertexUvs[v] for v in self.edges[e])
        return math.hypot(self.uvs[a][0] - self.uvs[b][0], self.uvs[a][1] - self.uvs[b][1])

    def onBoundary(self, type, i):
        border = lambda e: len(self.edgeFaces[e]) < 2
        if type == EDGE:
            return border(i)
        if type == FACE:
            return any(map(border, self.faceEdges[i]))
        return any(border(e) for v in self.vertices(type, i) for e in self.vertexEdges[v])


def inverted(table, count):
    found = [[] for _ in range(count)]
    for i, row in enumerate(table):
        for k in row:
            found[k].append(i)
    return found


def uvsOf(shape, v):
    return {k for _, (k,) in listed(mc.polyListComponentConversion('%s.vtx[%d]' % (shape, v), toUV=True))}


def listed(texts):
    """[(name, indices)] of component texts, ranges spread out."""
    found = []
    for text in texts:
        name, *brackets = text.split('.')[-1].replace(']', '').split('[')
        ranges = []
        for bracket in brackets:
            ends = [int(word) for word in bracket.split(':')]
            ranges.append(range(ends[0], ends[-1] + 1))
        indices = [()]
        for r in ranges:
            indices = [i + (k,) for i in indices for k in r]
        found += [(name, i) for i in indices]
    return found
