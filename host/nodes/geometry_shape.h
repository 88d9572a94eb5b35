// What mesh, curve and surface shapes have in common: an input, a stored geometry, the geometry in object space and, for
// each instance, in world space.
#pragma once
#include <string>

#include "data/data.h"
#include "graph/node.h"

namespace mirk::nodes {

/// The attributes of one shape type. The input wins over the stored geometry; offsets are added to the points of either.
struct GeometryAttrs
{
    const Attribute *input = nullptr, *stored = nullptr, *offsets = nullptr, *local = nullptr, *world = nullptr;
};

class GeometryShape : public Node
{
public:
    GeometryShape(NodeType* type, std::string name, const GeometryAttrs& attrs) : Node(type, std::move(name)), attrs_(attrs) {}

    const GeometryAttrs& attrs() const { return attrs_; }
    /// In object space, up to date; null if the shape has none.
    Ref<GeometryData> read();
    /// A data object that this shape alone holds; made by `fresh` if there is none. What was computed from the old one
    /// lets go of it first, so that nothing is duplicated. With a connected input the write lasts until that changes.
    Ref<GeometryData> write(Ref<GeometryData> (*fresh)());
    void              changed();
    /// Computes the object and world space outputs; false if the cell is neither.
    bool              compute(Cell& cell);
    /// Geometry for a shape that is being made; undoable.
    void              store(Ref<Data> geometry);

protected:
    virtual void addOffsets(GeometryData& geometry, const Elements& offsets) = 0;

private:
    Data* source();

    const GeometryAttrs& attrs_;
    Cell*                written_ = nullptr;
};

}  // namespace mirk::nodes
