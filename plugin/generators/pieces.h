// What a mesh falls into, on flat arrays. No host header.
#pragma once
#include <cstddef>
#include <vector>

namespace pieces {

/// Lists of faces, one after the other.
struct Shells
{
    std::vector<int> first;   ///< shell count + 1 offsets into faces
    std::vector<int> faces;   ///< ascending within a shell

    int count() const { return first.empty() ? 0 : int(first.size()) - 1; }
};

/// The shells: faces that share a vertex belong together. They are numbered by their first face.
///
/// @param counts   corners of each face
/// @param connects the vertex of each corner; all are below `pointCount`
Shells shellsOf(const int* counts, std::size_t faceCount, const int* connects, std::size_t pointCount);

enum OutOfRange { kClamp = 0, kWrap = 1, kEmpty = 2 };

/// The item that an index names among `count`; -1 for none.
int chosen(int index, int count, int outOfRange);

} // namespace pieces
