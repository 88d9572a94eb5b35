// How the host gets at what an MObject holds.
#pragma once
#include <maya/MObject.h>

#include "data/object.h"

namespace mirk {

struct ObjectAccess
{
    /// A handle that holds `object`; null gives the null object.
    static MObject wrap(Object* object) noexcept
    {
        MObject handle;
        handle.object_ = object;
        if (object)
            object->addRef();
        return handle;
    }
    static Object* get(const MObject& handle) noexcept { return handle.object_; }
};

const char* apiTypeName(MFn::Type type);   ///< "kMesh"

inline MObject wrap(Object* object) noexcept { return ObjectAccess::wrap(object); }
template <class T>
MObject wrap(const Ref<T>& object) noexcept { return ObjectAccess::wrap(object.get()); }

/// The object as a T; null if it is none or the handle is null.
template <class T>
T* objectAs(const MObject& handle) noexcept
{
    return dynamic_cast<T*>(ObjectAccess::get(handle));
}

}  // namespace mirk
