"""Veins over a real mesh: shortest paths from one ear to everywhere, drawn as a tree of tubes.

    mirk run examples/path.py --render path.png

scatter says where the veins end and kdTree which vertices are there. shortestPath leads from each of them to the tip of an
ear, but ends on an earlier path if it meets one; cocoon makes tubes of the paths, as thick as there are paths that use them.
MIRK_PATHS asks for another number of paths, MIRK_BUNNY names another OBJ file.
"""
import collections
import math
import os
import sys

import maya.cmds as mc

MODEL = os.environ.get('MIRK_BUNNY', '/usr/share/glmark2/models/bunny.obj')
PATHS = int(os.environ.get('MIRK_PATHS', '420'))
THIN, THICK = 0.0035, 0.026   # a vein of one path and of all, by the height of the bunny

BODY = (0.13, 0.18, 0.27)
TRUNK, BRANCH, TIP = (0.90, 0.13, 0.07), (1.00, 0.50, 0.10), (1.00, 0.86, 0.45)


def vectors(values):
    """A vector array as a list of triples, whether it comes flat or as triples."""
    if values and not isinstance(values[0], (list, tuple)):
        return list(zip(values[0::3], values[1::3], values[2::3]))
    return values or []


def importMesh(path):
    """The mesh shape of a model file, on the ground."""
    if not os.path.isfile(path):
        sys.exit('No model at %s: install glmark2-data, or name another OBJ file in MIRK_BUNNY.' % path)
    shape = mc.ls(mc.file(path, i=True, type='OBJ', returnNewNodes=True), type='mesh', long=True)[0]
    transform = mc.listRelatives(shape, parent=True, fullPath=True)[0]
    mc.setAttr(transform + '.translateY', -mc.getAttr(shape + '.boundingBoxMinY'))
    mc.polyColorPerVertex(shape, rgb=BODY, alpha=1.0)
    mc.setAttr(shape + '.displayColors', True)
    return shape, transform


def made(kind, name, inputs, **settings):
    """A node with its inputs connected and its attributes set."""
    node = mc.createNode(kind, name=name)
    for attribute, source in inputs.items():
        mc.connectAttr(source, '%s.%s' % (node, attribute))
    for attribute, value in settings.items():
        mc.setAttr('%s.%s' % (node, attribute), value, **({'type': 'string'} if isinstance(value, str) else {}))
    return node


def ends(mesh, area):
    """Vertices spread evenly over a mesh of that area, each once."""
    throws = 200 * PATHS
    scatter = made('scatter', 'veinEnds', {'inGeometry': mesh}, scatterMode=1, pointDensity=throws, maxNumberOfPoints=throws,
                   minPointToPointDistance=0.83 * math.sqrt(area / PATHS), display=False)
    tree = made('kdTree', 'endVertices', {'inGeometry': mesh, 'inGeometry2': scatter + '.outPositionPP'}, count=1,
                outputMappingData=True)
    return sorted(set(mc.getAttr(tree + '.outIdPP')))


def split(values, counts):
    """A list cut into lists of those lengths."""
    first = 0
    for count in counts:
        yield values[first:first + count]
        first += count


def walks(paths):
    """Of each path the vertices, and of each point the way that is left to the end."""
    counts = mc.getAttr(paths + '.outCounts')
    vertices = list(split(mc.getAttr(paths + '.outIndexPP'), counts))
    lengths = split(mc.getAttr(paths + '.outDistancePP'), counts)
    return vertices, [[walked[-1] - d for d in walked] for walked in lengths]


def mix(a, b, t):
    return [x + (y - x) * t for x, y in zip(a, b)]


def looks(vertices, flow, left):
    """Thickness and colour of each path point, by how many paths use its vertex and how far from the ear it is."""
    most, longest = max(flow.values()), max(left.values())
    thickness, rgba = [], []
    for v in vertices:
        share = math.sqrt((flow[v] - 1.0) / (most - 1.0)) if most > 1 else 0.0
        thickness.append(THIN + (THICK - THIN) * share)
        far = left[v] / longest
        rgba += mix(TRUNK, BRANCH, 2.0 * far) if far < 0.5 else mix(BRANCH, TIP, 2.0 * far - 1.0)
        rgba.append(1.0)
    node = mc.createNode('network', name='veinLooks')
    for name, values in (('thicknessPP', thickness), ('rgbaPP', rgba)):
        mc.addAttr(node, longName=name, dataType='doubleArray')
        mc.setAttr('%s.%s' % (node, name), len(values), *values, type='doubleArray')
    return node


def frame(height):
    """Puts the perspective camera in front of the bunny, a little above and to the side."""
    turn, tilt, distance = math.radians(22.0), math.radians(10.0), 2.0 * height
    target = (0.0, 0.49 * height, 0.0)
    mc.setAttr('persp.translate', distance * math.sin(turn) * math.cos(tilt), target[1] + distance * math.sin(tilt),
               distance * math.cos(turn) * math.cos(tilt), type='double3')
    mc.setAttr('persp.rotate', -math.degrees(tilt), math.degrees(turn), 0.0, type='double3')


def check(truth, what):
    if not truth:
        sys.exit('The paths are not right: ' + what)


def main():
    bunny, transform = importMesh(MODEL)
    mesh = bunny + '.outMesh'
    reader = made('pointAttributeToArray', 'bunnyToArrays', {'inGeometry': mesh}, pointPosition=True)
    points = vectors(mc.getAttr(reader + '.outPositionPP'))
    start = max(range(len(points)), key=lambda i: points[i][1])
    height = points[start][1] - min(p[1] for p in points)
    targets = [v for v in ends(mesh, mc.polyEvaluate(bunny, area=True)) if v != start]

    paths = made('shortestPath', 'veinPaths', {'inMesh': mesh}, mode=2,
                 expression=' '.join('%d:%d' % (v, start) for v in targets))
    whole, lefts = walks(paths)
    flow = collections.Counter(v for path in whole for v in path)
    left = {v: d for path, way in zip(whole, lefts) for v, d in zip(path, way)}
    check([path[0] for path in whole] == targets and flow[start] == len(targets), 'not every end has its way')

    mc.setAttr(paths + '.intersecting', False)
    tree, met = walks(paths)[0], {start}
    for path in tree:
        check(path[-1] in met, 'a path ends on no earlier one')
        met.update(path)
    check(met == set(flow), 'the tree misses vertices')

    style = looks([v for path in tree for v in path], flow, left)
    veins = made('cocoon', 'veins', {'inPositionPP': paths + '.outPositionPP', 'inShortestPathCounts': paths + '.outCounts',
                                     'inThicknessPP': style + '.thicknessPP', 'inRgbaPP': style + '.rgbaPP'},
                 thicknessMultiplier=1000.0 * height, drawLinks=False, linksMesh=True, colors=True)
    tubes = mc.createNode('mesh', name='veinsShape', parent=transform)
    mc.connectAttr(veins + '.outLinksMesh', tubes + '.inMesh')
    mc.setAttr(tubes + '.displayColors', True)
    frame(height)

    links = sum(len(path) - 1 for path in tree)
    print('%d paths from vertex %d over %d vertices, %d links' % (len(tree), start, len(met), links))
    check(mc.polyEvaluate(tubes, vertex=True) == 8 * links, 'a tube is missing')


main()
