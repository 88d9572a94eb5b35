#pragma once
#include <maya/MArrayBase.h>
#include <maya/MObject.h>

extern template class mirk::Array<MObject>;

/// An array of objects.
class MObjectArray : public mirk::Array<MObject>
{
public:
    using mirk::Array<MObject>::Array;
    using mirk::Array<MObject>::get;
    using mirk::Array<MObject>::set;
    using mirk::Array<MObject>::append;
    MObjectArray() = default;
};
