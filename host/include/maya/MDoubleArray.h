#pragma once
#include <maya/MArrayBase.h>

extern template class mirk::Array<double>;

/// An array of doubles.
class MDoubleArray : public mirk::Array<double>
{
public:
    using mirk::Array<double>::Array;
    using mirk::Array<double>::get;
    using mirk::Array<double>::set;
    using mirk::Array<double>::append;
    MDoubleArray() = default;
    MDoubleArray(const float source[], unsigned int count);
    MStatus get(float array[]) const;
};
