#pragma once
#include <maya/MStatus.h>
#include <maya/MTime.h>

/// The time at which the graph is read: the scene's current time (the normal context) or another one. A read at
/// another time leaves the values at the current time as they are.
class MDGContext
{
public:
    MDGContext() = default;
    MDGContext(const MTime& when) : time_(when), normal_(false) {}

    bool    isNormal(MStatus* ReturnStatus = nullptr) const;
    /// True for the context that reads without one use at the moment.
    bool    isCurrent(MStatus* ReturnStatus = nullptr) const;
    /// Of the normal context: the scene's current time.
    MStatus getTime(MTime& time) const;

    /// Reads go by this context from now on; gives the one before. MDGContextGuard does so for a scope.
    MDGContext        makeCurrent(MStatus* ReturnStatus = nullptr) const;
    static MDGContext current(MStatus* ReturnStatus = nullptr);

    static MDGContext fsNormal;

private:
    MTime time_;
    bool  normal_ = true;
};
