#pragma once
#include <maya/MArrayBase.h>
#include <maya/MColor.h>

extern template class mirk::Array<MColor>;

/// An array of colours.
class MColorArray : public mirk::Array<MColor>
{
public:
    using mirk::Array<MColor>::Array;
    using mirk::Array<MColor>::get;
    using mirk::Array<MColor>::set;
    using mirk::Array<MColor>::append;
    MColorArray() = default;
    MColorArray(const float source[][4], unsigned int count);
    MStatus get(float array[][4]) const;
    MStatus set(unsigned int index, float r, float g = 0, float b = 0, float a = 1);
    MStatus append(float r, float g = 0, float b = 0, float a = 1);
};
