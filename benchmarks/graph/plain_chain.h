// A scheduled chain with dirty marks, as plain as it gets.
#pragma once
#include <vector>

namespace plain {

/// One link: out = in + 1, evaluated in order when dirty.
struct Link
{
    double in = 0, out = 0;
    bool   dirty = true;
    int    next = -1;
};

/// Marks from the first link on, then evaluates; gives the last output.
double runChain(std::vector<Link>& chain, double value);

}  // namespace plain
