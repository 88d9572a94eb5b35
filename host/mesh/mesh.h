// Meshes: a body of shared copy-on-write parts, the data object that shows it, and what shapes with a mesh offer.
//
// Points, topology, UVs, colours, edge smoothness and locked normals are parts of their own. Copying a body copies
// references; a writer gets its own copy of the one part it writes. What follows from the parts (normals, tangents,
// triangles) is built when first asked for, is shared by all bodies that share the parts, and is dropped by writers.
#pragma once
#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <maya/MColor.h>

#include "data/data.h"
#include "mesh/lazy.h"
#include "mesh/topology.h"
#include "mesh/vector3.h"
#include "query/tree.h"

namespace mirk {


/// Normals of the corners: a table of distinct normals and one index into it a corner.
struct CornerNormals : Counted<CornerNormals>
{
    Buffer<F3>  table;
    Buffer<int> ids;
    const F3& at(int corner) const { return table[ids[corner]]; }
};

/// Unit tangents and binormals of the corners; zero where the UVs are missing or degenerate.
struct Tangents : Counted<Tangents>
{
    Buffer<F3> tangents, binormals;
};

struct UVSet
{
    struct Tables : Counted<Tables> { Lazy<Lists> ofVertex; };

    std::string      name;
    Ref<Buffer<F2>>  uvs = make<Buffer<F2>>();
    Ref<Buffer<int>> ids;                   ///< one a corner, -1 unassigned; null while nothing is assigned
    Ref<Tables>      derived = make<Tables>();

    int id(int corner) const { return ids ? (*ids)[corner] : -1; }
    /// The distinct UVs of each vertex, in the order of its corners.
    const Lists& ofVertex(const Topology& topology) const;
};

struct UVSets : Counted<UVSets>
{
    UVSets() : sets(1) { sets[0].name = "map1"; }
    std::vector<UVSet> sets;      ///< never empty
    int current = 0;
};

/// A colour of -1 in all channels means unset.
inline const MColor unsetColor{-1, -1, -1, -1};
inline bool isUnset(const MColor& c) { return c.r == -1 && c.g == -1 && c.b == -1 && c.a == -1; }

struct ColorSet
{
    /// What the table's entries belong to: vertices, corners, or whatever corner's id names them.
    enum Layout { kPerVertex, kPerCorner, kIndexed };
    struct Tables : Counted<Tables> { Lazy<Buffer<MColor>> ofVertex; };

    std::string         name;
    int                 representation = 4;   ///< MFnMesh::MColorRepresentation
    bool                clamped = false;
    Layout              layout = kIndexed;
    Ref<Buffer<MColor>> table = make<Buffer<MColor>>();
    Ref<Buffer<int>>    ids;                  ///< kIndexed: one a corner, -1 unassigned; null while nothing is assigned
    Ref<Tables>         derived = make<Tables>();

    /// Index into the table; -1 for a corner without colour.
    int id(const Topology& t, int corner) const
    {
        const int i = layout == kPerVertex ? t.connects()[corner] : layout == kPerCorner ? corner
                      : ids ? (*ids)[corner] : -1;
        return i >= 0 && !isUnset((*table)[i]) ? i : -1;
    }
    const MColor& ofCorner(const Topology& t, int corner) const
    {
        const int i = id(t, corner);
        return i < 0 ? unsetColor : (*table)[i];
    }
    /// Of each vertex the mean of its corners' colours that are set.
    const Buffer<MColor>& ofVertices(const Topology& topology) const;
};

struct ColorSets : Counted<ColorSets>
{
    std::vector<ColorSet> sets;
    int current = -1;
};

/// Normals set by hand, which points do not change. Buffers are empty or have one entry a vertex or corner.
struct LockedNormals : Counted<LockedNormals>
{
    Buffer<F3>      vertex, corner;              ///< a corner's normal wins over its vertex's
    Buffer<uint8_t> vertexLocked, cornerLocked;
};

/// Hard edges as faces tell them, for makers of meshes that number no edges: one flag a corner, for the edge that starts
/// there. An edge is hard if one of its corners says so; all of them should.
struct HardCorners : Counted<HardCorners>
{
    Buffer<uint8_t>       corners;
    Lazy<Buffer<uint8_t>> edges;   ///< the same by edge
};

/// Normal of a face with the area of its projection as length.
Vec3 areaVector(const Topology& topology, const float* points, int face);

class MeshBody : public GeometryBody
{
public:
    MeshBody();
    /// Shares all parts.
    MeshBody(const MeshBody&) = default;

    int vertexCount() const { return topology_->vertexCount(); }
    int faceCount() const { return topology_->faceCount(); }
    int cornerCount() const { return topology_->cornerCount(); }
    int edgeCount() const { return topology_->edgeCount(); }

    const Topology& topology() const { return *topology_; }
    const float*    points() const { return points_->data(); }   ///< x, y, z of each vertex
    const Ref<Buffer<float>>& pointBuffer() const { return points_; }
    const Ref<Topology>&      topologyPart() const { return topology_; }

    /// Becomes a mesh of these points (three floats a vertex of `topology`) and faces, with no UVs, colours, locked
    /// normals or hard edges. Groups and matrix stay. False, and nothing changes, if the sizes do not fit.
    bool reset(Ref<Buffer<float>> points, Ref<Topology> topology);
    /// Takes over all parts of another mesh, and its groups and matrix if `withGroups`.
    void assign(const MeshBody& other, bool withGroups);
    /// The points for writing. Valid until the body is shared, asked again or reset.
    float* writePoints()
    {
        dropSurface();
        return detach(points_).data();
    }
    /// Other points, as many as there are; they may be shared with others.
    bool replacePoints(Ref<Buffer<float>> points);
    /// Adds vertices and one face over old and new ones; what hangs on the rest stays. False if the face is malformed.
    bool append(const float* newPoints, int newVertices, const int* face, int size);
    /// Points and locked normals go through the body's matrix, which becomes the identity.
    void bakeMatrix();

    // what follows from points and faces; unit length, zero where degenerate
    const Buffer<F3>&  faceNormals() const;
    const Buffer<int>& triangles() const;                        ///< three corners each, see triangulate()
    /// Mean of the normals of a vertex's faces, plain or weighted by their angles; of a locked vertex its own.
    const Buffer<F3>&  vertexNormals(bool angleWeighted) const;
    /// Smooth across smooth edges (weighted by angle), split at hard ones; locked ones as they are.
    const CornerNormals& cornerNormals() const;
    bool vertexNormalsBuilt() const { return locked_ ? shading_->vertices.built() : surface_->vertexNormals.built(); }
    bool cornerNormalsBuilt() const { return shading_->corners.built(); }
    /// For rays and closest points.
    const query::Tree& tree() const;
    bool treeBuilt() const { return surface_->tree.built(); }
    void dropTree() const;
    /// For a UV set that exists.
    const Tangents&    tangents(int uvSet) const;
    /// Box of all points as min xyz, max xyz; all zero for an empty mesh.
    void bounds(float box[6]) const;

    // edges; smooth unless set hard
    bool edgeSmooth(int edge) const
    {
        const Buffer<uint8_t>* hard = hardEdges();
        return !hard || !(*hard)[edge];
    }
    bool anyHard() const { return hard_ || hardCorners_; }
    void setEdgeSmooth(int edge, bool smooth);
    void setAllEdges(bool smooth);
    /// True if the edge that starts at a corner is hard.
    bool cornerHard(int corner) const
    {
        return hardCorners_ ? hardCorners_->corners[corner] : hard_ && (*hard_)[topology_->edges().ofCorner[corner]];
    }
    /// All edges by the corners they start at, one flag a corner: hard if one says so. Null: all are smooth.
    void setHardCorners(Ref<HardCorners> flags);
    /// One flag an edge; null if all are smooth.
    const Buffer<uint8_t>* hardEdges() const { return hardCorners_ ? &hardOfCorners() : hard_.get(); }

    // locked normals, in object space
    const LockedNormals* locked() const { return locked_.get(); }
    bool normalLocked(int corner) const;
    void lockVertexNormals(const F3* normals, const int* vertices, size_t count);   ///< vertices exist
    void lockCornerNormals(const F3* normals, const int* corners, size_t count);    ///< corners exist
    void unlockVertices(const int* vertices, size_t count);
    void unlockCorners(const int* corners, size_t count);

    // UV sets
    const UVSets& uvSets() const { return *uvSets_; }
    int    findUVSet(std::string_view name) const;       ///< -1 if there is none
    UVSet& writeUVSet(int set);                           ///< the entry, whose buffers are still to be detached
    UVSets& writeUVSets();                                ///< for adding, removing, renaming
    /// One id a corner, -1 for none; ids outside the table are refused. Null `ids` takes all assignments away.
    bool   assignUVs(int set, Ref<Buffer<int>> ids);

    // colour sets
    const ColorSets& colorSets() const { return *colorSets_; }
    int       findColorSet(std::string_view name) const;
    ColorSet& writeColorSet(int set);
    ColorSets& writeColorSets() { return detach(colorSets_); }
    /// A new set, current if it is the first. The name gets a number if it is taken; empty asks for "colorSet1".
    int       addColorSet(std::string name);
    /// Whose corners at these vertices, faces or corners get the colours; all indices exist.
    void setVertexColors(int set, const MColor* colors, const int* vertices, size_t count);
    void setFaceColors(int set, const MColor* colors, const int* faces, size_t count);
    void setCornerColors(int set, const MColor* colors, const int* corners, size_t count);
    /// The table, as long as the present one or longer; false if it is shorter.
    bool setColorTable(int set, Ref<Buffer<MColor>> table);
    bool assignColors(int set, Ref<Buffer<int>> ids);

private:
    friend struct MeshRebuild;
    struct Surface : Counted<Surface>
    {
        Lazy<Buffer<F3>>  faceNormals, vertexNormals, vertexNormalsWeighted;
        Lazy<Buffer<int>> triangles;
        Lazy<query::Tree> tree;
        bool built() const   // the tree follows from the triangles
        {
            return faceNormals.built() || triangles.built() || vertexNormals.built() || vertexNormalsWeighted.built();
        }
    };
    struct Shading : Counted<Shading>
    {
        Lazy<CornerNormals> corners;
        Lazy<Buffer<F3>>    vertices, verticesWeighted;   // with locked ones
        bool built() const { return corners.built() || vertices.built() || verticesWeighted.built(); }
    };
    struct TangentCache : Counted<TangentCache>
    {
        struct Entry { std::string set; Ref<Tangents> value; Entry* next; };
        ~TangentCache();
        bool built() const { return head.load(std::memory_order_acquire) != nullptr; }
        std::atomic<Entry*> head{nullptr};
        std::mutex          mutex;
    };

    template <class T>
    static void drop(Ref<T>& derived)
    {
        if (!derived->unique() || derived->built())
            derived = make<T>();
    }
    void dropSurface() { drop(surface_); dropShading(); }
    void dropShading() { drop(shading_); dropTangents(); }
    void dropTangents() { drop(tangents_); }
    Ref<CornerNormals> buildCornerNormals() const;
    Ref<Buffer<F3>>    vertexNormalsWithLocks(bool angleWeighted) const;
    Ref<Tangents>      buildTangents(const UVSet& set) const;
    void toCornerColors(ColorSet& set);
    const Buffer<uint8_t>& hardOfCorners() const;
    void hardByEdge();   // before edges change one by one

    Ref<Buffer<float>>   points_;
    Ref<Topology>        topology_;
    Ref<UVSets>          uvSets_;
    Ref<ColorSets>       colorSets_;
    Ref<Buffer<uint8_t>> hard_;          // at most one of the two
    Ref<HardCorners>     hardCorners_;
    Ref<LockedNormals>   locked_;
    // all bodies that share one of these share all parts that it follows from
    mutable Ref<Surface>      surface_;
    mutable Ref<Shading>      shading_;
    mutable Ref<TangentCache> tangents_;
};

class MeshData : public GeometryData
{
public:
    MeshData() : body(make<MeshBody>()) {}
    explicit MeshData(Ref<MeshBody> b) : body(b ? std::move(b) : make<MeshBody>()) {}
    MFnData::Type type() const override { return MFnData::kMesh; }
    MFn::Type     apiType() const override { return MFn::kMeshData; }
    bool          hasFn(MFn::Type t) const override { return t == MFn::kMesh || GeometryData::hasFn(t); }
    Ref<Data>     share() const override;
    GeometryBody& geometry() const override { return *body; }
    Ref<GeometryData> transformedView() const override;

    Ref<MeshBody> body;   ///< never null
};

/// What a shape node with a mesh offers to function sets and iterators.
struct MeshSource
{
    /// The mesh as it is to be read: up to date, in object space. Null if it cannot be had.
    virtual Ref<MeshData> meshForRead() = 0;
    /// The mesh for changes, which go to the shape; call meshChanged() after them.
    virtual Ref<MeshData> meshForWrite() = 0;
    virtual void          meshChanged() = 0;

protected:
    ~MeshSource() = default;
};

/// How a mesh shape is made under a transform: given the parent (null for a new one) and the mesh, returns the node that
/// MFnMesh::create is to return and hands the shape out, or null if the parent is no transform. Set by the DAG; null
/// without one.
extern Ref<Object> (*createMeshShape)(Object* parent, Ref<MeshData> mesh, Ref<Object>& shape);

}  // namespace mirk
