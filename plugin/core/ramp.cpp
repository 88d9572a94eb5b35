#include "core/ramp.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MIntArray.h>
#include <maya/MPlugArray.h>

namespace {

template <class Keys, class Values, class ValueOf>
MStatus fill(const MObject& node, const MObject& ramp, const Keys& keys, Values& values, ValueOf valueOf)
{
    MFloatArray positions;
    MIntArray   interpolations;
    for (const auto& key : keys) {
        positions.append(key.position);
        values.append(valueOf(key));
        interpolations.append(key.interpolation);
    }
    MStatus        status;
    MRampAttribute attribute(node, ramp, &status);
    return status ? attribute.setRamp(values, positions, interpolations) : status;
}

/// The entries that have a place, by position; those that share one stay as they stand.
std::vector<unsigned> orderOf(const MFloatArray& positions)
{
    std::vector<unsigned> order;
    for (unsigned i = 0; i < positions.length(); ++i)
        if (std::isfinite(positions[i]))
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(),
                     [&](unsigned a, unsigned b) { return positions[a] < positions[b]; });
    return order;
}

} // namespace

MStatus fillRamp(const MObject& node, const MObject& ramp, std::initializer_list<CurveKey> keys)
{
    MFloatArray values;
    return fill(node, ramp, keys, values, [](const CurveKey& key) { return key.value; });
}

MStatus fillRamp(const MObject& node, const MObject& ramp, std::initializer_list<ColorKey> keys)
{
    MColorArray colors;
    return fill(node, ramp, keys, colors, [](const ColorKey& key) { return key.color; });
}

MPlug rampAcross(const MPlug& destination, const MString& name)
{
    MPlugArray sources;
    if (!destination.connectedTo(sources, true, false) || sources.length() == 0)
        return MPlug();
    MStatus     status;
    const MPlug ramp = MFnDependencyNode(sources[0].node()).findPlug(name, true, &status);
    return status ? ramp : MPlug();
}

Ramp::Ramp(const MPlug& plug)
{
    MStatus              status;
    const MRampAttribute attribute(plug, &status);
    if (!status)
        return;
    MIntArray   indices, interps;
    MFloatArray positions, values;
    MColorArray colors;
    const bool  color = attribute.isColorRamp();
    if (color)
        attribute.getEntries(indices, positions, colors, interps);
    else
        attribute.getEntries(indices, positions, values, interps);

    const std::vector<unsigned> order = orderOf(positions);
    std::vector<int>            interpolations;
    for (const unsigned i : order) {
        starts_.push_back(positions[i]);
        interpolations.push_back(interps[i]);
    }
    std::vector<float> channel(order.size());
    for (int c = 0; c < (color ? 3 : 1); ++c) {
        for (std::size_t i = 0; i < order.size(); ++i)
            channel[i] = color ? colors[order[i]][unsigned(c)] : values[order[i]];
        build(c, channel, interpolations);
    }
}

void Ramp::build(int index, const std::vector<float>& v, const std::vector<int>& interpolations)
{
    if (v.empty())
        return;
    Channel& out = channels_[index];
    out.first = v.front();
    out.last = v.back();
    const std::vector<float>& p = starts_;
    const auto slope = [&](std::size_t i) {
        const std::size_t a = i > 0 ? i - 1 : i, b = i + 1 < v.size() ? i + 1 : i;
        return (v[b] - v[a]) / (p[b] - p[a]);
    };
    for (std::size_t i = 0; i + 1 < v.size(); ++i) {
        const float length = p[i + 1] - p[i], rise = v[i + 1] - v[i];
        Piece       piece{p[i], length, v[i], 0, 0, 0};
        switch (interpolations[i]) {
        case MRampAttribute::kNone: break;
        case MRampAttribute::kSmooth: piece.c2 = 3 * rise, piece.c3 = -2 * rise; break;
        case MRampAttribute::kSpline: {
            // slopes of the chords between the neighbours of either end
            const float m0 = slope(i) * length, m1 = slope(i + 1) * length;
            piece.c1 = m0, piece.c2 = 3 * rise - 2 * m0 - m1, piece.c3 = m0 + m1 - 2 * rise;
            break;
        }
        default: piece.c1 = rise;
        }
        out.pieces.push_back(piece);
    }
}

using Four = float __attribute__((vector_size(16)));

void Ramp::values(const float* positions, std::size_t count, float* values) const
{
    if (starts_.size() != 2) {
        for (std::size_t i = 0; i < count; ++i)
            values[i] = value(positions[i]);
        return;
    }
    // the usual ramp has one stretch: without the search the loop runs on whole registers
    const Piece piece = channels_[0].pieces[0];
    const float first = channels_[0].first, last = channels_[0].last, end = starts_[1];
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {   // four at a time, by the same operations as Piece::at
        Four p;
        std::memcpy(&p, positions + i, sizeof p);
        const Four t = (p - piece.start) / piece.length;
        const Four inside = piece.c0 + t * (piece.c1 + t * (piece.c2 + t * piece.c3));
        const Four upTo = p >= end ? Four{last, last, last, last} : inside;
        const Four all = p >= piece.start ? upTo : Four{first, first, first, first};
        std::memcpy(values + i, &all, sizeof all);
    }
    for (; i < count; ++i) {
        const float p = positions[i], inside = piece.at(p);
        values[i] = !(p >= piece.start) ? first : p >= end ? last : inside;
    }
}
