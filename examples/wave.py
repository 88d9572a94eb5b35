"""Per-point expressions on a real mesh, animated: a swell runs through a scanned bunny and lights up its crests.

    mirk run examples/wave.py --frames 1-48 --render out/wave.####.png

A `point` node runs two MEL texts for each of the bunny's points. The position text moves a point along its normal by
noise that drifts with the time, and by rings that climb the body; the colour text colours it by how far it went.
Nothing is computed in Python: the script builds the network, and every frame is an evaluation of it.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')

# Before the loop: what is the same for all points. $FF is the time in frames, $BB* and $CE* are the size and the
# centre of the whole mesh.
START = '''
float $clock = $FF * 0.045;
float $low = $CEY - $BBY * 0.5;
'''

# How far the point goes out: 0 in a valley, 1 on a crest. Both texts begin with it.
SWELL = '''
float $up = ($TY - $low) / $BBY;
float $rings = sin(6.2832 * (5.0 * $up - $clock));
float $drift = noise(<<$TX * 7.0 + $clock, $TY * 7.0, $TZ * 7.0 - $clock * 0.6>>);
float $swell = smoothstep(-0.8, 0.9, 0.55 * $rings + 1.1 * $drift);
'''

POSITION = SWELL + '''
float $push = $BBY * 0.045 * min(1.0, $up * 5.0) * ($swell - 0.35);
$X = $TX + $NX * $push;
$Y = $TY + $NY * $push;
$Z = $TZ + $NZ * $push;
'''

COLOR = SWELL + '''
vector $deep = <<0.07, 0.12, 0.34>>;
vector $mid = <<0.10, 0.55, 0.62>>;
vector $crest = <<1.00, 0.78, 0.42>>;
vector $c = ($swell < 0.6) ? ($deep + ($mid - $deep) * ($swell / 0.6)) : ($mid + ($crest - $mid) * (($swell - 0.6) / 0.4));
$R = $c.x;
$G = $c.y;
$B = $c.z;
$A = 1;
'''


def importMesh(path):
    """Imports a model file and gives its first mesh shape."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    nodes = mc.file(path, i=True, type='OBJ', returnNewNodes=True)
    return mc.ls(nodes, type='mesh', long=True)[0]


def expressions(mesh):
    """A point node on the mesh, driven by the time."""
    node = mc.createNode('point', name='swell')
    mc.connectAttr(mesh + '.outMesh', node + '.inGeometry')
    mc.connectAttr('time1.outTime', node + '.currentTime')
    mc.setAttr(node + '.stringStartBlock', START, type='string')
    for block, text in (('Position', POSITION), ('Color', COLOR)):
        mc.setAttr(node + '.enable' + block, True)
        mc.setAttr(node + '.string' + block, text, type='string')
    return node


def frame(mesh):
    """Puts the perspective camera in front of the mesh, a little above and to the side."""
    low = mc.getAttr(mesh + '.boundingBoxMin')[0]
    high = mc.getAttr(mesh + '.boundingBoxMax')[0]
    center = [(a + b) / 2.0 for a, b in zip(low, high)]
    center[1] -= low[1]                       # it stands on the ground
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
    mc.setAttr(transform + '.translateY', -mc.getAttr(bunny + '.boundingBoxMinY'))   # on the ground
    frame(bunny)
    shape = mc.createNode('mesh', name='swellShape', parent=transform)
    swell = expressions(bunny)
    mc.connectAttr(swell + '.outGeometry', shape + '.inMesh')
    mc.setAttr(shape + '.displayColors', True)
    mc.setAttr(bunny + '.intermediateObject', True)
    points = mc.polyEvaluate(shape, vertex=True)
    if len(mc.getAttr(swell + '.outPositionPP') or []) != points or len(mc.getAttr(swell + '.outRgbaPP') or []) != 4 * points:
        sys.exit('An expression failed, see above.')     # a block whose text fails gives an empty array
    print('%d points a frame' % points)


main()
