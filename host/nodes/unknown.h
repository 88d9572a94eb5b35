#pragma once

namespace mirk::nodes {

/// The types that stand for those a file names and nobody registered: "unknown", in the hierarchy "unknownTransform" and
/// "unknownDag" (a shape). Once, after the built-in types.
void registerUnknownTypes();

}  // namespace mirk::nodes
