// What geometry iterators need of a data handle.
#pragma once

class MDataHandle;

namespace mirk {

class Object;

struct HandleAccess
{
    /// The data object the handle stands on; null if it holds none. Of a handle taken `Transformed` it is that view.
    static Object* data(const MDataHandle& handle);
    /// Gives the handle's plug a data object of its own to write into, if somebody else holds it too.
    static void    detachForWrite(const MDataHandle& handle);
};

}  // namespace mirk
