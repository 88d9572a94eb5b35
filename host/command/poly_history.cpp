#include "command/poly_history.h"

#include <algorithm>

#include "command/shape_edit.h"
#include "data/component.h"
#include "graph/evaluate.h"
#include "graph/undo.h"
#include "nodes/geometry_shape.h"

namespace mirk::command {

namespace {

Cell& cellOf(Node& node, const char* attribute) { return *node.cell(node.findAttribute(attribute)); }

/// The offsets that were put on a shape's points; none if all are zero or one is driven by a connection.
std::vector<Cell*> ownOffsets(Node& shape)
{
    Cell& all = *shape.cell(dynamic_cast<nodes::GeometryShape&>(shape).attrs().offsets);
    std::vector<Cell*> out;
    for (size_t i = 0; i < all.elementCount(); ++i)
        out.push_back(all.elements->cells[i]);
    bool any = false, driven = false;
    for (Cell* c : out) {
        any |= c->number(0) != 0 || c->number(1) != 0 || c->number(2) != 0;
        walkCells(*c, [&](Cell& x) { driven |= x.source != nullptr; });
    }
    return any && !driven ? out : std::vector<Cell*>();
}

/// Moves the offsets of the shape's points into a node behind `before`; that node's output, or `before` without offsets.
Cell& tweaked(Node& shape, Cell& before)
{
    const std::vector<Cell*> offsets = ownOffsets(shape);
    if (offsets.empty())
        return before;
    Node* node = edit::createNode(findNodeType("polyTweak"));
    Cell& tweaks = cellOf(*node, "tweak");
    for (Cell* from : offsets) {
        Cell* to = tweaks.element(from->index);
        edit::change(*to, [&] {
            for (int k = 0; k < 3; ++k)
                to->setNumber(from->number(k), k);
        });
    }
    for (Cell* from : offsets)
        edit::removeElement(*from);
    edit::connect(before, cellOf(*node, "inputPolymesh"));
    return cellOf(*node, "output");
}

/// The mesh of a shape without history, offsets included; of object groups those that are stored, not those of sets.
Ref<MeshData> ownMesh(Node& shape)
{
    const Ref<Data> data = readMesh(shape)->share();
    auto&           mesh = static_cast<MeshData&>(*data);
    const auto*     stored = dynamic_cast<MeshData*>(geometryCell(shape)->data());
    mesh.body->groups = stored ? stored->body->groups : std::vector<GeometryBody::Group>();
    return Ref<MeshData>(&mesh);
}

/// The shape that keeps the mesh of one that gets its first history.
Node& originalOf(Node& shape)
{
    const Ref<MeshData> mesh = ownMesh(shape);
    for (Cell* offset : ownOffsets(shape))
        edit::removeElement(*offset);
    Node* original = dag::createNode(findNodeType("mesh"), shape.name + "Orig", transformOf(shape));
    edit::setNumber(cellOf(*original, "intermediateObject"), 1);
    setGeometry(*original, mesh);
    return *original;
}

}  // namespace

std::vector<PolyTarget> polyTargets(const Call& call)
{
    std::vector<PolyTarget> out;
    for (const Item& item : callItems(call)) {
        Node& shape = meshShapeOf(item);
        auto  it = std::find_if(out.begin(), out.end(), [&](const PolyTarget& t) { return t.shape == &shape; });
        if (it == out.end())
            it = out.insert(out.end(), {&shape, item.component ? make<ComponentListData>() : Ref<ComponentListData>()});
        if (item.component && it->components)
            mergeInto(*it->components, *item.component);
        else
            it->components = nullptr;
    }
    if (out.empty())
        fail(std::string(call.command->name) + ": no polygon object is given or selected");
    return out;
}

Cell& historyOf(Node& shape)
{
    Cell& input = cellOf(shape, "inMesh");
    return input.source ? tweaked(shape, *input.source) : cellOf(originalOf(shape), "outMesh");
}

Node& insertModifier(const PolyTarget& target, const std::string& nodeType, const std::string& name, const SetUp& setUp)
{
    readMesh(*target.shape);
    Cell& input = cellOf(*target.shape, "inMesh");
    Cell& before = historyOf(*target.shape);
    Node* node = edit::createNode(findNodeType(nodeType), name);
    edit::connect(before, cellOf(*node, "inputPolymesh"));
    if (target.components)
        edit::setData(cellOf(*node, "inputComponents"), target.components);
    if (setUp)
        setUp(*node);
    if (!input.source)
        edit::setData(input, nullptr);   // an undone connection leaves what it brought: this puts the old value back
    edit::connect(cellOf(*node, "output"), input, true);
    return *node;
}

Ref<MeshData> modified(Ref<MeshData> mesh, const PolyTarget& target, const std::string& nodeType, const SetUp& setUp)
{
    const undo::Suspend quiet;
    struct Temporary
    {
        Node* node;
        ~Temporary() { edit::deleteNode(*node); }
    } made{edit::createNode(findNodeType(nodeType))};
    edit::setData(cellOf(*made.node, "inputPolymesh"), mesh->share());
    if (target.components)
        edit::setData(cellOf(*made.node, "inputComponents"), target.components);
    if (setUp)
        setUp(*made.node);
    Cell& out = cellOf(*made.node, "output");
    eval::pull(out);
    auto* result = dynamic_cast<MeshData*>(out.data());
    if (!result)
        fail(nodeType + " gives no mesh for '" + nodeName(*target.shape) + "'");
    const Ref<Data> own = result->share();
    return Ref<MeshData>(static_cast<MeshData*>(own.get()));
}

Node* applyModifier(const PolyTarget& target, const std::string& nodeType, const std::string& name, bool history, const SetUp& setUp)
{
    if (history || hasHistory(*target.shape))
        return &insertModifier(target, nodeType, name, setUp);
    const Ref<MeshData> after = modified(ownMesh(*target.shape), target, nodeType, setUp);
    for (Cell* offset : ownOffsets(*target.shape))
        edit::removeElement(*offset);
    setGeometry(*target.shape, after);
    return nullptr;
}

}  // namespace mirk::command
