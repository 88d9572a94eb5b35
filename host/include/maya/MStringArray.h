#pragma once
#include <maya/MArrayBase.h>
#include <maya/MString.h>

extern template class mirk::Array<MString>;

/// An array of strings.
class MStringArray : public mirk::Array<MString>
{
public:
    using mirk::Array<MString>::Array;
    using mirk::Array<MString>::get;
    using mirk::Array<MString>::set;
    using mirk::Array<MString>::append;
    MStringArray() = default;
    /// Position of the first string equal to `value`, -1 if there is none.
    int indexOf(const MString& value) const;
};
