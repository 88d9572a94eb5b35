// Meshes as scene files hold them: vertices, edges, faces, UV and colour sets and locked normals of a shape come as
// setAttr calls on "vt", "ed", "fc", "uvst", "clst", "n", and make one mesh when the file has been read.
#pragma once
#include <string>

#include "command/cmd_util.h"

namespace mirk { class MeshBody; }

namespace mirk::io {

/// Takes a setAttr on a mesh shape's stored parts; false if it is none of those.
bool setMeshAttribute(const std::string& plug, command::Arguments& args);
/// Builds the meshes of which parts have come. Errors name the shape; `drop` forgets the parts.
void finishMeshes(bool drop = false);

/// The setAttr calls, a line each, with leading tab.
std::string meshStatements(const MeshBody& mesh);

}  // namespace mirk::io
