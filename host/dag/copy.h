// Copies of nodes.
#pragma once
#include "dag/dag.h"

namespace mirk::dag {

struct CopyOptions
{
    bool instance = false;        ///< a transform of its own above the same children
    bool instanceLeaf = false;    ///< copies of transforms share their shapes
};

/// A copy of a DAG node with all that stands below it, beside the original; of a shape the copy of its transform with
/// that shape alone. Values and dynamic attributes are copied, connections are not: what comes in over a connection is
/// copied as it stands.
Node* duplicate(Node& node, const CopyOptions& options = {});
/// Values and dynamic attributes of one node to another of the same type.
void  copyValues(Node& from, Node& to);

}  // namespace mirk::dag
