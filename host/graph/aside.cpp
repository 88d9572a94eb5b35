#include "graph/aside.h"

#include <algorithm>
#include <cstring>

#include "graph/evaluate.h"

namespace mirk::eval {
namespace {

constexpr uint16_t kOwnFlags = Cell::kDirty | Cell::kChildDirty | Cell::kLeaky | Cell::kComputing | Cell::kWritten |
                               Cell::kSet | Cell::kMuteCycle;

bool linkedBelow(Cell& cell)
{
    bool linked = false;
    walkCells(cell, [&](Cell& c) { linked = linked || c.source || c.hasTargets(); });
    return linked;
}

}  // namespace

Aside::Aside(Cell& cell) : node_(cell.node), cell_(&cell), flags_(cell.flags & kOwnFlags)
{
    ++cell.users;
    take(cell);
}

Aside::Aside(Cell& cell, const Cell& fresh) : node_(cell.node), cell_(&cell), flags_(Cell::kDirty)
{
    ++cell.users;
    take(fresh);
    if (cell.isMulti())
        elements_.clear();
}

void Aside::detach()
{
    Cell& c = *cell_;
    c.flags &= ~(Cell::kComputing | Cell::kWritten);
    if (c.store() == Store::kData && c.own.data && !valueAbove(c))
        c.setData(c.own.data->share());
}

void Aside::exchange()
{
    Cell&          c = *cell_;
    const uint16_t flags = c.flags & kOwnFlags;
    c.flags = uint16_t((c.flags & ~kOwnFlags) | flags_);
    flags_ = flags;
    exchangeElements();
    if (valueAbove(c))
        return;
    switch (c.store()) {
    case Store::kNone: break;
    case Store::kData: {
        Ref<Data> here(c.own.data);
        c.setData(data_);
        data_ = here;
        break;
    }
    case Store::kMatrix: std::swap_ranges(matrix_.begin(), matrix_.end(), c.own.matrix); break;
    case Store::kFloatMatrix: std::swap_ranges(floatMatrix_.begin(), floatMatrix_.end(), c.own.floatMatrix); break;
    default: std::swap_ranges(bytes_, bytes_ + storeBytes(c.store()), static_cast<unsigned char*>(c.v));
    }
}

void Aside::freeElements()
{
    Cell& c = *cell_;
    for (Cell* e : elements_)
        if (c.elementIfAny(e->index) != e) {
            walkCells(*e, [](Cell& below) { below.flags |= Cell::kRemoved; });
            c.node->removed.push_back(e);
            noteRemoved(*c.node);
        }
}

void Aside::take(const Cell& c)
{
    if (cell_->isMulti() && c.elements)
        elements_ = c.elements->cells;
    if (valueAbove(*cell_))
        return;
    switch (cell_->store()) {
    case Store::kNone: break;
    case Store::kData: data_ = Ref<Data>(c.own.data); break;
    case Store::kMatrix: matrix_.assign(c.own.matrix, c.own.matrix + 16); break;
    case Store::kFloatMatrix: floatMatrix_.assign(c.own.floatMatrix, c.own.floatMatrix + 16); break;
    default: std::memcpy(bytes_, c.v, storeBytes(cell_->store()));
    }
}

void Aside::exchangeElements()
{
    Cell& c = *cell_;
    if (!c.isMulti() || (!c.elements && elements_.empty()))
        return;
    if (!c.elements)
        c.elements = new Elements;
    std::vector<Cell*>& here = c.elements->cells;
    if (here == elements_)
        return;
    for (Cell* e : here) {   // a connection holds in every context
        const auto at = std::lower_bound(elements_.begin(), elements_.end(), e, [](Cell* a, Cell* b) { return a->index < b->index; });
        if ((at == elements_.end() || (*at)->index != e->index) && linkedBelow(*e))
            elements_.insert(at, e);
    }
    here.swap(elements_);
}

}  // namespace mirk::eval
