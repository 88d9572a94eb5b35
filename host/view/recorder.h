// Turns drawing calls into items of a draw list: what stands behind MUIDrawManager.
#pragma once
#include <string>

#include "view/draw_list.h"
#include "view/shapes.h"

namespace mirk::view {

/// Records into a list for one object. Nothing is recorded outside a drawable.
class Recorder
{
public:
    enum class Align { kLeft, kCenter, kRight };

    /// `matrix`: object to world. `id`: what picking the object's selectable drawables reports.
    Recorder(DrawList& list, const Matrix& matrix, uint32_t id) : list_(list), matrix_(matrix), id_(id) {}

    void begin(bool selectable);
    void end() { open_ = false; }
    bool open() const { return open_; }

    const Matrix& matrix() const { return matrix_; }

    State  state;           ///< of the items that come; begin() resets it
    double fontSize = 12;   ///< pixels; reset too
    bool   xray = false;

    /// Vertices (3 floats each) of points, lines or triangles in order; what is left over is dropped.
    void add(Primitive primitive, Space space, std::vector<float> positions);
    void add(Item item);
    void addShape(const Shape& shape, bool filled);
    /// In pixels, about a point given in pixels (kScreen) or in object space (kAnchored). 4 floats a line.
    void addStrokes(Space space, const Vec3& at, const std::vector<float>& strokes, float width, const std::string& text = "");
    /// `box`: width and height in pixels of a background, or null.
    void addText(Space space, const Vec3& at, const std::string& text, Align align, const int* box, const Color* boxColor);

private:
    Item item(Primitive primitive, Space space) const;

    DrawList& list_;
    Matrix    matrix_;
    uint32_t  id_;
    bool      open_ = false;
};

}  // namespace mirk::view
