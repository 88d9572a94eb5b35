// The arithmetic of the array nodes in plain loops over flat arrays, without the host.
#pragma once
#include <cstddef>

namespace plain {

/// |x| shifted by 0.25, times 0.7 minus times 0.2, clamped to 0.1 and 0.9.
void remap(const double* in, std::size_t n, double* out);
/// x shifted by 0.25.
void shift(const double* in, std::size_t n, double* out);
/// Through a falling ramp over 0 to the largest value, in single precision.
void ramp(const double* in, std::size_t n, double* out);
/// Vectors and scalars as points.
void channels(const double* xyz, const double* w, std::size_t n, double* out);
void blend(const double* a, const double* b, double by, std::size_t n, double* out);
void fill(double value, std::size_t n, double* out);
/// a + 2 b.
void merge(const double* a, const double* b, std::size_t n, double* out);
void copy(const double* in, std::size_t n, double* out);
/// The first of every two.
void decimate(const double* in, std::size_t n, double* out);
/// x plus a number from 0 to 1 of the 48-bit congruential sequence.
void randomize(const double* in, std::size_t n, double* out);
/// The old value less 0.01, clamped to 0 and 1, plus the new one.
void accumulate(const double* old, const double* in, std::size_t n, double* out);

} // namespace plain
