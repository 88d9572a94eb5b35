// Bounding objects in small scenes.
#pragma once
#include "scene.h"

#include <maya/MFnPointArrayData.h>

namespace scene {

inline std::vector<MPoint> pointArray(const std::string& name)
{
    MObject           data = plug(name).asMObject();
    MFnPointArrayData fn(data);
    std::vector<MPoint> values;
    for (unsigned int i = 0; i < fn.length(); ++i)
        values.push_back(fn[i]);
    return values;
}

inline void expectDoubles(const std::vector<double>& found, const std::vector<double>& expected, double tolerance = 1e-6)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], tolerance) << i;
}

/// A bounding object `name` + "Shape" of a type under a transform `name` at x, wired as the scripts do.
inline void volume(const std::string& name, int type, double x, const std::string& more = "")
{
    run("createNode transform -name " + name + "; createNode boundingObject -name " + name + "Shape -parent " + name +
        "; connectAttr " + name + ".worldMatrix[0] " + name + "Shape.inParentMatrix; setAttr " + name + "Shape.type " +
        std::to_string(type) + "; setAttr " + name + ".translateX " + std::to_string(x) + ";" + more);
}

/// Into element `index` of a consumer, by the two documented connections.
inline void connectVolume(const std::string& name, const std::string& consumer, int index)
{
    const std::string element = consumer + ".boundingObjects[" + std::to_string(index) + "]";
    run("connectAttr " + name + "Shape.outData.outParentMatrix " + element + ".boundParentMatrix; connectAttr " + name +
        "Shape.outData " + element);
}

/// Points along x as particles `arrays.v`; gives the plug.
inline std::string particles(const std::vector<double>& x)
{
    std::string values;
    for (const double at : x)
        values += " " + std::to_string(at) + " 0 0";
    return arraySource("v", "vectorArray", int(x.size()), values);
}

} // namespace scene
