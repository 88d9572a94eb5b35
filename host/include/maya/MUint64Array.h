#pragma once
#include <maya/MArrayBase.h>
#include <maya/MTypes.h>

extern template class mirk::Array<MUint64>;

/// An array of unsigned 64-bit integers.
class MUint64Array : public mirk::Array<MUint64>
{
public:
    using mirk::Array<MUint64>::Array;
    using mirk::Array<MUint64>::get;
    using mirk::Array<MUint64>::set;
    using mirk::Array<MUint64>::append;
    MUint64Array() = default;
};
