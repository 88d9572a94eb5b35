#pragma once
#include <maya/MString.h>

/// A universally unique identifier.
class MUuid
{
public:
    MUuid() = default;
    MUuid(const unsigned char bytes[16]);
    /// From "01234567-89AB-CDEF-0123-456789ABCDEF"; anything else gives an invalid identifier.
    MUuid(const MString& text);

    /// A new random identifier.
    MStatus generate();
    /// True if it is not all zeros.
    bool    valid() const;
    MString asString() const;
    MStatus get(unsigned char bytes[16]) const;
    MStatus copy(const MUuid& source) { *this = source; return MStatus(); }

    bool operator==(const MUuid& other) const;
    bool operator!=(const MUuid& other) const { return !(*this == other); }
    operator MString() const { return asString(); }

private:
    unsigned char bytes_[16] = {};
};
