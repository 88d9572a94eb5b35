#pragma once

/// Coordinate spaces.
class MSpace
{
public:
    enum Space {
        kInvalid       = 0,
        kTransform     = 1,  ///< the transform's own matrix, without its parents
        kPreTransform  = 2,  ///< before the transform
        kObject        = 2,
        kPostTransform = 3,  ///< after the transform
        kWorld         = 4,
        kLast
    };
};
