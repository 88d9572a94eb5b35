"""Components of a real mesh, selected by rule: four bunnies, four ways.

    mirk run examples/components.py --render components.png --save components.ma

Each bunny has componentGroup nodes on it whose component lists say which points arrayToPointColor paints: what faces up
and what faces down, rings that grow from a point of the flank, what two bounding objects hold, and one side of the head
with its mirror image. Everything stays live: change a threshold, drag a volume, and the colours follow.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
BODY = (0.80, 0.77, 0.72)
SKY, NIGHT, GRASS = (0.25, 0.55, 0.85), (0.20, 0.25, 0.45), (0.35, 0.65, 0.30)
CLAY, SAND, ROSE = (0.82, 0.40, 0.22), (0.95, 0.78, 0.50), (0.85, 0.30, 0.45)
TURN = 50.0             # degrees that the bunnies are turned to the camera


def importMesh(path):
    """Imports a model file and gives its first mesh shape."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    nodes = mc.file(path, i=True, type='OBJ', returnNewNodes=True)
    return mc.ls(nodes, type='mesh', long=True)[0]


def group(geometry, **settings):
    """A componentGroup on a geometry plug, with attributes set."""
    node = mc.createNode('componentGroup')
    mc.connectAttr(geometry, node + '.inGeometry')
    for name, value in settings.items():
        kind = {'type': 'string'} if isinstance(value, str) else {}
        mc.setAttr(node + '.' + name, *(value if isinstance(value, tuple) else (value,)), **kind)
    return node


def paint(geometry, count, color, selection=None):
    """Paints the selected points, all of them without a selection; gives the plug of the result."""
    colors = mc.createNode('network', name='colors')
    mc.addAttr(colors, longName='rgbaPP', dataType='doubleArray')
    mc.setAttr(colors + '.rgbaPP', 4 * count, *(list(color) + [1.0]) * count, type='doubleArray')
    node = mc.createNode('arrayToPointColor')
    mc.connectAttr(geometry, node + '.inGeometry')
    mc.connectAttr(colors + '.rgbaPP', node + '.inRgbaPP')
    if selection:
        mc.setAttr(node + '.useComponents', 1)
        mc.connectAttr(selection + '.outComponents', node + '.inComponents')
    return node + '.outGeometry'


def bound(selection, index, kind, contained, center, size):
    """A bounding object on a componentGroup."""
    place = mc.createNode('transform')
    mc.setAttr(place + '.translate', *center, type='double3')
    mc.setAttr(place + '.scale', size, size, size, type='double3')
    node = mc.createNode('boundingObject', parent=place)
    mc.setAttr(node + '.type', kind)
    mc.setAttr(node + '.contained', contained)
    mc.connectAttr(place + '.worldMatrix[0]', node + '.inParentMatrix')
    element = '%s.boundingObjects[%d]' % (selection, index)
    mc.connectAttr(node + '.outData.outParentMatrix', element + '.boundParentMatrix')
    mc.connectAttr(node + '.outData', element)
    mc.setAttr(place + '.visibility', False)


def at(box, x, y, z):
    """A place in the box by fractions of its sides."""
    return [low + f * (high - low) for f, low, high in zip((x, y, z), *box)]


def nearestPoint(geometry, place):
    reader = mc.createNode('pointAttributeToArray')
    mc.connectAttr(geometry, reader + '.inGeometry')
    mc.setAttr(reader + '.pointPosition', True)
    points = mc.getAttr(reader + '.outPositionPP')
    if points and not isinstance(points[0], (list, tuple)):
        points = list(zip(points[0::3], points[1::3], points[2::3]))
    mc.delete(reader)
    return min(range(len(points)), key=lambda i: sum((a - b) ** 2 for a, b in zip(points[i], place)))


def facing(geometry, box, size):
    return [(SKY, group(geometry, opNormalVelocity=True, spreadAngleMax=60.0)),
            (NIGHT, group(geometry, opNormalVelocity=True, spreadAngleMin=110.0))]


def rings(geometry, box, size):
    """Discs of falling size over each other, eight edges from ring to ring."""
    seed = nearestPoint(geometry, at(box, 0.62, 0.35, 1.0))
    return [(CLAY if ring % 2 else SAND,
             group(geometry, opDepth=True, useInComponents=False, initialComponents=str(seed), depth=8 * ring))
            for ring in range(9, 0, -1)]


def volumes(geometry, box, size):
    sphere, cube = group(geometry), group(geometry, componentType=2)
    bound(sphere, 0, 0, True, at(box, 0.6, 0.35, 0.9), 0.28 * size)
    bound(cube, 0, 1, False, at(box, 0.1, 0.62, 0.6), 0.2 * size)
    points = mc.createNode('componentToComponent')     # of the faces that the cube touches
    mc.connectAttr(geometry, points + '.inMesh')
    mc.connectAttr(cube + '.outComponents', points + '.inComponents')
    return [(GRASS, sphere), (SKY, points)]


def mirror(geometry, box, size):
    """A ball at one cheek, and across the middle of the head the points nearest to its mirror image."""
    plane = mc.createNode('transform')
    mc.setAttr(plane + '.translate', *at(box, 0.2, 0.6, 0.68), type='double3')
    mc.setAttr(plane + '.rotateY', 90.0)               # the plane stands across its X axis
    sides = []
    for mode in (1, 0):
        side = group(geometry, mirror=mode)
        bound(side, 0, 0, True, at(box, 0.12, 0.62, 0.92), 0.16 * size)
        mc.connectAttr(plane + '.worldMatrix[0]', side + '.mirrorMatrix')
        sides.append(side)
    return [(ROSE, sides[0]), (CLAY, sides[1])]


def rounded(color):
    return tuple(round(c, 2) for c in color)


def colorsOf(shape):
    """The different colours of the points of a mesh."""
    flat = mc.polyColorPerVertex(shape + '.vtx[*]', query=True, rgb=True)
    return {rounded(flat[i:i + 3]) for i in range(0, len(flat), 3)}


def frame(width, height):
    """Puts the perspective camera in front of a row on the ground that begins at x = 0."""
    tilt, distance = math.radians(6.0), 1.02 * width
    mc.setAttr('persp.translate', 0.5 * width, 0.45 * height + distance * math.sin(tilt),
               distance * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), 0.0, 0.0, type='double3')


def main():
    bunny = importMesh(MODEL)
    source = bunny + '.worldMesh[0]'
    count = mc.polyEvaluate(bunny, vertex=True)
    box = [[mc.getAttr('%s.boundingBox%s%s' % (bunny, end, axis)) for axis in 'XYZ'] for end in ('Min', 'Max')]
    size = max(high - low for low, high in zip(*box))
    middle = at(box, 0.5, 0.0, 0.5)
    for i, select in enumerate((facing, rings, volumes, mirror)):
        result = paint(source, count, BODY)
        selections = select(source, box, size)
        for color, selection in selections:
            result = paint(result, count, color, selection)
        spot = mc.createNode('transform', name=select.__name__)
        mc.setAttr(spot + '.translateX', (i + 0.5) * 1.02 * size)
        mc.setAttr(spot + '.rotateY', TURN)
        centered = mc.createNode('transform', name=select.__name__ + 'Centered', parent=spot)
        mc.setAttr(centered + '.translate', *[-c for c in middle], type='double3')
        shape = mc.createNode('mesh', name=select.__name__ + 'Shape', parent=centered)
        mc.connectAttr(result, shape + '.inMesh')
        mc.setAttr(shape + '.displayColors', True)
        seen = colorsOf(shape)
        expected = {rounded(BODY)} | {rounded(color) for color, _ in selections}
        print('%s: %d selections, %d colours' % (select.__name__, len(selections), len(seen)))
        if seen != expected:
            sys.exit('%s shows the colours %s, not %s' % (shape, sorted(seen), sorted(expected)))
    mc.setAttr(bunny + '.intermediateObject', True)
    frame(4 * 1.02 * size, box[1][1] - box[0][1])


main()
