#include <maya/MUIDrawManager.h>

#include <algorithm>
#include <cmath>

#include <maya/MColorArray.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MUintArray.h>
#include <maya/MVectorArray.h>

#include "view/palette.h"
#include "view/recorder.h"
#include "view/stroke_font.h"

namespace MHWRender {

using mirk::view::Axes;
using mirk::view::axesAlong;
using mirk::view::Item;
using mirk::view::Recorder;
using mirk::view::Shape;
using mirk::view::Space;
using mirk::view::Vec3;

namespace {

constexpr double kTurn = 2 * 3.14159265358979323846;
constexpr int    kRound = 32;   // divisions of a circle where the caller names none

Vec3 vec(const MPoint& p) { return {p.x, p.y, p.z}; }
Vec3 vec(const MVector& v) { return {v.x, v.y, v.z}; }

Space flatOrNot(bool draw2D) { return draw2D ? Space::kScreen : Space::kObject; }

void append(std::vector<float>& out, const MPoint& p) { out.insert(out.end(), {float(p.x), float(p.y), float(p.z)}); }

std::vector<float> flat(const MPointArray& points)
{
    std::vector<float> out;
    out.reserve(size_t(points.length()) * 3);
    for (unsigned i = 0; i < points.length(); ++i)
        append(out, points[i]);
    return out;
}

mirk::view::Primitive kindOf(MUIDrawManager::Primitive mode)
{
    switch (mode) {
        case MUIDrawManager::kPoints:    return mirk::view::Primitive::kPoints;
        case MUIDrawManager::kTriangles:
        case MUIDrawManager::kTriStrip:  return mirk::view::Primitive::kTriangles;
        default:                         return mirk::view::Primitive::kLines;
    }
}

/// Strips and loops as separate primitives.
std::vector<uint32_t> separated(MUIDrawManager::Primitive mode, const std::vector<uint32_t>& v)
{
    std::vector<uint32_t> out;
    const size_t n = v.size();
    if (mode == MUIDrawManager::kTriStrip) {
        for (size_t i = 2; i < n; ++i)   // every second one turns the other way
            out.insert(out.end(), {v[i - 2 + (i & 1)], v[i - 1 - (i & 1)], v[i]});
        return out;
    }
    for (size_t i = 1; i < n; ++i)
        out.insert(out.end(), {v[i - 1], v[i]});
    if (mode == MUIDrawManager::kClosedLine && n > 2)
        out.insert(out.end(), {v[n - 1], v[0]});
    return out;
}

void drawMesh(Recorder& recorder, Space space, MUIDrawManager::Primitive mode, const MPointArray& position,
              const MVectorArray* normal, const MColorArray* color, const MUintArray* index)
{
    Item item;
    item.primitive = kindOf(mode);
    item.space = space;
    item.matrix = recorder.matrix();
    item.state = recorder.state;
    item.state.xray = recorder.xray;
    item.positions = flat(position);
    const unsigned count = position.length();
    if (normal && normal->length() == count)
        for (unsigned i = 0; i < count; ++i)
            append(item.normals, MPoint((*normal)[i]));
    if (color && color->length() == count)
        for (unsigned i = 0; i < count; ++i) {
            const MColor& c = (*color)[i];
            item.colors.insert(item.colors.end(), {c.r, c.g, c.b, c.a});
        }
    for (unsigned i = 0; index && i < index->length(); ++i)
        item.indices.push_back((*index)[i]);
    if (mode == MUIDrawManager::kLineStrip || mode == MUIDrawManager::kClosedLine || mode == MUIDrawManager::kTriStrip) {
        for (unsigned i = 0; !index && i < count; ++i)
            item.indices.push_back(i);
        item.indices = separated(mode, item.indices);
        if (item.indices.empty())
            return;
    }
    recorder.add(std::move(item));
}

Recorder::Align alignOf(MUIDrawManager::TextAlignment a)
{
    return a == MUIDrawManager::kCenter ? Recorder::Align::kCenter
         : a == MUIDrawManager::kRight  ? Recorder::Align::kRight : Recorder::Align::kLeft;
}

void drawText(Recorder& recorder, Space space, const MPoint& at, const MString& text, MUIDrawManager::TextAlignment alignment,
              const int* boxSize, const MColor* boxColor)
{
    const mirk::view::Color back = boxColor ? mirk::view::Color{boxColor->r, boxColor->g, boxColor->b, boxColor->a}
                                            : mirk::view::Color();
    recorder.addText(space, vec(at), text.asChar(), alignOf(alignment), boxSize, boxColor ? &back : nullptr);
}

/// Axes with y along `normal` and x along `start`, and the angle from start to end, above 0 and at most a turn.
Axes arcAxes(const MPoint& center, const MVector& start, const MVector& end, const MVector& normal, double& angle)
{
    const Axes a = axesAlong(vec(center), vec(normal), vec(start));
    angle = std::atan2(-(end.x * a.z[0] + end.y * a.z[1] + end.z * a.z[2]), end.x * a.x[0] + end.y * a.x[1] + end.z * a.x[2]);
    if (!(angle > 1e-9))
        angle = std::isfinite(angle) ? angle + kTurn : kTurn;
    return a;
}

/// The same shape in pixels.
void addFlatShape(Recorder& recorder, const Shape& shape, bool filled)
{
    Item item;
    item.primitive = filled ? mirk::view::Primitive::kTriangles : mirk::view::Primitive::kLines;
    item.space = Space::kScreen;
    item.state = recorder.state;
    item.positions = shape.positions;
    item.indices = filled ? shape.triangles : shape.lines;
    recorder.add(std::move(item));
}

}  // namespace

void MUIDrawManager::beginDrawable(Selectability selectability, unsigned int) { recorder_->begin(selectability != kNonSelectable); }
void MUIDrawManager::endDrawable() { recorder_->end(); }
void MUIDrawManager::beginDrawInXray() { recorder_->xray = true; }
void MUIDrawManager::endDrawInXray() { recorder_->xray = false; }

void MUIDrawManager::setColor(const MColor& c) { recorder_->state.color = {c.r, c.g, c.b, c.a}; }
void MUIDrawManager::setColorIndex(short index) { recorder_->state.color = mirk::view::paletteColor(index); }
void MUIDrawManager::setPointSize(float pixels) { recorder_->state.pointSize = pixels > 0 ? pixels : 1; }
void MUIDrawManager::setLineWidth(float pixels) { recorder_->state.lineWidth = pixels > 0 ? pixels : 1; }
void MUIDrawManager::setDepthPriority(unsigned int priority) { recorder_->state.depthPriority = priority; }
void MUIDrawManager::setFontSize(unsigned int pixels) { recorder_->fontSize = std::clamp(pixels, 1u, 1000u); }
void MUIDrawManager::setFontName(const MString&) {}

void MUIDrawManager::setLineStyle(LineStyle style)
{
    static constexpr unsigned short patterns[] = {0xffff, 0xcccc, 0xf0f0, 0xff00, 0x8888};
    setLineStyle(1, style >= kSolid && style <= kDotted ? patterns[style] : patterns[0]);
}

void MUIDrawManager::setLineStyle(unsigned int factor, unsigned short pattern)
{
    recorder_->state.lineFactor = static_cast<uint16_t>(std::clamp(factor, 1u, 256u));
    recorder_->state.linePattern = pattern;
}

void MUIDrawManager::setPaintStyle(PaintStyle style)
{
    recorder_->state.screenDoor = style == kStippled;
    recorder_->state.lit = style == kShaded;
}

void MUIDrawManager::line(const MPoint& a, const MPoint& b)
{
    recorder_->add(mirk::view::Primitive::kLines, Space::kObject, {float(a.x), float(a.y), float(a.z), float(b.x), float(b.y), float(b.z)});
}

void MUIDrawManager::line2d(const MPoint& a, const MPoint& b)
{
    recorder_->add(mirk::view::Primitive::kLines, Space::kScreen, {float(a.x), float(a.y), 0, float(b.x), float(b.y), 0});
}

void MUIDrawManager::lineList(const MPointArray& points, bool draw2D)
{
    recorder_->add(mirk::view::Primitive::kLines, flatOrNot(draw2D), flat(points));
}

void MUIDrawManager::lineStrip(const MPointArray& points, bool draw2D)
{
    std::vector<float> lines;
    for (unsigned i = 1; i < points.length(); ++i) {
        append(lines, points[i - 1]);
        append(lines, points[i]);
    }
    recorder_->add(mirk::view::Primitive::kLines, flatOrNot(draw2D), std::move(lines));
}

void MUIDrawManager::point(const MPoint& p)
{
    recorder_->add(mirk::view::Primitive::kPoints, Space::kObject, {float(p.x), float(p.y), float(p.z)});
}

void MUIDrawManager::point2d(const MPoint& p)
{
    recorder_->add(mirk::view::Primitive::kPoints, Space::kScreen, {float(p.x), float(p.y), 0});
}

void MUIDrawManager::points(const MPointArray& points, bool draw2D)
{
    recorder_->add(mirk::view::Primitive::kPoints, flatOrNot(draw2D), flat(points));
}

void MUIDrawManager::rect(const MPoint& center, const MVector& up, const MVector& normal, double scaleX, double scaleY, bool filled)
{
    recorder_->addShape(rectangle(axesAlong(vec(center), vec(up), vec(up ^ normal)), scaleX, scaleY), filled);
}

void MUIDrawManager::rect2d(const MPoint& center, const MVector& up, double scaleX, double scaleY, bool filled)
{
    const MVector flatUp(up.x, up.y, 0);
    addFlatShape(*recorder_, rectangle(axesAlong({center.x, center.y, 0}, vec(flatUp), vec(flatUp ^ MVector(0, 0, 1))), scaleX, scaleY), filled);
}

void MUIDrawManager::box(const MPoint& center, const MVector& up, const MVector& right, double scaleX, double scaleY,
                         double scaleZ, bool filled)
{
    recorder_->addShape(mirk::view::box(axesAlong(vec(center), vec(up), vec(right)), scaleX, scaleY, scaleZ), filled);
}

void MUIDrawManager::sphere(const MPoint& center, double radius, bool filled) { sphere(center, radius, kRound, kRound / 2, filled); }

void MUIDrawManager::sphere(const MPoint& center, double radius, int subdivisionsAxis, int subdivisionsHeight, bool filled)
{
    recorder_->addShape(mirk::view::sphere({vec(center)}, radius, subdivisionsAxis, subdivisionsHeight), filled);
}

void MUIDrawManager::circle(const MPoint& center, const MVector& normal, double radius, bool filled)
{
    circle(center, normal, radius, kRound, filled);
}

void MUIDrawManager::circle(const MPoint& center, const MVector& normal, double radius, int subdivisions, bool filled)
{
    recorder_->addShape(mirk::view::sector(axesAlong(vec(center), vec(normal)), radius, kTurn, subdivisions), filled);
}

void MUIDrawManager::circle2d(const MPoint& center, double radius, bool filled) { circle2d(center, radius, kRound, filled); }

void MUIDrawManager::circle2d(const MPoint& center, double radius, int subdivisions, bool filled)
{
    addFlatShape(*recorder_, mirk::view::sector(axesAlong({center.x, center.y, 0}, {0, 0, 1}), radius, kTurn, subdivisions), filled);
}

void MUIDrawManager::arc(const MPoint& center, const MVector& start, const MVector& end, const MVector& normal, double radius, bool filled)
{
    arc(center, start, end, normal, radius, kRound, filled);
}

void MUIDrawManager::arc(const MPoint& center, const MVector& start, const MVector& end, const MVector& normal,
                         double radius, int subdivisions, bool filled)
{
    double angle = 0;
    const Axes axes = arcAxes(center, start, end, normal, angle);
    recorder_->addShape(mirk::view::sector(axes, radius, angle, subdivisions), filled);
}

void MUIDrawManager::arc2d(const MPoint& center, const MVector& start, const MVector& end, double radius, bool filled)
{
    arc2d(center, start, end, radius, kRound, filled);
}

void MUIDrawManager::arc2d(const MPoint& center, const MVector& start, const MVector& end, double radius,
                           int subdivisions, bool filled)
{
    double angle = 0;
    const Axes axes = arcAxes(MPoint(center.x, center.y), MVector(start.x, start.y), MVector(end.x, end.y), MVector(0, 0, 1), angle);
    addFlatShape(*recorder_, mirk::view::sector(axes, radius, angle, subdivisions), filled);
}

void MUIDrawManager::cone(const MPoint& base, const MVector& direction, double radius, double height, bool filled)
{
    cone(base, direction, radius, height, kRound / 2, filled);
}

void MUIDrawManager::cone(const MPoint& base, const MVector& direction, double radius, double height, int subdivisionsCap, bool filled)
{
    recorder_->addShape(mirk::view::cone(axesAlong(vec(base), vec(direction)), radius, height, subdivisionsCap), filled);
}

void MUIDrawManager::cylinder(const MPoint& center, const MVector& up, double radius, double height, bool filled)
{
    cylinder(center, up, radius, height, kRound / 2, filled);
}

void MUIDrawManager::cylinder(const MPoint& center, const MVector& up, double radius, double height, int subdivisionsAxis, bool filled)
{
    recorder_->addShape(mirk::view::cylinder(axesAlong(vec(center), vec(up)), radius, height, subdivisionsAxis), filled);
}

void MUIDrawManager::capsule(const MPoint& center, const MVector& up, double radius, double height, bool filled)
{
    capsule(center, up, radius, height, kRound / 2, kRound / 2, filled);
}

void MUIDrawManager::capsule(const MPoint& center, const MVector& up, double radius, double height, int subdivisionsAxis,
                             int subdivisionsHeight, bool filled)
{
    recorder_->addShape(mirk::view::capsule(axesAlong(vec(center), vec(up)), radius, height, subdivisionsAxis, subdivisionsHeight), filled);
}

void MUIDrawManager::mesh(Primitive mode, const MPointArray& position, const MVectorArray* normal, const MColorArray* color,
                          const MUintArray* index, const MPointArray*)
{
    drawMesh(*recorder_, Space::kObject, mode, position, normal, color, index);
}

void MUIDrawManager::mesh2d(Primitive mode, const MPointArray& position, const MColorArray* color, const MUintArray* index, const MPointArray*)
{
    drawMesh(*recorder_, Space::kScreen, mode, position, nullptr, color, index);
}

void MUIDrawManager::text(const MPoint& position, const MString& text, TextAlignment alignment, const int* backgroundSize,
                          const MColor* backgroundColor, bool)
{
    drawText(*recorder_, Space::kAnchored, position, text, alignment, backgroundSize, backgroundColor);
}

void MUIDrawManager::text2d(const MPoint& position, const MString& text, TextAlignment alignment, const int* backgroundSize,
                            const MColor* backgroundColor, bool)
{
    drawText(*recorder_, Space::kScreen, position, text, alignment, backgroundSize, backgroundColor);
}

void MUIDrawManager::icon(const MPoint& position, const MString& name, float scale)
{
    recorder_->addStrokes(Space::kAnchored, vec(position), mirk::view::iconStrokes(name.asChar(), 16.0 * scale),
                          recorder_->state.lineWidth, name.asChar());
}

void MUIDrawManager::getIconNames(MStringArray& names)
{
    names.clear();
    for (const std::string_view name : mirk::view::iconNames())
        names.append(MString(name.data(), int(name.size())));
}

}  // namespace MHWRender
