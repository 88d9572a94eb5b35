// How the host gets at the buffers behind the interface's array classes.
#pragma once
#include <utility>

#include "data/buffer.h"
#include "data/element_buffer.h"

class MColorArray;
class MDoubleArray;
class MFloatArray;
class MFloatMatrixArray;
class MFloatPointArray;
class MFloatVectorArray;
class MInt64Array;
class MIntArray;
class MMatrixArray;
class MObjectArray;
class MPointArray;
class MStringArray;
class MTimeArray;
class MUint64Array;
class MUintArray;
class MVectorArray;

class MColor;
class MFloatMatrix;
class MFloatPoint;
class MFloatVector;
class MMatrix;
class MObject;
class MPoint;
class MString;
class MTime;
class MVector;

namespace mirk {

/// The buffer type behind arrays of T.
template <class T> struct ArrayTraits { using Storage = Buffer<T>; };
template <> struct ArrayTraits<MString> { using Storage = ElementBuffer<MString>; };
template <> struct ArrayTraits<MObject> { using Storage = ElementBuffer<MObject>; };
template <class T> using ArrayStorage = typename ArrayTraits<T>::Storage;

struct ArrayAccess
{
    template <class T>
    static void bind(Array<T>& array, ArrayStorage<T>& buffer) noexcept
    {
        array.drop();
        buffer.addRef();
        buffer.addAlias();
        array.buffer_ = &buffer;
        array.alias_  = true;
    }
    template <class T>
    static void own(Array<T>& array, const Ref<ArrayStorage<T>>& buffer) noexcept
    {
        array.drop();
        if ((array.buffer_ = buffer.get()))
            buffer->addRef();
    }
    template <class T>
    static ArrayStorage<T>* storage(const Array<T>& array) noexcept
    {
        return static_cast<ArrayStorage<T>*>(array.buffer_);
    }
    template <class T>
    static bool isAlias(const Array<T>& array) noexcept { return array.alias_; }
};

/// An array whose every change goes to `buffer`, which it keeps alive. Detach the buffer before.
template <class A, class B>
A aliasAs(B& buffer)
{
    A array;
    ArrayAccess::bind(array, buffer);
    return array;
}
MIntArray         aliasOf(Buffer<int>& buffer);
MUintArray        aliasOf(Buffer<unsigned int>& buffer);
MInt64Array       aliasOf(Buffer<long long>& buffer);
MUint64Array      aliasOf(Buffer<unsigned long long>& buffer);
MFloatArray       aliasOf(Buffer<float>& buffer);
MDoubleArray      aliasOf(Buffer<double>& buffer);
MVectorArray      aliasOf(Buffer<MVector>& buffer);
MFloatVectorArray aliasOf(Buffer<MFloatVector>& buffer);
MPointArray       aliasOf(Buffer<MPoint>& buffer);
MFloatPointArray  aliasOf(Buffer<MFloatPoint>& buffer);
MColorArray       aliasOf(Buffer<MColor>& buffer);
MMatrixArray      aliasOf(Buffer<MMatrix>& buffer);
MFloatMatrixArray aliasOf(Buffer<MFloatMatrix>& buffer);
MTimeArray        aliasOf(Buffer<MTime>& buffer);
MStringArray      aliasOf(ElementBuffer<MString>& buffer);
MObjectArray      aliasOf(ElementBuffer<MObject>& buffer);

/// An array of its own that takes over `buffer` if nobody else holds it, else a copy.
template <class A, class B>
A arrayFrom(Ref<B> buffer)
{
    A array;
    if (buffer && buffer->refCount() > 1)
        buffer = make<B>(*buffer);
    ArrayAccess::own(array, buffer);
    return array;
}

/// The values of an array. Valid until the array changes.
template <class T>
const ArrayStorage<T>& bufferOf(const Array<T>& array)
{
    static const ArrayStorage<T>* const none = [] {
        auto* b = new ArrayStorage<T>;
        b->addRef();
        return b;
    }();
    const ArrayStorage<T>* storage = ArrayAccess::storage(array);
    return storage ? *storage : *none;
}

/// A buffer of the array's values that is nobody else's: a copy, or the array's own if the array is given up.
template <class T>
Ref<ArrayStorage<T>> takeOrCopy(const Array<T>& array)
{
    return make<ArrayStorage<T>>(bufferOf(array));
}
template <class T>
Ref<ArrayStorage<T>> takeOrCopy(Array<T>&& array)
{
    if (ArrayAccess::isAlias(array) || !ArrayAccess::storage(array))
        return takeOrCopy(static_cast<const Array<T>&>(array));
    Ref<ArrayStorage<T>> taken(ArrayAccess::storage(array));
    ArrayAccess::own(array, Ref<ArrayStorage<T>>());
    return taken;
}

}  // namespace mirk
