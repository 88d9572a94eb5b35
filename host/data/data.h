// Data objects: what travels over connections. A data object is a small counted shell around shared buffers.
// `share` is what a connection does: a new shell on the same buffers, which costs nothing until somebody writes.
#pragma once
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MString.h>
#include <maya/MVector.h>

#include "data/buffer.h"
#include "data/element_buffer.h"
#include "data/object.h"

class MTransformationMatrix;

namespace mirk {

class Data : public Object
{
public:
    virtual MFnData::Type type() const = 0;
    /// A new data object on shared buffers; writers of either detach the buffer they write.
    virtual Ref<Data> share() const = 0;
    /// True if somebody beside the one holder of this shell can still write into what it shows.
    virtual bool heldElsewhere() const { return refCount() > 1; }
    bool hasFn(MFn::Type t) const override { return t == MFn::kData || Object::hasFn(t); }
};

/// An array: double, int, float, vector, point ... `T` is the element of the interface's array class.
template <class T, MFnData::Type DataType, MFn::Type ApiType, class Storage = Buffer<T>>
class ArrayData : public Data
{
public:
    ArrayData() : buffer(make<Storage>()) {}
    explicit ArrayData(Ref<Storage> b) : buffer(b ? std::move(b) : make<Storage>()) {}
    MFnData::Type type() const override { return DataType; }
    MFn::Type     apiType() const override { return ApiType; }
    Ref<Data>     share() const override { return make<ArrayData>(buffer); }

    Ref<Storage> buffer;  ///< never null
};

/// Three floats, as meshes store them.

using DoubleArrayData      = ArrayData<double, MFnData::kDoubleArray, MFn::kDoubleArrayData>;
using FloatArrayData       = ArrayData<float, MFnData::kFloatArray, MFn::kFloatArrayData>;
using IntArrayData         = ArrayData<int, MFnData::kIntArray, MFn::kIntArrayData>;
using VectorArrayData      = ArrayData<MVector, MFnData::kVectorArray, MFn::kVectorArrayData>;
using PointArrayData       = ArrayData<MPoint, MFnData::kPointArray, MFn::kPointArrayData>;
using MatrixArrayData      = ArrayData<MMatrix, MFnData::kMatrixArray, MFn::kMatrixArrayData>;
using StringArrayData      = ArrayData<MString, MFnData::kStringArray, MFn::kStringArrayData, ElementBuffer<MString>>;

/// One set of component indices: single (vertices, edges, faces, UVs, curve CVs ...), double (surface CVs) or triple
/// (lattice points) indexed. A complete component stands for all, counted where it is applied.
class Component : public Object
{
public:
    Component(MFn::Type type, int dimensions) : type_(type), dimensions_(dimensions) {}
    MFn::Type apiType() const override { return type_; }
    bool      hasFn(MFn::Type t) const override;
    int       dimensions() const { return dimensions_; }
    size_t    count() const { return indices.size() / dimensions_; }

    std::vector<int> indices;             ///< `dimensions` numbers an element; component.h keeps them sorted and unique
    bool             complete = false;
    int              completeCount[3] = {0, 0, 0};

    /// True if the element (u[, v[, w]]) is in. Constant time: a look-up table is built at the first question.
    bool has(int u, int v = 0, int w = 0) const;
    void changed() const { lookup_ = nullptr; }   ///< call after writing `indices`

private:
    struct Lookup;
    MFn::Type                     type_;
    int                           dimensions_;
    mutable std::shared_ptr<const Lookup> lookup_;
};

class ComponentListData : public Data
{
public:
    MFnData::Type type() const override { return MFnData::kComponentList; }
    MFn::Type     apiType() const override { return MFn::kComponentListData; }
    Ref<Data>     share() const override;   ///< copies the components: they are small

    std::vector<Ref<Component>> list;
};

class StringData : public Data
{
public:
    StringData() = default;
    explicit StringData(std::string s) : value(std::move(s)) {}
    MFnData::Type type() const override { return MFnData::kString; }
    MFn::Type     apiType() const override { return MFn::kStringData; }
    Ref<Data>     share() const override { return make<StringData>(value); }

    std::string value;
};

class MatrixData : public Data
{
public:
    MFnData::Type type() const override { return MFnData::kMatrix; }
    MFn::Type     apiType() const override { return MFn::kMatrixData; }
    Ref<Data>     share() const override;

    double value[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    /// Set if the data was made from a transformation, which then stands beside its matrix; never written in place.
    std::shared_ptr<const MTransformationMatrix> transformation;
};

/// One to four numbers of one kind. Integers (kInt64 apart) and floats are exact in doubles.
class NumericData : public Data
{
public:
    explicit NumericData(MFnNumericData::Type t = MFnNumericData::kDouble) : numericType(t) {}
    MFnData::Type type() const override { return MFnData::kNumeric; }
    MFn::Type     apiType() const override;
    bool          hasFn(MFn::Type t) const override { return t == MFn::kNumericData || Data::hasFn(t); }
    Ref<Data>     share() const override;
    int           count() const;   ///< numbers held: 1 to 4

    MFnNumericData::Type numericType;
    double               value[4] = {0, 0, 0, 0};
    int64_t              integer = 0;   ///< kInt64 and kAddr keep theirs here
};

/// What a geometry holds besides its points: the transform that travels with it, and the object groups.
/// Bodies are what function sets write; a shell (GeometryData) may show a body with or without its transform.
class GeometryBody
{
public:
    struct Group { unsigned id; Ref<Component> component; };

    GeometryBody() = default;
    GeometryBody(const GeometryBody& o) : groups(o.groups), identity(o.identity) { std::memcpy(matrix, o.matrix, sizeof matrix); }
    GeometryBody& operator=(const GeometryBody&) = delete;
    virtual ~GeometryBody() = default;
    void addRef() const noexcept { refs_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept { if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this; }
    bool unique() const noexcept { return refs_.load(std::memory_order_acquire) == 1; }

    std::vector<Group> groups;   ///< object groups, in the order added; components are replaced, never written in place
    double matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    bool   identity = true;      ///< matrix is the identity

private:
    mutable std::atomic<int32_t> refs_{0};
};

/// Base of mesh, curve and surface data. `transformed` shells apply the body's matrix for world-space questions; two
/// shells may show one body, and writes through either are seen by both.
class GeometryData : public Data
{
public:
    bool hasFn(MFn::Type t) const override { return t == MFn::kGeometryData || Data::hasFn(t); }
    virtual GeometryBody& geometry() const = 0;
    /// The same body seen through its matrix (`asMeshTransformed`), not a copy.
    virtual Ref<GeometryData> transformedView() const = 0;
    bool heldElsewhere() const override { return refCount() > 1 || !geometry().unique(); }

    bool transformed = false;
};

}  // namespace mirk
