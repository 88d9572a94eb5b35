# Interactive caching system for gpuCacher nodes.


class igpucs_Mirk(object):
    """Keeps gpuCacher nodes in step with the scene: a scene that was opened or begun has nothing cached."""

    events = ('SceneOpened', 'NewSceneOpened')
    command = 'igpucs_Mirk().resetCaches()'

    def main(self):
        self.gui()

    def gui(self):
        self.info()

    def info(self):
        lsNodes = mc.ls(type='gpuCacher') or []
        print('interactive caching system: %d gpuCacher node(s), %d script job(s)' % (len(lsNodes), len(self.jobs())))

    def activate(self):
        """Adds the script jobs that are not there yet."""
        if not _hasCommands_Mirk('scriptJob'):
            return
        lsRunning = [sJob for sJob in mc.scriptJob(listJobs=True) or [] if self.command in sJob]
        for sEvent in self.events:
            if not any(sEvent in sJob.replace("'", '"').split('"') for sJob in lsRunning):
                mc.scriptJob(event=[sEvent, 'python("%s")' % self.command])

    def deactivate(self):
        for iJob in self.jobs():
            mc.scriptJob(kill=iJob, force=True)

    def jobs(self):
        """Numbers of the script jobs of this tool."""
        if not _hasCommands_Mirk('scriptJob'):
            return []
        return [int(sJob.split(':')[0]) for sJob in mc.scriptJob(listJobs=True) or [] if self.command in sJob]

    def resetCaches(self):
        for sNode in mc.ls(type='gpuCacher') or []:
            if mc.attributeQuery('resetCache', node=sNode, exists=True):
                mc.setAttr(sNode + '.resetCache', True)
