#include "data/buffer.h"

#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <vector>

namespace mirk {
namespace {

constexpr size_t kLarge = 64 * 1024;          // below this the allocator is as quick and does not return pages
constexpr size_t kKeep  = size_t(512) << 20;  // bytes kept for reuse at most

struct Pool
{
    std::mutex                         lock;
    std::map<size_t, std::vector<void*>> blocks;  // by exact size: evaluation asks for the same sizes again
    size_t                             kept = 0;
};

Pool& pool()
{
    static Pool* p = new Pool;  // never destroyed: static buffers may outlive any static pool
    return *p;
}

size_t rounded(size_t bytes) { return (bytes + 4095) & ~size_t(4095); }

}  // namespace

void* poolAllocate(size_t bytes)
{
    if (bytes == 0)
        bytes = 1;
    if (bytes >= kLarge) {
        Pool&            p = pool();
        std::lock_guard  guard(p.lock);
        auto             it = p.blocks.find(rounded(bytes));
        if (it != p.blocks.end() && !it->second.empty()) {
            void* block = it->second.back();
            it->second.pop_back();
            p.kept -= it->first;
            return block;
        }
        bytes = rounded(bytes);
    }
    if (void* block = std::malloc(bytes))
        return block;
    throw std::bad_alloc();
}

void poolFree(void* block, size_t bytes) noexcept
{
    if (bytes >= kLarge) {
        Pool&           p = pool();
        std::lock_guard guard(p.lock);
        bytes = rounded(bytes);
        if (p.kept + bytes <= kKeep) {
            p.blocks[bytes].push_back(block);
            p.kept += bytes;
            return;
        }
    }
    std::free(block);
}

void poolTrim() noexcept
{
    Pool&           p = pool();
    std::lock_guard guard(p.lock);
    for (auto& [size, blocks] : p.blocks)
        for (void* block : blocks)
            std::free(block);
    p.blocks.clear();
    p.kept = 0;
}

}  // namespace mirk
