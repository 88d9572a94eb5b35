"""Random scenes, built with commands, and what the reference has to know about them.

Everything that a node receives is made here from a seeded generator; world points and normals are worked out here as well.
"""
import math

import maya.cmds as mc

from algebra import IDENTITY, add, cross, inverse, normalThrough, point, product, single, sub, times, unit
from volumes import CAPSULE, CLOUD, CUBE, LINEAR, NONE, SMOOTH, SPHERE, Volume

RAMPS = {'position': 'positionFalloff', 'weight': 'weightFalloff', 'color': 'colorFalloff', 'alpha': 'alphaFalloff',
         'normal': 'normalFalloff', 'radius': 'radiusFalloff'}


# -- matrices ---------------------------------------------------------------------------------------------------------

def rotation(rng):
    axis = unit(tuple(rng.gauss(0, 1) for _ in range(3)))
    a = rng.uniform(0, 2 * math.pi)
    c, s, (x, y, z) = math.cos(a), math.sin(a), axis
    k = 1 - c
    return [c + x * x * k, x * y * k + z * s, x * z * k - y * s, 0, x * y * k - z * s, c + y * y * k, y * z * k + x * s, 0,
            x * z * k + y * s, y * z * k - x * s, c + z * z * k, 0, 0, 0, 0, 1.0]


def scaling(sizes):
    return [sizes[0], 0, 0, 0, 0, sizes[1], 0, 0, 0, 0, sizes[2], 0, 0, 0, 0, 1.0]


def randomMatrix(rng, size=1.0, spread=1.0, kinds=('rigid', 'scaled', 'sheared', 'mirrored', 'flat', 'plain')):
    """A placement of about `size`, up to `spread` from the origin in each direction."""
    kind = rng.choice(kinds)
    if kind == 'plain':
        m = list(IDENTITY)
    elif kind == 'rigid':
        m = product(scaling([size] * 3), rotation(rng))
    else:
        sizes = [size * rng.uniform(0.4, 2.0) for _ in range(3)]
        if kind == 'flat':                                   # nearly singular
            sizes[rng.randrange(3)] *= 10 ** rng.uniform(-6, -3)
        if kind == 'mirrored':
            sizes[rng.randrange(3)] *= -1
        m = scaling(sizes)
        if kind != 'scaled':
            m = product(m, [1.0, 0, 0, 0, rng.uniform(-1, 1), 1.0, 0, 0, rng.uniform(-1, 1), rng.uniform(-1, 1), 1.0, 0,
                            0, 0, 0, 1.0])
        m = product(m, rotation(rng))
    m[12:15] = [rng.uniform(-spread, spread) for _ in range(3)]
    if kind == 'projective':
        m[3], m[7], m[11], m[15] = [rng.uniform(-0.2, 0.2) for _ in range(3)] + [rng.uniform(0.8, 1.3)]
    return m


# -- values behind a plug ---------------------------------------------------------------------------------------------

def source(type, values):
    """A plug that gives the values: of a type that setAttr knows by that name."""
    node = mc.createNode('network')
    mc.addAttr(node, longName='value', dataType=type)
    plug = node + '.value'
    if type in ('vectorArray', 'pointArray'):
        mc.setAttr(plug, len(values), *[tuple(v) for v in values], type=type)
    elif type == 'componentList':
        mc.setAttr(plug, len(values), *values, type=type)
    else:
        mc.setAttr(plug, values, type=type)
    return plug


def feed(destination, type, values):
    mc.connectAttr(source(type, values), destination)


def componentText(name, indices):
    """Elements of one component, of a list that setAttr reads."""
    return ['%s[%d]' % (name, i) for i in indices]


# -- geometries -------------------------------------------------------------------------------------------------------

class Geometry:
    """A random geometry.

    kind: 'mesh', 'curve', 'surface' or 'particles'; plug: where it comes from (world space)
    points: world space; localPoints: as stored; matrix: of its transform
    delta: how far points may be apart that single precision takes for the same
    """

    def __init__(self, kind, plug, localPoints, matrix, shape=None):
        self.kind, self.plug, self.shape, self.localPoints, self.matrix = kind, plug, shape, localPoints, matrix
        self.points = [point(p, matrix) for p in localPoints]
        size = max([1.0] + [abs(x) for p in self.points for x in p])
        self.delta = (2e-7 if kind == 'mesh' else 1e-12) * size
        self.faces = faces(shape) if kind == 'mesh' else []

    def vertexNormals(self):
        """Of a mesh, in its own space: the mean of the normals of the faces around a vertex."""
        return meanNormals(self.localPoints, self.faces)

    def faceNormals(self, world):
        """Turned with the matrix: those of a mirrored mesh still point outwards."""
        local = [unit(faceNormal([self.localPoints[v] for v in face])) for face in self.faces]
        return [normalThrough(n, self.matrix) for n in local] if world else local

    def worldNormals(self):
        return [normalThrough(n, self.matrix) for n in self.vertexNormals()]


def numbersOf(line):
    return [int(word) for word in line.split(':')[1].split() if word.lstrip('-').isdigit()]


def faces(shape):
    return [numbersOf(line) for line in mc.polyInfo(shape, faceToVertex=True)]


def faceNormal(points):
    """Not of length 1: of twice the area's length (the sum over the corners)."""
    total = (0.0, 0.0, 0.0)
    for a, b in zip(points, points[1:] + points[:1]):
        total = add(total, cross(sub(a, points[0]), sub(b, points[0])))
    return total


def meanNormals(points, faces):
    sums = [(0.0, 0.0, 0.0)] * len(points)
    for face in faces:
        n = unit(faceNormal([points[i] for i in face]))
        for i in face:
            sums[i] = add(sums[i], n)
    return [unit(s) for s in sums]


def place(rng, transform, shape):
    """A random transform, under a parent at times; returns the world matrix as the host has it."""
    if rng.random() < 0.8:
        mc.xform(transform, worldSpace=True, matrix=randomMatrix(rng, kinds=('rigid', 'scaled', 'sheared', 'mirrored')))
    if rng.random() < 0.3:
        group = mc.group(empty=True)
        mc.parent(transform, group)
        mc.xform(group, worldSpace=True, matrix=randomMatrix(rng, kinds=('scaled', 'sheared')))
    return mc.getAttr(shape + '.worldMatrix[0]')


def triples(flat):
    return [tuple(flat[i:i + 3]) for i in range(0, len(flat), 3)]


def randomMesh(rng, shape=None):
    kind = shape or rng.choice(('cube', 'sphere', 'plane', 'torus'))
    transform = {'cube': lambda: mc.polyCube(subdivisionsX=rng.randint(1, 3), subdivisionsY=rng.randint(1, 2)),
                 'sphere': lambda: mc.polySphere(subdivisionsX=rng.randint(4, 8), subdivisionsY=rng.randint(3, 6)),
                 'plane': lambda: mc.polyPlane(subdivisionsX=rng.randint(1, 5), subdivisionsY=rng.randint(1, 5)),
                 'torus': lambda: mc.polyTorus(subdivisionsX=rng.randint(4, 7), subdivisionsY=rng.randint(3, 5))}[kind]()[0]
    shape = mc.listRelatives(transform, shapes=True)[0]
    for i in range(mc.polyEvaluate(transform, vertex=True)):
        if rng.random() < 0.7:
            mc.setAttr('%s.pnts[%d]' % (shape, i), *[rng.uniform(-0.2, 0.2) for _ in range(3)])
    local = triples(mc.xform(shape + '.vtx[*]', query=True, objectSpace=True, translation=True))
    return Geometry('mesh', shape + '.worldMesh[0]', local, place(rng, transform, shape), shape)


def randomCurve(rng):
    local = [(x + rng.uniform(-0.2, 0.2), rng.uniform(-1, 1), rng.uniform(-1, 1)) for x in range(-2, rng.randint(2, 7))]
    transform = mc.curve(degree=rng.choice((1, 2, 3)), point=local)
    shape = mc.listRelatives(transform, shapes=True)[0]
    return Geometry('curve', shape + '.worldSpace[0]', local, place(rng, transform, shape), shape)


def knots(spans, degree):
    return [0] * degree + list(range(1, spans)) + [spans] * degree


def randomSurface(rng):
    du, dv, su, sv = rng.choice((1, 2, 3)), rng.choice((1, 2, 3)), rng.randint(1, 3), rng.randint(1, 3)
    local = [(u - 1 + rng.uniform(-0.2, 0.2), rng.uniform(-1, 1), v - 1 + rng.uniform(-0.2, 0.2))
             for u in range(su + du) for v in range(sv + dv)]
    transform = mc.surface(degreeU=du, degreeV=dv, knotU=knots(su, du), knotV=knots(sv, dv), point=local)
    shape = mc.listRelatives(transform, shapes=True)[0]
    found = Geometry('surface', shape + '.worldSpace[0]', local, place(rng, transform, shape), shape)
    found.size = (su + du, sv + dv)
    return found


def randomParticles(rng):
    """Mostly a few; at times hundreds in a long row, of which volumes reach a part."""
    count, spread = rng.randint(1, rng.choice((40, 40, 3))), 1.5
    if rng.random() < 0.06:
        count, spread = rng.randint(250, 700), rng.choice((1.5, 6.0))
    local = [tuple(rng.uniform(-k, k) for k in (spread, 1.5, 1.5)) for _ in range(count)]
    if spread > 1.5:
        local.sort()
    return Geometry('particles', source('vectorArray', local), local, IDENTITY)


def randomGeometry(rng, kinds=('mesh', 'mesh', 'curve', 'surface', 'particles', 'particles')):
    return {'mesh': randomMesh, 'curve': randomCurve, 'surface': randomSurface,
            'particles': randomParticles}[rng.choice(kinds)](rng)


def temporaryMesh(geometry):
    """(points, faces) of the mesh that stands for a curve or a surface: its vertices are the CVs in order."""
    made = []
    plug = geometry.plug
    if geometry.kind == 'curve':
        rebuild = mc.createNode('rebuildCurve')
        mc.setAttr(rebuild + '.rebuildType', 3)
        mc.setAttr(rebuild + '.endKnots', 1)
        mc.connectAttr(plug, rebuild + '.inputCurve')
        extrude = mc.createNode('extrude')
        mc.setAttr(extrude + '.extrudeType', 0)
        mc.connectAttr(rebuild + '.outputCurve', extrude + '.profile')
        plug = extrude + '.outputSurface'
        made += [rebuild, extrude]
    tessellate = mc.createNode('nurbsTessellate')
    for name, value in (('polygonType', 1), ('format', 3), ('matchNormalDir', 1)):
        mc.setAttr(tessellate + '.' + name, value)
    if geometry.kind == 'surface':
        mc.setAttr(tessellate + '.normalizeTrimmedUVRange', 0)
    mc.connectAttr(plug, tessellate + '.inputSurface')
    mesh = mc.createNode('mesh')
    mc.connectAttr(tessellate + '.outputPolygon', mesh + '.inMesh')
    points = triples(mc.xform(mesh + '.vtx[*]', query=True, objectSpace=True, translation=True))
    found = points, faces(mesh)
    mc.delete(mc.listRelatives(mesh, parent=True)[0], tessellate, *made)
    return found


def pointNormals(geometry):
    """World normals of points: of a mesh's vertices, or of the CVs by way of the temporary mesh."""
    if geometry.kind == 'mesh':
        return geometry.worldNormals()
    points, topology = temporaryMesh(geometry)
    return meanNormals(points, topology)


# -- ramps and volumes ------------------------------------------------------------------------------------------------

def randomRamp(rng, low=0.0, high=1.0, color=False):
    """Entries of a ramp in a random order; positions at least 0.04 apart, as slopes multiply rounding."""
    slots = rng.sample(range(0, 26), rng.randint(1, 4))
    entries = []
    for slot in slots:
        value = tuple(single(rng.uniform(low, high)) for _ in range(3)) if color else single(rng.uniform(low, high))
        entries.append((single(slot / 25 + rng.uniform(-0.01, 0.01)), value, rng.choice((NONE, LINEAR, LINEAR, SMOOTH))))
    return entries


def setRamp(plug, entries):
    name = plug.split('.')[-1]
    for i in mc.getAttr(plug, multiIndices=True) or []:
        mc.removeMultiInstance('%s[%d]' % (plug, i), b=True)
    for i, (at, value, interpolation) in enumerate(entries):
        element = '%s[%d].%s_' % (plug, 2 * i, name)
        mc.setAttr(element + 'Position', at)
        if isinstance(value, tuple):
            mc.setAttr(element + 'Color', *value)
        else:
            mc.setAttr(element + 'FloatValue', value)
        mc.setAttr(element + 'Interp', interpolation)


DEFAULT_RAMPS = {name: [(0.0, 1.0, LINEAR), (1.0, 0.0, LINEAR)] for name in RAMPS}
DEFAULT_RAMPS['color'] = [(0.0, (1.0, 1.0, 1.0), LINEAR)]
DEFAULT_RAMPS['alpha'] = [(0.0, 1.0, LINEAR)]
DEFAULT_KERNEL = [(0.0, 1.0, SMOOTH), (1.0, 0.0, LINEAR)]


def randomCapsule(rng):
    sizes = lambda: tuple(rng.choice((1.0, 1.0, rng.uniform(0.2, 1.5), rng.uniform(0.2, 1.5), 0.0)) for _ in range(3))
    offset = lambda: rng.choice((0.0, 1.0, rng.uniform(0.05, 1.5)))
    found = {'top': offset(), 'topScale': sizes(), 'bottom': offset(), 'bottomScale': sizes()}
    if found['top'] + found['bottom'] == 0:                   # without a barrel there is nothing to divide by
        found['top'] = 0.5
    return found


def randomVolume(rng, cloud, kinds=(SPHERE, CUBE, CAPSULE, CLOUD)):
    """(node, Volume). cloud(rng, node): sets up a cloud's inputs and returns its five arrays."""
    node = mc.createNode('boundingObject')
    kind = rng.choice(kinds)
    where = {'kind': kind, 'envelope': rng.random() < 0.9, 'normal': rng.randrange(4), 'contained': rng.random() < 0.5,
             'ramps': dict(DEFAULT_RAMPS)}
    where['matrix'] = randomMatrix(rng, kinds=('rigid', 'scaled', 'sheared', 'mirrored', 'flat', 'plain', 'projective'))
    if kind == CAPSULE:
        where.update(randomCapsule(rng))
        mc.setAttr(node + '.topCapOffset', where['top'])
        mc.setAttr(node + '.bottomCapOffset', where['bottom'])
        mc.setAttr(node + '.topCapScale', *where['topScale'])
        mc.setAttr(node + '.bottomCapScale', *where['bottomScale'])
    for name, value in (('type', kind), ('envelope', where['envelope']), ('contained', where['contained']),
                        ('normal', where['normal'])):
        mc.setAttr(node + '.' + name, value)
    feed(node + '.inParentMatrix', 'matrix', where['matrix'])
    for name, attribute in RAMPS.items():
        if rng.random() < 0.6:
            low, high = (-0.3, 1.6) if name in ('weight', 'radius') and rng.random() < 0.3 else (0.0, 1.0)
            where['ramps'][name] = randomRamp(rng, low, high, name == 'color')
            setRamp('%s.%s' % (node, attribute), where['ramps'][name])
    if kind == CLOUD:
        where['cloud'] = cloud(rng, node)
        if not where['envelope']:
            where['cloud'] = None
    return node, Volume(**where)


def connectVolumes(rng, consumer, made):
    """Connects (node, Volume) pairs with gaps between the elements, and elements without a connection among them."""
    volumes, index = [], rng.randrange(3)
    for node, volume in made:
        if rng.random() < 0.15:
            mc.setAttr('%s.boundingObjects[%d].boundControlData.boundEnvelope' % (consumer, index), 1)
            volumes.append(Volume(envelope=False))
            index += rng.randint(1, 2)
        element = '%s.boundingObjects[%d]' % (consumer, index)
        mc.connectAttr(node + '.outData.outParentMatrix', element + '.boundParentMatrix')
        mc.connectAttr(node + '.outData', element)
        volumes.append(volume)
        index += rng.randint(1, 3)
    return volumes


def componentNames(geometry):
    """A name for each point, as component lists have it."""
    if geometry.kind == 'surface':
        return ['cv[%d][%d]' % (u, v) for u in range(geometry.size[0]) for v in range(geometry.size[1])]
    return componentText('cv' if geometry.kind == 'curve' else 'vtx', range(len(geometry.points)))


def feedComponents(rng, plug, geometry, chosen):
    """The chosen points at a plug that takes component lists, and for particles int arrays as well."""
    if geometry.kind == 'particles' and rng.random() < 0.5:
        feed(plug, 'Int32Array', chosen)
    else:
        names = componentNames(geometry)
        feed(plug, 'componentList', [names[i] for i in chosen])


def grouped(plug, names, group):
    """A plug with the geometry of another, the named components in an object group of it."""
    node = mc.createNode('compListToObjGrp')
    mc.connectAttr(plug, node + '.inGeometry')
    mc.setAttr(node + '.groupId', group)
    feed(node + '.inComponents', 'componentList', names)
    return node + '.outGeometry'


def paint(rng, geometry, unpainted=0.3):
    """Colours on the vertices of a mesh but some, in a new colour set at times: (set to name, [rgba or None])."""
    count, name = len(geometry.points), ''
    if rng.random() < 0.3:
        for name in ('first', 'second', 'third')[:rng.randint(1, 3)]:
            mc.polyColorSet(geometry.shape, create=True, colorSet=name)
        name = rng.choice((name, ''))                         # the last one is the current set
        mc.polyColorSet(geometry.shape, currentColorSet=True, colorSet=mc.polyColorSet(
            geometry.shape, query=True, allColorSets=True)[-1])
    colors = [None if i and rng.random() < unpainted else tuple(single(rng.random()) for _ in range(4))
              for i in range(count)]
    for i, c in enumerate(colors):
        if c:
            mc.polyColorPerVertex('%s.vtx[%d]' % (geometry.shape, i), rgb=c[:3], alpha=c[3])
    return name, colors


def selectPoints(rng, node, geometry, chosen):
    """Makes a transfer node work on the chosen points, by a list or by an object group; returns what it then takes.

    A list at times names more than one component, of which the first counts alone; a group at times does not exist.
    """
    if geometry.kind == 'particles' or rng.random() < 0.6:
        mc.setAttr(node + '.useComponents', 1)
        feedComponents(rng, node + '.inComponents', geometry, chosen)
        return chosen
    mc.setAttr(node + '.useComponents', 2)
    mc.setAttr(node + '.groupId', rng.choice((5, 5, 5, 6, -1)))
    names = componentNames(geometry)
    plug = grouped(geometry.plug, [names[i] for i in chosen], 5)
    mc.connectAttr(plug, node + '.inGeometry', force=True)
    return chosen if mc.getAttr(node + '.groupId') == 5 else []
