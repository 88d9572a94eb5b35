"""What attributeTransfer and multiAttributeTransfer give a point, one point after the other."""
import math

from algebra import add, length, sub, times, unit
from volumes import CLOUD, Ramps


class Table:
    """The influences that a point keeps: up to `limit`, each (d, volume, cloud point, weight)."""

    def __init__(self, limit):
        self.limit, self.slots, self.sum = limit, [], 0.0

    def offer(self, candidate):
        if len(self.slots) < self.limit:
            self.slots.append(candidate)
        else:
            further = [k for k, slot in enumerate(self.slots) if slot[0] > candidate[0]]
            if not further:
                return
            self.slots[further[0]] = candidate
        self.sum += abs(candidate[3])

    def ordered(self):
        """In the order of summation."""
        found = []
        for slot in self.slots:
            if found and slot[0] > found[0][0]:
                found.insert(0, slot)
            else:
                found.append(slot)
        return found


def weightOf(volume, d, j, ramps):
    w = ramps.value(volume.ramps['weight'], d)
    return w * volume.cloud[3][j] if volume.kind == CLOUD else w


def influences(p, volumes, limit, box, ramps):
    """The table of a point. `box` is the geometry's: clouds that do not meet it are left out."""
    table = Table(limit)
    for index, volume in enumerate(volumes):
        if not volume.envelope or volume.kind == CLOUD and not volume.box.meets(box):
            continue
        for d, j in volume.reached(p):
            table.offer((d, index, j, weightOf(volume, d, j, ramps)))
    return table


def kernels(found, kernel, ramps):
    if len(found) == 1:
        return [1.0]
    return [max(0.0, ramps.value(kernel, slot[0])) for slot in found]


def mix(old, new, amount):
    return old * (1 - amount) + new


def transferPoint(p, old, volumes, settings, box, ramps=Ramps()):
    """The new values of one point.

    old, result: {'position', 'weight', 'color', 'normal', 'radius'}, of those that settings switch on
    settings: switches by name, 'kernel', 'maxInfluences', 'particles'
    """
    on = [name for name in ('position', 'weight', 'color', 'normal', 'radius') if settings[name]]
    found = influences(p, volumes, settings['maxInfluences'], box, ramps).ordered()
    start = {name: old[name] for name in on}
    if not settings['merge']:
        cleared = {'weight': 0.0, 'radius': 0.0, 'normal': (0.0, 0.0, 0.0),
                   'color': (0.0, 0.0, 0.0, 1.0 if settings['solidAlpha'] else 0.0)}
        start.update({name: cleared[name] for name in on if name in cleared})
    if not found:
        return start
    work = Work(p, start, old, [(volumes[i], d, j, w) for d, i, j, w in found],
                kernels(found, settings['kernel'], ramps), settings, ramps)
    return {name: getattr(work, name)() for name in on}


class Work:
    """One touched point: `found` are its influences as (volume, d, cloud point, weight), kw their kernel values."""

    def __init__(self, p, start, old, found, kw, settings, ramps):
        self.p, self.start, self.old, self.found, self.kw = p, start, old, found, kw
        self.settings, self.ramps, self.total = settings, ramps, sum(kw)
        self.several = len(found) > 1

    def mean(self, values):
        """Weighed by the kernel; 0 without any kernel weight."""
        weighed = sum(k * v for k, v in zip(self.kw, values))
        if not self.several:
            return weighed
        return weighed / self.total if self.total else 0.0

    def blended(self, name, v):
        return mix(self.start[name], v, v) if self.settings['blend'] and self.start[name] != 0 else v

    def weight(self):
        return self.blended('weight', self.mean([w for _, _, _, w in self.found]))

    def radius(self):
        given = []
        for volume, d, j, _ in self.found:
            r = self.ramps.value(volume.ramps['radius'], d)
            given.append(r * volume.cloud[2][j] if volume.kind == CLOUD else r)
        return max(0.0, self.blended('radius', self.mean(given)))

    def color(self):
        rgb, alphas = [], []
        for volume, d, j, _ in self.found:
            a = self.ramps.value(volume.ramps['alpha'], d)
            if volume.kind == CLOUD:
                c = volume.cloud[4][4 * j:4 * j + 3]
                a *= volume.cloud[4][4 * j + 3]
            else:
                c = self.ramps.color(volume.ramps['color'], d)
            rgb.append(times(c, a) if self.settings['alphaModulate'] else tuple(c))
            alphas.append(a)
        new = [self.mean([c[i] for c in rgb]) for i in range(3)] + [self.mean(alphas)]
        old = self.start['color']
        if self.settings['blend'] and any(old):
            new = [mix(o, c, c) for o, c in zip(old, new)]
        if self.settings['solidAlpha']:
            new[3] = 1.0
        return tuple(new)

    def position(self):
        total, strength = (0.0, 0.0, 0.0), 0.0
        for (volume, d, j, _), k in zip(self.found, self.kw):
            g = k * self.ramps.value(volume.ramps['position'], d)
            to = volume.target(self.p, j, cartesian=not self.settings['particles'])
            if to is not None:
                total = add(total, times(to, g))
            strength += g
        if self.several:
            share = 1 / self.total if self.total > 0 else 0.0
            total, strength = times(total, share), strength * share
        return add(times(self.p, 1 - strength), total)

    def normal(self):
        sum_, strength, v = (0.0, 0.0, 0.0), 0.0, (0.0, 0.0, 0.0)
        for (volume, d, j, _), k in zip(self.found, self.kw):
            v = volume.direction(self.p, j, v)
            s = self.ramps.value(volume.ramps['normal'], d) * k
            sum_ = add(sum_, times(v, s))
            strength += s
        if self.several:
            strength = strength / self.total if self.total else 0.0
        new, old = unit(sum_), self.start['normal']
        size = length(self.old['normal']) if self.settings['particles'] else 1.0     # kept, even if cleared
        if self.settings['blend']:
            if self.settings['particles']:
                old = unit(old)
            new = unit(add(times(old, 1 - strength), times(new, strength)))
        return times(new, size)


def weightPerPoint(p, volumes, settings, box, ramps=Ramps()):
    """multiAttributeTransfer's one weight of a point."""
    table = influences(p, volumes, settings['maxInfluences'], box, ramps)
    if table.sum == 0:
        return 0.0
    found = table.ordered()
    if len(found) == 1:
        return min(1.0, found[0][3])
    kw = kernels(found, settings['kernel'], ramps)
    total = sum(kw)
    return min(1.0, sum(k * slot[3] for k, slot in zip(kw, found)) / total if total else 0.0)


def weightsPerVolume(p, volumes, settings, box, ramps=Ramps()):
    """multiAttributeTransfer's {volume: weight} of a point."""
    table = influences(p, volumes, settings['maxInfluences'], box, ramps)
    if table.sum != 0:
        alone = settings['maxInfluences'] == 1
        return {index: 1.0 if alone else w / table.sum for _, index, _, w in table.slots}
    if settings['weightFreePointsTo'] == 1:
        return {0: 1.0}
    closest = nearest(p, volumes) if settings['weightFreePointsTo'] == 2 else None
    return {} if closest is None else {closest: 1.0}


def nearest(p, volumes):
    """Index of the volume with the smallest d, inside or not; volumes of no size have none."""
    best = None
    for index, volume in enumerate(volumes):
        if not volume.envelope:
            continue
        if volume.kind == CLOUD:
            away = [length(sub(p, q)) / r for q, r in zip(volume.cloud[0], volume.cloud[2]) if r > 0]
        else:
            away = [volume.beyond(p)]
        for d in away:
            if math.isfinite(d) and (best is None or d < best[0]):
                best = (d, index)
    return best[1] if best else None
