#include "mesh/uv_place.h"

#include <algorithm>
#include <cmath>

namespace mirk {

namespace {

struct Point { double u, v; };

Point minus(const F2& a, const F2& b) { return {double(a.u) - b.u, double(a.v) - b.v}; }
double cross(const Point& a, const Point& b) { return a.u * b.v - a.v * b.u; }
double dot(const Point& a, const Point& b) { return a.u * b.u + a.v * b.v; }

}  // namespace

UVPlace placeInTriangle(const F2& uv, const F2& a, const F2& b, const F2& c)
{
    UVPlace place;
    const F2* corners[3] = {&a, &b, &c};
    Point to[3];     // from the UV to each corner: of floats, so that signs on shared edges agree
    for (int k = 0; k < 3; ++k) {
        to[k] = minus(*corners[k], uv);
        if (!std::isfinite(to[k].u) || !std::isfinite(to[k].v))
            return place;
    }
    const double area = cross(minus(b, a), minus(c, a));
    double opposite[3];
    for (int k = 0; k < 3; ++k)
        opposite[k] = cross(to[(k + 1) % 3], to[(k + 2) % 3]) * (area < 0 ? -1 : 1);
    if (area != 0 && opposite[0] >= 0 && opposite[1] >= 0 && opposite[2] >= 0) {
        const double sum = opposite[0] + opposite[1] + opposite[2];
        place.distanceSq = 0;
        for (int k = 0; k < 3; ++k)
            place.weights[k] = sum > 0 ? opposite[k] / sum : 1.0 / 3.0;
        return place;
    }
    for (int k = 0; k < 3; ++k) {   // the nearest place on each edge
        const int    next = (k + 1) % 3;
        const Point  edge = minus(*corners[next], *corners[k]);
        const double length = dot(edge, edge);
        const double t = length > 0 ? std::clamp(-dot(to[k], edge) / length, 0.0, 1.0) : 0.0;
        const Point  gap = {to[k].u + t * edge.u, to[k].v + t * edge.v};
        const double distance = dot(gap, gap);
        if (distance < place.distanceSq) {
            place.distanceSq = distance;
            place.weights[k] = 1 - t;
            place.weights[next] = t;
            place.weights[(k + 2) % 3] = 0;
        }
    }
    return place;
}

}  // namespace mirk
