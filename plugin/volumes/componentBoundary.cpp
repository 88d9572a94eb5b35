#include "volumes/componentBoundary.h"

Marks boundaryEdges(const MeshTables& mesh)
{
    std::vector<int> faces(static_cast<std::size_t>(mesh.edgeCount), 0);
    for (int edge : mesh.cornerEdges)
        ++faces[static_cast<std::size_t>(edge)];
    Marks edges(faces.size(), 0);
    for (std::size_t e = 0; e < edges.size(); ++e)
        edges[e] = faces[e] < 2;
    return edges;
}

Marks boundaryVertices(const MeshTables& mesh)
{
    Marks vertices = verticesOfEdges(mesh, boundaryEdges(mesh));
    Marks used(vertices.size(), 0);
    for (int vertex : mesh.edgeVertices)
        used[static_cast<std::size_t>(vertex)] = 1;
    for (std::size_t v = 0; v < vertices.size(); ++v)
        vertices[v] |= static_cast<unsigned char>(!used[v]);
    return vertices;
}

Marks boundaryFaces(const MeshTables& mesh)
{
    return facesWithAny(mesh, mesh.cornerEdges, boundaryEdges(mesh));
}

Marks boundaryGrid(int rows, int columns)
{
    Marks marks(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), 0);
    std::size_t i = 0;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            marks[i++] = row == 0 || row == rows - 1 || column == 0 || column == columns - 1;
    return marks;
}

Marks boundaryRow(int count)
{
    Marks marks(static_cast<std::size_t>(count), 0);
    if (count > 0)
        marks.front() = marks.back() = 1;
    return marks;
}
