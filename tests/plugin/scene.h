// Small scenes for node tests: built by commands, read through plugs.
#pragma once
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "command/message.h"
#include "command/startup.h"

namespace scene {

/// Runs MEL text; the test fails if it does.
inline void run(const std::string& mel)
{
    EXPECT_TRUE(MGlobal::executeCommand(mel.c_str())) << mel;
}

inline MPlug plug(const std::string& name)
{
    MSelectionList list;
    MPlug          result;
    EXPECT_TRUE(list.add(name.c_str()) && list.getPlug(0, result)) << name;
    return result;
}

inline std::vector<double> doubles(const std::string& name)
{
    MObject            data = plug(name).asMObject();
    MFnDoubleArrayData fn(data);
    std::vector<double> values;
    for (unsigned int i = 0; i < fn.length(); ++i)
        values.push_back(fn[i]);
    return values;
}

inline std::vector<MVector> vectors(const std::string& name)
{
    MObject            data = plug(name).asMObject();
    MFnVectorArrayData fn(data);
    std::vector<MVector> values;
    for (unsigned int i = 0; i < fn.length(); ++i)
        values.push_back(fn[i]);
    return values;
}

/// Points of the mesh at a plug, in the space of its data.
inline std::vector<MVector> points(const std::string& name)
{
    MObject     data = plug(name).asMObject();
    MPointArray array;
    MFnMesh(data).getPoints(array);
    std::vector<MVector> values;
    for (unsigned int i = 0; i < array.length(); ++i)
        values.push_back(MVector(array[i]));
    return values;
}

inline std::vector<MColor> colors(const std::string& name)
{
    MObject     data = plug(name).asMObject();
    MColorArray array;
    MFnMesh(data).getVertexColors(array);
    std::vector<MColor> values;
    for (unsigned int i = 0; i < array.length(); ++i)
        values.push_back(array[i]);
    return values;
}

inline void expectNear(const std::vector<MVector>& found, const std::vector<MVector>& expected, double tolerance = 1e-6)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_TRUE(found[i].isEquivalent(expected[i], tolerance))
            << i << ": " << found[i].x << " " << found[i].y << " " << found[i].z;
}

/// A node `arrays` with one array attribute, as a source of connections. kind: vectorArray, doubleArray, Int32Array,
/// pointArray; values as setAttr takes them after the count.
inline std::string arraySource(const std::string& attribute, const std::string& kind, int count,
                               const std::string& values)
{
    if (MSelectionList list; !list.add("arrays"))
        run("createNode network -name arrays");
    run("addAttr -longName " + attribute + " -dataType \"" + kind + "\" arrays");
    run("setAttr arrays." + attribute + " -type \"" + kind + "\" " + std::to_string(count) + " " + values);
    return "arrays." + attribute;
}

/// A mesh of one triangle over the first three of `pointCount` points, or of points alone, as a source of connections.
inline std::string meshSource(int pointCount, bool triangle)
{
    MFnMeshData data;
    MObject     owner = data.create();
    MPointArray points;
    for (int i = 0; i < pointCount; ++i)
        points.append(MPoint(i % 2, i / 2, 0.0));
    const MIntArray counts(triangle ? 1u : 0u, 3);
    MIntArray       corners;
    for (int i = 0; triangle && i < 3; ++i)
        corners.append(i);
    MFnMesh().create(pointCount, static_cast<int>(counts.length()), points, counts, corners, owner);
    run("createNode network -name meshes; addAttr -longName m -dataType \"mesh\" meshes");
    EXPECT_TRUE(plug("meshes.m").setMObject(owner));
    return "meshes.m";
}

/// Messages of one kind while it lives: warnings, or what else it is told to keep.
class Warnings
{
public:
    explicit Warnings(mirk::message::Kind kept = mirk::message::kWarning)
        : sink_(mirk::message::addSink([this, kept](mirk::message::Kind kind, const std::string& text) {
              if (kind == kept)
                  texts.push_back(text);
          })) {}
    ~Warnings() { mirk::message::removeSink(sink_); }

    std::vector<std::string> texts;

private:
    int sink_;
};

/// An empty scene with the toolkit loaded.
class Test : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mirk::startHost();
        mirk::message::setConsole(false);
        const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
        const auto library = (folder / ".." / "lib" / "mirk.so").lexically_normal();
        run("if (!`pluginInfo -query -loaded \"mirk\"`) loadPlugin \"" + library.string() + "\"");
        run("file -force -new");
    }
};

} // namespace scene
