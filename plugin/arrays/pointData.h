// What `point` knows about the points of a geometry before any text runs, as arrays ready to be published.
#pragma once
#include <maya/MBoundingBox.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFnData.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSpace.h>
#include <maya/MString.h>

#include <vector>

#include "core/arrays.h"

class Subset;

/// The attributes that one of the two geometry inputs is read with.
struct PointInput
{
    MPlug       geometry, colors, normals;
    MString     colorSet, uvSet;   ///< empty: the current one
    const char* name;              ///< of the geometry attribute, as warnings give it
    const char* normalsName;
};

/// One geometry. All arrays are full-length: one entry for each of `count` points, whatever the subset.
struct PointData
{
    MFnData::Type kind = MFnData::kInvalid;
    MObject       mesh;            ///< the mesh itself, or the tessellation of a curve or surface
    unsigned int  step = 1;        ///< mesh vertices a point: a curve's ribbon has two
    unsigned int  count = 0;

    OutArray      positions{OutArray::kPoints};   ///< CVs of a curve: there may be more or less than `count`
    const double* xyzw = nullptr;
    unsigned int  positionCount = 0;
    MBoundingBox  box;                            ///< of the first `count` points
    OutArray      rgba{OutArray::kDoubles};
    const double* colors = nullptr;               ///< flat, rounded to single precision as the host stores colours
    OutArray      normals{OutArray::kVectors};
    const double* normal = nullptr;
    OutArray      sharedMap{OutArray::kDoubles};  ///< U, V
    MFloatArray   us, vs;                         ///< the whole UV table

    /// A point's first coordinate.
    const double* at(unsigned int point) const { return xyzw + 4 * static_cast<std::size_t>(point); }
};

/// The points of the subset.
struct PointSubset
{
    OutArray     ids{OutArray::kInts};   ///< ascending
    const int*   id = nullptr;
    unsigned int idCount = 0;
    bool         all = false;            ///< every point, in order
    unsigned int turns = 0;              ///< of the loop: what the component counts, points or not
};

/// UVs that are in play.
struct PointMap
{
    OutArray     ids{OutArray::kInts};        ///< ascending
    OutArray     points{OutArray::kInts};     ///< for each id the last point that uses it, 0 if none does
    const int*   id = nullptr;
    unsigned int count = 0;
};

/// Arrays that depend on nothing but a length: both inputs of an evaluation share them.
class PointConstants
{
public:
    /// 0, 1, 2 and on.
    OutArray ids(unsigned int count, const int*& first);
    /// Black and opaque, four values a point.
    OutArray black(unsigned int count, const double*& first);

private:
    OutArray      ids_{OutArray::kInts}, black_{OutArray::kDoubles};
    const int*    firstId_ = nullptr;
    const double* firstBlack_ = nullptr;
    unsigned int  idCount_ = 0, blackCount_ = 0;
};

/// Finds the mesh to read and counts the points. False, after a warning, if nothing can be done with the geometry. One
/// of no known kind has no points.
bool openPoints(MDataBlock& block, const PointInput& input, MSpace::Space space, PointData& data);
/// Reads what is known of the points of an open geometry.
void readPoints(MDataBlock& block, const PointInput& input, MSpace::Space space, PointConstants& constants,
                PointData& data);

/// `componentCount`: elements of the subset's component; the point count where there is none.
void gatherSubset(MDataHandle& geometry, const Subset& subset, unsigned int componentCount, const PointData& data,
                  PointConstants& constants, PointSubset& out);

/// All UVs of the table, or with a real subset those that its points use.
void gatherMap(const PointData& data, const MString& uvSet, bool all, const PointSubset& subset, PointMap& out);

/// Box around some of the points.
MBoundingBox boxOf(const PointData& data, const PointSubset& subset);

/// Makes `out` an array cut or padded with zeros to a length; its first value, null for length 0. `stride`: values an
/// element of both; an array of another kind counts as empty.
double* fit(const ArrayView& array, unsigned int stride, unsigned int length, OutArray& out);
