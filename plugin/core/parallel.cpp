#include "core/parallel.h"

#include <maya/MThreadPool.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace {

struct Range
{
    const std::function<void(std::size_t, std::size_t)>* f;
    std::size_t                                          begin, end;
};

MThreadRetVal runRange(void* data)
{
    const auto* range = static_cast<const Range*>(data);
    (*range->f)(range->begin, range->end);
    return 0;
}

void runRanges(void* data, MThreadRootTask* root)
{
    for (Range& range : *static_cast<std::vector<Range>*>(data))
        MThreadPool::createTask(runRange, &range, root);
    MThreadPool::executeAndJoin(root);
}

} // namespace

void parallelFor(std::size_t count, std::size_t grain, const std::function<void(std::size_t, std::size_t)>& f)
{
    const std::size_t threads = std::max(1u, std::thread::hardware_concurrency());
    const std::size_t ranges = std::min(threads, count / std::max<std::size_t>(1, grain));
    if (ranges <= 1 || !MThreadPool::init()) {
        if (count > 0)
            f(0, count);
        return;
    }
    std::vector<Range> list;
    for (std::size_t i = 0; i < ranges; ++i)
        list.push_back({&f, count * i / ranges, count * (i + 1) / ranges});
    MThreadPool::newParallelRegion(runRanges, &list);
    MThreadPool::release();
}
