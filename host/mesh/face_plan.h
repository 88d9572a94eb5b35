// A MeshPlan written face by face by operations that make no new points between old ones: every corner, edge and vertex
// is one of the old mesh.
#pragma once
#include <span>

#include "mesh/rebuild.h"

namespace mirk {

class FacePlan
{
public:
    explicit FacePlan(const MeshBody& old) : old_(old)
    {
        plan_.connects.reserve(size_t(old.cornerCount()));
        plan_.cornerSource.reserve(size_t(old.cornerCount()));
        plan_.edgeSource.reserve(size_t(old.cornerCount()));
        plan_.counts.reserve(size_t(old.faceCount()));
        plan_.faceSource.reserve(size_t(old.faceCount()));
    }

    /// A corner of the face that is being written: an old vertex; the old corner whose UV, colour and normal it has; the
    /// old corner whose edge its edge is, or MeshPlan::none.
    void corner(int vertex, int source, int edge)
    {
        plan_.connects.push(vertex);
        plan_.cornerSource.push(source);
        plan_.edgeSource.push(edge);
    }
    /// Ends the face that corners were given for, three at least.
    void endFace(int source)
    {
        plan_.counts.push(int(plan_.connects.size()) - begun_);
        plan_.faceSource.push(source);
        begun_ = int(plan_.connects.size());
    }
    /// An old face as it is.
    void face(int f)
    {
        const Topology& t = old_.topology();
        for (int c = t.first(f); c < t.first(f + 1); ++c)
            corner(t.connects()[size_t(c)], c, c);
        endFace(f);
    }

    /// The new mesh. Vertices keep their order. Those that no face has any more go; those that none had stay, unless
    /// `gone` (one flag a vertex; may be null) says no. `points` are three numbers an old vertex.
    Ref<MeshBody> finish(const float* points, const uint8_t* gone = nullptr);

private:
    const MeshBody& old_;
    MeshPlan        plan_;
    int             begun_ = 0;
};

}  // namespace mirk
