"""Array nodes on a real mesh: three bunnies out of one.

    mirk run examples/arrays_bunny.py --render arrays.png

Left: normals as colours, by two remapArray nodes. Middle: positions cut to whole steps and back (two remapArray
nodes), blended with the smooth ones (arrayBlend) and coloured by height (splitRgba, arrayToArray, remapArray). Right: the
middles of the faces (faceCenters), one of many kept (decimateArray), shaken a little (randomizeArray), a ball at each.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
STEPS = 16              # whole steps from the feet to the ears
BALLS = 420

DUSK = ((0.00, (0.16, 0.13, 0.40)), (0.35, (0.55, 0.22, 0.50)), (0.65, (0.93, 0.45, 0.40)), (1.00, (1.00, 0.86, 0.55)))


def node(kind, name, **settings):
    made = mc.createNode(kind, name=name)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (made, attribute), value)
    return made


def chain(source, kind, name, attribute='inArray', **settings):
    """A node fed by a plug; gives its output."""
    made = node(kind, name, **settings)
    mc.connectAttr(source, '%s.%s' % (made, attribute))
    return made + '.outArray'


def ramp(attribute, keys, width=1.0):
    name = attribute.split('.')[-1]
    for i, (position, color) in enumerate(keys):
        entry = '%s[%d].%s_' % (attribute, i, name)
        mc.setAttr(entry + 'Position', position * width)
        mc.setAttr(entry + 'Color', *color, type='double3')
        mc.setAttr(entry + 'Interp', 1)


def show(geometry, name, place):
    """A shape of its own for a geometry plug: it takes object-space points, so it needs the transform again."""
    transform = mc.createNode('transform', name=name)
    shape = mc.createNode('mesh', name=name + 'Shape', parent=transform)
    mc.connectAttr(geometry, shape + '.inMesh')
    mc.setAttr(shape + '.displayColors', True)
    mc.setAttr(transform + '.translate', *place, type='double3')


def colored(geometry, vectors, alphas, name):
    """The geometry with vectors as colours."""
    rgba = node('colorAndAlphaToRgba', name + 'Rgba')
    mc.connectAttr(vectors, rgba + '.inRgbPP')
    mc.connectAttr(alphas, rgba + '.inAlphaPP')
    writer = node('arrayToPointColor', name + 'Colors', clamp=True)
    mc.connectAttr(geometry, writer + '.inGeometry')
    mc.connectAttr(rgba + '.outRgbaPP', writer + '.inRgbaPP')
    return writer + '.outGeometry'


def heightColors(positions, name):
    """Colours of a ramp by height: the height in all three components, each of which looks up its own channel."""
    heights = chain(positions, 'splitRgba', name + 'Height', green=True)
    triples = chain(heights, 'arrayToArray', name + 'Triples', 'inArray1')
    colors = chain(triples, 'remapArray', name + 'Ramp', useRamp=True, outArrayType=1)
    ramp(colors.split('.')[0] + '.ramp', DUSK, 1.0 / math.sqrt(3.0))   # by length: the longest is sqrt(3) heights
    return colors


def main():
    if not os.path.isfile(MODEL):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % MODEL)
    bunny = mc.ls(mc.file(MODEL, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]
    low, high = ([mc.getAttr('%s.boundingBox%s%s' % (bunny, end, axis)) for axis in 'XYZ'] for end in ('Min', 'Max'))
    height, width = high[1] - low[1], high[0] - low[0]
    transform = mc.listRelatives(bunny, parent=True, fullPath=True)[0]
    ground = [-(low[0] + high[0]) / 2.0, -low[1], -(low[2] + high[2]) / 2.0]
    mc.setAttr(transform + '.translate', *ground, type='double3')
    mesh = bunny + '.worldMesh[0]'

    reader = node('pointAttributeToArray', 'reader', pointPosition=True, pointNormal=True)
    mc.connectAttr(mesh, reader + '.inGeometry')
    positions, normals = reader + '.outPositionPP', reader + '.outNormalPP'
    opaque = node('createArray', 'opaque', outputType=1, defaultValueX=1.0)
    mc.connectAttr(reader + '.outCount', opaque + '.length')
    alphas = opaque + '.outArray'

    # left: normals from -1 to 1 become light colours from 0.2 to 1
    normalColors = chain(normals, 'remapArray', 'normalColors', remap=True, remapMax=0.4, clamp=True, clampMin=-1.0,
                         outArrayType=1)
    lighter = chain(normalColors, 'remapArray', 'lighter', shift=True, shiftValue=0.6, outArrayType=1)
    show(colored(mesh, lighter, alphas, 'normal'), 'normalBunny', [ground[0] - 1.15 * width] + ground[1:])

    # middle: whole steps, and a quarter of the way back to the smooth points
    step = height / STEPS
    whole = chain(positions, 'remapArray', 'wholeSteps', remap=True, remapMax=1.0 / step, outArrayType=3)
    steps = chain(whole, 'remapArray', 'steps', remap=True, remapMax=step, outArrayType=1)
    mix = node('arrayBlend', 'mix', blend=0.85)
    mc.connectAttr(steps, mix + '.inArray1')
    mc.connectAttr(positions, mix + '.inArray2')
    writer = node('arrayToPointAttribute', 'stepWriter', positions=True)
    mc.connectAttr(mesh, writer + '.inGeometry')
    mc.connectAttr(mix + '.outArray', writer + '.inPositionPP')
    show(colored(writer + '.outGeometry', heightColors(mix + '.outArray', 'step'), alphas, 'step'), 'stepBunny', ground)

    # right: a ball at one face of many
    centers = node('faceCenters', 'centers')
    mc.connectAttr(mesh, centers + '.inGeometry')
    faces = mc.polyEvaluate(bunny, face=True)
    few = chain(centers + '.outPositionPP', 'decimateArray', 'few', stepB=max(1, faces // BALLS))
    shake = 0.01 * height
    shaken = chain(few, 'randomizeArray', 'shaken', **{'random' + end + axis: sign * shake
                                                      for end, sign in (('Min', -1), ('Max', 1)) for axis in 'XYZ'})
    values = mc.getAttr(shaken)
    if values and not isinstance(values[0], (list, tuple)):
        values = list(zip(values[0::3], values[1::3], values[2::3]))
    cloud = mc.createNode('transform', name='cloud')
    for x, y, z in values:
        t = min(max(y / height, 0.0), 1.0)
        (t0, c0), (t1, c1) = next(pair for pair in zip(DUSK, DUSK[1:]) if t <= pair[1][0])
        ball = mc.polySphere(radius=0.028 * height, subdivisionsX=10, subdivisionsY=8, name='ball')[0]
        mc.setAttr(ball + '.translate', x + 1.15 * width, y, z, type='double3')
        mc.polyColorPerVertex(ball, rgb=[a + (b - a) * (t - t0) / (t1 - t0) for a, b in zip(c0, c1)], alpha=1)
        mc.setAttr(mc.listRelatives(ball, shapes=True, fullPath=True)[0] + '.displayColors', True)
        mc.parent(ball, cloud)
    mc.setAttr(bunny + '.intermediateObject', True)

    turn, tilt, distance = math.radians(6.0), math.radians(9.0), 3.9 * height
    mc.setAttr('persp.translate', distance * math.sin(turn) * math.cos(tilt), 0.5 * height + distance * math.sin(tilt),
               distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')
    print('%d points, %d faces, %d balls' % (mc.getAttr(reader + '.outCount'), faces, len(values)))


main()
