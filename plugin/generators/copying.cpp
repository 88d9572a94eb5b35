#include "generators/copying.h"

#include <maya/MComputation.h>
#include <maya/MFnMesh.h>
#include <maya/MMatrixArray.h>

#include <algorithm>

#include "core/parallel.h"

static_assert(sizeof(MFloatPoint) == 4 * sizeof(float) && sizeof(MColor) == 4 * sizeof(float));

namespace copying {

namespace {

template <class Array>
auto* first(Array& array)
{
    return array.length() > 0 ? &array[0] : nullptr;
}

template <class Array>
auto* firstFloat(Array& points)
{
    return points.length() > 0 ? &points[0].x : nullptr;
}

template <class Array>
auto* firstChannel(Array& colors)
{
    return colors.length() > 0 ? &colors[0].r : nullptr;
}

copies::Source viewOf(const MeshParts& parts)
{
    copies::Source s;
    s.points = firstFloat(parts.points), s.pointCount = parts.points.length();
    s.counts = first(parts.counts), s.faceCount = parts.counts.length();
    s.connects = first(parts.connects), s.cornerCount = parts.connects.length();
    s.colors = firstChannel(parts.colors);
    s.smooth = first(parts.smooth), s.edgeCount = parts.smooth.length();
    s.u = first(parts.u), s.v = first(parts.v), s.uvCount = parts.u.length();
    s.uvCounts = first(parts.uvCounts);
    s.uvIds = first(parts.uvIds), s.uvIdCount = parts.uvIds.length();
    return s;
}

/// The arrays of all copies.
struct Merged
{
    MeshParts   parts;
    MColorArray inherited;
    MIntArray   colorIds;

    bool resize(const copies::Extent& extent, const Look& look)
    {
        const auto fit = [](auto& array, std::size_t length) {
            return bool(array.setLength(static_cast<unsigned int>(length)));
        };
        bool fits = fit(parts.points, extent.points) && fit(parts.counts, extent.faces) && fit(parts.connects, extent.corners);
        if (!look.colors.empty())
            fits = fits && fit(inherited, extent.points);
        if (extent.colors > 0)
            fits = fits && fit(parts.colors, extent.colors) && fit(colorIds, extent.corners);
        if (look.wanted.smooth)
            fits = fits && fit(parts.smooth, extent.edges);
        if (extent.uvs > 0)
            fits = fits && fit(parts.u, extent.uvs) && fit(parts.v, extent.uvs) && fit(parts.uvCounts, extent.faces)
                   && fit(parts.uvIds, extent.uvIds);
        return fits;
    }
    copies::Target target()
    {
        copies::Target to;
        to.points = firstFloat(parts.points);
        to.counts = first(parts.counts);
        to.connects = first(parts.connects);
        to.inherited = firstChannel(inherited);
        to.colors = firstChannel(parts.colors);
        to.colorIds = first(colorIds);
        to.smooth = first(parts.smooth);
        to.u = first(parts.u);
        to.v = first(parts.v);
        to.uvCounts = first(parts.uvCounts);
        to.uvIds = first(parts.uvIds);
        return to;
    }
};

void setColors(const MObject& mesh, Merged& merged)
{
    MFnMesh fn(mesh);
    if (const unsigned int count = merged.inherited.length()) {
        MString   name("inheritedColor");
        MIntArray vertices(count);
        for (unsigned int v = 0; v < count; ++v)
            vertices[v] = int(v);
        fn.createColorSetDataMesh(name);
        fn.setVertexColors(merged.inherited, vertices);
    }
    if (merged.parts.colors.length() > 0) {
        MString name("originalColor");
        fn.createColorSetDataMesh(name);
        fn.setColors(merged.parts.colors, &name);
        fn.assignColors(merged.colorIds, &name);
    }
}

} // namespace

Source::Source(MeshParts read) : parts(std::move(read)), view(viewOf(parts)) {}

void Gathered::add(const Source& source, unsigned int copy, const Look& look)
{
    placed.push_back({&source.view, copy});
    total += copies::extentOf(source.view, !look.uvs.empty());
}

void Gathered::cut(std::size_t count, const copies::Extent& extent)
{
    placed.resize(count);
    total = extent;
}

std::size_t Gathered::longest() const
{
    return std::max({4 * total.points, total.corners, total.uvs});
}

MObject merge(Gathered& gathered, const Look& look, const MMatrixArray& matrices, MComputation& computation)
{
    Merged merged;
    if (!merged.resize(gathered.total, look))
        return MObject::kNullObj;
    const copies::Target to = merged.target();
    const MMatrix* const matrix = first(matrices);

    constexpr std::size_t kBatch = 1 << 20;   // points between two looks at the user's wish to stop
    copies::Extent        end;
    std::size_t           done = 0;
    for (const std::vector<Placed>& placed = gathered.placed; done < placed.size();) {
        const std::size_t           begin = done;
        std::vector<copies::Extent> starts;
        starts.reserve(std::min<std::size_t>(placed.size() - begin, kBatch));
        for (const std::size_t stop = end.points + kBatch; done < placed.size() && end.points < stop; ++done) {
            starts.push_back(end);
            end += copies::extentOf(*placed[done].source, !look.uvs.empty());
        }
        parallelFor(done - begin, 64, [&](std::size_t i, std::size_t last) {
            for (; i < last; ++i) {
                const Placed& copy = placed[begin + i];
                copies::appendMesh(*copy.source,
                                   {matrix[copy.copy].matrix, look.colors.empty() ? nullptr : &look.colors[4 * copy.copy],
                                    look.uvs.empty() ? nullptr : &look.uvs[2 * copy.copy]},
                                   starts[i], to);
            }
        });
        if (done < placed.size() && !gathered.interrupted && computation.isInterruptRequested()) {
            gathered.cut(done, end);
            if (!merged.resize(end, look))
                return MObject::kNullObj;
        }
    }
    MObject mesh = meshFrom(merged.parts);
    if (!mesh.isNull())
        setColors(mesh, merged);
    return mesh;
}

} // namespace copying
