// The active selection: a list of items without repeats, undoable, true to what is in the scene.
#include <algorithm>

#include "dag/dag.h"
#include "dag/selection_list.h"
#include "data/component.h"
#include "graph/undo.h"

namespace mirk {

HeldItems::HeldItems(std::vector<Item> items) : items_(std::move(items)) { count(1); }
HeldItems::HeldItems(const HeldItems& o) : items_(o.items_) { count(1); }
HeldItems& HeldItems::operator=(HeldItems o)
{
    std::swap(items_, o.items_);
    return *this;
}
HeldItems::~HeldItems() { count(-1); }

void HeldItems::append(Item item)
{
    if (item.plug)
        ++item.plug->users;
    items_.push_back(std::move(item));
}

void HeldItems::count(int by)
{
    for (Item& i : items_)
        if (i.plug)
            i.plug->users += by;
}

bool sameTarget(const Item& a, const Item& b)
{
    return a.node == b.node && a.plug == b.plug && a.path == b.path && bool(a.component) == bool(b.component) &&
           (!a.component || a.component->apiType() == b.component->apiType());
}

void mergeItem(std::vector<Item>& items, const Item& item)
{
    for (Item& i : items) {
        if (!sameTarget(i, item))
            continue;
        if (i.component && !i.component->complete) {
            if (item.component->complete) {
                i.component = item.component;
            } else {
                Ref<Component> both = copyComponent(*i.component);
                addElements(*both, item.component->indices.data(), item.component->count());
                i.component = both;
            }
            i.attribute.clear();
        }
        return;
    }
    items.push_back(item);
}

void removeItem(std::vector<Item>& items, const Item& item)
{
    for (size_t k = 0; k < items.size(); ++k) {
        if (!sameTarget(items[k], item))
            continue;
        if (items[k].component && !item.component->complete) {
            Ref<Component> left = copyComponent(*items[k].component);
            removeElements(*left, item.component->indices.data(), item.component->count());
            items[k].component = left;
            items[k].attribute.clear();
            if (left->complete || left->count() > 0)
                return;
        }
        items.erase(items.begin() + std::ptrdiff_t(k));
        return;
    }
}

namespace selection {
namespace {

HeldItems& held()
{
    static HeldItems* items = new HeldItems;   // outlives everything that is torn down at exit
    return *items;
}

bool present(const Item& item)
{
    return item.node && item.node->inScene && !(item.plug && item.plug->is(Cell::kRemoved));
}

}  // namespace

const std::vector<Item>& get() { return held().items(); }

void set(std::vector<Item> items)
{
    items.erase(std::remove_if(items.begin(), items.end(), [](const Item& i) { return !present(i); }), items.end());
    std::vector<Item> unique;
    for (const Item& i : items)
        mergeItem(unique, i);
    if (unique == held().items())
        return;
    HeldItems before = held(), after(std::move(unique));
    held() = after;
    undo::push([before] { held() = before; }, [after] { held() = after; });
}

void add(const Item& item)
{
    std::vector<Item> items = get();
    mergeItem(items, item);
    set(std::move(items));
}

void remove(const Item& item)
{
    std::vector<Item> items = get();
    removeItem(items, item);
    set(std::move(items));
}

void dropNode(Node& node)
{
    std::vector<Item> items = get();
    items.erase(std::remove_if(items.begin(), items.end(), [&](const Item& i) { return i.node.get() == &node; }), items.end());
    if (items.size() != get().size())
        set(std::move(items));
}

}  // namespace selection
}  // namespace mirk
