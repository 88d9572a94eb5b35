#include "plain_cut.h"

#include <algorithm>
#include <cmath>

namespace plain {

namespace {

/// The section of a convex solid: its points in order around their middle.
void cap(std::vector<float>& points, const double n[3], Soup& out)
{
    const std::size_t count = points.size() / 3;
    if (count < 3)
        return;
    double middle[3] = {};
    for (std::size_t i = 0; i < points.size(); ++i)
        middle[i % 3] += points[i] / double(count);
    const int    small = std::fabs(n[0]) < std::fabs(n[1]) ? (std::fabs(n[0]) < std::fabs(n[2]) ? 0 : 2) : (std::fabs(n[1]) < std::fabs(n[2]) ? 1 : 2);
    const double e[3] = {small == 0 ? 1.0 : 0.0, small == 1 ? 1.0 : 0.0, small == 2 ? 1.0 : 0.0};
    const double x[3] = {n[1] * e[2] - n[2] * e[1], n[2] * e[0] - n[0] * e[2], n[0] * e[1] - n[1] * e[0]};
    const double y[3] = {n[1] * x[2] - n[2] * x[1], n[2] * x[0] - n[0] * x[2], n[0] * x[1] - n[1] * x[0]};
    static thread_local std::vector<std::pair<double, int>> order;
    order.clear();
    for (std::size_t i = 0; i < count; ++i) {
        double a = 0, b = 0;
        for (int k = 0; k < 3; ++k) {
            const double r = points[3 * i + std::size_t(k)] - middle[k];
            a += r * x[k];
            b += r * y[k];
        }
        order.push_back({-std::atan2(b, a), int(i)});   // outward is against n
    }
    std::sort(order.begin(), order.end());
    int size = 0;
    const float* last = nullptr;
    for (const auto& o : order) {
        const float* p = &points[3 * std::size_t(o.second)];
        if (last && std::equal(p, p + 3, last))   // each edge gave it twice
            continue;
        out.corners.insert(out.corners.end(), p, p + 3);
        last = p;
        ++size;
    }
    out.sizes.push_back(size);
}

} // namespace

void clipConvex(const Soup& in, const double n[3], double d, Soup& out)
{
    static thread_local std::vector<float>  section;
    static thread_local std::vector<double> distance;
    out.sizes.clear();
    out.corners.clear();
    section.clear();
    const float* p = in.corners.data();
    for (int size : in.sizes) {
        distance.resize(std::size_t(size));
        bool front = false, behind = false;
        for (int k = 0; k < size; ++k) {
            distance[std::size_t(k)] = n[0] * p[3 * k] + n[1] * p[3 * k + 1] + n[2] * p[3 * k + 2] - d;
            (distance[std::size_t(k)] >= 0 ? front : behind) = true;
        }
        if (front && !behind) {
            out.corners.insert(out.corners.end(), p, p + 3 * size);
            out.sizes.push_back(size);
        } else if (front) {
            const std::size_t begin = out.corners.size();
            for (int k = 0; k < size; ++k) {
                const int    l = k + 1 == size ? 0 : k + 1;
                const double a = distance[std::size_t(k)], b = distance[std::size_t(l)];
                if (a >= 0)
                    out.corners.insert(out.corners.end(), p + 3 * k, p + 3 * k + 3);
                if ((a >= 0) != (b >= 0))
                    for (int c = 0; c < 3; ++c) {
                        const bool  up = a < b;   // the same from both faces
                        const float q = up ? p[3 * k + c] : p[3 * l + c], r = up ? p[3 * l + c] : p[3 * k + c];
                        const double s = up ? a : b, t = up ? b : a;
                        const float x = float(q + (s / (s - t)) * (double(r) - q));
                        out.corners.push_back(x);
                        section.push_back(x);
                    }
            }
            out.sizes.push_back(int((out.corners.size() - begin) / 3));
        }
        p += 3 * size;
    }
    cap(section, n, out);
}

double volume(const Soup& soup)
{
    double sum = 0;
    const float* p = soup.corners.data();
    for (int size : soup.sizes) {
        for (int k = 1; k + 1 < size; ++k) {
            const float *a = p, *b = p + 3 * k, *c = b + 3;
            sum += a[0] * (double(b[1]) * c[2] - double(b[2]) * c[1]) + a[1] * (double(b[2]) * c[0] - double(b[0]) * c[2])
                   + a[2] * (double(b[0]) * c[1] - double(b[1]) * c[0]);
        }
        p += 3 * size;
    }
    return sum / 6;
}

} // namespace plain
