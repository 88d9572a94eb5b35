"""Arithmetic on arrays: a blanket of points, shaped without one line of code per point.

    mirk run examples/arrays_arithmetic.py --render blanket.png --export blanket.obj

The points of a plane are published as arrays. Their depth goes through the ramp of a remapArray and lifts them into
waves, a randomizeArray roughens the waves, an arrayBlend says how much of that is taken, and the heights colour the
result. Everything stays live: turn the ramp, the seed or the blend and the mesh follows.
"""
import sys

import maya.cmds as mc

SIDE = 60


def node(kind, name, **settings):
    made = mc.createNode(kind, name=name)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (made, attribute), value)
    return made


def ramp(attribute, keys):
    """Sets position, colour and interpolation of a ramp's entries."""
    name = attribute.split('.')[-1]
    for i, (position, color, interpolation) in enumerate(keys):
        entry = '%s[%d].%s_' % (attribute, i, name)
        mc.setAttr(entry + 'Position', position)
        mc.setAttr(entry + 'Color', *color, type='double3')
        mc.setAttr(entry + 'Interp', interpolation)


plane = mc.polyPlane(width=2, height=2, subdivisionsX=SIDE, subdivisionsY=SIDE, name='blanket')[0]
reader = node('pointAttributeToArray', 'reader', pointPosition=True)
mc.connectAttr(plane + '.worldMesh[0]', reader + '.inGeometry')

# depth of each point, moved to 0 to 2, through a wave
depth = node('splitRgba', 'depth', blue=True)
mc.connectAttr(reader + '.outPositionPP', depth + '.inArray')
wave = node('remapArray', 'wave', shift=True, shiftValue=1.0, useRamp=True)
mc.connectAttr(depth + '.outArray', wave + '.inArray')
ramp(wave + '.ramp', [(i / 8.0, [(i % 2) * 0.4] * 3, 3) for i in range(9)])

# heights along Y, rough ones beside them, and a mix of both
heights = node('arrayToArray', 'heights', readX1=False, readZ1=False)
mc.connectAttr(wave + '.outArray', heights + '.inArray1')
rough = node('randomizeArray', 'rough', randomMinY=-0.2, randomMaxY=0.2, seed=7)
mc.connectAttr(heights + '.outArray', rough + '.inArray')
mix = node('arrayBlend', 'mix', blend=0.75)
mc.connectAttr(heights + '.outArray', mix + '.inArray1')
mc.connectAttr(rough + '.outArray', mix + '.inArray2')
lifted = node('mergeVectorArrays', 'lifted')
mc.connectAttr(reader + '.outPositionPP', lifted + '.inArrays[0].inArray')
mc.connectAttr(mix + '.outArray', lifted + '.inArrays[1].inArray')

# grey by height, with an alpha of 1: four values a point
colors = node('arrayToArray', 'colors', outDataType=1)
opaque = node('createArray', 'opaque', outputType=1, defaultValueX=1.0)
mc.connectAttr(reader + '.outCount', opaque + '.length')
bright = node('remapArray', 'bright', remap=True, remapMax=2.0, shift=True, shiftValue=0.1, clamp=True)
mc.connectAttr(wave + '.outArray', bright + '.inArray')
mc.connectAttr(bright + '.outArray', colors + '.inArray1')
mc.connectAttr(opaque + '.outArray', colors + '.inArray2')

moved = node('arrayToPointAttribute', 'moved', positions=True)
mc.connectAttr(plane + '.worldMesh[0]', moved + '.inGeometry')
mc.connectAttr(lifted + '.outArray', moved + '.inPositionPP')
colored = node('arrayToPointColor', 'colored', solidAlpha=True)
mc.connectAttr(moved + '.outGeometry', colored + '.inGeometry')
mc.connectAttr(colors + '.outArray', colored + '.inRgbaPP')
shape = mc.createNode('mesh', name='wavedBlanketShape', parent=plane)
mc.connectAttr(colored + '.outGeometry', shape + '.inMesh')
mc.setAttr(shape + '.displayColors', True)
mc.setAttr(mc.listRelatives(plane, shapes=True)[0] + '.intermediateObject', True)

box = [mc.getAttr('%s.boundingBox%s' % (shape, side)) for side in ('MinY', 'MaxY')]
mc.setAttr(mix + '.blend', 1.0)
smooth = [mc.getAttr('%s.boundingBox%s' % (shape, side)) for side in ('MinY', 'MaxY')]
print('rough from %.3f to %.3f, smooth from %.3f to %.3f' % tuple(box + smooth))
if not (abs(smooth[0]) < 1e-6 and abs(smooth[1] - 0.4) < 0.01 and -0.05 < box[0] < 0 and smooth[1] < box[1] < 0.45):
    sys.exit('the waves should be 0.4 high, and at most a quarter of 0.2 rough')
mc.setAttr(mix + '.blend', 0.75)
