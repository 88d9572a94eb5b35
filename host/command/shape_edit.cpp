#include "command/shape_edit.h"

#include "data/component.h"
#include "graph/evaluate.h"
#include "mesh/elements.h"
#include "nodes/geometry_shape.h"
#include "nurbs/nurbs_data.h"

namespace mirk::command {

namespace {

nodes::GeometryShape* geometryShape(Node& node) { return dynamic_cast<nodes::GeometryShape*>(&node); }

template <class Body>
std::vector<MPoint> cvPoints(const Body& body)
{
    std::vector<MPoint> out;
    for (const MPoint& cv : std::as_const(*body.cvs))
        out.emplace_back(cv.x / cv.w, cv.y / cv.w, cv.z / cv.w);
    return out;
}

template <class Body>
void writeCvs(Body& body, const std::vector<int>& indices, const std::vector<MPoint>& points)
{
    auto& cvs = detach(body.cvs);
    for (size_t i = 0; i < indices.size(); ++i)
        if (size_t(indices[i]) < cvs.size())
        {
            MPoint& cv = cvs[size_t(indices[i])];
            cv = MPoint(points[i].x * cv.w, points[i].y * cv.w, points[i].z * cv.w, cv.w);
        }
}

/// CVs that repeat the first ones of a periodic curve follow them.
void repeatCvs(CurveBody& c)
{
    if (c.form != NurbsForm::periodic)
        return;
    auto& cvs = detach(c.cvs);
    for (int i = 0; i < c.degree && c.uniqueCvCount() + i < c.cvCount(); ++i)
        cvs[size_t(c.uniqueCvCount() + i)] = cvs[size_t(i)];
}

void repeatCvs(SurfaceBody& s)
{
    auto& cvs = detach(s.cvs);
    const int uniqueU = s.formU == NurbsForm::periodic ? s.cvsU - s.degreeU : s.cvsU, uniqueV = s.formV == NurbsForm::periodic ? s.cvsV - s.degreeV : s.cvsV;
    for (int u = 0; u < s.cvsU; ++u)
        for (int v = 0; v < s.cvsV; ++v)
            if (u >= uniqueU || v >= uniqueV)
                cvs[size_t(u * s.cvsV + v)] = cvs[size_t((u % uniqueU) * s.cvsV + v % uniqueV)];
}

void writePoints(Data& data, const std::vector<int>& indices, const std::vector<MPoint>& points)
{
    if (auto* mesh = dynamic_cast<MeshData*>(&data))
    {
        float* p = mesh->body->writePoints();
        for (size_t i = 0; i < indices.size(); ++i)
            if (indices[i] < mesh->body->vertexCount())
                for (int k = 0; k < 3; ++k)
                    p[indices[i] * 3 + k] = float(points[i][unsigned(k)]);
    }
    else if (auto* curve = dynamic_cast<CurveData*>(&data))
    {
        writeCvs(*curve->body, indices, points);
        repeatCvs(*curve->body);
    }
    else if (auto* surface = dynamic_cast<SurfaceData*>(&data))
    {
        writeCvs(*surface->body, indices, points);
        repeatCvs(*surface->body);
    }
}

void addVertices(const MeshBody& mesh, const Component& c, std::vector<int>& out)
{
    const Topology& t = mesh.topology();
    for (int e : elementsOf(mesh, c))
        if (c.apiType() == MFn::kMeshPolygonComponent)
            out.insert(out.end(), t.face(e).begin(), t.face(e).end());
        else if (c.apiType() == MFn::kMeshEdgeComponent)
            out.insert(out.end(), {t.edges().edges[size_t(e)].a, t.edges().edges[size_t(e)].b});
        else
            out.push_back(e);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
}

}  // namespace

Cell* geometryCell(Node& shape)
{
    auto* g = geometryShape(shape);
    if (!g)
        return nullptr;
    Cell* in = shape.cell(g->attrs().input);
    return in->source || in->data() ? in : shape.cell(g->attrs().stored);
}

bool hasHistory(Node& shape)
{
    auto* g = geometryShape(shape);
    Cell* in = g ? shape.cellIfAny(g->attrs().input) : nullptr;
    return in && in->source;
}

Node& meshShapeOf(const Item& item)
{
    if (nodeOf(item) && nodeOf(item)->dag)
        for (Node* shape : shapesOf(*nodeOf(item)))
            if (dynamic_cast<MeshSource*>(shape))
                return *shape;
    fail("'" + itemName(item) + "' is no polygon object");
}

Ref<MeshData> readMesh(Node& shape)
{
    auto* source = dynamic_cast<MeshSource*>(&shape);
    Ref<MeshData> mesh = source ? source->meshForRead() : Ref<MeshData>();
    if (!mesh)
        fail("'" + nodeName(shape) + "' has no mesh");
    return mesh;
}

void setGeometry(Node& shape, Ref<Data> data)
{
    Cell* cell = geometryCell(shape);
    if (!cell)
        fail("'" + nodeName(shape) + "' holds no geometry");
    if (cell->source)
        fail("'" + nodeName(shape) + "' has construction history: its geometry cannot be replaced");
    edit::setData(*cell, data);
}

void editMesh(Node& shape, const std::function<void(MeshBody&)>& change)
{
    if (hasHistory(shape))
        fail("'" + nodeName(shape) + "' has construction history; delete it first");
    Cell* cell = geometryCell(shape);
    auto* present = cell ? dynamic_cast<MeshData*>(cell->data()) : nullptr;
    if (!present)
        fail("'" + nodeName(shape) + "' has no mesh");
    const Ref<Data> data = present->share();
    change(*static_cast<MeshData*>(data.get())->body);
    edit::setData(*cell, data);
}

std::vector<MPoint> shapePoints(Node& shape)
{
    std::vector<MPoint> out;
    auto* g = geometryShape(shape);
    const Ref<GeometryData> data = g ? g->read() : Ref<GeometryData>();
    if (auto* mesh = dynamic_cast<MeshData*>(data.get()))
        for (int i = 0; i < mesh->body->vertexCount(); ++i)
            out.emplace_back(mesh->body->points()[i * 3], mesh->body->points()[i * 3 + 1], mesh->body->points()[i * 3 + 2]);
    else if (auto* curve = dynamic_cast<CurveData*>(data.get()))
        out = cvPoints(*curve->body);
    else if (auto* surface = dynamic_cast<SurfaceData*>(data.get()))
        out = cvPoints(*surface->body);
    return out;
}

void setShapePoints(Node& shape, const std::vector<int>& indices, const std::vector<MPoint>& points)
{
    auto* g = geometryShape(shape);
    if (!g)
        fail("'" + nodeName(shape) + "' has no points");
    const std::vector<MPoint> before = shapePoints(shape);
    Cell* offsets = shape.cell(g->attrs().offsets);
    if (hasHistory(shape) || offsets->elementCount())
    {
        for (size_t i = 0; i < indices.size(); ++i)
            if (size_t(indices[i]) < before.size())
            {
                Cell* offset = offsets->element(indices[i]);
                const MVector step = points[i] - before[size_t(indices[i])];
                edit::change(*offset, [&] {
                    for (int k = 0; k < 3; ++k)
                        offset->setNumber(offset->number(k) + step[unsigned(k)], k);
                });
            }
        return;
    }
    Cell* cell = geometryCell(shape);
    if (!cell->data())
        fail("'" + nodeName(shape) + "' has no points");
    const Ref<Data> data = cell->data()->share();
    writePoints(*data, indices, points);
    edit::setData(*cell, data);
}

std::vector<int> elementsOf(const MeshBody& mesh, const Component& c)
{
    const int count = c.apiType() == MFn::kMeshPolygonComponent ? mesh.faceCount()
                      : c.apiType() == MFn::kMeshEdgeComponent ? mesh.edgeCount()
                      : c.apiType() == MFn::kMeshMapComponent  ? int(mesh.uvSets().sets[size_t(mesh.uvSets().current)].uvs->size())
                                                               : mesh.vertexCount();
    return mirk::elementsOf(c, count);
}

std::vector<int> pointIndices(Node& shape, const Component& c)
{
    std::vector<int> out;
    auto* g = geometryShape(shape);
    const Ref<GeometryData> data = g ? g->read() : Ref<GeometryData>();
    if (auto* mesh = dynamic_cast<MeshData*>(data.get()))
        addVertices(*mesh->body, c, out);
    else if (auto* surface = dynamic_cast<SurfaceData*>(data.get()))
    {
        const SurfaceBody& s = *surface->body;
        if (c.complete)
            for (int i = 0; i < s.cvsU * s.cvsV; ++i)
                out.push_back(i);
        else if (c.dimensions() == 2)
            for (size_t i = 0; i + 1 < c.indices.size(); i += 2)
                if (c.indices[i] < s.cvsU && c.indices[i + 1] < s.cvsV)
                    out.push_back(c.indices[i] * s.cvsV + c.indices[i + 1]);
    }
    else if (auto* curve = dynamic_cast<CurveData*>(data.get()))
    {
        for (int i = 0; i < curve->body->cvCount(); ++i)
            if (c.complete || c.has(i))
                out.push_back(i);
    }
    return out;
}

}  // namespace mirk::command
