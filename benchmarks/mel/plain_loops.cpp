#include "plain_loops.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace plain {

void pointLoop(int n)
{
    static std::vector<double> in, out;
    if (in.size() != std::size_t(n) * 3)
    {
        out.assign(std::size_t(n) * 3, 0);
        in.resize(std::size_t(n) * 3);
        for (std::size_t i = 0; i < in.size(); ++i)
            in[i] = double(i % 1000) * 0.01 - 5 * double(i % 3 == 1);
    }
    for (std::size_t i = 0; i < std::size_t(n); ++i)
    {
        const double x = in[i * 3], y = in[i * 3 + 1], z = in[i * 3 + 2];
        out[i * 3] = std::sin(x) * 0.5 + y * z;
        out[i * 3 + 1] = y > 0 ? y * 2 : y;
        out[i * 3 + 2] = z;
    }
}

void arrayLoop(int n)
{
    static std::vector<double> e, f, g;
    if (e.size() != std::size_t(n))
    {
        e.resize(std::size_t(n));
        f.assign(std::size_t(n), 1.25);
        g.assign(std::size_t(n), 0.75);
        for (std::size_t i = 0; i < e.size(); ++i)
            e[i] = double(i) * 1e-5;
    }
    for (std::size_t i = 0; i < std::size_t(n); ++i)
        e[i] = std::sin(e[i]) * 0.5 + f[i] * g[i];
}

}  // namespace plain
