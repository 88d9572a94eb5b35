// What the interface classes of this folder share: status reports, and edits whose errors become a status.
#pragma once
#include <maya/MString.h>

#include "command/message.h"
#include "command/registry.h"
#include "data/fn_base.h"
#include "graph/access.h"
#include "graph/node.h"

namespace mirk::api {

/// Runs an edit. Its error is shown and becomes kFailure.
template <class F>
MStatus guarded(F&& edit)
{
    try {
        edit();
        return MS::kSuccess;
    } catch (const command::Error& e) {
        message::error(e.what());
        return MS::kFailure;
    }
}

/// A node of the type, placed if it is a DAG type. Null and a status if that cannot be.
Node* create(NodeType* type, const MString& name, Node* parent, MStatus* status);

}  // namespace mirk::api
