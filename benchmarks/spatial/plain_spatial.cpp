#include "plain_spatial.h"

#include <embree3/rtcore.h>
#include <nanoflann.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <queue>
#include <utility>

namespace plain {

struct RayLibrary::State
{
    RTCDevice                 device = rtcNewDevice("threads=1");
    RTCScene                  scene = rtcNewScene(device);
    std::vector<float>        points;
    std::vector<unsigned int> triangles;
};

RayLibrary::RayLibrary(const std::vector<float>& points, const std::vector<unsigned int>& triangles)
    : state_(std::make_unique<State>())
{
    RTCGeometry geometry = rtcNewGeometry(state_->device, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* v = static_cast<float*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                                                          3 * sizeof(float), points.size() / 3));
    auto* t = static_cast<unsigned int*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                                                 3 * sizeof(unsigned int), triangles.size() / 3));
    std::copy(points.begin(), points.end(), v);
    std::copy(triangles.begin(), triangles.end(), t);
    state_->points = points;
    state_->triangles = triangles;
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(state_->scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(state_->scene);
}

RayLibrary::~RayLibrary()
{
    rtcReleaseScene(state_->scene);
    rtcReleaseDevice(state_->device);
}

std::size_t RayLibrary::shoot(const std::vector<Ray>& rays, std::vector<float>& params) const
{
    std::size_t hits = 0;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        RTCRayHit r{};
        r.ray.org_x = rays[i].from[0];
        r.ray.org_y = rays[i].from[1];
        r.ray.org_z = rays[i].from[2];
        r.ray.dir_x = rays[i].along[0];
        r.ray.dir_y = rays[i].along[1];
        r.ray.dir_z = rays[i].along[2];
        r.ray.tfar = std::numeric_limits<float>::infinity();
        r.ray.mask = ~0u;
        r.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(state_->scene, &context, &r);
        hits += r.hit.geomID != RTC_INVALID_GEOMETRY_ID;
        params[i] = r.ray.tfar;
    }
    return hits;
}

namespace {

struct V { float x, y, z; };
V     operator-(const V& a, const V& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
V     operator+(const V& a, const V& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
V     operator*(const V& a, float s) { return {a.x * s, a.y * s, a.z * s}; }
float dot(const V& a, const V& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// Ericson, Real-Time Collision Detection, 5.1.5.
V closestOnTriangle(const V& p, const V& a, const V& b, const V& c)
{
    const V     ab = b - a, ac = c - a, ap = p - a;
    const float d1 = dot(ab, ap), d2 = dot(ac, ap);
    if (d1 <= 0 && d2 <= 0)
        return a;
    const V     bp = p - b;
    const float d3 = dot(ab, bp), d4 = dot(ac, bp);
    if (d3 >= 0 && d4 <= d3)
        return b;
    const float vc = d1 * d4 - d3 * d2;
    if (vc <= 0 && d1 >= 0 && d3 <= 0)
        return a + ab * (d1 / (d1 - d3));
    const V     cp = p - c;
    const float d5 = dot(ab, cp), d6 = dot(ac, cp);
    if (d6 >= 0 && d5 <= d6)
        return c;
    const float vb = d5 * d2 - d1 * d6;
    if (vb <= 0 && d2 >= 0 && d6 <= 0)
        return a + ac * (d2 / (d2 - d6));
    const float va = d3 * d6 - d5 * d4;
    if (va <= 0 && d4 - d3 >= 0 && d5 - d6 >= 0)
        return b + (c - b) * ((d4 - d3) / ((d4 - d3) + (d5 - d6)));
    const float scale = 1 / (va + vb + vc);
    return a + ab * (vb * scale) + ac * (vc * scale);
}

struct Asked { const float* points; const unsigned int* triangles; V query; float best; };

bool onTriangle(RTCPointQueryFunctionArguments* args)
{
    auto&               asked = *static_cast<Asked*>(args->userPtr);
    const unsigned int* t = asked.triangles + 3 * std::size_t(args->primID);
    const auto          at = [&](unsigned int i) { const float* p = asked.points + 3 * std::size_t(i); return V{p[0], p[1], p[2]}; };
    const V             d = closestOnTriangle(asked.query, at(t[0]), at(t[1]), at(t[2])) - asked.query;
    const float         distance = std::sqrt(dot(d, d));
    if (!(distance < asked.best))
        return false;
    asked.best = distance;
    args->query->radius = distance;
    return true;
}

} // namespace

void RayLibrary::nearest(const std::vector<float>& queries, std::vector<float>& distances) const
{
    for (std::size_t i = 0; i < distances.size(); ++i) {
        Asked asked{state_->points.data(), state_->triangles.data(), {queries[3 * i], queries[3 * i + 1], queries[3 * i + 2]},
                    std::numeric_limits<float>::infinity()};
        RTCPointQuery query{};
        query.x = asked.query.x;
        query.y = asked.query.y;
        query.z = asked.query.z;
        query.radius = asked.best;
        RTCPointQueryContext context;
        rtcInitPointQueryContext(&context);
        rtcPointQuery(state_->scene, &query, &context, onTriangle, &asked);
        distances[i] = asked.best;
    }
}

namespace {

struct Cloud
{
    const std::vector<double>& xyz;
    std::size_t kdtree_get_point_count() const { return xyz.size() / 3; }
    double      kdtree_get_pt(std::size_t i, std::size_t axis) const { return xyz[3 * i + axis]; }
    template <class Box>
    bool kdtree_get_bbox(Box&) const { return false; }
};

} // namespace

double nearestNeighbors(const std::vector<double>& points, const std::vector<double>& queries, std::size_t k,
                        std::size_t leafSize, std::vector<double>& distances)
{
    const Cloud cloud{points};
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>, Cloud, 3> tree(
        3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(leafSize));
    std::vector<unsigned int> ids(k);
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; 3 * i < queries.size(); ++i)
        tree.knnSearch(&queries[3 * i], k, ids.data(), &distances[k * i]);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::vector<double> shortestPaths(const std::vector<float>& points, const std::vector<int>& edges, const std::vector<int>& pairs)
{
    struct To { int vertex; double length; };
    const std::size_t            count = points.size() / 3;
    std::vector<std::vector<To>> next(count);
    for (std::size_t e = 0; e < edges.size(); e += 2) {
        double sum = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double d = double(points[3 * std::size_t(edges[e]) + k]) - points[3 * std::size_t(edges[e + 1]) + k];
            sum += d * d;
        }
        next[std::size_t(edges[e])].push_back({edges[e + 1], std::sqrt(sum)});
        next[std::size_t(edges[e + 1])].push_back({edges[e], std::sqrt(sum)});
    }
    std::vector<double> lengths, distance;
    using Entry = std::pair<double, int>;
    for (std::size_t p = 0; p < pairs.size(); p += 2) {
        distance.assign(count, std::numeric_limits<double>::infinity());
        std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
        distance[std::size_t(pairs[p])] = 0;
        open.push({0, pairs[p]});
        while (!open.empty() && open.top().second != pairs[p + 1]) {
            const auto [d, v] = open.top();
            open.pop();
            if (d > distance[std::size_t(v)])
                continue;
            for (const To& to : next[std::size_t(v)])
                if (d + to.length < distance[std::size_t(to.vertex)]) {
                    distance[std::size_t(to.vertex)] = d + to.length;
                    open.push({d + to.length, to.vertex});
                }
        }
        lengths.push_back(distance[std::size_t(pairs[p + 1])]);
    }
    return lengths;
}

} // namespace plain
