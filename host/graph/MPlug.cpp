#include <maya/MPlug.h>
#include <maya/MPlugArray.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <limits>

#include <maya/MAngle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MIntArray.h>
#include <maya/MString.h>
#include <maya/MTime.h>

#include "command/registry.h"
#include "dag/dag.h"
#include "graph/access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"

using namespace mirk;

namespace {

bool tell(MStatus* status, bool good, MStatus::MStatusCode bad = MS::kFailure)
{
    if (status) *status = good ? MS::kSuccess : bad;
    return good;
}

void count(Node* node, Cell* cell, int by)
{
    if (cell)
        std::atomic_ref<int32_t>(cell->users).fetch_add(by, std::memory_order_relaxed);
    if (node && by > 0)
        node->addRef();
    else if (node)
        node->release();
}

/// From `from` (or the node) down to attribute `to`; stops at the first multi on the way that needs an index.
Cell* descend(Node& node, Cell* from, const Attribute& to)
{
    if (from && from->attr == &to)
        return from;
    std::vector<const Attribute*> way;
    for (const Attribute* a = &to; a && !(from && a == from->attr); a = a->parent)
        way.push_back(a);
    Cell* c = from;
    for (size_t i = way.size(); i-- > 0;) {
        c = c ? c->child(way[i]->childIndex) : node.cell(way[i]);
        if (!c || (c->isMulti() && i > 0))
            return c;
    }
    return c;
}

}  // namespace

namespace mirk {

MPlug PlugAccess::make(Cell& cell)
{
    MPlug p = lend(cell);
    p.owns_ = true;
    count(p.node_, p.cell_, 1);
    return p;
}

Cell* PlugAccess::cell(const MPlug& plug)
{
    return plug.cell_ && plug.cell_->attr == plug.attr_ ? plug.cell_ : nullptr;
}

}  // namespace mirk

MPlug::MPlug(const MObject& node, const MObject& attribute)
{
    node_ = objectAs<Node>(node);
    attr_ = objectAs<Attribute>(attribute);
    if (!node_ || !attr_ || !node_->owns(attr_)) {
        node_ = nullptr;
        attr_ = nullptr;
        return;
    }
    cell_ = descend(*node_, nullptr, *attr_);
    owns_ = true;
    count(node_, cell_, 1);
}

MPlug::MPlug(const MPlug& o) : node_(o.node_), attr_(o.attr_), cell_(o.cell_), owns_(o.node_ != nullptr)
{
    if (owns_)
        count(node_, cell_, 1);
}

MPlug::MPlug(MPlug&& o) noexcept : node_(o.node_), attr_(o.attr_), cell_(o.cell_), owns_(o.owns_)
{
    o.node_ = nullptr;
    o.attr_ = nullptr;
    o.cell_ = nullptr;
    o.owns_ = false;
}

MPlug& MPlug::operator=(const MPlug& o)
{
    if (this != &o) {
        MPlug copy(o);
        std::swap(node_, copy.node_);
        std::swap(attr_, copy.attr_);
        std::swap(cell_, copy.cell_);
        std::swap(owns_, copy.owns_);
    }
    return *this;
}

MPlug::~MPlug()
{
    if (owns_)
        count(node_, cell_, -1);
}

MStatus MPlug::setAttribute(const MObject& attribute)
{
    if (!node_)
        return MS::kFailure;
    MPlug other(wrap(node_), attribute);
    if (other.isNull())
        return MS::kInvalidParameter;
    *this = other;
    return MS::kSuccess;
}

MObject MPlug::attribute(MStatus* s) const
{
    tell(s, attr_);
    return wrap(const_cast<Attribute*>(attr_));
}

MObject MPlug::node(MStatus* s) const
{
    tell(s, node_);
    return wrap(node_);
}

MString MPlug::name(MStatus* s) const
{
    if (!tell(s, node_))
        return MString();
    if (Cell* c = PlugAccess::cell(*this))
        return MString(plugName(*c).c_str());
    return MString((node_->name + "." + attr_->longName).c_str());
}

namespace {

/// The path with every compound above, also those that need not be named.
std::string fullPath(const Cell& cell, bool longNames)
{
    std::string path;
    for (const Cell* c = &cell; c;) {
        std::string step = longNames ? c->attr->longName : c->attr->shortName;
        if (c->isElement()) {
            step += "[" + std::to_string(c->index) + "]";
            c = c->parent;
        }
        path = path.empty() ? step : step + "." + path;
        c = c ? c->parent : nullptr;
    }
    return path;
}

}  // namespace

MString MPlug::partialName(bool withNode, bool, bool, bool useAlias, bool useFullPath, bool useLongNames, MStatus* s) const
{
    if (!tell(s, node_))
        return MString();
    Cell* c = PlugAccess::cell(*this);
    std::string path = c && useFullPath ? fullPath(*c, useLongNames)
                       : c              ? plugPath(*c, !useLongNames)
                       : useLongNames   ? attr_->longName
                                        : attr_->shortName;
    if (useAlias && c)
        for (auto& [alias, target] : node_->aliases)
            if (target == plugPath(*c) || target == plugPath(*c, true))
                path = alias;
    if (withNode)
        path = (node_->dag ? dag::shortestName(*node_) : node_->name) + "." + path;
    return MString(path.c_str());
}

MString MPlug::info(MStatus* s) const { return name(s); }

bool MPlug::isNull(MStatus* s) const { tell(s, true); return !node_; }
bool MPlug::isArray(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    tell(s, attr_);
    return c ? c->isMulti() : attr_ && attr_->isArray();
}
bool MPlug::isElement(MStatus* s) const { tell(s, attr_); Cell* c = PlugAccess::cell(*this); return c && c->isElement(); }
bool MPlug::isCompound(MStatus* s) const { tell(s, attr_); return attr_ && attr_->isCompound() && !isArray(); }
bool MPlug::isChild(MStatus* s) const
{
    tell(s, attr_);
    Cell* c = PlugAccess::cell(*this);
    return attr_ && attr_->parent && !(c && c->isElement());
}
bool MPlug::isNetworked(MStatus* s) const { tell(s, attr_); return PlugAccess::cell(*this) != nullptr; }
bool MPlug::isDestination(MStatus* s) const { tell(s, attr_); Cell* c = PlugAccess::cell(*this); return c && c->source; }
bool MPlug::isSource(MStatus* s) const { tell(s, attr_); Cell* c = PlugAccess::cell(*this); return c && c->hasTargets(); }
bool MPlug::isConnected(MStatus* s) const { return isDestination(s) || isSource(); }
bool MPlug::isDynamic(MStatus* s) const { tell(s, attr_); return attr_ && attr_->is(Attribute::kDynamic); }
bool MPlug::isProcedural(MStatus* s) const { tell(s, attr_); return false; }

bool MPlug::isDefaultValue(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    if (!tell(s, c))
        return false;
    eval::pullDeep(*c);
    Cell fresh(c->node, c->attr, nullptr, c->index);
    fresh.flags |= Cell::kPrivate;
    const int n = storeDimension(c->store());
    for (int i = 0; i < n; ++i)
        if (c->number(i) != fresh.number(i))
            return false;
    if (n == 0 && c->store() == Store::kData)
        return c->data() == fresh.data() || !c->is(Cell::kSet);
    return n > 0 || !c->is(Cell::kSet);
}

bool MPlug::isLocked(MStatus* s) const
{
    tell(s, attr_);
    for (Cell* c = PlugAccess::cell(*this); c; c = c->parent)
        if (c->is(Cell::kLocked))
            return true;
    return false;
}

MStatus MPlug::setLocked(bool on)
{
    Cell* c = PlugAccess::cell(*this);
    if (!c)
        return MS::kFailure;
    edit::setFlag(*c, Cell::kLocked, on);
    return MS::kSuccess;
}

bool MPlug::isKeyable(MStatus* s) const
{
    tell(s, attr_);
    Cell* c = PlugAccess::cell(*this);
    if (c && c->is(Cell::kOwnKeyable))
        return c->is(Cell::kIsKeyable);
    return attr_ && attr_->is(Attribute::kKeyable);
}

MStatus MPlug::setKeyable(bool on)
{
    Cell* c = PlugAccess::cell(*this);
    if (!c)
        return MS::kFailure;
    edit::setFlag(*c, Cell::kIsKeyable, on);
    return MS::kSuccess;
}

bool MPlug::isChannelBoxFlagSet(MStatus* s) const
{
    tell(s, attr_);
    Cell* c = PlugAccess::cell(*this);
    if (c && c->is(Cell::kOwnChannelBox))
        return c->is(Cell::kIsChannelBox);
    return attr_ && attr_->is(Attribute::kChannelBox);
}

MStatus MPlug::setChannelBox(bool on)
{
    Cell* c = PlugAccess::cell(*this);
    if (!c)
        return MS::kFailure;
    edit::setFlag(*c, Cell::kIsChannelBox, on);
    return MS::kSuccess;
}

// ---- connections and structure -----------------------------------------------------------------------------------

bool MPlug::connectedTo(MPlugArray& array, bool asDst, bool asSrc, MStatus* s) const
{
    array.clear();
    Cell* c = PlugAccess::cell(*this);
    tell(s, attr_);
    if (!c)
        return false;
    if (asDst && c->source)
        array.append(PlugAccess::make(*c->source));
    if (asSrc && c->targets)
        for (Cell* t : *c->targets)
            array.append(PlugAccess::make(*t));
    return array.length() > 0;
}

MPlug MPlug::source(MStatus* s) const
{
    tell(s, attr_);
    Cell* c = PlugAccess::cell(*this);
    return c && c->source ? PlugAccess::make(*c->source) : MPlug();
}

bool MPlug::destinations(MPlugArray& array, MStatus* s) const { return connectedTo(array, false, true, s); }

MPlug MPlug::child(unsigned index, MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    Cell* below = c ? c->child(index) : nullptr;
    if (below) {
        tell(s, true);
        return PlugAccess::make(*below);
    }
    // indices above are open: the child is known by name only
    if (node_ && attr_ && !c && attr_->child(index)) {
        MPlug p(*this);
        p.attr_ = attr_->child(index);
        tell(s, true);
        return p;
    }
    tell(s, false, MS::kInvalidParameter);
    return MPlug();
}

MPlug MPlug::child(const MObject& attribute, MStatus* s) const
{
    auto* a = objectAs<Attribute>(attribute);
    if (a && a->parent == attr_ && attr_)
        return child(unsigned(a->childIndex), s);
    tell(s, false, MS::kInvalidParameter);
    return MPlug();
}

unsigned MPlug::numChildren(MStatus* s) const
{
    tell(s, attr_ && attr_->isCompound());
    return attr_ ? unsigned(attr_->children.size()) : 0;
}

MPlug MPlug::parent(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    Cell* p = c && !c->isElement() ? c->parent : nullptr;
    tell(s, p);
    return p ? PlugAccess::make(*p) : MPlug();
}

MPlug MPlug::array(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    tell(s, c && c->isElement());
    return c && c->isElement() ? PlugAccess::make(*c->parent) : MPlug();
}

MPlug MPlug::elementByLogicalIndex(unsigned index, MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    Cell* e = c && index <= unsigned(INT_MAX) ? c->element(int(index)) : nullptr;
    tell(s, e);
    return e ? PlugAccess::make(*e) : MPlug();
}

namespace {

/// A connected element is in the data block once it was evaluated.
bool hasValue(Cell& element)
{
    bool driven = false, has = false;
    walkCells(element, [&](Cell& c) {
        driven = driven || c.source;
        has = has || c.is(Cell::kSet);
    });
    return has || !driven;
}

/// The element at a place among those in the data block; behind them come the others.
Cell* inBlock(const Cell& multi, unsigned place)
{
    if (place >= multi.elementCount())
        return nullptr;
    const auto& cells = multi.elements->cells;
    for (const bool in : {true, false})
        for (Cell* e : cells)
            if (hasValue(*e) == in && place-- == 0)
                return e;
    return nullptr;
}

}  // namespace

MPlug MPlug::elementByPhysicalIndex(unsigned index, MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    Cell* e = c && c->isMulti() ? inBlock(*c, index) : nullptr;
    tell(s, e);
    return e ? PlugAccess::make(*e) : MPlug();
}

namespace {

bool connectedBelow(Cell& c)
{
    bool any = false;
    walkCells(c, [&](Cell& b) { any = any || b.source || b.hasTargets(); });
    return any;
}

}  // namespace

MPlug MPlug::connectionByPhysicalIndex(unsigned index, MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    for (size_t i = 0; c && i < c->elementCount(); ++i)
        if (connectedBelow(*c->elements->cells[i]) && index-- == 0) {
            tell(s, true);
            return PlugAccess::make(*c->elements->cells[i]);
        }
    tell(s, false);
    return MPlug();
}

unsigned MPlug::logicalIndex(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    tell(s, c && c->isElement());
    return c && c->isElement() ? unsigned(c->index) : 0;
}

MStatus MPlug::selectAncestorLogicalIndex(unsigned index, const MObject& attribute)
{
    if (!node_ || !cell_ || index > unsigned(INT_MAX))
        return MS::kFailure;
    const Attribute* wanted = attribute.isNull() ? nullptr : objectAs<Attribute>(attribute);
    Cell* multi = cell_;
    if (!wanted) {
        // the nearest multi above (or at) the place reached so far
        while (multi && !multi->isMulti())
            multi = multi->parent;
    } else {
        while (multi && !(multi->attr == wanted && multi->isMulti()))
            multi = multi->parent;
    }
    Cell* element = multi ? multi->element(int(index)) : nullptr;
    if (!element)
        return MS::kInvalidParameter;
    Cell* now = descend(*node_, element, *attr_);
    if (!now)
        return MS::kFailure;
    count(node_, now, 1);
    if (owns_)
        count(node_, cell_, -1);
    cell_ = now;
    owns_ = true;
    return MS::kSuccess;
}

unsigned MPlug::getExistingArrayAttributeIndices(MIntArray& indices, MStatus* s) const
{
    indices.clear();
    Cell* c = PlugAccess::cell(*this);
    if (!tell(s, c && c->isMulti()))
        return 0;
    for (size_t i = 0; i < c->elementCount(); ++i)
        indices.append(c->elements->cells[i]->index);
    return indices.length();
}

unsigned MPlug::numElements(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    if (!tell(s, c && c->isMulti()) || !c->elements)
        return 0;
    const auto& cells = c->elements->cells;
    return unsigned(std::count_if(cells.begin(), cells.end(), [](Cell* e) { return hasValue(*e); }));
}

unsigned MPlug::evaluateNumElements(MStatus* s)
{
    Cell* c = PlugAccess::cell(*this);
    if (!tell(s, c && c->isMulti()))
        return 0;
    eval::pullDeep(*c);
    return unsigned(c->elementCount());
}

unsigned MPlug::numConnectedElements(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    tell(s, c && c->isMulti());
    unsigned n = 0;
    for (size_t i = 0; c && i < c->elementCount(); ++i)
        n += connectedBelow(*c->elements->cells[i]);
    return n;
}

unsigned MPlug::numConnectedChildren(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    tell(s, c && isCompound());
    unsigned n = 0;
    for (size_t i = 0; c && i < attr_->children.size(); ++i)
        if (Cell* below = c->childIfAny(i))
            n += connectedBelow(*below);
    return n;
}

MStatus MPlug::setNumElements(unsigned elements)
{
    Cell* c = PlugAccess::cell(*this);
    if (!c || !c->isMulti())
        return MS::kFailure;
    if (!c->elements)
        c->elements = new Elements;
    c->elements->cells.reserve(std::min(elements, 1u << 24));
    return MS::kSuccess;
}

// ---- values ------------------------------------------------------------------------------------------------------

namespace {

Cell* valueCell(const MPlug& plug, MStatus* s)
{
    Cell* c = PlugAccess::cell(plug);
    if (!tell(s, c && !c->isMulti() && !c->is(Cell::kRemoved)))
        return nullptr;
    eval::pull(*c);
    return c;
}

double numberOf(const MPlug& plug, MStatus* s)
{
    Cell* c = valueCell(plug, s);
    if (c && storeDimension(c->store()) != 1 && !(c->data() && c->data()->type() == MFnData::kNumeric)) {
        tell(s, false);
        return 0;
    }
    return c ? c->number() : 0;
}

template <class T>
T limited(double v)
{
    if (!(v == v))
        return 0;
    return v <= double(std::numeric_limits<T>::min()) ? std::numeric_limits<T>::min()
         : v >= double(std::numeric_limits<T>::max()) ? std::numeric_limits<T>::max() : T(v);
}

template <class F>
MStatus write(const MPlug& plug, F&& f)
{
    Cell* c = PlugAccess::cell(plug);
    if (!c || c->isMulti() || c->is(Cell::kRemoved))
        return MS::kFailure;
    try {
        edit::beforeChange(*c);
    } catch (const command::Error&) {
        return MS::kFailure;   // locked
    }
    const bool good = f(*c);
    edit::afterChange(*c);
    return good ? MS::kSuccess : MS::kInvalidParameter;
}

MStatus writeNumber(const MPlug& plug, double value)
{
    const Cell* c = PlugAccess::cell(plug);
    if (c && storeDimension(c->store()) != 1 && !(c->store() == Store::kData && c->attr->kind == AttrKind::kGeneric))
        return MS::kInvalidParameter;   // a tuple or data does not take one number
    return write(plug, [&](Cell& cell) { cell.setNumber(value); return true; });
}

}  // namespace

bool   MPlug::asBool(MStatus* s) const { return numberOf(*this, s) != 0; }
char   MPlug::asChar(MStatus* s) const { return char(limited<signed char>(numberOf(*this, s))); }
short  MPlug::asShort(MStatus* s) const { return limited<short>(numberOf(*this, s)); }
int    MPlug::asInt(MStatus* s) const { return limited<int>(numberOf(*this, s)); }
float  MPlug::asFloat(MStatus* s) const { return float(numberOf(*this, s)); }
double MPlug::asDouble(MStatus* s) const { return numberOf(*this, s); }

MInt64 MPlug::asInt64(MStatus* s) const
{
    Cell* c = valueCell(*this, s);
    if (c && c->store() == Store::kInt64)
        return *static_cast<MInt64*>(c->v);
    return c ? limited<MInt64>(c->number()) : 0;
}

MString MPlug::asString(MStatus* s) const
{
    Cell* c = valueCell(*this, s);
    if (auto* data = c ? dynamic_cast<StringData*>(c->data()) : nullptr)
        return MString(data->value.c_str(), int(data->value.size()));
    return MString();
}

MObject MPlug::asMObject(MStatus* s) const
{
    Cell* c = valueCell(*this, s);
    if (!c)
        return MObject();
    MDataHandle h = HandleAccess::handle(c);
    MObject o = h.data();
    if (o.isNull() && s && storeDimension(c->store()) == 1)
        *s = MS::kFailure;
    return o;
}

MTime     MPlug::asMTime(MStatus* s) const { Cell* c = valueCell(*this, s); return HandleAccess::handle(c).asTime(); }
MAngle    MPlug::asMAngle(MStatus* s) const { Cell* c = valueCell(*this, s); return HandleAccess::handle(c).asAngle(); }
MDistance MPlug::asMDistance(MStatus* s) const { Cell* c = valueCell(*this, s); return HandleAccess::handle(c).asDistance(); }

MDataHandle MPlug::asMDataHandle(MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    tell(s, c);
    if (c)
        eval::pullDeep(*c);
    return HandleAccess::handle(c, true);
}

#define MIRK_GET(Type, method) MStatus MPlug::getValue(Type& value) const { MStatus s; value = method(&s); return s; }
MIRK_GET(bool, asBool)
MIRK_GET(char, asChar)
MIRK_GET(short, asShort)
MIRK_GET(int, asInt)
MIRK_GET(MInt64, asInt64)
MIRK_GET(float, asFloat)
MIRK_GET(double, asDouble)
MIRK_GET(MString, asString)
MIRK_GET(MObject, asMObject)
MIRK_GET(MTime, asMTime)
MIRK_GET(MAngle, asMAngle)
MIRK_GET(MDistance, asMDistance)
#undef MIRK_GET

MStatus MPlug::setBool(bool v) { return writeNumber(*this, v); }
MStatus MPlug::setChar(char v) { return writeNumber(*this, static_cast<signed char>(v)); }
MStatus MPlug::setShort(short v) { return writeNumber(*this, v); }
MStatus MPlug::setInt(int v) { return writeNumber(*this, v); }
MStatus MPlug::setFloat(float v) { return writeNumber(*this, v); }
MStatus MPlug::setDouble(double v) { return writeNumber(*this, v); }
MStatus MPlug::setMTime(const MTime& v) { return writeNumber(*this, v.as(MTime::kSeconds)); }
MStatus MPlug::setMAngle(const MAngle& v) { return writeNumber(*this, v.asRadians()); }
MStatus MPlug::setMDistance(const MDistance& v) { return writeNumber(*this, v.asCentimeters()); }

namespace {

template <class T>
MStatus writeHandle(const MPlug& plug, const T& value)
{
    return write(plug, [&](Cell& c) { HandleAccess::handle(&c).set(value); return true; });
}

}  // namespace

MStatus MPlug::setInt64(MInt64 v) { return writeHandle(*this, v); }

MStatus MPlug::setString(const MString& v)
{
    Cell* c = PlugAccess::cell(*this);
    if (!c || c->store() != Store::kData || !c->attr->acceptsData(MFnData::kString))
        return MS::kFailure;
    return writeHandle(*this, v);
}

MStatus MPlug::setMObject(const MObject& v)
{
    MStatus set = MS::kSuccess;
    const MStatus s = write(*this, [&](Cell& c) { set = HandleAccess::handle(&c).set(v); return set == MS::kSuccess; });
    return s == MS::kSuccess ? set : s;
}

MStatus MPlug::setMDataHandle(const MDataHandle& v)
{
    Cell* from = HandleAccess::cell(v);
    Cell* c = PlugAccess::cell(*this);
    if (!from || !c)
        return MS::kFailure;
    if (from == c) {   // the handle was this plug's own: what it wrote counts now
        edit::afterChange(*c);
        return MS::kSuccess;
    }
    try {
        edit::change(*c, [&] {
            if (c->isMulti() && from->isMulti())   // the value is what the handle has, and nothing beside it
                for (size_t i = c->elementCount(); i-- > 0;)
                    if (!from->elementIfAny(c->elements->cells[i]->index))
                        edit::dropElement(*c->elements->cells[i]);
            c->copyFrom(*from);
        });
    } catch (const command::Error&) {
        return MS::kFailure;
    }
    return MS::kSuccess;
}

MStatus MPlug::setValue(bool v) { return setBool(v); }
MStatus MPlug::setValue(char v) { return setChar(v); }
MStatus MPlug::setValue(short v) { return setShort(v); }
MStatus MPlug::setValue(int v) { return setInt(v); }
MStatus MPlug::setValue(MInt64 v) { return setInt64(v); }
MStatus MPlug::setValue(float v) { return setFloat(v); }
MStatus MPlug::setValue(double v) { return setDouble(v); }
MStatus MPlug::setValue(const MString& v) { return setString(v); }
MStatus MPlug::setValue(const char* v) { return setString(MString(v)); }
MStatus MPlug::setValue(const MObject& v) { return setMObject(v); }
MStatus MPlug::setValue(const MTime& v) { return setMTime(v); }
MStatus MPlug::setValue(const MAngle& v) { return setMAngle(v); }
MStatus MPlug::setValue(const MDistance& v) { return setMDistance(v); }
MStatus MPlug::setValue(MDataHandle& v) { return setMDataHandle(v); }

MDataHandle MPlug::constructHandle(MDataBlock& block) const
{
    Cell* c = PlugAccess::cell(*this);
    if (!c)
        return MDataHandle();
    Cell* own = new Cell(c->node, c->attr, nullptr, c->index);
    own->flags |= Cell::kPrivate;
    return HandleAccess::handle(own);
}

void MPlug::destructHandle(MDataHandle& handle) const
{
    Cell* c = HandleAccess::cell(handle);
    if (c && c->is(Cell::kPrivate) && !c->parent)
        delete c;
    handle = MDataHandle();
}

bool MPlug::operator==(const MPlug& o) const { return node_ == o.node_ && attr_ == o.attr_ && cell_ == o.cell_; }

bool MPlug::operator==(const MObject& attribute) const
{
    return attr_ && ObjectAccess::get(attribute) == static_cast<const Object*>(attr_);
}

// ---- MPlugArray --------------------------------------------------------------------------------------------------

MStatus MPlugArray::insert(const MPlug& plug, unsigned index)
{
    if (index > length())
        return MS::kInvalidParameter;
    plugs_.insert(plugs_.begin() + index, MPlug(plug));
    return MS::kSuccess;
}

MStatus MPlugArray::remove(unsigned index)
{
    if (index >= length())
        return MS::kInvalidParameter;
    plugs_.erase(plugs_.begin() + index);
    return MS::kSuccess;
}

MStatus MPlugArray::set(const MPlug& plug, unsigned index)
{
    if (index >= length())
        return MS::kInvalidParameter;
    plugs_[index] = plug;
    return MS::kSuccess;
}

const MPlug& MPlugArray::operator[](unsigned index) const
{
    static const MPlug none;
    return index < length() ? plugs_[index] : none;
}

MPlug& MPlugArray::operator[](unsigned index)
{
    thread_local MPlug none;
    if (index < length())
        return plugs_[index];
    none = MPlug();
    return none;
}
