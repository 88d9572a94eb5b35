// Shards of a mesh: its connected pieces, with what tells whether they are right.
#pragma once
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <map>
#include <numeric>
#include <utility>
#include <vector>

namespace shards {

struct Piece
{
    std::vector<int> faces;
    std::vector<int> vertices;          ///< ascending
    double           volume = 0;        ///< of what its faces enclose
    double           area = 0;
    bool             closed = true;     ///< each edge has two faces, which run along it in opposite directions
};

class Pieces
{
public:
    explicit Pieces(const MObject& mesh)
    {
        MFnMesh     fn(mesh);
        fn.getPoints(points_);
        std::vector<std::vector<int>> corners;
        std::vector<int>              root(points_.length());
        std::iota(root.begin(), root.end(), 0);
        const auto rootOf = [&](int v) {
            while (root[std::size_t(v)] != v)
                v = root[std::size_t(v)] = root[std::size_t(root[std::size_t(v)])];
            return v;
        };
        for (int f = 0; f < fn.numPolygons(); ++f) {
            MIntArray vertices;
            fn.getPolygonVertices(f, vertices);
            corners.emplace_back();
            for (unsigned int i = 0; i < vertices.length(); ++i) {
                corners.back().push_back(vertices[i]);
                root[std::size_t(rootOf(vertices[i]))] = rootOf(vertices[0]);
            }
        }
        std::map<int, std::size_t> pieceOf;   // by root
        for (int v = 0; v < int(points_.length()); ++v) {   // pieces in the order of their first vertices
            const std::size_t next = pieces.size();
            const auto        [it, isNew] = pieceOf.emplace(rootOf(v), next);
            if (isNew)
                pieces.emplace_back();
            pieces[it->second].vertices.push_back(v);
        }
        std::map<std::pair<int, int>, int> sides;
        for (int f = 0; f < int(corners.size()); ++f) {
            Piece& piece = pieces[pieceOf[rootOf(corners[std::size_t(f)][0])]];
            piece.faces.push_back(f);
            addFace(piece, corners[std::size_t(f)], sides);
        }
        for (const auto& [side, count] : sides)
            if (count != 1 || !sides.count({side.second, side.first}))
                pieces[pieceOf[rootOf(side.first)]].closed = false;
    }

    MVector at(int vertex) const { return MVector(points_[unsigned(vertex)]); }
    double  volume() const
    {
        double sum = 0;
        for (const Piece& p : pieces)
            sum += p.volume;
        return sum;
    }
    double area() const
    {
        double sum = 0;
        for (const Piece& p : pieces)
            sum += p.area;
        return sum;
    }
    bool allClosed() const
    {
        for (const Piece& p : pieces)
            if (!p.closed)
                return false;
        return true;
    }

    std::vector<Piece> pieces;

private:
    /// Faces are flat, but maybe concave: their signed triangles add up.
    void addFace(Piece& piece, const std::vector<int>& corners, std::map<std::pair<int, int>, int>& sides) const
    {
        MVector across(0, 0, 0);
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const int here = corners[i], next = corners[(i + 1) % corners.size()];
            ++sides[{here, next}];
            across += at(here) ^ at(next);
        }
        piece.volume += across * at(corners[0]) / 6;
        piece.area += across.length() / 2;
    }

    MPointArray points_;
};

} // namespace shards
