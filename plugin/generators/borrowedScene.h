// The scene as a compute borrows it: temporary nodes of the host, made and wired by commands. However the compute ends,
// the nodes are gone afterwards and selection, hilite list and command echo are as they were.
#pragma once
#include <maya/MObjectHandle.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <vector>

class BorrowedScene
{
public:
    /// Saves selection and hilite list and silences the echo of commands.
    BorrowedScene();
    ~BorrowedScene();
    BorrowedScene(const BorrowedScene&) = delete;
    BorrowedScene& operator=(const BorrowedScene&) = delete;

    /// Runs a command, neither shown nor undoable. After one that failed no other runs.
    void run(const MString& command);
    /// Makes a node without selecting it and gives its name. It goes with the others.
    MString createNode(const char* type);
    /// Makes a mesh shape and gives its name; it goes with the transform above it.
    MString createMesh();
    void connect(const MString& fromPlug, const MString& toPlug) { run("connectAttr " + fromPlug + " " + toPlug); }

    /// The command that failed; empty as long as none did.
    const MString& failure() const { return failure_; }
    void           fail(const MString& command) { failure_ = command; }
    bool           ok() const { return failure_.length() == 0; }

    /// Deletes all nodes that were made, the last one first.
    void deleteNodes();

private:
    bool temporary(const MString& name);

    MSelectionList             selection_, hilite_;
    int                        echo_ = 0;
    MString                    failure_;
    std::vector<MObjectHandle> nodes_;
};
