"""Blend shapes manager: weights of blendShape and morph nodes, by name, and plug-ins that work on them."""
import maya.cmds as mc


class blendShapesManager_Mirk(object):
    types = ('blendShape', 'morph')

    def main(self):
        """Each deformer of the scene with its weights: {node: {target: weight}}."""
        dcNodes = {}
        for sType in self.types:
            for sNode in mc.ls(type=sType) or []:
                dcNodes[sNode] = self.weights(sNode)
        return dcNodes

    def weights(self, sNode):
        if not mc.attributeQuery('weight', node=sNode, exists=True):
            return {}
        dcWeights = {}
        for iTarget in mc.getAttr(sNode + '.weight', multiIndices=True) or []:
            sPlug = '%s.weight[%d]' % (sNode, iTarget)
            dcWeights[mc.aliasAttr(sPlug, query=True) or 'weight[%d]' % iTarget] = mc.getAttr(sPlug)
        return dcWeights

    def plugins(self):
        """The plug-ins of plugins.py: classes with a name and run(manager, node)."""
        import plugins
        return [item for item in vars(plugins).values() if isinstance(item, type) and hasattr(item, 'run')]

    def runPlugin(self, sName, sNode):
        for plugin in self.plugins():
            if plugin.__name__ == sName:
                return plugin().run(self, sNode)
        raise ValueError('mirk:blendShapesManager:error: No plug-in named ' + sName)

    def gui(self):
        for sNode, dcWeights in sorted(self.main().items()):
            for sTarget, fWeight in dcWeights.items():
                print('%s.%s %g' % (sNode, sTarget, fWeight))

    def info(self):
        print(__doc__)


Gui = blendShapesManager_Mirk
