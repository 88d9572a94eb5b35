"""Sliders manager: the sliders of the scene, which are displayDriver nodes bound to attributes."""
import os

import maya.cmds as mc


class slidersManager_Mirk(object):
    def __init__(self):
        self.sDirectory = os.path.dirname(os.path.abspath(__file__))

    def main(self):
        """The displayDriver nodes of the scene, each with the attributes that it drives."""
        dcSliders = {}
        for sNode in mc.ls(type='displayDriver') or []:
            dcSliders[sNode] = mc.listConnections(sNode, source=False, destination=True, plugs=True) or []
        return dcSliders

    def gui(self):
        for sNode, lsPlugs in sorted(self.main().items()):
            print(sNode + ': ' + (', '.join(lsPlugs) or 'drives nothing'))

    def info(self):
        with open(os.path.join(self.sDirectory, 'slidersManager.hlp')) as stream:
            print(stream.read())
