// copier: from the meshes that are read to the mesh of all copies.
#pragma once
#include <maya/MObject.h>

#include <deque>
#include <vector>

#include "generators/copies.h"
#include "generators/meshParts.h"

class MComputation;
class MMatrixArray;

namespace copying {

/// What the copies carry.
struct Look
{
    WantedParts         wanted;
    std::vector<float>  colors;   ///< r g b a a copy; empty: no colour is inherited
    std::vector<double> uvs;      ///< u v a copy; empty: no UV is inherited
};

/// A mesh as it was read.
struct Source
{
    explicit Source(MeshParts read);
    Source(const Source&) = delete;

    MeshParts      parts;
    copies::Source view;   ///< of `parts`
};

struct Placed
{
    const copies::Source* source;
    unsigned int          copy;
};

/// The copies that go into the result, in order.
struct Gathered
{
    std::deque<Source>  sources;
    std::vector<Placed> placed;
    copies::Extent      total;
    bool                interrupted = false;

    void add(const Source& source, unsigned int copy, const Look& look);
    /// The first copies alone.
    void cut(std::size_t count, const copies::Extent& extent);
    /// Entries of the longest array of the result, in values.
    std::size_t longest() const;
};

/// Merges the copies. If the computation is interrupted, `gathered` loses the copies that are not in the mesh. Null if
/// memory does not suffice.
MObject merge(Gathered& gathered, const Look& look, const MMatrixArray& matrices, MComputation& computation);

} // namespace copying
