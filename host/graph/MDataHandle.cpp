#include <maya/MDataHandle.h>

#include <memory>

#include <maya/MAngle.h>
#include <maya/MDataBlock.h>
#include <maya/MDistance.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFloatVector.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPxData.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include "data/data.h"
#include "data/plugin_data.h"
#include "graph/access.h"
#include "graph/evaluate.h"

using namespace mirk;

namespace {

/// Where a reference goes that has no value of its kind: a few places in turn, so that two of them in one
/// expression do not meet.
template <class T>
T& scratch()
{
    thread_local T places[8];
    thread_local unsigned next = 0;
    T& place = places[next++ % 8];
    place = T();
    return place;
}

template <class T>
T& scalar(Cell* cell, Store store)
{
    if (cell && cell->store() == store)
        return *static_cast<T*>(cell->v);
    T& place = scratch<T>();
    if (cell)
        place = T(cell->number());
    return place;
}

template <class Tuple, class T, int N>
Tuple& tuple(Cell* cell, Store store)
{
    static_assert(sizeof(Tuple) == N * sizeof(T));
    if (cell && cell->store() == store)
        return *static_cast<Tuple*>(cell->v);
    struct Holder { T values[N] = {}; };
    Holder& place = scratch<Holder>();
    if (cell)
        for (int i = 0; i < N; ++i)
            place.values[i] = T(cell->number(i));
    return reinterpret_cast<Tuple&>(place.values);
}

void wrote(Cell& cell)
{
    cell.flags |= Cell::kSet;
    eval::clean(cell);
}

template <class... T>
void put(Cell* cell, T... values)
{
    if (!cell)
        return;
    int i = 0;
    (cell->setNumber(double(values), i++), ...);
    wrote(*cell);
}

GeometryData* geometry(Cell* cell, MFnData::Type type)
{
    Data* data = cell ? cell->data() : nullptr;
    return data && data->type() == type ? static_cast<GeometryData*>(data) : nullptr;
}

MObject plainView(Cell* cell, MFnData::Type type) { return wrap(static_cast<Object*>(geometry(cell, type))); }

MObject transformedView(Cell* cell, MFnData::Type type)
{
    GeometryData* g = geometry(cell, type);
    return g ? wrap(g->transformedView()) : MObject();
}


}  // namespace

namespace mirk {

Object* HandleAccess::data(const MDataHandle& h) { return h.cell_ ? h.cell_->data() : nullptr; }

void HandleAccess::detachForWrite(const MDataHandle& h)
{
    if (h.cell_ && h.cell_->data())
        eval::noteWritten(*h.cell_);
}

}  // namespace mirk

MDataHandle::MDataHandle() = default;

MFnData::Type MDataHandle::type(MStatus* status) const
{
    if (status) *status = cell_ ? MS::kSuccess : MS::kFailure;
    if (!cell_)
        return MFnData::kInvalid;
    if (Data* data = cell_->data())
        return data->type();
    if (storeDimension(cell_->store()) > 0)
        return MFnData::kNumeric;
    if (cell_->attr->kind == AttrKind::kMatrix)
        return MFnData::kMatrix;
    return cell_->attr->kind == AttrKind::kTyped ? cell_->attr->dataType : MFnData::kInvalid;
}

MTypeId MDataHandle::typeId() const
{
    auto* data = cell_ ? dynamic_cast<PluginData*>(cell_->data()) : nullptr;
    return data ? MTypeId(data->typeId()) : MTypeId();
}

bool MDataHandle::isNumeric(MStatus* status) const { return type(status) == MFnData::kNumeric; }

bool MDataHandle::isGeneric(bool& numeric, bool& null, MStatus* status) const
{
    if (status) *status = cell_ ? MS::kSuccess : MS::kFailure;
    numeric = isNumeric();
    null = !cell_ || (cell_->store() == Store::kData && !cell_->data());
    return cell_ && cell_->attr->kind == AttrKind::kGeneric;
}

MFnNumericData::Type MDataHandle::numericType(MStatus* status) const
{
    if (status) *status = cell_ ? MS::kSuccess : MS::kFailure;
    if (!cell_)
        return MFnNumericData::kInvalid;
    if (auto* boxed = dynamic_cast<NumericData*>(cell_->data()))
        return boxed->numericType;
    switch (cell_->attr->kind) {
    case AttrKind::kUnit: return MFnNumericData::kDouble;
    case AttrKind::kEnum: return MFnNumericData::kShort;
    default: return cell_->attr->numeric;
    }
}

MDataBlock MDataHandle::datablock(MStatus* status) const
{
    if (status) *status = cell_ ? MS::kSuccess : MS::kFailure;
    return HandleAccess::block(cell_ ? cell_->node : nullptr);
}

void MDataHandle::setClean()
{
    if (cell_)
        eval::clean(*cell_);
}

MDataHandle MDataHandle::child(const MPlug& plug) { return child(plug.attribute()); }

MDataHandle MDataHandle::child(const MObject& attribute)
{
    auto* a = objectAs<Attribute>(attribute);
    if (!cell_ || !a || a->parent != cell_->attr)
        return MDataHandle();
    Cell* c = cell_->child(a->childIndex);
    if (c && input_)
        eval::pull(*c);
    return HandleAccess::handle(c, input_);
}

MObject MDataHandle::data()
{
    if (!cell_)
        return MObject();
    if (Data* data = cell_->data())
        return wrap(static_cast<Object*>(data));
    const Store s = cell_->store();
    if (s == Store::kMatrix || s == Store::kFloatMatrix) {
        auto m = make<MatrixData>();
        for (int i = 0; i < 16; ++i)
            m->value[i / 4][i % 4] = s == Store::kMatrix ? cell_->own.matrix[i] : cell_->own.floatMatrix[i];
        return wrap(m);
    }
    if (storeDimension(s) > 1) {
        auto boxed = make<NumericData>(cell_->attr->numeric);
        for (int i = 0; i < storeDimension(s); ++i)
            boxed->value[i] = cell_->number(i);
        return wrap(boxed);
    }
    return MObject();
}

MStatus MDataHandle::copy(const MDataHandle& source)
{
    if (!cell_ || !source.cell_)
        return MS::kFailure;
    if (source.input_)
        eval::pullDeep(*source.cell_);
    cell_->copyFrom(*source.cell_);
    wrote(*cell_);
    return MS::kSuccess;
}

MStatus MDataHandle::copyWritable(const MDataHandle& source) { return copy(source); }

bool&           MDataHandle::asBool() const { return scalar<bool>(cell_, Store::kBool); }
char&           MDataHandle::asChar() const { return scalar<char>(cell_, Store::kChar); }
unsigned char&  MDataHandle::asUChar() const { return scalar<unsigned char>(cell_, Store::kChar); }
short&          MDataHandle::asShort() const { return scalar<short>(cell_, Store::kShort); }
unsigned short& MDataHandle::asUShort() const { return scalar<unsigned short>(cell_, Store::kShort); }
int&            MDataHandle::asInt() const { return scalar<int>(cell_, Store::kInt); }
int&            MDataHandle::asLong() const { return scalar<int>(cell_, Store::kInt); }
MInt64&         MDataHandle::asInt64() const { return scalar<MInt64>(cell_, Store::kInt64); }
float&          MDataHandle::asFloat() const { return scalar<float>(cell_, Store::kFloat); }
double&         MDataHandle::asDouble() const { return scalar<double>(cell_, Store::kDouble); }
float2&         MDataHandle::asFloat2() const { return tuple<float2, float, 2>(cell_, Store::kFloat2); }
float3&         MDataHandle::asFloat3() const { return tuple<float3, float, 3>(cell_, Store::kFloat3); }
double2&        MDataHandle::asDouble2() const { return tuple<double2, double, 2>(cell_, Store::kDouble2); }
double3&        MDataHandle::asDouble3() const { return tuple<double3, double, 3>(cell_, Store::kDouble3); }
double4&        MDataHandle::asDouble4() const { return tuple<double4, double, 4>(cell_, Store::kDouble4); }
int2&           MDataHandle::asInt2() const { return tuple<int2, int, 2>(cell_, Store::kInt2); }
int3&           MDataHandle::asInt3() const { return tuple<int3, int, 3>(cell_, Store::kInt3); }
int2&           MDataHandle::asLong2() const { return asInt2(); }
int3&           MDataHandle::asLong3() const { return asInt3(); }
short2&         MDataHandle::asShort2() const { return tuple<short2, short, 2>(cell_, Store::kShort2); }
short3&         MDataHandle::asShort3() const { return tuple<short3, short, 3>(cell_, Store::kShort3); }
MVector&        MDataHandle::asVector() const { return tuple<MVector, double, 3>(cell_, Store::kDouble3); }
MFloatVector&   MDataHandle::asFloatVector() const { return tuple<MFloatVector, float, 3>(cell_, Store::kFloat3); }

MMatrix& MDataHandle::asMatrix() const
{
    if (cell_ && cell_->store() == Store::kMatrix)
        return *reinterpret_cast<MMatrix*>(cell_->own.matrix);
    if (auto* data = cell_ ? dynamic_cast<MatrixData*>(cell_->data()) : nullptr)
        return *reinterpret_cast<MMatrix*>(data->value);
    MMatrix& place = scratch<MMatrix>();
    if (cell_ && cell_->store() == Store::kFloatMatrix)
        for (int i = 0; i < 16; ++i)
            place.matrix[i / 4][i % 4] = cell_->own.floatMatrix[i];
    return place;
}

MFloatMatrix& MDataHandle::asFloatMatrix() const
{
    if (cell_ && cell_->store() == Store::kFloatMatrix)
        return *reinterpret_cast<MFloatMatrix*>(cell_->own.floatMatrix);
    MFloatMatrix& place = scratch<MFloatMatrix>();
    const MMatrix& m = asMatrix();
    for (int i = 0; i < 16; ++i)
        place.matrix[i / 4][i % 4] = float(m.matrix[i / 4][i % 4]);
    return place;
}

MString& MDataHandle::asString() const
{
    MString& place = scratch<MString>();
    if (auto* data = cell_ ? dynamic_cast<StringData*>(cell_->data()) : nullptr)
        place = MString(data->value.c_str(), int(data->value.size()));
    return place;
}

MTime MDataHandle::asTime() const
{
    const MTime seconds(cell_ ? cell_->number() : 0, MTime::kSeconds);
    return MTime(seconds.as(MTime::uiUnit()), MTime::uiUnit());
}

MAngle    MDataHandle::asAngle() const { return MAngle(cell_ ? cell_->number() : 0, MAngle::kRadians); }
MDistance MDataHandle::asDistance() const { return MDistance(cell_ ? cell_->number() : 0, MDistance::kCentimeters); }

void* MDataHandle::asAddr() const
{
    return cell_ && cell_->store() == Store::kInt64 ? reinterpret_cast<void*>(*static_cast<int64_t*>(cell_->v)) : nullptr;
}

MPxData* MDataHandle::asPluginData() const
{
    auto* data = cell_ ? dynamic_cast<PluginData*>(cell_->data()) : nullptr;
    return data ? &data->object() : nullptr;
}

MObject MDataHandle::asMesh() const { return plainView(cell_, MFnData::kMesh); }
MObject MDataHandle::asMeshTransformed() const { return transformedView(cell_, MFnData::kMesh); }
MObject MDataHandle::asNurbsCurve() const { return plainView(cell_, MFnData::kNurbsCurve); }
MObject MDataHandle::asNurbsCurveTransformed() const { return transformedView(cell_, MFnData::kNurbsCurve); }
MObject MDataHandle::asNurbsSurface() const { return plainView(cell_, MFnData::kNurbsSurface); }
MObject MDataHandle::asNurbsSurfaceTransformed() const { return transformedView(cell_, MFnData::kNurbsSurface); }

const MMatrix& MDataHandle::geometryTransformMatrix() const
{
    Data* data = cell_ ? cell_->data() : nullptr;
    if (auto* g = dynamic_cast<GeometryData*>(data))
        return *reinterpret_cast<const MMatrix*>(g->geometry().matrix);
    return scratch<MMatrix>();
}

void MDataHandle::set(bool v) { put(cell_, v); }
void MDataHandle::set(char v) { put(cell_, static_cast<signed char>(v)); }
void MDataHandle::set(short v) { put(cell_, v); }
void MDataHandle::set(int v) { put(cell_, v); }
void MDataHandle::set(float v) { put(cell_, v); }
void MDataHandle::set(double v) { put(cell_, v); }
void MDataHandle::set(short a, short b) { put(cell_, a, b); }
void MDataHandle::set(int a, int b) { put(cell_, a, b); }
void MDataHandle::set(float a, float b) { put(cell_, a, b); }
void MDataHandle::set(double a, double b) { put(cell_, a, b); }
void MDataHandle::set(short a, short b, short c) { put(cell_, a, b, c); }
void MDataHandle::set(int a, int b, int c) { put(cell_, a, b, c); }
void MDataHandle::set(float a, float b, float c) { put(cell_, a, b, c); }
void MDataHandle::set(double a, double b, double c) { put(cell_, a, b, c); }
void MDataHandle::set(const MVector& v) { put(cell_, v.x, v.y, v.z); }
void MDataHandle::set(const MFloatVector& v) { put(cell_, v.x, v.y, v.z); }
void MDataHandle::set(const MTime& t) { put(cell_, t.as(MTime::kSeconds)); }
void MDataHandle::set(const MAngle& a) { put(cell_, a.asRadians()); }
void MDataHandle::set(const MDistance& d) { put(cell_, d.asCentimeters()); }

void MDataHandle::set(MInt64 v)
{
    if (cell_ && cell_->store() == Store::kInt64) {
        *static_cast<MInt64*>(cell_->v) = v;
        wrote(*cell_);
    } else {
        put(cell_, v);
    }
}

void MDataHandle::set(const MMatrix& value)
{
    if (!cell_)
        return;
    if (cell_->store() == Store::kMatrix)
        std::copy(&value.matrix[0][0], &value.matrix[0][0] + 16, cell_->own.matrix);
    else if (cell_->store() == Store::kFloatMatrix)
        std::copy(&value.matrix[0][0], &value.matrix[0][0] + 16, cell_->own.floatMatrix);
    else if (cell_->store() == Store::kData && cell_->attr->acceptsData(MFnData::kMatrix)) {
        auto data = make<MatrixData>();
        std::copy(&value.matrix[0][0], &value.matrix[0][0] + 16, &data->value[0][0]);
        cell_->setData(data);
    }
    wrote(*cell_);
}

void MDataHandle::set(const MFloatMatrix& value)
{
    MMatrix wide;
    for (int i = 0; i < 16; ++i)
        wide.matrix[i / 4][i % 4] = value.matrix[i / 4][i % 4];
    set(wide);
}

void MDataHandle::set(const MString& value)
{
    if (!cell_ || cell_->store() != Store::kData)
        return;
    cell_->setData(make<StringData>(std::string(value.asChar())));
    wrote(*cell_);
}

MStatus MDataHandle::set(const MObject& value)
{
    auto* data = objectAs<Data>(value);
    if (!cell_ || (!data && !value.isNull()))
        return MS::kInvalidParameter;
    if (cell_->store() != Store::kData) {
        if (auto* m = dynamic_cast<MatrixData*>(data)) {
            if (cell_->store() != Store::kMatrix && cell_->store() != Store::kFloatMatrix)
                return MS::kFailure;
            set(*reinterpret_cast<const MMatrix*>(m->value));
            return MS::kSuccess;
        }
        if (auto* n = dynamic_cast<NumericData*>(data)) {
            if (n->count() != storeDimension(cell_->store()))
                return MS::kFailure;
            for (int i = 0; i < n->count(); ++i)
                cell_->setNumber(n->value[i], i);
            wrote(*cell_);
            return MS::kSuccess;
        }
        return MS::kFailure;
    }
    if (data && !cell_->attr->acceptsData(data->type()) && data->type() != MFnData::kNumeric)
        return MS::kFailure;
    // a transformed view shows the same body: the block keeps the plain one
    if (auto* g = dynamic_cast<GeometryData*>(data); g && g->transformed) {
        if (auto* present = dynamic_cast<GeometryData*>(cell_->data()); !present || &present->geometry() != &g->geometry())
            cell_->setData(g->share());
    } else {
        cell_->setData(Ref<Data>(data));
    }
    eval::noteWritten(*cell_);
    wrote(*cell_);
    return MS::kSuccess;
}

MStatus MDataHandle::set(MPxData* value)
{
    if (!cell_ || !value)
        return MS::kInvalidParameter;
    if (PluginData* holder = PluginData::holding(*value))
        return set(wrap(Ref<PluginData>(holder)));
    Ref<PluginData> shell = makePluginData(value->typeId().id());
    if (!shell)
        return MS::kFailure;
    shell->object().copy(*value);
    return set(wrap(shell));
}

void MDataHandle::setBool(bool v) { set(v); }
void MDataHandle::setChar(char v) { set(v); }
void MDataHandle::setShort(short v) { set(v); }
void MDataHandle::setInt(int v) { set(v); }
void MDataHandle::setInt64(MInt64 v) { set(v); }
void MDataHandle::setFloat(float v) { set(v); }
void MDataHandle::setDouble(double v) { set(v); }
void MDataHandle::setMMatrix(const MMatrix& v) { set(v); }
void MDataHandle::setMFloatMatrix(const MFloatMatrix& v) { set(v); }
void MDataHandle::setMVector(const MVector& v) { set(v); }
void MDataHandle::setMFloatVector(const MFloatVector& v) { set(v); }
void MDataHandle::setMTime(const MTime& v) { set(v); }
void MDataHandle::setMAngle(const MAngle& v) { set(v); }
void MDataHandle::setMDistance(const MDistance& v) { set(v); }
void MDataHandle::setString(const MString& v) { set(v); }
void MDataHandle::setMPxData(MPxData* v) { set(v); }
void MDataHandle::setMObject(const MObject& v) { set(v); }
void MDataHandle::set2Short(short a, short b) { set(a, b); }
void MDataHandle::set2Int(int a, int b) { set(a, b); }
void MDataHandle::set2Float(float a, float b) { set(a, b); }
void MDataHandle::set2Double(double a, double b) { set(a, b); }
void MDataHandle::set3Short(short a, short b, short c) { set(a, b, c); }
void MDataHandle::set3Int(int a, int b, int c) { set(a, b, c); }
void MDataHandle::set3Float(float a, float b, float c) { set(a, b, c); }
void MDataHandle::set3Double(double a, double b, double c) { set(a, b, c); }
void MDataHandle::set4Double(double a, double b, double c, double d) { put(cell_, a, b, c, d); }

// --- generic numbers --------------------------------------------------------------------------------------------------

namespace {

MInt64 genericInteger(const Cell* cell)
{
    const auto* boxed = cell ? dynamic_cast<const NumericData*>(cell->data()) : nullptr;
    if (boxed && boxed->numericType == MFnNumericData::kInt64)
        return boxed->integer;
    const double value = cell ? cell->number() : 0;
    return std::isfinite(value) ? MInt64(std::clamp(value, -9.2e18, 9.2e18)) : 0;
}

void putGeneric(Cell* cell, MFnNumericData::Type type, double value, MInt64 integer)
{
    if (!cell)
        return;
    if (cell->store() != Store::kData)
        return put(cell, value);
    auto boxed = make<NumericData>(type);
    boxed->value[0] = value;
    boxed->integer = integer;
    cell->setData(boxed);
    wrote(*cell);
}

}  // namespace

bool   MDataHandle::asGenericBool() const { return cell_ && cell_->number() != 0; }
char   MDataHandle::asGenericChar() const { return char(genericInteger(cell_)); }
short  MDataHandle::asGenericShort() const { return short(genericInteger(cell_)); }
int    MDataHandle::asGenericInt() const { return int(genericInteger(cell_)); }
MInt64 MDataHandle::asGenericInt64() const { return genericInteger(cell_); }
float  MDataHandle::asGenericFloat() const { return float(asGenericDouble()); }
double MDataHandle::asGenericDouble() const { return cell_ ? cell_->number() : 0; }

void MDataHandle::setGenericBool(bool v, bool) { putGeneric(cell_, MFnNumericData::kBoolean, v, v); }
void MDataHandle::setGenericChar(char v, bool) { putGeneric(cell_, MFnNumericData::kChar, v, v); }
void MDataHandle::setGenericShort(short v, bool) { putGeneric(cell_, MFnNumericData::kShort, v, v); }
void MDataHandle::setGenericInt(int v, bool) { putGeneric(cell_, MFnNumericData::kInt, v, v); }
void MDataHandle::setGenericInt64(MInt64 v, bool) { putGeneric(cell_, MFnNumericData::kInt64, double(v), v); }
void MDataHandle::setGenericFloat(float v, bool) { putGeneric(cell_, MFnNumericData::kFloat, v, 0); }
void MDataHandle::setGenericDouble(double v, bool) { putGeneric(cell_, MFnNumericData::kDouble, v, 0); }
