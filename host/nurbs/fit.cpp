#include "nurbs/fit.h"

#include <algorithm>
#include <cmath>

#include <eigen3/Eigen/SparseCholesky>
#include <eigen3/Eigen/SparseLU>

namespace mirk::nurbs {
namespace {

using Sparse = Eigen::SparseMatrix<double>;
using Rows = Eigen::Matrix<double, Eigen::Dynamic, 3>;
using Triplets = std::vector<Eigen::Triplet<double>>;

void addBasisRow(Triplets& out, int row, const Knots& k, double u, int derivative, int columns)
{
    const int span = findSpan(k, u);
    double    n[3][kMaxDegree + 1];
    basis(k, span, u, derivative, n);
    for (int i = 0; i <= k.degree; ++i)
        out.emplace_back(row, (span - k.degree + i) % columns, n[derivative][i]);   // a periodic row wraps round
}

bool solve(const Triplets& triplets, int n, const Rows& right, Rows& result)
{
    Sparse m(n, n);
    m.setFromTriplets(triplets.begin(), triplets.end());
    m.makeCompressed();
    Eigen::SparseLU<Sparse> lu(m);
    if (lu.info() != Eigen::Success)
        return false;
    result = lu.solve(right);
    return lu.info() == Eigen::Success && result.allFinite();
}

/// 0 at the first point, then rising; one more value than points for a periodic curve.
std::vector<double> parametersOf(const std::vector<MPoint>& points, bool periodic, bool uniform)
{
    const size_t        n = points.size() + (periodic ? 1 : 0);
    std::vector<double> t(n, 0.0);
    double              least = 1e300;
    for (size_t i = 1; i < n; ++i) {
        const double chord = points[i % points.size()].distanceTo(points[i - 1]);
        least = std::min(least, chord);
        t[i] = t[i - 1] + chord;
    }
    if (uniform || !(least > 1e-9 * t.back()))   // coincident neighbours have no chord
        for (size_t i = 0; i < n; ++i)
            t[i] = double(i);
    return t;
}

Ref<CurveBody> bodyOf(const std::vector<double>& knots, const Rows& cvs, int degree, bool periodic)
{
    const int           unique = int(cvs.rows());
    std::vector<MPoint> points;
    for (int i = 0; i < unique + (periodic ? degree : 0); ++i)
        points.emplace_back(cvs(i % unique, 0), cvs(i % unique, 1), cvs(i % unique, 2));
    auto body = make<CurveBody>();
    if (!buildCurve(*body, points.data(), points.size(), knots.data(), knots.size(), degree,
                    periodic ? NurbsForm::periodic : NurbsForm::open, false, false).empty())
        return {};
    return body;
}

std::vector<double> clampedKnots(const std::vector<double>& spanEnds, int degree)
{
    std::vector<double> knots(size_t(degree - 1), spanEnds.front());
    knots.insert(knots.end(), spanEnds.begin(), spanEnds.end());
    knots.insert(knots.end(), size_t(degree - 1), spanEnds.back());
    return knots;
}

std::vector<double> periodicKnots(const std::vector<double>& spanEnds, int degree)
{
    const int           n = int(spanEnds.size()) - 1;
    const double        period = spanEnds.back() - spanEnds.front();
    std::vector<double> knots;
    for (int i = -(degree - 1); i <= n + degree - 1; ++i) {
        const int lap = (i % n + n) % n;
        knots.push_back(spanEnds[size_t(lap)] + period * ((i - lap) / n));
    }
    return knots;
}

/// n points, n spans, n different CVs.
Ref<CurveBody> interpolatePeriodic(const std::vector<MPoint>& points, const std::vector<double>& t, int degree)
{
    const int                 n = int(points.size());
    const std::vector<double> knots = periodicKnots(t, degree);
    const Knots               k{knots.data(), n + degree, degree};
    Triplets                  triplets;
    Rows                      right(n, 3), cvs;
    for (int i = 0; i < n; ++i) {
        // even degrees are singular at the knots and take the middle of the spans
        const double u = degree % 2 ? t[size_t(i)] : 0.5 * (t[size_t(i)] + t[size_t(i) + 1]);
        addBasisRow(triplets, i, k, u, 0, n);
        right.row(i) << points[size_t(i)].x, points[size_t(i)].y, points[size_t(i)].z;
    }
    return solve(triplets, n, right, cvs) ? bodyOf(knots, cvs, degree, true) : Ref<CurveBody>();
}

/// n points, n - 1 spans, n + 2 CVs: the two conditions more are vanishing second derivatives.
Ref<CurveBody> interpolateNatural(const std::vector<MPoint>& points, const std::vector<double>& t)
{
    const int                 n = int(points.size());
    const std::vector<double> knots = clampedKnots(t, 3);
    const Knots               k{knots.data(), n + 2, 3};
    Triplets                  triplets;
    Rows                      right = Rows::Zero(n + 2, 3), cvs;
    for (int i = 0; i < n; ++i) {
        addBasisRow(triplets, i, k, t[size_t(i)], 0, n + 2);
        right.row(i) << points[size_t(i)].x, points[size_t(i)].y, points[size_t(i)].z;
    }
    addBasisRow(triplets, n, k, t.front(), 2, n + 2);
    addBasisRow(triplets, n + 1, k, t.back(), 2, n + 2);
    return solve(triplets, n + 2, right, cvs) ? bodyOf(knots, cvs, 3, false) : Ref<CurveBody>();
}

/// n points, n CVs; inner knots are means of `degree` parameters. Source: The NURBS Book, equation 9.8.
Ref<CurveBody> interpolateAveraged(const std::vector<MPoint>& points, const std::vector<double>& t, int degree)
{
    const int           n = int(points.size());
    std::vector<double> ends{t.front()};
    for (int j = 1; j < n - degree; ++j) {
        double sum = 0;
        for (int i = j; i < j + degree; ++i)
            sum += t[size_t(i)];
        ends.push_back(sum / degree);
    }
    ends.push_back(t.back());
    const std::vector<double> knots = clampedKnots(ends, degree);
    const Knots               k{knots.data(), n, degree};
    Triplets                  triplets;
    Rows                      right(n, 3), cvs;
    for (int i = 0; i < n; ++i) {
        addBasisRow(triplets, i, k, t[size_t(i)], 0, n);
        right.row(i) << points[size_t(i)].x, points[size_t(i)].y, points[size_t(i)].z;
    }
    return solve(triplets, n, right, cvs) ? bodyOf(knots, cvs, degree, false) : Ref<CurveBody>();
}

}  // namespace

Ref<CurveBody> interpolate(const std::vector<MPoint>& given, int degree, bool periodic, bool uniform, std::string& why)
{
    std::vector<MPoint> points = given;
    for (const MPoint& p : points)
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) {
            why = "an edit point is not finite";
            return {};
        }
    if (periodic && points.size() > 2 && points.front().isEquivalent(points.back()))
        points.pop_back();
    const size_t least = periodic ? size_t(std::max(degree, 3)) : degree == 1 || degree == 3 ? 2 : size_t(degree + 1);
    if (degree < 1 || degree > kMaxDegree || points.size() < least) {
        why = degree < 1 || degree > kMaxDegree
                  ? "degree " + std::to_string(degree) + " is not between 1 and " + std::to_string(kMaxDegree)
                  : "degree " + std::to_string(degree) + " needs at least " + std::to_string(least) + " edit points, not " +
                        std::to_string(points.size());
        return {};
    }
    const std::vector<double> t = parametersOf(points, periodic, uniform);
    Ref<CurveBody> body = periodic      ? interpolatePeriodic(points, t, degree)
                          : degree == 3 ? interpolateNatural(points, t)
                                        : interpolateAveraged(points, t, degree);
    if (!body)
        why = "no curve goes through these edit points";
    return body;
}

Ref<CurveBody> fitCurve(const CurveView& curve, const std::vector<double>& knots, int degree, bool periodic)
{
    const int    total = int(knots.size()) + 1 - degree, n = periodic ? total - degree : total;
    const Knots  k{knots.data(), total, degree};
    const double from = curve.k.start(), scale = (curve.k.end() - from) / (k.end() - k.start());
    const bool   clamped = !periodic && knots.front() == k.start() && knots.back() == k.end();
    const MVector first = pointAt(curve, curve.k.start()), last = pointAt(curve, curve.k.end());

    // clamped ends stand at the end points and take no part in the least squares
    const int            unknowns = clamped ? n - 2 : n;
    Triplets             triplets;
    std::vector<MVector> samples;
    for (int span : spans(k)) {
        const int perSpan = 2 * degree + 2;
        for (int i = 0; i < perSpan; ++i) {
            const double u = k.low(span) + (k.high(span) - k.low(span)) * (i + 0.5) / perSpan;
            MVector      target = pointAt(curve, from + (u - k.start()) * scale);
            Triplets     row;
            addBasisRow(row, int(samples.size()), k, u, 0, n);
            for (const auto& t : row) {
                if (!clamped)
                    triplets.push_back(t);
                else if (t.col() == 0)
                    target -= t.value() * first;
                else if (t.col() == n - 1)
                    target -= t.value() * last;
                else
                    triplets.emplace_back(t.row(), t.col() - 1, t.value());
            }
            samples.push_back(target);
        }
    }
    Rows cvs(n, 3);
    if (clamped) {
        cvs.row(0) << first.x, first.y, first.z;
        cvs.row(n - 1) << last.x, last.y, last.z;
    }
    if (unknowns > 0) {
        Sparse a(int(samples.size()), unknowns);
        a.setFromTriplets(triplets.begin(), triplets.end());
        Rows right(samples.size(), 3);
        for (size_t i = 0; i < samples.size(); ++i)
            right.row(long(i)) << samples[i].x, samples[i].y, samples[i].z;
        Eigen::SimplicialLDLT<Sparse> normal(Sparse(a.transpose() * a));
        if (normal.info() != Eigen::Success)
            return {};
        Rows inner = normal.solve(a.transpose() * right);
        inner += normal.solve(a.transpose() * (right - a * inner));   // normal equations lose digits: refined once
        if (!inner.allFinite())
            return {};
        cvs.middleRows(clamped ? 1 : 0, unknowns) = inner;
    }
    return bodyOf(knots, cvs, degree, periodic);
}

double deviation(const CurveView& a, const CurveView& b)
{
    double       worst = 0;
    const int    samples = 16 * int(std::max(spans(a.k).size(), spans(b.k).size()));
    for (int i = 0; i <= samples; ++i) {
        const double s = double(i) / samples;
        worst = std::max(worst, (pointAt(a, a.k.start() + s * (a.k.end() - a.k.start())) -
                                 pointAt(b, b.k.start() + s * (b.k.end() - b.k.start()))).length());
    }
    return worst;
}

std::vector<MVector> interpolateSections(const Knots& k, const std::vector<MVector>& sections, size_t width)
{
    const int n = k.cvCount;
    Triplets  triplets;
    for (int i = 0; i < n; ++i)
        addBasisRow(triplets, i, k, std::clamp(greville(k, i), k.start(), k.end()), 0, n);
    Sparse m(n, n);
    m.setFromTriplets(triplets.begin(), triplets.end());
    Eigen::SparseLU<Sparse> lu(m);
    if (lu.info() != Eigen::Success)
        return sections;
    Eigen::MatrixXd right(n, long(width) * 3);
    for (int i = 0; i < n; ++i)
        for (size_t j = 0; j < width; ++j)
            for (unsigned x = 0; x < 3; ++x)
                right(i, long(j * 3 + x)) = sections[size_t(i) * width + j][x];
    const Eigen::MatrixXd cvs = lu.solve(right);
    if (!cvs.allFinite())
        return sections;
    std::vector<MVector> out(sections.size());
    for (int i = 0; i < n; ++i)
        for (size_t j = 0; j < width; ++j)
            for (unsigned x = 0; x < 3; ++x)
                out[size_t(i) * width + j][x] = cvs(i, long(j * 3 + x));
    return out;
}

double greville(const Knots& k, int cv)
{
    double sum = 0;
    for (int i = 0; i < k.degree; ++i)
        sum += k.knots[cv + i];
    return sum / k.degree;
}

}  // namespace mirk::nurbs
