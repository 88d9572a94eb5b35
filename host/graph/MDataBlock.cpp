#include <maya/MDataBlock.h>

#include <maya/MDGContext.h>

#include "graph/access.h"
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

MArrayDataHandle inputArray(Cell* c, MStatus* status)
{
    const bool good = c && c->isMulti();
    tell(status, good);
    if (!good)
        return MArrayDataHandle();
    if (c->source || c->parent || (c->is(Cell::kDirty) && c->node->isComputed(c->attr)))
        eval::pullDeep(*c);
    return HandleAccess::array(c, true);
}

MArrayDataHandle outputArray(Cell* c, MStatus* status)
{
    const bool good = c && c->isMulti();
    tell(status, good);
    return good ? HandleAccess::array(c) : MArrayDataHandle();
}

}  // namespace

MDataHandle MDataBlock::inputValue(const MObject& a, MStatus* s) { return input(cellOf(node_, a), s); }
MDataHandle MDataBlock::inputValue(const MPlug& p, MStatus* s) { return input(PlugAccess::cell(p), s); }

MDataHandle MDataBlock::outputValue(const MObject& a, MStatus* s)
{
    Cell* c = cellOf(node_, a);
    tell(s, c);
    return HandleAccess::handle(c);
}

MDataHandle MDataBlock::outputValue(const MPlug& p, MStatus* s)
{
    Cell* c = PlugAccess::cell(p);
    tell(s, c);
    return HandleAccess::handle(c);
}

MArrayDataHandle MDataBlock::inputArrayValue(const MObject& a, MStatus* s) { return inputArray(cellOf(node_, a), s); }
MArrayDataHandle MDataBlock::inputArrayValue(const MPlug& p, MStatus* s) { return inputArray(PlugAccess::cell(p), s); }
MArrayDataHandle MDataBlock::outputArrayValue(const MObject& a, MStatus* s) { return outputArray(cellOf(node_, a), s); }
MArrayDataHandle MDataBlock::outputArrayValue(const MPlug& p, MStatus* s) { return outputArray(PlugAccess::cell(p), s); }

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
    return MDGContext();
}
