#pragma once
#include <maya/MArrayBase.h>

extern template class mirk::Array<unsigned int>;

/// An array of unsigned integers.
class MUintArray : public mirk::Array<unsigned int>
{
public:
    using mirk::Array<unsigned int>::Array;
    using mirk::Array<unsigned int>::get;
    using mirk::Array<unsigned int>::set;
    using mirk::Array<unsigned int>::append;
    MUintArray() = default;
    /// Writes all elements as signed values.
    MStatus get(int array[]) const;
};
