"""componentGroup and the component converters on plain index sets.

`slack` widens (or, below 0, narrows) every comparison with a threshold, to see whether a result hangs on rounding.
"""
from algebra import angle, dot, length, single, sub, times, unit
from meshes import CURVE_CV, EDGE, FACE, MAP
from volumes import CLOUD

DEGREE = single(0.01746)
ALL = 999999999


def parsed(text, count):
    """Indices of a pattern."""
    if text == '*':
        return list(range(count))
    found = []
    for token in text.split():
        parts = token.split(':')
        if not all(part.isdigit() for part in parts) or len(parts) > 2:
            continue
        low, high = sorted((int(parts[0]), int(parts[-1])))
        found += [i for i in range(low, min(high, count - 1) + 1)]
    return found


def ranged(start, end, a, b, count):
    last = count + end if -end < count else 0
    a, passed, found = min(a, b), 0, []
    for i in range(start, last):
        if i % b == 0:
            found.append(i)
            passed = 0
        else:
            passed += 1
            if passed < a:
                found.append(i)
    return found


class Group:
    """One evaluation. geometry: .kind, .topology (of meshes), .points, .normals, .faceNormals in the chosen space; s: settings by name."""

    def __init__(self, geometry, s, volumes=(), slack=0.0):
        self.geometry, self.s, self.volumes, self.slack = geometry, s, volumes, slack
        self.type, self.topology, self.points = s['componentType'], geometry.topology, geometry.points
        self.count = len(self.points)
        if geometry.kind == 'mesh':
            self.count = self.topology.count(self.type)

    def atMost(self, a, b):
        return a <= b + self.slack

    def within(self, low, a, high):
        return self.atMost(low, a) and self.atMost(a, high)

    def result(self, given):
        """The indices that are selected; given: those of the input list."""
        s = self.s
        found = set()
        for name in ('Pattern', 'Range', 'NormalVelocity', 'Depth', 'EdgeLength', 'FaceArea', 'FacePerimeter', 'WeightMap',
                     'Angle', 'Ngons'):
            if s.get('op' + name):
                found |= set(getattr(self, 'op' + name)(given))
        inside = self.inVolumes()
        if s['combine'] == 2:
            found = given - found - inside
        else:
            found |= inside
            if s['combine'] == 1:
                found |= given
            elif s['combine'] == 3:
                found &= given
        if s['mirror']:
            found = self.mirrored(found)
        if s['boundary']:
            border = {i for i in range(self.count) if self.onBoundary(i)}
            found = {1: border, 2: found | border, 3: found - border, 4: found & border}[s['boundary']]
        return set(range(self.count)) - found if s['invert'] else found

    # -- operations

    def opPattern(self, given):
        return parsed(self.s['pattern'], self.count)

    def opRange(self, given):
        s = self.s
        return ranged(s['rangeStart'], s['rangeEnd'], s['stepA'], s['stepB'], self.count)

    def opNormalVelocity(self, given):
        normals = self.geometry.faceNormals if self.type == FACE else self.geometry.normals
        found = self.directed(normals) if self.s['mode'] == 0 else self.similar(normals)
        return found if self.type == FACE else self.fromVertices(found)

    def directed(self, normals):
        s, found = self.s, []
        for i, n in enumerate(normals):
            a = angle(n, s['direction'])
            a = 0.0 if a < 0.0001 else a
            if length(s['direction']) >= 0.0001 and self.within(s['spreadAngleMin'] * DEGREE, a, s['spreadAngleMax'] * DEGREE):
                found.append(i)
        return found

    def similar(self, normals):
        found = []
        if self.type == CURVE_CV:                            # two vertices a CV
            return [v for v in range(2, len(normals))
                    if self.atMost(angle(normals[v - 2], normals[v]), self.s['inBetweenAngle'] * DEGREE)]
        for i, n in enumerate(normals):
            near = [k for k in self.topology.around(FACE if self.type == FACE else 0, i)
                    if self.atMost(angle(n, normals[k]), self.s['inBetweenAngle'] * DEGREE)]
            found += near + ([i] if near and self.type == FACE else [])
        return found

    def fromVertices(self, vertices):
        if self.type == EDGE:
            return {e for v in vertices for e in self.topology.vertexEdges[v]}
        if self.type == MAP:
            return {k for v in vertices for k in self.topology.vertexUvs[v]}
        if self.type == CURVE_CV:
            return {v // 2 for v in vertices}
        return set(vertices)

    def opDepth(self, given):
        seeds = given if self.s['useInComponents'] else set(parsed(self.s['initialComponents'], self.count))
        if self.s['depth'] == 0:
            return []
        if self.type == MAP:
            seeds = {v for i in seeds for v in self.topology.vertices(MAP, i)}
        found, edge = set(seeds), set(seeds)
        for _ in range(self.s['depth']):
            edge = {k for i in edge for k in self.beside(i)} - found
            found |= edge
        return self.fromVertices(found) if self.type == MAP else found

    def beside(self, i):
        if self.type == CURVE_CV:
            return [k for k in (i - 1, i + 1) if 0 <= k < self.count]
        return self.topology.around(0 if self.type == MAP else self.type, i)

    def opEdgeLength(self, given):
        limit, found = self.s['lengthThreshold'], set()
        if self.type == CURVE_CV:
            for i in range(self.count - 1):
                if self.atMost(length(sub(self.points[i], self.points[i + 1])), limit):
                    found |= {i, i + 1}
            return found
        size = self.topology.uvLength if self.s['space'] else self.topology.edgeLength
        for e, ends in enumerate(self.topology.edges):
            if self.atMost(size(e), limit):
                found |= {EDGE: lambda: {e}, FACE: lambda: set(self.topology.edgeFaces[e])}.get(
                    self.type, lambda: self.fromVertices(ends))()
        return found

    def fromFaces(self, faces):
        t = self.topology
        if self.type == FACE:
            return faces
        if self.type == EDGE:
            return {e for f in faces for e in t.faceEdges[f]}
        return self.fromVertices({v for f in faces for v in t.faces[f]})

    def opFaceArea(self, given):
        areas = [high if self.slack < 0 else low for low, high in self.topology.areas()]
        return self.fromFaces([f for f, a in enumerate(areas) if self.atMost(a, self.s['areaThreshold'])])

    def opFacePerimeter(self, given):
        t = self.topology
        sizes = [sum(map(t.edgeLength, edges)) for edges in t.faceEdges]
        return self.fromFaces([f for f, a in enumerate(sizes) if self.atMost(a, self.s['perimeterThreshold'])])

    def opWeightMap(self, given):
        weights = (self.s['weights'] + [0.0] * self.count)[:self.count]
        return [i for i, w in enumerate(weights) if w > self.s['weightThreshold']]

    def opAngle(self, given):
        if self.type != EDGE:
            return []
        normals, found = self.geometry.faceNormals, []
        for e, sides in enumerate(self.topology.edgeFaces):
            if len(sides) == 2:
                a = angle(normals[sides[0]], normals[sides[1]])
                if self.within(self.s['angleMin'] * DEGREE, a, self.s['angleMax'] * DEGREE):
                    found.append(e)
        return found

    def opNgons(self, given):
        s = self.s
        if self.type != FACE:
            return []
        inside = lambda low, n, high: max(0, low) <= n <= (high if high >= 0 else ALL)
        return [f for f, face in enumerate(self.topology.faces)
                if inside(s['minVertexCount'], len(face), s['maxVertexCount'])
                and inside(s['minEdgeCount'], len(face), s['maxEdgeCount'])]

    # -- volumes, mirror, boundary

    def vertices(self, i):
        return self.topology.vertices(self.type, i) if self.geometry.kind == 'mesh' else [i]

    def inVolumes(self):
        return {i for i in range(self.count) if self.taken([self.points[v] for v in self.vertices(i)])}

    def taken(self, points):
        for index, volume in enumerate(self.volumes):
            if not volume.envelope:
                continue
            contained = volume.contained
            if volume.kind == CLOUD:
                if index:                              # clouds only count at the first element, there all together
                    continue
                contained = False
                inside = [p for p in points if any(self.atMost(length(sub(p, q)), r)
                                                   for v in self.volumes if v.kind == CLOUD and v.envelope
                                                   for q, r in zip(v.cloud[0], v.cloud[2]))]
            else:
                inside = [p for p in points if self.atMost(volume.distance(p), 1)]
            if len(inside) == len(points) if contained else inside:
                return True
        return False

    def image(self, v):
        """The point nearest to the reflection of v; -1 for none."""
        s, m = self.s, self.s['mirrorMatrix']
        axis = unit(tuple(m[0:3]))
        side = dot(sub(self.points[v], tuple(m[12:15])), axis)
        if s['mirrorDirection'] == 1 and side < -self.slack or s['mirrorDirection'] == 2 and side > self.slack:
            return -1
        to = sub(self.points[v], times(axis, 2 * side))
        d, k = min((length(sub(p, to)), k) for k, p in enumerate(self.points))
        return k if s['radius'] == -1 or self.atMost(d, s['radius']) else -1

    def mirrored(self, found):
        s = self.s
        vertices = {v for i in found for v in self.vertices(i)}
        images = {self.image(v) for v in vertices}
        images = {i for i in range(self.count) if set(self.vertices(i)) <= images}
        return images if s['mirror'] == 1 else images | found

    def onBoundary(self, i):
        if self.geometry.kind == 'surface':
            u, v = divmod(i, self.geometry.size[1])
            return u in (0, self.geometry.size[0] - 1) or v in (0, self.geometry.size[1] - 1)
        if self.geometry.kind == 'curve':
            return i in (0, self.count - 1)
        return self.topology.onBoundary(self.type, i) if self.geometry.kind == 'mesh' else True


def converted(topology, found, source, target, contained):
    """Components of another kind: those that touch the given ones, or consist of them."""
    if source == target:
        return set(found)
    if source == FACE:
        of = {0: topology.faces, EDGE: topology.faceEdges}.get(target)
        if of:
            return {i for f in found for i in of[f]}
    if contained and source == EDGE and target == FACE:
        return {f for f, edges in enumerate(topology.faceEdges) if set(edges) <= found}
    vertices = {v for i in found for v in topology.vertices(source, i)}
    if target == 0:
        return vertices
    if target == MAP:
        return {k for v in vertices for k in topology.vertexUvs[v]}
    if source == EDGE:                                # faces beside an edge
        return {f for e in found for f in topology.edgeFaces[e]}
    table = topology.edges if target == EDGE else topology.faces
    if contained:
        return {i for i, ends in enumerate(table) if set(ends) <= vertices}
    return {i for i, ends in enumerate(table) if set(ends) & vertices}
