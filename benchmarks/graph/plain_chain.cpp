#include "plain_chain.h"

namespace plain {

double runChain(std::vector<Link>& chain, double value)
{
    chain[0].in = value;
    for (int i = 0; i >= 0; i = chain[i].next)
        chain[i].dirty = true;
    double last = 0;
    for (int i = 0; i >= 0; i = chain[i].next) {
        Link& link = chain[i];
        if (link.dirty) {
            link.out = link.in + 1;
            link.dirty = false;
        }
        if (link.next >= 0)
            chain[link.next].in = link.out;
        last = link.out;
    }
    return last;
}

}  // namespace plain
