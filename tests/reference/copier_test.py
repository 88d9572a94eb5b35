"""copier against a slow model: random sources, arrays of random lengths, every switch."""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import compare
import meshes
import scenes
from algebra import IDENTITY, cross, length, point, product, times, unit

ORDERS = ('XYZ', 'YZX', 'ZXY', 'XZY', 'YXZ', 'ZYX')
SPAN = 10                                         # seconds in which an animated source gets wider


# -- what is copied ---------------------------------------------------------------------------------------------------

class Source:
    """plug: of the mesh; at(copy, seconds): points; the rest as lists by vertex, face or edge"""

    def __init__(self, rng, kind):
        transform = {'cube': mc.polyCube, 'sphere': lambda: mc.polySphere(subdivisionsX=5, subdivisionsY=3),
                     'plane': lambda: mc.polyPlane(subdivisionsX=2, subdivisionsY=1),
                     'moving': lambda: mc.polyPlane(subdivisionsX=1, subdivisionsY=2)}[kind]()
        self.shape = mc.listRelatives(transform[0], shapes=True, fullPath=True)[0]
        self.color = None
        if rng.random() < 0.5:
            self.color = tuple(rng.randint(0, 4) / 4.0 for _ in range(3))
            mc.polyColorPerVertex(transform[0], rgb=self.color, alpha=1)
        self.hard = set()
        if rng.random() < 0.5:
            self.hard = set(rng.sample(range(mc.polyEvaluate(self.shape, edge=True)), 2))
            for edge in self.hard:
                mc.polySoftEdge('%s.e[%d]' % (transform[0], edge), angle=0)
        self.plug = self.shape + rng.choice(('.outMesh', '.worldMesh[0]'))
        self.points = scenes.triples(mc.xform(self.shape + '.vtx[*]', query=True, objectSpace=True, translation=True))
        self.topology = meshes.Topology.ofShape(self.shape, self.points)
        self.soft = [int(line.split()[-1] != 'Hard') for line in mc.polyInfo(self.shape, edgeToVertex=True)]
        self.moving = kind == 'moving'
        if self.moving:
            for frame, value in ((0, 1), (24 * SPAN, 1 + SPAN)):
                mc.setKeyframe(transform[1], attribute='width', time=frame, value=value, inTangentType='linear',
                               outTangentType='linear')

    def at(self, copy, seconds):
        wide = 1.0 + min(max(seconds, 0.0), SPAN) if self.moving else 1.0
        return self, [(x * wide, y, z) for x, y, z in self.points]


class Extracted:
    """An extractor that gives one mesh after the other."""

    def __init__(self, rng, sources):
        self.sources, self.node = sources, mc.createNode('extractor')
        mc.setAttr(self.node + '.outOfRange', 1)
        for i, source in enumerate(sources):
            mc.connectAttr(source.plug, '%s.inMesh[%d]' % (self.node, 3 * i + 1))
        self.plug = self.node + '.outMesh'

    def at(self, copy, seconds):
        return self.sources[copy % len(self.sources)].at(copy, seconds)


def makeSources(rng, node):
    """By position; None where the element has lost its connection."""
    made, extractors = [], []
    logical = sorted(rng.sample(range(8), rng.randint(1, 3)))
    for index in logical:
        if rng.random() < 0.25:
            source = Extracted(rng, [Source(rng, rng.choice(('cube', 'sphere', 'plane', 'moving'))) for _ in range(2)])
            extractors.append(source)
        else:
            source = Source(rng, rng.choice(('cube', 'sphere', 'plane', 'moving')))
        element = '%s.inputMesh[%d]' % (node, index)
        mc.connectAttr(source.plug, element)
        made.append(source)
        if rng.random() < 0.1:
            mc.disconnectAttr(source.plug, element)
            made[-1] = None
    for i, extractor in enumerate(extractors):
        mc.connectAttr(extractor.node + '.message', '%s.override[%d]' % (node, 2 * i))
    return made


# -- per copy ---------------------------------------------------------------------------------------------------------

def give(rng, plug, type, count, draw, chance=0.6, sizes=None):
    """A random array at a plug; None for no connection."""
    if rng.random() > chance:
        return None
    size = rng.choice(sizes or (count, count, count, count + 1, max(0, count - 1), 0))
    values = [draw() for _ in range(size)]
    scenes.feed(plug, type, values)
    return values


def fit(values, count, zero):
    return (values + [zero] * count)[:count]


def axisRotation(axis, angle):
    c, s = math.cos(angle), math.sin(angle)
    return {'X': [1.0, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1.0],
            'Y': [c, 0, -s, 0, 0, 1.0, 0, 0, s, 0, c, 0, 0, 0, 0, 1.0],
            'Z': [c, s, 0, 0, -s, c, 0, 0, 0, 0, 1.0, 0, 0, 0, 0, 1.0]}[axis]


def toAim(aim):
    """The shortest turn that takes X there."""
    if length(aim) == 0:
        return list(IDENTITY)
    x, y, z = unit(aim)
    around = unit((0.0, -z, y))
    c, s = x, math.hypot(y, z)
    return rows(turned((1.0, 0, 0), around, c, s), turned((0, 1.0, 0), around, c, s), turned((0, 0, 1.0), around, c, s))


def turned(v, axis, c, s):
    """Rodrigues' formula."""
    along = sum(a * b for a, b in zip(v, axis)) * (1 - c)
    across = cross(axis, v)
    return tuple(v[k] * c + across[k] * s + axis[k] * along for k in range(3))


def rows(x, y, z):
    return [*x, 0, *y, 0, *z, 0, 0, 0, 0, 1.0]


def frame(aim, up):
    x = unit(aim)
    z = unit(cross(x, up))
    return rows(x, unit(cross(z, x)), z)


class Twister64:
    """The 64-bit Mersenne Twister as its authors describe it."""
    MASK = (1 << 64) - 1

    def __init__(self, seed):
        self.state, self.at = [seed & self.MASK], 312
        for i in range(1, 312):
            last = self.state[-1]
            self.state.append((6364136223846793005 * (last ^ (last >> 62)) + i) & self.MASK)

    def next(self):
        if self.at == 312:
            for i in range(312):
                x = (self.state[i] & ~0x7fffffff) | (self.state[(i + 1) % 312] & 0x7fffffff)
                self.state[i] = self.state[(i + 156) % 312] ^ (x >> 1) ^ (0xb5026f5aa96619e9 if x & 1 else 0)
            self.at = 0
        x = self.state[self.at]
        self.at += 1
        x ^= (x >> 29) & 0x5555555555555555
        x ^= (x << 17) & 0x71d67fffeda60000
        x ^= (x << 37) & 0xfff7eee000000000
        return x ^ (x >> 43)


def colorsOf(values, count):
    if values and isinstance(values[0], tuple):
        rgb = values if len(values) == count else None
    else:
        rgb = (compare.grouped(values, 3) if len(values) == 3 * count else [(v, v, v) for v in values]
               if len(values) == count else None)
    return [c + (1.0,) for c in rgb] if rgb else [(0.0, 0.0, 0.0, 1.0)] * count


def dataOf(values, count, vectors):
    if vectors:
        return [tuple(v) + (1.0,) for v in fit(values, count, (0.0, 0.0, 0.0))]
    if len(values) == 3 * count:
        return [v + (1.0,) for v in compare.grouped(values, 3)]
    if len(values) == count:
        return [(v, v, v, 1.0) for v in values]
    return compare.grouped(fit(values, 4 * count, 0.0), 4)


# -- the scene --------------------------------------------------------------------------------------------------------

class Settings:
    def __init__(self, rng, node, count):
        self.count = count
        for name, choices in (('orient', (0, 1)), ('rotOrder', range(6)), ('rotUnits', (0, 1)), ('toggleTimeShift', (0, 1)),
                              ('originalVertexColor', (0, 1)), ('inheritVertexColor', (0, 1)), ('toggleUV', (0, 1)),
                              ('toggleSoftHard', (0, 1)), ('skipElementsWithZeroSurfaceArea', (0, 1)),
                              ('seed', (0, -1, 12345, 99)), ('minimum', (0.0, 0.5)), ('maximum', (1.0, 2.5, 0.25)),
                              ('time', (0.0, 36.0))):
            setattr(self, name, rng.choice(list(choices)))
            mc.setAttr('%s.%s' % (node, name), getattr(self, name))
        vector = lambda: tuple(rng.uniform(-2, 2) for _ in range(3))
        self.posArray = [vector() for _ in range(count)]
        scenes.feed(node + '.posArray', 'vectorArray', self.posArray)
        for name in ('aimArray', 'upArray', 'rotArray', 'scaleArray'):
            setattr(self, name, give(rng, '%s.%s' % (node, name), 'vectorArray', count, vector, 0.4))
        self.uniformScaleArray = give(rng, node + '.uniformScaleArray', 'doubleArray', count, lambda: rng.uniform(0.2, 2), 0.3)
        self.indexArray = give(rng, node + '.indexArray', 'doubleArray', count, lambda: rng.choice((0, 0.7, 1, 2, 2.5, 3, 4, 9, -1, -0.5)))
        self.timeShift = give(rng, node + '.timeShift', 'doubleArray', count, lambda: rng.uniform(-1, 4), 0.5)
        self.uvArray = give(rng, node + '.uvArray', 'doubleArray', 2 * count, lambda: rng.randint(0, 8) / 4.0, 0.5)
        sizes = (count, 3 * count, 4 * count, 2 * count, 1)
        self.rgbArray = self.either(rng, node + '.rgbArray', sizes)
        self.data = {i: self.either(rng, '%s.inDataPP[%d]' % (node, i), sizes) for i in (0, 3)}

    def either(self, rng, plug, sizes):
        if rng.random() < 0.3:
            return give(rng, plug, 'vectorArray', self.count, lambda: tuple(rng.random() for _ in range(3)), 0.8)
        return give(rng, plug, 'doubleArray', self.count, rng.random, 0.8, sizes)

    def matrix(self, i):
        m = IDENTITY[:12] + [*self.posArray[i], 1.0]
        at = lambda values, zero: fit(values, self.count, zero)[i]
        nothing = (0.0, 0.0, 0.0)
        if self.orient == 0 and self.aimArray is not None:
            aim = at(self.aimArray, nothing)
            m = product(toAim(aim) if self.upArray is None else frame(aim, at(self.upArray, nothing)), m)
        if self.orient == 1 and self.rotArray is not None:
            angles = dict(zip('XYZ', times(at(self.rotArray, nothing), 1.0 if self.rotUnits else 0.017453293)))
            turn = IDENTITY
            for axis in ORDERS[self.rotOrder]:
                turn = product(turn, axisRotation(axis, angles[axis]))
            m = product(turn, m)
        if self.scaleArray is not None:
            m = product(scenes.scaling(at(self.scaleArray, nothing)), m)
        if self.uniformScaleArray is not None:
            m = product(scenes.scaling([at(self.uniformScaleArray, 0.0)] * 3), m)
        return m

    def shifts(self):
        if self.timeShift is not None:
            return fit(self.timeShift, self.count, 0.0)
        random = Twister64(self.seed)
        return [min(random.next() * 2.0 ** -64, 1 - 2.0 ** -53) * (self.maximum - self.minimum) + self.minimum
                for _ in range(self.count)]


def copied(settings, sources):
    """[(copy, source, points)] that go into the result."""
    found, read, shifts = [], {}, settings.shifts()
    for i in range(settings.count):
        index = int(fit(settings.indexArray or [], settings.count, 0.0)[i])
        index = len(sources) - 1 if index > len(sources) else index
        m = settings.matrix(i)
        if settings.skipElementsWithZeroSurfaceArea and [m[0], m[5], m[10]].count(0.0) >= 2:
            continue
        if not 0 <= index < len(sources) or sources[index] is None:
            continue
        if settings.toggleTimeShift:
            read[index] = sources[index].at(i, settings.time / 24.0 + shifts[i])
        elif index not in read:
            read[index] = sources[index].at(i, 0.0)
        found.append((i, read[index][0], [point(p, m) for p in read[index][1]]))
    return found


def uvsAround(shape, count):
    if not mc.polyEvaluate(shape, uvcoord=True):
        return [[]] * count
    flat = mc.polyEditUV(shape + '.map[*]', query=True)
    return [sorted(tuple(flat[2 * i:2 * i + 2]) for i in meshes.uvsOf(shape, v)) for v in range(count)]


def rgba(mesh, colorSet):
    reader = mc.createNode('pointAttributeToArray')
    mc.connectAttr(mesh, reader + '.inGeometry')
    mc.setAttr(reader + '.pointColor', True)
    mc.setAttr(reader + '.colorSet', colorSet, type='string')
    return compare.grouped(mc.getAttr(reader + '.outRgbaPP') or [], 4)


def scene(rng):
    mc.currentTime(0)
    node = mc.createNode('copier')
    sources = makeSources(rng, node)
    settings = Settings(rng, node, rng.randint(1, 6))
    result = mc.createNode('mesh')
    mc.connectAttr(node + '.outputMesh', result + '.inMesh')

    emptied = settings.orient == 0 and settings.aimArray == []
    made = [] if emptied else copied(settings, sources)
    points = [p for _, _, own in made for p in own]
    has = mc.polyEvaluate(result, vertex=True)
    flat = mc.xform(result + '.vtx[*]', query=True, objectSpace=True, translation=True) if has else []
    found = compare.differences('outputMesh', scenes.triples(flat), points)
    if mc.getAttr(node + '.count') != (0 if emptied else settings.count):
        found.append('count: %d' % mc.getAttr(node + '.count'))
    for i, values in settings.data.items():
        vectors = bool(values) and isinstance(values[0], tuple)
        per = dataOf(values, settings.count, vectors) if values is not None and not emptied else []
        if values == []:
            per = None                                    # which kind an empty array has is not told here
        expected = [per[copy] for copy, _, own in made for _ in own] if per else []
        if per is not None:
            data = compare.grouped(mc.getAttr('%s.outDataPP[%d]' % (node, i)) or [], 4)
            found += compare.differences('outDataPP[%d]' % i, data, expected, 1e-12)
    return found + (carried(settings, made, node, result) if points and not found else [])


def carried(settings, made, node, result):
    """Faces, edges, UVs and colours."""
    faces, edges, soft, uvs, inherited, original = [], [], [], [], [], []
    anyUVs = settings.uvArray is not None or settings.toggleUV
    per = colorsOf(settings.rgbArray, settings.count) if settings.rgbArray is not None else None
    first = 0
    for copy, source, own in made:
        faces += [[v + first for v in face] for face in source.topology.faces]
        edges += [tuple(v + first for v in edge) for edge in source.topology.edges]
        soft += source.soft
        shift = fit(settings.uvArray or [], 2 * settings.count, 0.0)[2 * copy:2 * copy + 2]
        for v in range(len(own)):
            base = [source.topology.uvs[k] for k in source.topology.vertexUvs[v]] if settings.toggleUV else [(0.0, 0.0)]
            uvs.append(sorted({(u + shift[0], w + shift[1]) for u, w in base}) if anyUVs else [])
        inherited += [per[copy]] * len(own) if per else []
        original += [source.color + (1.0,) if source.color else None] * len(own)
        first += len(own)

    lines = [] if scenes.faces(result) == faces else ['other faces']
    told = mc.polyInfo(result, edgeToVertex=True)
    if [tuple(scenes.numbersOf(line)[:2]) for line in told] != edges:
        lines.append('other edges')
    if settings.toggleSoftHard and [int(line.split()[-1] != 'Hard') for line in told] != soft:
        lines.append('other soft edges')
    around = [sorted({(round(u, 4), round(v, 4)) for u, v in each}) for each in uvsAround(result, first)]
    lines += compare.differences('UVs', around, [sorted({(round(u, 4), round(v, 4)) for u, v in each}) for each in uvs], 2e-4)
    sets = mc.polyColorSet(result, query=True, allColorSets=True) or []
    wanted = (['inheritedColor'] if settings.inheritVertexColor and per else []) + (
        ['originalColor'] if settings.originalVertexColor and any(original) else [])
    if sets != wanted:
        return lines + ['colour sets %r, not %r' % (sets, wanted)]
    if 'inheritedColor' in sets:
        lines += compare.differences('inheritedColor', rgba(node + '.outputMesh', 'inheritedColor'), inherited)
    if 'originalColor' in sets:
        pairs = [(a, b) for a, b in zip(rgba(node + '.outputMesh', 'originalColor'), original) if b]
        lines += compare.differences('originalColor', [a for a, _ in pairs], [b for _, b in pairs])
    return lines


compare.run(scene, 150)
