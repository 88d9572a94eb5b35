#include "graph/attribute.h"

namespace mirk {

Store storeOf(MFnNumericData::Type type)
{
    switch (type) {
    case MFnNumericData::kBoolean: return Store::kBool;
    case MFnNumericData::kByte:
    case MFnNumericData::kChar: return Store::kChar;
    case MFnNumericData::kShort: return Store::kShort;
    case MFnNumericData::k2Short: return Store::kShort2;
    case MFnNumericData::k3Short: return Store::kShort3;
    case MFnNumericData::kInt: return Store::kInt;
    case MFnNumericData::k2Int: return Store::kInt2;
    case MFnNumericData::k3Int: return Store::kInt3;
    case MFnNumericData::kInt64:
    case MFnNumericData::kAddr: return Store::kInt64;
    case MFnNumericData::kFloat: return Store::kFloat;
    case MFnNumericData::k2Float: return Store::kFloat2;
    case MFnNumericData::k3Float: return Store::kFloat3;
    case MFnNumericData::kDouble: return Store::kDouble;
    case MFnNumericData::k2Double: return Store::kDouble2;
    case MFnNumericData::k3Double: return Store::kDouble3;
    case MFnNumericData::k4Double: return Store::kDouble4;
    default: return Store::kNone;
    }
}

Attribute::Attribute(AttrKind k, std::string longN, std::string shortN)
    : Object(Class::kAttribute), kind(k), longName(std::move(longN)), shortName(std::move(shortN))
{
    if (shortName.empty())
        shortName = longName;
}

MFn::Type Attribute::apiType() const
{
    switch (kind) {
    case AttrKind::kNumeric:
        switch (store) {
        case Store::kShort2: return MFn::kAttribute2Short;
        case Store::kShort3: return MFn::kAttribute3Short;
        case Store::kInt2: return MFn::kAttribute2Int;
        case Store::kInt3: return MFn::kAttribute3Int;
        case Store::kFloat2: return MFn::kAttribute2Float;
        case Store::kFloat3: return MFn::kAttribute3Float;
        case Store::kDouble2: return MFn::kAttribute2Double;
        case Store::kDouble3: return MFn::kAttribute3Double;
        case Store::kDouble4: return MFn::kAttribute4Double;
        default: return MFn::kNumericAttribute;
        }
    case AttrKind::kUnit:
        return unit == MFnUnitAttribute::kAngle ? MFn::kDoubleAngleAttribute
             : unit == MFnUnitAttribute::kDistance ? MFn::kDoubleLinearAttribute : MFn::kTimeAttribute;
    case AttrKind::kEnum: return MFn::kEnumAttribute;
    case AttrKind::kTyped: return MFn::kTypedAttribute;
    case AttrKind::kMatrix: return store == Store::kFloatMatrix ? MFn::kFloatMatrixAttribute : MFn::kMatrixAttribute;
    case AttrKind::kMessage: return MFn::kMessageAttribute;
    case AttrKind::kCompound: return MFn::kCompoundAttribute;
    case AttrKind::kGeneric: return MFn::kGenericAttribute;
    }
    return MFn::kAttribute;
}

bool Attribute::hasFn(MFn::Type t) const
{
    if (t == MFn::kAttribute || Object::hasFn(t))
        return true;
    switch (kind) {
    case AttrKind::kNumeric: return t == MFn::kNumericAttribute;
    case AttrKind::kUnit: return t == MFn::kUnitAttribute;
    case AttrKind::kMatrix: return t == MFn::kMatrixAttribute;
    default: return false;
    }
}

int Attribute::enumIndex(const std::string& field) const
{
    for (auto& [name, index] : fields)
        if (name == field)
            return index;
    return -1;
}

bool Attribute::acceptsData(MFnData::Type type) const
{
    if (kind == AttrKind::kGeneric) {
        for (MFnData::Type t : acceptData)
            if (t == type || t == MFnData::kAny)
                return true;
        return acceptData.empty() && acceptNumeric.empty();
    }
    return kind == AttrKind::kTyped && (dataType == type || dataType == MFnData::kAny);
}

}  // namespace mirk
