"""A scanned bunny that bursts: cells of scattered points, cut by shatter, thrown and coloured piece by piece by shell.

    mirk run examples/shatter_bunny.py --render shatter.png

scatter throws points into the volume, shatter cuts the mesh into their cells with a gap between them, and an
arrayExpression makes of the centres of the pieces their places, turns and colours. The pieces stay one mesh.
MIRK_SHARDS asks for another number of them, MIRK_BUNNY names another OBJ file.
"""
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
SHARDS = int(os.environ.get('MIRK_SHARDS', '260'))
GAP = 0.02                    # share of the way to a neighbour's point

# Per piece, from its centre ($EX $EY $EZ, the same again in 2 and 3): place, turn in degrees, colour, alpha. The burst is
# an expansion around a point on the ground that grows towards the tail, so pieces do not run into each other.
EXPRESSION = '''
vector $p = (<<$EX, $EY, $EZ>> - <<%(x)f, %(y)f, %(z)f>>) * (%(unit)f);
float $force = smoothstep(-0.05, 0.85, $p.x + 0.25 * $p.y + 0.2 * $p.z + 0.10 * noise($p * 5.0));
float $move = 1.1 * $force * $force / (%(unit)f);
$EX += $p.x * $move; $EY += (0.15 + $p.y) * $move; $EZ += $p.z * $move;
float $turn = 150.0 * $force * $force;
$EX2 = $turn * noise($p * 7.0 + <<3, 1, 7>>);
$EY2 = $turn * noise($p * 7.0 + <<9, 4, 2>>);
$EZ2 = $turn * noise($p * 7.0 + <<5, 8, 6>>);
float $light = 0.85 + 0.35 * noise($p * 31.0);
float $warm = smoothstep(0.03, 0.45, $force);
float $hot = smoothstep(0.35, 0.95, $force);
$EX3 = $light * (0.09 + 0.80 * $warm + 0.11 * $hot);
$EY3 = $light * (0.20 + 0.02 * $warm + 0.50 * $hot);
$EZ3 = $light * (0.32 - 0.25 * $warm + 0.12 * $hot);
$E4 = 1;
'''


def importMesh(path):
    """The mesh shape of a model file, on the ground."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    shape = mc.ls(mc.file(path, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]
    transform = mc.listRelatives(shape, parent=True, fullPath=True)[0]
    mc.setAttr(transform + '.translateY', -mc.getAttr(shape + '.boundingBoxMinY'))
    return shape, transform


def vectors(values):
    """A vector array as a list of triples, whether it comes flat or as triples."""
    if values and not isinstance(values[0], (list, tuple)):
        return list(zip(values[0::3], values[1::3], values[2::3]))
    return values or []


class Solids:
    """The connected pieces of a mesh: their volumes, and whether they are closed."""

    def __init__(self, shape):
        reader = mc.createNode('pointAttributeToArray')
        mc.setAttr(reader + '.pointPosition', True)
        mc.connectAttr(shape + '.outMesh', reader + '.inGeometry')
        points = vectors(mc.getAttr(reader + '.outPositionPP'))
        mc.delete(reader)
        faces = [[int(v) for v in line.split(':')[1].split()] for line in mc.polyInfo(shape, faceToVertex=True)]

        root = list(range(len(points)))

        def rootOf(v):
            while root[v] != v:
                root[v] = root[root[v]]
                v = root[v]
            return v

        sides = set()
        self.closed = True                # every side of a face is met by one side of another, the other way round
        for face in faces:
            for a, b in zip(face, face[1:] + face[:1]):
                root[rootOf(a)] = rootOf(b)
                self.closed = self.closed and (a, b) not in sides
                sides.add((a, b))
        self.closed = self.closed and all((b, a) in sides for a, b in sides)

        volumes = {}
        for face in faces:
            piece = rootOf(face[0])
            (ax, ay, az), rest = points[face[0]], [points[v] for v in face[1:]]
            for (bx, by, bz), (cx, cy, cz) in zip(rest, rest[1:]):
                six = ax * (by * cz - bz * cy) + ay * (bz * cx - bx * cz) + az * (bx * cy - by * cx)
                volumes[piece] = volumes.get(piece, 0.0) + six / 6.0
        self.volumes = list(volumes.values())


def made(kind, name, inputs, **settings):
    """A node with its inputs connected and its attributes set."""
    node = mc.createNode(kind, name=name)
    for attribute, source in inputs.items():
        mc.connectAttr(source, '%s.%s' % (node, attribute))
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (node, attribute), value, **({'type': 'string'} if isinstance(value, str) else {}))
    return node


def frame(height):
    """Puts the perspective camera in front of the bunny and of what flies off it."""
    turn, tilt, distance = math.radians(18.0), math.radians(9.0), 2.0 * height
    target = (0.24 * height, 0.50 * height, 0.0)
    mc.setAttr('persp.translate', target[0] + distance * math.sin(turn) * math.cos(tilt),
               target[1] + distance * math.sin(tilt), target[2] + distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def check(truth, what):
    if not truth:
        sys.exit('The shards are not right: ' + what)


def main():
    bunny, transform = importMesh(MODEL)
    low, high = ([mc.getAttr('%s.boundingBox%s%s' % (bunny, end, axis)) for axis in 'XYZ'] for end in ('Min', 'Max'))
    height, whole = high[1] - low[1], sum(Solids(bunny).volumes)

    scatter = made('scatter', 'seeds', {'inGeometry': bunny + '.outMesh'}, pointDensity=250 * SHARDS, display=False,
                   maxNumberOfPoints=250 * SHARDS, minPointToPointDistance=(0.72 * whole / SHARDS) ** (1.0 / 3.0))
    cells = mc.getAttr(scatter + '.outCount')
    shatter = made('shatter', 'shards', {'inGeometry': bunny + '.outMesh', 'inPositionPP': scatter + '.outPositionPP'},
                   distance=0.0, printStatus=False, autoEvaluate=True)
    resting = made('mesh', 'resting', {'inMesh': shatter + '.outGeometry'}, intermediateObject=True)
    solids = Solids(resting)
    mc.setAttr(shatter + '.distance', GAP)

    rest = made('shell', 'pieces', {'inMesh': resting + '.outMesh'}, mode=1)
    centers = rest + '.outCenters'
    values = {'x': (low[0] + high[0]) / 2.0, 'y': low[1], 'z': (low[2] + high[2]) / 2.0, 'unit': 1.0 / height}
    burst = made('arrayExpression', 'burst', {'inArray': centers, 'inArray2': centers, 'inArray3': centers,
                                               'inArray4': rest + '.outUvCounts'}, expression=EXPRESSION % values)
    rgba = made('colorAndAlphaToRgba', 'pieceColours', {'inRgbPP': burst + '.outArray3', 'inAlphaPP': burst + '.outArray4'})
    thrown = made('shell', 'thrownPieces', {'inMesh': resting + '.outMesh', 'inPositionPP': burst + '.outArray',
                                            'inRotationPP': burst + '.outArray2', 'inRgbaPP': rgba + '.outRgbaPP'},
                  mode=1, transform=True, rgba=True)
    drawn = mc.createNode('mesh', name='burstShape', parent=transform)
    mc.connectAttr(thrown + '.outMesh', drawn + '.inMesh')
    mc.setAttr(drawn + '.displayColors', True)
    mc.setAttr(bunny + '.intermediateObject', True)
    frame(height)

    parted, pieces = Solids(drawn), mc.getAttr(thrown + '.outCount')
    print('%d points, %d pieces; %.4f of the volume %.4f, %.4f with gaps' %
          (cells, pieces, sum(solids.volumes), whole, sum(parted.volumes)))
    check(cells > 0.5 * SHARDS, 'there are %d points' % cells)
    check(solids.closed and parted.closed, 'a piece is open')
    check(pieces == len(parted.volumes) >= cells, '%d pieces' % pieces)
    check(abs(sum(solids.volumes) - whole) < 1e-4 * whole, 'the volume is not that of the mesh')
    check(0.75 * whole < sum(parted.volumes) < 0.98 * whole, 'the gaps')


main()
