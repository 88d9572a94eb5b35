// A mesh as islands: which vertices belong to which, their boxes and how they are moved as rigid pieces. Positions are
// flat, x, y, z a vertex.
#pragma once
#include <cstddef>
#include <functional>
#include <vector>

namespace shells {

/// The vertices of shell s are vertices[first[s]] to vertices[first[s + 1]].
struct Shells
{
    std::vector<std::size_t> first{0};
    std::vector<int>         vertices;
    std::vector<double>      uvCounts;   ///< one a shell

    std::size_t count() const { return first.size() - 1; }
    std::size_t size(std::size_t shell) const { return first[shell + 1] - first[shell]; }
    const int*  begin(std::size_t shell) const { return vertices.data() + first[shell]; }
    const int*  end(std::size_t shell) const { return vertices.data() + first[shell + 1]; }
};

/// Faces by the vertices and UVs of their corners, face after face. A corner without a UV has -1.
struct Faces
{
    std::size_t              vertexCount = 0;
    std::vector<std::size_t> first{0};   ///< corner where a face begins; one more at the end
    std::vector<int>         vertices, uvs;

    std::size_t count() const { return first.size() - 1; }
};

/// Shells of UVs, in the order of their ids: each has the vertices with a UV in it, ascending. A vertex on the border of
/// several belongs to all of them; one without a UV to none.
Shells ofUvs(const Faces& faces, const std::vector<int>& shellOfUv, std::size_t shellCount);

/// Shells of faces, by the first face of each. `pieceOf` tells the faces connected to one. Each has its vertices in the
/// order in which its faces meet them. False if `pieceOf` knows nothing of a face; there are no shells then.
bool ofPieces(const Faces& faces, const std::function<std::vector<int>(int face)>& pieceOf, Shells& out);

struct Box
{
    double center[3], size[3];
};

/// Boxes of all shells. Positions that are not finite do not count; a box of none is a
/// point at the origin.
std::vector<Box> boxesOf(const Shells& shells, const std::vector<double>& xyz);

/// What is done to a shell: p becomes (p - its centre) * matrix + target, with row vectors.
struct Move
{
    double matrix[3][3];
    double target[3];
};

/// Moves all shells. Every one starts from where its vertices stood, so that of several that share a vertex the last one
/// places it. `placed` has the positions that each shell gave its own vertices, in the order of `shells.vertices`.
/// Boxes become those of the moved shells.
void moveShells(const Shells& shells, const std::vector<Move>& moves, std::vector<Box>& boxes, std::vector<double>& xyz,
                std::vector<double>& placed);

} // namespace shells
