// The table of built-in functions by name.
#include <unordered_map>

#include "mel/native.h"

namespace mirk::mel {

std::span<const Native* const> nativesOf(std::string_view name)
{
    using Table = std::unordered_map<std::string_view, std::vector<const Native*>>;
    static const Table table = [] {
        Table t;
        for (std::span<const Native> rows : {mathNatives(), stringNatives(), arrayNatives(), coreNatives()})
            for (const Native& n : rows)
                t[n.name].push_back(&n);
        return t;
    }();
    auto it = table.find(name);
    return it == table.end() ? std::span<const Native* const>() : std::span<const Native* const>(it->second);
}

}  // namespace mirk::mel
