// 2D textures as plain functions of (u, v), with their parameters read beforehand.
#pragma once
#include <cmath>
#include <cstddef>
#include <memory>

class MDataBlock;

namespace mirk::texture {

struct UV
{
    float u = 0, v = 0;
};

struct Texel
{
    float r = 0, g = 0, b = 0, a = 1;
};

/// What a placement gives where it lays nothing.
constexpr float kNowhere = -1e10f;

/// Farther out, or for NaN, a float has no fraction left and no texture a value.
inline bool somewhere(const UV& at) { return std::fabs(at.u) < 1e9f && std::fabs(at.v) < 1e9f; }

/// The place within the tile that covers [0, 1]; 1 itself is in it.
inline float inTile(float x) { return x >= 0 && x <= 1 ? x : x - std::floor(x); }

/// A texture: the colour at each of `count` places.
class Sampler
{
public:
    virtual ~Sampler() = default;
    virtual void sample(const UV* at, Texel* out, size_t count) const = 0;
};

/// A placement: where on the texture each of `count` places lies; `out` may be `in`.
class Placement
{
public:
    virtual ~Placement() = default;
    virtual void place(const UV* in, UV* out, size_t count) const = 0;
};

/// Nodes of these kinds give their function at any number of places, not only that of their own uvCoord. All attributes
/// but uvCoord are read.
class SamplingNode
{
public:
    virtual ~SamplingNode() = default;
    virtual std::unique_ptr<Sampler> sampler(MDataBlock& block) = 0;
};

class PlacingNode
{
public:
    virtual ~PlacingNode() = default;
    virtual std::unique_ptr<Placement> placement(MDataBlock& block) = 0;
};

}  // namespace mirk::texture
