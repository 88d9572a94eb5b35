"""The attributes of the nodes against the tables in attributes/: names, types, defaults and flags are stored in scenes."""
import os
import sys

import maya.cmds as mc

# keyable, storable, writable
ROLES = {'input': (False, False, True), 'control': (True, True, True), 'stored': (False, True, True),
         'output': (False, False, False)}

# what stands below a ramp
RAMPS = {'colorRamp': ('_Position', '_Color', '_ColorR', '_ColorG', '_ColorB', '_Interp'),
         'curveRamp': ('_Position', '_FloatValue', '_Interp')}

nodes = {}
order = {}
failures = []


def same(what, found, expected):
    if found != expected:
        failures.append('%s: %r, not %r' % (what, found, expected))


def path(node, attribute):
    """The attribute with what stands above it; of multis the first element."""
    name = attribute
    if mc.attributeQuery(attribute, node=node, multi=True):
        name += '[0]'
    parents = mc.attributeQuery(attribute, node=node, listParent=True)
    return path(node, parents[0]) + '.' + name if parents else node + '.' + name


def kind(node, attribute):
    """Attributes made by a typed function set tell their type by their value."""
    found = mc.attributeQuery(leaf(attribute), node=node, attributeType=True)
    return mc.getAttr(path(node, leaf(attribute)), type=True) if found == 'typed' else found


def leaf(attribute):
    """Rows may name a child with its parents."""
    return attribute.split('.')[-1]


rows = []
folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'attributes')
for family in sorted(os.listdir(folder)):
    with open(os.path.join(folder, family)) as stream:
        rows += [line.rstrip('\n').split('\t') for line in stream if not line.startswith('#')]

for nodeType, attribute, short, type, default, values, role in rows:
    if nodeType not in nodes:
        nodes[nodeType] = mc.createNode(nodeType)
    node = nodes[nodeType]
    order.setdefault(nodeType, []).append(attribute)
    if type in RAMPS:
        order[nodeType] += [attribute + part for part in RAMPS[type]]
        type = 'compound'
    what = nodeType + '.' + attribute
    if not mc.attributeQuery(leaf(attribute), node=node, exists=True):
        failures.append(what + ': there is no such attribute')
        continue

    def query(**flag):
        return mc.attributeQuery(leaf(attribute), node=node, **flag)

    same(what + ' short name', query(shortName=True), short)
    if not (type in ('mesh', 'componentList') and query(attributeType=True) == 'typed'):   # no value to ask
        same(what + ' type', kind(node, attribute), type)
    same(what + ' flags', (query(keyable=True), query(storable=True), query(writable=True)), ROLES[role])
    if default != '-':
        same(what + ' default', query(listDefault=True), [float(default)])
    if type == 'enum':
        same(what + ' choices', query(listEnum=True), [values.replace('; ', ':')])
    elif values != '-':
        for limit in values.split('; '):                      # min, max, softMin, softMax
            name, value = limit.split()
            name = {'min': 'minimum', 'max': 'maximum'}.get(name, name)
            same(what + ' ' + name, query(**{name: True}), [float(value)])

for nodeType, expected in order.items():
    plain = set(mc.listAttr(mc.createNode('network')))
    own = [name.split('.')[-1] for name in mc.listAttr(nodes[nodeType]) if name not in plain]   # children: parent.child
    same(nodeType + ' in order', own, [leaf(name) for name in expected])

sys.exit('\n'.join(failures) if failures else 0)
