#include "generators/shellSteps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace shells {

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

/// The box of n positions, one after the other. One that is not finite is left out: it would take its whole shell along.
Box boxOf(const double* xyz, std::size_t n)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    double           low[3] = {kInfinity, kInfinity, kInfinity}, high[3] = {-kInfinity, -kInfinity, -kInfinity};
    for (const double* p = xyz; p != xyz + 3 * n; p += 3) {
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2]))
            continue;
        for (int k = 0; k < 3; ++k) {
            low[k] = std::min(low[k], p[k]);
            high[k] = std::max(high[k], p[k]);
        }
    }
    Box box{};
    for (int k = 0; k < 3 && low[0] <= high[0]; ++k) {
        box.center[k] = 0.5 * (low[k] + high[k]);
        box.size[k] = high[k] - low[k];
    }
    return box;
}

std::vector<double> gathered(const Shells& shells, const std::vector<double>& xyz)
{
    std::vector<double> positions;
    positions.reserve(3 * shells.vertices.size());
    for (const int v : shells.vertices)
        positions.insert(positions.end(), &xyz[3 * at(v)], &xyz[3 * at(v)] + 3);
    return positions;
}

/// The number of different UVs at the corners of each piece.
std::vector<double> uvCounts(const Faces& faces, const std::vector<int>& shellOfFace, std::size_t shellCount)
{
    std::vector<std::pair<int, int>> seen;   // shell and UV
    for (std::size_t f = 0; f < faces.count(); ++f)
        for (std::size_t c = faces.first[f]; c < faces.first[f + 1]; ++c)
            if (faces.uvs[c] >= 0)
                seen.push_back({shellOfFace[f], faces.uvs[c]});
    std::sort(seen.begin(), seen.end());
    seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
    std::vector<double> counts(shellCount, 0.0);
    for (const auto& [shell, uv] : seen)
        ++counts[at(shell)];
    return counts;
}

} // namespace

Shells ofUvs(const Faces& faces, const std::vector<int>& shellOfUv, std::size_t shellCount)
{
    const auto shellAt = [&](std::size_t corner) {
        const int uv = faces.uvs[corner];
        const int shell = uv >= 0 && at(uv) < shellOfUv.size() ? shellOfUv[at(uv)] : -1;
        return shell >= 0 && at(shell) < shellCount ? shell : -1;
    };
    std::vector<std::size_t> cornersFrom(faces.vertexCount + 1, 0), corners(faces.vertices.size());   // by vertex
    for (const int v : faces.vertices)
        ++cornersFrom[at(v) + 1];
    for (std::size_t v = 0; v < faces.vertexCount; ++v)
        cornersFrom[v + 1] += cornersFrom[v];
    std::vector<std::size_t> next(cornersFrom.begin(), cornersFrom.end() - 1);
    for (std::size_t c = 0; c < corners.size(); ++c)
        corners[next[at(faces.vertices[c])]++] = c;

    std::vector<int>         latest(shellCount, -1);   // vertex that a shell got
    std::vector<std::size_t> sizes(shellCount, 0);
    const auto               eachMember = [&](auto&& f) {
        std::fill(latest.begin(), latest.end(), -1);
        for (std::size_t v = 0; v < faces.vertexCount; ++v) {
            for (std::size_t k = cornersFrom[v]; k < cornersFrom[v + 1]; ++k) {
                const int shell = shellAt(corners[k]);
                if (shell < 0 || latest[at(shell)] == static_cast<int>(v))
                    continue;
                latest[at(shell)] = static_cast<int>(v);
                f(at(shell), static_cast<int>(v));
            }
        }
    };
    eachMember([&](std::size_t shell, int) { ++sizes[shell]; });
    Shells out;
    for (const std::size_t size : sizes)
        out.first.push_back(out.first.back() + size);
    out.vertices.resize(out.first.back());
    std::vector<std::size_t> to(out.first.begin(), out.first.end() - 1);
    eachMember([&](std::size_t shell, int v) { out.vertices[to[shell]++] = v; });
    out.uvCounts.assign(shellCount, 0.0);
    for (const int shell : shellOfUv)
        if (shell >= 0 && at(shell) < shellCount)
            ++out.uvCounts[at(shell)];
    return out;
}

bool ofPieces(const Faces& faces, const std::function<std::vector<int>(int face)>& pieceOf, Shells& out)
{
    out = Shells();
    std::vector<int>  shellOfFace(faces.count(), -1);
    std::vector<char> hasShell(faces.vertexCount, 0);
    for (std::size_t f = 0; f < faces.count(); ++f) {
        if (shellOfFace[f] >= 0)
            continue;
        const int shell = static_cast<int>(out.count());
        for (const int face : pieceOf(static_cast<int>(f))) {
            if (face < 0 || at(face) >= faces.count() || shellOfFace[at(face)] >= 0)
                continue;
            shellOfFace[at(face)] = shell;
            for (std::size_t c = faces.first[at(face)]; c < faces.first[at(face) + 1]; ++c) {
                const int v = faces.vertices[c];
                if (!hasShell[at(v)])
                    out.vertices.push_back(v);
                hasShell[at(v)] = 1;
            }
        }
        if (shellOfFace[f] < 0) {
            out = Shells();
            return false;
        }
        out.first.push_back(out.vertices.size());
    }
    out.uvCounts = uvCounts(faces, shellOfFace, out.count());
    return true;
}

std::vector<Box> boxesOf(const Shells& shells, const std::vector<double>& xyz)
{
    const std::vector<double> positions = gathered(shells, xyz);
    std::vector<Box>          boxes;
    for (std::size_t s = 0; s < shells.count(); ++s)
        boxes.push_back(boxOf(positions.data() + 3 * shells.first[s], shells.size(s)));
    return boxes;
}

void moveShells(const Shells& shells, const std::vector<Move>& moves, std::vector<Box>& boxes, std::vector<double>& xyz,
                std::vector<double>& placed)
{
    placed = gathered(shells, xyz);
    for (std::size_t s = 0; s < shells.count(); ++s) {
        const Move& move = moves[s];
        double*     p = placed.data() + 3 * shells.first[s];
        for (std::size_t i = 0; i < shells.size(s); ++i, p += 3) {
            const double x = p[0] - boxes[s].center[0], y = p[1] - boxes[s].center[1], z = p[2] - boxes[s].center[2];
            for (int k = 0; k < 3; ++k)
                p[k] = x * move.matrix[0][k] + y * move.matrix[1][k] + z * move.matrix[2][k] + move.target[k];
        }
        boxes[s] = boxOf(placed.data() + 3 * shells.first[s], shells.size(s));
    }
    for (std::size_t k = 0; k < shells.vertices.size(); ++k)
        std::copy_n(&placed[3 * k], 3, &xyz[3 * at(shells.vertices[k])]);
}

} // namespace shells
