"""Faces and UVs: a flat net wrapped around a sphere by its UVs, and the centres of the sphere's faces.

    mirk run examples/arrays_uvs.py --render net.png --export net.obj

The vertices of a plane have UVs from 0 to 1. uvsToPointsOnMesh looks them up on a sphere and moves them there: the plane
becomes a net around it. faceCenters publishes the middles of the sphere's faces, decimateArray keeps every tenth, and a
small ball stands at each.
"""
import sys

import maya.cmds as mc

ball = mc.polySphere(radius=1, subdivisionsX=24, subdivisionsY=16, name='ball')[0]
mc.setAttr(ball + '.translate', 0, 1, 0, type='double3')
net = mc.polyPlane(subdivisionsX=48, subdivisionsY=32, name='net')[0]

wrap = mc.createNode('uvsToPointsOnMesh', name='wrap')
mc.connectAttr(net + '.worldMesh[0]', wrap + '.inGeometry')
mc.connectAttr(ball + '.worldMesh[0]', wrap + '.inReferenceMesh')
wrapped = mc.createNode('mesh', name='wrappedNetShape', parent=net)
mc.connectAttr(wrap + '.outGeometry', wrapped + '.inMesh')
mc.setAttr(mc.listRelatives(net, shapes=True)[0] + '.intermediateObject', True)

centers = mc.createNode('faceCenters', name='centers')
mc.connectAttr(ball + '.worldMesh[0]', centers + '.inGeometry')
few = mc.createNode('decimateArray', name='few')
mc.setAttr(few + '.stepB', 10)
mc.connectAttr(centers + '.outPositionPP', few + '.inArray')

values = mc.getAttr(few + '.outArray')
if values and not isinstance(values[0], (list, tuple)):
    values = list(zip(values[0::3], values[1::3], values[2::3]))
for place in values:
    marker = mc.polySphere(radius=0.05, subdivisionsX=8, subdivisionsY=6, name='marker')[0]
    mc.setAttr(marker + '.translate', *place, type='double3')

box = [mc.getAttr('%s.boundingBox%s%s' % (wrapped, end, axis)) for end in ('Min', 'Max') for axis in 'XYZ']
print('%d markers; the net reaches from (%.2f %.2f %.2f) to (%.2f %.2f %.2f)' % tuple([len(values)] + box))
faces = mc.polyEvaluate(ball, face=True)
if len(values) != faces // 10 or any(abs(a - b) > 0.05 for a, b in zip(box, (-1, 0, -1, 1, 2, 1))):
    sys.exit('a tenth of %d faces should be marked, and the net should reach around the sphere' % faces)
