#pragma once
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

/// Base of all function sets: the object they work on, and the test whether they can.
class MFnBase
{
public:
    MFnBase() = default;
    virtual ~MFnBase();

    virtual MFn::Type type() const;
    bool    hasObj(MFn::Type type) const;
    bool    hasObj(const MObject& object) const;
    MObject object(MStatus* ReturnStatus = nullptr) const;
    virtual MStatus setObject(MObject& object);
    virtual MStatus setObject(const MObject& object);

protected:
    /// True if the function set can work on the object. The default asks MObject::hasFn(type()).
    virtual bool acceptsObject(const MObject& object) const;

    MObject object_;
};
