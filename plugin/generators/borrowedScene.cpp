#include "generators/borrowedScene.h"

#include <maya/MFnDagNode.h>
#include <maya/MGlobal.h>
#include <maya/MStringArray.h>

BorrowedScene::BorrowedScene()
{
    MGlobal::getActiveSelectionList(selection_);
    MGlobal::getHiliteList(hilite_);
    MGlobal::executeCommand("commandEcho -q -st", echo_, false, false);
    MGlobal::executeCommand("commandEcho -st 0", false, false);
}

BorrowedScene::~BorrowedScene()
{
    deleteNodes();
    if (echo_ == 1 && !MGlobal::executeCommand("commandEcho -st 1", false, false))   // interrupted: that was the cook
        MGlobal::executeCommand("commandEcho -st 1", false, false);
    MGlobal::setActiveSelectionList(selection_);
    MGlobal::setHiliteList(hilite_);
}

void BorrowedScene::run(const MString& command)
{
    if (ok() && !MGlobal::executeCommand(command, false, false))
        fail(command);
}

/// Takes the node of that name into care.
bool BorrowedScene::temporary(const MString& name)
{
    MSelectionList list;
    MObject        node;
    if (!list.add(name) || !list.getDependNode(0, node))
        return false;
    nodes_.emplace_back(node);
    return true;
}

MString BorrowedScene::createNode(const char* type)
{
    const MString command = MString("createNode -ss ") + type;
    MString       name;
    if (ok() && (!MGlobal::executeCommand(command, name, false, false) || !temporary(name)))
        fail(command);
    return name;
}

MString BorrowedScene::createMesh()
{
    const MString mesh = createNode("mesh");
    const MString command = "listRelatives -pa -p " + mesh;
    MStringArray  above;
    if (ok() && (!MGlobal::executeCommand(command, above, false, false) || above.length() != 1 || !temporary(above[0]))) {
        nodes_.emplace_back(MFnDagNode(nodes_.back().object()).parent(0));   // must go as well
        fail(command);
    }
    return mesh;
}

void BorrowedScene::deleteNodes()
{
    for (; !nodes_.empty(); nodes_.pop_back())
        if (nodes_.back().isValid()) {
            MObject node = nodes_.back().object();
            MGlobal::deleteNode(node);
        }
}
