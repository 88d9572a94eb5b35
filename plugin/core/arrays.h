// Arrays in data blocks: read in place whatever their kind, and made new in each compute.
#pragma once
#include <maya/MDataBlock.h>
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

/// A look at an array that some node published, in place: nothing is copied and nothing may be written. `kind` is the
/// data's own, kInvalid for no data and for data that is no array of numbers. One of the three pointers is set if the
/// length is above 0. Doubles, vectors and points share `doubles`: 1, 3 and 4 values an element.
struct ArrayView
{
    MFn::Type     kind = MFn::kInvalid;
    unsigned int  length = 0;        ///< elements
    unsigned int  stride = 0;        ///< values an element
    const double* doubles = nullptr;
    const int*    ints = nullptr;
    const float*  floats = nullptr;
    MObject       data;              ///< keeps the values alive
};

ArrayView viewArray(const MObject& data);
ArrayView viewArray(MDataBlock& block, const MObject& attribute);

/// An array that a node is about to publish. The values are written straight into the data object, so that publishing
/// copies nothing: `resize`, fill through `values()`, `publish`. An empty one is published as well, so that no reader
/// sees the values of an earlier run.
class OutArray
{
public:
    enum Kind { kDoubles, kInts, kPoints, kVectors, kFloats };
    explicit OutArray(Kind kind);

    /// Makes room for `length` elements of unknown value and gives the first value (null if there is none).
    double* resize(unsigned int length);
    /// The same for kInts and kFloats.
    int*    resizeInts(unsigned int length);
    float*  resizeFloats(unsigned int length);

    MStatus publish(MDataBlock& block, const MObject& attribute) const;

private:
    Kind    kind_;
    MObject data_;
};
