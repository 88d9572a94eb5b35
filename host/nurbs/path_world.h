// The world matrix of a DAG path, as geometry function sets ask for it.
#pragma once
#include <memory>

class MDagPath;

namespace mirk {

struct WorldMatrix;

std::shared_ptr<const WorldMatrix> worldOfPath(const MDagPath& path);

}  // namespace mirk
