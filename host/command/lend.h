// Numeric arrays of attributes for a script's variable, without a copy.
#pragma once
#include <memory>

#include "data/buffer.h"

namespace mirk::command {

/// While one stands, reading a point or vector array (flat, as doubles) or an int array may leave it here instead of in
/// the value that is returned, which is empty then. Only the outermost reading command of the holder's thread sees it.
class Lending
{
public:
    Lending() : before_(current_) { current_ = this; }
    ~Lending() { current_ = before_; }
    Lending(const Lending&) = delete;
    Lending& operator=(const Lending&) = delete;

    /// Takes the offer back, for what must not see it. May be null.
    static Lending* take()
    {
        Lending* l = current_;
        current_ = nullptr;
        return l;
    }

    std::shared_ptr<const void> holder;   ///< keeps `floats` as they are
    const double*               floats = nullptr;
    size_t                      count = 0;
    Ref<Buffer<int>>            ints;

private:
    Lending*                           before_;
    static inline thread_local Lending* current_ = nullptr;
};

}  // namespace mirk::command
