"""Scripts manager: small scripts kept under a name in the scene, so that they travel with it."""
import maya.cmds as mc


class scriptsManager_Mirk(object):
    """Scripts are string attributes of one network node."""

    node = 'mirkScripts'

    def main(self):
        """Names of the scripts in the scene, sorted."""
        if not mc.objExists(self.node):
            return []
        return sorted(mc.listAttr(self.node, userDefined=True) or [])

    def add(self, sName, sText):
        """Keeps a text under a name; a name that is in use gets the new text."""
        if not mc.objExists(self.node):
            mc.createNode('network', name=self.node, skipSelect=True)
        if not mc.attributeQuery(sName, node=self.node, exists=True):
            mc.addAttr(self.node, longName=sName, dataType='string')
        mc.setAttr(self.node + '.' + sName, sText, type='string')

    def text(self, sName):
        return mc.getAttr(self.node + '.' + sName)

    def remove(self, sName):
        mc.deleteAttr(self.node + '.' + sName)

    def run(self, sName):
        exec(self.text(sName), {'__name__': sName, 'mc': mc})

    def gui(self):
        for sName in self.main():
            print(sName)

    def info(self):
        print(self.__doc__)
