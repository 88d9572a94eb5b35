// The table of built-in functions by name.
#include <unordered_map>

#include "mel/native.h"

namespace mirk::mel {

std::vector<const Native*> allNatives()
{
    std::vector<const Native*> all;
    for (std::span<const Native> rows : {mathNatives(), stringNatives(), arrayNatives(), coreNatives(), fileNatives(), nameNatives()})
        for (const Native& n : rows)
            all.push_back(&n);
    return all;
}

std::span<const Native* const> nativesOf(std::string_view name)
{
    using Table = std::unordered_map<std::string_view, std::vector<const Native*>>;
    static const Table table = [] {
        Table t;
        for (const Native* n : allNatives())
            t[n->name].push_back(n);
        return t;
    }();
    auto it = table.find(name);
    return it == table.end() ? std::span<const Native* const>() : std::span<const Native* const>(it->second);
}

}  // namespace mirk::mel
