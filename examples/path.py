"""Shortest paths over a real mesh, as a picture.

    mirk run examples/path.py --render path.png

shortestPath leads from an ear of a scanned bunny to points around its feet, along the edges. kdTree tells how near each
vertex of the bunny is to the paths, and the vertices are coloured by that.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
PATHS = int(os.environ.get('MIRK_PATHS', '14'))
WIDTH = 0.006                 # of a path, by the height of the bunny

BODY, TRAIL, START = (0.16, 0.21, 0.30), (0.98, 0.72, 0.28), (0.93, 0.30, 0.22)


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


def pairs(points):
    """From the highest vertex to low ones all around, as the node's expression."""
    start = max(range(len(points)), key=lambda i: points[i][1])
    low = min(p[1] for p in points)
    height = points[start][1] - low
    foot = [i for i, p in enumerate(points) if p[1] < low + 0.05 * height]
    middle = [sum(points[i][k] for i in foot) / len(foot) for k in (0, 2)]

    def around(i):
        return math.atan2(points[i][2] - middle[1], points[i][0] - middle[0])

    ends = []
    for k in range(PATHS):
        angle = 2.0 * math.pi * k / PATHS - math.pi
        ends.append(min(foot, key=lambda i: abs(around(i) - angle)))
    return start, height, ' '.join('%d:%d' % (start, end) for end in ends)


def mix(a, b, t):
    return [x + (y - x) * t for x, y in zip(a, b)]


def colour(distanceSq, alongPath, height):
    """Of a vertex by its distance from the paths, and where the nearest path point lies on its way."""
    near = math.exp(-distanceSq / (2.0 * (WIDTH * height) ** 2))
    return mix(BODY, mix(START, TRAIL, alongPath), near) + [1.0]


def frame(points):
    """Puts the perspective camera in front of the points, a little above and to the side."""
    low, high = ([f(c) for c in zip(*points)] for f in (min, max))
    center = [(a + b) / 2.0 for a, b in zip(low, high)]
    radius = max(b - a for a, b in zip(low, high)) / 2.0
    turn, tilt, distance = math.radians(20.0), math.radians(14.0), 4.5 * radius
    mc.setAttr('persp.translate', center[0] + distance * math.sin(turn) * math.cos(tilt),
               center[1] + distance * math.sin(tilt), center[2] + distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def main():
    bunny = importMesh(MODEL)
    reader = mc.createNode('pointAttributeToArray', name='bunnyToArrays')
    mc.setAttr(reader + '.pointPosition', True)
    mc.connectAttr(bunny + '.worldMesh[0]', reader + '.inGeometry')
    points = vectors(mc.getAttr(reader + '.outPositionPP'))
    start, height, expression = pairs(points)

    paths = mc.createNode('shortestPath', name='bunnyPaths')
    mc.connectAttr(bunny + '.worldMesh[0]', paths + '.inMesh')
    mc.setAttr(paths + '.mode', 2)
    mc.setAttr(paths + '.expression', expression, type='string')

    tree = mc.createNode('kdTree', name='nearestPathPoint')
    mc.connectAttr(paths + '.outPositionPP', tree + '.inGeometry')
    mc.connectAttr(paths + '.outDistancePP', tree + '.inDataPP')
    mc.connectAttr(bunny + '.worldMesh[0]', tree + '.inGeometry2')
    mc.setAttr(tree + '.count', 1)
    mc.setAttr(tree + '.outputMappingData', True)
    distances, along = mc.getAttr(tree + '.outDistancePP'), mc.getAttr(tree + '.outDataPP')
    longest = max(along)
    rgba = []
    for distanceSq, a in zip(distances, along):
        rgba += colour(distanceSq, a / longest, height)

    arrays = mc.createNode('network', name='bunnyColours')
    mc.addAttr(arrays, longName='rgbaPP', dataType='doubleArray')
    mc.setAttr(arrays + '.rgbaPP', len(rgba), *rgba, type='doubleArray')
    writer = mc.createNode('arrayToPointAttribute', name='coloursToBunny')
    mc.connectAttr(bunny + '.worldMesh[0]', writer + '.inGeometry')
    mc.connectAttr(arrays + '.rgbaPP', writer + '.inRgbaPP')
    mc.setAttr(writer + '.colors', True)
    shape = mc.createNode('mesh', name='pathsOnBunnyShape', parent=mc.listRelatives(bunny, parent=True, fullPath=True)[0])
    mc.connectAttr(writer + '.outGeometry', shape + '.inMesh')
    mc.setAttr(shape + '.displayColors', True)
    mc.setAttr(bunny + '.intermediateObject', True)
    frame(points)
    counts = mc.getAttr(paths + '.outCounts')
    print('%d paths from vertex %d, %d points on the longest' % (len(counts), start, max(counts)))


main()
