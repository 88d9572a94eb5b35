"""Comparison of arrays and the run over seeds: MIRK_SEEDS=a-b runs more scenes than the few of every day."""
import os
import random
import sys
import traceback

import maya.cmds as mc


def near(a, b, tolerance=1e-5):
    """Numbers or tuples; the tolerance grows with the values (ramps and colours are single precision)."""
    if isinstance(a, (tuple, list)):
        return len(a) == len(b) and all(near(x, y, tolerance) for x, y in zip(a, b))
    if a != a or b != b:
        return a != a and b != b
    return a == b or abs(a - b) <= tolerance * max(1.0, abs(a), abs(b))


def differences(name, found, expected, tolerance=1e-5):
    """Lines that say what differs: the lengths, or the first entries."""
    if len(found) != len(expected):
        return ['%s: %d entries, not %d' % (name, len(found), len(expected))]
    wrong = [i for i, (a, b) in enumerate(zip(found, expected)) if not near(a, b, tolerance)]
    lines = ['%s[%d]: %r, not %r' % (name, i, found[i], expected[i]) for i in wrong[:2]]
    return lines + (['%s: %d of %d differ' % (name, len(wrong), len(found))] if len(wrong) > 2 else [])


MOVES = [(0.0, 0.0, 0.0)] + [tuple(sign * (axis == k) for k in range(3)) for axis in range(3) for sign in (1.0, -1.0)]


SHIFTS = [(0.0, 15)] + [(2e-7, bits) for bits in range(16)]


def points(name, found, expect, count, delta):
    """Differences from expect(i), for each point.

    Where a value differs, expect(i, move, shift) is asked at points `delta` away and for ramps moved by single precision:
    a value is right as well if it lies within what these give, since the point stands at an edge or the slope is steep.
    """
    if len(found) != count:
        return ['%s: %d entries, not %d' % (name, len(found), count)]
    lines = []
    for i in range(count):
        expected = expect(i)
        if near(found[i], expected):
            continue
        around = [expect(i, tuple(delta * x for x in move), *shift) for move in MOVES for shift in SHIFTS]
        if not within(found[i], around):
            lines.append('%s[%d]: %r, not %r' % (name, i, found[i], expected))
    return lines[:2] + (['%s: %d of %d differ' % (name, len(lines), count)] if len(lines) > 2 else [])


def within(value, around):
    """Between the least and the greatest of the values around, in each number."""
    if isinstance(value, (tuple, list)):
        return all(within(x, list(column)) for x, column in zip(value, zip(*around)))
    if any(near(value, x) for x in around):
        return True
    low, high = min(around), max(around)
    margin = 2 * (high - low)                     # a neighbour may be moved further than ours
    return low - margin <= value <= high + margin


def grouped(flat, size):
    return [tuple(flat[i:i + size]) for i in range(0, len(flat), size)]


def run(scene, count):
    """Runs scene(rng) -> [differences] for each seed in a new file; exits with what went wrong."""
    first, last = 0, count - 1
    if os.environ.get('MIRK_SEEDS'):
        first, last = map(int, os.environ['MIRK_SEEDS'].split('-'))
    failures = []
    for seed in range(first, last + 1):
        mc.file(new=True, force=True)
        try:
            found = scene(random.Random(seed))
        except Exception:
            found = [traceback.format_exc()]
        failures += ['seed %d: %s' % (seed, line) for line in found]
    sys.exit('\n'.join(failures) if failures else 0)
