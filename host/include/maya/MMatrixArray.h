#pragma once
#include <maya/MArrayBase.h>
#include <maya/MMatrix.h>

extern template class mirk::Array<MMatrix>;

/// An array of matrices.
class MMatrixArray : public mirk::Array<MMatrix>
{
public:
    using mirk::Array<MMatrix>::Array;
    using mirk::Array<MMatrix>::get;
    using mirk::Array<MMatrix>::set;
    using mirk::Array<MMatrix>::append;
    MMatrixArray() = default;
    MMatrixArray(const double source[][4][4], unsigned int count);
    MStatus get(double array[][4][4]) const;
    MStatus set(const double element[4][4], unsigned int index);
};
