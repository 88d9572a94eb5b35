// Compiled texts, kept for texts that are equal to them or differ only in numbers.
#pragma once
#include <list>
#include <memory>
#include <unordered_map>

#include "mel/bytecode.h"
#include "mel/literals.h"

namespace mirk::mel {

class Cache
{
public:
    /// Code for the text, compiled only if no earlier text of the source fits: same text but for numbers that are
    /// parameters of the code, same types of the variables and procedures used. Throws what `compile` throws.
    std::shared_ptr<const Unit> get(std::string_view sourceName, std::string_view text, bool isFile);

    struct Counts { size_t compiled = 0, reused = 0, entries = 0, bytes = 0; };
    Counts counts() const;
    /// Bytes to keep at most, as estimated.
    void   setLimit(size_t bytes);

private:
    struct Entry
    {
        size_t                        key;
        std::string                   skeleton;
        std::vector<Literal>          literals;   ///< of the text that was compiled
        std::shared_ptr<const Source> source;     ///< that text
        std::shared_ptr<const Unit>   unit;
        std::vector<double>           lastValues; ///< what `last` was made for
        std::shared_ptr<const Source> lastSource;
        std::shared_ptr<const Unit>   last;
        size_t                        bytes = 0;
    };
    using Order = std::list<Entry>;

    std::shared_ptr<const Unit> reuse(Entry& entry, const Skeleton& skeleton, std::string_view text);
    void                        add(Entry entry);
    void                        remove(Order::iterator entry);
    void                        forget();

    Order                                           order_;   ///< least recently used last
    std::unordered_multimap<size_t, Order::iterator> index_;
    size_t                                          bytes_ = 0, limit_ = size_t(16) << 20, compiled_ = 0, reused_ = 0;
    uint64_t                                        epoch_ = 0;
};

Cache& cache();

}  // namespace mirk::mel
