"""A field of stones on a textured ground: shading networks and instances, without a copy of a mesh.

    mirk run examples/instances.py --render field.png

Stones of two shapes stand at particles on a grid, whose sizes, turns and shapes are arrays of the particle object; an
instancer shows them. The ground is painted by two textures, one in the other.
"""
import math
import random
import sys

import maya.cmds as mc

random.seed(3)
SIDE = 15


def shader(name, members):
    """A matt surface in a shading group of its own, on `members`; the name of its colour."""
    surface = mc.shadingNode('lambert', asShader=True, name=name)
    group = mc.sets(renderable=True, noSurfaceShader=True, empty=True, name=name + 'SG')
    mc.connectAttr(surface + '.outColor', group + '.surfaceShader')
    mc.sets(members, edit=True, forceElement=group)
    return surface + '.color'


def placed(kind, name, repeat):
    """A texture with a placement."""
    texture = mc.shadingNode(kind, asTexture=True, name=name)
    place = mc.shadingNode('place2dTexture', asUtility=True)
    mc.connectAttr(place + '.outUV', texture + '.uvCoord')
    mc.setAttr(place + '.repeatUV', repeat, repeat, type='double2')
    return texture


ground = mc.polyPlane(width=24, height=24, subdivisionsX=1, subdivisionsY=1, name='ground')[0]
mc.setAttr(ground + '.translateY', 0.04)           # above the grid of the viewport
tiles, grain = placed('checker', 'tiles', 6), placed('noise', 'grain', 2)
mc.setAttr(tiles + '.color2', 0.22, 0.30, 0.18, type='float3')
mc.setAttr(grain + '.colorGain', 0.75, 0.65, 0.5, type='float3')
mc.connectAttr(grain + '.outColor', tiles + '.color1')
mc.connectAttr(tiles + '.outColor', shader('soil', ground))

block = mc.polyCube(name='block')[0]
mc.polySoftEdge(block, angle=30)
ball = mc.polySphere(radius=0.6, name='ball')[0]
bands = placed('ramp', 'bands', 1)
mc.setAttr(bands + '.colorEntryList[0].color', 0.55, 0.15, 0.08, type='float3')
mc.setAttr(bands + '.colorEntryList[1].color', 0.95, 0.80, 0.45, type='float3')
mc.connectAttr(bands + '.outColor', shader('ochre', ball))
mc.setAttr(shader('slate', block), 0.25, 0.33, 0.42, type='float3')
mc.hide(block, ball)

step = 22.0 / (SIDE - 1)
places = [(-11 + step * i, 0, -11 + step * j) for j in range(SIDE) for i in range(SIDE)]
stones = mc.particle(p=places, name='stones')[1]
mc.setAttr(stones + '.particleRenderType', 0)
sizes, turns, shapes = [], [], []
for x, _, z in places:
    wave = 0.5 + 0.5 * math.sin(0.45 * x) * math.cos(0.45 * z)
    sizes.append((0.3 + 0.5 * wave, 0.3 + 1.6 * wave * wave, 0.3 + 0.5 * wave))
    turns.append((0, random.uniform(0, 90), 0))
    shapes.append(float(random.random() < 0.5))
for name, kind, values in (('sizePP', 'vectorArray', sizes), ('turnPP', 'vectorArray', turns), ('shapePP', 'doubleArray', shapes)):
    mc.addAttr(stones, longName=name, dataType=kind)
    mc.setAttr('%s.%s' % (stones, name), len(values), *values, type=kind)
field = mc.particleInstancer(stones, addObject=True, object=[block, ball], scale='sizePP', rotation='turnPP', objectIndex='shapePP', name='field')

mc.setAttr('persp.translate', 18.4, 15.5, 21.2, type='double3')
mc.setAttr('persp.rotate', -31, 41, 0, type='double3')
mc.select(clear=True)

low, high = mc.getAttr(field + '.boundingBoxMinX'), mc.getAttr(field + '.boundingBoxMaxX')
print('%d stones from x = %.2f to %.2f' % (len(places), low, high))
if not -12 < low < -11 or not 11 < high < 12:
    sys.exit(1)
