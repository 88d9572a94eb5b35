// Arrays in data blocks: read in place whatever their kind, and made new in each compute.
#pragma once
#include <cstddef>
#include <initializer_list>

#include <maya/MDataBlock.h>
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

class MPlug;

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

    std::size_t valueCount() const { return std::size_t(length) * stride; }
    bool isOneOf(std::initializer_list<MFn::Type> kinds) const;
};

ArrayView viewArray(const MObject& data);
ArrayView viewArray(MDataBlock& block, const MObject& attribute);
/// The same with data of any kind but these read as no data.
ArrayView viewArray(MDataBlock& block, const MObject& attribute, std::initializer_list<MFn::Type> kinds);

/// Calls f(first value) with the values' own type: const double*, const int* or const float*. Not at all without data.
template <class F>
void withValues(const ArrayView& array, F&& f)
{
    switch (array.kind) {
    case MFn::kInvalid:        break;
    case MFn::kIntArrayData:   f(array.ints); break;
    case MFn::kFloatArrayData: f(array.floats); break;
    default:                   f(array.doubles);
    }
}

/// Values an element has in the flat form of an array: 3 for vectors and points, which lose their w, else 1.
unsigned int flatStride(const ArrayView& array);
/// `count` elements from `first` on, widened to doubles, flat. The elements exist.
void flatten(const ArrayView& array, unsigned int first, unsigned int count, double* out);

/// Nodes that make an array of any length asked for refuse more values than this.
constexpr unsigned int kMaxValues = 1u << 28;
/// True if so many elements may be made. If not, the node warns; its array is then empty.
bool lengthFits(const MPlug& plug, std::size_t length, unsigned int stride);

/// An array that a node is about to publish. The values are written straight into the data object, so that publishing
/// copies nothing: `resize`, fill through `values()`, `publish`. An empty one is published as well, so that no reader
/// sees the values of an earlier run.
class OutArray
{
public:
    enum Kind {
        kDoubles = MFn::kDoubleArrayData,
        kInts = MFn::kIntArrayData,
        kPoints = MFn::kPointArrayData,
        kVectors = MFn::kVectorArrayData,
        kFloats = MFn::kFloatArrayData,
    };
    explicit OutArray(Kind kind);
    /// Of the kind of an array that has data.
    static OutArray like(const ArrayView& array) { return OutArray(Kind(array.kind)); }

    /// Makes room for `length` elements of unknown value and gives the first value (null if there is none).
    double* resize(unsigned int length);
    /// The same for kInts and kFloats.
    int*    resizeInts(unsigned int length);
    float*  resizeFloats(unsigned int length);
    /// The same by the type of a pointer that takes the result.
    void resize(unsigned int length, double*& first) { first = resize(length); }
    void resize(unsigned int length, int*& first) { first = resizeInts(length); }
    void resize(unsigned int length, float*& first) { first = resizeFloats(length); }

    const MObject& data() const { return data_; }
    MStatus publish(MDataBlock& block, const MObject& attribute) const;

private:
    Kind    kind_;
    MObject data_;
};

/// An array of no elements.
MStatus publishEmpty(MDataBlock& block, const MObject& attribute, OutArray::Kind kind);
