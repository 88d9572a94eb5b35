// The function sets that make attributes, one kind after the other.
#include <algorithm>
#include <climits>
#include <cstring>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MTime.h>

#include "data/data.h"
#include "data/mobject.h"
#include "graph/attribute.h"

using namespace mirk;

namespace {

Attribute* start(AttrKind kind, const MString& longName, const MString& shortName)
{
    return longName.length() == 0 ? nullptr : new Attribute(kind, longName.asChar(), shortName.asChar());
}

MStatus result(bool good) { return good ? MS::kSuccess : MS::kFailure; }

bool tell(MStatus* status, bool good)
{
    if (status) *status = result(good);
    return good;
}

#define MIRK_CONSTRUCTOR(Class, Kind)                                                        \
    Class::Class(const MObject& object, MStatus* status) : MFnAttribute()                    \
    {                                                                                        \
        const MStatus s = setObject(object);                                                 \
        if (status) *status = s;                                                             \
    }                                                                                        \
    MFn::Type Class::type() const { return MFn::k##Kind; }

bool has(const Attribute* a, Attribute::Limit l, MStatus* s) { return tell(s, a) && (a->limits & l); }

MStatus get(const Attribute* a, Attribute::Limit l, double& out, double Attribute::*member)
{
    if (!a || !(a->limits & l))
        return MS::kFailure;
    out = a->*member;
    return MS::kSuccess;
}

MStatus put(Attribute* a, Attribute::Limit l, double value, double Attribute::*member)
{
    if (!a)
        return MS::kFailure;
    a->limits |= l;
    a->*member = value;
    // a tuple's limits are those of its children
    for (auto& c : a->children)
        put(c.get(), l, value, member);
    return MS::kSuccess;
}

MStatus putDefaults(Attribute* a, std::initializer_list<double> values)
{
    if (!a || a->kind != AttrKind::kNumeric || int(values.size()) != std::max(storeDimension(a->store), 1))
        return MS::kFailure;
    int i = 0;
    for (double v : values) {
        a->defaults[i] = v;
        if (Attribute* c = a->child(size_t(i)))
            c->defaults[0] = v;
        ++i;
    }
    return MS::kSuccess;
}

Attribute* tupleOf(const MString& longName, const MString& shortName, std::initializer_list<const MObject*> parts)
{
    std::vector<Attribute*> children;
    for (const MObject* part : parts)
        if (!part->isNull())
            children.push_back(objectAs<Attribute>(*part));
    Attribute* a = start(AttrKind::kNumeric, longName, shortName);
    if (!a || children.empty() || !std::all_of(children.begin(), children.end(), [](Attribute* c) {
            return c && !c->parent && c->slot < 0 && storeDimension(c->store) == 1; })) {
        delete a;
        return nullptr;
    }
    using N = MFnNumericData;
    auto same = [&](Store s) { return std::all_of(children.begin(), children.end(), [s](Attribute* c) { return c->store == s; }); };
    const size_t n = children.size();
    if (n == 2) a->numeric = same(Store::kDouble) ? N::k2Double : same(Store::kFloat) ? N::k2Float
                           : same(Store::kInt) ? N::k2Int : same(Store::kShort) ? N::k2Short : N::kInvalid;
    if (n == 3) a->numeric = same(Store::kDouble) ? N::k3Double : same(Store::kFloat) ? N::k3Float
                           : same(Store::kInt) ? N::k3Int : same(Store::kShort) ? N::k3Short : N::kInvalid;
    if (n == 4) a->numeric = same(Store::kDouble) ? N::k4Double : N::kInvalid;
    a->store = storeOf(a->numeric);
    if (a->store == Store::kNone)
        a->kind = AttrKind::kCompound;   // mixed or single children: an ordinary compound
    for (Attribute* c : children) {
        if (a->childIndex < 0 && a->children.size() < 4)
            a->defaults[a->children.size()] = c->defaults[0];
        c->parent = a;
        c->childIndex = int(a->children.size());
        a->children.push_back(Ref<Attribute>(c));
    }
    return a;
}

Attribute* colorLike(const MString& longName, const MString& shortName, const char* const (&suffixes)[3], bool color)
{
    MFnNumericAttribute part;
    MObject parts[3];
    for (int i = 0; i < 3; ++i) {
        MString s = suffixes[i];
        MString brief = s;
        brief.toLowerCase();
        parts[i] = part.create(longName + s, shortName + brief, MFnNumericData::kFloat);
    }
    Attribute* a = tupleOf(longName, shortName, {&parts[0], &parts[1], &parts[2]});
    if (a)
        a->set(Attribute::kUsedAsColor, color);
    return a;
}

}  // namespace

// ---- numeric -----------------------------------------------------------------------------------------------------

MIRK_CONSTRUCTOR(MFnNumericAttribute, NumericAttribute)

MObject MFnNumericAttribute::create(const MString& l, const MString& b, MFnNumericData::Type type, double value, MStatus* s)
{
    Attribute* a = storeOf(type) == Store::kNone ? nullptr : start(AttrKind::kNumeric, l, b);
    if (a) {
        a->numeric = type;
        a->store = storeOf(type);
        const int n = storeDimension(a->store);
        // tuples made from a type get children named by number, as the host names them
        const Store element = storeElement(a->store);
        for (int i = 0; n > 1 && i < n; ++i) {
            auto c = make<Attribute>(AttrKind::kNumeric, a->longName + std::to_string(i), a->shortName + std::to_string(i));
            c->store = element;
            c->numeric = element == Store::kDouble ? MFnNumericData::kDouble : element == Store::kFloat ? MFnNumericData::kFloat
                       : element == Store::kInt ? MFnNumericData::kInt : MFnNumericData::kShort;
            c->parent = a;
            c->childIndex = i;
            c->defaults[0] = value;
            a->children.push_back(c);
        }
        for (int i = 0; i < n; ++i)
            a->defaults[i] = value;
    }
    return adopt(a, s);
}

MObject MFnNumericAttribute::create(const MString& l, const MString& b, const MObject& c1, const MObject& c2,
                                    const MObject& c3, MStatus* s)
{
    return adopt(tupleOf(l, b, {&c1, &c2, &c3}), s);
}

MObject MFnNumericAttribute::create(const MString& l, const MString& b, const MObject& c1, const MObject& c2,
                                    const MObject& c3, const MObject& c4, MStatus* s)
{
    return adopt(tupleOf(l, b, {&c1, &c2, &c3, &c4}), s);
}

MObject MFnNumericAttribute::createColor(const MString& l, const MString& b, MStatus* s)
{
    return adopt(colorLike(l, b, {"R", "G", "B"}, true), s);
}

MObject MFnNumericAttribute::createPoint(const MString& l, const MString& b, MStatus* s)
{
    return adopt(colorLike(l, b, {"X", "Y", "Z"}, false), s);
}

MObject MFnNumericAttribute::child(unsigned index, MStatus* s) const
{
    Attribute* a = attr();
    Attribute* c = a ? a->child(index) : nullptr;
    tell(s, c);
    return wrap(c);
}

MFnNumericData::Type MFnNumericAttribute::unitType(MStatus* s) const
{
    return tell(s, attr()) ? attr()->numeric : MFnNumericData::kInvalid;
}

bool MFnNumericAttribute::hasMin(MStatus* s) const { return has(attr(), Attribute::kMin, s); }
bool MFnNumericAttribute::hasMax(MStatus* s) const { return has(attr(), Attribute::kMax, s); }
bool MFnNumericAttribute::hasSoftMin(MStatus* s) const { return has(attr(), Attribute::kSoftMin, s); }
bool MFnNumericAttribute::hasSoftMax(MStatus* s) const { return has(attr(), Attribute::kSoftMax, s); }
MStatus MFnNumericAttribute::getMin(double& v) const { return get(attr(), Attribute::kMin, v, &Attribute::min); }
MStatus MFnNumericAttribute::getMax(double& v) const { return get(attr(), Attribute::kMax, v, &Attribute::max); }
MStatus MFnNumericAttribute::getSoftMin(double& v) const { return get(attr(), Attribute::kSoftMin, v, &Attribute::softMin); }
MStatus MFnNumericAttribute::getSoftMax(double& v) const { return get(attr(), Attribute::kSoftMax, v, &Attribute::softMax); }
MStatus MFnNumericAttribute::setMin(double v) { return put(attr(), Attribute::kMin, v, &Attribute::min); }
MStatus MFnNumericAttribute::setMax(double v) { return put(attr(), Attribute::kMax, v, &Attribute::max); }
MStatus MFnNumericAttribute::setSoftMin(double v) { return put(attr(), Attribute::kSoftMin, v, &Attribute::softMin); }
MStatus MFnNumericAttribute::setSoftMax(double v) { return put(attr(), Attribute::kSoftMax, v, &Attribute::softMax); }

MStatus MFnNumericAttribute::getDefault(double& v) const
{
    if (!attr()) return MS::kFailure;
    v = attr()->defaults[0];
    return MS::kSuccess;
}

MStatus MFnNumericAttribute::getDefault(float& v) const { double d = 0; MStatus s = getDefault(d); v = float(d); return s; }
MStatus MFnNumericAttribute::getDefault(bool& v) const { double d = 0; MStatus s = getDefault(d); v = d != 0; return s; }

MStatus MFnNumericAttribute::getDefault(int& v) const
{
    double d = 0;
    const MStatus s = getDefault(d);
    v = int(std::clamp(d, double(INT_MIN), double(INT_MAX)));
    return s;
}

MStatus MFnNumericAttribute::getDefault(double& a, double& b, double& c) const
{
    if (!attr() || storeDimension(attr()->store) != 3) return MS::kFailure;
    a = attr()->defaults[0];
    b = attr()->defaults[1];
    c = attr()->defaults[2];
    return MS::kSuccess;
}

MStatus MFnNumericAttribute::getDefault(float& a, float& b, float& c) const
{
    double x = 0, y = 0, z = 0;
    const MStatus s = getDefault(x, y, z);
    a = float(x), b = float(y), c = float(z);
    return s;
}

MStatus MFnNumericAttribute::setDefault(bool v) { return putDefaults(attr(), {double(v)}); }
MStatus MFnNumericAttribute::setDefault(int v) { return putDefaults(attr(), {double(v)}); }
MStatus MFnNumericAttribute::setDefault(float v) { return putDefaults(attr(), {v}); }
MStatus MFnNumericAttribute::setDefault(double v) { return putDefaults(attr(), {v}); }
MStatus MFnNumericAttribute::setDefault(int a, int b) { return putDefaults(attr(), {double(a), double(b)}); }
MStatus MFnNumericAttribute::setDefault(float a, float b) { return putDefaults(attr(), {a, b}); }
MStatus MFnNumericAttribute::setDefault(double a, double b) { return putDefaults(attr(), {a, b}); }
MStatus MFnNumericAttribute::setDefault(int a, int b, int c) { return putDefaults(attr(), {double(a), double(b), double(c)}); }
MStatus MFnNumericAttribute::setDefault(float a, float b, float c) { return putDefaults(attr(), {a, b, c}); }
MStatus MFnNumericAttribute::setDefault(double a, double b, double c) { return putDefaults(attr(), {a, b, c}); }
MStatus MFnNumericAttribute::setDefault(double a, double b, double c, double d) { return putDefaults(attr(), {a, b, c, d}); }

// ---- typed -------------------------------------------------------------------------------------------------------

MIRK_CONSTRUCTOR(MFnTypedAttribute, TypedAttribute)

MObject MFnTypedAttribute::create(const MString& l, const MString& b, MFnData::Type type, MObject value, MStatus* s)
{
    Attribute* a = type <= MFnData::kInvalid || type >= MFnData::kLast ? nullptr : start(AttrKind::kTyped, l, b);
    if (a) {
        a->store = Store::kData;
        a->dataType = type;
        a->defaultData = Ref<Object>(objectAs<Data>(value));
    }
    return adopt(a, s);
}

MObject MFnTypedAttribute::create(const MString& l, const MString& b, const MTypeId& id, MObject value, MStatus* s)
{
    const MObject o = create(l, b, MFnData::kPlugin, value, s);
    if (attr())
        attr()->pluginDataId = id.id();
    return o;
}

MFnData::Type MFnTypedAttribute::attrType(MStatus* s) const
{
    return tell(s, attr()) ? attr()->dataType : MFnData::kInvalid;
}

MStatus MFnTypedAttribute::setDefault(MObject value)
{
    auto* data = objectAs<Data>(value);
    if (!attr() || (data && !attr()->acceptsData(data->type())))
        return MS::kFailure;
    attr()->defaultData = Ref<Object>(data);
    return MS::kSuccess;
}

MStatus MFnTypedAttribute::getDefault(MObject& value) const
{
    if (!attr()) return MS::kFailure;
    value = wrap(attr()->defaultData);
    return MS::kSuccess;
}

// ---- unit --------------------------------------------------------------------------------------------------------

MIRK_CONSTRUCTOR(MFnUnitAttribute, UnitAttribute)

MObject MFnUnitAttribute::create(const MString& l, const MString& b, Type type, double value, MStatus* s)
{
    Attribute* a = type <= kInvalid || type >= kLast ? nullptr : start(AttrKind::kUnit, l, b);
    if (a) {
        a->unit = type;
        a->store = Store::kDouble;
        a->defaults[0] = value;
    }
    return adopt(a, s);
}

MObject MFnUnitAttribute::create(const MString& l, const MString& b, const MTime& t, MStatus* s)
{
    return create(l, b, kTime, t.as(MTime::kSeconds), s);
}

MObject MFnUnitAttribute::create(const MString& l, const MString& b, const MAngle& a, MStatus* s)
{
    return create(l, b, kAngle, a.asRadians(), s);
}

MObject MFnUnitAttribute::create(const MString& l, const MString& b, const MDistance& d, MStatus* s)
{
    return create(l, b, kDistance, d.asCentimeters(), s);
}

MFnUnitAttribute::Type MFnUnitAttribute::unitType(MStatus* s) const { return tell(s, attr()) ? attr()->unit : kInvalid; }
bool MFnUnitAttribute::hasMin(MStatus* s) const { return has(attr(), Attribute::kMin, s); }
bool MFnUnitAttribute::hasMax(MStatus* s) const { return has(attr(), Attribute::kMax, s); }
bool MFnUnitAttribute::hasSoftMin(MStatus* s) const { return has(attr(), Attribute::kSoftMin, s); }
bool MFnUnitAttribute::hasSoftMax(MStatus* s) const { return has(attr(), Attribute::kSoftMax, s); }
MStatus MFnUnitAttribute::getMin(double& v) const { return get(attr(), Attribute::kMin, v, &Attribute::min); }
MStatus MFnUnitAttribute::getMax(double& v) const { return get(attr(), Attribute::kMax, v, &Attribute::max); }
MStatus MFnUnitAttribute::setMin(double v) { return put(attr(), Attribute::kMin, v, &Attribute::min); }
MStatus MFnUnitAttribute::setMax(double v) { return put(attr(), Attribute::kMax, v, &Attribute::max); }
MStatus MFnUnitAttribute::setSoftMin(double v) { return put(attr(), Attribute::kSoftMin, v, &Attribute::softMin); }
MStatus MFnUnitAttribute::setSoftMax(double v) { return put(attr(), Attribute::kSoftMax, v, &Attribute::softMax); }

MStatus MFnUnitAttribute::getDefault(double& v) const
{
    if (!attr()) return MS::kFailure;
    v = attr()->defaults[0];
    return MS::kSuccess;
}

MStatus MFnUnitAttribute::getDefault(MTime& t) const
{
    double v = 0;
    const MStatus s = getDefault(v);
    t = MTime(v, MTime::kSeconds);
    return s;
}

MStatus MFnUnitAttribute::getDefault(MAngle& a) const
{
    double v = 0;
    const MStatus s = getDefault(v);
    a = MAngle(v, MAngle::kRadians);
    return s;
}

MStatus MFnUnitAttribute::getDefault(MDistance& d) const
{
    double v = 0;
    const MStatus s = getDefault(v);
    d = MDistance(v, MDistance::kCentimeters);
    return s;
}

MStatus MFnUnitAttribute::setDefault(double v)
{
    if (!attr()) return MS::kFailure;
    attr()->defaults[0] = v;
    return MS::kSuccess;
}

MStatus MFnUnitAttribute::setDefault(const MTime& t) { return setDefault(t.as(MTime::kSeconds)); }
MStatus MFnUnitAttribute::setDefault(const MAngle& a) { return setDefault(a.asRadians()); }
MStatus MFnUnitAttribute::setDefault(const MDistance& d) { return setDefault(d.asCentimeters()); }

// ---- enum --------------------------------------------------------------------------------------------------------

MIRK_CONSTRUCTOR(MFnEnumAttribute, EnumAttribute)

MObject MFnEnumAttribute::create(const MString& l, const MString& b, short value, MStatus* s)
{
    Attribute* a = start(AttrKind::kEnum, l, b);
    if (a) {
        a->store = Store::kShort;
        a->defaults[0] = value;
    }
    return adopt(a, s);
}

MStatus MFnEnumAttribute::addField(const MString& name, short index)
{
    Attribute* a = attr();
    if (!a || name.length() == 0)
        return MS::kFailure;
    auto it = std::find_if(a->fields.begin(), a->fields.end(), [&](auto& f) { return f.second == index; });
    if (it != a->fields.end())
        it->first = name.asChar();
    else
        a->fields.emplace_back(name.asChar(), index);
    return MS::kSuccess;
}

MString MFnEnumAttribute::fieldName(short index, MStatus* s) const
{
    if (attr())
        for (auto& [name, i] : attr()->fields)
            if (i == index) {
                tell(s, true);
                return MString(name.c_str());
            }
    tell(s, false);
    return MString();
}

short MFnEnumAttribute::fieldIndex(const MString& name, MStatus* s) const
{
    if (attr())
        for (auto& [n, i] : attr()->fields)
            if (name == n.c_str()) {
                tell(s, true);
                return i;
            }
    tell(s, false);
    return 0;
}

MStatus MFnEnumAttribute::getMin(short& v) const
{
    if (!attr() || attr()->fields.empty()) return MS::kFailure;
    v = SHRT_MAX;
    for (auto& f : attr()->fields) v = std::min(v, f.second);
    return MS::kSuccess;
}

MStatus MFnEnumAttribute::getMax(short& v) const
{
    if (!attr() || attr()->fields.empty()) return MS::kFailure;
    v = SHRT_MIN;
    for (auto& f : attr()->fields) v = std::max(v, f.second);
    return MS::kSuccess;
}

short MFnEnumAttribute::defaultValue(MStatus* s) const { return tell(s, attr()) ? short(attr()->defaults[0]) : 0; }

MStatus MFnEnumAttribute::getDefault(short& v) const
{
    MStatus s;
    v = defaultValue(&s);
    return s;
}

MStatus MFnEnumAttribute::getDefault(MString& v) const
{
    MStatus s;
    v = fieldName(defaultValue(), &s);
    return s;
}

MStatus MFnEnumAttribute::setDefault(short v)
{
    if (!attr()) return MS::kFailure;
    attr()->defaults[0] = v;
    return MS::kSuccess;
}

MStatus MFnEnumAttribute::setDefault(const MString& name)
{
    MStatus s;
    const short v = fieldIndex(name, &s);
    return s == MS::kSuccess ? setDefault(v) : s;
}

// ---- matrix, message, compound, generic --------------------------------------------------------------------------

MIRK_CONSTRUCTOR(MFnMatrixAttribute, MatrixAttribute)

MObject MFnMatrixAttribute::create(const MString& l, const MString& b, Type type, MStatus* s)
{
    Attribute* a = start(AttrKind::kMatrix, l, b);
    if (a)
        a->store = type == kFloat ? Store::kFloatMatrix : Store::kMatrix;
    return adopt(a, s);
}

MMatrix MFnMatrixAttribute::getDefault(MStatus* s) const
{
    MMatrix m;
    if (tell(s, attr()))
        std::memcpy(m.matrix, attr()->defaultMatrix, sizeof m.matrix);
    return m;
}

MStatus MFnMatrixAttribute::setDefault(const MMatrix& m)
{
    if (!attr()) return MS::kFailure;
    std::memcpy(attr()->defaultMatrix, m.matrix, sizeof m.matrix);
    return MS::kSuccess;
}

MStatus MFnMatrixAttribute::setDefault(const MFloatMatrix& m)
{
    if (!attr()) return MS::kFailure;
    for (int i = 0; i < 16; ++i)
        attr()->defaultMatrix[i] = m.matrix[i / 4][i % 4];
    return MS::kSuccess;
}

MIRK_CONSTRUCTOR(MFnMessageAttribute, MessageAttribute)

MObject MFnMessageAttribute::create(const MString& l, const MString& b, MStatus* s)
{
    Attribute* a = start(AttrKind::kMessage, l, b);
    if (a)
        a->set(Attribute::kStorable, false);
    return adopt(a, s);
}

MIRK_CONSTRUCTOR(MFnCompoundAttribute, CompoundAttribute)

MObject MFnCompoundAttribute::create(const MString& l, const MString& b, MStatus* s)
{
    return adopt(start(AttrKind::kCompound, l, b), s);
}

MStatus MFnCompoundAttribute::addChild(const MObject& child)
{
    Attribute* a = attr();
    auto* c = objectAs<Attribute>(child);
    if (!a || !c || c->parent || c == a || a->slot >= 0 || c->slot >= 0)
        return MS::kFailure;
    for (Attribute* p = a; p; p = p->parent)
        if (p == c)
            return MS::kFailure;   // a tree cannot hold itself
    c->parent = a;
    c->childIndex = int(a->children.size());
    a->children.push_back(Ref<Attribute>(c));
    return MS::kSuccess;
}

MStatus MFnCompoundAttribute::removeChild(const MObject& child)
{
    Attribute* a = attr();
    auto* c = objectAs<Attribute>(child);
    if (!a || !c || c->parent != a || a->slot >= 0)
        return MS::kFailure;
    Ref<Attribute> keep(c);
    a->children.erase(a->children.begin() + c->childIndex);
    for (size_t i = 0; i < a->children.size(); ++i)
        a->children[i]->childIndex = int(i);
    c->parent = nullptr;
    c->childIndex = -1;
    return MS::kSuccess;
}

unsigned MFnCompoundAttribute::numChildren(MStatus* s) const
{
    return tell(s, attr()) ? unsigned(attr()->children.size()) : 0;
}

MObject MFnCompoundAttribute::child(unsigned index, MStatus* s) const
{
    Attribute* c = attr() ? attr()->child(index) : nullptr;
    tell(s, c);
    return wrap(c);
}

MIRK_CONSTRUCTOR(MFnGenericAttribute, GenericAttribute)

MObject MFnGenericAttribute::create(const MString& l, const MString& b, MStatus* s)
{
    Attribute* a = start(AttrKind::kGeneric, l, b);
    if (a)
        a->store = Store::kData;
    return adopt(a, s);
}

MStatus MFnGenericAttribute::addAccept(const MTypeId& id)
{
    if (!attr()) return MS::kFailure;
    attr()->pluginDataId = id.id();
    attr()->acceptData.push_back(MFnData::kPlugin);
    return MS::kSuccess;
}

MStatus MFnGenericAttribute::addDataAccept(MFnData::Type type)
{
    if (!attr()) return MS::kFailure;
    attr()->acceptData.push_back(type);
    return MS::kSuccess;
}

MStatus MFnGenericAttribute::addNumericDataAccept(MFnNumericData::Type type)
{
    if (!attr()) return MS::kFailure;
    attr()->acceptNumeric.push_back(type);
    return MS::kSuccess;
}

MStatus MFnGenericAttribute::removeDataAccept(MFnData::Type type)
{
    return result(attr() && std::erase(attr()->acceptData, type) > 0);
}

MStatus MFnGenericAttribute::removeNumericDataAccept(MFnNumericData::Type type)
{
    return result(attr() && std::erase(attr()->acceptNumeric, type) > 0);
}
