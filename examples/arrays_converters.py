"""Arrays in other shapes: transforms to arrays, colours apart and together, named arrays of particles, multis, and an
array that remembers.

    mirk run examples/arrays_converters.py

Three transforms carry weights and colours. Their arrays are taken apart and put together again, travel among the named
arrays that particles pass around, come out again, and heat up frame by frame in an arrayDataContainer.
"""
import sys

import maya.cmds as mc

failures = []


def node(kind, called, **settings):
    made = mc.createNode(kind, name=called)
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (made, attribute), value, **({'type': 'string'} if isinstance(value, str) else {}))
    return made


def flat(values):
    return [x for v in values or [] for x in (v if isinstance(v, (list, tuple)) else [v])]


def expect(plug, values):
    found = flat(mc.getAttr(plug))
    print(plug, found)
    if len(found) != len(values) or any(abs(a - b) > 1e-6 for a, b in zip(found, values)):
        failures.append('%s: %s, not %s' % (plug, found, values))


arrays = node('transformsToArrays', 'arrays')
for i in range(3):
    lamp = mc.createNode('transform', name='lamp%d' % i)
    mc.setAttr(lamp + '.translate', i, 2 * i, 0, type='double3')
    slot = '%s.inTransforms[%d]' % (arrays, 2 * i)          # gaps leave no holes in the arrays
    mc.connectAttr(lamp + '.worldMatrix[0]', slot + '.inMatrix')
    mc.setAttr(slot + '.inColor', 1, 0.5 * i, 0, type='double3')
    mc.setAttr(slot + '.inWeight', 0.25 * (i + 1))
expect(arrays + '.outPositionPP', [0, 0, 0, 1, 2, 0, 2, 4, 0])

# colour and alpha apart, the alpha replaced by the weights, and together again
apart = node('rgbaToColorAndAlpha', 'apart')
mc.connectAttr(arrays + '.outRgbaPP', apart + '.inRgbaPP')
together = node('colorAndAlphaToRgba', 'together')
mc.connectAttr(apart + '.outRgbPP', together + '.inRgbPP')
mc.connectAttr(arrays + '.outWeightPP', together + '.inAlphaPP')
expect(together + '.outRgbaPP', [1, 0, 0, 0.25, 1, 0.5, 0, 0.5, 1, 1, 0, 0.75])
green = node('splitRgba', 'green', green=True, inArrayType=1)
mc.connectAttr(together + '.outRgbaPP', green + '.inArray')
expect(green + '.outArray', [0, 0.5, 1])

# positions and weights under names, and the weights out again
named = node('arrayToDynArrays', 'named', name='position')
mc.connectAttr(arrays + '.outPositionPP', named + '.inArray')
more = node('arrayToDynArrays', 'more', name='weight', outputNames='weight')
mc.connectAttr(named + '.outDynamicArrays', more + '.inDynamicArrays')
mc.connectAttr(arrays + '.outWeightPP', more + '.inArray')
heat = node('arrayDataContainer', 'heat', startTime=1, endTime=100, clampMax=10.0)
mc.connectAttr(more + '.outArrays[0]', heat + '.inArray')
mc.connectAttr('time1.outTime', heat + '.inTime')

# the weights add up over the frames, and drive a multi as a deformer has it
weights = node('arrayToMulti', 'weights')
mc.connectAttr(heat + '.outArray', weights + '.inWeightPP')
back = node('multiToArray', 'back')
for i in range(3):
    mc.connectAttr('%s.outWeightList[0].weight[%d]' % (weights, i), '%s.inWeightList[0].weights[%d]' % (back, i))
for frame in range(1, 5):
    mc.currentTime(frame)
    expect(heat + '.outArray', [0.25 * frame, 0.5 * frame, 0.75 * frame])
    expect(back + '.outArray', [0.25 * frame, 0.5 * frame, 0.75 * frame])
print('names:', mc.getAttr(more + '.existingNames'))
if mc.getAttr(more + '.existingNames') != 'position weight':
    failures.append('the names are ' + mc.getAttr(more + '.existingNames'))
sys.exit('\n'.join(failures) if failures else 0)
