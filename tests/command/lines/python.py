# maya.cmds: arguments of every shape, values and their types, keyword errors.

# scene: nodes
mc.createNode('transform', n='a')  # expect: 'a'
mc.createNode('transform', name=u'b\u00e9'.replace(u'\u00e9', 'e'), parent='a', skipSelect=True)  # expect: 'be'
mc.polyCube(n='box', w=2)  # expect: ['box', 'polyCube1']
mc.polyCube('polyCube1', q=True, w=True)  # expect: 2.0
mc.polyCube('polyCube1', e=True, sx=3)
mc.polyEvaluate('box', v=True)  # expect: 16
sorted(mc.polyEvaluate('box', v=True, f=True).items())  # expect: [('face', 14), ('vertex', 16)]
mc.ls('a', 'be')  # expect: ['a', 'be']
mc.ls(['a', 'box'])  # expect: ['a', 'box']
mc.ls(('a', 'box'), type='transform')  # expect: ['a', 'box']
mc.ls('zork')  # expect: []
mc.ls(type=['mesh', 'polyCube'])  # expect: ['boxShape', 'polyCube1']
mc.listRelatives('a', c=True)  # expect: ['be']
mc.listRelatives('be', c=True)  # expect: None
mc.listRelatives('a', p=True)  # expect: None
mc.listConnections('boxShape')  # expect: ['polyCube1']
mc.listConnections('a')  # expect: None
mc.objExists('a')  # expect: True
mc.objExists('zork')  # expect: False
mc.nodeType('box')  # expect: 'transform'
mc.rename('be', 'bee')  # expect: 'bee'
mc.duplicate('a', rr=True)  # expect: ['a1']
mc.parent('bee', w=True)  # expect error: More than one object matches name: bee
mc.parent('a|bee', w=True)  # expect: ['|bee']
mc.group('|bee', 'a', n='g')  # expect: 'g'
mc.group(em=True)  # expect: 'group1'
mc.delete(['a1', 'group1'])  # expect: None
mc.select('a', 'box')  # expect: None
mc.ls(sl=True)  # expect: ['a', 'box']
mc.select(['box.vtx[0:2]', 'a'], r=True)
mc.ls(selection=True, flatten=True)  # expect: ['box.vtx[0]', 'box.vtx[1]', 'box.vtx[2]', 'a']
mc.select(clear=True)
mc.ls(sl=True)  # expect: []
mc.listHistory('box')  # expect: ['boxShape', 'polyCube1']
mc.spaceLocator(p=(1, 2, 3), n='loc')  # expect: ['loc']
mc.createNode('zorkNode')  # expect error: zorkNode
mc.createNode()  # expect error: createNode
mc.delete('nobody')  # expect error: nobody
mc.ls(zork=True)  # expect error: zork
mc.polyCube(w='wide')  # expect error: w
mc.polyCube(w=(1, 2))  # expect error: w
mc.zorkCommand()  # expect error: zorkCommand
mc.select(None)  # expect error: select
mc.objectType('box', isType='transform')  # expect: True
mc.nodeType('box', inherited=True)[-1]  # expect: 'transform'

# scene: attributes
mc.createNode('network', n='n') and mc.createNode('transform', n='t')
mc.addAttr('n', ln='d', at='double', dv=1.5, min=0, max=9, k=True)  # expect: None
mc.getAttr('n.d')  # expect: 1.5
mc.setAttr('n.d', 2)  # expect: None
mc.getAttr('n.d')  # expect: 2.0
mc.addAttr('n', ln='i', at='long')
mc.getAttr('n.i')  # expect: 0
mc.addAttr('n', ln='flag', at='bool')
mc.getAttr('n.flag')  # expect: False
mc.setAttr('n.flag', True)
mc.getAttr('n.flag')  # expect: True
mc.addAttr('n', ln='s', dt='string')
mc.setAttr('n.s', u'gr\u00fc\u00dfe', type='string')
mc.getAttr('n.s') == u'gr\u00fc\u00dfe'  # expect: True
mc.setAttr('n.s', '', type='string')
mc.getAttr('n.s')  # expect: ''
mc.addAttr('n', ln='e', at='enum', en='x:y:z')
mc.setAttr('n.e', 1)
mc.getAttr('n.e')  # expect: 1
mc.getAttr('n.e', asString=True)  # expect: 'y'
mc.setAttr('t.t', 1, 2, 3)
mc.getAttr('t.t')  # expect: [(1.0, 2.0, 3.0)]
mc.getAttr('t.translate')[0][1]  # expect: 2.0
mc.setAttr('t.translate', 4, 5, 6, type='double3')
mc.setAttr('t.translate', *(7, 8, 9))
mc.getAttr('t.tz')  # expect: 9.0
mc.getAttr('t.v')  # expect: True
mc.getAttr('t.matrix')  # expect: [1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 7.0, 8.0, 9.0, 1.0]
mc.addAttr('n', ln='da', dt='doubleArray')
mc.setAttr('n.da', [1.5, 2, 3], type='doubleArray')
mc.getAttr('n.da')  # expect: [1.5, 2.0, 3.0]
mc.setAttr('n.da', [], type='doubleArray')
mc.getAttr('n.da')  # expect: []
mc.addAttr('n', ln='va', dt='vectorArray')
mc.setAttr('n.va', 2, (1, 2, 3), (4, 5, 6), type='vectorArray')
mc.getAttr('n.va')  # expect: [(1.0, 2.0, 3.0), (4.0, 5.0, 6.0)]
mc.addAttr('n', ln='sa', dt='stringArray')
mc.setAttr('n.sa', 2, 'a b', 'c', type='stringArray')
mc.getAttr('n.sa')  # expect: ['a b', 'c']
mc.addAttr('n', ln='ia', dt='Int32Array')
mc.setAttr('n.ia', [3, 4], type='Int32Array')
mc.getAttr('n.ia')  # expect: [3, 4]
mc.addAttr('n', ln='m', at='double', multi=True)
mc.setAttr('n.m[3]', 4)
mc.getAttr('n.m', mi=True)  # expect: [3]
mc.getAttr('n.m[3]')  # expect: 4.0
mc.getAttr('n.d', lock=True)  # expect: False
mc.getAttr('n.d', type=True)  # expect: 'double'
mc.getAttr('n.d', settable=True)  # expect: True
mc.setAttr('n.d', lock=True)
mc.setAttr('n.d', 3)  # expect error: n.d
mc.setAttr('n.d', l=0)
mc.connectAttr('t.tx', 'n.d')  # expect: 'Connected t.translateX to n.d.'
mc.isConnected('t.tx', 'n.d')  # expect: True
mc.connectionInfo('n.d', sourceFromDestination=True)  # expect: 't.translateX'
mc.connectionInfo('t.tx', destinationFromSource=True)  # expect: ['n.d']
mc.connectionInfo('t.ty', destinationFromSource=True)  # expect: []
mc.connectionInfo('t.ty', sfd=True)  # expect: ''
mc.listConnections('n.d', p=True, c=True)  # expect: ['n.d', 't.translateX']
mc.disconnectAttr('t.tx', 'n.d')
mc.setAttr('nobody.tx', 1)  # expect error: nobody
mc.setAttr('t.tx', 'word')  # expect error: word
mc.setAttr('t.tx', None)  # expect error: None
mc.setAttr('t.tx')  # expect error: tx
mc.getAttr('t.zork')  # expect error: zork
mc.getAttr()  # expect error: No attribute
mc.listAttr('n', ud=True)  # expect: ['d', 'i', 'flag', 's', 'e', 'da', 'va', 'sa', 'ia', 'm']
mc.listAttr('n', st='zork*')  # expect: None
mc.attributeQuery('d', n='n', min=True)  # expect: [0.0]
mc.attributeQuery('d', n='n', range=True)  # expect: [0.0, 9.0]
mc.attributeQuery('zork', n='n', exists=True)  # expect: False
mc.attributeQuery('e', n='n', listEnum=True)  # expect: ['x:y:z']
mc.attributeQuery('t', n='t', listChildren=True)  # expect: ['translateX', 'translateY', 'translateZ']
mc.addAttr('n.d', q=True, min=True)  # expect: 0.0
mc.addAttr('n.d', q=True, ln=True)  # expect: 'd'
mc.addAttr('n.zork', q=True, exists=True)  # expect: False
mc.aliasAttr('nick', 'n.d')
mc.aliasAttr('n', q=True)  # expect: ['nick', 'd']
mc.deleteAttr('n', at='d')
mc.deleteAttr('n.zork')  # expect error: zork

# scene: transforms and geometry
mc.polyPlane(n='p', w=2, h=2, sx=1, sy=1)  # expect: ['p', 'polyPlane1']
mc.xform('p', ws=True, t=(1, 2, 3))  # expect: None
mc.xform('p', q=True, ws=True, t=True)  # expect: [1.0, 2.0, 3.0]
mc.xform('p', t=[0, 0, 0], s=[2, 1, 1])
mc.xform('p', q=True, ws=True, bb=True)  # expect: [-2.0, 0.0, -1.0, 2.0, 0.0, 1.0]
mc.xform('p', q=True, roo=True)  # expect: 'xyz'
mc.exactWorldBoundingBox('p')  # expect: [-2.0, 0.0, -1.0, 2.0, 0.0, 1.0]
mc.pointPosition('p.vtx[3]')  # expect: [2.0, 0.0, -1.0]
mc.move(1, 0, 0, 'p.vtx[3]', r=True)
mc.pointPosition('p.vtx[3]')  # expect: [3.0, 0.0, -1.0]
mc.move(5, 'p', y=True)
mc.getAttr('p.ty')  # expect: 5.0
mc.rotate(0, '90deg', 0, 'p', a=True)
round(mc.getAttr('p.ry'), 6)  # expect: 90.0
mc.scale(1, 1, 1, 'p', a=True)
mc.getAttr('p.s')  # expect: [(1.0, 1.0, 1.0)]
mc.polyListComponentConversion('p.f[0]', tv=True)  # expect: ['p.vtx[0:3]']
mc.filterExpand('p.vtx[0:1]', sm=31)  # expect: ['p.vtx[0]', 'p.vtx[1]']
mc.filterExpand('p', sm=31)  # expect: None
mc.polyColorPerVertex('p.vtx[0]', rgb=(1, 0.5, 0))
mc.polyColorPerVertex('p.vtx[0]', q=True, rgb=True)  # expect: [1.0, 0.5, 0.0]
mc.polyColorSet('p', q=True, allColorSets=True)  # expect: ['colorSet1']
mc.polyUVSet('p', q=True, auv=True)  # expect: ['map1']
mc.polyEditUV('p.map[0]', q=True)  # expect: [0.0, 0.0]
mc.polyInfo('p', fn=True)  # expect: ['FACE_NORMAL      0: 0.000000 1.000000 0.000000\n']
mc.curve(d=1, p=[(0, 0, 0), (3, 4, 0)])  # expect: 'curve1'
mc.arclen('curve1')  # expect: 5.0
mc.curve(d=1, p=[(0, 0, 0), (3, 4)])  # expect error: p
mc.circle(n='c', r=2)  # expect: ['c', 'makeNurbCircle1']
mc.circle('c', q=True, r=True)  # expect: 2.0
mc.particle(p=[(0, 0, 0), (1, 1, 1)], n='dust')  # expect: ['dust', 'dustShape']
mc.particle('dustShape', q=True, ct=True)  # expect: 2

# scene: animation, sets, session
mc.createNode('transform', n='t')  # expect: 't'
mc.setKeyframe('t', at='tx', t=1, v=0)  # expect: 1
mc.setKeyframe('t', attribute=['tx', 'ty'], time=11, value=10)  # expect: 2
mc.setKeyframe('t.tz', t=[1, 5, 9], v=3)  # expect: 3
mc.keyframe('t.tx', q=True, tc=True)  # expect: [1.0, 11.0]
mc.keyframe('t.tx', q=True, vc=True)  # expect: [0.0, 10.0]
mc.keyframe('t.tx', q=True, kc=True)  # expect: 2
mc.keyframe('t.rx', q=True, tc=True)  # expect: None
mc.keyframe('t.tx', q=True, t=(0, 5), tc=True)  # expect: [1.0]
mc.keyTangent('t.tx', q=True, itt=True)[0] in ('auto', 'spline', 'linear')  # expect: True
mc.cutKey('t', at='tx', t=(1, 1), cl=True)  # expect: 1
mc.currentTime(5)  # expect: 5.0
mc.currentTime(q=True)  # expect: 5.0
mc.getAttr('t.ty', t=11)  # expect: 10.0
mc.playbackOptions(q=True, min=True)  # expect: 1.0
mc.currentUnit(q=True, l=True)  # expect: 'cm'
mc.sets('t', n='s')  # expect: 's'
mc.sets('s', q=True)  # expect: ['t']
mc.sets('t', im='s')  # expect: True
mc.sets('t', rm='s')  # expect: 's'
mc.undoInfo(q=True, state=True)  # expect: True
mc.optionVar(sv=('pyA', 'x'))
mc.optionVar(q='pyA')  # expect: 'x'
mc.optionVar(ex='pyA')  # expect: True
mc.optionVar(remove='pyA')
mc.optionVar(ex='pyA')  # expect: False
mc.file(q=True, sceneName=True)  # expect: ''
mc.file('{folder}/none.ma', o=True, f=True)  # expect error: none.ma
mc.about(batch=True) in (True, False)  # expect: True
mm.eval('1 + 2')  # expect: 3
mm.eval('float $pyF = 1.5; $pyF')  # expect: 1.5
mm.eval('ls -type transform "t"')  # expect: ['t']
mm.eval('string $pyE[]; $pyE = $pyE')  # expect: []
mm.eval('zork 1')  # expect error: zork
mm.eval('<<1, 2, 3>>')  # expect: (1.0, 2.0, 3.0)
mc.getAttr('t.tz', time='5')  # expect: 3.0
