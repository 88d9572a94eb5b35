"""Meshes of several pieces with UVs cut apart, written as model files, and their shells by plain union of what touches."""
import os
import tempfile

import maya.cmds as mc


class Islands:
    """points; faces and their UVs as lists of numbers (None: a face without UVs); uvCount"""

    def __init__(self):
        self.points, self.faces, self.faceUvs, self.uvCount = [], [], [], 0

    def addSheet(self, rng, closed):
        """A sheet of quads, closed to a tube at times; UVs of a face are its own or those of its neighbours."""
        across, along = rng.randint(3, 4) if closed else rng.randint(1, 3), rng.randint(1, 3)
        first, at = len(self.points), [rng.uniform(-4, 4) for _ in range(3)]
        columns = across if closed else across + 1
        for v in range(along + 1):
            for u in range(columns):
                self.points.append(tuple(round(c + rng.uniform(-0.3, 0.3) + k, 4) for c, k in zip(at, (u, v, (u * u) % 3))))
        shared = {}
        for v in range(along):
            for u in range(across):
                corners = [first + w * columns + x % columns for w, x in ((v, u), (v, u + 1), (v + 1, u + 1), (v + 1, u))]
                self.faces.append(corners)
                self.faceUvs.append(self.uvsOf(rng, corners, shared))

    def uvsOf(self, rng, corners, shared):
        kind = rng.random()
        if kind < 0.1:
            return None
        if kind < 0.35:                                      # an island of its own, but neighbours may join it
            shared.clear()
        uvs = []
        for v in corners:
            if v not in shared:
                shared[v] = self.uvCount
                self.uvCount += 1
            uvs.append(shared[v])
        return uvs

    def shuffle(self, rng):
        order = list(range(len(self.faces)))
        rng.shuffle(order)
        self.faces, self.faceUvs = [self.faces[k] for k in order], [self.faceUvs[k] for k in order]

    def load(self, rng):
        """Imports the mesh; gives its shape."""
        lines = ['v %r %r %r' % p for p in self.points] + ['vt %r %r' % (rng.random(), rng.random()) for _ in range(self.uvCount)]
        for face, uvs in zip(self.faces, self.faceUvs):
            texts = ['%d' % (v + 1) for v in face] if uvs is None else ['%d/%d' % (v + 1, k + 1) for v, k in zip(face, uvs)]
            lines.append('f ' + ' '.join(texts))
        path = os.path.join(tempfile.mkdtemp(), 'islands.obj')
        with open(path, 'w') as stream:
            stream.write('\n'.join(lines) + '\n')
        nodes = mc.file(path, i=True, type='OBJ', returnNewNodes=True)
        os.remove(path)
        os.rmdir(os.path.dirname(path))
        return mc.ls(nodes, type='mesh')[0]

    def uvShells(self):
        """(vertices, number of UVs) of each, in the order of the first UV."""
        groups = joined(self.uvCount, [uvs for uvs in self.faceUvs if uvs])
        found = []
        for group in groups:
            vertices = {v for face, uvs in zip(self.faces, self.faceUvs) if uvs for v, k in zip(face, uvs) if k in group}
            found.append((sorted(vertices), len(group)))
        return found

    def pieces(self):
        """The same for connected faces, in the order of the first face; vertices as the faces meet them."""
        edges = {}
        for i, face in enumerate(self.faces):
            for pair in zip(face, face[1:] + face[:1]):
                edges.setdefault(frozenset(pair), []).append(i)
        found = []
        for group in joined(len(self.faces), edges.values()):
            vertices = list(dict.fromkeys(v for i in sorted(group) for v in self.faces[i]))
            found.append((vertices, len({k for i in group for k in self.faceUvs[i] or ()})))
        return found


def joined(count, groups):
    """Sets of numbers below count that the groups hold together, in the order of their least."""
    sets = [{i} for i in range(count)]
    for group in groups:
        group = list(group)
        whole = set().union(*(sets[i] for i in group))
        for i in whole:
            sets[i] = whole
    return [s for i, s in enumerate(sets) if min(s) == i]
