"""cocoon against plain loops: links of all three kinds, instances, tubes, faces."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import webs
from algebra import add, cross, dot, length, single, sub, times, unit
from compare import differences, grouped, run
from scenes import feed, randomRamp, setRamp


def cloud(rng, count, size=1.0):
    """Scattered, on a grid of equal distances, in clusters, all in one place, or far apart in one direction."""
    kind = rng.choice(('scattered', 'scattered', 'grid', 'clusters', 'one', 'line'))
    if kind == 'grid':
        return [tuple(0.5 * rng.randint(-2, 2) for _ in range(3)) for _ in range(count)]
    if kind == 'one':
        return [(0.25, -1.0, 3.0)] * count
    centers = [tuple(rng.uniform(-9, 9) for _ in range(3)) for _ in range(3)] if kind == 'clusters' else [(0.0, 0.0, 0.0)]
    spread = (size * 8, size, size) if kind == 'line' else (size,) * 3
    return [add(rng.choice(centers), tuple(rng.uniform(-k, k) for k in spread)) for _ in range(count)]


def colorsOf(rng, plug, count):
    """Feeds colours of some length; returns those that the points have."""
    kind = rng.choice(('none', 'double', 'double', 'vector', 'short'))
    given = [tuple(rng.random() for _ in range(4)) for _ in range(count)]
    black = (0.0, 0.0, 0.0, 1.0)
    if kind == 'none' or not count:
        return [black] * count
    if kind == 'vector':
        feed(plug, 'vectorArray', [c[:3] for c in given])
        return [c[:3] + (1.0,) for c in given]
    flat = [x for c in given for x in c]
    if kind == 'short':
        flat = flat[:rng.randrange(len(flat))]
    feed(plug, 'doubleArray', flat)
    return grouped([flat[k] if k < len(flat) else black[k % 4] for k in range(4 * count)], 4)


def thicknessOf(rng, plug, count, use, multiplier):
    if rng.random() < 0.4:
        return [multiplier] * count
    given = [rng.uniform(0, 2) for _ in range(rng.choice((count, count, count // 2, count + 2)))]
    feed(plug, 'doubleArray', given)
    return [given[i] if use and i < len(given) else multiplier for i in range(count)]


def randomRampAt(rng, plug):
    entries = randomRamp(rng)
    setRamp(plug, entries)
    return entries


def styleOf(rng, node):
    style = {'segments': rng.choice((1, 1, 2, 5)), 'thickness': None, 'shift': [None] * 3, 'linksColor': None}
    mc.setAttr(node + '.segments', style['segments'])
    if rng.random() < 0.3:
        style['linksColor'] = tuple(single(rng.random()) for _ in range(4))
        mc.setAttr(node + '.useInputColorForLinks', False)
        mc.setAttr(node + '.linksColor', *style['linksColor'][:3])
        mc.setAttr(node + '.linksAlpha', style['linksColor'][3])
    if rng.random() < 0.5:
        return style
    if rng.random() < 0.5:
        mc.setAttr(node + '.useThicknessDisplacement', True)
        style['thickness'] = randomRampAt(rng, node + '.thicknessDisplacement')
    for k, axis in enumerate('XYZ'):
        if rng.random() < 0.4:
            mc.setAttr('%s.usePositionDisplacement%s' % (node, axis), True)
            style['shift'][k] = randomRampAt(rng, '%s.positionDisplacement%s' % (node, axis))
    return style


def feedLinks(rng, node, first, second):
    """Feeds what decides about links; returns them."""
    kind = rng.choice(('band', 'band', 'band', 'chains', 'second')) if not second else 'second'
    count = len(first)
    if kind == 'second':
        wrong = rng.random() < 0.1
        counts = [rng.choice((0, 1, 1, 2, 3, -1)) for _ in range(count + wrong)]
        ids = [rng.randint(-1, len(second)) for _ in range(max(0, sum(max(c, 0) for c in counts) - rng.choice((0, 0, 2))))]
        feed(node + '.inPositionPP2', 'vectorArray', second)
        feed(node + '.inCountPP', 'Int32Array', counts)
        if rng.random() < 0.9:
            feed(node + '.inIdPP', 'Int32Array', ids)
        else:
            ids = []
        return webs.secondLinks(counts, ids, count, len(second))
    if kind == 'chains':
        lengths = [rng.choice((0, 1, 2, 3, 5, -2)) for _ in range(rng.randint(1, 6))]
        feed(node + '.inShortestPathCounts', 'Int32Array', lengths)
        return webs.chainLinks(lengths, count)
    reference = []
    if rng.random() < 0.4:
        reference = cloud(rng, rng.choice((count, count // 2, count + 3)))
        feed(node + '.inRefPositionPP', 'vectorArray', reference)
    least = rng.choice((0.0, 0.0, 0.0, 0.5, rng.uniform(0, 1)))
    most = least + rng.choice((0.5, 0.5, 1.0, rng.uniform(0, 2), 100.0, -0.1 * least, 0.0))
    perPoint = rng.choice((3, 1, 0, -1, 7))
    mc.setAttr(node + '.minDistance', least)
    mc.setAttr(node + '.maxDistance', most)
    mc.setAttr(node + '.maxConnectionsPerPoint', perPoint)
    return webs.links(first, reference, least, most, perPoint)


def meshData(plug):
    """Points and colours of the vertices, and faces, of the mesh at a plug."""
    shape = mc.createNode('mesh')
    mc.connectAttr(plug, shape + '.inMesh')
    reader = mc.createNode('pointAttributeToArray')
    mc.setAttr(reader + '.pointPosition', True)
    mc.setAttr(reader + '.pointColor', True)
    mc.connectAttr(plug, reader + '.inGeometry')
    points = [tuple(p) for p in mc.getAttr(reader + '.outPositionPP') or []]
    colors = grouped(mc.getAttr(reader + '.outRgbaPP') or [], 4)
    lines = mc.polyInfo(shape, faceToVertex=True) or [] if points else []
    return points, colors, [[int(w) for w in line.split(':')[1].split()] for line in lines]


def tubeDifferences(web, multiplier, plug):
    """Rings of four around the ends of each segment: across it, square, as wide as they should be, facing outwards, and
    turned no more than needed between the segments of a link."""
    points, colors, faces = meshData(plug)
    segments = web.segments()
    lost = []
    if (len(points), len(faces)) != (8 * len(segments), 4 * len(segments)):
        return ['tubes: %d points, %d faces of %d segments' % (len(points), len(faces), len(segments))]
    before = None
    for n, (link, (p, c, t), (q, d, u)) in enumerate(segments):
        ring = points[8 * n:8 * n + 8]
        along = unit(sub(q, p))
        size = max(1.0, length(p), length(q))
        tolerance = 2e-6 * size
        for corners, center, thickness, color in ((ring[:4], p, t, c), (ring[4:], q, u, d)):
            half = 0.0005 * multiplier * thickness
            sides = [length(sub(a, b)) for a, b in zip(corners, corners[1:] + corners[:1])]
            if length(sub(times(add(corners[0], corners[2]), 0.5), center)) > tolerance:
                lost.append('tube %d: not around its end' % n)
            if max(abs(s - 2 * half) for s in sides) > tolerance:
                lost.append('tube %d: sides %r, half width %r' % (n, sides, half))
            if max(abs(dot(sub(x, center), along)) for x in corners) > tolerance:
                lost.append('tube %d: a ring is not across' % n)
        lost += differences('tube %d colours' % n, colors[8 * n:8 * n + 8], [c] * 4 + [d] * 4)
        for k in range(4):
            if faces[4 * n + k] != [8 * n + v for v in (k, (k + 1) % 4, (k + 1) % 4 + 4, k + 4)]:
                lost.append('tube %d: face %r' % (n, faces[4 * n + k]))
        side = sub(ring[1], ring[0])
        if 0.0005 * multiplier * t > 20 * tolerance and length(along) > 0.5:
            out = cross(side, along)
            if dot(out, sub(times(add(ring[0], ring[1]), 0.5), p)) <= 0:
                lost.append('tube %d: faces inwards' % n)
            # the side turns with the direction, as the shortest turn between them would turn it
            if before and before[0] == link and dot(before[1], along) > 0.9 and dot(unit(side), before[2]) < 0.85:
                lost.append('tube %d: turned about its axis' % n)
            before = link, along, unit(side)
    return lost[:3]


def scene(rng):
    node = mc.createNode('cocoon')
    first = cloud(rng, rng.choice((0, 2, 12, 12, 30, 30)))
    second = cloud(rng, rng.randint(1, 9)) if rng.random() < 0.25 else []
    feed(node + '.inPositionPP', 'vectorArray', first)
    multiplier, useThickness = single(rng.choice((1.0, 40.0, 0.0))), rng.random() < 0.7
    mc.setAttr(node + '.thicknessMultiplier', multiplier)
    mc.setAttr(node + '.useInputThickness', useThickness)
    colors = colorsOf(rng, node + '.inRgbaPP', len(first))
    thickness = thicknessOf(rng, node + '.inThicknessPP', len(first), useThickness, multiplier)
    found = feedLinks(rng, node, first, second)
    if second:
        colors = colors + colorsOf(rng, node + '.inRgbaPP2', len(second))
        thickness = thickness + thicknessOf(rng, node + '.inThicknessPP2', len(second), useThickness, multiplier)
    web = webs.Web(first + second, colors, thickness, found, styleOf(rng, node))
    for flag in ('linksInstances', 'linksMesh', 'facesMesh'):
        mc.setAttr('%s.%s' % (node, flag), True)

    lost = []
    names = ('outPositionPP', 'outDirectionPP', 'outScalePP', 'outThicknessPP')
    expected = web.instances()
    for name, values in zip(names, expected):
        array = mc.getAttr(node + '.' + name) or []
        if web.style['thickness'] is None and not any(web.style['shift']):
            lost += differences(name, array, values, 1e-12)
        elif name == 'outDirectionPP':                        # of a short segment single precision turns a lot
            long = [i for i, s in enumerate(expected[2]) if s[0] > 0.01]
            lost += differences(name, [array[i] for i in long], [values[i] for i in long], 1e-4)
        else:
            lost += differences(name, array, values, 1e-6)
    lost += differences('outRgbaPP', grouped(mc.getAttr(node + '.outRgbaPP') or [], 4), expected[4], 1e-7)
    if web.style['thickness'] is None and not any(web.style['shift']):
        lost += tubeDifferences(web, multiplier, node + '.outLinksMesh')

    seed, density = rng.randint(0, 99999), single(rng.choice((1.0, rng.random(), 0.0, 2.0)))
    least, most = single(rng.choice((0.0, rng.uniform(0, 0.2)))), single(rng.choice((999.0, rng.uniform(0, 1))))
    for name, value in (('seed', seed), ('density', density), ('minSurfaceArea', least), ('maxSurfaceArea', most)):
        mc.setAttr('%s.%s' % (node, name), value)
    one = None
    if rng.random() < 0.3:
        one = tuple(single(rng.random()) for _ in range(4))
        mc.setAttr(node + '.useInputColorForFaces', False)
        mc.setAttr(node + '.facesColor', *one[:3])
        mc.setAttr(node + '.facesAlpha', one[3])
    corners = [k for triangle in web.faces(seed, density, least, most) for k in triangle]
    points, rgba, faces = meshData(node + '.outFacesMesh')
    lost += differences('faces', points, [web.points[k] for k in corners])
    lost += differences('colours of faces', rgba, [one or web.colors[k] for k in corners])
    lost += differences('corners of faces', faces, grouped(list(range(len(corners))), 3) if corners else [])
    return lost


run(scene, 200)
