#include "graph/edit.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include <maya/MPlugArray.h>

#include "command/registry.h"
#include "dag/dag.h"
#include "graph/access.h"
#include "graph/context.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"

namespace mirk::edit {
namespace {

using command::Error;

/// Keeps a cell's memory while an undo record names it.
class Hold
{
public:
    explicit Hold(Cell& c) : node_(c.node), cell_(&c) { ++c.users; }
    Hold(const Hold& o) : node_(o.node_), cell_(o.cell_) { ++cell_->users; }
    Hold& operator=(const Hold&) = delete;
    ~Hold() { --cell_->users; }
    Cell& operator*() const { return *cell_; }
    Cell* operator->() const { return cell_; }

private:
    Ref<Node> node_;
    Cell*     cell_;
};

/// The values of a cell and all that stands below it.
class Snapshot
{
public:
    explicit Snapshot(Cell& top)
    {
        walkCells(top, [&](Cell& c) { entries_.emplace_back(c); });
    }
    void restore() const
    {
        for (const Entry& e : entries_)
            e.restore();
    }

private:
    struct Entry
    {
        explicit Entry(Cell& c) : cell(c), flags(c.flags)
        {
            switch (c.store()) {
            case Store::kNone: break;
            case Store::kData: data = Ref<Data>(c.own.data); break;
            case Store::kMatrix: matrix.assign(c.own.matrix, c.own.matrix + 16); break;
            case Store::kFloatMatrix: matrix.assign(c.own.floatMatrix, c.own.floatMatrix + 16); break;
            default: std::memcpy(bytes, c.v, storeBytes(c.store()));
            }
        }
        void restore() const
        {
            Cell& c = *cell;
            switch (c.store()) {
            case Store::kNone: break;
            case Store::kData: c.setData(data); break;
            case Store::kMatrix: std::copy(matrix.begin(), matrix.end(), c.own.matrix); break;
            case Store::kFloatMatrix: std::copy(matrix.begin(), matrix.end(), c.own.floatMatrix); break;
            default: std::memcpy(c.v, bytes, storeBytes(c.store()));
            }
            c.set(Cell::kSet, flags & Cell::kSet);
        }
        Hold                cell;
        uint16_t            flags;
        unsigned char       bytes[32] = {};
        Ref<Data>           data;
        std::vector<double> matrix;
    };
    std::vector<Entry> entries_;
};

std::string nameOf(const Cell& c) { return plugName(c); }

MPxNode* userOf(Cell& c) { return c.node->user.get(); }

// ---- connections without checks or records ----------------------------------------------------------------------

void tell(Cell& source, Cell& target, bool made)
{
    const MPlug s = PlugAccess::make(source), t = PlugAccess::make(target);
    for (bool asSource : {true, false})
        if (MPxNode* user = userOf(asSource ? source : target)) {
            const MPlug& mine = asSource ? s : t;
            const MPlug& other = asSource ? t : s;
            if (made) user->connectionMade(mine, other, asSource);
            else user->connectionBroken(mine, other, asSource);
        }
}

void link(Cell& source, Cell& target)
{
    if (!source.targets)
        source.targets = new std::vector<Cell*>;
    source.targets->push_back(&target);
    target.source = &source;
    scene().modified = true;
    eval::dirty(target);
    tell(source, target, true);
}

void unlink(Cell& source, Cell& target)
{
    if (source.targets) {
        auto& all = *source.targets;   // connections that come and go are mostly the last ones
        const auto last = std::find(all.rbegin(), all.rend(), &target);
        if (last != all.rend())
            all.erase(std::next(last).base());
    }
    if (target.source == &source)
        target.source = nullptr;
    scene().modified = true;
    eval::clean(target);        // keeps the value it had
    eval::spread(target);
    tell(source, target, false);
}

void breakLink(Cell& source, Cell& target)
{
    Hold s(source), t(target);
    unlink(source, target);
    undo::push([=] { link(*s, *t); }, [=] { unlink(*s, *t); });
}

// ---- what fits ---------------------------------------------------------------------------------------------------

bool numeric(const Attribute& a) { return storeDimension(a.store) == 1; }
bool matrix(const Attribute& a)
{
    return a.kind == AttrKind::kMatrix || (a.kind == AttrKind::kTyped && a.dataType == MFnData::kMatrix);
}

bool fits(const Attribute& s, const Attribute& t);

bool genericFits(const Attribute& s, const Attribute& t)
{
    if (s.kind == AttrKind::kGeneric && t.kind == AttrKind::kGeneric)
        return true;   // told apart at run time
    const Attribute& generic = t.kind == AttrKind::kGeneric ? t : s;
    const Attribute& other = t.kind == AttrKind::kGeneric ? s : t;
    if (generic.acceptData.empty() && generic.acceptNumeric.empty())
        return true;
    if (other.kind == AttrKind::kTyped)
        return generic.acceptsData(other.dataType);
    if (matrix(other))
        return generic.acceptsData(MFnData::kMatrix);
    if (storeDimension(other.store) > 0)
        return std::any_of(generic.acceptNumeric.begin(), generic.acceptNumeric.end(), [&](auto n) {
            return storeDimension(storeOf(n)) == storeDimension(other.store);
        }) || generic.acceptsData(MFnData::kNumeric);
    return false;
}

bool compoundFits(const Attribute& s, const Attribute& t)
{
    const size_t n = std::min(s.children.size(), t.children.size());
    for (size_t i = 0; i < n; ++i)
        if (s.children[i]->isArray() != t.children[i]->isArray() || !fits(*s.children[i], *t.children[i]))
            return false;
    return n > 0;
}

/// Elements are meant here: that one is a multi and the other none is checked by the caller.
bool fits(const Attribute& s, const Attribute& t)
{
    if (t.kind == AttrKind::kMessage)
        return true;
    if (s.kind == AttrKind::kMessage)
        return false;
    if (s.kind == AttrKind::kGeneric || t.kind == AttrKind::kGeneric)
        return genericFits(s, t);
    if (numeric(s) && numeric(t))
        return true;
    if (matrix(s) && matrix(t))
        return true;
    if (s.isTuple() && t.isTuple())
        return storeDimension(s.store) == storeDimension(t.store);
    if (s.isCompound() && t.isCompound())
        return compoundFits(s, t);
    if (s.kind == AttrKind::kTyped && t.kind == AttrKind::kTyped) {
        if (s.dataType == MFnData::kPlugin && t.dataType == MFnData::kPlugin)
            return s.pluginDataId == t.pluginDataId;
        return s.dataType == t.dataType || s.dataType == MFnData::kAny || t.dataType == MFnData::kAny;
    }
    return false;
}

// ---- cycles ------------------------------------------------------------------------------------------------------

/// Plugs reached from a plug by one step, with dirt or against it.
class Walk
{
public:
    Walk(Cell& from, bool forward) : forward_(forward) { add(&from); }
    bool done() const { return next_ == order_.size(); }
    /// Takes one step; true if `goal` was met.
    bool step(const Walk& other)
    {
        Cell* c = order_[next_++];
        forward_ ? ahead(*c) : back(*c);
        for (; checked_ < order_.size(); ++checked_)
            if (other.has(order_[checked_]))
                return true;
        return false;
    }
    bool has(Cell* c) const { return seen_.count(c) != 0; }

private:
    void add(Cell* c)
    {
        if (c && seen_.emplace(c, true).second)
            order_.push_back(c);
    }
    void addSlot(Node& n, int slot)
    {
        if (Cell* c = n.cells[slot])
            walkCells(*c, [&](Cell& below) { add(&below); });
    }
    void ahead(Cell& c)
    {
        for (Cell* p = &c; p; p = p->parent)
            if (p->targets)
                for (Cell* t : *p->targets)
                    walkCells(*t, [&](Cell& below) { add(&below); });
        Node& n = *c.node;
        if (n.ownDependsOn)
            return ask(c);
        for (const Attribute* a = c.attr; a; a = a->parent)
            if (size_t(a->slot) < n.type->affects.size())
                for (int slot : n.type->affects[a->slot])
                    addSlot(n, slot);
    }
    void back(Cell& c)
    {
        for (Cell* p = &c; p; p = p->parent)
            add(p->source);
        Node& n = *c.node;
        if (n.ownDependsOn)
            return ask(c);
        for (size_t slot = 0; slot < n.type->affects.size(); ++slot)
            for (const Attribute* a = c.attr; a; a = a->parent)
                if (n.cells[slot] && std::count(n.type->affects[slot].begin(), n.type->affects[slot].end(), a->slot))
                    addSlot(n, int(slot));
    }
    /// A node with rules of its own is asked for each pair of plugs.
    void ask(Cell& c)
    {
        for (Cell* top : c.node->cells)
            if (top && !top->parent)
                walkCells(*top, [&](Cell& o) {
                    if (&o != &c && !has(&o) && (forward_ ? dependsOn(o, c) : dependsOn(c, o)))
                        add(&o);
                });
    }
    bool                           forward_;
    std::unordered_map<Cell*, bool> seen_;
    std::vector<Cell*>             order_;
    size_t                         next_ = 0, checked_ = 0;
};

Cell& sourceFor(Cell& source, Cell& target)
{
    // the plain name of a world-space output means its first instance
    if (source.isMulti() && source.attr->is(Attribute::kWorldSpace) && !target.isMulti())
        return *source.element(0);
    return source;
}

void setName(Node& node, const std::string& name)
{
    const std::string old = node.name;
    node.name = name;
    scene().renamed(node, old);
}

/// Breaks the connection; what then becomes of the nodes is the caller's to ask.
void disconnectOnly(Cell& source, Cell& target)
{
    if (target.source != &source)
        throw Error("There is no connection from '" + nameOf(source) + "' to '" + nameOf(target) + "' to disconnect.");
    for (Cell* p = &target; p; p = p->parent)
        if (p->is(Cell::kLocked))
            throw Error("The destination attribute '" + nameOf(target) + "' is locked and cannot be disconnected.");
    breakLink(source, target);
    if (target.attr->disconnect == 1) {
        beforeChange(target);
        target.setDefault();
        afterChange(target);
        target.set(Cell::kSet, false);
    } else if (target.attr->disconnect == 0) {
        Cell* element = &target;
        while (element && !element->isElement())
            element = element->parent;
        bool used = false;
        if (element)
            walkCells(*element, [&](Cell& c) { used = used || c.source; });
        if (element && !used)
            removeElement(*element);
    }
}

bool connectedAtAll(const Node& node, bool incoming)
{
    bool any = false;
    for (Cell* top : node.cells)
        if (top && !top->parent && !any)
            walkCells(*top, [&](Cell& c) { any = any || (incoming ? c.source != nullptr : c.hasTargets()); });
    return any;
}

/// A node that asked not to exist without connections goes when it has lost the last one.
void dropIfAlone(Node* node)
{
    if (!node || !node->user || !node->inScene || node->isDefault || node->locked || node->computing)
        return;
    if ((!node->user->existWithoutInConnections() && !connectedAtAll(*node, true)) ||
        (!node->user->existWithoutOutConnections() && !connectedAtAll(*node, false)))
        node->dag ? dag::deleteNode(*node) : deleteNode(*node);
}

/// Which virtuals the class has of its own: the graph need not ask the others.
void noteOverrides(Node& node)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpmf-conversions"
    MPxNode plain, &user = *node.user;
    const auto own = [&](auto function) {
        return reinterpret_cast<void*>((&user)->*function) != reinterpret_cast<void*>((&plain)->*function);
    };
    node.dependsOnDirtyCall = own(&MPxNode::setDependentsDirty);
    node.ownDependsOn = own(&MPxNode::dependsOn);
    node.ownPassive = own(&MPxNode::isPassiveOutput);
#pragma GCC diagnostic pop
}

}  // namespace

// ---- nodes -------------------------------------------------------------------------------------------------------

bool validName(const std::string& name)
{
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0])))
        return false;
    return std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) || c == '_' || c == ':'; });
}

std::string freeName(const std::string& wanted, Node* besides)
{
    auto taken = [&](const std::string& n) {
        auto& same = scene().named(n);
        return !same.empty() && !(same.size() == 1 && same[0] == besides);
    };
    if (!wanted.empty() && wanted.back() != '#' && !taken(wanted))
        return wanted;
    std::string base = wanted;
    while (!base.empty() && (base.back() == '#'))
        base.pop_back();
    int number = 1;
    if (wanted.empty() || wanted.back() != '#') {
        size_t digits = base.size();
        while (digits > 0 && std::isdigit(static_cast<unsigned char>(base[digits - 1])))
            --digits;
        if (digits < base.size() && base.size() - digits < 9)
            number = std::stoi(base.substr(digits)) + 1;
        base.resize(digits);
    }
    const int free = scene().freeNumber(base, number);
    if (besides && besides->name.size() > base.size() && besides->name.size() < base.size() + 10 && besides->name.compare(0, base.size(), base) == 0)
        if (const int own = std::atoi(besides->name.c_str() + base.size()); own >= number && own < free && besides->name == base + std::to_string(own))
            return besides->name;   // keeps its number if none below is free
    return base + std::to_string(free);
}

namespace {

/// A modifier may be taken back while later connections still stand; they must not outlive the node.
using Links = std::vector<std::pair<Cell*, Cell*>>;   // source and target

/// All connections of a cell and of what stands below it. Those from the node to itself come once, by their target.
void addLinks(Cell& top, Links& links)
{
    walkCells(top, [&](Cell& c) {
        if (c.source)
            links.emplace_back(c.source, &c);
        if (c.targets)
            for (Cell* t : *c.targets)
                if (t->node != top.node)
                    links.emplace_back(&c, t);
    });
}

void unlinkAll(Node& node)
{
    Links links;
    for (Cell* top : node.cells)
        if (top && !top->parent)
            addLinks(*top, links);
    for (auto [s, t] : links)
        if (t->source == s)
            unlink(*s, *t);
}

}  // namespace

Node* createNode(NodeType* type, const std::string& name)
{
    if (!type || type->abstract)
        throw Error("Cannot create a node of unknown type '" + (type ? type->name : std::string()) + "'.");
    std::string wanted = name.empty() ? (type->namePrefix.empty() ? type->name : type->namePrefix) + "#" : name;
    std::string plain = wanted;
    while (!plain.empty() && plain.back() == '#')
        plain.pop_back();
    if (!validName(plain))
        throw Error("New name '" + name + "' has no legal characters.");
    Ref<Node> node(type->make ? type->make(type, freeName(wanted)) : new Node(type, freeName(wanted)));
    if (type->creator)
        node->user.reset(static_cast<MPxNode*>(type->creator()));
    if (node->user) {
        UserNodeAccess::bind(*node->user, node.get());
        noteOverrides(*node);
    }
    scene().add(*node);
    undo::push([node] { unlinkAll(*node); scene().remove(*node); }, [node] { scene().add(*node); });
    if (node->user)
        node->user->postConstructor();
    return node.get();
}

namespace {

/// What the node's neighbours are joined by when it goes: a source and the targets that take it over.
using Passages = std::vector<std::pair<Hold, Hold>>;

Passages passages(Node& node)
{
    Passages found;
    if (!node.user)
        return found;
    const auto note = [&](Cell& source, const MPlug& through) {
        Cell* out = PlugAccess::cell(through);
        if (out && out->node == &node && out->targets)
            for (Cell* t : *out->targets)
                if (t->node != &node && source.node != &node)
                    found.emplace_back(Hold(source), Hold(*t));
    };
    const auto ask = [&](Cell& in) {
        if (!in.source)
            return;
        const MPlug plug = PlugAccess::make(in), one = node.user->passThroughToOne(plug);
        MPlugArray  many;
        if (!one.isNull())
            note(*in.source, one);
        else if (node.user->passThroughToMany(plug, many))
            for (unsigned i = 0; i < many.length(); ++i)
                note(*in.source, many[i]);
    };
    for (size_t slot = 0; slot < node.cells.size(); ++slot)
        if (Cell* top = node.cells[slot]; top && !top->parent)
            walkCells(*top, ask);
    return found;
}

void joinNeighbours(const Passages& found)
{
    for (const auto& [source, target] : found)
        if (source->node->inScene && target->node->inScene && !target->source && !target->is(Cell::kRemoved)) {
            try {
                connect(*source, *target);
            } catch (const Error&) {   // kinds that do not fit: the neighbours stay apart
            }
        }
}

}  // namespace

void deleteNode(Node& node)
{
    if (node.isDefault)
        throw Error("Cannot delete default node '" + node.name + "'.");
    if (node.locked)
        throw Error("Cannot delete locked node '" + node.name + "'.");
    Ref<Node> keep(&node);
    const Passages joined = passages(node);
    std::vector<Ref<Node>> neighbours;
    for (size_t slot = 0; slot < node.cells.size(); ++slot) {
        Cell* top = node.cells[slot];
        if (!top || top->parent)
            continue;
        Links links;
        addLinks(*top, links);
        for (auto [s, t] : links)
            if (t->source == s) {
                neighbours.emplace_back(t->node == &node ? s->node : t->node);
                if (t->node == &node) breakLink(*s, *t);
                else disconnectOnly(*s, *t);
            }
    }
    scene().remove(node);
    undo::push([keep] { scene().add(*keep); }, [keep] { scene().remove(*keep); });
    joinNeighbours(joined);
    for (const Ref<Node>& n : neighbours)
        dropIfAlone(n.get());
}

void renameNode(Node& node, const std::string& name)
{
    std::string plain = name;
    while (!plain.empty() && plain.back() == '#')
        plain.pop_back();
    if (!validName(plain))
        throw Error("New name '" + name + "' has no legal characters.");
    if (node.isDefault || node.locked)
        throw Error("Cannot rename a read only node '" + node.name + "'.");
    const std::string old = node.name, now = freeName(name, &node);
    if (now == old)
        return;
    setName(node, now);
    Ref<Node> keep(&node);
    undo::push([=] { setName(*keep, old); }, [=] { setName(*keep, now); });
}

// ---- connections -------------------------------------------------------------------------------------------------

std::string whyNot(const Attribute& s, const Attribute& t)
{
    if (!s.is(Attribute::kReadable) || !s.is(Attribute::kConnectable))
        return "the source cannot be read by a connection";
    if (!t.is(Attribute::kWritable) || !t.is(Attribute::kConnectable))
        return "the destination cannot be written by a connection";
    if (!fits(s, t))
        return "the kinds of data do not fit";
    return "";
}

bool dependsOn(Cell& out, Cell& in)
{
    Node& node = *out.node;
    if (in.node != &node)
        return false;
    bool depends = false;
    if (node.ownDependsOn && node.user &&
        node.user->dependsOn(PlugAccess::make(out), PlugAccess::make(in), depends) == MS::kSuccess)
        return depends;
    for (const Attribute* a = in.attr; a; a = a->parent)
        if (size_t(a->slot) < node.type->affects.size())
            for (const Attribute* b = out.attr; b; b = b->parent)
                if (std::count(node.type->affects[size_t(a->slot)].begin(), node.type->affects[size_t(a->slot)].end(), b->slot))
                    return true;
    return false;
}

bool isDriven(Cell& cell)
{
    for (Cell* c = &cell; c; c = c->parent)
        if (Cell* s = c->source)
            return !(s->node->ownPassive && s->node->user && s->node->user->isPassiveOutput(PlugAccess::make(*s)));
    return false;
}

bool wouldCycle(Cell& source, Cell& target)
{
    if (&source == &target)
        return true;
    Walk ahead(target, true), behind(source, false);
    if (ahead.has(&source))
        return true;
    while (!ahead.done() && !behind.done())
        if (ahead.step(behind) || behind.step(ahead))
            return true;
    return false;
}

void checkConnect(Cell& given, Cell& target, bool force)
{
    Cell& source = sourceFor(given, target);
    const std::string both = "'" + nameOf(source) + "' to '" + nameOf(target) + "'";
    if (target.source == &source)
        throw Error("'" + nameOf(source) + "' is already connected to '" + nameOf(target) + "'.");
    if (source.isMulti() != target.isMulti())
        throw Error("Cannot connect " + both + ": one is a multi and the other is none.");
    if (std::string why = whyNot(*source.attr, *target.attr); !why.empty())
        throw Error("Cannot connect " + both + ": " + why + ".");
    for (Cell* p = &target; p; p = p->parent)
        if (p->is(Cell::kLocked))
            throw Error("The destination attribute '" + nameOf(target) + "' is locked and cannot be connected.");
    if (target.source && !force)
        throw Error("'" + nameOf(target) + "' already has an incoming connection from '" + nameOf(*target.source) + "'.");
    for (Cell* c : {&source, &target})
        if (MPxNode* user = userOf(*c)) {
            bool legal = true;
            Cell& other = c == &source ? target : source;
            if (user->legalConnection(PlugAccess::make(*c), PlugAccess::make(other), c == &source, legal) == MS::kSuccess && !legal)
                throw Error("Cannot connect " + both + ": '" + c->node->name + "' refuses it.");
        }
    if (source.attr->kind != AttrKind::kMessage && target.attr->kind != AttrKind::kMessage && wouldCycle(source, target))
        throw Error("Cannot connect " + both + ": that would make a cycle.");
}

void connect(Cell& given, Cell& target, bool force)
{
    checkConnect(given, target, force);
    Cell&     source = sourceFor(given, target);
    Ref<Node> before(target.source ? target.source->node : nullptr);
    if (target.source)
        breakLink(*target.source, target);
    Hold s(source), t(target);
    link(source, target);
    undo::push([=] { unlink(*s, *t); }, [=] { link(*s, *t); });
    dropIfAlone(before.get());
}

void disconnect(Cell& source, Cell& target)
{
    for (Cell* c : {&source, &target})
        if (MPxNode* user = target.source == &source ? userOf(*c) : nullptr) {
            bool  legal = true;
            Cell& other = c == &source ? target : source;
            if (user->legalDisconnection(PlugAccess::make(*c), PlugAccess::make(other), c == &source, legal) == MS::kSuccess && !legal)
                throw Error("Cannot disconnect '" + nameOf(source) + "' from '" + nameOf(target) + "': '" + c->node->name + "' refuses it.");
        }
    Ref<Node> from(source.node), to(target.node);
    disconnectOnly(source, target);
    dropIfAlone(from.get());
    dropIfAlone(to.get());
}

// ---- values ------------------------------------------------------------------------------------------------------

void beforeChange(Cell& cell)
{
    for (Cell* p = &cell; p; p = p->parent)
        if (p->is(Cell::kLocked))
            throw Error("The attribute '" + nameOf(cell) + "' is locked or connected and cannot be modified.");
    if (eval::other::any() && !cell.node->computing)
        eval::other::forget(cell);
    // what is set on a driven plug lasts until its source changes, which only a source that is up to date can tell
    if (eval::depth() == 0)
        walkCells(cell, [](Cell& c) {
            if (c.source && c.is(Cell::kDirty))
                eval::pull(c);
        });
    if (!undo::recording() || cell.node->computing || (cell.flags & Cell::kPrivate))
        return;
    auto before = std::make_shared<Snapshot>(cell);
    Hold hold(cell);
    auto after = std::make_shared<std::shared_ptr<Snapshot>>();
    undo::push(
        [=] {
            if (!*after)
                *after = std::make_shared<Snapshot>(*hold);
            before->restore();
            eval::dirty(*hold);
            eval::clean(*hold);
            walkCells(*hold, eval::tellInternalValue);
        },
        [=] {
            if (*after)
                (*after)->restore();
            eval::dirty(*hold);
            eval::clean(*hold);
            walkCells(*hold, eval::tellInternalValue);
        });
}

void afterChange(Cell& cell)
{
    if (cell.flags & Cell::kPrivate)
        return;
    walkCells(cell, [](Cell& c) {
        if (!c.source)
            c.flags |= Cell::kSet;
    });
    for (Cell* c = &cell; c; c = c->parent)
        if (c->source && c->source->is(Cell::kDirty))   // the value holds until that changes, which dirt has to tell
            c->source->flags |= Cell::kLeaky;
    eval::clean(cell);
    walkCells(cell, eval::tellInternalValue);
    if (!cell.node->computing)
        eval::spread(cell);
    scene().modified = true;
}

void setNumber(Cell& cell, double value, int component)
{
    beforeChange(cell);
    cell.setNumber(value, component);
    afterChange(cell);
}

void setData(Cell& cell, Ref<Data> value)
{
    beforeChange(cell);
    cell.setData(std::move(value));
    afterChange(cell);
}

// ---- elements and dynamic attributes -----------------------------------------------------------------------------

namespace {

void takeOut(Cell& element)
{
    Cell& multi = *element.parent;
    auto&        cells = multi.elements->cells;
    const size_t at = multi.elements->lowerBound(element.index);   // long multis are emptied from the end
    if (at < cells.size() && cells[at] == &element)
        cells.erase(cells.begin() + std::ptrdiff_t(at));
    if (eval::other::any())
        eval::other::forgetElement(element);
    walkCells(element, [](Cell& c) { c.flags |= Cell::kRemoved; });
    multi.node->removed.push_back(&element);
    eval::noteRemoved(*multi.node);
    scene().modified = true;
    if (!multi.node->computing)   // dirt that reaches a computing node is dropped; whoever reads it is dirty already
        eval::spread(multi);
}

void putBack(Cell& element)
{
    Cell& multi = *element.parent;
    std::erase(multi.node->removed, &element);
    walkCells(element, [](Cell& c) { c.flags &= ~Cell::kRemoved; });
    if (!multi.elements)
        multi.elements = new Elements;
    auto& cells = multi.elements->cells;
    cells.insert(cells.begin() + multi.elements->lowerBound(element.index), &element);
    scene().modified = true;
    eval::spread(element);
}

}  // namespace

void dropElement(Cell& element)
{
    bool connected = false;
    walkCells(element, [&](Cell& c) { connected = connected || c.source || c.hasTargets(); });
    if (connected || element.node->computing)   // who asked for it meanwhile reads no old value
        walkCells(element, [](Cell& c) {
            if (!c.isMulti())
                c.setDefault();
        });
    if (!connected)
        removeElement(element);
}

Cell& addElement(Cell& multi, int index)
{
    if (Cell* present = multi.elementIfAny(index))
        return *present;
    Cell* made = multi.element(index);
    if (!made)
        throw Error("'" + nameOf(multi) + "' has no element " + std::to_string(index) + ".");
    if (undo::recording() && !multi.node->computing) {
        Hold hold(*made);
        undo::push([=] { takeOut(*hold); }, [=] { putBack(*hold); });
    }
    return *made;
}

void removeElement(Cell& element)
{
    if (!element.isElement() || element.is(Cell::kRemoved))
        throw Error("'" + nameOf(element) + "' is no element of a multi.");
    std::vector<std::pair<Cell*, Cell*>> links;
    walkCells(element, [&](Cell& c) {
        if (c.source)
            links.emplace_back(c.source, &c);
        if (c.targets)
            for (Cell* t : *c.targets)
                links.emplace_back(&c, t);
    });
    for (auto [s, t] : links)
        if (t->source == s)
            breakLink(*s, *t);
    if (element.is(Cell::kRemoved))
        return;
    if (undo::recording() && !element.node->computing) {
        Hold hold(element);
        undo::push([=] { putBack(*hold); }, [=] { takeOut(*hold); });
    }
    takeOut(element);
}

namespace {

void attach(Node& node, const Ref<Attribute>& top, size_t at = size_t(-1))
{
    node.dynamics.insert(node.dynamics.begin() + std::ptrdiff_t(std::min(at, node.dynamics.size())), top);
    scene().modified = true;
}

void detachDynamic(Node& node, const Ref<Attribute>& top)
{
    std::erase(node.dynamics, top);
    scene().modified = true;
}

}  // namespace

void addDynamic(Node& node, Ref<Attribute> top)
{
    std::string clash;
    walkAttributes(*top, [&](Attribute& a) {
        if (node.findAttribute(a.longName)) clash = a.longName;
        else if (node.findAttribute(a.shortName)) clash = a.shortName;
    });
    if (!clash.empty())
        throw Error("Found an attribute with the name '" + clash + "' on '" + node.name + "'.");
    walkAttributes(*top, [&](Attribute& a) {
        a.slot = node.nextSlot++;
        a.belowMulti = a.parent && (a.parent->belowMulti || a.parent->isArray());
        a.set(Attribute::kDynamic, true);
    });
    attach(node, top);
    Ref<Node> keep(&node);
    undo::push([=] { detachDynamic(*keep, top); }, [=] { attach(*keep, top); });
}

void deleteDynamic(Node& node, Attribute& top)
{
    auto it = std::find_if(node.dynamics.begin(), node.dynamics.end(), [&](auto& d) { return d.get() == &top; });
    if (it == node.dynamics.end())
        throw Error("The attribute '" + node.name + "." + top.longName + "' is not dynamic and cannot be deleted.");
    Ref<Attribute> hold = *it;
    if (Cell* c = node.cellIfAny(&top)) {
        std::vector<std::pair<Cell*, Cell*>> links;
        walkCells(*c, [&](Cell& below) {
            if (below.source)
                links.emplace_back(below.source, &below);
            if (below.targets)
                for (Cell* t : *below.targets)
                    links.emplace_back(&below, t);
        });
        for (auto [s, t] : links)
            if (t->source == s)
                breakLink(*s, *t);
    }
    const std::vector<std::pair<std::string, std::string>> aliases = node.aliases;
    for (const auto& [alias, path] : aliases)
        walkAttributes(*hold, [&, path = path](Attribute& a) {
            const size_t end = path.find_first_of(".[");
            if (path.substr(0, end) == a.longName || path.substr(0, end) == a.shortName)
                setAlias(node, path, "");
        });
    const size_t at = size_t(it - node.dynamics.begin());
    detachDynamic(node, hold);
    Ref<Node> keep(&node);
    undo::push([=] { attach(*keep, hold, at); }, [=] { detachDynamic(*keep, hold); });
}

void setFlag(Cell& cell, Cell::Flag flag, bool on)
{
    const uint16_t before = cell.flags;
    uint16_t owned = 0;
    if (flag == Cell::kIsKeyable) owned = Cell::kOwnKeyable;
    if (flag == Cell::kIsChannelBox) owned = Cell::kOwnChannelBox;
    const uint16_t mask = flag | owned;
    const uint16_t now = (on ? flag : 0) | owned;
    auto write = [mask](Cell& c, uint16_t bits) { c.flags = (c.flags & ~mask) | (bits & mask); };
    write(cell, now);
    scene().modified = true;
    Hold hold(cell);
    undo::push([=] { write(*hold, before); }, [=] { write(*hold, now); });
}

void setAlias(Node& node, const std::string& path, const std::string& alias)
{
    if (!alias.empty()) {
        if (!validName(alias) || alias.find(':') != std::string::npos)
            throw Error("'" + alias + "' is no legal alias.");
        if (node.findAttribute(alias))
            throw Error("'" + node.name + "' has an attribute named '" + alias + "' already.");
        for (auto& [a, p] : node.aliases)
            if (a == alias && p != path)
                throw Error("'" + node.name + "' has an alias named '" + alias + "' already.");
    }
    auto before = node.aliases;
    std::erase_if(node.aliases, [&](auto& entry) { return entry.second == path; });
    if (!alias.empty())
        node.aliases.emplace_back(alias, path);
    auto after = node.aliases;
    scene().modified = true;
    Ref<Node> keep(&node);
    undo::push([=] { keep->aliases = before; }, [=] { keep->aliases = after; });
}

}  // namespace mirk::edit
