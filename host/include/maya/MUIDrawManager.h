#pragma once
#include <maya/MColor.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

class MColorArray;
class MPointArray;
class MString;
class MStringArray;
class MUintArray;
class MVectorArray;

namespace mirk::view { class Recorder; }

namespace MHWRender {

/// Draws simple shapes, text and icons. What is asked for between beginDrawable and endDrawable is drawn, with the state
/// that was set since beginDrawable; outside nothing is. Positions are in the object's space, those of the 2d forms in
/// pixels from the lower left of the viewport. Shapes are drawn as lines unless `filled`.
class MUIDrawManager
{
public:
    enum LineStyle { kSolid, kShortDotted, kShortDashed, kDashed, kDotted };
    enum PaintStyle { kFlat, kStippled, kShaded };
    enum Primitive { kPoints, kLines, kLineStrip, kClosedLine, kTriangles, kTriStrip };
    enum TextAlignment { kLeft, kCenter, kRight };
    enum Selectability { kNonSelectable, kSelectable, kAutomatic };

    explicit MUIDrawManager(mirk::view::Recorder& recorder) : recorder_(&recorder) {}
    MUIDrawManager(const MUIDrawManager&) = delete;
    MUIDrawManager& operator=(const MUIDrawManager&) = delete;

    void beginDrawable(Selectability selectability = kAutomatic, unsigned int selectionName = 0);
    void endDrawable();
    void beginDrawInXray();
    void endDrawInXray();

    void setColor(const MColor& color);
    /// A colour of the host's palette: 0 to 31.
    void setColorIndex(short index);
    void setPointSize(float pixels);
    void setLineWidth(float pixels);
    void setLineStyle(LineStyle style);
    void setLineStyle(unsigned int factor, unsigned short pattern);
    void setPaintStyle(PaintStyle style);
    void setDepthPriority(unsigned int priority);
    void setFontSize(unsigned int pixels);
    /// There is one font, monospaced; the name makes no difference.
    void setFontName(const MString& faceName);

    void line(const MPoint& startPoint, const MPoint& endPoint);
    void line2d(const MPoint& startPoint, const MPoint& endPoint);
    void lineList(const MPointArray& points, bool draw2D);
    void lineStrip(const MPointArray& points, bool draw2D);
    void point(const MPoint& point);
    void point2d(const MPoint& point);
    void points(const MPointArray& points, bool draw2D);

    /// `scaleX` across `up` and `scaleY` along it are measured from the centre to the sides.
    void rect(const MPoint& center, const MVector& up, const MVector& normal, double scaleX, double scaleY,
              bool filled = false);
    void rect2d(const MPoint& center, const MVector& up, double scaleX, double scaleY, bool filled = false);
    void box(const MPoint& center, const MVector& up, const MVector& right, double scaleX = 1.0, double scaleY = 1.0,
             double scaleZ = 1.0, bool filled = false);

    void sphere(const MPoint& center, double radius, bool filled = false);
    void sphere(const MPoint& center, double radius, int subdivisionsAxis, int subdivisionsHeight, bool filled = false);
    void circle(const MPoint& center, const MVector& normal, double radius, bool filled = false);
    void circle(const MPoint& center, const MVector& normal, double radius, int subdivisions, bool filled = false);
    void circle2d(const MPoint& center, double radius, bool filled = false);
    void circle2d(const MPoint& center, double radius, int subdivisions, bool filled = false);
    /// From `start` to `end`, counter-clockwise about the normal. Filled it is a sector.
    void arc(const MPoint& center, const MVector& start, const MVector& end, const MVector& normal, double radius,
             bool filled = false);
    void arc(const MPoint& center, const MVector& start, const MVector& end, const MVector& normal, double radius,
             int subdivisions, bool filled = false);
    void arc2d(const MPoint& center, const MVector& start, const MVector& end, double radius, bool filled = false);
    void arc2d(const MPoint& center, const MVector& start, const MVector& end, double radius, int subdivisions,
               bool filled = false);
    /// The tip is at base + height * direction.
    void cone(const MPoint& base, const MVector& direction, double radius, double height, bool filled = false);
    void cone(const MPoint& base, const MVector& direction, double radius, double height, int subdivisionsCap,
              bool filled = false);
    void cylinder(const MPoint& center, const MVector& up, double radius, double height, bool filled = false);
    void cylinder(const MPoint& center, const MVector& up, double radius, double height, int subdivisionsAxis,
                  bool filled = false);
    /// `height` is that of the straight part; half spheres of `radius` close it.
    void capsule(const MPoint& center, const MVector& up, double radius, double height, bool filled = false);
    void capsule(const MPoint& center, const MVector& up, double radius, double height, int subdivisionsAxis,
                 int subdivisionsHeight, bool filled = false);

    /// Normals and colours are used if there are as many as positions. An index past the end drops its primitive.
    /// Pictures are untextured: texture coordinates are accepted for the interface's sake and change nothing.
    void mesh(Primitive mode, const MPointArray& position, const MVectorArray* normal = nullptr,
              const MColorArray* color = nullptr, const MUintArray* index = nullptr, const MPointArray* texcoord = nullptr);
    void mesh2d(Primitive mode, const MPointArray& position, const MColorArray* color = nullptr,
                const MUintArray* index = nullptr, const MPointArray* texcoord = nullptr);

    /// Faces the camera, its size is in pixels. `backgroundSize` holds width and height of a box behind it, also pixels.
    void text(const MPoint& position, const MString& text, TextAlignment alignment = kLeft,
              const int* backgroundSize = nullptr, const MColor* backgroundColor = nullptr, bool dynamic = false);
    void text2d(const MPoint& position, const MString& text, TextAlignment alignment = kLeft,
                const int* backgroundSize = nullptr, const MColor* backgroundColor = nullptr, bool dynamic = false);
    /// Scale 1 is 16 pixels. A name that getIconNames does not give draws nothing.
    void icon(const MPoint& position, const MString& name, float scale);
    static void getIconNames(MStringArray& names);

private:
    mirk::view::Recorder* recorder_;
};

}  // namespace MHWRender
