#pragma once
#include <maya/MArrayBase.h>

extern template class mirk::Array<int>;

/// An array of integers.
class MIntArray : public mirk::Array<int>
{
public:
    using mirk::Array<int>::Array;
    using mirk::Array<int>::get;
    using mirk::Array<int>::set;
    using mirk::Array<int>::append;
    MIntArray() = default;
};
