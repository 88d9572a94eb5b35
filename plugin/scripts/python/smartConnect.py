# Connections that two nodes suggest by their attribute names.


class smartConnect_Mirk(object):
    """Connects the array outputs of one node to the inputs of the same meaning of another."""

    def __init__(self):
        self.lsPairs = []

    def initialize(self):
        """Forgets what was connected before."""
        self.lsPairs = []

    def main(self):
        lsNodes = mc.ls(selection=True) or []
        if len(lsNodes) < 2:
            print('mirk:smartConnect:warning: Select the source and the target node.')
            return []
        return self.connect(lsNodes[0], lsNodes[1])

    def gui(self):
        self.info()

    def info(self):
        for sFrom, sTo in self.lsPairs:
            print(sFrom + ' -> ' + sTo)

    def pairs(self, sSource, sTarget):
        """Pairs of plugs: the attribute of the same name, else in... for out...."""
        lsPairs = []
        for sAttr in mc.listAttr(sSource, readable=True, string='out*PP') or []:
            for sInput in (sAttr, 'in' + sAttr[len('out'):]):
                if mc.attributeQuery(sInput, node=sTarget, exists=True) and \
                        mc.attributeQuery(sInput, node=sTarget, writable=True):
                    lsPairs.append((sSource + '.' + sAttr, sTarget + '.' + sInput))
                    break
        return lsPairs

    def connect(self, sSource, sTarget):
        for sFrom, sTo in self.pairs(sSource, sTarget):
            mirk().connectAttr(sFrom, sTo)
            self.lsPairs.append((sFrom, sTo))
        return self.lsPairs
