#pragma once
#include <maya/MObject.h>

/// Watches an object that may be deleted.
class MObjectHandle
{
public:
    MObjectHandle() = default;
    MObjectHandle(const MObject& object) : object_(object) {}
    MObjectHandle& operator=(const MObject& object) { object_ = object; return *this; }

    /// The object, or the null object if it is not valid.
    MObject        object() const;
    const MObject& objectRef() const;

    /// True while the object is in memory, deleted ones that undo can bring back included.
    bool isAlive() const { return !object_.isNull(); }
    /// True while the object is in the scene.
    bool isValid() const;

    unsigned int hashCode() const;
    static unsigned int objectHashCode(const MObject& object);

    bool operator==(const MObjectHandle& other) const { return object_ == other.object_; }
    bool operator==(const MObject& object) const { return object_ == object; }
    bool operator!=(const MObjectHandle& other) const { return object_ != other.object_; }
    bool operator!=(const MObject& object) const { return object_ != object; }

private:
    MObject object_;
};
