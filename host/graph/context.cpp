#include "graph/context.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include <maya/MDGContext.h>
#include <maya/MPlugArray.h>

#include "graph/access.h"
#include "graph/aside.h"
#include "graph/evaluate.h"
#include "graph/scene.h"

namespace mirk::eval {
namespace {

struct PrivateStore
{
    double                                            seconds;
    std::unordered_map<Cell*, std::unique_ptr<Aside>> cells;
    std::unordered_set<Node*>                         nodes;      // that depend on the time
    std::unordered_set<Node*>                         computed;
    std::unordered_map<Node*, std::vector<MPlug>>     calls;      // of setDependentsDirty
    int                                               users = 0;  // computes that run in it
};

struct Contexts
{
    std::map<int64_t, std::unique_ptr<PrivateStore>>        stores;
    PrivateStore*                                           current = nullptr;
    When                                              when;
    std::unordered_map<Node*, std::vector<MPlug>>     again;      // calls to be repeated
    std::unordered_set<Cell*>                         been;       // of the dirt that walks
    bool                                              filling = false, everywhere = false;
    std::vector<Cell*>                                copies;
};

Contexts& g = *new Contexts;   // outlives every static object

int64_t ticks(double seconds) { return std::llround(seconds * MTime::ticksPerSecond()); }

void save(Cell& cell)
{
    auto& slot = g.current->cells[&cell];
    if (slot)
        return;
    slot = std::make_unique<Aside>(cell);
    slot->detach();
}

/// With all below, whose values may stand in it, and with all above, whose flags tell of it.
void saveTree(Cell& cell)
{
    if (g.current->cells.count(&cell))
        return;
    walkCells(cell, save);
    for (Cell* p = cell.parent; p; p = p->parent)
        save(*p);
    if (valueAbove(cell))
        saveTree(*cell.parent);
}

void exchange(PrivateStore& store)
{
    for (auto& [cell, aside] : store.cells)
        aside->exchange();
}

void putAside()
{
    if (!g.current)
        return;
    exchange(*g.current);
    g.current = nullptr;
    other::active = false;
}

void putBack(PrivateStore& store)
{
    exchange(store);
    g.current = &store;
    other::active = true;
}

void drop(PrivateStore& store)
{
    for (auto& [cell, aside] : store.cells)
        aside->freeElements();
    for (auto& [node, plugs] : store.calls)
        if (store.computed.count(node))
            g.again[node] = std::move(plugs);
    g.stores.erase(ticks(store.seconds));
}

/// Sets the time in the new store and lets everything that hangs on it get dirty there.
void fill(PrivateStore& store)
{
    Node* time = scene().first("time1");
    Cell* out = time ? time->cell(time->type->find("outTime")) : nullptr;
    if (!out)
        return;
    g.filling = other::walking = true;
    g.been.clear();
    saveTree(*out);
    store.nodes.insert(time);
    out->setNumber(store.seconds);
    clean(*out);
    spread(*out);
    g.filling = other::walking = false;
}

}  // namespace

When now() { return g.when; }

When enter(const When& when)
{
    const When before = g.when;
    if (when.normal == before.normal && (when.normal || ticks(when.seconds) == ticks(before.seconds)))
        return before;
    if (PrivateStore* left = g.current) {
        putAside();
        if (left->users == 0)
            drop(*left);
    }
    g.when = when;
    if (when.normal)
        return before;
    auto& store = g.stores[ticks(when.seconds)];
    if (store) {
        putBack(*store);
        return before;
    }
    store = std::make_unique<PrivateStore>();
    store->seconds = when.seconds;
    g.current = store.get();
    other::active = true;
    other::quiet = false;
    fill(*store);
    return before;
}

Cell* copyAt(Cell& cell, const When& when)
{
    At at(when);
    pullDeep(cell);
    Cell* copy = new Cell(cell.node, cell.attr, nullptr, cell.index);
    copy->flags |= Cell::kPrivate;
    copy->copyFrom(cell);
    walkCells(*copy, [](Cell& c) { c.flags = (c.flags | Cell::kPrivate) & ~(Cell::kDirty | Cell::kChildDirty | Cell::kInternal); });
    return copy;
}

void deleteLater(Cell* copy) { g.copies.push_back(copy); }

void deleteCopies()
{
    for (Cell* c : g.copies)
        delete c;
    g.copies.clear();
}

namespace other {

bool active = false, walking = false, quiet = true;

bool any() { return !g.stores.empty() && !g.filling && !g.everywhere; }

struct ComputingAccess
{
    static inline Computing* innermost = nullptr;
    static void readsPrivate()
    {
        if (innermost && innermost->store_ == g.current)
            innermost->depends_ = true;
    }
    static void saved(Cell& cell)
    {
        if (innermost && innermost->store_ == g.current && &innermost->node_ == cell.node)
            innermost->saved_.push_back(&cell);
    }
};

namespace {

bool isPrivate(Cell& cell) { return g.current->nodes.count(cell.node) && g.current->cells.count(&cell); }

}  // namespace

void noteNew(Cell& cell)
{
    if (!g.current || !cell.node || (cell.flags & (Cell::kPrivate | Cell::kRemoved)) || g.current->cells.count(&cell))
        return;
    const Cell fresh(cell.node, cell.attr, nullptr, cell.index);
    g.current->cells[&cell] = std::make_unique<Aside>(cell, fresh);
    ComputingAccess::saved(cell);
}

void noteRead(Cell& cell)
{
    if (g.current && isPrivate(cell))
        ComputingAccess::readsPrivate();
}

void receive(Cell& cell, Cell& source)
{
    if (!g.current || !isPrivate(source))
        return;
    saveTree(cell);
    g.current->nodes.insert(cell.node);
    ComputingAccess::readsPrivate();
}

void Computing::begin()
{
    begun_ = true;
    outer_ = ComputingAccess::innermost;
    store_ = g.current;
    ComputingAccess::innermost = this;
    PrivateStore* store = g.current;
    if (!store) {
        if (g.again.empty())
            return;
        if (auto calls = g.again.extract(&node_); calls && node_.user)
            for (const MPlug& plug : calls.mapped()) {
                MPlugArray ignored;   // the flags of the normal values are as they were
                node_.user->setDependentsDirty(plug, ignored);
            }
        return;
    }
    ++store->users;
    depends_ = store->nodes.count(&node_) != 0;
    for (Cell* top : node_.cells)
        if (top && !top->parent)
            walkCells(*top, [&](Cell& c) {
                if (!store->cells.count(&c)) {
                    save(c);
                    saved_.push_back(&c);
                }
            });
}

void Computing::end()
{
    ComputingAccess::innermost = outer_;
    auto* store = static_cast<PrivateStore*>(store_);
    if (!store)
        return;
    --store->users;
    if (depends_) {
        store->nodes.insert(&node_);
        store->computed.insert(&node_);
        if (outer_ && outer_->store_ == store_)
            outer_->depends_ = true;
    } else if (g.current == store) {
        for (Cell* c : saved_)
            store->cells.erase(c);
    }
}

bool first(Cell& cell)
{
    if (!g.been.insert(&cell).second)
        return false;
    if (g.filling) {
        saveTree(cell);
        g.current->nodes.insert(cell.node);
    }
    return true;
}

bool seen(Cell& cell) { return g.been.count(&cell) != 0; }

void noteCall(Cell& cell)
{
    if (g.filling)
        g.current->calls[cell.node].push_back(PlugAccess::make(cell));
}

void everyStore(const std::function<void()>& spread)
{
    PrivateStore* inPlace = g.current;
    g.everywhere = true;
    const auto run = [&] {
        walking = true;
        g.been.clear();
        spread();
        walking = false;
    };
    putAside();
    run();
    for (auto& [key, store] : g.stores) {
        putBack(*store);
        run();
        putAside();
    }
    if (inPlace)
        putBack(*inPlace);
    g.everywhere = false;
}

void forget(Cell& cell)
{
    const auto one = [](Cell& c) {
        for (auto& [key, store] : g.stores)
            if (auto it = store->cells.find(&c); it != store->cells.end()) {
                if (store.get() == g.current)
                    it->second->exchange();
                store->cells.erase(it);
            }
    };
    walkCells(cell, one);
    if (valueAbove(cell))
        one(*cell.parent);
}

void forgetElement(Cell& element)
{
    for (auto& [key, store] : g.stores)
        if (auto it = store->cells.find(element.parent); it != store->cells.end())
            it->second->dropElement(element);
}

void hideElement(Cell& element)
{
    if (element.parent && element.parent->elements)
        std::erase(element.parent->elements->cells, &element);
}

}  // namespace other
}  // namespace mirk::eval
