"""componentToComponent, objGrpToCompList and compListToObjGrp against index sets."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import maya.cmds as mc

import compare
import meshes
import scenes
from groups import converted
from meshes import EDGE, FACE, MAP, NAMES, VERTEX


def elements(plug):
    return meshes.listed(mc.getAttr(plug) or [])


def throughGroup(rng, geometry, names):
    """The components as an object group and back; only the first component of a list takes part."""
    node = mc.createNode('objGrpToCompList')
    group, asked, on = rng.choice((0, 7)), rng.choice((0, 7, 7, -1)), rng.random() < 0.9
    mc.connectAttr(scenes.grouped(geometry.plug, names, group), node + '.inGeometry')
    mc.setAttr(node + '.groupId', asked)
    mc.setAttr(node + '.envelope', on)
    expected = sorted(meshes.listed(names)) if on and asked == group else []
    found = sorted(elements(node + '.outComponents'))
    return [] if found == expected else ['group %d read as %d: %r, not %r' % (group, asked, found, expected)]


def scene(rng):
    geometry = scenes.randomGeometry(rng, ('mesh', 'mesh', 'mesh', 'curve', 'surface'))
    if geometry.kind != 'mesh':
        names = scenes.componentNames(geometry)
        return throughGroup(rng, geometry, rng.sample(names, rng.randint(1, len(names))))
    topology = meshes.Topology.ofShape(geometry.shape, geometry.points)
    source, target = rng.choice((VERTEX, EDGE, FACE, MAP)), rng.randrange(4)
    share = rng.choice((0.1, 0.5, 0.9))
    chosen = {i for i in range(topology.count(source)) if rng.random() < share} or {0}
    names = scenes.componentText(NAMES[source], sorted(chosen))
    node = mc.createNode('componentToComponent')
    contained = rng.random() < 0.5
    mc.setAttr(node + '.contained', contained)
    mc.setAttr(node + '.outComponentType', target)
    if source == MAP or rng.random() < 0.6:                       # object groups hold no UVs
        mc.connectAttr(geometry.plug, node + '.inMesh')
        scenes.feed(node + '.inComponents', 'componentList', names)
    else:
        mc.connectAttr(scenes.grouped(geometry.plug, names, 3), node + '.inMesh')
        mc.setAttr(node + '.useComponents', 1)
        mc.setAttr(node + '.groupId', 3)
    found = elements(node + '.outComponents')
    kind = NAMES[target]
    if any(name != kind for name, _ in found):
        return ['components of another kind than %s: %r' % (kind, found[:3])]
    expected = converted(topology, chosen, source, target, contained)
    lost = throughGroup(rng, geometry, names) if source != MAP else []
    if {i for _, (i,) in found if i < topology.count(target)} != expected:
        lost.append('%s to %s, contained %s, of %r: %r, not %r' % (NAMES[source], kind, contained, sorted(chosen), sorted(
            i for _, (i,) in found), sorted(expected)))
    return lost


compare.run(scene, 200)
