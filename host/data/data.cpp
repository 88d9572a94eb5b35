#include "data/data.h"

#include <maya/MTransformationMatrix.h>

#include "data/component.h"

namespace mirk {

Ref<Data> ComponentListData::share() const
{
    auto copy = make<ComponentListData>();
    copy->list.reserve(list.size());
    for (const Ref<Component>& c : list)
        copy->list.push_back(copyComponent(*c));
    return copy;
}

Ref<Data> MatrixData::share() const
{
    auto copy = make<MatrixData>();
    std::memcpy(copy->value, value, sizeof value);
    copy->transformation = transformation;
    return copy;
}

MFn::Type NumericData::apiType() const
{
    switch (numericType) {
    case MFnNumericData::k2Short:  return MFn::kData2Short;
    case MFnNumericData::k3Short:  return MFn::kData3Short;
    case MFnNumericData::k2Int:    return MFn::kData2Int;
    case MFnNumericData::k3Int:    return MFn::kData3Int;
    case MFnNumericData::k2Float:  return MFn::kData2Float;
    case MFnNumericData::k3Float:  return MFn::kData3Float;
    case MFnNumericData::k2Double: return MFn::kData2Double;
    case MFnNumericData::k3Double: return MFn::kData3Double;
    default:                       return MFn::kNumericData;
    }
}

Ref<Data> NumericData::share() const
{
    auto copy = make<NumericData>(numericType);
    std::memcpy(copy->value, value, sizeof value);
    copy->integer = integer;
    return copy;
}

int NumericData::count() const
{
    switch (numericType) {
    case MFnNumericData::k2Short:
    case MFnNumericData::k2Int:
    case MFnNumericData::k2Float:
    case MFnNumericData::k2Double: return 2;
    case MFnNumericData::k3Short:
    case MFnNumericData::k3Int:
    case MFnNumericData::k3Float:
    case MFnNumericData::k3Double: return 3;
    case MFnNumericData::k4Double: return 4;
    default:                       return 1;
    }
}

}  // namespace mirk
