// Small things all implementations of the mesh interface share.
#pragma once
#include <cmath>

#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MPointArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

#include "data/fn_base.h"
#include "mesh/mesh.h"
#include "mesh/space.h"

namespace mirk {

inline void report(MStatus* status) { report(status, MStatus::kSuccess); }

/// Makes the array `n` long and gives its first element.
template <class A>
auto* room(A& array, size_t n)
{
    array.setLength(static_cast<unsigned int>(n));
    return n ? &array[0] : nullptr;
}
template <class A>
const auto* begin(const A& array) { return array.length() ? &array[0] : nullptr; }

inline bool within(int i, int n) { return i >= 0 && i < n; }

inline MPoint toPoint(const float* p, const SpaceMatrix& space)
{
    if (!space.active())
        return MPoint(p[0], p[1], p[2]);
    double d[3];
    space.pointOut(p, d);
    return MPoint(d[0], d[1], d[2]);
}
inline MVector toVector(const F3& n) { return MVector(n.v[0], n.v[1], n.v[2]); }
inline MVector toNormal(const F3& n, const SpaceMatrix& space) { return toVector(space.normalOut(n)); }
template <class V>
F3 toF3(const V& v) { return {{float(v.x), float(v.y), float(v.z)}}; }

/// The set a call means: the named one, or the current one without a name; -1 if there is none.
inline int uvSetOf(const MeshBody& body, const MString* name)
{
    return name && name->length() ? body.findUVSet(name->asChar()) : body.uvSets().current;
}
inline int colorSetOf(const MeshBody& body, const MString* name)
{
    return name && name->length() ? body.findColorSet(name->asChar()) : body.colorSets().current;
}

}  // namespace mirk
