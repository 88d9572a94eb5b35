// B-spline basis functions on knot vectors without the two outermost knots (n CVs of degree p have n + p - 1 knots).
#pragma once
#include <vector>

#include <maya/MVector.h>

namespace mirk::nurbs {

constexpr int kMaxDegree = 16;

/// One direction's knots. The basis functions that are not zero between `knots[s - 1]` and `knots[s]` are those of the
/// CVs s - degree to s; s is called a span and runs from `degree` to `cvCount - 1`.
struct Knots
{
    const double* knots = nullptr;
    int           cvCount = 0;
    int           degree = 0;

    double start() const { return knots[degree - 1]; }
    double end() const { return knots[cvCount - 1]; }
    double low(int span) const { return knots[span - 1]; }
    double high(int span) const { return knots[span]; }
    int    knotCount() const { return cvCount + degree - 1; }
};

/// The span that holds u, never an empty one; u outside the domain belongs to the first or last.
int findSpan(const Knots& k, double u);

/// Spans that are not empty.
std::vector<int> spans(const Knots& k);

/// Basis functions and their derivatives up to `order` (at most 2): out[d][i] is that of CV `span - degree + i`.
/// Source: Piegl and Tiller, The NURBS Book, algorithms A2.2 and A2.3.
void basis(const Knots& k, int span, double u, int order, double out[3][kMaxDegree + 1]);

/// A copy of the parameter that lies in the domain: wrapped if periodic, else clamped.
double intoDomain(const Knots& k, bool periodic, double u);

/// Knots of a curve of that degree over `spanCount` unit spans: 0, 0, 0, 1, 2, ... with multiple ends, or -2, -1, 0, 1, ...
/// for a periodic one.
std::vector<double> uniformKnots(int spanCount, int degree, bool periodic);

/// Gauss-Legendre abscissae and weights on [-1, 1].
constexpr int    kGaussPoints = 8;
extern const double kGaussX[kGaussPoints], kGaussW[kGaussPoints];

/// Integral of f over [a, b], split until a rule and its two halves agree within the tolerance.
template <class F>
double integrate(const F& f, double a, double b, double tolerance)
{
    const auto rule = [&f](double lo, double hi) {
        double       sum = 0;
        const double mid = 0.5 * (lo + hi), half = 0.5 * (hi - lo);
        for (int i = 0; i < kGaussPoints; ++i)
            sum += kGaussW[i] * f(mid + half * kGaussX[i]);
        return sum * half;
    };
    const auto refine = [&](const auto& self, double lo, double hi, double whole, double tol, int depth) -> double {
        const double mid = 0.5 * (lo + hi);
        const double left = rule(lo, mid), right = rule(mid, hi);
        if (depth >= 16 || std::abs(left + right - whole) <= tol)
            return left + right;
        return self(self, lo, mid, left, tol * 0.5, depth + 1) + self(self, mid, hi, right, tol * 0.5, depth + 1);
    };
    return refine(refine, a, b, rule(a, b), tolerance, 0);
}

}  // namespace mirk::nurbs
