#pragma once
#include <maya/MArrayBase.h>
#include <maya/MFloatPoint.h>

extern template class mirk::Array<MFloatPoint>;

/// An array of single-precision points.
class MFloatPointArray : public mirk::Array<MFloatPoint>
{
public:
    using mirk::Array<MFloatPoint>::Array;
    using mirk::Array<MFloatPoint>::get;
    using mirk::Array<MFloatPoint>::set;
    using mirk::Array<MFloatPoint>::append;
    MFloatPointArray() = default;
    MFloatPointArray(const double source[][4], unsigned int count);
    MFloatPointArray(const float source[][4], unsigned int count);
    MStatus get(double array[][4]) const;
    MStatus get(float array[][4]) const;
    MStatus set(const double element[4], unsigned int index);
    MStatus set(const float element[4], unsigned int index);
    MStatus set(unsigned int index, float x, float y, float z = 0, float w = 1);
    MStatus append(float x, float y, float z = 0, float w = 1);
};
