"""Volumes over a real mesh: three of them travel over the bunny, colour it, and swell it by the weights that they give.

    mirk run examples/volumes.py --frames 1-24 --render volumes.####.png
    mirk run examples/volumes.py --frames 14-14 --render volumes.png

A sphere, a capsule and a cloud of spheres around the points of a ring are keyed over 24 frames. One attributeTransfer
blends their colours over the grey of the mesh, another gives a weight array; an arrayExpression pushes the points along
their normals by those weights, as a deformer would, and arrayToPointAttribute writes them back. MIRK_BUNNY names another
OBJ file; without any model a sphere takes its place.
"""
import math
import os

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
LAST = 24
SWELL = 0.03            # of the height, at weight 1
GREY = (0.34, 0.33, 0.32)
CORAL, SEA, GOLD = (0.95, 0.16, 0.10), (0.02, 0.26, 0.75), (0.95, 0.60, 0.03)


def importModel():
    """The mesh shape and its transform, with the feet on the ground."""
    if os.path.isfile(MODEL):
        shape = mc.ls(mc.file(MODEL, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]
    else:
        shape = mc.listRelatives(mc.polySphere(subdivisionsX=60, subdivisionsY=40)[0], shapes=True, fullPath=True)[0]
    transform = mc.listRelatives(shape, parent=True, fullPath=True)[0]
    mc.setAttr(transform + '.translateY', -mc.getAttr(shape + '.boundingBoxMinY'))
    mc.polyColorPerVertex(transform, rgb=GREY, alpha=1)
    return shape, transform


def box(shape, transform):
    low, high = ([mc.getAttr('%s.boundingBox%s%s' % (shape, end, axis)) for axis in 'XYZ'] for end in ('Min', 'Max'))
    lift = mc.getAttr(transform + '.translateY')
    return [low[0], low[1] + lift, low[2]], [high[0], high[1] + lift, high[2]]


def volume(name, kind, color, softness, **settings):
    """A bounding object as the scripts make it; its falloffs run from full strength, smoothly, to nothing."""
    transform = mc.createNode('transform', name=name)
    shape = mc.createNode('boundingObject', name=name + 'Shape', parent=transform)
    mc.connectAttr(transform + '.worldMatrix[0]', shape + '.inParentMatrix')
    mc.setAttr(shape + '.type', kind)
    mc.setAttr(shape + '.displayColor', *color, type='double3')
    mc.setAttr(shape + '.colorFalloff[0].colorFalloff_Color', *color, type='double3')
    for falloff in ('alphaFalloff', 'weightFalloff'):
        for i, (position, value) in enumerate(((softness, 1.0), (1.0, 0.0))):
            entry = '%s.%s[%d].%s_' % (shape, falloff, i, falloff)
            mc.setAttr(entry + 'Position', position)
            mc.setAttr(entry + 'FloatValue', value)
            mc.setAttr(entry + 'Interp', 2)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (shape, attribute), value)
    return transform, shape


def key(node, frame, **values):
    for attribute, value in values.items():
        mc.setKeyframe(node, attribute=attribute, time=frame, value=value)


def transfer(name, mesh, shapes, **settings):
    """An attributeTransfer with the volumes connected by the two connections that each of them takes."""
    node = mc.createNode('attributeTransfer', name=name)
    mc.connectAttr(mesh, node + '.inGeometry')
    for i, shape in enumerate(shapes):
        element = '%s.boundingObjects[%d]' % (node, i)
        mc.connectAttr(shape + '.outData.outParentMatrix', element + '.boundParentMatrix')
        mc.connectAttr(shape + '.outData', element)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (node, attribute), value)
    return node


def threeVolumes(low, high):
    """The volumes with their keys; lengths are parts of the bunny's height."""
    h = high[1] - low[1]
    middle = [(a + b) / 2.0 for a, b in zip(low, high)]
    sphere, sphereShape = volume('sphere', 0, CORAL, 0.35)
    mc.setAttr(sphere + '.scale', 0.36 * h, 0.36 * h, 0.36 * h, type='double3')
    key(sphere, 1, translateX=low[0], translateY=0.85 * h, translateZ=middle[2])
    key(sphere, LAST // 2, translateX=middle[0] - 0.1 * h, translateY=0.72 * h, translateZ=middle[2] + 0.1 * h)
    key(sphere, LAST, translateX=low[0] - 0.05 * h, translateY=0.35 * h, translateZ=middle[2] + 0.2 * h)

    capsule, capsuleShape = volume('capsule', 2, SEA, 0.3, topCapOffset=1.6, bottomCapOffset=1.6)
    mc.setAttr(capsule + '.scale', 0.21 * h, 0.21 * h, 0.21 * h, type='double3')
    key(capsule, 1, translateX=high[0], translateY=0.2 * h, translateZ=middle[2] + 0.1 * h, rotateZ=0, rotateX=60)
    key(capsule, LAST, translateX=middle[0] + 0.1 * h, translateY=0.42 * h, translateZ=middle[2] + 0.25 * h, rotateZ=150,
        rotateX=20)

    ring = mc.polyTorus(radius=0.40 * h, sectionRadius=0.02 * h, subdivisionsX=20, subdivisionsY=3, name='ring')[0]
    ringShape = mc.listRelatives(ring, shapes=True, fullPath=True)[0]
    mc.setAttr(ringShape + '.visibility', False)
    cloud, cloudShape = volume('cloud', 3, GOLD, 0.2, pointRadius=0.085 * h)
    mc.setAttr(cloudShape + '.pointColor', *GOLD, type='double3')
    mc.connectAttr(ringShape + '.worldMesh[0]', cloudShape + '.inMesh')
    mc.setAttr(ring + '.translate', middle[0], 0.0, middle[2], type='double3')
    key(ring, 1, translateY=-0.05 * h, rotateX=-10)
    key(ring, LAST, translateY=0.75 * h, rotateX=25)
    return [sphereShape, capsuleShape, cloudShape]


def swell(mesh, weights, amount):
    """Points pushed along their normals by the weights; gives the geometry plug."""
    reader = mc.createNode('pointAttributeToArray', name='reader')
    mc.connectAttr(mesh, reader + '.inGeometry')
    for switch in ('pointPosition', 'pointNormal'):
        mc.setAttr(reader + '.' + switch, True)
    push = mc.createNode('arrayExpression', name='push')
    for source, target in ((reader + '.outPositionPP', 'inArray'), (reader + '.outNormalPP', 'inArray2'),
                           (weights, 'inArray3')):
        mc.connectAttr(source, push + '.' + target)
    mc.setAttr(push + '.expression', ' '.join('$E%s += %.6f * $E3 * $E%s2;' % (c, amount, c) for c in 'XYZ'), type='string')
    writer = mc.createNode('arrayToPointAttribute', name='writer')
    mc.connectAttr(mesh, writer + '.inGeometry')
    mc.connectAttr(push + '.outArray', writer + '.inPositionPP')
    mc.setAttr(writer + '.positions', True)
    return writer + '.outGeometry'


def frameCamera(low, high):
    h = high[1] - low[1]
    turn, tilt, distance = math.radians(16.0), math.radians(9.0), 2.25 * h
    mc.setAttr('persp.translate', (low[0] + high[0]) / 2.0 + distance * math.sin(turn) * math.cos(tilt),
               0.5 * h + distance * math.sin(tilt), distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def main():
    shape, transform = importModel()
    low, high = box(shape, transform)
    mesh = shape + '.worldMesh[0]'
    shapes = threeVolumes(low, high)

    weights = transfer('weights', mesh, shapes, weight=True, update=2)
    swollen = swell(mesh, weights + '.outWeightPP', SWELL * (high[1] - low[1]))
    # the colours belong to the points as they were: the swollen mesh would reach out of its own volumes
    painter = transfer('colors', mesh, shapes, color=True, update=2)
    colored = mc.createNode('arrayToPointColor', name='paint')
    mc.connectAttr(swollen, colored + '.inGeometry')
    mc.connectAttr(painter + '.outRgbaPP', colored + '.inRgbaPP')
    result = mc.createNode('mesh', name='paintedShape', parent=transform)
    mc.connectAttr(colored + '.outGeometry', result + '.inMesh')
    mc.setAttr(result + '.displayColors', True)
    mc.setAttr(shape + '.intermediateObject', True)
    frameCamera(low, high)

    mc.currentTime(LAST // 2)
    values = mc.getAttr(weights + '.outWeightPP')
    reached = sum(1 for value in values if value > 0.0)
    if not 0 < reached < len(values) or max(values) > 1.0:
        raise RuntimeError('%d of %d points have weight' % (reached, len(values)))
    print('%d of %d points reached at frame %d' % (reached, len(values), LAST // 2))


main()
