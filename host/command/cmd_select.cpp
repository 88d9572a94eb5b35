// The selection.
#include "command/cmd_util.h"
#include "dag/selection_list.h"
#include "nodes/sets.h"

namespace mirk::command {

namespace {

constexpr Flag kSelect[] = {
    {"add", "add"}, {"af", "addFirst"}, {"all", "all"}, {"ado", "allDagObjects"}, {"adn", "allDependencyNodes"}, {"cl", "clear"},
    {"cc", "containerCentric"}, {"d", "deselect"}, {"hi", "hierarchy"}, {"ne", "noExpand"}, {"r", "replace"}, {"tgl", "toggle"}, {"vis", "visible"},
};

void addOnce(std::vector<Item>& to, const Item& item)
{
    if (std::find(to.begin(), to.end(), item) == to.end())
        to.push_back(item);
}

std::vector<Item> given(const Call& call)
{
    std::vector<Item> items;
    if (call.has("all") || call.has("allDagObjects") || call.has("allDependencyNodes"))
    {
        for (Node* n : scene().nodes())
        {
            const bool top = n->dag && !n->dag->parents.empty() && n->dag->parents.front() == &dag::world();
            if (!n->isDefault && (call.has("allDependencyNodes") || top || (call.has("all") && !n->dag)))
                items.push_back(itemOf(*n));
        }
        return items;
    }
    for (Item& item : callItems(call))
    {
        if (Node* node = nodeOf(item); node && !item.plug && !call.has("noExpand") && sets::isSet(*node))
        {
            for (const Item& member : sets::flattened(*node))
                addOnce(items, member);
            continue;
        }
        addOnce(items, item);
        if (call.has("hierarchy") && !item.path.nodes.empty())
            dag::descend(item.path, [&](const Path& p) { return addOnce(items, itemOf(p)), true; });
    }
    return items;
}

Value select(Call& call)
{
    std::vector<Item> list = selection::get();
    if (call.has("clear"))
        list.clear();
    else
    {
        const std::vector<Item> items = given(call);
        const auto isGiven = [&](const Item& i) { return std::find(items.begin(), items.end(), i) != items.end(); };
        if (call.has("deselect"))
            for (const Item& i : items)
                removeItem(list, i);
        else if (call.has("toggle"))
        {
            std::vector<Item> kept;
            for (const Item& i : list)
                if (!isGiven(i))
                    kept.push_back(i);
            for (const Item& i : items)
                if (std::find(list.begin(), list.end(), i) == list.end())
                    kept.push_back(i);
            list = kept;
        }
        else if (call.has("add"))
            for (const Item& i : items)
                addOnce(list, i);
        else if (call.has("addFirst"))
        {
            std::erase_if(list, isGiven);
            list.insert(list.begin(), items.begin(), items.end());
        }
        else
            list = items;
    }
    selection::set(std::move(list));
    return {};
}

const Command kCommands[] = {{"select", kSelect, select}};

}  // namespace

void registerSelectCommands() { add(kCommands); }

}  // namespace mirk::command
