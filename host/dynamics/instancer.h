// instancer nodes: objects of the scene shown once for each point of an array of arrays.
#pragma once
#include <string>
#include <vector>

#include <maya/MMatrix.h>

#include "graph/node.h"

namespace mirk::dynamics {

/// One copy of an object.
struct Instance
{
    size_t  object = 0;   ///< place in instancedObjects
    MMatrix matrix;       ///< from the space above the object to that of the instancer
};

enum class InstanceDetail { geometry, wholeBox, shapeBoxes };

bool isInstancer(const Node& node);
/// The DAG nodes that drive `inputHierarchy`, in order of its indices; null where something else does.
std::vector<Node*> instancedObjects(Node& instancer);
/// What is shown now: one a point of the input's array "position", hidden ones and those without a place left out. The
/// input's other arrays may be shorter: points past their end take the default. Evaluates.
std::vector<Instance> instances(Node& instancer);
InstanceDetail        instanceDetail(Node& instancer);

/// Box of all instances in the instancer's space: min then max; false without any.
bool instancesBox(Node& instancer, double box[6]);
/// The boxes that depend on that of an object: of instancers that show it.
void instancerBoxes(Node& object, std::vector<Cell*>& boxes);

void registerInstancer();

}  // namespace mirk::dynamics
