#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>

#include <climits>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>

#include "graph/access.h"
#include "graph/context.h"
#include "graph/edit.h"
#include "graph/evaluate.h"

using namespace mirk;

namespace {

void tell(MStatus* status, bool good)
{
    if (status) *status = good ? MS::kSuccess : MS::kFailure;
}

Cell* at(Cell* multi, unsigned place)
{
    return multi && place < multi->elementCount() ? multi->elements->cells[place] : nullptr;
}

/// The multi below an element of a multi: the child of a compound like weightList[i].weights.
Cell* firstMultiOf(Cell* element)
{
    if (!element)
        return nullptr;
    for (size_t i = 0; i < element->attr->children.size(); ++i)
        if (element->attr->children[i]->isArray())
            return element->child(i);
    return nullptr;
}

/// At another time the element is missing there; its connections are the scene's.
void dropElement(Cell& element)
{
    if (eval::other::active)
        eval::other::hideElement(element);
    else
        edit::dropElement(element);
}

}  // namespace

MArrayDataHandle::MArrayDataHandle(const MDataHandle& handle, MStatus* status)
{
    Cell* c = HandleAccess::cell(handle);
    tell(status, c && c->isMulti());
    if (c && c->isMulti()) {
        cell_ = c;
        input_ = HandleAccess::isInput(handle);
        if (input_)
            *this = HandleAccess::block(c->node).inputArrayValue(PlugAccess::lend(*c));
    }
}

MDataHandle MArrayDataHandle::inputValue(MStatus* status)
{
    Cell* c = at(cell_, cursor_);
    tell(status, c);
    if (c)
        eval::pull(*c);
    return HandleAccess::handle(c, true);
}

MDataHandle MArrayDataHandle::outputValue(MStatus* status)
{
    Cell* c = at(cell_, cursor_);
    tell(status, c);
    return HandleAccess::handle(c);
}

MArrayDataHandle MArrayDataHandle::inputArrayValue(MStatus* status)
{
    Cell* c = firstMultiOf(at(cell_, cursor_));
    tell(status, c);
    return c ? HandleAccess::array(c, true) : MArrayDataHandle();
}

MArrayDataHandle MArrayDataHandle::outputArrayValue(MStatus* status)
{
    Cell* c = firstMultiOf(at(cell_, cursor_));
    tell(status, c);
    return c ? HandleAccess::array(c) : MArrayDataHandle();
}

MStatus MArrayDataHandle::next()
{
    if (!cell_ || cursor_ + 1 >= cell_->elementCount())
        return MS::kFailure;
    ++cursor_;
    return MS::kSuccess;
}

unsigned MArrayDataHandle::elementCount(MStatus* status)
{
    tell(status, cell_);
    return cell_ ? unsigned(cell_->elementCount()) : 0;
}

unsigned MArrayDataHandle::elementIndex(MStatus* status)
{
    Cell* c = at(cell_, cursor_);
    tell(status, c);
    return c ? unsigned(c->index) : 0;
}

MStatus MArrayDataHandle::jumpToElement(unsigned logical)
{
    if (!cell_ || !cell_->elements || logical > unsigned(INT_MAX))
        return MS::kFailure;
    // in dense multis the element stands at its index
    const Cell*  dense = at(cell_, logical);
    const size_t place = dense && dense->index == int(logical) ? logical : cell_->elements->lowerBound(int(logical));
    Cell* c = at(cell_, unsigned(place));
    if (!c || c->index != int(logical))
        return MS::kFailure;
    cursor_ = unsigned(place);
    return MS::kSuccess;
}

MStatus MArrayDataHandle::jumpToArrayElement(unsigned physical)
{
    if (!at(cell_, physical))
        return MS::kFailure;
    cursor_ = physical;
    return MS::kSuccess;
}

MArrayDataBuilder MArrayDataHandle::builder(MStatus* status)
{
    MArrayDataBuilder b;
    const bool good = cell_ && cell_->attr->is(Attribute::kUsesBuilder);
    tell(status, good);
    if (good)
        b.cell_ = cell_;
    return b;
}

MStatus MArrayDataHandle::set(const MArrayDataBuilder& builder)
{
    if (!cell_ || !builder.cell_ || builder.cell_->attr != cell_->attr)
        return MS::kFailure;
    if (builder.cell_ != cell_) {
        // elements keep their cells: handles on them stay good
        const Cell& fresh = *builder.cell_;
        for (size_t i = cell_->elementCount(); i-- > 0;)
            if (!fresh.elementIfAny(cell_->elements->cells[i]->index))
                dropElement(*cell_->elements->cells[i]);
        cell_->copyFrom(fresh);
        walkCells(*cell_, [](Cell& c) { c.flags |= Cell::kSet; });
    }
    eval::clean(*cell_);
    return MS::kSuccess;
}

MStatus MArrayDataHandle::copy(const MArrayDataHandle& source)
{
    if (!cell_ || !source.cell_)
        return MS::kFailure;
    if (source.input_)
        eval::pullDeep(*source.cell_);
    cell_->copyFrom(*source.cell_);
    eval::clean(*cell_);
    return MS::kSuccess;
}

MStatus MArrayDataHandle::setClean()
{
    Cell* c = at(cell_, cursor_);
    if (!c)
        return MS::kFailure;
    eval::clean(*c);
    return MS::kSuccess;
}

MStatus MArrayDataHandle::setAllClean()
{
    if (!cell_)
        return MS::kFailure;
    eval::clean(*cell_);
    return MS::kSuccess;
}

MArrayDataBuilder::MArrayDataBuilder(MDataBlock* block, const MObject& attribute, unsigned, MStatus* status)
{
    auto* a = objectAs<Attribute>(attribute);
    Node* node = block ? HandleAccess::node(*block) : nullptr;
    const bool good = a && node && a->isArray() && a->is(Attribute::kUsesBuilder);
    tell(status, good);
    if (!good)
        return;
    fresh_ = std::make_shared<Cell>(node, a, nullptr, -1);
    fresh_->flags |= Cell::kPrivate;
    cell_ = fresh_.get();
}

MArrayDataBuilder::MArrayDataBuilder(const MObject& attribute, unsigned, MStatus* status)
{
    auto* a = objectAs<Attribute>(attribute);
    const bool good = a && a->isArray() && a->is(Attribute::kUsesBuilder);
    tell(status, good);
    if (!good)
        return;
    fresh_ = std::make_shared<Cell>(nullptr, a, nullptr, -1);
    fresh_->flags |= Cell::kPrivate;
    cell_ = fresh_.get();
}

MDataHandle MArrayDataBuilder::addElement(unsigned index, MStatus* status)
{
    Cell* c = cell_ && index <= unsigned(INT_MAX) ? cell_->element(int(index)) : nullptr;
    tell(status, c);
    if (c)
        eval::clean(*c);
    return HandleAccess::handle(c);
}

MArrayDataHandle MArrayDataBuilder::addElementArray(unsigned index, MStatus* status)
{
    Cell* c = firstMultiOf(HandleAccess::cell(addElement(index)));
    tell(status, c);
    return c ? HandleAccess::array(c) : MArrayDataHandle();
}

MDataHandle MArrayDataBuilder::addLast(unsigned* index, MStatus* status)
{
    const unsigned last = !cell_ || !cell_->elementCount() ? 0 : unsigned(cell_->elements->cells.back()->index) + 1;
    if (index)
        *index = last;
    return addElement(last, status);
}

MDataHandle MArrayDataBuilder::addLast(MStatus* status) { return addLast(nullptr, status); }

MArrayDataHandle MArrayDataBuilder::addLastArray(MStatus* status)
{
    Cell* c = firstMultiOf(HandleAccess::cell(addLast()));
    tell(status, c);
    return c ? HandleAccess::array(c) : MArrayDataHandle();
}

MStatus MArrayDataBuilder::removeElement(unsigned index)
{
    Cell* c = cell_ && index <= unsigned(INT_MAX) ? cell_->elementIfAny(int(index)) : nullptr;
    if (!c)
        return MS::kFailure;
    if (fresh_) {
        std::erase(cell_->elements->cells, c);
        delete c;
    } else {
        dropElement(*c);
    }
    return MS::kSuccess;
}

unsigned MArrayDataBuilder::elementCount(MStatus* status) const
{
    tell(status, cell_);
    return cell_ ? unsigned(cell_->elementCount()) : 0;
}

MStatus MArrayDataBuilder::growArray(unsigned amount)
{
    if (!cell_)
        return MS::kFailure;
    if (!cell_->elements)
        cell_->elements = new Elements;
    cell_->elements->cells.reserve(cell_->elementCount() + std::min(amount, 1u << 24));
    return MS::kSuccess;
}

MStatus MArrayDataBuilder::setGrowSize(unsigned) { return cell_ ? MS::kSuccess : MS::kFailure; }
