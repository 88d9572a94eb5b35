"""Example plug-ins of the blend shapes manager: a class with run(manager, node)."""
import maya.cmds as mc


class zeroWeights(object):
    """Sets all weights of the node to 0."""

    def run(self, manager, sNode):
        for sTarget in manager.weights(sNode):
            mc.setAttr(sNode + '.' + sTarget, 0.0)


class activeTargets(object):
    """Names of the targets whose weight is not 0."""

    def run(self, manager, sNode):
        return [sTarget for sTarget, fWeight in manager.weights(sNode).items() if fWeight != 0.0]
