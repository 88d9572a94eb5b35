"""attributeTransfer against the point-by-point reference, over random geometries, volumes and settings."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import clouds
import compare
import scenes
from algebra import Box, vector
from transfer import transferPoint
from volumes import Ramps

SWITCHES = ('position', 'weight', 'color', 'normal', 'radius')


def cloud(rng, node):
    """Mostly one small cloud of particles; at times any sources."""
    return clouds.randomCloud(rng, node, None if rng.random() < 0.3 else ['particles'])


def randomSettings(rng, node, particles):
    settings = {'particles': particles, 'kernel': scenes.DEFAULT_KERNEL}
    for name in SWITCHES:
        settings[name] = rng.random() < 0.7
    for name in ('merge', 'blend', 'alphaModulate', 'solidAlpha'):
        settings[name] = rng.random() < 0.5
    settings['maxInfluences'] = rng.choice((1, 2, 3, 5, 5, 20))
    settings['update'] = rng.choice((0, 0, 2))
    for name, value in settings.items():
        if name not in ('particles', 'kernel'):
            mc.setAttr(node + '.' + name, value)
    if rng.random() < 0.6:
        settings['kernel'] = scenes.randomRamp(rng, rng.choice((-0.4, 0.0)))
        scenes.setRamp(node + '.kernel', settings['kernel'])
    return settings


def weightInput(rng, node, count, attribute, mode):
    """One number a point; 'long' and for radii 'short' are refused."""
    if mode == 'none':
        return [0.0] * count
    values = [rng.choice((0.0, 1.0, rng.random(), rng.random())) for _ in range(count + {'long': 2}.get(mode, 0))]
    scenes.feed('%s.%s' % (node, attribute), 'doubleArray', values)
    return [0.0] * count if mode == 'long' else values


def colorInput(rng, node, geometry, settings):
    count = len(geometry.points)
    zero = (0.0, 0.0, 0.0, 1.0 if settings['solidAlpha'] else 0.0)
    mode = rng.choice(('none', 'rgba', 'rgba', 'grey', 'vector', 'point', 'mesh', 'wrong'))
    random = lambda n: [tuple(rng.choice((0.0, rng.random())) for _ in range(n)) for _ in range(count)]
    plug = node + '.inRgbaPP'
    if mode == 'mesh' and geometry.kind == 'mesh':
        name, painted = scenes.paint(rng, geometry, rng.choice((0.0, 0.3)))
        mc.setAttr(node + '.colorSet', name, type='string')
        return [c or (0.0, 0.0, 0.0, 0.0) for c in painted]   # nothing to blend with where there is no colour
    if mode == 'rgba':
        colors = random(4)
        if rng.random() < 0.3:
            colors = [rng.choice((c, (0.0, 0.0, 0.0, 0.5))) for c in colors]
        scenes.feed(plug, 'doubleArray', [x for c in colors for x in c])
        return colors
    if mode == 'grey':
        values = [rng.random() for _ in range(count)]
        scenes.feed(plug, 'doubleArray', values)
        return [(x, x, x, 1.0) for x in values]
    if mode in ('vector', 'point'):
        values = random(3)
        scenes.feed(plug, mode + 'Array', [v + (0.25,) for v in values] if mode == 'point' else values)
        return [v + (1.0,) for v in values]
    if mode == 'wrong':
        scenes.feed(plug, 'vectorArray', random(3) + [(1.0, 0.0, 0.0)])
    return [zero] * count


def normalInput(rng, node, geometry):
    count = len(geometry.points)
    own = [(0.0, 0.0, 0.0)] * count
    if geometry.kind == 'mesh':
        own = [vector(n, geometry.matrix) for n in geometry.vertexNormals()]
    elif geometry.kind != 'particles':
        own = scenes.pointNormals(geometry)
    mode = rng.choice(('none', 'vector', 'vector', 'double', 'wrong'))
    if mode == 'none':
        return own
    values = [tuple(rng.uniform(-1, 1) for _ in range(3)) for _ in range(count)]
    if mode == 'double':
        scenes.feed(node + '.inNormalPP', 'doubleArray', [x for v in values for x in v])
    else:
        more = [(1.0, 0.0, 0.0)] if mode == 'wrong' else []
        scenes.feed(node + '.inNormalPP', 'vectorArray', values + more)
    return [(0.0, 0.0, 0.0)] * count if mode == 'wrong' else values


def randomSubset(rng, node, geometry):
    """The indices in the component list, or None without one."""
    count = len(geometry.points)
    if rng.random() < 0.7:
        return None
    some = set(rng.sample(range(count), rng.randint(1, rng.choice((count, 1)))))       # few: clouds may miss their box
    chosen = sorted(some | ({count - 1} if rng.random() < 0.8 else set()))
    return scenes.selectPoints(rng, node, geometry, chosen)


def expectations(geometry, volumes, settings, old, chosen):
    """A function of the point's index, its move and the shift of ramp look-ups -> values by name."""
    box = Box([geometry.points[i] for i in chosen] if chosen is not None else geometry.points)

    def expect(i, move=(0.0, 0.0, 0.0), *shift):
        p = tuple(a + b for a, b in zip(geometry.points[i], move))
        values = {name: old[name][i] for name in SWITCHES if name != 'position'}
        values['position'] = p
        return transferPoint(p, values, volumes, settings, box, Ramps(*shift))

    return expect


def scene(rng):
    geometry = scenes.randomGeometry(rng)
    count = len(geometry.points)
    node = mc.createNode('attributeTransfer')
    mc.connectAttr(geometry.plug, node + '.inGeometry')
    settings = randomSettings(rng, node, geometry.kind == 'particles')
    old = {'weight': [0.0] * count, 'radius': [0.0] * count}
    if settings['weight']:
        old['weight'] = weightInput(rng, node, count, 'inWeightPP', rng.choice(('none', 'right', 'right', 'long')))
    if settings['radius']:
        old['radius'] = weightInput(rng, node, count, 'inRadiusPP', rng.choice(('none', 'right', 'right', 'long')))
    old['color'] = colorInput(rng, node, geometry, settings)
    old['normal'] = normalInput(rng, node, geometry)
    made = [scenes.randomVolume(rng, cloud) for _ in range(rng.randint(0, 6))]
    volumes = scenes.connectVolumes(rng, node, made)
    if rng.random() < 0.05:
        return switchedOff(node, geometry, settings)
    chosen = randomSubset(rng, node, geometry)
    results = read(node, geometry, settings)
    if chosen is not None and count - 1 not in chosen:          # the last point decides for all
        zero = (0.0, 0.0, 0.0, 1.0 if settings['solidAlpha'] else 0.0)
        return compare.differences('color', results['color'], [zero] * count) if settings['color'] else []
    expect = expectations(geometry, volumes, settings, old, chosen)
    found = []
    for name in SWITCHES:
        if settings[name]:
            found += compare.points(name, results[name], lambda i, *moved: expect(i, *moved)[name], count, geometry.delta)
    if settings['update'] == 0 and geometry.kind == 'mesh' and volumes:
        found += written(node, geometry, settings, results)
    return found


def switchedOff(node, geometry, settings):
    """Empty arrays, and the geometry as it came."""
    mc.setAttr(node + '.envelope', False)
    found = [name + ' is not empty' for name in ('Position', 'Weight', 'Rgba', 'Normal', 'Radius')
             if mc.getAttr('%s.out%sPP' % (node, name))]
    if geometry.kind == 'particles':
        return found + compare.differences('outGeometry', mc.getAttr(node + '.outGeometry'), geometry.points, 0)
    if geometry.kind == 'mesh':
        settings = dict(settings, position=True, color=False)
        found += written(node, geometry, settings, {'position': geometry.points})
    return found


def read(node, geometry, settings):
    if geometry.kind == 'particles':
        positions = mc.getAttr(node + '.outGeometry') if settings['update'] != 2 else None
        if positions is None:
            settings['position'] = False
    else:
        positions = [p[:3] for p in mc.getAttr(node + '.outPositionPP')]
    return {'position': positions, 'weight': mc.getAttr(node + '.outWeightPP'),
            'color': compare.grouped(mc.getAttr(node + '.outRgbaPP'), 4), 'normal': mc.getAttr(node + '.outNormalPP'),
            'radius': mc.getAttr(node + '.outRadiusPP')}


def written(node, geometry, settings, results):
    """The mesh that comes out, under the same transform, has what the arrays say."""
    mesh = mc.createNode('mesh')
    mc.connectAttr(node + '.outGeometry', mesh + '.inMesh')
    local = scenes.triples(mc.xform(mesh + '.vtx[*]', query=True, objectSpace=True, translation=True))
    world = [scenes.point(p, geometry.matrix) for p in local]
    size = max(1.0, max(abs(x) for p in world for x in p))
    found = []
    if settings['position']:
        found += compare.differences('vertices', world, results['position'], 1e-5 * size)
    if settings['color']:
        rgb = scenes.triples(mc.polyColorPerVertex(mesh + '.vtx[*]', query=True, rgb=True))
        found += compare.differences('vertex colours', rgb, [c[:3] for c in results['color']])
    return found


compare.run(scene, 200)
