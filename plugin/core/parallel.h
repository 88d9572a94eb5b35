// The one place where loops are split over threads.
#pragma once
#include <cstddef>
#include <functional>

/// Calls f(begin, end) for consecutive ranges that cover 0 to count, on the host's threads where it has them, else once
/// for all. A range has at least `grain` entries if there are as many. The ranges must not depend on each other and f must
/// call nothing of the host: then results do not depend on the number of threads.
void parallelFor(std::size_t count, std::size_t grain, const std::function<void(std::size_t, std::size_t)>& f);
