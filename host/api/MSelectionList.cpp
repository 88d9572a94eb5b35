#include <maya/MSelectionList.h>

#include <maya/MDagPath.h>
#include <maya/MItSelectionList.h>
#include <maya/MPlug.h>
#include <maya/MStringArray.h>

#include "api/api.h"
#include "api/selection_access.h"
#include "dag/path_access.h"
#include "data/component.h"

using namespace mirk;

namespace {

Item itemOf(const MObject& object)
{
    Item item;
    item.node = Ref<Node>(objectAs<Node>(object));
    if (item.node && item.node->dag)
        item.path = dag::firstPath(*item.node);
    return item;
}

Item itemOf(const MDagPath& path, const MObject& component)
{
    Item item;
    item.path = PathAccess::unwrap(path);
    item.node = Ref<Node>(item.path.node());
    item.component = Ref<Component>(objectAs<Component>(component));
    if (item.component && item.node && !item.node->type->shape) {   // components stand on the shape
        MDagPath shape = path;
        if (shape.extendToShape()) {
            item.path = PathAccess::unwrap(shape);
            item.node = Ref<Node>(item.path.node());
        }
    }
    return item;
}

Item itemOf(const MPlug& plug)
{
    Item item;
    item.plug = PlugAccess::cell(plug);
    if (item.plug)
        item = {Ref<Node>(item.plug->node), item.plug->node->dag ? dag::firstPath(*item.plug->node) : Path(), item.plug, nullptr, ""};
    return item;
}

bool usable(const Item& item) { return item.node && item.node->inScene; }

/// Components in common.
Ref<Component> shared(const Component& a, const Component& b)
{
    if (a.complete)
        return copyComponent(b);
    Ref<Component> both = copyComponent(a);
    if (b.complete)
        return both;
    Ref<Component> extra = copyComponent(a);
    removeElements(*extra, b.indices.data(), b.count());
    removeElements(*both, extra->indices.data(), extra->count());
    return both;
}

void apply(std::vector<Item>& items, const Item& item, MSelectionList::MergeStrategy strategy)
{
    if (strategy == MSelectionList::kMergeNormal)
        return mergeItem(items, item);
    if (strategy == MSelectionList::kRemoveFromList)
        return removeItem(items, item);
    for (const Item& known : items)
        if (sameTarget(known, item)) {
            if (!known.component) {
                removeItem(items, item);
                return;
            }
            const Ref<Component> both = shared(*known.component, *item.component);
            Item                 common = item, rest = item;
            common.component = both;
            rest.component = copyComponent(*item.component);
            removeElements(*rest.component, both->indices.data(), both->count());
            removeItem(items, common);
            if (rest.component->complete || rest.component->count() > 0)
                mergeItem(items, rest);
            return;
        }
    items.push_back(item);
}

}  // namespace

MSelectionList::MSelectionList() : items_(new HeldItems) {}
MSelectionList::MSelectionList(const MSelectionList& src) : items_(new HeldItems(*src.items_)) {}
MSelectionList::~MSelectionList() { delete items_; }
MSelectionList& MSelectionList::operator=(const MSelectionList& other)
{
    *items_ = *other.items_;
    return *this;
}

namespace {

MStatus addItem(MSelectionList& list, const Item& item, bool merge)
{
    if (!usable(item))
        return MS::kInvalidParameter;
    if (!merge) {
        SelectionAccess::append(list, item);
        return MS::kSuccess;
    }
    std::vector<Item> items = SelectionAccess::items(list);
    mergeItem(items, item);
    SelectionAccess::set(list, std::move(items));
    return MS::kSuccess;
}

MStatus replaceItem(MSelectionList& list, unsigned index, const Item& item)
{
    std::vector<Item> items = SelectionAccess::items(list);
    if (index >= items.size() || !usable(item))
        return MS::kInvalidParameter;
    items[index] = item;
    SelectionAccess::set(list, std::move(items));
    return MS::kSuccess;
}

const Item* at(const MSelectionList& list, unsigned index)
{
    const auto& items = SelectionAccess::items(list);
    return index < items.size() ? &items[index] : nullptr;
}

bool holds(const Component& whole, const Component& part) { return whole.complete || containsAll(whole, part); }

}  // namespace

MStatus MSelectionList::clear()
{
    *items_ = HeldItems();
    return MS::kSuccess;
}

bool     MSelectionList::isEmpty(MStatus* s) const { return reported(s, MS::kSuccess, items_->items().empty()); }
unsigned MSelectionList::length(MStatus* s) const { return reported(s, MS::kSuccess, unsigned(items_->items().size())); }

MStatus MSelectionList::getDependNode(unsigned index, MObject& depNode) const
{
    const Item* item = at(*this, index);
    if (!item)
        return MS::kInvalidParameter;
    depNode = wrap(item->node);
    return MS::kSuccess;
}

MStatus MSelectionList::getDagPath(unsigned index, MDagPath& dagPath, MObject* component) const
{
    const Item* item = at(*this, index);
    if (!item || item->path.nodes.empty())
        return MS::kInvalidParameter;
    dagPath = PathAccess::wrap(item->path);
    if (component)
        *component = wrap(item->component);
    return MS::kSuccess;
}

MStatus MSelectionList::getPlug(unsigned index, MPlug& plug) const
{
    const Item* item = at(*this, index);
    if (!item || !item->plug)
        return MS::kInvalidParameter;
    plug = PlugAccess::make(*item->plug);
    return MS::kSuccess;
}

MStatus MSelectionList::add(const MObject& object, bool merge) { return addItem(*this, itemOf(object), merge); }
MStatus MSelectionList::add(const MDagPath& path, const MObject& component, bool merge) { return addItem(*this, itemOf(path, component), merge); }
MStatus MSelectionList::add(const MPlug& plug, bool merge) { return addItem(*this, itemOf(plug), merge); }
MStatus MSelectionList::add(const char* matchString) { return add(MString(matchString)); }

MStatus MSelectionList::add(const MString& matchString, bool)
{
    std::vector<Item> found = names::resolve(matchString.asChar());
    for (Item& item : found)
        items_->append(std::move(item));
    return found.empty() ? MS::kInvalidParameter : MS::kSuccess;
}

MStatus MSelectionList::remove(unsigned index)
{
    std::vector<Item> items = items_->items();
    if (index >= items.size())
        return MS::kInvalidParameter;
    items.erase(items.begin() + index);
    SelectionAccess::set(*this, std::move(items));
    return MS::kSuccess;
}

MStatus MSelectionList::replace(unsigned index, const MObject& item) { return replaceItem(*this, index, itemOf(item)); }
MStatus MSelectionList::replace(unsigned index, const MDagPath& item, const MObject& component) { return replaceItem(*this, index, itemOf(item, component)); }
MStatus MSelectionList::replace(unsigned index, const MPlug& plug) { return replaceItem(*this, index, itemOf(plug)); }

bool MSelectionList::hasItem(const MObject& object, MStatus* s) const
{
    const Node* node = objectAs<Node>(object);
    bool        found = false;
    for (const Item& i : items_->items())
        found = found || (i.node.get() == node && !i.plug && !i.component);
    return reported(s, node ? MS::kSuccess : MS::kInvalidParameter, node && found);
}

bool MSelectionList::hasItem(const MDagPath& path, const MObject& component, MStatus* s) const
{
    const Item wanted = itemOf(path, component);
    bool       found = false;
    for (const Item& i : items_->items())
        found = found || (sameTarget(i, wanted) && (!i.component || holds(*i.component, *wanted.component)));
    return reported(s, wanted.node ? MS::kSuccess : MS::kInvalidParameter, wanted.node && found);
}

bool MSelectionList::hasItem(const MPlug& plug, MStatus* s) const
{
    const Cell* cell = PlugAccess::cell(plug);
    bool        found = false;
    for (const Item& i : items_->items())
        found = found || i.plug == cell;
    return reported(s, cell ? MS::kSuccess : MS::kInvalidParameter, cell && found);
}

bool MSelectionList::hasItemPartly(const MDagPath& path, const MObject& component, MStatus* s) const
{
    const Item wanted = itemOf(path, component);
    bool       found = false;
    for (const Item& i : items_->items()) {
        if (!sameTarget(i, wanted) || !i.component)
            continue;
        const Ref<Component> both = shared(*i.component, *wanted.component);
        found = found || both->complete || both->count() > 0;
    }
    return reported(s, wanted.component ? MS::kSuccess : MS::kInvalidParameter, found);
}

MStatus MSelectionList::toggle(const MDagPath& item, const MObject& component) { return merge(item, component, kXORWithList); }

MStatus MSelectionList::merge(const MSelectionList& other, MergeStrategy strategy)
{
    std::vector<Item>       items = items_->items();
    const std::vector<Item> more = other.items_->items();
    for (const Item& i : more)
        apply(items, i, strategy);
    SelectionAccess::set(*this, std::move(items));
    return MS::kSuccess;
}

MStatus MSelectionList::merge(const MDagPath& object, const MObject& component, MergeStrategy strategy)
{
    const Item item = itemOf(object, component);
    if (!usable(item))
        return MS::kInvalidParameter;
    std::vector<Item> items = items_->items();
    apply(items, item, strategy);
    SelectionAccess::set(*this, std::move(items));
    return MS::kSuccess;
}

MStatus MSelectionList::getSelectionStrings(MStringArray& array) const
{
    array.clear();
    for (const Item& i : items_->items())
        for (const std::string& t : names::texts(i))
            array.append(t.c_str());
    return MS::kSuccess;
}

MStatus MSelectionList::getSelectionStrings(unsigned index, MStringArray& array) const
{
    array.clear();
    const Item* item = at(*this, index);
    if (!item)
        return MS::kInvalidParameter;
    for (const std::string& t : names::texts(*item))
        array.append(t.c_str());
    return MS::kSuccess;
}

// ---- iterator ----------------------------------------------------------------------------------------------------

MItSelectionList::MItSelectionList(const MSelectionList& list, MFn::Type filter, MStatus* s) : list_(list), filter_(filter)
{
    skip();
    report(s, MS::kSuccess);
}

void MItSelectionList::skip()
{
    const auto& items = SelectionAccess::items(list_);
    while (at_ < items.size() && filter_ != MFn::kInvalid && !items[at_].node->hasFn(filter_) &&
           !(items[at_].component && items[at_].component->hasFn(filter_)))
        ++at_;
}

MStatus MItSelectionList::reset()
{
    at_ = 0;
    skip();
    return MS::kSuccess;
}

MStatus MItSelectionList::setFilter(MFn::Type filter)
{
    filter_ = filter;
    return reset();
}

bool MItSelectionList::isDone(MStatus* s) const { return reported(s, MS::kSuccess, at_ >= list_.length()); }

MStatus MItSelectionList::next()
{
    if (isDone())
        return MS::kFailure;
    ++at_;
    skip();
    return MS::kSuccess;
}

enum MItSelectionList::itemType MItSelectionList::itemType(MStatus* s) const
{
    const Item* item = at(list_, at_);
    if (!item)
        return reported(s, MS::kFailure, kUnknownItem);
    return reported(s, MS::kSuccess, item->plug ? kPlugSelectionItem : item->path.nodes.empty() ? kDNselectionItem : kDagSelectionItem);
}

MStatus MItSelectionList::getDependNode(MObject& depNode) const { return list_.getDependNode(at_, depNode); }
MStatus MItSelectionList::getDagPath(MDagPath& dagPath) const { return list_.getDagPath(at_, dagPath); }
MStatus MItSelectionList::getDagPath(MDagPath& dagPath, MObject& component) const { return list_.getDagPath(at_, dagPath, component); }
MStatus MItSelectionList::getPlug(MPlug& plug) const { return list_.getPlug(at_, plug); }
MStatus MItSelectionList::getStrings(MStringArray& array) const { return list_.getSelectionStrings(at_, array); }
bool    MItSelectionList::hasComponents(MStatus* s) const
{
    const Item* item = at(list_, at_);
    return reported(s, item ? MS::kSuccess : MS::kFailure, item && item->component);
}
