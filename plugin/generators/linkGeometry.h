// What a web's links become: strands of short segments, and from these tubes and instances; triangles between linked
// points. Arrays are flat: x, y, z of a position, r, g, b, a of a colour.
#pragma once
#include <cstddef>
#include <vector>

#include "generators/linkSearch.h"

namespace web {

/// The linked points, one entry each.
struct Points
{
    std::vector<double> xyz, rgba, thickness;

    std::size_t count() const { return thickness.size(); }
};

/// Along a link there are `segments` + 1 places; tables have an entry for each, or are empty where they are off.
struct StrandStyle
{
    int                 segments = 1;
    bool                inputColor = true;       ///< of the points; else the one colour
    double              rgba[4] = {0, 0, 0, 1};
    std::vector<double> shift[3];                ///< added to x, y and z
    std::vector<double> thickness;               ///< factors
};

/// The places of all links, link by link from its first point to its second.
struct Strands
{
    std::size_t         segments = 1;            ///< of a link
    std::vector<double> xyz, rgba, thickness;    ///< one entry a place

    std::size_t linkCount() const { return thickness.size() / (segments + 1); }
    std::size_t segmentCount() const { return linkCount() * segments; }
};

Strands subdivide(const Points& points, const Links& links, const StrandStyle& style);

/// Calls f(place where it begins, place where it ends) for each segment, numbers of places in the strands.
template <class F>
void eachSegment(const Strands& strands, F&& f)
{
    const std::size_t count = strands.thickness.size();
    for (std::size_t first = 0; first < count; first += strands.segments + 1)
        for (std::size_t s = first; s < first + strands.segments; ++s)
            f(s, s + 1);
}

/// A mesh in pieces: homogeneous points with a colour each, and corners of faces of one size.
struct Pieces
{
    std::vector<float> xyzw, rgba;
    std::vector<int>   corners;

    std::size_t pointCount() const { return xyzw.size() / 4; }
};

/// A square tube a segment, open at its ends: four points around the begin, four around the end, four quads that face
/// outwards. Its half width is half the thickness times `scale`. Along a link the tubes do not turn about their axis
/// more than the link's bends make them; a segment of no length keeps the frame of the one before.
Pieces tubes(const Strands& strands, double scale);

/// Of each segment the middle, the direction (made 1 long unless its squared length is no more than 1e-20), a scale of
/// (length, thickness, thickness), the thickness and the colour, both at the middle. There is room for segmentCount() entries.
struct InstanceArrays { double *position, *direction, *scale, *thickness, *rgba; };
void instances(const Strands& strands, const InstanceArrays& out);

struct FaceRule
{
    int    seed = 0;
    double density = 1.0;                        ///< share of the points that have faces; 0 is none
    double minArea = 0.0, maxArea = 0.0;         ///< both included
};

/// Triangles, three points each: a point and two of its neighbours that follow each other in its list. Which points have
/// some is up to the C library's rand(), seeded here, in the order of the points that start a link.
std::vector<int> spannedTriangles(const Points& points, const Links& links, const FaceRule& rule);

/// The triangles as pieces, in the colours of the points or, with `color`, in that one.
Pieces trianglePieces(const Points& points, const std::vector<int>& triangles, const double* color);

} // namespace web
