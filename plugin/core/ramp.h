// Ramps of nodes: what fills a new one, how a consumer finds one across a connection, and a reader that evaluates it at
// many positions without asking the host each time.
#pragma once
#include <cstddef>
#include <initializer_list>
#include <vector>

#include <maya/MColor.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MRampAttribute.h>
#include <maya/MString.h>

struct CurveKey
{
    float                         position, value;
    MRampAttribute::MInterpolation interpolation = MRampAttribute::kLinear;
};

struct ColorKey
{
    float                         position;
    MColor                        color;
    MRampAttribute::MInterpolation interpolation = MRampAttribute::kLinear;
};

/// Entries that a ramp starts with, in place of all that it has. For `postConstructor`.
MStatus fillRamp(const MObject& node, const MObject& ramp, std::initializer_list<CurveKey> keys);
MStatus fillRamp(const MObject& node, const MObject& ramp, std::initializer_list<ColorKey> keys);

/// The ramp of that name on the node whose plug drives `destination`; a null plug if nothing drives it or that node has
/// no such attribute. Ramps do not travel over connections: this is how a consumer gets at those of its source.
MPlug rampAcross(const MPlug& destination, const MString& name);

/// The entries of a ramp, read once. `value` and `color` give bit for bit what MRampAttribute::getValueAtPosition and
/// getColorAtPosition give for the ramp at that moment. A default one, as one of a null plug, is 0 everywhere.
class Ramp
{
public:
    Ramp() = default;
    /// Of either kind.
    explicit Ramp(const MPlug& ramp);
    Ramp(const MObject& node, const MObject& ramp) : Ramp(MPlug(node, ramp)) {}

    std::size_t entryCount() const { return starts_.size(); }

    float  value(float position) const { return channel(0, position); }
    MColor color(float position) const
    {
        return MColor(channel(0, position), channel(1, position), channel(2, position), 1);
    }
    /// `count` values of a curve ramp; `positions` and `values` may be the same memory.
    void values(const float* positions, std::size_t count, float* values) const;

private:
    /// One stretch of one channel: a cubic in the fraction of the way from `start` over `length`.
    struct Piece
    {
        float start, length, c0, c1, c2, c3;
        float at(float position) const
        {
            const float t = (position - start) / length;
            return c0 + t * (c1 + t * (c2 + t * c3));
        }
    };
    struct Channel
    {
        float              first = 0, last = 0;   ///< values before the first entry and from the last one on
        std::vector<Piece> pieces;
    };

    float channel(int index, float position) const
    {
        const Channel& c = channels_[index];
        if (starts_.empty() || !(position >= starts_.front()))
            return c.first;
        std::size_t after = 1;
        while (after < starts_.size() && starts_[after] <= position)
            ++after;
        return after == starts_.size() ? c.last : c.pieces[after - 1].at(position);
    }
    void build(int index, const std::vector<float>& values, const std::vector<int>& interpolations);

    std::vector<float> starts_;   ///< positions of the entries, ascending
    Channel            channels_[3];
};
