# Outlines in the viewport.


class Outline_Mirk(object):
    """Switches the outline of selected meshes on and off. One outline node serves the scene."""

    def __init__(self):
        self.sNode = ''

    def activate(self):
        if not self.isActive():
            self.sNode = mc.createNode('outline', name='outlineShape#', skipSelect=True)
        return self.sNode

    def deactivate(self):
        """Takes the node out of the scene; nothing happens if there is none."""
        if self.isActive():
            lsParents = mc.listRelatives(self.sNode, parent=True, fullPath=True)
            mc.delete(lsParents or self.sNode)
        self.sNode = ''

    def isActive(self):
        return bool(self.sNode) and mc.objExists(self.sNode)

    def info(self):
        print('outline: ' + ('active, ' + self.sNode if self.isActive() else 'not active'))
