// What geometry function sets need of a DAG path.
#pragma once
#include <maya/MObject.h>

class MDagPath;

namespace mirk {

struct PathAccess
{
    static MObject node(const MDagPath& path);
    static void    inclusiveMatrix(const MDagPath& path, double matrix[4][4]);
};

}  // namespace mirk
