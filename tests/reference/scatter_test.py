"""scatter against a model that tries every triangle and every pair of points."""
import math
import os
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import compare
import scenes
from algebra import IDENTITY, add, cross, length, product, single, sub, times, unit
from throws import BOTH, ORDER, SURFACE, VOLUME, Camera, Checker, Projector, Scatter, UvTexture, nearestOnTriangle


def bumpySphere(rng):
    """Points and triangles of a closed mesh."""
    around, rings = rng.randint(4, 7), rng.randint(2, 4)
    points = [(0.0, 1.0, 0.0)]
    for i in range(1, rings + 1):
        a = math.pi * i / (rings + 1)
        points += [(math.sin(a) * math.cos(b), math.cos(a), -math.sin(a) * math.sin(b))
                   for b in (2 * math.pi * k / around for k in range(around))]
    points.append((0.0, -1.0, 0.0))
    points = [tuple(round(x * rng.uniform(0.7, 1.3), 4) for x in p) for p in points]
    at = lambda ring, k: 1 + ring * around + k % around
    faces = [(0, at(0, k), at(0, k + 1)) for k in range(around)]
    for ring in range(rings - 1):
        for k in range(around):
            faces += [(at(ring, k), at(ring + 1, k), at(ring + 1, k + 1)), (at(ring, k), at(ring + 1, k + 1), at(ring, k + 1))]
    last = len(points) - 1
    return points, faces + [(at(rings - 1, k + 1), at(rings - 1, k), last) for k in range(around)]


def sheet(rng):
    """A flat mesh, across one of the axes."""
    axis, across, along = rng.randrange(3), rng.randint(1, 3), rng.randint(1, 3)
    points = [(i * 0.7 - 0.5, k * 0.5 - 0.6) for k in range(along + 1) for i in range(across + 1)]
    points = [p[:axis] + (0.25,) + p[axis:] for p in points]
    faces = []
    for k in range(along):
        for i in range(across):
            a, b = k * (across + 1) + i, (k + 1) * (across + 1) + i
            faces += [(a, a + 1, b), (b, a + 1, b + 1)]
    return points, faces


def triangles(rng):
    """A mesh in the scene as a geometry, with random UVs for each vertex."""
    points, faces = (sheet if rng.random() < 0.15 else bumpySphere)(rng)
    uvs = [(round(rng.random(), 4), round(rng.random(), 4)) for _ in points]
    with tempfile.NamedTemporaryFile('w', suffix='.obj', delete=False) as stream:
        stream.writelines('v %r %r %r\n' % p for p in points)
        stream.writelines('vt %r %r\n' % uv for uv in uvs)
        stream.writelines('f %s\n' % ' '.join('%d/%d' % (v + 1, v + 1) for v in f) for f in faces)
    try:
        shape = mc.ls(mc.file(stream.name, i=True, type='OBJ', returnNewNodes=True), type='mesh')[0]
    finally:
        os.remove(stream.name)
    transform = mc.listRelatives(shape, parent=True)[0]
    local = [tuple(map(single, p)) for p in points]
    made = scenes.Geometry('mesh', shape + '.worldMesh[0]', local, scenes.place(rng, transform, shape), shape)
    made.uvs = [tuple(map(single, uv)) for uv in uvs]
    return made


def mask(rng, node, geometry, switch, name):
    """Paints vertices; gives the red ones as the node is to read them."""
    mc.setAttr(node + '.' + switch, True)
    colorSet, colors = scenes.paint(rng, geometry)
    mc.setAttr(node + '.' + name, colorSet, type='string')
    return [max(0.0, c[0]) if c else 0.0 for c in colors]


def camera(rng, node):
    world = product(scenes.rotation(rng), IDENTITY)
    world[12:15] = [rng.uniform(-2, 2) for _ in range(3)]
    scenes.feed(node + '.cameraInWorldMatrix', 'matrix', product(scenes.scaling([rng.uniform(0.5, 2)] * 3), world))
    values = [rng.uniform(0.5, 1.5), rng.uniform(0.5, 2), rng.uniform(0.5, 2), rng.uniform(-0.3, 0.3), rng.uniform(-0.3, 0.3),
              rng.uniform(0.01, 0.5), rng.uniform(2, 6), rng.choice((0.0, 20.0, 35.0)), rng.uniform(0.8, 1.3),
              rng.choice((0.0, 0.3))]
    values = [single(x) for x in values]
    for name, value in zip(('Scale', 'HorizontalFilmAperture', 'VerticalFilmAperture', 'HorizontalFilmOffset',
                            'VerticalFilmOffset', 'NearClipPlane', 'FarClipPlane', 'FocalLength', 'LensSqueezeRatio',
                            'FrustumExpand'), values):
        mc.setAttr(node + '.camera' + name, value)
    on = rng.random() < 0.9
    mc.setAttr(node + '.useCamera', on)
    scale, across, up, right, above, near, far, focal, squeeze, expand = values
    return Camera(world, scale, (across, up), (right, above), near, far, focal, squeeze, expand) if on else None


def given(rng, node, geometry):
    """Points over the middle of a face, on either side: towards an edge or a corner, rounding says which face is hit."""
    points = []
    for _ in range(rng.randint(0, 60)):
        corners = [geometry.points[v] for v in rng.choice(geometry.faces)]
        shares = [rng.uniform(0.2, 1.0) for _ in range(3)]
        foot = tuple(sum(s * c[k] for s, c in zip(shares, corners)) / sum(shares) for k in range(3))
        n = unit(cross(sub(corners[1], corners[0]), sub(corners[2], corners[0])))
        p = add(foot, times(n, rng.choice((-1, 1)) * rng.uniform(0.02, 0.4)))
        others = [nearestOnTriangle(p, [geometry.points[v] for v in face]) for face in geometry.faces]
        rivals = [q for q in others if length(sub(q, foot)) > 1e-6]
        if all(length(sub(p, q)) > length(sub(p, foot)) + 1e-3 for q in rivals):
            points.append(p)
    scenes.feed(node + '.inPositionPP', 'vectorArray', points)
    return points


def checker(rng, plug):
    """A texture on a colour."""
    texture, place = mc.createNode('checker'), mc.createNode('place2dTexture')
    mc.connectAttr(place + '.outUV', texture + '.uvCoord')
    mc.setAttr(place + '.repeatU', 1)
    mc.setAttr(place + '.repeatV', 1)
    colors = [tuple(single(rng.choice((0.0, 1.0, rng.random()))) for _ in range(3)) for _ in range(2)]
    mc.setAttr(texture + '.color1', *colors[0], type='double3')
    mc.setAttr(texture + '.color2', *colors[1], type='double3')
    mc.connectAttr(texture + '.outColor', plug)
    return Checker(*colors)


def textures(rng, node, geometry):
    """The texture on UVs and up to five projectors; some of each are off."""
    found, on = [], rng.random() < 0.6
    if rng.random() < 0.7:
        texture = UvTexture(checker(rng, node + '.inColor'), geometry.uvs)
        found += [texture] if on else []
    mc.setAttr(node + '.active', on)
    for number in sorted(rng.sample(range(1, 21), rng.randint(0, 5)), key=ORDER.index):
        matrix = scenes.randomMatrix(rng, size=rng.uniform(1, 3), kinds=('rigid', 'scaled', 'sheared', 'mirrored'))
        scenes.feed('%s.inProjectionWorldMatrix%d' % (node, number), 'matrix', matrix)
        on, contained = rng.random() < 0.8, rng.random() < 0.3
        mc.setAttr('%s.active%d' % (node, number), on)
        mc.setAttr('%s.contained%d' % (node, number), contained)
        if rng.random() < 0.8:                                   # a projector without a texture drops nothing
            texture = checker(rng, '%s.inColor%d' % (node, number))
            found += [Projector(texture, matrix, contained)] if on else []
    return found


def scene(rng):
    geometry = triangles(rng)
    node = mc.createNode('scatter')
    rules = {'mode': rng.choice((VOLUME, SURFACE, BOTH)), 'count': rng.choice((0, 1, 60, 120)), 'seed': rng.randrange(10 ** 6),
             'most': rng.choice((10000, 10000, rng.randint(0, 40))), 'tolerance': rng.choice((25.0, 60.0, 179.0)),
             'offset': rng.choice((0.0, 0.0, single(rng.uniform(0, 0.3)))),
             'reach': rng.choice((-1.0, single(rng.uniform(0, 4)))),
             'spacing': rng.choice((0.0, single(rng.uniform(0, 0.5))))}
    for name, key in (('scatterMode', 'mode'), ('pointDensity', 'count'), ('seed', 'seed'), ('maxNumberOfPoints', 'most'),
                      ('tolerance', 'tolerance'), ('surfaceOffset', 'offset'), ('maxDistanceFromSurface', 'reach'),
                      ('minPointToPointDistance', 'spacing')):
        mc.setAttr(node + '.' + name, rules[key])
    if rng.random() < 0.3:
        rules['density'] = mask(rng, node, geometry, 'useVertexColorsAsMask', 'colorSet')
    if rng.random() < 0.3:
        if 'density' in rules:                                   # one painting for both
            mc.setAttr(node + '.useVertexColorsAsPntToPntDistMask', True)
            mc.setAttr(node + '.colorSetMinPntToPntDist', mc.getAttr(node + '.colorSet') or '', type='string')
            rules['distances'] = rules['density']
        else:
            rules['distances'] = mask(rng, node, geometry, 'useVertexColorsAsPntToPntDistMask', 'colorSetMinPntToPntDist')
    if rng.random() < 0.3:
        rules['given'] = given(rng, node, geometry)
    if rng.random() < 0.3:
        rules['camera'] = camera(rng, node)
    if rng.random() < 0.4:
        rules['textures'] = textures(rng, node, geometry)
    mc.connectAttr(geometry.plug, node + '.inGeometry')
    mc.connectAttr(geometry.shape + '.worldMatrix[0]', node + '.inWorldMatrix')
    found, count = [tuple(p) for p in mc.getAttr(node + '.outPositionPP') or []], mc.getAttr(node + '.outCount')
    expected = Scatter(geometry.faces, geometry.localPoints, geometry.matrix, **rules).run()
    return compare.differences('outPositionPP', found, expected) + compare.differences('outCount', [count], [len(expected)])


compare.run(scene, 150)
