// The host's way into DAG paths of the interface.
#pragma once
#include <maya/MObject.h>

class MDagPath;

namespace mirk {

struct Path;

struct PathAccess
{
    static MObject node(const MDagPath& path);
    /// Row vectors, evaluated; the identity for a path that is not valid.
    static void    inclusiveMatrix(const MDagPath& path, double matrix[4][4]);
    /// Empty for the path of the world and for one that is not valid.
    static Path     unwrap(const MDagPath& path);
    static MDagPath wrap(const Path& path);
    static MDagPath world();
};

}  // namespace mirk
