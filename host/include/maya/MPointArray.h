#pragma once
#include <maya/MArrayBase.h>
#include <maya/MPoint.h>

extern template class mirk::Array<MPoint>;

/// An array of points.
class MPointArray : public mirk::Array<MPoint>
{
public:
    using mirk::Array<MPoint>::Array;
    using mirk::Array<MPoint>::get;
    using mirk::Array<MPoint>::set;
    using mirk::Array<MPoint>::append;
    MPointArray() = default;
    MPointArray(const double source[][4], unsigned int count);
    MPointArray(const float source[][4], unsigned int count);
    MStatus get(double array[][4]) const;
    MStatus get(float array[][4]) const;
    MStatus set(const double element[4], unsigned int index);
    MStatus set(const float element[4], unsigned int index);
    MStatus set(unsigned int index, double x, double y, double z = 0, double w = 1);
    MStatus append(double x, double y, double z = 0, double w = 1);
};
