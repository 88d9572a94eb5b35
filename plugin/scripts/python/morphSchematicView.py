# Schematic view of morph nodes.


class MorphSchematicView(object):
    """Which geometry each morph node deforms and how many targets it has."""

    def __init__(self):
        self.dcNodes = {}

    def initialize(self):
        """Reads the scene anew."""
        self.dcNodes = {}
        for sNode in mc.ls(type='morph') or []:
            self.dcNodes[sNode] = (self._geometry(sNode), self._targetCount(sNode))

    def main(self):
        self.gui()

    def gui(self):
        self.initialize()
        self.info()

    def info(self):
        for sNode in sorted(self.dcNodes):
            lsGeometry, nTargets = self.dcNodes[sNode]
            print('%s: %s, %d target(s)' % (sNode, ', '.join(lsGeometry) or 'no geometry', nTargets))

    def _geometry(self, sNode):
        return mc.listConnections(sNode + '.outputGeometry', source=False, destination=True, shapes=True) or []

    def _targetCount(self, sNode):
        if not mc.attributeQuery('targets', node=sNode, exists=True):
            return 0
        return len(mc.getAttr(sNode + '.targets', multiIndices=True) or [])
