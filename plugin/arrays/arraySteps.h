// The arithmetic of the array nodes on plain runs of numbers. A run is given by its first value and a count; results go
// where the caller has made room. No run is longer than its count, and the runs of one call do not overlap.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace steps {

/// A number cut to an int; numbers outside the range give its ends, NaN gives 0.
inline int toInt(double value)
{
    constexpr double low = std::numeric_limits<int>::min(), high = std::numeric_limits<int>::max();
    return value >= low ? static_cast<int>(value < high ? value : high) : value < low ? static_cast<int>(low) : 0;
}

/// A result in the stored type.
template <class T>
T stored(double value)
{
    if constexpr (std::is_same_v<T, int>)
        return toInt(value);
    else
        return static_cast<T>(value);
}

/// The low bound first, then the high one: with `low` above `high` everything gives `high`. NaN stays.
inline double clamped(double value, double low, double high)
{
    if (value < low)
        value = low;
    return value > high ? high : value;
}

// one array

/// What a remap does to each value, in this order.
struct Remap
{
    bool   absolute = false;
    bool   shift = false;
    double shiftValue = 0.0;
    bool   remap = false;
    double min = 0.0, max = 1.0;
};
void remap(const Remap& by, double* values, std::size_t n);
void clamp(double low, double high, double* values, std::size_t n);

/// The largest value, 0 at least; with `vectors` the largest length of three values each.
double largest(const double* values, std::size_t n, bool vectors, double atLeast);

/// The first `keep` of every `of` elements, `stride` values each, until `outLength` elements are written. Elements that
/// the input does not have are left alone. 0 < keep <= of.
template <class T>
void decimate(const T* in, std::size_t length, std::size_t stride, std::size_t keep, std::size_t of, T* out,
              std::size_t outLength)
{
    if (keep == 1 && stride == 1) {   // the usual case, without a copy call an element
        outLength = std::min(outLength, (length + of - 1) / of);
        for (std::size_t k = 0, i = 0; k < outLength; ++k, i += of)
            out[k] = in[i];
        return;
    }
    std::size_t written = 0;
    for (std::size_t i = 0; i < length && written < outLength; i += of) {
        const std::size_t run = std::min({keep, length - i, outLength - written});
        out = std::copy_n(in + i * stride, run * stride, out);
        written += run;
    }
}

/// The sequence of srand48 and drand48, without their hidden state.
class Random48
{
public:
    explicit Random48(int seed) : x_(std::uint64_t(std::uint32_t(seed)) << 16 | 0x330e) {}
    /// In [0, 1).
    double next()
    {
        x_ = (x_ * 0x5deece66dULL + 0xb) & 0xffffffffffffULL;
        return static_cast<double>(x_) * 0x1p-48;
    }

private:
    std::uint64_t x_;
};

/// A random range for each of `stride` components.
struct RandomRange
{
    double min[3] = {}, max[3] = {};
    bool   multiply = false;   ///< else the random number is added
};

/// One random number a value, in the order of the values. Of ints it is the random number that is cut.
template <class T>
void randomize(const RandomRange& range, int seed, const T* in, std::size_t n, std::size_t stride, T* out)
{
    Random48 random(seed);
    double   span[3];
    for (int c = 0; c < 3; ++c)
        span[c] = range.max[c] - range.min[c];
    for (std::size_t i = 0; i < n; i += stride) {
        for (std::size_t c = 0; c < stride; ++c) {
            double by = random.next() * span[c] + range.min[c];
            if constexpr (std::is_same_v<T, int>)
                by = toInt(by);
            out[i + c] = stored<T>(range.multiply ? in[i + c] * by : in[i + c] + by);
        }
    }
}

// several arrays

/// out = 0 + in * factor, and out += in * factor.
void setScaled(const double* in, std::size_t n, double factor, double* out);
void addScaled(const double* in, std::size_t n, double factor, double* out);

/// One of up to four arrays whose components make up the channels of another.
struct Channels
{
    const double* values = nullptr;
    std::size_t   length = 0;        ///< elements
    std::size_t   stride = 0;        ///< 1: its value goes into every channel; 3: X, Y, Z and no W; 4
    bool          reads[4] = {};     ///< which channels it goes into
};

/// Elements of `width` channels (at most four). A channel comes from the last source that is read for it and has the
/// element; 0 if none is.
void gatherChannels(const Channels* sources, std::size_t sourceCount, std::size_t width, double* out, std::size_t length);

/// `chosenCount` channels of elements of `stride` values each, interleaved in the order of `chosen`.
void pickChannels(const double* in, std::size_t elements, std::size_t stride, const std::size_t* chosen,
                  std::size_t chosenCount, double* out);

// one array from one frame to the next

enum class Mix { kPlus, kMinus, kMin, kMax };

/// How an accumulated value fades before the next one goes in.
struct Sink
{
    double sink = 0.0, base = 0.0;   ///< values equal to the base stay untouched
    bool   clamp = true;
    double min = 0.0, max = 1.0;
};

/// The next state of an accumulator: old values sink and are mixed with the new ones, with 0 where there are none.
/// Values past the old ones are 0. `outCount` is the larger of the two counts.
void accumulate(const Sink& sink, Mix mix, const double* old, std::size_t oldCount, const double* in,
                std::size_t inCount, double* out);

} // namespace steps
