#include "generators/linkSearch.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

#include "core/parallel.h"

namespace web {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- cells ---------------------------------------------------------------------------------------------------------

constexpr std::int64_t kMostCells = std::int64_t(1) << 21;   // along an axis: a number of three fits 64 bits

/// A point and the number of its cell. Numbers rise along x, then y, then z, so that three cells along x follow each other.
struct Entry
{
    std::uint64_t cell;
    std::uint32_t point;
};

/// By cell; entries of one cell stay in their order. `cells`: how many numbers there are.
void sortByCell(std::vector<Entry>& entries, std::uint64_t cells)
{
    constexpr unsigned int kBits = 11;
    std::vector<Entry>     other(entries.size());
    for (unsigned int shift = 0; shift < 64 && (cells - 1) >> shift != 0; shift += kBits) {
        std::size_t first[(1u << kBits) + 1] = {};
        const auto  digit = [shift](const Entry& e) { return (e.cell >> shift) & ((1u << kBits) - 1); };
        for (const Entry& e : entries)
            ++first[digit(e) + 1];
        for (std::size_t d = 0; d < 1u << kBits; ++d)
            first[d + 1] += first[d];
        for (const Entry& e : entries)
            other[first[digit(e)]++] = e;
        entries.swap(other);
    }
}

/// Points sorted into cells that are a little larger than the greatest distance: who is that near stands in the cell or
/// one beside it. Only cells with points take room. Points that are no place are left out: nothing is near them.
class Cells
{
public:
    struct Cell { std::uint64_t number; std::size_t first; };

    Cells(const double* points, std::size_t count, double reach);

    /// False if cells would be of no use: all points are in reach of each other, or have no places.
    bool        exist() const { return !cells.empty(); }
    std::size_t size() const { return cells.size() - 1; }

    std::vector<Cell>          cells;       // by number, an end behind all
    std::uint64_t              rows[9];     // from a cell's number to that of the first of three in each row around it
    std::vector<std::uint32_t> order;       // points, cell by cell, ascending in each
    std::vector<double>        x, y, z;     // of these
};

bool isPlace(const double* p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

Cells::Cells(const double* points, std::size_t count, double reach)
{
    double low[3] = {kInfinity, kInfinity, kInfinity}, high[3] = {-kInfinity, -kInfinity, -kInfinity};
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < 3 && isPlace(points + 3 * i); ++k) {
            low[k] = std::min(low[k], points[3 * i + k]);
            high[k] = std::max(high[k], points[3 * i + k]);
        }
    }
    const double extent = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    // wide enough that a number's last digits never move a point by a cell, nor a square that vanishes hides a neighbour
    const double side = std::max({reach * (1.0 + 1e-6), extent / (kMostCells - 4), 1e-150});
    if (!std::isfinite(extent) || !(side < extent))
        return;

    std::uint64_t sizes[3];   // with an empty cell at either end, so that all have neighbours
    for (int k = 0; k < 3; ++k)
        sizes[k] = 3 + static_cast<std::uint64_t>((high[k] - low[k]) / side);
    for (std::uint64_t r = 0; r < 9; ++r)
        rows[r] = (r / 3 * sizes[1] + r % 3) * sizes[0] - (sizes[1] + 1) * sizes[0] - 1;   // below zero by wrapping around
    std::vector<Entry> entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double* p = points + 3 * i;
        const auto    cell = [&](int k) { return 1 + static_cast<std::uint64_t>((p[k] - low[k]) / side); };
        if (isPlace(p))
            entries.push_back({(cell(2) * sizes[1] + cell(1)) * sizes[0] + cell(0), static_cast<std::uint32_t>(i)});
    }
    sortByCell(entries, sizes[0] * sizes[1] * sizes[2]);
    for (std::vector<double>* axis : {&x, &y, &z})
        axis->reserve(entries.size());
    order.reserve(entries.size());
    for (const Entry& e : entries) {
        if (cells.empty() || e.cell != cells.back().number)
            cells.push_back({e.cell, order.size()});
        const double* p = points + 3 * std::size_t(e.point);
        order.push_back(e.point);
        x.push_back(p[0]);
        y.push_back(p[1]);
        z.push_back(p[2]);
    }
    cells.push_back({~std::uint64_t(0), order.size()});
}

/// The stretches of the order that hold the neighbours of a cell, the cell itself among them: nine rows of three. Cells are
/// asked for in their order; each stretch only moves on.
class Rows
{
public:
    Rows(const Cells& cells, std::size_t cell) : cells_(cells)
    {
        for (int r = 0; r < 9; ++r) {
            const std::uint64_t low = cells.cells[cell].number + cells.rows[r];
            const auto          first = std::partition_point(cells.cells.begin(), cells.cells.end(),
                                                             [low](const Cells::Cell& c) { return c.number < low; });
            begin_[r] = end_[r] = static_cast<std::size_t>(first - cells.cells.begin());
        }
    }
    void moveTo(std::size_t cell)
    {
        const std::vector<Cells::Cell>& cells = cells_.cells;
        count = 0;
        total = 0;
        for (int r = 0; r < 9; ++r) {
            const std::uint64_t low = cells[cell].number + cells_.rows[r];
            while (cells[begin_[r]].number < low)
                ++begin_[r];
            end_[r] = std::max(end_[r], begin_[r]);
            while (cells[end_[r]].number < low + 3)
                ++end_[r];
            if (begin_[r] == end_[r])
                continue;
            rows[count][0] = cells[begin_[r]].first;
            rows[count][1] = cells[end_[r]].first;
            total += rows[count][1] - rows[count][0];
            ++count;
        }
    }

    std::size_t rows[9][2], total = 0;   // points in all rows
    int         count = 0;

private:
    const Cells& cells_;
    std::size_t  begin_[9], end_[9];
};

// ---- search --------------------------------------------------------------------------------------------------------

/// The points of the rows around a cell, one after the other, and room for what is found among them.
struct Around
{
    std::vector<std::uint32_t> point, near;
    std::vector<double>        x, y, z, squared;

    void fill(const Cells& cells, const Rows& rows)
    {
        if (point.size() < rows.total) {
            for (std::vector<std::uint32_t>* of : {&point, &near})
                of->resize(2 * rows.total);
            for (std::vector<double>* of : {&x, &y, &z, &squared})
                of->resize(2 * rows.total);
        }
        std::size_t to = 0;
        for (int r = 0; r < rows.count; ++r) {
            for (std::size_t k = rows.rows[r][0]; k < rows.rows[r][1]; ++k, ++to) {
                point[to] = cells.order[k];
                x[to] = cells.x[k];
                y[to] = cells.y[k];
                z[to] = cells.z[k];
            }
        }
    }
};

/// Neighbours of some points, in the order in which these were taken.
struct Found
{
    std::vector<int> to;
};

struct Slice
{
    const Found* found = nullptr;
    std::size_t  start = 0, count = 0;
};

/// All pairs with j from `from` on, by one set of positions.
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
        if (!cells.exist()) {
            compareAll(taken);
            return;
        }
        parallelFor(cells.size(), 256, [&](std::size_t begin, std::size_t end) {
            auto found = std::make_unique<Found>();
            Rows   rows(cells, begin);
            Around around;
            std::size_t told = 0;   // links that the total knows of
            for (std::size_t c = begin; c < end && total_.load(std::memory_order_relaxed) <= most_; ++c) {
                rows.moveTo(c);
                if (rows.total < count_)
                    around.fill(cells, rows);
                for (std::size_t k = cells.cells[c].first; k < cells.cells[c + 1].first; ++k)
                    addLinks(cells.order[k], around, rows.total, room(taken, cells.order[k]), *found);
                if (c + 1 == end || found->to.size() - told > 10000)
                    total_ += found->to.size() - std::exchange(told, found->to.size());
            }
            const std::lock_guard<std::mutex> lock(mutex_);
            found_.push_back(std::move(found));
        });
    }

    /// The neighbours of all points in their order, if that is how they were found; the caller takes them.
    std::vector<int>* inOrder() { return inOrder_ ? &found_.front()->to : nullptr; }

    std::vector<Slice> slices;   // one a point

private:
    static constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

    void compareAll(const std::vector<Slice>* taken)
    {
        found_.push_back(std::make_unique<Found>());
        inOrder_ = true;
        Found& found = *found_.back();
        for (std::size_t i = 0; i < count_ && total_ <= most_; ++i) {
            const std::size_t start = found.to.size(), own = room(taken, i);
            if (own > 0)
                scan(i, std::max(i + 1, from_), count_, own, found);
            slices[i] = {&found, start, found.to.size() - start};
            total_ += slices[i].count;
        }
    }

    /// How many links a point may still start.
    std::size_t room(const std::vector<Slice>* taken, std::size_t i) const
    {
        const auto most = static_cast<std::size_t>(std::max(0, band_.perPoint));
        return most == 0 ? kAny : most - std::min(taken ? (*taken)[i].count : 0, most);
    }

    bool inBand(double squared) const
    {
        const double distance = std::sqrt(squared);
        return distance >= band_.min && distance <= band_.max;
    }

    /// `near`: how many points stand around the cell of i.
    void addLinks(std::size_t i, Around& around, std::size_t near, std::size_t room, Found& found)
    {
        const std::size_t begin = std::max(i + 1, from_), start = found.to.size();
        if (room == 0 || begin >= count_)
            return;
        std::size_t next = begin;   // what is below is done
        if (near >= count_ - begin)
            next = scan(i, begin, count_, room, found);
        else if (static_cast<double>(near) * static_cast<double>(near) > 4.0 * static_cast<double>(room) * static_cast<double>(count_ - begin))
            next = scan(i, begin, begin + near, room, found);   // so many are near that the first ones will do
        if (next < count_)
            gather(i, next, around, near, room - (found.to.size() - start), found);
        slices[i] = {&found, start, found.to.size() - start};
    }

    /// Compares with [begin, end) one after the other. Returns where to go on; the end of all if there is no more room.
    std::size_t scan(std::size_t i, std::size_t begin, std::size_t end, std::size_t room, Found& found) const
    {
        const double* p = points_ + 3 * i;
        for (std::size_t j = begin; j < end; ++j) {
            const double* q = points_ + 3 * j;
            const double  x = q[0] - p[0], y = q[1] - p[1], z = q[2] - p[2], squared = x * x + y * y + z * z;
            if (squared > farSq_ || !inBand(squared))
                continue;
            found.to.push_back(static_cast<int>(j));
            if (--room == 0)
                return count_;
        }
        return end;
    }

    /// Those around the cell from `begin` on, sorted.
    void gather(std::size_t i, std::size_t begin, Around& around, std::size_t total, std::size_t room, Found& found) const
    {
        const double         px = points_[3 * i], py = points_[3 * i + 1], pz = points_[3 * i + 2], far = farSq_;
        const double *       x = around.x.data(), *y = around.y.data(), *z = around.z.data();
        const std::uint32_t* point = around.point.data();
        std::uint32_t*       near = around.near.data();
        double*              squared = around.squared.data();
        std::size_t          count = 0;
        for (std::size_t k = 0; k < total; ++k) {   // without a branch: nobody could guess it
            const double dx = x[k] - px, dy = y[k] - py, dz = z[k] - pz, sum = dx * dx + dy * dy + dz * dz;
            near[count] = point[k];
            squared[count] = sum;
            count += static_cast<std::size_t>(sum <= far) & static_cast<std::size_t>(point[k] >= begin);
        }
        std::size_t kept = 0;
        for (std::size_t n = 0; n < count; ++n) {
            near[kept] = near[n];
            kept += inBand(squared[n]);
        }
        const std::size_t most = std::min(kept, room);
        if (most < kept && kept > 16)
            std::partial_sort(near, near + most, near + kept);
        else
            std::sort(near, near + kept);
        found.to.insert(found.to.end(), near, near + most);
    }

    const double*                       points_;
    std::size_t                         count_, from_;
    Band                                band_;
    std::atomic<std::size_t>&           total_;
    std::size_t                         most_;
    double                              farSq_;
    bool                                inOrder_ = false;
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
    if (referenceCount > 0) {
        byReference.run(nullptr);
        byReference.slices.resize(count);
    }
    if (referenceCount < count)
        byPoints.run(referenceCount > 0 ? &byReference.slices : nullptr);
    if (total > most) {
        links.tooMany = true;
        return links;
    }
    const auto add = [&](const std::vector<Slice>& slices, std::size_t i) {
        if (i >= slices.size() || slices[i].count == 0)
            return;
        const auto from = slices[i].found->to.begin() + static_cast<std::ptrdiff_t>(slices[i].start);
        links.to.insert(links.to.end(), from, from + static_cast<std::ptrdiff_t>(slices[i].count));
    };
    if (std::vector<int>* to = byPoints.inOrder(); to && referenceCount == 0) {
        links.to = std::move(*to);
        for (std::size_t i = 0; i < count; ++i)
            links.first[i + 1] = links.first[i] + byPoints.slices[i].count;
        return links;
    }
    links.to.reserve(total);
    for (std::size_t i = 0; i < count; ++i) {
        add(byReference.slices, i);
        add(byPoints.slices, i);
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
