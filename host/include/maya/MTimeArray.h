#pragma once
#include <maya/MArrayBase.h>
#include <maya/MTime.h>

extern template class mirk::Array<MTime>;

/// An array of times.
class MTimeArray : public mirk::Array<MTime>
{
public:
    using mirk::Array<MTime>::Array;
    using mirk::Array<MTime>::get;
    using mirk::Array<MTime>::set;
    using mirk::Array<MTime>::append;
    MTimeArray() = default;
};
