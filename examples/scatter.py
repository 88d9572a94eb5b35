"""Points thrown at a real mesh in three ways, as a picture.

    mirk run examples/scatter.py --render scatter.png

On the left bunny they keep a distance from each other that a painted mask makes wider towards the feet; on the middle one
another mask, of waves, says how many there are; on the right one a projector keeps those that fall on the white of a
checker. MIRK_BUNNY names another OBJ file, MIRK_THROWS another number of throws.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
THROWS = int(os.environ.get('MIRK_THROWS', '260000'))
BODY = (0.075, 0.085, 0.11)
AMBER, MINT, CORAL = (1.0, 0.70, 0.25), (0.45, 0.92, 0.78), (1.0, 0.16, 0.10)


def importMesh(path):
    """The mesh shape of a model file, on the ground."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    shape = mc.ls(mc.file(path, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]
    transform = mc.listRelatives(shape, parent=True, fullPath=True)[0]
    mc.setAttr(transform + '.translateY', -mc.getAttr(shape + '.boundingBoxMinY'))
    return shape


def vectors(values):
    """A vector array as a list of triples, whether it comes flat or as triples."""
    if values and not isinstance(values[0], (list, tuple)):
        return list(zip(values[0::3], values[1::3], values[2::3]))
    return values or []


def paintedCopy(original, name, masks, x):
    """A copy of the mesh with a vertex colour of the masks' values as red, moved by x; gives its shape."""
    rgba = [v for value in masks for v in (value, value, value, 1.0)]
    values, painter = mc.createNode('network', name=name + 'Mask'), mc.createNode('arrayToPointColor', name=name + 'Painter')
    mc.addAttr(values, longName='rgbaPP', dataType='doubleArray')
    mc.setAttr(values + '.rgbaPP', len(rgba), *rgba, type='doubleArray')
    mc.connectAttr(original + '.outMesh', painter + '.inGeometry')
    mc.connectAttr(values + '.rgbaPP', painter + '.inRgbaPP')
    transform = mc.createNode('transform', name=name)
    lift = mc.getAttr(mc.listRelatives(original, parent=True, fullPath=True)[0] + '.translateY')
    mc.setAttr(transform + '.translate', x, lift, 0.0, type='double3')
    shape = mc.createNode('mesh', name=name + 'Shape', parent=transform)
    mc.connectAttr(painter + '.outGeometry', shape + '.inMesh')
    return shape


def scatter(shape, name, color, **settings):
    """A scatter on the surface of a shape, drawn in a colour."""
    node = mc.createNode('scatter', name=name)
    mc.connectAttr(shape + '.worldMesh[0]', node + '.inGeometry')
    mc.connectAttr(shape + '.worldMatrix[0]', node + '.inWorldMatrix')
    settings = dict({'scatterMode': 1, 'pointDensity': THROWS, 'maxNumberOfPoints': THROWS, 'pointSize': 2}, **settings)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (node, attribute), value)
    mc.setAttr(node + '.pointColor', *color, type='double3')
    return node


def project(node, slot, center, size):
    """A checker that a plane of a size throws along z at a place, on a slot of a scatter."""
    checker, place = mc.createNode('checker'), mc.createNode('place2dTexture')
    mc.connectAttr(place + '.outUV', checker + '.uvCoord')
    mc.setAttr(place + '.repeatU', 5)
    mc.setAttr(place + '.repeatV', 5)
    plane = mc.createNode('transform', name='projector')
    mc.setAttr(plane + '.translate', *center, type='double3')
    mc.setAttr(plane + '.scale', size, size, size, type='double3')
    mc.setAttr(plane + '.rotateZ', 18)
    mc.connectAttr(checker + '.outColor', '%s.inColor%d' % (node, slot))
    mc.connectAttr(plane + '.worldMatrix[0]', '%s.inProjectionWorldMatrix%d' % (node, slot))


def darken(shape):
    """What is drawn below the points: the bare body, a little smaller, so that points stand on it."""
    mc.setAttr(shape + '.intermediateObject', True)
    reader, body = mc.createNode('pointAttributeToArray'), mc.createNode('arrayToPointAttribute')
    for switch in ('pointPosition', 'pointNormal'):
        mc.setAttr(reader + '.' + switch, True)
    mc.connectAttr(shape + '.worldMesh[0]', reader + '.inGeometry')
    low, high = ([f(c) for c in zip(*vectors(mc.getAttr(reader + '.outPositionPP')))] for f in (min, max))
    sink = 0.003 * (high[1] - low[1])
    points = [[a - sink * b for a, b in zip(p, n)] for p, n in zip(vectors(mc.getAttr(reader + '.outPositionPP')),
                                                                  vectors(mc.getAttr(reader + '.outNormalPP')))]
    values = mc.createNode('network')
    for name, kind, data in (('positionPP', 'vectorArray', points), ('rgbaPP', 'doubleArray', (BODY + (1.0,)) * len(points))):
        mc.addAttr(values, longName=name, dataType=kind)
        mc.setAttr(values + '.' + name, len(data), *data, type=kind)
    mc.connectAttr(shape + '.worldMesh[0]', body + '.inGeometry')
    mc.connectAttr(values + '.positionPP', body + '.inPositionPP')
    mc.connectAttr(values + '.rgbaPP', body + '.inRgbaPP')
    mc.setAttr(body + '.positions', True)
    mc.setAttr(body + '.colors', True)
    drawn = mc.createNode('mesh', parent=mc.listRelatives(shape, parent=True, fullPath=True)[0])
    mc.connectAttr(body + '.outGeometry', drawn + '.inMesh')
    mc.setAttr(drawn + '.displayColors', True)


def frame(width, height):
    """Puts the perspective camera in front of all."""
    tilt, distance = math.radians(8.0), 1.12 * width
    mc.setAttr('persp.translate', 0.0, 0.5 * height + distance * math.sin(tilt), distance * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), 0.0, 0.0, type='double3')


def main():
    bunny = importMesh(MODEL)
    reader = mc.createNode('pointAttributeToArray', name='bunnyToArrays')
    mc.setAttr(reader + '.pointPosition', True)
    mc.connectAttr(bunny + '.worldMesh[0]', reader + '.inGeometry')
    points = vectors(mc.getAttr(reader + '.outPositionPP'))
    height, width = max(p[1] for p in points), max(p[0] for p in points) - min(p[0] for p in points)
    step = 1.08 * width

    up = [p[1] / height for p in points]
    waves = [0.5 + 0.5 * math.sin(26.0 * u + 7.0 * p[0] / height) for u, p in zip(up, points)]
    spaced = paintedCopy(bunny, 'spacedBunny', [1.6 - 1.4 * u for u in up], -step)
    waved = paintedCopy(bunny, 'wavedBunny', [w * w * w for w in waves], 0.0)
    checked = paintedCopy(bunny, 'checkedBunny', [1.0] * len(points), step)
    mc.setAttr(bunny + '.intermediateObject', True)

    made = [scatter(spaced, 'spacedPoints', AMBER, pointSize=4, useVertexColorsAsPntToPntDistMask=True,
                    minPointToPointDistance=0.028 * height),
            scatter(waved, 'wavedPoints', MINT, useVertexColorsAsMask=True),
            scatter(checked, 'checkedPoints', CORAL, minPointToPointDistance=0.006 * height, pointSize=3)]
    project(made[2], 7, (step, 0.5 * height, 0.0), 1.5 * height)
    for shape in (spaced, waved, checked):
        darken(shape)
    frame(3.0 * step, height)

    counts = [mc.getAttr(node + '.outCount') for node in made]
    print('%d throws each: %d points spaced out, %d masked, %d on the white of a checker' % ((THROWS,) + tuple(counts)))
    if not all(0 < count < THROWS for count in counts):
        sys.exit('Points are missing: %r' % counts)


main()
