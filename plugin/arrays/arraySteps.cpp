#include "arrays/arraySteps.h"

#include <cmath>

namespace steps {

void remap(const Remap& by, double* values, std::size_t n)
{
    if (by.absolute)
        for (std::size_t i = 0; i < n; ++i)
            values[i] = std::fabs(values[i]);
    if (by.shift)
        for (std::size_t i = 0; i < n; ++i)
            values[i] += by.shiftValue;
    if (by.remap)   // 0 stays 0: there is no offset by the minimum, and saved scenes rely on it
        for (std::size_t i = 0; i < n; ++i)
            values[i] = values[i] * by.max - values[i] * by.min;
}

void clamp(double low, double high, double* values, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i)
        values[i] = clamped(values[i], low, high);
}

double largest(const double* values, std::size_t n, bool vectors, double atLeast)
{
    double most = atLeast;
    if (!vectors) {
        for (std::size_t i = 0; i < n; ++i)
            most = values[i] > most ? values[i] : most;
        return most;
    }
    for (std::size_t i = 0; i + 3 <= n; i += 3) {
        const double* v = values + i;
        const double  length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        most = length > most ? length : most;
    }
    return most;
}

void setScaled(const double* in, std::size_t n, double factor, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = 0.0 + in[i] * factor;
}

void addScaled(const double* in, std::size_t n, double factor, double* out)
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] += in[i] * factor;
}

namespace {

/// The values of one channel over a run of elements.
struct Feed
{
    const double* at;
    std::size_t   stride;   ///< 0: one value for all
};

Feed feedOf(const Channels* sources, std::size_t sourceCount, std::size_t channel, std::size_t element)
{
    static const double zero = 0.0;
    for (std::size_t s = sourceCount; s-- > 0;) {
        const Channels& source = sources[s];
        if (!source.reads[channel] || element >= source.length)
            continue;
        if (source.stride == 1)
            return {source.values + element, 1};
        if (channel >= source.stride)
            return {&zero, 0};
        return {source.values + element * source.stride + channel, source.stride};
    }
    return {&zero, 0};
}

} // namespace

void gatherChannels(const Channels* sources, std::size_t sourceCount, std::size_t width, double* out, std::size_t length)
{
    for (std::size_t from = 0; from < length;) {
        std::size_t to = length;   // the next end of a source: up to there every channel keeps its source
        for (std::size_t s = 0; s < sourceCount; ++s)
            if (sources[s].length > from)
                to = std::min(to, sources[s].length);
        Feed feeds[4];
        for (std::size_t c = 0; c < width; ++c)
            feeds[c] = feedOf(sources, sourceCount, c, from);
        for (std::size_t i = from; i < to; ++i) {
            for (std::size_t c = 0; c < width; ++c) {
                *out++ = *feeds[c].at;
                feeds[c].at += feeds[c].stride;
            }
        }
        from = to;
    }
}

void pickChannels(const double* in, std::size_t elements, std::size_t stride, const std::size_t* chosen,
                  std::size_t chosenCount, double* out)
{
    for (std::size_t i = 0; i < elements; ++i, in += stride)
        for (std::size_t k = 0; k < chosenCount; ++k)
            *out++ = in[chosen[k]];
}

namespace {

double sunk(const Sink& by, double value)
{
    if (value == by.base)
        return value;
    if (by.sink != 0.0)
        value -= by.sink;
    return by.clamp ? clamped(value, by.min, by.max) : value;
}

template <class Op>
void accumulateWith(Op op, const Sink& sink, const double* old, std::size_t oldCount, const double* in,
                    std::size_t inCount, double* out)
{
    const std::size_t both = std::min(oldCount, inCount);
    for (std::size_t i = 0; i < both; ++i)
        out[i] = op(sunk(sink, old[i]), in[i]);
    for (std::size_t i = both; i < oldCount; ++i)
        out[i] = op(sunk(sink, old[i]), 0.0);
    for (std::size_t i = oldCount; i < inCount; ++i)
        out[i] = 0.0;
}

} // namespace

void accumulate(const Sink& sink, Mix mix, const double* old, std::size_t oldCount, const double* in,
                std::size_t inCount, double* out)
{
    const auto with = [&](auto op) { accumulateWith(op, sink, old, oldCount, in, inCount, out); };
    switch (mix) {
    case Mix::kMinus: return with([](double a, double b) { return a - b; });
    case Mix::kMin:   return with([](double a, double b) { return b < a ? b : a; });
    case Mix::kMax:   return with([](double a, double b) { return b > a ? b : a; });
    default:          return with([](double a, double b) { return a + b; });
    }
}

} // namespace steps
