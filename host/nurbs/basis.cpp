#include "nurbs/basis.h"

#include <algorithm>
#include <cmath>

namespace mirk::nurbs {

const double kGaussX[kGaussPoints] = {-0.9602898564975363, -0.7966664774136267, -0.5255324099163290, -0.1834346424956498,
                                      0.1834346424956498,  0.5255324099163290,  0.7966664774136267,  0.9602898564975363};
const double kGaussW[kGaussPoints] = {0.1012285362903763, 0.2223810344533745, 0.3137066458778873, 0.3626837833783620,
                                      0.3626837833783620, 0.3137066458778873, 0.2223810344533745, 0.1012285362903763};

int findSpan(const Knots& k, double u)
{
    const double* first = k.knots + k.degree;
    const double* last = k.knots + k.cvCount;
    int           span = int(std::upper_bound(first, last, u) - k.knots);
    span = std::clamp(span, k.degree, k.cvCount - 1);
    while (span > k.degree && !(k.low(span) < k.high(span)))
        --span;
    while (span < k.cvCount - 1 && !(k.low(span) < k.high(span)))
        ++span;
    return span;
}

std::vector<int> spans(const Knots& k)
{
    std::vector<int> out;
    for (int s = k.degree; s < k.cvCount; ++s)
        if (k.low(s) < k.high(s))
            out.push_back(s);
    return out;
}

void basis(const Knots& k, int span, double u, int order, double out[3][kMaxDegree + 1])
{
    const int p = k.degree;
    // ndu: upper triangle with diagonal holds basis functions, lower triangle knot differences
    double ndu[kMaxDegree + 1][kMaxDegree + 1];
    double left[kMaxDegree + 1], right[kMaxDegree + 1];
    ndu[0][0] = 1;
    for (int j = 1; j <= p; ++j) {
        left[j] = u - k.knots[span - j];
        right[j] = k.knots[span + j - 1] - u;
        double saved = 0;
        for (int r = 0; r < j; ++r) {
            ndu[j][r] = right[r + 1] + left[j - r];
            const double t = ndu[j][r] != 0 ? ndu[r][j - 1] / ndu[j][r] : 0;
            ndu[r][j] = saved + right[r + 1] * t;
            saved = left[j - r] * t;
        }
        ndu[j][j] = saved;
    }
    for (int i = 0; i <= p; ++i)
        out[0][i] = ndu[i][p];
    for (int d = 1; d <= order; ++d)
        std::fill_n(out[d], p + 1, 0.0);

    const auto over = [&](double value, int row, int column) {
        const double difference = ndu[row][column];
        return difference != 0 ? value / difference : 0.0;
    };
    for (int r = 0; r <= p; ++r) {
        double a[2][kMaxDegree + 1] = {{1}};
        int    now = 0, next = 1;
        double factor = p;
        for (int d = 1; d <= std::min(order, p); ++d) {
            double    sum = 0;
            const int rd = r - d, pd = p - d;
            if (r >= d) {
                a[next][0] = over(a[now][0], pd + 1, rd);
                sum = a[next][0] * ndu[rd][pd];
            }
            const int from = rd >= -1 ? 1 : -rd;
            const int to = r - 1 <= pd ? d - 1 : p - r;
            for (int j = from; j <= to; ++j) {
                a[next][j] = over(a[now][j] - a[now][j - 1], pd + 1, rd + j);
                sum += a[next][j] * ndu[rd + j][pd];
            }
            if (r <= pd) {
                a[next][d] = over(-a[now][d - 1], pd + 1, r);
                sum += a[next][d] * ndu[r][pd];
            }
            out[d][r] = sum * factor;
            factor *= pd;
            std::swap(now, next);
        }
    }
}

double intoDomain(const Knots& k, bool periodic, double u)
{
    const double lo = k.start(), hi = k.end();
    if (!(u >= lo) || !(u <= hi)) {
        if (periodic && std::isfinite(u))
            u = lo + (u - lo) - std::floor((u - lo) / (hi - lo)) * (hi - lo);
        u = u >= lo ? std::min(u, hi) : lo;   // NaN goes to the start
    }
    return u;
}

std::vector<double> uniformKnots(int spanCount, int degree, bool periodic)
{
    std::vector<double> knots;
    for (int i = 0; i < spanCount + 2 * degree - 1; ++i) {
        const double t = i - (degree - 1);
        knots.push_back(periodic ? t : std::clamp(t, 0.0, double(spanCount)));
    }
    return knots;
}

}  // namespace mirk::nurbs
