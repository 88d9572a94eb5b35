// Node types for tests of the graph, made through the public interface.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPxNode.h>

#include "command/registry.h"
#include "graph/access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"

namespace graph_test {

using namespace mirk;

/// Registers a class as a node type, as a plug-in loader does.
inline NodeType* registerType(const char* name, unsigned id, void* (*creator)(), MStatus (*initialize)())
{
    auto type = std::make_unique<NodeType>();
    type->name = name;
    type->id = id;
    type->creator = creator;
    type->inherit(registerBaseType());
    typeBeingBuilt() = type.get();
    const MStatus s = initialize();
    typeBeingBuilt() = nullptr;
    return s == MS::kSuccess ? registerNodeType(std::move(type)) : nullptr;
}

/// out = in + 1, and a hook that a test may run inside compute.
class adder : public MPxNode
{
public:
    static void* creator() { return new adder; }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    static inline MObject aIn, aOut, aSide, aMulti, aOutMulti, aVector, aVectorX, aVectorY, aVectorZ, aArray, aOutArray;
    static inline std::function<void(adder&, MDataBlock&)> hook;
    static inline int computes = 0;
};

inline MStatus adder::initialize()
{
    MFnNumericAttribute n;
    MFnTypedAttribute t;
    aIn = n.create("input", "i", MFnNumericData::kDouble);
    n.setKeyable(true);
    addAttribute(aIn);
    aOut = n.create("output", "o", MFnNumericData::kDouble);
    n.setWritable(false);
    n.setStorable(false);
    addAttribute(aOut);
    aSide = n.create("side", "s", MFnNumericData::kDouble);
    n.setWritable(false);
    addAttribute(aSide);
    aMulti = n.create("multi", "m", MFnNumericData::kDouble);
    n.setArray(true);
    n.setUsesArrayDataBuilder(true);
    n.setDisconnectBehavior(MFnAttribute::kDelete);
    addAttribute(aMulti);
    aOutMulti = n.create("outMulti", "om", MFnNumericData::kDouble);
    n.setArray(true);
    n.setUsesArrayDataBuilder(true);
    addAttribute(aOutMulti);
    aVectorX = n.create("vectorX", "vx", MFnNumericData::kDouble);
    aVectorY = n.create("vectorY", "vy", MFnNumericData::kDouble);
    aVectorZ = n.create("vectorZ", "vz", MFnNumericData::kDouble);
    aVector = n.create("vector", "v", aVectorX, aVectorY, aVectorZ);
    addAttribute(aVector);
    aArray = t.create("array", "a", MFnData::kDoubleArray);
    t.setDisconnectBehavior(MFnAttribute::kReset);
    addAttribute(aArray);
    aOutArray = t.create("outArray", "oa", MFnData::kDoubleArray);
    t.setWritable(false);
    addAttribute(aOutArray);
    for (const MObject& in : {aIn, aMulti, aVector, aArray})
        for (const MObject& out : {aOut, aSide, aOutMulti, aOutArray})
            attributeAffects(in, out);
    return MS::kSuccess;
}

inline MStatus adder::compute(const MPlug& plug, MDataBlock& block)
{
    ++computes;
    if (hook)
        hook(*this, block);
    if (plug == aOut) {
        block.outputValue(aOut).set(block.inputValue(aIn).asDouble() + 1);
        return MS::kSuccess;
    }
    if (plug == aOutArray) {
        MDataHandle out = block.outputValue(aOutArray);
        return out.copy(block.inputValue(aArray));
    }
    return MS::kUnknownParameter;
}

inline NodeType* adderType()
{
    static NodeType* type = registerType("graphTestAdder", 0x7f100, adder::creator, adder::initialize);
    return type;
}

inline Cell& cellOf(Node* node, const char* path)
{
    std::string why;
    Cell* c = findCell(*node, path, true, &why);
    if (!c)
        throw std::runtime_error(why);
    return *c;
}

/// Takes the test's nodes out; other tests may have filled the scene with default ones.
inline void clearScene()
{
    for (Node* n : scene().nodes())
        if (n->type == adderType()) {
            n->locked = false;
            edit::deleteNode(*n);
        }
}

inline double get(Node* node, const char* path)
{
    Cell& c = cellOf(node, path);
    eval::pull(c);
    return c.number();
}

inline void set(Node* node, const char* path, double value) { edit::setNumber(cellOf(node, path), value); }
inline void connect(Node* a, const char* out, Node* b, const char* in, bool force = false)
{
    edit::connect(cellOf(a, out), cellOf(b, in), force);
}

}  // namespace graph_test
