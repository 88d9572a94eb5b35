// Lists of items as selections and MSelectionList keep them.
#pragma once
#include <vector>

#include "dag/dag.h"

namespace mirk {

/// Items that keep the cells of their plugs from being freed.
class HeldItems
{
public:
    HeldItems() = default;
    explicit HeldItems(std::vector<Item> items);
    HeldItems(const HeldItems& o);
    HeldItems& operator=(HeldItems o);
    ~HeldItems();
    const std::vector<Item>& items() const { return items_; }
    void append(Item item);   ///< without a look at the others

private:
    void count(int by);
    std::vector<Item> items_;
};

/// The same node on the same path, the same plug, or components of one type on it.
bool sameTarget(const Item& a, const Item& b);
/// Adds an item; components join those of the same shape and type.
void mergeItem(std::vector<Item>& items, const Item& item);
/// Takes an item out, of components only the elements named.
void removeItem(std::vector<Item>& items, const Item& item);

namespace selection {
/// A node leaves the scene.
void dropNode(Node& node);
}

}  // namespace mirk
