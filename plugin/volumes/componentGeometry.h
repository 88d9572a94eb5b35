// A geometry as a component group sees it: what kind of components it is asked for, how many there are, and the mesh whose
// vertices, edges and faces answer the questions: the geometry itself, the tessellation of a curve or surface, or one
// polygon through all particles.
#pragma once
#include <maya/MDataHandle.h>
#include <maya/MFnData.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSpace.h>
#include <maya/MString.h>

#include "core/arrays.h"
#include "volumes/componentLists.h"
#include "volumes/componentMarks.h"

class ComponentGeometry
{
public:
    /// Reads the geometry at a plug. Wrong UV sets give a warning.
    /// @param handle      its value; stays in use
    /// @param kind        the value of `componentType`; 6 asks for particles
    /// @param velocities  of a vector array: vectors, or three doubles a particle
    ComponentGeometry(const MPlug& plug, MDataHandle& handle, short kind, MSpace::Space space, const MString& uvSet,
                      const ArrayView& velocities);

    /// Why there is nothing to work on, if so.
    enum Refusal { kNone, kPeriodicSurface, kNoVelocities };
    Refusal refusal() const { return refusal_; }

    MFnData::Type         form() const { return form_; }
    bool                  particles() const { return form_ == MFnData::kVectorArray; }
    /// The count is 0 for components that the geometry does not have.
    const ComponentSpace& components() const { return components_; }
    ComponentKind         kind() const { return components_.kind; }
    int                   count() const { return components_.count; }
    MSpace::Space         space() const { return space_; }

    /// The tables of the mesh; the same with edges, with UVs.
    const MeshTables& faces();
    const MeshTables& withEdges();
    const MeshTables& withUVs();
    /// Selected vertices, edges or faces of the mesh as components of the kind asked for.
    Marks ofVertices(const Marks& vertices);
    Marks ofEdges(const Marks& edges);
    Marks ofFaces(const Marks& faces);

    // Three numbers each, in the space asked for
    std::vector<double> vertexPoints() const;   ///< vertices of the mesh
    std::vector<double> points() const;             ///< of the geometry: vertices, CVs
    std::vector<double> vertexVectors() const;  ///< normals of the vertices, velocities of particles
    std::vector<double> faceNormals() const;
    std::vector<double> faceAreas() const;      ///< one number each
    /// Two numbers a vertex, of its first UV; `missing` marks vertices without one.
    std::vector<double> vertexUVs(Marks& missing) const;

private:
    void readMesh(const MPlug& plug, const MString& uvSet);
    void readCurve(const MPlug& plug);
    void readSurface(const MPlug& plug);
    void readParticles(const ArrayView& velocities);
    void needTables();
    void needFor(ComponentKind kind);
    void repairNormals(std::vector<double>& normals) const;

    MDataHandle&        handle_;
    MFnData::Type       form_;
    MSpace::Space       space_;
    MString             uvSet_;
    Refusal             refusal_ = kNone;
    ComponentSpace      components_;
    MObject             mesh_;
    MeshTables          tables_;
    bool                hasUVs_ = false;
    std::vector<double> velocities_;
};
