"""The examples on a small model: they run, and what they show is there."""
import os
import runpy
import sys
import tempfile

import maya.cmds as mc

root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
failures = []


def check(what, fine):
    if not fine:
        failures.append(what)


with tempfile.TemporaryDirectory() as folder:
    model = os.path.join(folder, 'ball.obj')
    ball = mc.polySphere(subdivisionsX=16, subdivisionsY=12)[0]
    mc.select(ball)
    mc.file(model, exportSelected=True, type='OBJexport', force=True)
    mc.file(new=True, force=True)
    os.environ['MIRK_BUNNY'] = model

    runpy.run_path(os.path.join(root, 'examples', 'components.py'), run_name='__main__')
    shapes = [name + 'Shape' for name in ('facing', 'rings', 'volumes', 'mirror')]
    for shape in shapes:
        colors = mc.polyColorPerVertex(shape + '.vtx[*]', query=True, rgb=True) or []
        triples = {tuple(round(c, 3) for c in colors[i:i + 3]) for i in range(0, len(colors), 3)}
        check('%s has %d colours' % (shape, len(triples)), len(triples) >= 2)
    check('groups: %d' % len(mc.ls(type='componentGroup')), len(mc.ls(type='componentGroup')) == 15)

sys.exit('\n'.join(failures) if failures else 0)
