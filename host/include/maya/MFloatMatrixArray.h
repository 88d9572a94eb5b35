#pragma once
#include <maya/MArrayBase.h>
#include <maya/MFloatMatrix.h>

extern template class mirk::Array<MFloatMatrix>;

/// An array of single-precision matrices.
class MFloatMatrixArray : public mirk::Array<MFloatMatrix>
{
public:
    using mirk::Array<MFloatMatrix>::Array;
    using mirk::Array<MFloatMatrix>::get;
    using mirk::Array<MFloatMatrix>::set;
    using mirk::Array<MFloatMatrix>::append;
    MFloatMatrixArray() = default;
};
