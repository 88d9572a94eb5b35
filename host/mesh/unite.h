// Several meshes as one.
#pragma once
#include <span>

#include "mesh/mesh.h"

namespace mirk {

struct UnitePart
{
    const MeshBody* mesh;          ///< never null; empty ones are passed over
    double          matrix[4][4];  ///< takes its points and locked normals to where the whole has them
};

enum class UniteUVs
{
    apart = 0,    ///< each UV set of each mesh that has UVs becomes one of the whole
    byName = 1,   ///< sets of one name become one; what has no such set has no UVs there
};

/// The meshes one after the other: vertices, faces and edges keep their order, the numbers of the later ones follow those
/// of the earlier ones. Colour sets join by name; hard edges and locked normals stay; object groups and matrices of the
/// meshes do not come along. Current sets are those of the first mesh that has any. Time is linear in what comes out.
/// Null, with the reason in `why`, if that is too large.
Ref<MeshBody> unite(std::span<const UnitePart> parts, UniteUVs uvs, std::string* why = nullptr);

}  // namespace mirk
