#include <maya/MObject.h>

#include <functional>
#include <ostream>
#include <utility>

#include <maya/MObjectHandle.h>
#include <maya/MTypeId.h>

#include "data/mobject.h"

MObject MObject::kNullObj;

MObject::MObject(const MObject& other) noexcept : object_(other.object_)
{
    if (object_)
        object_->addRef();
}

MObject::~MObject()
{
    if (object_)
        object_->release();
}

MObject& MObject::operator=(const MObject& other) noexcept
{
    if (other.object_)
        other.object_->addRef();
    if (mirk::Object* old = std::exchange(object_, other.object_))
        old->release();
    return *this;
}

bool      MObject::hasFn(MFn::Type type) const { return object_ && object_->hasFn(type); }
MFn::Type MObject::apiType() const { return object_ ? object_->apiType() : MFn::kInvalid; }

namespace mirk {

const char* apiTypeName(MFn::Type type)
{
    switch (type) {
#define MFN_TYPE(name, number) case MFn::name: return #name;
#include <maya/MFnTypes.inc>
#undef MFN_TYPE
    }
    return "kInvalid";
}
}  // namespace mirk

const char* MObject::apiTypeStr() const { return mirk::apiTypeName(apiType()); }

MObject MObjectHandle::object() const { return objectRef(); }

const MObject& MObjectHandle::objectRef() const
{
    static const MObject null;
    return isValid() ? object_ : null;
}

bool MObjectHandle::isValid() const
{
    const mirk::Object* object = mirk::ObjectAccess::get(object_);
    return object && object->valid();
}

unsigned int MObjectHandle::hashCode() const { return objectHashCode(object_); }

unsigned int MObjectHandle::objectHashCode(const MObject& object)
{
    const size_t hash = std::hash<const void*>()(mirk::ObjectAccess::get(object));
    return unsigned(hash >> 4) ^ unsigned(hash >> 36);
}

std::ostream& operator<<(std::ostream& os, const MTypeId& id)
{
    const auto flags = os.flags();
    os << "0x" << std::hex << id.id();
    os.flags(flags);
    return os;
}
