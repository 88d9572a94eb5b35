#include "view/recorder.h"

#include <algorithm>

#include "view/stroke_font.h"

namespace mirk::view {

namespace {

size_t cornerCount(Primitive p) { return p == Primitive::kPoints ? 1 : p == Primitive::kLines ? 2 : 3; }

/// Plain items of one look can be one: fewer and larger draws.
bool canJoin(const Item& a, const Item& b)
{
    const auto plain = [](const Item& i) {
        return i.space != Space::kAnchored && i.text.empty() && i.normals.empty() && i.colors.empty() &&
               i.indices.empty() && i.wire.empty();
    };
    return plain(a) && plain(b) && a.primitive == b.primitive && a.space == b.space && a.state == b.state &&
           a.matrix == b.matrix;
}

}  // namespace

void Recorder::begin(bool selectable)
{
    state = State();
    state.id = selectable ? id_ : 0;
    fontSize = 12;
    open_ = true;
}

Item Recorder::item(Primitive primitive, Space space) const
{
    Item item;
    item.primitive = primitive;
    item.space = space;
    item.matrix = matrix_;
    item.state = state;
    item.state.xray = xray;
    return item;
}

void Recorder::add(Item added)
{
    if (!open_ || added.positions.empty())
        return;
    if (!list_.items.empty() && canJoin(list_.items.back(), added)) {
        std::vector<float>& all = list_.items.back().positions;
        all.insert(all.end(), added.positions.begin(), added.positions.end());
    } else {
        list_.items.push_back(std::move(added));
    }
}

void Recorder::add(Primitive primitive, Space space, std::vector<float> positions)
{
    Item added = item(primitive, space);
    positions.resize(positions.size() - positions.size() % (3 * cornerCount(primitive)));
    added.positions = std::move(positions);
    add(std::move(added));
}

void Recorder::addShape(const Shape& shape, bool filled)
{
    Item added = item(filled ? Primitive::kTriangles : Primitive::kLines, Space::kObject);
    added.positions = shape.positions;
    added.indices = filled ? shape.triangles : shape.lines;
    if (filled)
        added.normals = shape.normals;
    add(std::move(added));
}

void Recorder::addStrokes(Space space, const Vec3& at, const std::vector<float>& strokes, float width, const std::string& text)
{
    Item added = item(Primitive::kLines, space);
    added.state.lineWidth = width;
    added.state.linePattern = 0xffff;
    added.text = text;
    const bool onScreen = space == Space::kScreen;
    for (int c = 0; c < 3; ++c)
        added.anchor[c] = onScreen ? 0.f : float(at[c]);
    for (size_t i = 0; i + 1 < strokes.size(); i += 2) {
        added.positions.push_back(strokes[i] + (onScreen ? float(at[0]) : 0));
        added.positions.push_back(strokes[i + 1] + (onScreen ? float(at[1]) : 0));
        added.positions.push_back(0);
    }
    add(std::move(added));
}

void Recorder::addText(Space space, const Vec3& at, const std::string& text, Align align, const int* box, const Color* boxColor)
{
    if (!open_)
        return;
    const double width = textWidth(text, fontSize), shift = align == Align::kLeft ? 0 : align == Align::kCenter ? width / 2 : width;
    const bool onScreen = space == Space::kScreen;
    if (box && boxColor && box[0] > 0 && box[1] > 0) {
        Item back = item(Primitive::kTriangles, space);
        back.state.color = *boxColor;
        back.state.lit = false;
        back.state.transparent = true;
        for (int c = 0; c < 3; ++c)
            back.anchor[c] = onScreen ? 0.f : float(at[c]);
        const double x = (onScreen ? at[0] : 0) + (align == Align::kLeft ? 0 : align == Align::kCenter ? -box[0] / 2.0 : -box[0]);
        const double y = (onScreen ? at[1] : 0) + 0.36 * fontSize - box[1] / 2.0;   // about the middle of the capitals
        for (const auto& [a, b] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}})
            back.positions.insert(back.positions.end(), {float(x + a * box[0]), float(y + b * box[1]), 0.f});
        back.indices = {0, 1, 2, 0, 2, 3};
        add(std::move(back));
    }
    std::vector<float> strokes = textStrokes(text, fontSize);
    for (size_t i = 0; i < strokes.size(); i += 2)
        strokes[i] -= float(shift);
    const State before = state;
    state.transparent |= box && boxColor;   // in one layer with the box, so that it comes after it
    addStrokes(space, at, strokes, float(std::max(1.0, fontSize / 11)), text);
    state = before;
}

}  // namespace mirk::view
