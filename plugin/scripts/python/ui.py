# The main menu.


class ui_Mirk(object):
    """Builds the menu of the toolkit under the host's main window."""

    menuLabel = 'Mirk'

    # entries that open something instead of creating a node: label and command
    nodeCommands = {
        'gpuCacher': ('interactiveCachingSystem-GPU', 'igpucs_Mirk().gui()'),
        'blendShapesManager': ('blendShapesManager', 'blendShapesManager.blendShapesManager_Mirk().gui()'),
    }
    toolCommands = (
        ('icons designer', 'mirk().loadIconsDesignerGui()'),
        ('sliders manager', 'mirk().loadSlidersManagerGui()'),
        ('scripts manager', 'mirk().loadScriptsManagerGui()'),
        ('deltas (print info)', 'mirk().deltasInfo()'),
    )

    def initialize(self):
        """Makes the menu anew. A host without menus and a plug-in that is not loaded leave nothing to do."""
        if not _hasCommands_Mirk('menu', 'menuItem', 'window'):
            return
        sWindow = mm.eval('global string $gMainWindow; $sMirkWindow = $gMainWindow;')
        if not sWindow or not mc.window(sWindow, exists=True):
            return
        for sMenu in mc.window(sWindow, query=True, menuArray=True) or []:
            if mc.menu(sMenu, query=True, label=True) == self.menuLabel:
                mc.deleteUI(sMenu)
        if not mirk().nodeTypes():
            return
        self.create(mc.menu(label=self.menuLabel, parent=sWindow, tearOff=True))

    def create(self, sMenu):
        sNodes = mc.menuItem(label='Mirk nodes', parent=sMenu, subMenu=True, tearOff=True, image='Mirk.xpm')
        self.addNodeItems(sNodes)
        sTools = mc.menuItem(label='Mirk tools', parent=sMenu, subMenu=True, tearOff=True, image='Mirk_tools.xpm')
        self.addToolItems(sTools)

    def addNodeItems(self, sMenu, bIcons=True):
        lsLeaveOut = ('outline', 'morphAssembly', 'boundingObjectManip') if bIcons else ('morphAssembly',)
        for sType in mirk().menuNodeTypes(lsLeaveOut):
            sLabel, sCommand = self.nodeCommands.get(sType, (sType, "mirk().create('%s')" % sType))
            kwIcon = {'image': sType + '.xpm'} if bIcons else {}
            mc.menuItem(label=sLabel, parent=sMenu, command=sCommand, **kwIcon)

    def addToolItems(self, sMenu, bIcons=True):
        for sLabel, sCommand in self.toolCommands:
            mc.menuItem(label=sLabel, parent=sMenu, command=sCommand)
