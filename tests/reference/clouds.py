"""boundingObject's cloud: random sources for it, and the five arrays that it has to publish."""
import maya.cmds as mc

from algebra import single, vector
from scenes import (componentNames, componentText, feed, grouped, paint, pointNormals, randomCurve, randomMesh,
                    randomParticles, randomSurface)


class Inputs:
    """The defaults for what a source does not say."""

    def __init__(self, rng, node):
        self.radius = rng.choice((0.4, rng.uniform(0, 1), rng.uniform(0, 1), 0.0))
        self.weight = rng.choice((1.0, rng.uniform(0, 1)))
        self.color = tuple(single(rng.random()) for _ in range(3))
        self.alpha = single(rng.random())
        mc.setAttr(node + '.pointRadius', self.radius)
        mc.setAttr(node + '.pointWeight', self.weight)
        mc.setAttr(node + '.pointColor', *self.color)
        mc.setAttr(node + '.pointAlpha', self.alpha)


def arrayInput(rng, node, attribute, use, count, default, type='doubleArray', random=None):
    """One value a point of a per-point input: random, of a wrong length, switched off or absent."""
    random = random or (lambda: rng.uniform(-1, 1))
    mode = rng.choice(('none', 'right', 'right', 'short', 'long', 'off'))
    if mode == 'none':
        return [default] * count
    values = [random() for _ in range({'short': max(1, count // 2), 'long': count + 3}.get(mode, count))]
    feed('%s.%s' % (node, attribute), type, values)
    if mode == 'off':
        mc.setAttr('%s.%s' % (node, use), False)
        return [default] * count
    zero = (0.0, 0.0, 0.0) if type == 'vectorArray' else 0.0
    return [values[i] if i < len(values) else zero for i in range(count)]


def subset(rng, node, prefix, geometry):
    """Indices of the points that a component list or an object group leaves; of a list the first component counts."""
    names = componentNames(geometry)
    everything = list(range(len(names)))
    if rng.random() < 0.5:
        return everything
    chosen = [i for i in everything if rng.random() < 0.5] or [0]
    texts = [names[i] for i in chosen]
    if rng.random() < 0.3:
        mc.setAttr(node + '.' + prefix + 'UseComponents', 2)
        group = rng.choice((0, 4))
        mc.setAttr('%s.%sObjectGroupId' % (node, prefix), rng.choice((group, group, 9, -1)))
        mc.connectAttr(grouped(geometry.plug, texts, group), node + '.' + prefix, force=True)
        return chosen if mc.getAttr('%s.%sObjectGroupId' % (node, prefix)) == group else []
    mc.setAttr(node + '.' + prefix + 'UseComponents', 1)
    other = rng.choice(('before', 'behind', None, None, None)) if geometry.kind == 'mesh' else None
    feed(node + '.' + prefix + 'Components', 'componentList',
         {'before': ['f[0]'] + texts, 'behind': texts + ['f[0]']}.get(other, texts))
    return [] if other == 'before' else chosen


def meshSource(rng, node, inputs):
    geometry = randomMesh(rng)
    count = len(geometry.points)
    colors = [inputs.color + (inputs.alpha,)] * count
    if rng.random() < 0.5:
        name, painted = paint(rng, geometry)
        colors = [c or (0.0, 0.0, 0.0, 0.0) for c in painted]
        mc.setAttr(node + '.inMeshColorSet', name, type='string')
    mc.connectAttr(geometry.plug, node + '.inMesh')
    if rng.random() < 0.2:
        mc.setAttr(node + '.inMeshUseRgbaPP', False)
        colors = [inputs.color + (inputs.alpha,)] * count
    radii = arrayInput(rng, node, 'inMeshRadiusPP', 'inMeshUseRadiusPP', count, inputs.radius)
    weights = arrayInput(rng, node, 'inMeshWeightPP', 'inMeshUseWeightPP', count, inputs.weight)
    kept = subset(rng, node, 'inMesh', geometry)
    return gathered(kept, geometry.points, pointNormals(geometry), radii, weights, colors)


def nurbsSource(rng, node, inputs, kind):
    geometry = {'Curve': randomCurve, 'Surface': randomSurface}[kind](rng)
    prefix, count = 'in' + kind, len(geometry.points)
    mc.connectAttr(geometry.plug, node + '.' + prefix)
    radii = arrayInput(rng, node, prefix + 'RadiusPP', prefix + 'UseRadiusPP', count, inputs.radius)
    weights = arrayInput(rng, node, prefix + 'WeightPP', prefix + 'UseWeightPP', count, inputs.weight)
    colors = [inputs.color + (inputs.alpha,)] * count
    mode = rng.choice(('none', 'double', 'vector', 'point', 'short'))
    random = lambda n: [tuple(rng.random() for _ in range(n)) for _ in range(count)]
    if mode == 'double' or mode == 'short':
        colors = random(4)
        if mode == 'short':
            colors = colors[:count // 2]
        feed(node + '.' + prefix + 'RgbaPP', 'doubleArray', [x for c in colors for x in c])
        colors = colors + [(0.0, 0.0, 0.0, 0.0)] * (count - len(colors))
    elif mode != 'none':
        values = random(3)
        colors = [c + (1.0,) for c in values]
        if mode == 'point':
            values = [c + (0.5,) for c in values]
        feed(node + '.' + prefix + 'RgbaPP', mode + 'Array', values)
    kept = subset(rng, node, prefix, geometry)
    return gathered(kept, geometry.points, pointNormals(geometry), radii, weights, colors)


def particleSource(rng, node, inputs, matrix):
    geometry = randomParticles(rng)
    count, p = len(geometry.points), 'inParticle'
    mc.connectAttr(geometry.plug, node + '.inParticlePositionPP')
    triple = lambda: tuple(rng.uniform(-1, 1) for _ in range(3))
    radii = arrayInput(rng, node, p + 'RadiusPP', p + 'UseRadiusPP', count, inputs.radius)
    weights = arrayInput(rng, node, p + 'WeightPP', p + 'UseWeightPP', count, inputs.weight)
    rgb = arrayInput(rng, node, p + 'RgbPP', p + 'UseRgbPP', count, inputs.color, 'vectorArray', triple)
    opacities = [inputs.alpha] * count
    if rng.random() < 0.5:                       # under the switch of the colours, whatever its own says
        opacities = [rng.random() for _ in range(count)]
        feed(node + '.inParticleOpacityPP', 'doubleArray', opacities)
        mc.setAttr(node + '.inParticleUseOpacityPP', rng.random() < 0.5)
        if not mc.getAttr(node + '.inParticleUseRgbPP'):
            opacities = [inputs.alpha] * count
    up = vector((0.0, 1.0, 0.0), matrix)
    normals = arrayInput(rng, node, p + 'VelocityPP', p + 'UseVelocityPP', count, up, 'vectorArray', triple)
    kept = list(range(count))
    if rng.random() < 0.4:
        kept = sorted(rng.sample(range(count + 3), rng.randint(1, count + 3)))
        mc.setAttr(node + '.inParticleUseComponents', 1)
        if rng.random() < 0.5:
            feed(node + '.inParticleComponents', 'Int32Array', kept)
        else:
            feed(node + '.inParticleComponents', 'componentList', componentText('vtx', kept))
        kept = [i for i in kept if i < count]
    colors = [tuple(c) + (a,) for c, a in zip(rgb, opacities)]
    return gathered(kept, geometry.points, normals, radii, weights, colors)


def gathered(kept, points, normals, radii, weights, colors):
    return ([points[i] for i in kept], [normals[i] for i in kept], [abs(radii[i]) for i in kept],
            [weights[i] for i in kept], [x for i in kept for x in colors[i]])


def randomCloud(rng, node, sources=None):
    """Connects random sources to a boundingObject; the five arrays that it has to publish."""
    inputs = Inputs(rng, node)
    matrix = mc.getAttr(node + '.inParentMatrix')
    total = ([], [], [], [], [])
    makers = {'mesh': lambda: meshSource(rng, node, inputs), 'curve': lambda: nurbsSource(rng, node, inputs, 'Curve'),
              'surface': lambda: nurbsSource(rng, node, inputs, 'Surface'),
              'particles': lambda: particleSource(rng, node, inputs, matrix)}
    switches = {'mesh': 'useInMesh', 'curve': 'useInCurve', 'surface': 'useInSurface', 'particles': 'useInParticle'}
    sources = sources or [kind for kind in makers if rng.random() < 0.5] or ['particles']
    for kind in makers:                          # the order of the cloud
        if kind not in sources:
            continue
        found = makers[kind]()
        if rng.random() < 0.1:
            mc.setAttr('%s.%s' % (node, switches[kind]), False)
            continue
        for array, more in zip(total, found):
            array += more
    return total
