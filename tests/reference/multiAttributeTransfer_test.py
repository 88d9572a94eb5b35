"""multiAttributeTransfer against the point-by-point reference, in both modes."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import clouds
import compare
import scenes
from algebra import Box
from transfer import weightPerPoint, weightsPerVolume
from volumes import Ramps


def cloud(rng, node):
    return clouds.randomCloud(rng, node, None if rng.random() < 0.2 else ['particles'])


def randomSettings(rng, node):
    settings = {'maxInfluences': rng.choice((1, 2, 3, 5, 20)), 'mode': rng.randrange(2),
                'weightFreePointsTo': rng.randrange(3), 'processAllComponents': rng.random() < 0.5}
    for name, value in settings.items():
        mc.setAttr(node + '.' + name, value)
    settings['kernel'] = scenes.DEFAULT_KERNEL
    if rng.random() < 0.6:
        settings['kernel'] = scenes.randomRamp(rng, rng.choice((-0.4, 0.0)))
        scenes.setRamp(node + '.kernel', settings['kernel'])
    return settings


def chosenPoints(rng, node, geometry):
    """The points of the component list, which is asked point by point; all without one."""
    count = len(geometry.points)
    if rng.random() < 0.6:
        return list(range(count))
    chosen = sorted(rng.sample(range(count), rng.randint(1, count)))
    return scenes.selectPoints(rng, node, geometry, chosen)


def elements(plug):
    return mc.getAttr(plug, multiIndices=True) or []


def scene(rng):
    geometry = scenes.randomGeometry(rng)
    count = len(geometry.points)
    node = mc.createNode('multiAttributeTransfer')
    mc.connectAttr(geometry.plug, node + '.inGeometry')
    settings = randomSettings(rng, node)
    made = [scenes.randomVolume(rng, cloud) for _ in range(rng.randint(1, 6))]
    volumes = scenes.connectVolumes(rng, node, made)
    chosen = chosenPoints(rng, node, geometry)
    box = Box([geometry.points[i] for i in chosen])

    def at(i, move, give, shift):
        p = tuple(a + b for a, b in zip(geometry.points[i], move))
        return give(p, volumes, settings, box, Ramps(*shift))

    if settings['mode'] == 0:
        plug = node + '.outWeightList[0].weights'
        found = dict(zip(elements(plug), mc.getAttr(plug) if elements(plug) else []))
        indices = list(range(count)) if settings['processAllComponents'] else chosen
        if sorted(found) != indices:
            return ['elements %r, not %r' % (sorted(found), indices)]
        inside = set(chosen)
        expect = lambda k, move=(0.0, 0.0, 0.0), *shift: (
            at(indices[k], move, weightPerPoint, shift) if indices[k] in inside else 0.0)
        return compare.points('weights', [found[i] for i in indices], expect, len(indices), geometry.delta)
    return perVolume(node, count, chosen, geometry, at)


def perVolume(node, count, chosen, geometry, at):
    """Each list of weights, spread to one number a volume; -1 for an element that is not there."""
    slots = range(8 + 6)
    spread = lambda weights: tuple(weights.get(k, -1.0) for k in slots)
    result = []
    for i in range(count):
        plug = '%s.outWeightList[%d].weights' % (node, i)
        there = elements(plug)
        result.append(spread(dict(zip(there, mc.getAttr(plug) if there else []))))
    expect = lambda k, move=(0.0, 0.0, 0.0), *shift: spread(at(chosen[k], move, weightsPerVolume, shift))
    lines = compare.points('weights', [result[i] for i in chosen], expect, len(chosen), geometry.delta)
    outside = sorted(set(range(count)) - set(chosen))
    return lines + compare.differences('outside', [result[i] for i in outside], [spread({})] * len(outside))


compare.run(scene, 200)
