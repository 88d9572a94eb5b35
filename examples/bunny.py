"""Points of a real mesh as arrays: read, shaped, written back.

    mirk run examples/bunny.py --render bunny.png --export bunny.obj --save bunny.ma

A scanned bunny is imported. pointAttributeToArray publishes its positions and normals as arrays; this script waves the
points along their normals, ring by ring up the body, and colours them by the wave; arrayToPointAttribute writes both
arrays into a copy of the mesh, and a new shape shows it.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
RINGS = 13              # waves from the feet to the ears
DEPTH = 0.014           # of a wave, by the height of the bunny

# colour by the wave: valleys to crests
RAMP = ((0.00, (0.13, 0.20, 0.45)), (0.35, (0.10, 0.50, 0.60)), (0.65, (0.62, 0.82, 0.66)),
        (0.85, (0.99, 0.84, 0.50)), (1.00, (0.95, 0.48, 0.25)))


def ramp(t):
    """Colour at t in 0 to 1, linear between the keys."""
    for (t0, c0), (t1, c1) in zip(RAMP, RAMP[1:]):
        if t <= t1:
            f = (t - t0) / (t1 - t0)
            return [a + (b - a) * f for a, b in zip(c0, c1)]
    return list(RAMP[-1][1])


def vectors(values):
    """A vector array as a list of triples, whether it comes flat or as triples."""
    if values and not isinstance(values[0], (list, tuple)):
        return list(zip(values[0::3], values[1::3], values[2::3]))
    return values or []


def importMesh(path):
    """Imports a model file and gives its first mesh shape."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    nodes = mc.file(path, i=True, type='OBJ', returnNewNodes=True)
    return mc.ls(nodes, type='mesh', long=True)[0]


def wave(positions, normals):
    """New positions and flat RGBA colours of the points."""
    low = min(p[1] for p in positions)
    height = max(p[1] for p in positions) - low
    moved, rgba = [], []
    for p, n in zip(positions, normals):
        up = (p[1] - low) / height
        # rings lean with the depth of the body, so that they do not look sliced, and fade out at the feet
        phase = 2.0 * math.pi * (RINGS * up + 0.9 * math.sin(3.0 * p[2] + 2.2 * p[0]))
        crest = 0.5 + 0.5 * math.sin(phase)
        push = DEPTH * height * min(1.0, 4.0 * up) * (crest - 0.5)
        moved.append([p[i] + push * n[i] for i in range(3)])
        rgba += ramp(crest) + [1.0]
    return moved, rgba


def arraysNode(**arrays):
    """A node that holds arrays, by attribute name: (data type, values)."""
    node = mc.createNode('network', name='bunnyArrays')
    for name, (kind, values) in arrays.items():
        mc.addAttr(node, longName=name, dataType=kind)
        mc.setAttr(node + '.' + name, len(values), *values, type=kind)
    return node


def frame(positions):
    """Puts the perspective camera in front of the points, a little above and to the side."""
    low, high = ([f(c) for c in zip(*positions)] for f in (min, max))
    center = [(a + b) / 2.0 for a, b in zip(low, high)]
    radius = max(b - a for a, b in zip(low, high)) / 2.0
    turn, tilt, distance = math.radians(20.0), math.radians(10.0), 4.5 * radius
    mc.setAttr('persp.translate',
               center[0] + distance * math.sin(turn) * math.cos(tilt),
               center[1] + distance * math.sin(tilt),
               center[2] + distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def main():
    bunny = importMesh(MODEL)
    transform = mc.listRelatives(bunny, parent=True, fullPath=True)[0]
    feet = mc.getAttr(bunny + '.boundingBoxMinY')
    mc.setAttr(transform + '.translateY', -feet)      # on the ground

    reader = mc.createNode('pointAttributeToArray', name='bunnyToArrays')
    for switch in ('pointPosition', 'pointNormal'):
        mc.setAttr(reader + '.' + switch, True)
    mc.connectAttr(bunny + '.worldMesh[0]', reader + '.inGeometry')
    positions = vectors(mc.getAttr(reader + '.outPositionPP'))
    normals = vectors(mc.getAttr(reader + '.outNormalPP'))

    moved, rgba = wave(positions, normals)
    arrays = arraysNode(positionPP=('vectorArray', moved), rgbaPP=('doubleArray', rgba))

    writer = mc.createNode('arrayToPointAttribute', name='arraysToBunny')
    mc.connectAttr(bunny + '.worldMesh[0]', writer + '.inGeometry')
    mc.connectAttr(arrays + '.positionPP', writer + '.inPositionPP')
    mc.connectAttr(arrays + '.rgbaPP', writer + '.inRgbaPP')
    for switch in ('positions', 'colors'):
        mc.setAttr(writer + '.' + switch, True)

    # the result stands beside its original under the same transform, as a deformed shape does
    shape = mc.createNode('mesh', name='wavedBunnyShape', parent=transform)
    mc.connectAttr(writer + '.outGeometry', shape + '.inMesh')
    mc.setAttr(shape + '.displayColors', True)
    mc.setAttr(bunny + '.intermediateObject', True)
    frame(moved)
    print('%d points read, waved and written back' % len(positions))


main()
