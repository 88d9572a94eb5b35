// Writing past the caches. A result far larger than these is not read back soon, and a store past them does not first
// fetch what it overwrites. On processors without such stores these are plain copies.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace stream {

/// From this many bytes on it pays.
constexpr std::size_t kLarge = std::size_t{1} << 20;

/// Copies values that do not overlap; `from` is best in a cache. Other threads see them after finish().
template <class T>
void copy(const T* from, std::size_t count, T* to)
{
#if defined(__SSE2__)
    constexpr std::size_t wide = 16 / sizeof(T);
    static_assert(wide * sizeof(T) == 16, "values that fill a register");
    for (; count > 0 && reinterpret_cast<std::uintptr_t>(to) % 16 != 0; --count)
        *to++ = *from++;
    for (; count >= wide; count -= wide, from += wide, to += wide)
        _mm_stream_si128(reinterpret_cast<__m128i*>(to), _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
#endif
    std::copy_n(from, count, to);
}

/// Sets all to one value.
template <class T>
void fill(T* to, std::size_t count, T value)
{
#if defined(__SSE2__)
    constexpr std::size_t wide = 16 / sizeof(T);
    for (; count > 0 && reinterpret_cast<std::uintptr_t>(to) % 16 != 0; --count)
        *to++ = value;
    T same[wide];
    std::fill_n(same, wide, value);
    const __m128i all = _mm_loadu_si128(reinterpret_cast<const __m128i*>(same));
    for (; count >= wide; count -= wide, to += wide)
        _mm_stream_si128(reinterpret_cast<__m128i*>(to), all);
#endif
    std::fill_n(to, count, value);
}

/// Orders the writes before all that follow.
inline void finish()
{
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

} // namespace stream
