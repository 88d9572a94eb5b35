#pragma once
#include <maya/MFn.h>

namespace mirk {
class Object;
struct ObjectAccess;
}

/// A counted handle on an object of the host: a node, an attribute, data, a component.
class MObject
{
public:
    MObject() noexcept = default;
    MObject(const MObject& other) noexcept;
    MObject(MObject&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
    ~MObject();
    MObject& operator=(const MObject& other) noexcept;
    MObject& operator=(MObject&& other) noexcept
    {
        mirk::Object* mine = object_;
        object_            = other.object_;
        other.object_      = mine;
        return *this;
    }

    bool operator==(const MObject& other) const { return object_ == other.object_; }
    bool operator!=(const MObject& other) const { return object_ != other.object_; }
    bool operator!() const { return object_ == nullptr; }

    bool        isNull() const { return object_ == nullptr; }
    bool        hasFn(MFn::Type type) const;
    MFn::Type   apiType() const;
    /// The enumerator's name, "kMesh" for example.
    const char* apiTypeStr() const;

    static MObject kNullObj;

private:
    friend struct mirk::ObjectAccess;
    mirk::Object* object_ = nullptr;
};
