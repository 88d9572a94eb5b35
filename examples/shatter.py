"""A torus, scattered with points in its volume and shattered into their cells.

    mirk run examples/shatter.py --render shatter.png

The shards are one mesh; they are pulled apart a little by `distance`, which leaves a gap at every cut.
"""
import sys

import maya.cmds as mc

mc.polyTorus(name='ring', radius=2, sectionRadius=0.7, subdivisionsX=48, subdivisionsY=24)
mc.select('ring')
shatter = mirk().create('shatter')          # with a scatter on the same mesh
scatter = mc.listConnections(shatter + '.inPositionPP')[0]
scatter = (mc.listRelatives(scatter, shapes=True) or [scatter])[0]
mc.setAttr(scatter + '.pointDensity', 1000)
mc.setAttr(scatter + '.display', False)
mc.setAttr(shatter + '.autoEvaluate', True)
mc.setAttr('persp.translate', 5.6, 4.2, 5.6)

shape = mc.listRelatives('ring', shapes=True, noIntermediate=True)[0]
points = mc.getAttr(scatter + '.outCount')
shards = mc.polyEvaluate(shape, shell=True)
print('%d points, %d shards of %d faces' % (points, shards, mc.polyEvaluate(shape, face=True)))
mc.setAttr(shatter + '.distance', 0.06)          # the picture evaluates it anew
sys.exit(0 if points > 20 and shards >= points else 1)
