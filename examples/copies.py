"""Ten thousand copies on a scattered surface: spikes, petals and beads all over a scanned bunny, merged into one mesh.

    mirk run examples/copies.py --render copies.png --width 1600 --height 1100

scatter throws points on the mesh, kdTree fetches the normal that each of them stands on, and one arrayExpression makes of
the positions what the copier wants for each copy: a colour, a scale and which of the three meshes it is to be. MIRK_COPIES
asks for another number of them, MIRK_BUNNY for another OBJ file; without any model a sphere takes its place.
"""
import math
import os

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
COPIES = int(os.environ.get('MIRK_COPIES', '10000'))
SIZE = 0.020            # of a copy, by the height of the model
SKIN = (0.16, 0.12, 0.15)

# Per copy, from its position ($EX $EY $EZ), the same again ($EX2 ...) and a number ($E3). Bands of noise decide between
# the three sources: 0 spikes, 1 petals, 2 beads.
EXPRESSION = '''
vector $p = <<$EX, $EY, $EZ>> * (%(scale)f);
float $band = 0.5 + 0.5 * noise($p * 2.1 + <<3, 1, 7>>);
float $fine = 0.5 + 0.5 * noise($p * 9.0);
float $warm = smoothstep(0.30, 0.66, $band);
$E3 = $band < 0.42 ? 1 : ($band < 0.56 ? 2 : 0);
float $size = (%(size)f) * (0.65 + 0.7 * $fine);
float $along = $E3 == 0 ? 1.9 : ($E3 == 1 ? 0.55 : 0.7);
float $across = $E3 == 0 ? 0.55 : ($E3 == 1 ? 1.25 : 0.7);
$EX2 = $size * $along; $EY2 = $size * $across; $EZ2 = $size * $across;
float $light = 0.70 + 0.45 * $fine;
$EX = $light * (0.04 + 0.93 * $warm);
$EY = $light * (0.30 + 0.42 * $warm * (1.4 - $warm));
$EZ = $light * (0.42 - 0.36 * $warm);
'''


def importModel():
    """The mesh shape and its transform, which stands on the ground."""
    if os.path.isfile(MODEL):
        shape = mc.ls(mc.file(MODEL, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]
    else:
        shape = mc.listRelatives(mc.polySphere(subdivisionsX=60, subdivisionsY=40)[0], shapes=True, fullPath=True)[0]
    transform = mc.listRelatives(shape, parent=True, fullPath=True)[0]
    mc.setAttr(transform + '.translateY', -mc.getAttr(shape + '.boundingBoxMinY'))
    mc.polyColorPerVertex(transform, rgb=SKIN, alpha=1)
    mc.setAttr(shape + '.displayColors', True)
    return shape, transform


def sources():
    """Three meshes of about unit size whose X axis is to stand along the normal."""
    plugs = []
    for transform in (mc.polyCone(radius=0.5, height=2.0, subdivisionsX=8, subdivisionsY=4, axis=(1, 0, 0), name='spike'),
                      mc.polySphere(radius=0.5, subdivisionsX=12, subdivisionsY=8, axis=(1, 0, 0), name='petal'),
                      mc.polySphere(radius=0.5, subdivisionsX=16, subdivisionsY=12, name='bead')):
        mc.setAttr(transform[0] + '.visibility', False)
        plugs.append(mc.listRelatives(transform[0], shapes=True, fullPath=True)[0] + '.outMesh')
    return plugs


def scattered(mesh, height):
    """Positions on the surface, and the normal of the nearest vertex and its distance for each."""
    scatter = mc.createNode('scatter', name='points')
    mc.connectAttr(mesh, scatter + '.inGeometry')
    for attribute, value in (('scatterMode', 1), ('pointDensity', 40 * COPIES), ('maxNumberOfPoints', 40 * COPIES),
                             ('minPointToPointDistance', 1.17 * height / math.sqrt(COPIES)), ('display', False)):
        mc.setAttr('%s.%s' % (scatter, attribute), value)
    reader = mc.createNode('pointAttributeToArray', name='normals')
    mc.connectAttr(mesh, reader + '.inGeometry')
    mc.setAttr(reader + '.pointNormal', True)
    nearest = mc.createNode('kdTree', name='nearest')
    mc.setAttr(nearest + '.count', 1)
    mc.setAttr(nearest + '.outputMappingData', True)
    mc.connectAttr(mesh, nearest + '.inGeometry')
    mc.connectAttr(reader + '.outNormalPP', nearest + '.inDataPP')
    mc.connectAttr(scatter + '.outPositionPP', nearest + '.inGeometry2')
    return scatter + '.outPositionPP', nearest + '.outDataPP', nearest + '.outDistancePP'


def looks(positions, numbers, height):
    """Colour, scale and source of each copy."""
    node = mc.createNode('arrayExpression', name='looks')
    for source, target in ((positions, 'inArray'), (positions, 'inArray2'), (numbers, 'inArray3')):
        mc.connectAttr(source, node + '.' + target)
    mc.setAttr(node + '.expression', EXPRESSION % {'scale': 1.6 / height, 'size': SIZE * height}, type='string')
    return node + '.outArray', node + '.outArray2', node + '.outArray3'


def frameCamera(low, high):
    """Puts the perspective camera in front of that box on the ground, a little above and to the side."""
    h = high[1] - low[1]
    turn, tilt, distance = math.radians(22.0), math.radians(9.0), 1.95 * h
    mc.setAttr('persp.translate', (low[0] + high[0]) / 2.0 + distance * math.sin(turn) * math.cos(tilt),
               0.5 * h + distance * math.sin(tilt),
               (low[2] + high[2]) / 2.0 + distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def main():
    shape, transform = importModel()
    mesh = shape + '.outMesh'
    low, high = ([mc.getAttr('%s.boundingBox%s%s' % (shape, end, axis)) for axis in 'XYZ'] for end in ('Min', 'Max'))
    height = high[1] - low[1]
    positions, normals, numbers = scattered(mesh, height)
    colors, scales, indices = looks(positions, numbers, height)

    copier = mc.createNode('copier', name='copies')
    for i, source in enumerate(sources()):
        mc.connectAttr(source, '%s.inputMesh[%d]' % (copier, i))
    for source, target in ((positions, 'posArray'), (normals, 'aimArray'), (scales, 'scaleArray'), (colors, 'rgbArray'),
                           (indices, 'indexArray')):
        mc.connectAttr(source, '%s.%s' % (copier, target))
    mc.setAttr(copier + '.inheritVertexColor', True)
    result = mc.createNode('mesh', name='copiesShape', parent=transform)
    mc.connectAttr(copier + '.outputMesh', result + '.inMesh')
    mc.setAttr(result + '.displayColors', True)
    frameCamera(low, high)

    count, points = mc.getAttr(copier + '.count'), mc.polyEvaluate(result, vertex=True)
    used = [[i for i in mc.getAttr(indices) if i == k] for k in range(3)]
    expected = sum(len(same) * mc.polyEvaluate(name, vertex=True) for same, name in zip(used, ('spike', 'petal', 'bead')))
    if count != len(mc.getAttr(positions)) or not all(used) or points != expected:
        raise RuntimeError('%d copies have %d points, not %d' % (count, points, expected))
    print('%d copies, %d points' % (count, points))


main()
