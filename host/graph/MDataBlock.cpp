#include <maya/MDataBlock.h>

#include <maya/MDGContext.h>

#include "graph/access.h"
#include "graph/context.h"
#include "graph/evaluate.h"

using namespace mirk;

namespace {

void tell(MStatus* status, bool good)
{
    if (status) *status = good ? MS::kSuccess : MS::kInvalidParameter;
}

Cell* cellOf(Node* node, const MObject& attribute)
{
    // the class is known by what it says of itself, which is quicker than a dynamic cast
    Object* o = ObjectAccess::get(attribute);
    if (!node || !o || o->objectClass() != Object::Class::kAttribute)
        return nullptr;
    auto* a = static_cast<Attribute*>(o);
    if (size_t(a->slot) < node->cells.size())
        if (Cell* c = node->cells[a->slot]; c && c->attr == a)
            return c;
    return node->cell(a);
}

MDataHandle input(Cell* c, MStatus* status)
{
    tell(status, c);
    if (c)
        eval::pull(*c);
    return HandleAccess::handle(c, true);
}

MDataHandle output(Cell* c, MStatus* status)
{
    tell(status, c);
    return HandleAccess::handle(c);
}

bool isMulti(Cell* c, MStatus* status)
{
    const bool good = c && c->isMulti();
    tell(status, good);
    return good;
}

MArrayDataHandle inputArray(Cell* c, MStatus* status)
{
    if (!isMulti(c, status))
        return MArrayDataHandle();
    if (c->source || c->parent || (c->is(Cell::kDirty) && c->node->isComputed(c->attr)))
        eval::pullDeep(*c);
    return HandleAccess::array(c, true);
}

MArrayDataHandle outputArray(Cell* c, MStatus* status) { return isMulti(c, status) ? HandleAccess::array(c) : MArrayDataHandle(); }

}  // namespace

namespace mirk {

/// The cell, or for a block that was given a context a copy of it there.
Cell* HandleAccess::inBlock(const MDataBlock& block, Cell* c)
{
    if (!c || block.mode_ == MDataBlock::kAmbient)
        return c;
    Cell* copy = eval::copyAt(*c, {block.mode_ == MDataBlock::kNormal, block.seconds_});
    eval::deleteLater(copy);
    return copy;
}

}  // namespace mirk

#define MIRK_BOTH(Handle, method, get) \
    Handle MDataBlock::method(const MObject& a, MStatus* s) { return get(HandleAccess::inBlock(*this, cellOf(node_, a)), s); } \
    Handle MDataBlock::method(const MPlug& p, MStatus* s) { return get(HandleAccess::inBlock(*this, PlugAccess::cell(p)), s); }
MIRK_BOTH(MDataHandle, inputValue, input)
MIRK_BOTH(MDataHandle, outputValue, output)
MIRK_BOTH(MArrayDataHandle, inputArrayValue, inputArray)
MIRK_BOTH(MArrayDataHandle, outputArrayValue, outputArray)
#undef MIRK_BOTH

namespace {

MStatus cleanCell(Cell* c)
{
    if (!c)
        return MS::kInvalidParameter;
    eval::clean(*c);
    return MS::kSuccess;
}

bool isCleanCell(Cell* c, MStatus* status)
{
    tell(status, c);
    return c && !(c->flags & (Cell::kDirty | Cell::kChildDirty));
}

}  // namespace

MStatus MDataBlock::setClean(const MObject& a) { return cleanCell(cellOf(node_, a)); }
MStatus MDataBlock::setClean(const MPlug& p) { return cleanCell(PlugAccess::cell(p)); }
bool MDataBlock::isClean(const MObject& a, MStatus* s) { return isCleanCell(cellOf(node_, a), s); }
bool MDataBlock::isClean(const MPlug& p, MStatus* s) { return isCleanCell(PlugAccess::cell(p), s); }

MDGContext MDataBlock::context(MStatus* s) const
{
    tell(s, node_);
    return mode_ == kElsewhere ? MDGContext(MTime(seconds_, MTime::kSeconds)) : mode_ == kNormal ? MDGContext() : MDGContext::current();
}

MStatus MDataBlock::setContext(const MDGContext& context)
{
    if (!node_)
        return MS::kFailure;
    if (context.isCurrent()) {
        mode_ = kAmbient;
        return MS::kSuccess;
    }
    MTime time;
    context.getTime(time);
    mode_ = context.isNormal() ? kNormal : kElsewhere;
    seconds_ = time.as(MTime::kSeconds);
    return MS::kSuccess;
}
