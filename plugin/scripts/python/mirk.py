# The toolkit class. Everything in this block lives in the interpreter's top-level namespace, where menu commands and
# the loader reach it by bare name.
import os
import sys
from importlib import reload

import maya.cmds as mc
import maya.mel as mm


def _hasCommands_Mirk(*names):
    """True if the host offers all of these commands; a host without a user interface lacks those that build one."""
    return all(hasattr(mc, name) for name in names)


class mirk(object):
    """Creates the toolkit's nodes with the wiring that the selection suggests, connects them, serves the shelf."""

    pluginName = 'mirk'

    # made without wiring
    plainTypes = (
        'arrayToArray', 'objGrpToCompList', 'arrayToMulti', 'remapArray', 'timeOffset', 'multiToArray',
        'arrayToDynArrays', 'rgbaToColorAndAlpha', 'pfxToArray', 'arrayToTexture2D', 'voronoiTexture3D',
        'pointCloudToMultiCurve', 'componentToComponent', 'splitRgba', 'arrayBlend', 'createArray', 'resizeArray',
        'transformsToArrays', 'combineArrays', 'multiRemapValue', 'arrayExpression', 'extractor',
        'colorAndAlphaToRgba', 'stickyCurves', 'displayDriver', 'morphAssembly', 'mergeArrays', 'mergeVectorArrays',
        'randomizeArray', 'faceCenters')

    # made as another type
    standIns = {'arrayToPointColor': 'arrayToPointAttribute', 'convexHull': 'tetrahedralize'}

    # made next to each selected object that publishes one of genericSources, then wired by genericPairs
    genericTypes = (
        'displayComponents', 'componentGroup', 'point', 'pointAttributeToArray', 'mapToMesh', 'edgeAttributeToArray',
        'computeVelocity', 'componentsToComponents', 'compListToObjGrp', 'cage', 'bound', 'blurPointAttribute',
        'attributeTransfer', 'arrayToPointColor', 'mesh2arrays', 'meshToMap', 'multiAttributeTransfer',
        'pointCloudToCurve', 'pointCloudToMesh', 'pointsOnMeshInfo', 'rayProject', 'retarget', 'scatter', 'shell',
        'tensionMap', 'tensionMapSimple', 'textureToArray', 'voxelGrid', 'copier', 'frameCacher', 'frameCacheTracker',
        'arrayDataContainer', 'audioToArray')
    genericSources = (
        'outPositionPP', 'outPositionPV', 'worldMesh', 'worldSpace', 'outGeometry', 'outComponents', 'outWeightPP',
        'outNormalPP', 'outVelocityPP', 'outRgbaPP', 'outColorPP', 'outSharedMapPP', 'outRadiusPP', 'positionArray')
    # tried in this order; a pair that the two nodes do not allow fails without a word, so the order is the logic
    genericPairs = (
        (('outPositionPP', 'positionArray', 'outPositionPV'), ('inGeometry',)),
        (('worldMesh',), ('inMesh', 'inputMesh', 'inGeometry')),
        (('worldSpace', 'outGeometry'), ('inGeometry',)),
        (('outComponents',), ('inComponents',)),
        (('outPositionPP', 'worldPosition', 'outPositionPV'), ('inPositionPP',)),
        (('outWeightPP',), ('inWeightPP',)),
        (('outNormalPP', 'worldVelocity', 'outVelocityPV'), ('inNormalPP',)),
        (('outVelocityPP', 'outVelocityPV', 'worldVelocity'), ('inVelocityPP',)),
        (('outRgbaPP', 'outRgbPP', 'outColorPP', 'outRgbPV', 'rgbPP'), ('inRgbaPP', 'inRgbPP')),
        (('outSharedMapPP',), ('inSharedMapPP',)),
        (('outRadiusPP',), ('inRadiusPP',)))
    genericMeshes = {'bound': 'outGeometry', 'mapToMesh': 'outMesh', 'pointCloudToMesh': 'outMesh',
                     'copier': 'outputMesh'}

    def scriptPath(self):
        """Directory of the tools' files, with a trailing slash; it stands first in sys.path afterwards."""
        sPath = os.environ.get('MIRK_SCRIPT_PATH')
        if sPath is not None and not os.path.isdir(sPath):
            print('WARNING: Environment variable MIRK_SCRIPT_PATH points to invalid directory: ' + sPath)
            sPath = None
        if sPath is None:
            sPath = mc.internalVar(userScriptDir=True)
        sPath = os.path.abspath(sPath).replace('\\', '/')
        while sPath in sys.path:
            sys.path.remove(sPath)
        sys.path.insert(0, sPath)
        return sPath if sPath.endswith('/') else sPath + '/'

    def nodeTypes(self):
        """The plug-in's node types; empty while it is not loaded."""
        try:
            return mc.pluginInfo(self.pluginName, query=True, dependNode=True) or []
        except Exception:
            return []

    def menuNodeTypes(self, lsLeaveOut):
        """The node types as menus list them: sorted, with the two tools that are listed beside them."""
        lsTypes = [sType for sType in self.nodeTypes() if sType not in lsLeaveOut]
        return sorted(lsTypes + ['blendShapesManager', 'pyExpression'])

    # shelf

    def updateShelfMenus(self, sShelfName='mirk', parent=None):
        """Attaches the pop-up menus to the first buttons of the shelf: the nodes, then the tools."""
        bShelf = _hasCommands_Mirk('shelfLayout', 'popupMenu', 'menuItem') and mc.shelfLayout(sShelfName, exists=True)
        if not bShelf:
            if not mc.about(batch=True):
                print('mirk:updateShelfMenus:warning: Shelf does not exist: ' + sShelfName)
            return
        lsButtons = (mc.shelfLayout(sShelfName, query=True, childArray=True) or [])[:3]
        for sButton in lsButtons:
            for sMenu in mc.shelfButton(sButton, query=True, popupMenuArray=True) or []:
                mc.deleteUI(sMenu)
        lsFill = (ui_Mirk().addNodeItems, ui_Mirk().addToolItems)
        for sButton, fill in zip(lsButtons, lsFill):
            sMenu = mc.popupMenu(parent=sButton, button=1)
            fill(sMenu, bIcons=False)

    # nodes

    def create(self, sNodeType, bSkipSel=False, bForce=False):
        """Creates a node with its usual wiring; gives its name, or a list where there are several.

        bSkipSel leaves the selection as it is. Connections that the nodes do not allow are not made, without a word.
        """
        lsSelection = mc.ls(selection=True, long=True) or []
        sType = self.standIns.get(sNodeType, sNodeType)
        if sNodeType == 'boundingObject':
            return self._createBoundingObject(bSkipSel)
        if sNodeType in self.genericTypes:
            lsSources = [s for s in map(self._shape, lsSelection) if self._firstAttr(s, self.genericSources)]
            if lsSources:
                lsNodes = [self._createGeneric(sType, sSource, bSkipSel) for sSource in lsSources]
                print("mirk().create('%s')" % sType)
                return lsNodes[0] if len(lsNodes) == 1 else lsNodes
            return self._echo(sType, self._createWired(sType, bSkipSel))
        if sNodeType == 'shatter':
            lsMeshes = [s for s in map(self._shape, lsSelection) if self._firstAttr(s, ('worldMesh',))]
            if lsMeshes:
                lsNodes = [self._createShatter(sMesh, bSkipSel) for sMesh in lsMeshes]
                print("mirk().create('shatter')")
                return lsNodes[0] if len(lsNodes) == 1 else lsNodes
        sNode = mc.createNode(sType, skipSelect=bSkipSel)
        if sNodeType == 'convexHull':
            mc.setAttr(sNode + '.mode', 3)
        self._showInEditors(sNode, bSkipSel)
        return self._echo(sType, sNode)

    def connectAttr(self, sSrcNodeAttr, sTgtNodeAttr):
        """Connects; the target's present source gives way. Falls back to element 0 of the source."""
        for sPlug in (sSrcNodeAttr, sTgtNodeAttr):
            if not mc.objExists(sPlug):
                print('mirk:connectAttr:error: Object does not exist: ' + sPlug)
                return
        if self._isConnectedBoundingObject(sSrcNodeAttr, sTgtNodeAttr):
            return
        sPresent = mc.connectionInfo(sTgtNodeAttr, sourceFromDestination=True)
        if sPresent:
            mc.disconnectAttr(sPresent, sTgtNodeAttr)
        if not self._connects(sSrcNodeAttr, sTgtNodeAttr):
            mc.connectAttr(sSrcNodeAttr + '[0]', sTgtNodeAttr)

    def connectionEditor(self, sSrcNode, sTgtNode):
        """Opens the host's connection editor on the two nodes."""
        mm.eval('connectWindowWith "%s" "%s"' % (sSrcNode, sTgtNode))

    # one line each

    def loadIconsDesignerGui(self):
        sys.modules['iconsDesigner'].iconsDesigner_Mirk().gui()

    def loadSlidersManagerGui(self):
        sys.modules['slidersManager'].slidersManager_Mirk().gui()

    def loadScriptsManagerGui(self):
        sys.modules['scriptsManager'].scriptsManager_Mirk().gui()

    def deltasInfo(self):
        mc.deltas(h=True)

    # parts of create

    def _echo(self, sType, sNode):
        print('createNode ' + sType + ';')
        print('# Result: ' + sNode + ' #')
        return sNode

    def _showInEditors(self, sNode, bSkipSel):
        if bSkipSel or not _hasCommands_Mirk('hyperGraph', 'nodeEditor'):
            return
        if mc.hyperGraph('hyperGraphPanel1HyperGraphEd', exists=True):
            mc.hyperGraph('hyperGraphPanel1HyperGraphEd', edit=True, addDependNode=sNode)
        if mc.nodeEditor('nodeEditorPanel1NodeEditorEd', exists=True):
            mc.nodeEditor('nodeEditorPanel1NodeEditorEd', edit=True, addNode=sNode)

    def _createBoundingObject(self, bSkipSel):
        sShape = mc.createNode('boundingObject', name='boundingObjectShape#', skipSelect=bSkipSel)
        sParent = mc.listRelatives(sShape, parent=True, fullPath=True)[0]
        self._connects(sParent + '.worldMatrix', sShape + '.inParentMatrix')
        if not bSkipSel:
            mc.select(sParent, sShape)
        self._showInEditors(sShape, bSkipSel)
        self._echo('boundingObject', sShape)
        return [sParent, sShape]

    def _createWired(self, sType, bSkipSel):
        """As a shape with a numbered name if the type is one, else plain; with the time and the playback range."""
        lsBefore = set(mc.ls())
        sNode = mc.createNode(sType, name=sType + 'Shape#', skipSelect=bSkipSel)
        if not mc.objectType(sNode, isAType='shape'):
            mc.delete(list(set(mc.ls()) - lsBefore))
            sNode = mc.createNode(sType, skipSelect=bSkipSel)
        for sAttr in ('time', 'inTime', 'currentTime'):
            self._connects('time1.outTime', sNode + '.' + sAttr)
        for sAttr, sFlag in (('startTime', 'minTime'), ('endTime', 'maxTime')):
            if mc.attributeQuery(sAttr, node=sNode, exists=True):
                mc.setAttr(sNode + '.' + sAttr, mc.playbackOptions(query=True, **{sFlag: True}))
        self._showInEditors(sNode, bSkipSel)
        return sNode

    def _createGeneric(self, sType, sSource, bSkipSel):
        sNode = self._createWired(sType, bSkipSel)
        if self._firstAttr(sSource, ('worldMesh',)):
            self._connects(sSource + '.worldMatrix', sNode + '.inWorldMatrix')
        for lsFrom, lsTo in self.genericPairs:
            for sFrom in lsFrom:
                for sTo in lsTo:
                    self._connects(sSource + '.' + sFrom, sNode + '.' + sTo)
        if sType in self.genericMeshes:
            sMesh = mc.createNode('mesh', name=sNode + '_meshShape#', skipSelect=True)
            self._connects(sNode + '.' + self.genericMeshes[sType], sMesh + '.inMesh')
        return sNode

    def _createShatter(self, sMesh, bSkipSel):
        """Between what feeds the mesh, kept by an intermediate shape, and the mesh; a scatter on the same gives points."""
        sParent = mc.listRelatives(sMesh, parent=True, fullPath=True)[0]
        sOriginal = sParent + '|' + mc.createNode('mesh', name=sMesh.split('|')[-1] + 'Orig#', parent=sParent,
                                                  skipSelect=True).split('|')[-1]
        sSource = mc.connectionInfo(sMesh + '.inMesh', sourceFromDestination=True)
        mc.connectAttr(sSource or sMesh + '.outMesh', sOriginal + '.inMesh')
        if not sSource:   # without history: what the mesh holds now
            mc.polyEvaluate(sOriginal, vertex=True)
            mc.disconnectAttr(sMesh + '.outMesh', sOriginal + '.inMesh')
        mc.setAttr(sOriginal + '.intermediateObject', True)
        sScatter = self._createGeneric('scatter', sOriginal, True)
        sNode = mc.createNode('shatter', skipSelect=bSkipSel)
        self._connects(sOriginal + '.outMesh', sNode + '.inGeometry')
        self._connects(sScatter + '.outPositionPP', sNode + '.inPositionPP')
        self._connects(sMesh + '.worldInverseMatrix', sNode + '.inWorldInverseMatrix')
        mc.connectAttr(sNode + '.outGeometry', sMesh + '.inMesh', force=True)
        self._showInEditors(sNode, bSkipSel)
        return sNode

    def _shape(self, sObject):
        """The first shape of a transform that is no intermediate object; anything else as it is."""
        sObject = sObject.split('.')[0]
        if mc.objectType(sObject, isAType='transform'):
            lsShapes = mc.listRelatives(sObject, shapes=True, noIntermediate=True, fullPath=True) or []
            return lsShapes[0] if lsShapes else sObject
        return sObject

    def _firstAttr(self, sNode, lsAttrs):
        for sAttr in lsAttrs:
            if mc.attributeQuery(sAttr, node=sNode, exists=True):
                return sAttr
        return None

    def _connects(self, sFrom, sTo):
        """Tries a connection; False if the nodes do not allow it."""
        for sPlug in (sFrom, sTo):
            if not mc.objExists(sPlug):
                return False
        if mc.connectionInfo(sTo, isDestination=True):
            return False
        try:
            mc.connectAttr(sFrom, sTo)
        except Exception:
            return False
        return True

    def _isConnectedBoundingObject(self, sSrcNodeAttr, sTgtNodeAttr):
        sShape = self._shape(sSrcNodeAttr)
        if mc.objectType(sShape) != 'boundingObject':
            return False
        sArray = sTgtNodeAttr.rsplit('[', 1)[0]
        lsTargets = mc.listConnections(sShape + '.outData', source=False, destination=True, plugs=True) or []
        return any(sTarget.rsplit('[', 1)[0] == sArray for sTarget in lsTargets)
