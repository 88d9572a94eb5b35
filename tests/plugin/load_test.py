"""Loading, unloading and loading again, seen from inside a session. MIRK_SCRIPT_PATH names an empty directory."""
import contextlib
import io
import os
import sys

import maya.cmds as mc
import maya.mel as mm

DIRECTORY = os.environ['MIRK_SCRIPT_PATH']
INTERACTIVE = not mc.about(batch=True)
KEPT = ['icons.cfg', 'iconsDesigner.hlp', 'iconsDesigner.ui', 'plugins.py', 'slidersManager.hlp']


def files():
    return sorted(name for name in os.listdir(DIRECTORY) if name != '__pycache__')


def toolkitTypes():
    return set(mc.pluginInfo('mirk', query=True, dependNode=True) or [])


def check(condition, what):
    if not condition:
        sys.exit('failed: ' + what)


# the first load, done before this script began
check(files() == KEPT, 'sources of imported modules are removed, the files they read stay: %s' % files())
check(DIRECTORY in sys.path, 'the tools directory is on sys.path')
for name in ('iconsDesigner', 'slidersManager', 'scriptsManager', 'blendShapesManager'):
    check(name in sys.modules, name + ' is imported')
check(('msv_Mirk' in globals()) == INTERACTIVE, 'scripted tools start in interactive mode only')
check(mirk().scriptPath() == DIRECTORY + '/', 'scriptPath ends with a slash')
check(sys.path[0] == DIRECTORY and sys.path.count(DIRECTORY) == 1, 'the tools directory comes first, and once')

PAINTABLE = ['peak.weights', 'smooth.weights', 'smoothSimple.weights', 'tensionMap.inWeightPP',
             'rayProject.inWeightPP', 'timeOffset.inWeightPP', 'retarget.inWeightPP', 'morphAssembly.paintMap',
             'morph.paintWeightMap', 'collide.paintWeightMap']
check((mc.makePaintable(query=True) or []) == (PAINTABLE if INTERACTIVE else []),
      'weights are paintable in interactive mode only: %s' % mc.makePaintable(query=True))
check(not mc.commandEcho(query=True, state=True), 'an echo that was off stays off')

# a directory that is none
os.environ['MIRK_SCRIPT_PATH'] = DIRECTORY + '/none'
output = io.StringIO()
with contextlib.redirect_stdout(output):
    path = mirk().scriptPath()
check(output.getvalue().strip() == 'WARNING: Environment variable MIRK_SCRIPT_PATH points to invalid directory: '
      + DIRECTORY + '/none', 'a directory that is none is told: ' + output.getvalue())
check(os.path.abspath(path) == os.path.abspath(mc.internalVar(userScriptDir=True)), 'the user directory serves instead')
os.environ['MIRK_SCRIPT_PATH'] = DIRECTORY

# the embedded default file is what the tool reads
core = sys.modules['iconsDesigner'].Core()
core.load(DIRECTORY + '/icons.cfg')
check((len(core.elements), len(core.icons)) == (56, 33), 'the default file holds 56 elements and 33 icons')
core.save(DIRECTORY + '/copy.cfg', bQuiet=True)
with open(DIRECTORY + '/icons.cfg') as first, open(DIRECTORY + '/copy.cfg') as second:
    check(first.read() == second.read(), 'writing gives back what was read')
os.remove(DIRECTORY + '/copy.cfg')

# unload: all but outline go
check(len(toolkitTypes()) == 100, 'one hundred types are registered')
types = toolkitTypes()
library = mc.pluginInfo('mirk', query=True, path=True)
mc.commandEcho(state=True)
mc.unloadPlugin('mirk')
check(mc.commandEcho(query=True, state=True), 'the echo is given back after unloading')
left = types & set(mc.allNodeTypes())
check(left == {'outline'}, 'only outline stays registered: %s' % sorted(left))

# load again: everything is done again, and the echo given back
with open(DIRECTORY + '/icons.cfg', 'w') as stream:
    stream.write('edited')
mc.loadPlugin(library)
check(mc.commandEcho(query=True, state=True), 'the echo is given back after loading')
mc.commandEcho(state=False)
check(toolkitTypes() == types, 'a second load registers all types, though outline had stayed')
check(os.path.getsize(DIRECTORY + '/icons.cfg') > 6, 'a second load writes the default file over an edited one')
check(files() == KEPT, 'a second load leaves the same files')

# a node that the class makes next to the selection
cube = mc.polyCube()[0]
mc.select(cube)
reader = mirk().create('pointAttributeToArray')
check(mc.isConnected(mc.listRelatives(cube, shapes=True)[0] + '.worldMesh[0]', reader + '.inGeometry'),
      'create wires the selection')
writer = mirk().create('arrayToPointColor', bSkipSel=True)
check(mc.nodeType(writer) == 'arrayToPointAttribute', 'arrayToPointColor is made as arrayToPointAttribute')

# shatter goes between a mesh and what it showed, with a scatter for its points
mc.select(cube)
shatter = mirk().create('shatter')
shape = mc.listRelatives(cube, shapes=True, noIntermediate=True)[0]
scatter = mc.listConnections(shatter + '.inPositionPP')[0]
check(mc.isConnected(shatter + '.outGeometry', shape + '.inMesh'), 'the shape shows the shards')
check(mc.isConnected(shape + '.worldInverseMatrix[0]', shatter + '.inWorldInverseMatrix'), 'points come to its space')
check(mc.nodeType(mc.listRelatives(scatter, shapes=True)[0] if mc.listRelatives(scatter, shapes=True) else scatter) == 'scatter',
      'points come from a scatter')
check(mc.polyEvaluate(shape, face=True) == 6, 'it rests until autoEvaluate is on')
mc.setAttr(cube + '.translateX', 5)
baked = mm.eval('bake_SHATTER_MIRK "%s.autoEvaluate"' % shatter)
check(mc.polyEvaluate(baked, shell=True) > 2 and not mc.listConnections(mc.listRelatives(baked, shapes=True)[0] + '.inMesh'),
      'baked shards are a mesh of their own')
check(mc.getAttr(baked + '.translateX') == 5, 'they stand where the shape does')
check(not mc.getAttr(shatter + '.autoEvaluate') and mc.polyEvaluate(shape, face=True) == 6, 'the node rests again')
