#include <maya/MFnData.h>

#include "data/fn_base.h"

MFnBase::~MFnBase() = default;
MFn::Type MFnBase::type() const { return MFn::kBase; }
bool      MFnBase::hasObj(MFn::Type t) const { return t == type() || object_.hasFn(t); }
bool      MFnBase::hasObj(const MObject& object) const { return acceptsObject(object); }
bool      MFnBase::acceptsObject(const MObject& object) const { return object.hasFn(type()); }

MObject MFnBase::object(MStatus* ReturnStatus) const
{
    mirk::report(ReturnStatus, object_.isNull() ? MS::kFailure : MS::kSuccess);
    return object_;
}

MStatus MFnBase::setObject(MObject& object) { return setObject(static_cast<const MObject&>(object)); }

MStatus MFnBase::setObject(const MObject& object)
{
    if (object.isNull() || !acceptsObject(object)) {
        object_ = MObject();
        return MS::kInvalidParameter;
    }
    object_ = object;
    return MS::kSuccess;
}

// The base accepts any data. In a derived constructor the virtual calls reach this class only, so each sets its object
// itself.
MFnData::MFnData(const MObject& object, MStatus* ReturnStatus) { mirk::report(ReturnStatus, setObject(object).statusCode()); }
MFnData::~MFnData() = default;
MFn::Type MFnData::type() const { return MFn::kData; }
