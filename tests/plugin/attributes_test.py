"""The attributes of the nodes against attributes.tsv: names, types, defaults and flags are stored in scenes."""
import os
import sys

import maya.cmds as mc

# keyable, storable, writable
ROLES = {'input': (False, False, True), 'control': (True, True, True), 'stored': (False, True, True),
         'output': (False, False, False)}

nodes = {}
order = {}
failures = []


def same(what, found, expected):
    if found != expected:
        failures.append('%s: %r, not %r' % (what, found, expected))


def kind(node, attribute):
    """Attributes made by a typed function set tell their type by their value."""
    found = mc.attributeQuery(attribute, node=node, attributeType=True)
    return mc.getAttr(node + '.' + attribute, type=True) if found == 'typed' else found


with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), 'attributes.tsv')) as stream:
    rows = [line.rstrip('\n').split('\t') for line in stream if not line.startswith('#')]

for nodeType, attribute, short, type, default, values, role in rows:
    if nodeType not in nodes:
        nodes[nodeType] = mc.createNode(nodeType)
    node = nodes[nodeType]
    order.setdefault(nodeType, []).append(attribute)
    what = nodeType + '.' + attribute
    if not mc.attributeQuery(attribute, node=node, exists=True):
        failures.append(what + ': there is no such attribute')
        continue

    def query(**flag):
        return mc.attributeQuery(attribute, node=node, **flag)

    same(what + ' short name', query(shortName=True), short)
    if not (type in ('mesh', 'componentList') and query(attributeType=True) == 'typed'):   # no value to ask
        same(what + ' type', kind(node, attribute), type)
    same(what + ' flags', (query(keyable=True), query(storable=True), query(writable=True)), ROLES[role])
    if default != '-':
        same(what + ' default', query(listDefault=True), [float(default)])
    if type == 'enum':
        same(what + ' choices', query(listEnum=True), [values.replace('; ', ':')])
    elif values != '-':
        limits = dict(limit.split() for limit in values.split('; '))
        same(what + ' minimum', query(minimum=True), [float(limits['min'])])
        same(what + ' soft maximum', query(softMax=True), [float(limits['softMax'])])

for nodeType, expected in order.items():
    plain = set(mc.listAttr(mc.createNode('network')))
    same(nodeType + ' in order', [name for name in mc.listAttr(nodes[nodeType]) if name not in plain], expected)

sys.exit('\n'.join(failures) if failures else 0)
