#pragma once
#include <maya/MArrayBase.h>

extern template class mirk::Array<float>;

/// An array of floats.
class MFloatArray : public mirk::Array<float>
{
public:
    using mirk::Array<float>::Array;
    using mirk::Array<float>::get;
    using mirk::Array<float>::set;
    using mirk::Array<float>::append;
    MFloatArray() = default;
    MFloatArray(const double source[], unsigned int count);
    MStatus get(double array[]) const;
};
