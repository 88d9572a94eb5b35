#include "nurbs/tessellate.h"

#include <algorithm>
#include <cmath>

#include "nurbs/fit.h"

namespace mirk::nurbs {
namespace {

constexpr double kMostFaces = 5e7;

/// One direction of a grid of vertices: a closed one has a last row of cells that leads back to its first vertices.
struct Axis
{
    int                 vertices = 0;
    bool                wraps = false;
    std::vector<double> coordinates;   // one more than vertices if it wraps

    int cells() const { return wraps ? vertices : vertices - 1; }
};

Axis axisOf(std::vector<double> coordinates, bool wraps)
{
    const int n = int(coordinates.size());
    return {wraps ? n - 1 : n, wraps, std::move(coordinates)};
}

void normalize(std::vector<double>& coordinates)
{
    const double from = coordinates.front(), range = coordinates.back() - from;
    for (double& c : coordinates)
        c = range > 0 ? (c - from) / range : 0;
}

/// Faces whose normal is dU x dV; turned round if `flip`.
void addFaces(const Axis& u, const Axis& v, bool quads, bool flip, Polygons& out)
{
    const int columns = int(v.coordinates.size());
    for (double cu : u.coordinates)
        for (double cv : v.coordinates) {
            out.u.push_back(float(cu));
            out.v.push_back(float(cv));
        }
    const auto corner = [&](int i, int j) {
        out.connects.push_back(i % u.vertices * v.vertices + j % v.vertices);
        out.uvIds.push_back(i * columns + j);
    };
    for (int i = 0; i < u.cells(); ++i)
        for (int j = 0; j < v.cells(); ++j) {
            int ring[4][2] = {{i, j}, {i + 1, j}, {i + 1, j + 1}, {i, j + 1}};
            if (flip)
                std::swap(ring[1], ring[3]);
            if (quads) {
                out.counts.push_back(4);
                for (const auto& c : ring)
                    corner(c[0], c[1]);
            } else
                for (int t : {1, 2}) {
                    out.counts.push_back(3);
                    corner(ring[0][0], ring[0][1]);
                    corner(ring[t][0], ring[t][1]);
                    corner(ring[t + 1][0], ring[t + 1][1]);
                }
        }
}

Polygons tessellateCvs(const SurfaceBody& s, const TessellateOptions& o)
{
    const SurfaceView view(s);
    const auto        axis = [&o](const Knots& k, int unique, bool periodic) {
        std::vector<double> coordinates;
        for (int i = 0; i < unique + (periodic ? 1 : 0); ++i)
            coordinates.push_back(i < k.cvCount ? greville(k, i) : k.end());
        if (o.normalizeUV)
            normalize(coordinates);
        return axisOf(std::move(coordinates), periodic);
    };
    const Axis u = axis(view.u, s.uniqueU(), view.periodicU), v = axis(view.v, s.uniqueV(), view.periodicV);
    Polygons   out;
    for (int i = 0; i < u.vertices; ++i)
        for (int j = 0; j < v.vertices; ++j) {
            const MPoint& p = view.cvs[size_t(i) * size_t(s.cvsV) + size_t(j)];
            out.points.emplace_back(p.x / p.w, p.y / p.w, p.z / p.w);
        }
    addFaces(u, v, o.quads, !o.matchNormalDir, out);
    return out;
}

std::vector<double> perSpanParams(const Knots& k, int each)
{
    std::vector<double> out{k.start()};
    for (int s : spans(k))
        for (int i = 1; i <= each; ++i)
            out.push_back(i == each ? k.high(s) : k.low(s) + (k.high(s) - k.low(s)) * i / each);
    return out;
}

std::vector<double> evenParams(const Knots& k, int cells)
{
    std::vector<double> out;
    for (int i = 0; i <= cells; ++i)
        out.push_back(i == cells ? k.end() : k.start() + (k.end() - k.start()) * i / cells);
    return out;
}

/// Even by the length of the middle isoparametric line, which is measured as a fine polygon.
std::vector<double> paramsByLength(const SurfaceView& s, bool alongU, int cells)
{
    const Knots& k = alongU ? s.u : s.v;
    const double other = alongU ? 0.5 * (s.v.start() + s.v.end()) : 0.5 * (s.u.start() + s.u.end());
    const int    fine = std::max(64, cells * 8);
    const std::vector<double> params = evenParams(k, fine);
    std::vector<double>       length{0};
    MVector                   last;
    for (size_t i = 0; i < params.size(); ++i) {
        const MVector p = alongU ? pointAt(s, params[i], other) : pointAt(s, other, params[i]);
        if (i)
            length.push_back(length.back() + (p - last).length());
        last = p;
    }
    if (!(length.back() > 0))
        return evenParams(k, cells);
    std::vector<double> out{k.start()};
    for (int i = 1; i < cells; ++i) {
        const double want = length.back() * i / cells;
        const size_t at = size_t(std::upper_bound(length.begin(), length.end(), want) - length.begin());
        const double part = (want - length[at - 1]) / std::max(length[at] - length[at - 1], 1e-300);
        out.push_back(params[at - 1] + (params[at] - params[at - 1]) * part);
    }
    out.push_back(k.end());
    return out;
}

/// Cells per span so that chords stay within the height of a few isoparametric lines.
int cellsForChord(const SurfaceView& s, bool alongU, double height)
{
    const Knots& k = alongU ? s.u : s.v;
    const Knots& across = alongU ? s.v : s.u;
    if (k.degree == 1)
        return 1;
    for (int cells = 1; cells < 64; cells *= 2) {
        double                    worst = 0;
        const std::vector<double> params = perSpanParams(k, cells), lines = perSpanParams(across, 2);
        for (double line : lines)
            for (size_t i = 1; i < params.size(); ++i) {
                const auto at = [&](double t) { return alongU ? pointAt(s, t, line) : pointAt(s, line, t); };
                const MVector chord = 0.5 * (at(params[i - 1]) + at(params[i]));
                worst = std::max(worst, (at(0.5 * (params[i - 1] + params[i])) - chord).length());
            }
        if (worst <= height)
            return cells;
    }
    return 64;
}

}  // namespace

Polygons tessellateAt(const SurfaceView& s, const std::vector<double>& us, const std::vector<double>& vs, bool quads,
                      bool normalizeUV)
{
    Axis     u = axisOf(us, s.periodicU), v = axisOf(vs, s.periodicV);
    Polygons out;
    for (int i = 0; i < u.vertices; ++i)
        for (int j = 0; j < v.vertices; ++j)
            out.points.push_back(pointAt(s, us[size_t(i)], vs[size_t(j)]));
    if (normalizeUV) {
        normalize(u.coordinates);
        normalize(v.coordinates);
    }
    addFaces(u, v, quads, false, out);
    return out;
}

bool tessellate(const SurfaceBody& surface, const TessellateOptions& o, Polygons& out, std::string& why)
{
    if (surface.empty()) {
        why = "there is no surface to tessellate";
        return false;
    }
    if (o.format == TessellateOptions::controlVertices) {
        out = tessellateCvs(surface, o);
        return true;
    }
    if (o.numberU < 1 || o.numberV < 1 || o.polygonCount < 1 || !(o.chordHeight > 0)) {
        why = "the numbers of a tessellation must be positive";
        return false;
    }
    const SurfaceView s(surface);
    const size_t      spansU = spans(s.u).size(), spansV = spans(s.v).size();
    const auto        axis = [&](bool alongU) -> std::vector<double> {
        const Knots&  k = alongU ? s.u : s.v;
        const int     least = (alongU ? s.periodicU : s.periodicV) ? 3 : 1;   // fewer cells close onto themselves
        const int     number = alongU ? o.numberU : o.numberV;
        const auto    spread = alongU ? o.spreadU : o.spreadV;
        const double  spanCount = double(alongU ? spansU : spansV);
        if (o.format == TessellateOptions::fit)
            return perSpanParams(k, std::max(cellsForChord(s, alongU, o.chordHeight), spanCount < least ? least : 1));
        if (o.format == TessellateOptions::count) {
            const double quads = o.quads ? o.polygonCount : o.polygonCount * 0.5;
            const double cells = std::sqrt(quads / double(spansU * spansV)) * spanCount;
            return evenParams(k, std::max(int(std::lround(cells)), least));
        }
        if (spread == TessellateOptions::perSpan)
            return perSpanParams(k, std::max(number, spanCount < least ? least : 1));
        const int cells = std::max(number - 1, least);   // lines, of which both borders are two
        return spread == TessellateOptions::perSurface ? evenParams(k, cells) : paramsByLength(s, alongU, cells);
    };
    if (double(o.numberU) * double(o.numberV) * double(spansU) * double(spansV) > kMostFaces || o.polygonCount > kMostFaces) {
        why = "the tessellation would have too many faces";
        return false;
    }
    out = tessellateAt(s, axis(true), axis(false), o.quads, o.normalizeUV);
    return true;
}

}  // namespace mirk::nurbs
