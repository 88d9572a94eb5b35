// What the tests of component lists share: components as text, lists and meshes as sources of connections.
#pragma once
#include <maya/MFnComponent.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnSingleIndexedComponent.h>

#include <set>
#include <sstream>

#include "scene.h"

namespace scene {

inline const char* prefixOf(MFn::Type type)
{
    switch (type) {
    case MFn::kMeshVertComponent:    return "v";
    case MFn::kMeshEdgeComponent:    return "e";
    case MFn::kMeshPolygonComponent: return "f";
    case MFn::kMeshMapComponent:     return "map";
    case MFn::kCurveCVComponent:     return "cv";
    case MFn::kSurfaceCVComponent:   return "sf";
    default:                         return "?";
    }
}

/// A component as its kind and elements: "v 1 2 3", "sf 0,1 0,2".
inline std::string textOf(MObject component)
{
    std::ostringstream        out;
    MIntArray                 u, v;
    MFnDoubleIndexedComponent pairs;
    MFnSingleIndexedComponent single;
    out << prefixOf(component.apiType());
    if (pairs.setObject(component) == MS::kSuccess) {
        pairs.getElements(u, v);
        for (unsigned int i = 0; i < u.length(); ++i)
            out << ' ' << u[i] << ',' << v[i];
    } else if (single.setObject(component) == MS::kSuccess) {
        single.getElements(u);
        for (unsigned int i = 0; i < u.length(); ++i)
            out << ' ' << u[i];
    }
    return out.str();
}

/// The component list or int array at a plug; components of a list stand between bars.
inline std::string componentsAt(const std::string& name)
{
    MObject data = plug(name).asMObject();
    if (data.apiType() == MFn::kIntArrayData) {
        std::string         text = "ids";
        const MFnIntArrayData ids(data);
        for (unsigned int i = 0; i < ids.length(); ++i)
            text += " " + std::to_string(ids[i]);
        return text;
    }
    if (data.apiType() != MFn::kComponentListData)
        return "nothing";
    const MFnComponentListData list(data);
    std::string                text;
    for (unsigned int i = 0; i < list.length(); ++i)
        text += (i > 0 ? " | " : "") + textOf(list[i]);
    return text;
}

inline std::string textOf(const char* prefix, const std::set<int>& elements)
{
    std::string text = prefix;
    for (int i : elements)
        text += " " + std::to_string(i);
    return text;
}

/// A node `lists` with a component list of the given entries ("vtx[0:3]"), connected to the plug.
inline void giveComponents(const std::string& to, const std::vector<std::string>& entries)
{
    const std::string attribute = "list" + std::to_string(std::hash<std::string>()(to) % 1000);
    if (MSelectionList list; !list.add("lists"))
        run("createNode network -name lists");
    if (MSelectionList list; !list.add(("lists." + attribute).c_str()))
        run("addAttr -longName " + attribute + " -dataType \"componentList\" lists");
    std::string values;
    for (const std::string& entry : entries)
        values += " \"" + entry + "\"";
    run("setAttr lists." + attribute + " -type \"componentList\" " + std::to_string(entries.size()) + values);
    run("if (!`isConnected lists." + attribute + " " + to + "`) connectAttr -force lists." + attribute + " " + to);
}

/// A plane `p` of n by n squares of side 1 around the origin. Vertices, faces: x fastest, from +z to -z.
///   12 13 14 15
///    8  9 10 11     faces  6 7 8
///    4  5  6  7            3 4 5
///    0  1  2  3            0 1 2    (n = 3)
inline void grid(int n)
{
    const std::string text = std::to_string(n);
    run("polyPlane -width " + text + " -height " + text + " -subdivisionsX " + text + " -subdivisionsY " + text +
        " -name p");
}

} // namespace scene
