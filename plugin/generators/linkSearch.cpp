#include "generators/linkSearch.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>

#include "core/parallel.h"

namespace web {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- cells ---------------------------------------------------------------------------------------------------------

/// A point in its cell. Cells are ordered by zy, then x, so that three cells along x are neighbours in the order.
struct Entry
{
    std::uint64_t zy;
    std::uint32_t x, point;
    bool operator<(const Entry& o) const
    {
        return zy != o.zy ? zy < o.zy : x != o.x ? x < o.x : point < o.point;
    }
};

std::uint64_t packed(std::int64_t z, std::int64_t y) { return std::uint64_t(z) << 32 | std::uint64_t(y); }

/// Points sorted into cells that are a little larger than the greatest distance: who is that near stands in the cell or
/// one beside it. Only cells with points exist.
class Cells
{
public:
    struct Cell { std::uint64_t zy; std::uint32_t x; std::size_t first; };

    Cells(const double* points, std::size_t count, double reach)
    {
        std::vector<Entry> entries = binned(points, count, reach);
        std::sort(entries.begin(), entries.end());
        order.reserve(entries.size());
        xyz.reserve(3 * entries.size());
        for (const Entry& e : entries) {
            if (cells.empty() || e.zy != cells.back().zy || e.x != cells.back().x)
                cells.push_back({e.zy, e.x, order.size()});
            order.push_back(e.point);
            xyz.insert(xyz.end(), points + 3 * std::size_t(e.point), points + 3 * std::size_t(e.point) + 3);
        }
        cells.push_back({~std::uint64_t(0), 0, order.size()});   // an end behind all
    }
    std::size_t size() const { return cells.size() - 1; }

    std::vector<Cell>          cells;
    std::vector<std::uint32_t> order;   // points, cell by cell, ascending in each
    std::vector<double>        xyz;     // of these

private:
    static std::vector<Entry> binned(const double* points, std::size_t count, double reach);
};

/// With a reach that no cell can have, all points in one.
std::vector<Entry> Cells::binned(const double* points, std::size_t count, double reach)
{
    double     low[3] = {kInfinity, kInfinity, kInfinity}, high[3] = {-kInfinity, -kInfinity, -kInfinity};
    const auto isPlace = [](const double* p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); };
    for (std::size_t i = 0; i < count; ++i) {
        for (int k = 0; k < 3 && isPlace(points + 3 * i); ++k) {
            low[k] = std::min(low[k], points[3 * i + std::size_t(k)]);
            high[k] = std::max(high[k], points[3 * i + std::size_t(k)]);
        }
    }
    const double extent = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    // wide enough that a number's last digits never move a point by a cell, nor a square that vanishes hides a neighbour
    const double       side = std::max({reach * (1.0 + 1e-6), extent / (1 << 30), 1e-150});
    const bool         grid = std::isfinite(side) && std::isfinite(extent);
    std::vector<Entry> entries;
    if (std::isfinite(reach) && extent < 0.0)   // no place at all
        return entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double* p = points + 3 * i;
        const auto    cell = [&](int k) { return 1 + static_cast<std::int64_t>((p[k] - low[k]) / side); };
        if (!grid)
            entries.push_back({0, 0, static_cast<std::uint32_t>(i)});
        else if (isPlace(p))   // the others are at no distance from anything
            entries.push_back({packed(cell(2), cell(1)), static_cast<std::uint32_t>(cell(0)), static_cast<std::uint32_t>(i)});
    }
    return entries;
}

/// The stretches of the order that hold the neighbours of a cell, the cell itself among them: nine rows of three. Cells are
/// asked for in their order; each stretch only moves on.
class Rows
{
public:
    Rows(const Cells& cells, std::size_t cell) : cells_(cells)
    {
        for (int r = 0; r < 9; ++r)
            begin_[r] = end_[r] = firstFrom(moved(cell, r), lowX(cell));
    }
    void moveTo(std::size_t cell)
    {
        count = 0;
        total = 0;
        for (int r = 0; r < 9; ++r) {
            const std::uint64_t zy = moved(cell, r);
            const std::uint32_t low = lowX(cell), high = low + 2;
            while (isBefore(begin_[r], zy, low))
                ++begin_[r];
            end_[r] = std::max(end_[r], begin_[r]);
            while (isBefore(end_[r], zy, high + 1))
                ++end_[r];
            const std::size_t from = cells_.cells[begin_[r]].first, to = cells_.cells[end_[r]].first;
            if (from == to)
                continue;
            rows[count][0] = from;
            rows[count++][1] = to;
            total += to - from;
        }
    }

    std::size_t rows[9][2], total = 0;   // points in all rows
    int         count = 0;

private:
    /// The cells of z and y are 1 and more, so that the row beside exists as a number.
    std::uint64_t moved(std::size_t cell, int row) const
    {
        const std::uint64_t zy = cells_.cells[cell].zy;
        return zy == 0 ? 0 : packed(std::int64_t(zy >> 32) + row / 3 - 1, std::int64_t(zy & 0xffffffffu) + row % 3 - 1);
    }
    std::uint32_t lowX(std::size_t cell) const { return std::max(cells_.cells[cell].x, 1u) - 1; }
    bool          isBefore(std::size_t cell, std::uint64_t zy, std::uint32_t x) const
    {
        const Cells::Cell& c = cells_.cells[cell];
        return c.zy != zy ? c.zy < zy : c.x < x;
    }
    std::size_t firstFrom(std::uint64_t zy, std::uint32_t x) const
    {
        std::size_t low = 0, high = cells_.size();
        while (low < high) {
            const std::size_t middle = (low + high) / 2;
            if (isBefore(middle, zy, x))
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }

    const Cells& cells_;
    std::size_t  begin_[9], end_[9];
};

// ---- search --------------------------------------------------------------------------------------------------------

/// Neighbours of some points, in the order in which they were taken.
struct Found
{
    std::vector<int> to;
};

struct Slice
{
    const Found* found = nullptr;
    std::size_t  start = 0, count = 0;
};

/// All pairs with j in [from, to) by one set of positions.
class PairSearch
{
public:
    PairSearch(const double* points, std::size_t count, std::size_t from, const Band& band, std::atomic<std::size_t>& total,
               std::size_t most)
        : points_(points), count_(count), from_(from), band_(band), total_(total), most_(most),
          farSq_(band.max * band.max * (1.0 + 1e-12) + std::numeric_limits<double>::min())
    {
    }

    /// `taken`: links that points have already; they count against the band's number.
    void run(const std::vector<Slice>* taken)
    {
        slices.assign(count_, {});
        const Cells cells(points_, count_, band_.max);
        parallelFor(cells.size(), 256, [&](std::size_t begin, std::size_t end) {
            auto found = std::make_unique<Found>();
            Rows rows(cells, begin);
            for (std::size_t c = begin; c < end && total_ <= most_; ++c) {
                rows.moveTo(c);
                for (std::size_t k = cells.cells[c].first; k < cells.cells[c + 1].first && total_ <= most_; ++k) {
                    const std::size_t i = cells.order[k];
                    addLinks(i, cells, rows, taken ? (*taken)[i].count : 0, *found);
                }
            }
            const std::lock_guard<std::mutex> lock(mutex_);
            found_.push_back(std::move(found));
        });
    }

    std::vector<Slice> slices;   // one a point

private:
    bool inBand(const double* p, const double* q) const
    {
        const double x = q[0] - p[0], y = q[1] - p[1], z = q[2] - p[2], squared = x * x + y * y + z * z;
        if (squared > farSq_)
            return false;
        const double distance = std::sqrt(squared);
        return distance >= band_.min && distance <= band_.max;
    }

    void addLinks(std::size_t i, const Cells& cells, const Rows& rows, std::size_t taken, Found& found)
    {
        constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
        const auto            most = static_cast<std::size_t>(std::max(0, band_.perPoint));
        const std::size_t     room = most == 0 ? kAny : most - std::min(taken, most);
        const std::size_t     begin = std::max(i + 1, from_), start = found.to.size();
        if (room == 0 || begin >= count_)
            return;
        std::size_t next = begin;   // what is below is done
        if (rows.total >= count_ - begin)
            next = scan(i, begin, count_, room, found);
        else if (room != kAny && rows.total > room && rows.total / room * rows.total > 8 * (count_ - begin))
            next = scan(i, begin, begin + rows.total, room, found);   // so many are near that the first ones will do
        if (next < count_)
            gather(i, next, cells, rows, room - (found.to.size() - start), found);
        slices[i] = {&found, start, found.to.size() - start};
        total_ += slices[i].count;
    }

    /// Compares with [begin, end) one after the other. Returns where to go on; the end of all if there is no more room.
    std::size_t scan(std::size_t i, std::size_t begin, std::size_t end, std::size_t room, Found& found) const
    {
        for (std::size_t j = begin; j < end; ++j) {
            if (!inBand(points_ + 3 * i, points_ + 3 * j))
                continue;
            found.to.push_back(static_cast<int>(j));
            if (--room == 0)
                return count_;
        }
        return end;
    }

    void gather(std::size_t i, std::size_t begin, const Cells& cells, const Rows& rows, std::size_t room, Found& found) const
    {
        const auto    start = static_cast<std::ptrdiff_t>(found.to.size());
        const double* p = points_ + 3 * i;
        for (int r = 0; r < rows.count; ++r) {
            for (std::size_t k = rows.rows[r][0]; k < rows.rows[r][1]; ++k) {
                if (cells.order[k] >= begin && inBand(p, &cells.xyz[3 * k]))
                    found.to.push_back(static_cast<int>(cells.order[k]));
            }
        }
        std::sort(found.to.begin() + start, found.to.end());
        if (found.to.size() - static_cast<std::size_t>(start) > room)
            found.to.resize(static_cast<std::size_t>(start) + room);
    }

    const double*                       points_;
    std::size_t                         count_, from_;
    Band                                band_;
    std::atomic<std::size_t>&           total_;
    std::size_t                         most_;
    double                              farSq_;
    std::mutex                          mutex_;
    std::vector<std::unique_ptr<Found>> found_;
};

} // namespace

Links linksWithin(const double* points, std::size_t count, const double* reference, std::size_t referenceCount,
                  const Band& band, std::size_t most)
{
    Links links;
    links.first.assign(count + 1, 0);
    if (!(band.min <= band.max))
        return links;
    referenceCount = std::min(referenceCount, count);
    std::atomic<std::size_t> total{0};
    PairSearch               byReference(reference, referenceCount, 0, band, total, most);
    PairSearch               byPoints(points, count, referenceCount, band, total, most);
    byReference.run(nullptr);
    byReference.slices.resize(count);
    if (referenceCount < count)
        byPoints.run(&byReference.slices);
    byPoints.slices.resize(count);
    if (total > most) {
        links.tooMany = true;
        return links;
    }
    links.to.reserve(total);
    for (std::size_t i = 0; i < count; ++i) {
        for (const Slice& slice : {byReference.slices[i], byPoints.slices[i]})
            if (slice.count > 0)
                links.to.insert(links.to.end(), slice.found->to.begin() + static_cast<std::ptrdiff_t>(slice.start),
                                slice.found->to.begin() + static_cast<std::ptrdiff_t>(slice.start + slice.count));
        links.first[i + 1] = links.to.size();
    }
    return links;
}

Links linksOfChains(const int* lengths, std::size_t chainCount, std::size_t pointCount)
{
    std::vector<char> linked(pointCount);   // to the next
    std::size_t       start = 0;
    for (std::size_t c = 0; c < chainCount && start < pointCount; ++c) {
        const auto length = static_cast<std::size_t>(std::max(0, lengths[c]));
        for (std::size_t i = start; i + 1 < std::min(start + length, pointCount); ++i)
            linked[i] = 1;
        start += length;
    }
    Links links;
    for (std::size_t i = 0; i < pointCount; ++i) {
        if (linked[i])
            links.to.push_back(static_cast<int>(i + 1));
        links.first.push_back(links.to.size());
    }
    return links;
}

Links linksToSecond(const int* counts, std::size_t firstCount, const int* ids, std::size_t idCount, std::size_t secondCount)
{
    Links       links;
    std::size_t at = 0;
    for (std::size_t i = 0; i < firstCount; ++i) {
        for (int k = 0; k < counts[i] && at < idCount; ++k, ++at) {
            if (ids[at] >= 0 && static_cast<std::size_t>(ids[at]) < secondCount)
                links.to.push_back(static_cast<int>(firstCount) + ids[at]);
        }
        links.first.push_back(links.to.size());
    }
    links.first.resize(firstCount + secondCount + 1, links.to.size());
    return links;
}

} // namespace web
