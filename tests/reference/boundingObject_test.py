"""The cloud that boundingObject publishes, from random sources."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import clouds
import compare
from scenes import feed, randomMatrix


def scene(rng):
    node = mc.createNode('boundingObject')
    matrix = randomMatrix(rng)
    feed(node + '.inParentMatrix', 'matrix', matrix)
    kind = rng.choice((3, 3, 3, 3, 3, 0, 1, 2))
    mc.setAttr(node + '.type', kind)
    points, normals, radii, weights, rgba = clouds.randomCloud(rng, node)
    on = rng.random() < 0.9
    mc.setAttr(node + '.envelope', on)
    if kind != 3 or not on:
        points, normals, radii, weights, rgba = [], [], [], [], []
    found = compare.differences('outParentMatrix', mc.getAttr(node + '.outParentMatrix'), matrix, 0)
    found += compare.differences('positionPP', mc.getAttr(node + '.positionPP'), [p + (1.0,) for p in points], 1e-6)
    # normals of slivers whose corners are single precision
    found += compare.differences('normalPP', mc.getAttr(node + '.normalPP'), normals, 2e-4)
    found += compare.differences('radiusPP', mc.getAttr(node + '.radiusPP'), radii, 0)
    found += compare.differences('weightPP', mc.getAttr(node + '.weightPP'), weights, 0)
    found += compare.differences('rgbaPP', mc.getAttr(node + '.rgbaPP'), rgba, 1e-6)
    return found


compare.run(scene, 150)
