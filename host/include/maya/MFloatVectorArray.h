#pragma once
#include <maya/MArrayBase.h>
#include <maya/MFloatVector.h>

extern template class mirk::Array<MFloatVector>;

/// An array of single-precision vectors.
class MFloatVectorArray : public mirk::Array<MFloatVector>
{
public:
    using mirk::Array<MFloatVector>::Array;
    using mirk::Array<MFloatVector>::get;
    using mirk::Array<MFloatVector>::set;
    using mirk::Array<MFloatVector>::append;
    MFloatVectorArray() = default;
    MFloatVectorArray(const double source[][3], unsigned int count);
    MFloatVectorArray(const float source[][3], unsigned int count);
    MStatus get(double array[][3]) const;
    MStatus get(float array[][3]) const;
    MStatus set(const double element[3], unsigned int index);
    MStatus set(const float element[3], unsigned int index);
};
