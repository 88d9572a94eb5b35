"""shell against plain unions of UVs and faces: what belongs together, boxes, moves and spread values."""
import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

from algebra import Box, IDENTITY, add, point, product, sub, times, vector
from compare import differences, grouped, run
from islands import Islands
from meshes import listed
from scenes import faces, feed, meanNormals, place, scaling


def turning(degrees):
    """About x, then y, then z."""
    m = IDENTITY
    for axis in range(3):
        a = degrees[axis] * 0.0174532925
        i, j = (axis + 1) % 3, (axis + 2) % 3
        r = list(IDENTITY)
        r[5 * i], r[4 * i + j], r[4 * j + i], r[5 * j] = math.cos(a), math.sin(a), -math.sin(a), math.cos(a)
        m = product(m, r)
    return m


def perShell(rng, plug, count, stride, low=-1.0, high=1.0):
    """Feeds an array of some length; [value or None] of each shell."""
    given = rng.choice((None, count, count, count // 2, count + 2))
    if given is None:
        return [None] * count
    values = [tuple(rng.uniform(low, high) for _ in range(stride)) for _ in range(given)]
    if stride == 3:
        feed(plug, 'vectorArray', values)
    else:
        flat = [x for v in values for x in v]
        cut = flat[:-1] if stride == 4 and flat and rng.random() < 0.3 else flat      # a colour that lacks its alpha is none
        feed(plug, 'doubleArray', cut)
        values = grouped(flat, stride)[:len(cut) // stride]
    return [values[s] if s < len(values) else None for s in range(count)]


def moved(vertices, points, position, rotation, scale):
    box = Box(points[v] for v in vertices)
    center = times(add(box.low, box.high), 0.5) if vertices else (0.0, 0.0, 0.0)
    matrix = product(scaling(scale or (1, 1, 1)), turning(rotation or (0, 0, 0)))
    return [add(vector(sub(points[v], center), matrix), position or center) for v in vertices]


def boxOf(points):
    box = Box(points)
    return (times(add(box.low, box.high), 0.5), sub(box.high, box.low)) if points else ((0.0,) * 3, (0.0,) * 3)


def element(node, s, name):
    return mc.getAttr('%s.outShellData[%d].%s' % (node, s, name)) or []


def scene(rng):
    islands = Islands()
    for _ in range(rng.choice((1, 2, 2, 5))):
        islands.addSheet(rng, rng.random() < 0.4)
    islands.shuffle(rng)
    shape = islands.load(rng)
    matrix, plug = IDENTITY, shape + '.outMesh'
    if rng.random() < 0.4:
        matrix, plug = place(rng, mc.listRelatives(shape, parent=True)[0], shape), shape + '.worldMesh[0]'
    points = [point(p, matrix) for p in islands.points]
    node = mc.createNode('shell')
    mc.connectAttr(plug, node + '.inMesh')
    mode = 0
    mc.setAttr(node + '.mode', mode)
    shells = islands.pieces() if mode else islands.uvShells()
    count = len(shells)
    on = {}
    for flag in ('transform', 'weight', 'rgba', 'normal', 'tangent', 'radius'):
        on[flag] = rng.random() < 0.6
        mc.setAttr('%s.%s' % (node, flag), on[flag])
    positions, rotations, scales = (perShell(rng, node + name, count, 3, *limits) for name, limits in (
        ('.inPositionPP', (-5, 5)), ('.inRotationPP', (-400, 400)), ('.inScalePP', (-0.5, 2.0))))
    weights, radii = (perShell(rng, node + name, count, 1) for name in ('.inWeightPP', '.inRadiusPP'))
    colors = perShell(rng, node + '.inRgbaPP', count, 4, 0.0)
    normals, tangents = (perShell(rng, node + name, count, 3) for name in ('.inNormalPP', '.inTangentPP'))
    before = mc.ls()

    lost = []
    def check(name, found, expected, tolerance=1e-5):
        lost.extend(differences(name, found, expected, tolerance))
    check('outCount', [mc.getAttr(node + '.outCount')], [count])
    check('outUvCounts', mc.getAttr(node + '.outUvCounts') or [], [n for _, n in shells])
    placed = [moved(shells[s][0], points, positions[s], rotations[s], scales[s]) if on['transform'] else
              [points[v] for v in shells[s][0]] for s in range(count)]
    boxes = [boxOf(p) for p in placed]
    check('outCenters', mc.getAttr(node + '.outCenters') or [], [b[0] for b in boxes])
    check('outScales', mc.getAttr(node + '.outScales') or [], [b[1] for b in boxes])
    own = meanNormals(points, islands.faces)
    final, rgba = list(points), [(0.0, 0.0, 0.0, 1.0)] * len(points)
    meshNormals = list(own)
    for s, (vertices, _) in enumerate(shells):
        def spread(flag, values, otherwise):
            return [values[s] or otherwise(v) for v in vertices] if on[flag] else []
        what = 'shell %d ' % s
        check(what + 'components', [i for _, (i,) in listed(element(node, s, 'outComponentList'))], sorted(vertices))
        check(what + 'center', element(node, s, 'outBoundingBoxCenter'), [boxes[s][0]])
        check(what + 'scale', element(node, s, 'outBoundingBoxScale'), [boxes[s][1]])
        check(what + 'positions', element(node, s, 'outPositionPP'), placed[s])
        check(what + 'weights', element(node, s, 'outWeightPP'), [w for w, in spread('weight', weights, lambda v: (1.0,))])
        check(what + 'radii', element(node, s, 'outRadiusPP'), [r for r, in spread('radius', radii, lambda v: (1.0,))])
        check(what + 'colours', grouped(element(node, s, 'outRgbaPP'), 4), spread('rgba', colors, lambda v: rgba[0]))
        check(what + 'normals', element(node, s, 'outNormalPP'), spread('normal', normals, lambda v: own[v]), 1e-4)
        if not on['tangent'] or tangents[s]:
            check(what + 'tangents', element(node, s, 'outTangentPP'), spread('tangent', tangents, None))
        for k, v in enumerate(vertices):
            final[v] = placed[s][k]
    for s, (vertices, _) in enumerate(shells):
        for v in vertices if colors[s] else ():
            rgba[v] = colors[s]
        for v in vertices if normals[s] else ():
            meshNormals[v] = normals[s]

    reader = mc.createNode('pointAttributeToArray')
    for flag in ('pointPosition', 'pointColor', 'pointNormal'):
        mc.setAttr('%s.%s' % (reader, flag), True)
    mc.connectAttr(node + '.outMesh', reader + '.inGeometry')
    check('outMesh', mc.getAttr(reader + '.outPositionPP'), final)
    if on['rgba']:
        check('colours of outMesh', grouped(mc.getAttr(reader + '.outRgbaPP') or [], 4), rgba)
    if on['normal'] and not any(normals):
        check('normals of outMesh', mc.getAttr(reader + '.outNormalPP'), own, 1e-4)
    if sorted(set(mc.ls()) - {reader}) != sorted(before):
        lost.append('nodes left behind: %r' % (set(mc.ls()) ^ set(before)))
    return lost


run(scene, 150)
