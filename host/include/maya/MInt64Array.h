#pragma once
#include <maya/MArrayBase.h>
#include <maya/MTypes.h>

extern template class mirk::Array<MInt64>;

/// An array of 64-bit integers.
class MInt64Array : public mirk::Array<MInt64>
{
public:
    using mirk::Array<MInt64>::Array;
    using mirk::Array<MInt64>::get;
    using mirk::Array<MInt64>::set;
    using mirk::Array<MInt64>::append;
    MInt64Array() = default;
};
