#pragma once
#include <maya/MArrayBase.h>
#include <maya/MVector.h>

extern template class mirk::Array<MVector>;

/// An array of vectors.
class MVectorArray : public mirk::Array<MVector>
{
public:
    using mirk::Array<MVector>::Array;
    using mirk::Array<MVector>::get;
    using mirk::Array<MVector>::set;
    using mirk::Array<MVector>::append;
    MVectorArray() = default;
    MVectorArray(const double source[][3], unsigned int count);
    MVectorArray(const float source[][3], unsigned int count);
    MStatus get(double array[][3]) const;
    MStatus get(float array[][3]) const;
    MStatus set(const double element[3], unsigned int index);
    MStatus set(const float element[3], unsigned int index);
};
