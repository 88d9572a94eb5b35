// Evaluation: dirt spreads iteratively; pulling recurses, on a large lazily mapped stack once it goes deep.
#include "graph/evaluate.h"

#include <algorithm>
#include <exception>
#include <unordered_set>

#include <maya/MDataBlock.h>
#include <maya/MPlugArray.h>

#include "graph/access.h"
#include "graph/context.h"
#include "graph/deep_stack.h"
#include "graph/source.h"

namespace mirk::eval {
namespace {

struct State
{
    int                      depth = 0;
    Node*                    node = nullptr;
    std::vector<Cell*>       queue;      // of `spread`
    std::vector<std::pair<const Node*, const Attribute*>> marked;   // multis that the running spread has been through
    std::vector<Cell*>       written;    // data set in running computes, to be sealed
    std::vector<Ref<Object>> later;
    std::vector<Ref<Node>>   withRemoved;
    std::vector<Cell*>       reported;   // cycles told of in this evaluation
    void (*report)(const std::string&, bool) = nullptr;
};

State& g_state = *new State;   // outlives every static object
State& state() { return g_state; }

// ---- matching along compound connections -------------------------------------------------------------------------

/// The cell that stands where `cell` stands, counted from `from` (an ancestor of `cell`), below `to`.
Cell* counterpart(const Cell& cell, const Cell& from, Cell& to, bool create)
{
    if (&cell == &from)
        return &to;
    Cell* above = cell.parent ? counterpart(*cell.parent, from, to, create) : nullptr;
    if (!above)
        return nullptr;
    if (cell.isElement()) {
        if (!above->isMulti())
            return nullptr;
        return create ? above->element(cell.index) : above->elementIfAny(cell.index);
    }
    return create ? above->child(cell.attr->childIndex) : above->childIfAny(cell.attr->childIndex);
}

/// The source that a cell without one of its own reads through an ancestor's connection; null if there is none.
Cell* inheritedSource(Cell& cell)
{
    for (Cell* p = cell.parent; p; p = p->parent)
        if (p->source)
            return counterpart(cell, *p, *p->source, true);
    return nullptr;
}

// ---- dirt --------------------------------------------------------------------------------------------------------

void noteChildDirty(Cell& cell)
{
    for (Cell* p = cell.parent; p && !p->is(Cell::kChildDirty); p = p->parent)
        p->flags |= Cell::kChildDirty;
}

void markInput(Cell& target)
{
    if (other::walking && !other::first(target))
        return;
    walkCells(target, [](Cell& c) { c.flags |= Cell::kDirty; });
    noteChildDirty(target);
    state().queue.push_back(&target);
}

/// Targets of the cell itself and of the compounds above it, there the child that corresponds.
void markTargets(Cell& cell)
{
    if (cell.targets)
        for (Cell* t : *cell.targets)
            markInput(*t);
    for (Cell* p = cell.parent; p; p = p->parent)
        if (p->targets)
            for (Cell* t : *p->targets)
                if (Cell* c = counterpart(cell, *p, *t, true); c && !c->source)
                    markInput(*c);
}

void markOutput(Cell& out)
{
    if (other::walking ? other::first(out) : !out.is(Cell::kDirty) || out.is(Cell::kLeaky)) {
        out.flags = (out.flags | Cell::kDirty) & ~Cell::kLeaky;
        noteChildDirty(out);
        markTargets(out);
    } else if (other::walking) {
        return;
    } else if (!out.is(Cell::kChildDirty) && (out.children || out.elements)) {
        return;   // all dirty already, nothing below was read since
    }
    if (out.children)
        for (size_t i = 0; i < out.attr->children.size(); ++i)
            if (out.children[i])
                markOutput(*out.children[i]);
    if (out.elements)
        for (size_t i = 0; i < out.elements->cells.size(); ++i)
            markOutput(*out.elements->cells[i]);
}

/// Appends every existing cell of an attribute, through all elements of the multis above it.
void existingCells(Node& node, const Attribute& a, std::vector<Cell*>& out)
{
    if (!a.hasArrayAncestor()) {
        if (Cell* c = node.cellIfAny(&a))
            out.push_back(c);
        return;
    }
    std::vector<Cell*> above;
    existingCells(node, *a.parent, above);
    for (Cell* p : above) {
        if (!p->isMulti()) {
            if (Cell* c = p->childIfAny(a.childIndex))
                out.push_back(c);
        } else if (p->elements) {
            for (Cell* e : p->elements->cells)
                if (Cell* c = e->childIfAny(a.childIndex))
                    out.push_back(c);
        }
    }
}

/// Dirt that crosses to other nodes goes on from there as from any cell; cells that nobody read since end it.
void markAcross(Node& node, const Attribute& a)
{
    std::vector<Cell*> also;
    node.type->onDirty(node, a, also);
    for (Cell* c : also)
        if (c && (other::walking ? !other::seen(*c) : !c->is(Cell::kDirty) || (c->flags & (Cell::kLeaky | Cell::kChildDirty)))) {
            markOutput(*c);
            state().queue.push_back(c);
        }
}

/// True if all elements of the attribute were marked a moment ago: many inputs affect the same long multi, nothing is
/// read while dirt spreads, and once is enough.
bool markedBefore(Node& node, const Attribute& a)
{
    if (other::walking || !(a.isArray() || a.hasArrayAncestor()))
        return false;
    constexpr size_t kBack = 16;
    auto&            marked = state().marked;
    const std::pair<const Node*, const Attribute*> entry(&node, &a);
    const auto from = marked.end() - std::ptrdiff_t(std::min(marked.size(), kBack));
    if (std::find(from, marked.end(), entry) != marked.end())
        return true;
    marked.push_back(entry);
    return false;
}

void markAll(Node& node, const Attribute& a)
{
    if (markedBefore(node, a))
        return;
    if (node.type->onDirty)
        markAcross(node, a);
    if (Cell* c = node.cellIfAny(&a)) {
        markOutput(*c);
    } else if (a.hasArrayAncestor()) {
        std::vector<Cell*> cells;
        existingCells(node, a, cells);
        for (Cell* c : cells)
            markOutput(*c);
    }
}

void markSlots(Node& node, const std::vector<int>& slots)
{
    for (int slot : slots)
        markAll(node, *node.type->table[slot]);
}

void markAffectedBy(Node& node, const Attribute& a)
{
    if (size_t(a.slot) < node.type->affects.size())
        markSlots(node, node.type->affects[a.slot]);
}

void markBelow(Node& node, const Attribute& a)
{
    markAffectedBy(node, a);
    for (auto& c : a.children)
        markBelow(node, *c);
}

void askNode(Cell& cell)
{
    Node& node = *cell.node;
    if (node.type->onDirty)
        markAcross(node, *cell.attr);
    if (node.dependsOnDirtyCall && node.user) {
        MPlugArray plugs;
        if (other::walking)
            other::noteCall(cell);
        node.user->setDependentsDirty(PlugAccess::lend(cell), plugs);
        for (unsigned i = 0; i < plugs.length(); ++i)
            if (Cell* c = PlugAccess::cell(plugs[i]))
                markOutput(*c);
    }
}

void visit(Cell& cell)
{
    if (cell.flags & (Cell::kRemoved | Cell::kPrivate))
        return;
    markTargets(cell);
    if (cell.children || cell.elements)
        walkCells(cell, [&](Cell& c) {
            if (&c != &cell && c.targets)
                for (Cell* t : *c.targets)
                    markInput(*t);
        });
    Node& node = *cell.node;
    markBelow(node, *cell.attr);
    for (const Attribute* p = cell.attr->parent; p; p = p->parent)
        markAffectedBy(node, *p);
    if (cell.attr == nodeStateAttribute())
        dirtyOutputs(node);
    askNode(cell);
}

// ---- pulling -----------------------------------------------------------------------------------------------------

void report(const std::string& message, bool isError)
{
    if (state().report)
        state().report(message, isError);
}

void reportCycle(Cell& cell)
{
    State& s = state();
    if (std::find(s.reported.begin(), s.reported.end(), &cell) != s.reported.end())
        return;
    s.reported.push_back(&cell);
    report("Cycle on '" + plugName(cell) + "' may not evaluate as expected.", false);
}

/// Data that somebody still holds is not the block's any more: a later write through that handle must not be seen.
void seal(size_t first)
{
    auto& written = state().written;
    for (size_t i = first; i < written.size(); ++i) {
        Cell& c = *written[i];
        c.flags &= ~Cell::kWritten;
        if (Data* data = c.data(); data && data->heldElsewhere())
            c.setData(data->share());
    }
    written.resize(first);
}

bool computedHere(const Cell& cell)
{
    if (cell.node->isComputed(cell.attr))
        return true;
    for (const Attribute* p = cell.attr->parent; p; p = p->parent)
        if (cell.node->isComputed(p))
            return true;
    return !cell.attr->is(Attribute::kWritable);
}

void callCompute(Cell& cell)
{
    State& s = state();
    Node&  node = *cell.node;
    Node*  outer = s.node;
    const other::Computing scope(node);   // first: it must not take this compute's marks for older ones
    const size_t firstWritten = s.written.size();
    ++s.depth;
    ++node.computing;
    s.node = &node;
    cell.flags |= Cell::kComputing;
    MStatus status;
    {
        MDataBlock  block = HandleAccess::block(&node);
        const MPlug plug = PlugAccess::lend(cell);
        try {
            if (!node.type->computeBase || !node.type->computeBase(node, cell))
                status = node.user ? node.user->compute(plug, block) : MStatus(MS::kUnknownParameter);
        } catch (const std::exception& e) {   // memory that runs out above all: the evaluation around it goes on
            report("Evaluation of '" + plugName(cell) + "' failed: " + e.what(), true);
            status = MS::kFailure;
        }
    }
    cell.flags &= ~Cell::kComputing;
    s.node = outer;
    --node.computing;
    --s.depth;
    if (s.written.size() > firstWritten)
        seal(firstWritten);
    if (status == MS::kSuccess)
        clean(cell);
    else
        cell.flags |= Cell::kLeaky;
    if (s.depth == 0 && !cell.is(Cell::kRemoved))   // the caller still looks at the cell it asked for
        collect();
}

void compute(Cell& cell)
{
    if (cell.is(Cell::kComputing)) {
        reportCycle(cell);
        return;
    }
    if (!cell.node->user && !cell.node->type->computeBase) {
        clean(cell);
        return;
    }
    switch (deepstack::room(state().depth)) {
    case deepstack::Room::kEnough: callCompute(cell); break;
    case deepstack::Room::kMove: deepstack::run([&] { callCompute(cell); }); break;
    case deepstack::Room::kNone:
        report("Evaluation went too deep at '" + plugName(cell) + "'.", true);
        cell.flags |= Cell::kLeaky;
    }
}

/// After a tuple or compound got a whole new value: what stands below is clean unless it has a source of its own.
void settleChildren(Cell& cell)
{
    if (!cell.children)
        return;
    for (size_t i = 0; i < cell.attr->children.size(); ++i)
        if (Cell* c = cell.children[i]) {
            if (c->source) {
                c->flags |= Cell::kDirty;
                pull(*c);
            } else {
                c->flags &= ~Cell::kDirty;
            }
        }
}

void take(Cell& cell, Cell& source)
{
    if (source.store() == Store::kNone)
        pullDeep(source);
    else
        pull(source);
    if (source.is(Cell::kDirty))
        source.flags |= Cell::kLeaky;
    if (other::active)
        other::receive(cell, source);
    cell.copyFrom(source);
    cell.flags &= ~(Cell::kDirty | Cell::kChildDirty | Cell::kLeaky);
    if (cell.source)
        cell.flags |= Cell::kSet;   // a value of its own from now on, also when the connection goes
    settleChildren(cell);
}

void pullTupleChildren(Cell& cell)
{
    cell.flags &= ~Cell::kChildDirty;
    if (cell.children)
        for (size_t i = 0; i < cell.attr->children.size(); ++i)
            if (cell.children[i])
                pull(*cell.children[i]);
}

}  // namespace

Cell* sourceOf(Cell& cell) { return cell.source ? cell.source : cell.parent ? inheritedSource(cell) : nullptr; }

void askInternalValue(Cell& cell)
{
    if (cell.source || (cell.flags & (Cell::kComputing | Cell::kPrivate | Cell::kRemoved)) || !cell.node->user)
        return;
    const bool wasSet = cell.is(Cell::kSet);
    cell.flags |= Cell::kComputing;
    MDataHandle handle = HandleAccess::handle(&cell);
    cell.node->user->getInternalValue(PlugAccess::lend(cell), handle);
    cell.flags &= ~Cell::kComputing;
    cell.set(Cell::kSet, wasSet);
}

void tellInternalValue(Cell& cell)
{
    if (!cell.is(Cell::kInternal) || (cell.flags & (Cell::kComputing | Cell::kPrivate | Cell::kRemoved)) || !cell.node->user)
        return;
    cell.flags |= Cell::kComputing;
    cell.node->user->setInternalValue(PlugAccess::lend(cell), HandleAccess::handle(&cell));
    cell.flags &= ~Cell::kComputing;
}

void pull(Cell& cell)
{
    if (!(cell.flags & (Cell::kDirty | Cell::kChildDirty | Cell::kInternal))) {
        if (other::active)
            other::noteRead(cell);
        return;
    }
    if (cell.flags & (Cell::kPrivate | Cell::kRemoved)) {
        cell.flags &= ~Cell::kDirty;
        return;
    }
    if (cell.store() == Store::kNone && cell.attr->kind != AttrKind::kMessage)
        return;
    if (cell.is(Cell::kDirty)) {
        if (cell.source)
            take(cell, *cell.source);
        else if (Cell* source = cell.parent ? inheritedSource(cell) : nullptr)
            take(cell, *source);
        else if (computedHere(cell))
            compute(cell);
        else
            cell.flags &= ~(Cell::kDirty | Cell::kLeaky);
    }
    if (cell.is(Cell::kChildDirty))
        pullTupleChildren(cell);
    if (cell.is(Cell::kInternal))
        askInternalValue(cell);
}

void pullDeep(Cell& cell)
{
    if (cell.store() != Store::kNone) {
        pull(cell);
        return;
    }
    Cell* source = cell.source ? cell.source : cell.parent ? inheritedSource(cell) : nullptr;
    if (source) {
        if (cell.flags & (Cell::kDirty | Cell::kChildDirty)) {
            pullDeep(*source);
            if (other::active)
                other::receive(cell, *source);
            cell.copyFrom(*source);
            walkCells(cell, [&](Cell& c) { c.set(Cell::kDirty, c.source && &c != &cell); });
            if (cell.source)
                cell.flags |= Cell::kSet;
        }
    } else if (cell.is(Cell::kDirty)) {
        if (cell.node->isComputed(cell.attr) && !(cell.flags & (Cell::kPrivate | Cell::kRemoved)))
            compute(cell);
        else
            cell.flags &= ~Cell::kDirty;
    }
    if (!cell.isMulti())
        for (size_t i = 0; i < cell.attr->children.size(); ++i)
            pullDeep(*cell.child(i));
    else if (cell.elements)
        for (size_t i = 0; i < cell.elements->cells.size(); ++i)
            pullDeep(*cell.elements->cells[i]);
    cell.flags &= ~Cell::kChildDirty;
}

namespace {

void spreadHere(Cell& cell)
{
    auto& queue = state().queue;
    const size_t base = queue.size();
    state().marked.clear();
    queue.push_back(&cell);
    while (queue.size() > base) {
        Cell* c = queue.back();
        queue.pop_back();
        visit(*c);
    }
    state().marked.clear();
}

void dirtyHere(Cell& cell)
{
    walkCells(cell, [](Cell& c) { c.flags |= Cell::kDirty; });
    noteChildDirty(cell);
    spreadHere(cell);
}

}  // namespace

void spread(Cell& cell)
{
    if (other::any())
        other::everyStore([&] { spreadHere(cell); });
    else
        spreadHere(cell);
}

void dirty(Cell& cell)
{
    if (other::any())
        other::everyStore([&] { dirtyHere(cell); });
    else
        dirtyHere(cell);
}

void dirtyOutputs(Node& node)
{
    auto& queue = state().queue;
    const size_t base = queue.size();
    for (size_t slot = 0; slot < node.type->computed.size(); ++slot)
        if (node.type->computed[slot])
            markAll(node, *node.type->table[slot]);
    if (base)
        return;   // a caller that is spreading works the queue off
    while (!queue.empty()) {
        Cell* c = queue.back();
        queue.pop_back();
        visit(*c);
    }
}

void clean(Cell& cell)
{
    cell.flags &= ~(Cell::kDirty | Cell::kChildDirty | Cell::kLeaky);
    if (cell.children || cell.elements)
        walkCells(cell, [](Cell& c) { c.flags &= ~(Cell::kDirty | Cell::kChildDirty | Cell::kLeaky); });
    // a compound or multi that was dirty as a whole is so no longer
    for (Cell* p = cell.parent; p; p = p->parent)
        if (p->is(Cell::kDirty)) {
            if (p->attr->isTuple() && !p->isMulti())
                for (size_t i = 0; i < p->attr->children.size(); ++i)
                    p->child(i);   // siblings made later would not know that they are dirty
            p->flags &= ~Cell::kDirty;
            p->flags |= Cell::kChildDirty;
        }
}

int   depth() { return state().depth; }
Node* computingNode() { return state().node; }

void freeLater(Ref<Object> object)
{
    if (state().depth > 0)
        state().later.push_back(std::move(object));
}

void noteRemoved(Node& node) { state().withRemoved.emplace_back(&node); }

void collect()
{
    State& s = state();
    if (s.depth > 0)
        return;
    if (!s.reported.empty())
        s.reported.clear();
    deleteCopies();
    if (!s.withRemoved.empty()) {
        std::vector<Ref<Node>> nodes = std::move(s.withRemoved);
        s.withRemoved.clear();
        for (auto& node : nodes)
            std::erase_if(node->removed, [](Cell* c) {
                bool held = false;
                walkCells(*c, [&](Cell& below) { held = held || below.users > 0; });
                if (!held)
                    delete c;
                return !held;
            });
    }
    if (!s.later.empty()) {
        auto objects = std::move(s.later);
        s.later.clear();
    }
}

void setReporter(void (*r)(const std::string&, bool)) { state().report = r; }

void noteWritten(Cell& cell)
{
    if (state().depth > 0 && !(cell.flags & (Cell::kWritten | Cell::kPrivate))) {   // private ones go with their builder
        cell.flags |= Cell::kWritten;
        state().written.push_back(&cell);
    }
}

void noteCommandInCompute() {}

}  // namespace mirk::eval
