// The items behind an MSelectionList.
#pragma once
#include <maya/MSelectionList.h>

#include "dag/selection_list.h"

namespace mirk {

struct SelectionAccess
{
    static const std::vector<Item>& items(const MSelectionList& list) { return list.items_->items(); }
    static void set(MSelectionList& list, std::vector<Item> items) { *list.items_ = HeldItems(std::move(items)); }
    static void append(MSelectionList& list, const Item& item) { list.items_->append(item); }
};

}  // namespace mirk
