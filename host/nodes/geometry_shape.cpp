#include "nodes/geometry_shape.h"

#include <algorithm>
#include <cstring>

#include "graph/edit.h"
#include "graph/evaluate.h"
#include "nodes/dag_attrs.h"

namespace mirk::nodes {
namespace {

void setMatrix(GeometryBody& body, const double* m)
{
    std::memcpy(body.matrix, m, sizeof body.matrix);
    body.identity = true;
    for (int i = 0; i < 16; ++i)
        body.identity = body.identity && m[i] == (i % 5 == 0 ? 1.0 : 0.0);
}

constexpr double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

bool anyOffset(const Elements& offsets)
{
    return std::any_of(offsets.cells.begin(), offsets.cells.end(), [](Cell* c) {
        return c->number(0) != 0 || c->number(1) != 0 || c->number(2) != 0;
    });
}

/// The object groups that sets gave the shape, over those that came in under the same number.
void addGroups(Node& node, GeometryBody& body)
{
    Cell* instances = node.cellIfAny(dagAttrs().instObjGroups);
    Cell* first = instances ? instances->elementIfAny(0) : nullptr;
    Cell* groups = first ? first->childIfAny(0) : nullptr;
    for (size_t i = 0; groups && i < groups->elementCount(); ++i) {
        Cell* members = groups->elements->cells[i]->child(0);
        Cell* id = groups->elements->cells[i]->child(1);
        eval::pull(*members);
        eval::pull(*id);
        const auto* list = dynamic_cast<ComponentListData*>(members->data());
        if (!list || list->list.empty() || id->number() <= 0)
            continue;
        const unsigned wanted = unsigned(id->number());
        std::erase_if(body.groups, [&](const GeometryBody::Group& g) { return g.id == wanted; });
        body.groups.push_back({wanted, list->list.front()});
    }
}

}  // namespace

Data* GeometryShape::source()
{
    Cell* in = cell(attrs_.input);
    eval::pull(*in);
    if (in->data())
        return in->data();
    Cell* stored = cell(attrs_.stored);
    eval::pull(*stored);
    return stored->data();
}

bool GeometryShape::compute(Cell& out)
{
    if (out.attr == attrs_.local) {
        const auto* from = dynamic_cast<GeometryData*>(source());
        if (!from) {
            out.setData(nullptr);
            return true;
        }
        Ref<Data> data = from->share();
        auto&     geometry = static_cast<GeometryData&>(*data);
        geometry.transformed = false;
        setMatrix(geometry.geometry(), kIdentity);
        Cell* offsets = cell(attrs_.offsets);
        eval::pullDeep(*offsets);
        if (offsets->elements && anyOffset(*offsets->elements))
            addOffsets(geometry, *offsets->elements);
        addGroups(*this, geometry.geometry());
        out.setData(data);
        return true;
    }
    if (out.attr != attrs_.world)
        return false;
    if (!out.isElement())
        return true;
    Ref<GeometryData> local = read();
    if (!local) {
        out.setData(nullptr);
        return true;
    }
    Cell* matrix = cell(dagAttrs().worldMatrix)->element(out.index);
    eval::pull(*matrix);
    Ref<Data> data = local->share();
    setMatrix(static_cast<GeometryData&>(*data).geometry(), matrix->own.matrix);
    out.setData(data);
    return true;
}

Ref<GeometryData> GeometryShape::read()
{
    Cell* local = cell(attrs_.local);
    eval::pull(*local);
    return Ref<GeometryData>(static_cast<GeometryData*>(local->data()));
}

Ref<GeometryData> GeometryShape::write(Ref<GeometryData> (*fresh)())
{
    Cell* in = cell(attrs_.input);
    Cell* local = cell(attrs_.local);
    if (in->source) {
        Ref<GeometryData> now = read();
        written_ = nullptr;
        if (!now)
            return now;
        now = nullptr;
        if (local->data()->heldElsewhere())
            local->setData(local->data()->share());
        return Ref<GeometryData>(static_cast<GeometryData*>(local->data()));
    }
    local->setData(nullptr);
    eval::dirty(*local);
    if (Cell* world = cellIfAny(attrs_.world)) {
        for (size_t i = 0; i < world->elementCount(); ++i)
            world->elements->cells[i]->setData(nullptr);
        eval::dirty(*world);
    }
    written_ = in->data() ? in : cell(attrs_.stored);
    if (!dynamic_cast<GeometryData*>(written_->data()))
        written_->setData(fresh());
    else if (written_->data()->heldElsewhere())
        written_->setData(written_->data()->share());
    return Ref<GeometryData>(static_cast<GeometryData*>(written_->data()));
}

void GeometryShape::changed()
{
    if (written_) {
        written_->set(Cell::kSet, true);
        eval::clean(*written_);
        eval::spread(*written_);
        return;
    }
    // the output itself was written: all that hangs on it is dirty, it is not
    eval::spread(*cell(attrs_.local));
    for (const Attribute* a : {attrs_.world, dagAttrs().boundingBox})
        if (Cell* c = cellIfAny(a))
            eval::dirty(*c);
}

void GeometryShape::store(Ref<Data> geometry) { edit::setData(*cell(attrs_.stored), std::move(geometry)); }

}  // namespace mirk::nodes
