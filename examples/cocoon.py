"""A web spun around a real mesh, as a picture.

    mirk run examples/cocoon.py --render cocoon.png

A copy of a scanned bunny is blown up by noise; its points are linked to their neighbours, which makes the cocoon. Threads
lead from the cocoon to the nearest points of the bunny (kdTree says which), and hang through a little: a ramp moves them
down in the middle. Nothing is computed in Python but the colours: the script builds the network.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
POINTS = int(os.environ.get('MIRK_POINTS', '5200'))   # of the cocoon
THREADS = 2                   # from each of them

BODY, FOOT, CROWN = (0.44, 0.14, 0.12), (0.20, 0.62, 0.86), (1.00, 0.82, 0.45)

# Along the normals, further where the noise is high; $BBY is the height of the mesh.
SWELL = '''
float $drift = noise(<<$TX * 5.0, $TY * 5.0, $TZ * 5.0>>);
float $push = $BBY * (0.075 + 0.055 * $drift);
$X = $TX + $NX * $push;
$Y = $TY + $NY * $push;
$Z = $TZ + $NZ * $push;
'''


def vectors(values):
    """A vector array as a list of triples, whether it comes flat or as triples."""
    if values and not isinstance(values[0], (list, tuple)):
        return list(zip(values[0::3], values[1::3], values[2::3]))
    return values or []


def importMesh(path):
    """Imports a model file and gives its first mesh shape."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    return mc.ls(mc.file(path, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]


def pointsOf(plug, step, name):
    """A plug with every step-th point of a mesh."""
    reader = mc.createNode('pointAttributeToArray', name=name + 'ToArray')
    mc.setAttr(reader + '.pointPosition', True)
    mc.connectAttr(plug, reader + '.inGeometry')
    few = mc.createNode('decimateArray', name=name + 'Decimated')
    mc.connectAttr(reader + '.outPositionPP', few + '.inArray')
    mc.setAttr(few + '.stepB', max(2, step))
    return few + '.outArray'


def mix(a, b, t):
    return [x + (y - x) * t for x, y in zip(a, b)]


def heightColours(points, alpha):
    """A plug with a colour for each point, from the foot to the crown."""
    low, high = (f(p[1] for p in points) for f in (min, max))
    rgba = []
    for p in points:
        rgba += mix(FOOT, CROWN, ((p[1] - low) / (high - low)) ** 1.3) + [alpha]
    node = mc.createNode('network', name='colours')
    mc.addAttr(node, longName='rgbaPP', dataType='doubleArray')
    mc.setAttr(node + '.rgbaPP', len(rgba), *rgba, type='doubleArray')
    return node + '.rgbaPP'


def web(name, positions, colours, **settings):
    node = mc.createNode('cocoon', name=name)
    mc.connectAttr(positions, node + '.inPositionPP')
    mc.connectAttr(colours, node + '.inRgbaPP')
    settings.update(antialiasedLinks=True, linksInstances=True)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (node, attribute), value)
    return node


def frame(points):
    """Puts the perspective camera in front of the points, a little above and to the side."""
    low, high = ([f(c) for c in zip(*points)] for f in (min, max))
    center = [(a + b) / 2.0 for a, b in zip(low, high)]
    radius = max(b - a for a, b in zip(low, high)) / 2.0
    turn, tilt, distance = math.radians(20.0), math.radians(9.0), 3.7 * radius
    mc.setAttr('persp.translate', center[0] + distance * math.sin(turn) * math.cos(tilt),
               center[1] + distance * math.sin(tilt), center[2] + distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def main():
    bunny = importMesh(MODEL)
    plug = bunny + '.worldMesh[0]'
    mc.setAttr(mc.listRelatives(bunny, parent=True, fullPath=True)[0] + '.translateY',
               -1.12 * mc.getAttr(bunny + '.boundingBoxMin')[0][1])   # the cocoon stands on the ground
    count = mc.polyEvaluate(bunny, vertex=True)
    height = mc.getAttr(bunny + '.boundingBoxMax')[0][1] - mc.getAttr(bunny + '.boundingBoxMin')[0][1]
    mc.polyColorPerVertex(bunny, rgb=BODY, alpha=1.0)
    mc.setAttr(bunny + '.displayColors', True)

    swell = mc.createNode('point', name='swell')
    mc.connectAttr(plug, swell + '.inGeometry')
    mc.setAttr(swell + '.enablePosition', True)
    mc.setAttr(swell + '.stringPosition', SWELL, type='string')

    outer = pointsOf(swell + '.outGeometry', max(1, count // POINTS), 'cocoon')
    points = vectors(mc.getAttr(outer))
    reach = 2.2 * height * math.sqrt(7.0 / len(points))
    skin = web('skin', outer, heightColours(points, 0.6), maxDistance=reach, maxConnectionsPerPoint=5)

    anchors = pointsOf(plug, max(1, 3 * count // POINTS), 'anchors')
    tree = mc.createNode('kdTree', name='nearestAnchors')
    mc.connectAttr(anchors, tree + '.inGeometry')
    mc.connectAttr(outer, tree + '.inGeometry2')
    mc.setAttr(tree + '.count', THREADS)
    mc.setAttr(tree + '.outputMappingData', True)
    threads = web('threads', outer, heightColours(points, 0.4), segments=8, usePositionDisplacementY=True)
    mc.connectAttr(anchors, threads + '.inPositionPP2')
    mc.connectAttr(heightColours(vectors(mc.getAttr(anchors)), 0.8), threads + '.inRgbaPP2')
    mc.connectAttr(tree + '.outCountPP', threads + '.inCountPP')
    mc.connectAttr(tree + '.outIdPP', threads + '.inIdPP')
    for i, (at, value) in enumerate(((0.0, 0.5), (0.5, 0.5 - 0.012 * height), (1.0, 0.5))):
        entry = '%s.positionDisplacementY[%d].positionDisplacementY_' % (threads, i)
        mc.setAttr(entry + 'Position', at)
        mc.setAttr(entry + 'FloatValue', value)
        mc.setAttr(entry + 'Interp', 3)

    frame(points)
    lengths = [s[0] for s in vectors(mc.getAttr(skin + '.outScalePP'))]
    segments = len(vectors(mc.getAttr(threads + '.outPositionPP')))
    print('%d points, %d links of the skin, the longest %.4f; %d threads' %
          (len(points), len(lengths), max(lengths), segments // 8))
    if max(lengths) > reach or segments != 8 * THREADS * len(points):
        sys.exit('The web is not what its settings say.')


main()
