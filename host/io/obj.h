// Wavefront OBJ files as meshes, and meshes as such files.
#pragma once
#include <string>
#include <vector>

#include "mesh/mesh.h"

namespace mirk {

struct NamedMesh
{
    std::string   name;   ///< of the object or group; empty in a file that names none
    Ref<MeshBody> body;
};

/// Reads a file: points, vertex colours (`v x y z r g b`; -1 -1 -1 means none), UVs and faces, in their order and
/// untouched. One mesh for each object or group that has faces; a file with only one has all points in it, also those that
/// no face uses, and of several each takes what its faces use, in the file's order.
/// @return false and a message that names file and line: no such file, no points in it, a line that cannot be read or a number
///         that is not finite, a face that names missing points or UVs, a face of less than three vertices
bool readObj(const std::string& file, std::vector<NamedMesh>& meshes, std::string& error);
/// The same on text; `file` is for messages.
bool parseObj(const std::string& text, const std::string& file, std::vector<NamedMesh>& meshes, std::string& error);

/// The text of a file with these meshes: points with the current set's vertex colours, UVs of the current set, faces.
/// Positions read back as the same floats. Points are taken as they stand, without the bodies' matrices.
std::string objText(const std::vector<NamedMesh>& meshes);
/// Writes a file; false and a message that names it if that fails.
bool writeObj(const std::string& file, const std::vector<NamedMesh>& meshes, std::string& error);

}  // namespace mirk
