// How textures thin the points of scatter: by the UVs of the mesh, and as seen from projectors.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MString.h>

#include <vector>

#include "generators/scatterThrows.h"

class MFnMesh;

namespace scatter_ {

struct Projector
{
    MObject color;              ///< the attribute that the texture drives
    bool    sees = true;        ///< false: its matrix has no inverse
    bool    contained = false;  ///< drops what it does not see
    Matrix  worldToProjector;
};

struct Textures
{
    bool                   byUv = false;
    MString                uvSet;        ///< empty: the current one
    std::vector<Projector> projectors;   ///< those that work, in their order
};

/// Reads which textures there are; none of them is evaluated.
Textures readTextures(MDataBlock& block, const MObject& node);

/// Drops points by the textures, one after the other. One number is drawn for each point that a texture is asked
/// about. A point without UVs where its ray hit is dropped by the texture on UVs.
void filterByTextures(const Textures& textures, const MObject& node, const MFnMesh& mesh, Cloud& cloud, Draws& draws);

} // namespace scatter_
