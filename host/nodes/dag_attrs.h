// Attributes of the DAG's base types, for code that reads them on every evaluation.
#pragma once
#include "graph/node.h"

namespace mirk::nodes {

struct DagAttrs
{
    // dagNode
    const Attribute *boundingBox, *boxMin, *boxMax, *boxSize, *center, *matrix, *inverseMatrix, *worldMatrix, *worldInverseMatrix,
        *parentMatrix, *parentInverseMatrix, *visibility, *lodVisibility, *intermediate, *isTemplate, *instObjGroups, *overrideEnabled,
        *overrideVisibility;
    // transform
    const Attribute *translate, *rotate, *scale, *shear, *rotateOrder, *rotatePivot, *rotatePivotTranslate, *scalePivot,
        *scalePivotTranslate, *rotateAxis, *inheritsTransform, *xformMatrix;
    // joint
    const Attribute *jointOrient, *segmentScaleCompensate, *inverseScale;
};

const DagAttrs& dagAttrs();

/// Answers the attributes of dagNode; for types that add some of their own.
bool computeDag(Node& node, Cell& cell);

/// Values after evaluation.
void   pulledTriple(Node& node, const Attribute* attribute, double out[3]);
double pulledNumber(Node& node, const Attribute* attribute);

/// Box of a node and all that stands below it, in the space above the node: min then max. False if it is empty.
bool nodeBox(Node& node, double box[6]);
/// Grows `box` by another one that goes through a matrix.
void growBox(double box[6], bool& empty, const double other[6], const double matrix[4][4]);

}  // namespace mirk::nodes
