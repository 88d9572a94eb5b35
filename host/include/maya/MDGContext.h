#pragma once
#include <maya/MStatus.h>

class MTime;

/// The time at which the graph is read. This host has the normal context: the scene at the current time.
class MDGContext
{
public:
    MDGContext() = default;

    bool    isNormal(MStatus* ReturnStatus = nullptr) const;
    bool    isCurrent(MStatus* ReturnStatus = nullptr) const;
    MStatus getTime(MTime& time) const;

    static MDGContext fsNormal;
};
