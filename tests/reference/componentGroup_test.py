"""componentGroup against index sets, over random geometries and settings."""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import clouds
import compare
import meshes
import scenes
from algebra import angle, single
from groups import Group

MESH_OPERATIONS = ('Pattern', 'Range', 'NormalVelocity', 'Depth', 'EdgeLength', 'FaceArea', 'FacePerimeter', 'WeightMap',
                   'Angle', 'Ngons')
OPERATIONS = {'mesh': MESH_OPERATIONS,
              'curve': ('Pattern', 'Range', 'NormalVelocity', 'Depth', 'EdgeLength', 'WeightMap'),
              'surface': ('Pattern', 'Range', 'NormalVelocity', 'Depth', 'EdgeLength', 'WeightMap'),
              'particles': ('Pattern', 'Range', 'NormalVelocity', 'WeightMap')}


class Seen:
    """A geometry in the space that the node works in."""

    def __init__(self, geometry, world):
        self.kind, self.topology = geometry.kind, None
        self.points = geometry.points if world else geometry.localPoints
        self.size = getattr(geometry, 'size', None)
        self.normals, self.faceNormals = [], []
        self.flat = False                                    # one UV a vertex
        if geometry.kind == 'mesh':
            self.topology = meshes.Topology.ofShape(geometry.shape, self.points)
            self.flat = all(len(uvs) == 1 for uvs in self.topology.vertexUvs)
            self.faceNormals = geometry.faceNormals(world)
            self.normals = geometry.worldNormals() if world else geometry.vertexNormals()

        elif geometry.kind != 'particles':                   # by way of the temporary mesh
            self.topology = meshes.Topology(*scenes.temporaryMesh(geometry))
            self.normals = scenes.meanNormals(self.topology.points, self.topology.faces)


def randomPattern(rng, count):
    token = lambda: rng.choice((str(rng.randrange(count + 3)), '%d:%d' % (rng.randrange(count + 3), rng.randrange(count + 3)),
                                'x', '-1', '1:2:3', '2:x'))
    return rng.choice(('', '*', ' '.join(token() for _ in range(rng.randint(1, 4)))))


def randomValues(rng, seen, type, count):
    """The values of all operations; thresholds about the sizes that there are."""
    pick = lambda values: rng.choice(values) * rng.uniform(0.9, 1.1) if values else 0.0
    t = seen.topology
    angles = lambda: [single(x) for x in sorted((rng.uniform(0, 180), rng.choice((180.0, rng.uniform(0, 180)))))]
    low, high = angles()
    amin, amax = angles()
    direction = tuple(rng.uniform(-1, 1) for _ in range(3))
    if rng.random() < 0.3 and seen.normals:                  # at a true angle, where the factor to radians tells
        a = math.degrees(angle(rng.choice(seen.faceNormals if type == meshes.FACE else seen.normals), direction))
        low, high = rng.choice(((single(a), 180.0), (0.0, single(a))))
    limit = lambda: rng.choice((-1, -1, 3, 4, 5))
    edges = [t.edgeLength(e) for e in range(len(t.edges))] if t else [rng.random() * 2]
    areas, perimeters = [], []
    if t:
        areas, perimeters = [a for a, _ in t.areas()], [sum(map(t.edgeLength, f)) for f in t.faceEdges]
    return {'pattern': randomPattern(rng, count), 'rangeStart': rng.choice((0, rng.randrange(count))),
            'rangeEnd': rng.choice((-1, 0, -rng.randrange(count + 3))), 'stepA': rng.randint(1, 5),
            'stepB': rng.randint(1, 5), 'mode': rng.randrange(2), 'inBetweenAngle': single(rng.uniform(0, 90)),
            'direction': direction, 'spreadAngleMin': low, 'spreadAngleMax': high,
            'useInComponents': rng.random() < 0.5, 'initialComponents': randomPattern(rng, count),
            'depth': rng.randrange(4), 'space': int(seen.flat and rng.random() < 0.5),
            'lengthThreshold': pick(edges), 'areaThreshold': pick(areas), 'perimeterThreshold': pick(perimeters),
            'weightThreshold': rng.random(), 'angleMin': amin, 'angleMax': amax, 'minVertexCount': limit(),
            'maxVertexCount': limit(), 'minEdgeCount': limit(), 'maxEdgeCount': limit()}


def apply(node, settings):
    for name, value in settings.items():
        if isinstance(value, str):
            mc.setAttr(node + '.' + name, value, type='string')
        elif isinstance(value, tuple):
            mc.setAttr(node + '.' + name, *value)
        else:
            mc.setAttr(node + '.' + name, value)


def names(seen, type, indices):
    if type == meshes.SURFACE_CV:
        return ['cv[%d][%d]' % divmod(i, seen.size[1]) for i in indices]
    return scenes.componentText(meshes.NAMES[type], indices)


def selected(node, seen, type, count):
    """The indices at outComponents, or a message; the mark of an empty list is no index."""
    value = mc.getAttr(node + '.outComponents')
    if type == meshes.PARTICLE:
        return {i for i in value if i != count + 100}
    found, mark = set(), (count + 100,) * (2 if type == meshes.SURFACE_CV else 1)
    for name, index in meshes.listed(value or []):
        if name != meshes.NAMES[type]:
            return 'a list of %s' % name
        if index != mark:
            found.add(index[0] * seen.size[1] + index[1] if type == meshes.SURFACE_CV else index[0])
        elif len(value) > 1:
            return 'the mark of the empty list among others'
    return found if value else 'a list without components'


def randomSettings(rng, seen, type, count):
    settings = randomValues(rng, seen, type, count)
    on = set(rng.sample(OPERATIONS[seen.kind], rng.choice((1, 1, 2))))
    settings.update({'op' + name: name in on for name in MESH_OPERATIONS})
    settings['combine'] = rng.choice((0, 0, 1, 2, 3))
    settings['boundary'] = rng.choice((0, 0, 0, 1, 2, 3, 4)) if seen.kind != 'particles' else 0
    settings['invert'] = rng.random() < 0.3
    settings['mirror'] = rng.choice((0, 0, 1, 2)) if type in (0, 1, 2, 4, 5, 6) else 0
    settings['mirrorDirection'] = rng.randrange(3)
    settings['filterInput'] = rng.random() < 0.3
    return settings


def scene(rng):
    geometry = scenes.randomGeometry(rng, ('mesh', 'mesh', 'mesh', 'curve', 'surface', 'particles'))
    while geometry.kind == 'particles' and len(geometry.points) < 3:       # a polygon needs three
        geometry = scenes.randomParticles(rng)
    type = {'mesh': rng.randrange(4), 'curve': 4, 'surface': 5, 'particles': rng.choice((0, 6))}[geometry.kind]
    world = rng.random() < 0.7
    seen = Seen(geometry, world)
    node = mc.createNode('componentGroup')
    mc.connectAttr(geometry.plug, node + '.inGeometry')
    count = seen.topology.count(type) if geometry.kind == 'mesh' else len(seen.points)
    settings = randomSettings(rng, seen, type, count)
    apply(node, dict(settings, componentType=type, coordinateSystem=0 if world else 1))
    settings['componentType'] = type
    if geometry.kind == 'particles':
        seen.normals = [tuple(rng.uniform(-1, 1) for _ in range(3)) for _ in seen.points]
        scenes.feed(node + '.inVelocityPP', 'vectorArray', seen.normals)
        settings['mode'] = 0
        mc.setAttr(node + '.mode', 0)
    settings['weights'] = [rng.random() for _ in range(rng.choice((count, count // 2, count + 2)))]
    scenes.feed(node + '.inWeightPP', 'doubleArray', settings['weights'])
    settings['mirrorMatrix'] = scenes.randomMatrix(rng, spread=0.3, kinds=('rigid', 'plain', 'scaled'))
    scenes.feed(node + '.mirrorMatrix', 'matrix', settings['mirrorMatrix'])
    settings['radius'] = rng.choice((-1, rng.uniform(0.1, 1)))
    if settings['radius'] != -1:
        mc.setAttr(node + '.radius', settings['radius'])
    given = set()
    if rng.random() < 0.7:
        given = {i for i in range(count) if rng.random() < 0.4} or {0}
        given = feedInput(rng, node, seen, type, settings, given)
    volumes = []
    if rng.random() < 0.5:
        small = lambda rng, node: clouds.randomCloud(rng, node, ['particles'])
        volumes = scenes.connectVolumes(rng, node, [scenes.randomVolume(rng, small) for _ in range(rng.randint(1, 3))])
    found = judged(selected(node, seen, type, count),
                   lambda slack: Group(seen, settings, volumes, slack).result(given))
    if settings['mirror'] and type in (0, 4, 5, 6) and not (settings['boundary'] or settings['invert']):
        found += mirrorIds(node, Group(seen, settings, volumes), given)
    if type != meshes.MAP and geometry.kind != 'particles' and rng.random() < 0.2:
        found += asGroup(rng, node)
    if rng.random() < 0.2:
        found += accumulated(rng, node, seen, settings, volumes, given)
    return found


def feedInput(rng, node, seen, type, settings, given):
    """Connects the input components, at times of another kind or as an int array; returns what counts of them."""
    if type == 0 and rng.random() < 0.2:
        scenes.feed(node + '.inComponents', 'Int32Array', sorted(given))
        return given
    if seen.kind == 'mesh' and rng.random() < 0.2:
        other = rng.choice([t for t in range(4) if t != type])
        settings.update(filterInput=True, useInComponents=False)           # growth by kinds is no rule
        apply(node, {'filterInput': True, 'useInComponents': False})
        scenes.feed(node + '.inComponents', 'componentList', names(seen, other, sorted(given)))
        return set()
    scenes.feed(node + '.inComponents', 'componentList', names(seen, type, sorted(given)))
    return given


def mirrorIds(node, group, given):
    """The image of every selected point."""
    mc.setAttr(node + '.outputMirrorData', True)
    before = dict(group.s, mirror=0)
    chosen, *shifted = [Group(group.geometry, before, group.volumes, slack).result(given) for slack in (0.0, 2e-6, -2e-6)]
    expected = [group.image(v) for v in sorted(chosen)]
    found = mc.getAttr(node + '.outMirrorIds')
    mc.setAttr(node + '.outputMirrorData', False)
    wrong = found != expected and all(other == chosen for other in shifted)
    return ['mirror ids of %r: %r, not %r' % (sorted(chosen), found, expected)] if wrong else []


def asGroup(rng, node):
    """The object group of the outgoing geometry holds what the list says."""
    mc.setAttr(node + '.outputObjectGroup', True)
    mc.setAttr(node + '.groupId', 2)
    reader = mc.createNode('objGrpToCompList')
    mc.connectAttr(node + '.outGeometry', reader + '.inGeometry')
    mc.setAttr(reader + '.groupId', 2)
    expected, found = mc.getAttr(node + '.outComponents'), mc.getAttr(reader + '.outComponents')
    return [] if found == expected else ['object group: %r, not %r' % (found, expected)]


def accumulated(rng, node, seen, settings, volumes, given):
    """With the reset frames "*" the next evaluation keeps what this one had."""
    mc.setAttr(node + '.resetFrames', '*', type='string')
    type = settings['componentType']
    old, new = dict(settings), dict(settings)
    expect = lambda s, slack: Group(seen, s, volumes, slack)
    count = expect(old, 0.0).count
    found = judged(selected(node, seen, type, count), lambda slack: expect(old, slack).result(given))
    new['pattern'] = randomPattern(rng, count)
    mc.setAttr(node + '.pattern', new['pattern'], type='string')
    both = lambda slack: expect(old, slack).result(given) | expect(new, slack).result(given)
    return found + judged(selected(node, seen, type, count), both)


def judged(found, expect):
    """Differences; those that come and go with the last digits of a threshold count for nothing."""
    if isinstance(found, str):
        return [found]
    expected = expect(0.0)
    wrong = found ^ expected
    if wrong:
        wrong -= expect(2e-6) ^ expect(-2e-6)
    return ['%r: extra %r, missing %r' % (sorted(found)[:20], sorted(wrong - expected)[:20], sorted(wrong & expected)[:20])
            ] if wrong else []


compare.run(scene, 300)
