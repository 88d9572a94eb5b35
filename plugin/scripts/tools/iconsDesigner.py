"""Icons designer: reads and writes the icons configuration file (icons.cfg) of displayDriver nodes."""
import os


class Element(object):
    """A drawable shape. Types: 0 polygon, 1 closed line, 2 separate lines. 2D points are pixels at scale 1."""

    maxValues = 90

    def __init__(self):
        self.a = 1.0          # alpha
        self.t = 1            # type
        self.w = 1.0          # line width
        self.slw = True       # line width scales with the icon
        self.aa = True        # antialias
        self.o = False        # takes the selection colour when selected
        self.is3D = False
        self._points = []
        self._color = [0.0, 0.0, 0.0]

    def addPoint(self, *values):
        nValues = 3 if self.is3D else 2
        if len(values) != nValues:
            raise ValueError('Element is %dD, exactly %d coordinates should be provided.' % (nValues, nValues))
        for value in values:
            if not isinstance(value, float):
                raise TypeError('Point coordinates should be of type float.')
            if len(self._points) >= self.maxValues:
                raise ValueError('Maximum number of %d point coordinates reached.' % self.maxValues)
            self._points.append(value)

    def points(self):
        return list(self._points)

    def color(self):
        return list(self._color)

    def setColor(self, r, g, b):
        self._color = [float(r), float(g), float(b)]


def _floats(nExact, nMin=0):
    """Reader of float values: an exact number of them, or at least nMin."""
    def read(lsValues):
        if (nExact and len(lsValues) != nExact) or len(lsValues) < nMin or len(lsValues) > Element.maxValues:
            raise ValueError
        return [float(sValue) for sValue in lsValues]
    return read


def _choice(sAllowed):
    def read(lsValues):
        if len(lsValues) != 1 or lsValues[0] not in sAllowed.split():
            raise ValueError
        return int(lsValues[0])
    return read


class Core(object):
    """Elements by name and icons (lists of element names) by index."""

    # tag, field of Element, reader, writer, explanation; in the order in which a line is asked for its tag
    tags = (
        ('<points>', '_points', _floats(0, 2), lambda v: ' '.join(str(f) for f in v),
         'coordinates, at most 90 values: pairs if 2D, triples if 3D'),
        ('<color>', '_color', _floats(3), lambda v: ' '.join(str(f) for f in v), 'red, green, blue'),
        ('<alpha>', 'a', lambda v: _floats(1)(v)[0], str, 'opacity'),
        ('<type>', 't', _choice('0 1 2'), str, '0 - GL_POLYGON, 1 - GL_LINE_LOOP, 2 - GL_LINES'),
        ('<width>', 'w', lambda v: _floats(1)(v)[0], str, 'line width, ignored if type is 0'),
        ('<scalable_lines_width>', 'slw', lambda v: bool(_choice('0 1')(v)), lambda v: str(int(v)),
         '1 - the line width scales with the icon'),
        ('<antialias>', 'aa', lambda v: bool(_choice('0 1')(v)), lambda v: str(int(v)), '1 - smooth edges'),
        ('<outline>', 'o', lambda v: bool(_choice('0 1')(v)), lambda v: str(int(v)),
         '1 - takes the selection color when the icon is selected'),
        ('<is3D>', 'is3D', lambda v: bool(_choice('0 1')(v)), lambda v: str(int(v)), '0 - 2D element, 1 - 3D element'),
    )
    explained = ('<points>', '<color>', '<alpha>', '<antialias>', '<width>', '<scalable_lines_width>', '<type>',
                 '<outline>', '<is3D>')

    def __init__(self):
        self.elements = {}
        self.icons = {}

    def load(self, sFilePath):
        """Adds what the file defines; faulty lines are told with their number and leave the default."""
        if not isinstance(sFilePath, str):
            raise TypeError('Input argument should be of type string or unicode.')
        if not os.path.isfile(sFilePath):
            raise IOError('File not found: ' + sFilePath)
        with open(sFilePath) as stream:
            lsLines = [sLine.strip() for sLine in stream]
        element = None
        for iLine, sLine in enumerate(lsLines, 1):
            if not sLine or sLine.startswith('//'):
                continue
            if '<element>' in sLine:
                element = self._newElement(sLine, iLine)
            elif '<icon>' in sLine:
                element = None
            elif element is not None:
                self._readTag(element, sLine, iLine)
        self._readIcons(lsLines)
        print('Loaded file: ' + sFilePath)

    def save(self, sFilePath, bQuiet=False):
        """Writes all elements and icons; nothing is written if an icon names no element."""
        dcTags = {tag[0]: tag for tag in self.tags}
        lsLines = ['// elements', '']
        lsLines += ['// %s %s' % (sTag, dcTags[sTag][4]) for sTag in self.explained] + ['']
        for sName, element in self.elements.items():
            lsLines.append('<element> ' + sName)
            lsLines += ['\t%s %s' % (sTag, write(getattr(element, sField)))
                        for sTag, sField, _, write, _ in self.tags]
            lsLines.append('')
        lsLines += ['// icons', '']
        for iIcon in sorted(self.icons):
            for sName in self.icons[iIcon]:
                if sName not in self.elements:
                    raise ValueError('Icon [%d] contains invalid element name: %s' % (iIcon, sName))
            lsLines.append('<icon> ' + ' '.join(self.icons[iIcon]))
        with open(sFilePath, 'w') as stream:
            stream.write('\n'.join(lsLines) + '\n')
        if not bQuiet:
            print('Result: ' + sFilePath)

    def _newElement(self, sLine, iLine):
        sName = sLine.replace('<element>', '').strip()
        if not sName or ' ' in sName:
            print('Line %d: invalid element.' % iLine)
            return None
        self.elements[sName] = Element()
        return self.elements[sName]

    def _readTag(self, element, sLine, iLine):
        for sTag, sField, read, _, _ in self.tags:
            if sTag not in sLine:
                continue
            try:
                setattr(element, sField, read(sLine.replace(sTag, '').split()))
            except ValueError:
                print('Line %d: invalid element.' % iLine)
                if sTag == '<points>':
                    element._points = []
            return

    def _readIcons(self, lsLines):
        iIcon = 0
        for iLine, sLine in enumerate(lsLines, 1):
            if '<icon>' not in sLine or sLine.startswith('//'):
                continue
            lsNames = sLine.replace('<icon>', '').split()
            for sName in lsNames:
                if sName not in self.elements:
                    print('Line %d: icon contains invalid element name: %s' % (iLine, sName))
            self.icons[iIcon] = lsNames
            iIcon += 1


class iconsDesigner_Mirk(object):
    """The tool: loads the file beside its own source, and lists or edits what it holds."""

    def __init__(self):
        self.core = Core()
        # the source is gone once it is imported; the files it reads stay in its directory
        self.sDirectory = os.path.dirname(os.path.abspath(__file__))

    def main(self):
        sPath = os.path.join(self.sDirectory, 'icons.cfg')
        if os.path.isfile(sPath):
            self.core.load(sPath)
        return self.core

    def gui(self):
        self.main()
        for iIcon in sorted(self.core.icons):
            print('%d: %s' % (iIcon, ' '.join(self.core.icons[iIcon])))

    def info(self):
        with open(os.path.join(self.sDirectory, 'iconsDesigner.hlp')) as stream:
            print(stream.read())
