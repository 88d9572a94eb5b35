// MFnMesh: colour sets and colours.
#include <maya/MFnMesh.h>

#include "mesh/api.h"
#include "mesh/target.h"

using namespace mirk;

int MFnMesh::numColorSets(MStatus* s) const { auto* b = read(s); return b ? int(b->colorSets().sets.size()) : 0; }

namespace {

const ColorSet* setOf(const MeshBody* b, const MString* name)
{
    const int set = b ? colorSetOf(*b, name) : -1;
    return set < 0 ? nullptr : &b->colorSets().sets[size_t(set)];
}

/// kFailure without a mesh, kInvalidParameter for a set that is named but not there.
MStatus missing(const MeshBody* b, const MString* name)
{
    return !b ? MS::kFailure : name && name->length() ? MS::kInvalidParameter : MS::kSuccess;
}

/// The current set, made if there is none; with a name, that set or -1.
int setForWriting(MeshBody& b, const MString* name)
{
    const int set = colorSetOf(b, name);
    return set < 0 && !(name && name->length()) ? b.addColorSet("") : set;
}

bool allWithin(const MIntArray& ids, int n)
{
    const int* id = begin(ids);
    size_t     left = ids.length();
    unsigned   outside = 0;
    constexpr size_t run = 1024;   // compared without branches
    for (; left >= run && !outside; left -= run, id += run)
        for (size_t k = 0; k < run; ++k)
            outside |= unsigned(id[k]) >= unsigned(n);
    for (size_t k = 0; k < left; ++k)
        outside |= unsigned(id[k]) >= unsigned(n);
    return !outside;
}

MColor asRepresented(const MColor& c, int rep)
{
    if (isUnset(c))
        return c;
    switch (rep) {
        case MFnMesh::kAlpha: return MColor(0, 0, 0, c.a);
        case MFnMesh::kRGB:   return MColor(c.r, c.g, c.b, 1);
        default:              return c;
    }
}

/// The colours as a set of that representation keeps them.
std::vector<MColor> represented(const MColorArray& colors, int rep)
{
    std::vector<MColor> result(colors.length());
    for (unsigned i = 0; i < colors.length(); ++i)
        result[i] = asRepresented(colors[i], rep);
    return result;
}

}  // namespace

int MFnMesh::numColors(MStatus* s) const
{
    const MeshBody* b = read(s);
    const ColorSet* set = setOf(b, nullptr);
    return set ? int(set->table->size()) : 0;
}

int MFnMesh::numColors(const MString& name, MStatus* s) const
{
    const MeshBody* b = read(s);
    const ColorSet* set = setOf(b, &name);
    if (b && !set)
        report(s, MS::kInvalidParameter);
    return set ? int(set->table->size()) : 0;
}

MStatus MFnMesh::createColorSetDataMesh(MString& name, bool clamped, MColorRepresentation rep)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    const int set = b->addColorSet(name.asChar());
    ColorSet& s = b->writeColorSet(set);
    s.clamped = clamped;
    s.representation = rep;
    name = MString(s.name.c_str());
    target_->changed();
    return MS::kSuccess;
}

MString MFnMesh::createColorSetWithName(const MString& name, MDGModifier* modifier, const MUintArray* instances,
                                        MStatus* status)
{
    return createColorSetWithName(name, false, kRGBA, modifier, instances, status);
}

MString MFnMesh::createColorSetWithName(const MString& name, bool clamped, MColorRepresentation rep, MDGModifier*,
                                        const MUintArray*, MStatus* status)
{
    MString made = name;
    const MStatus result = createColorSetDataMesh(made, clamped, rep);
    if (status)
        *status = result;
    return result ? made : MString();
}

MStatus MFnMesh::deleteColorSet(const MString& name, MDGModifier*)
{
    const MeshBody* has = read();
    const int set = has ? has->findColorSet(name.asChar()) : -1;
    if (set < 0)
        return has ? MS::kInvalidParameter : MS::kFailure;
    ColorSets& all = write()->writeColorSets();
    all.sets.erase(all.sets.begin() + set);
    if (all.current > set || all.current >= int(all.sets.size()))
        --all.current;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setCurrentColorSetName(const MString& name, MDGModifier*)
{
    MeshBody* b = write();
    const int set = b ? b->findColorSet(name.asChar()) : -1;
    if (set < 0)
        return b ? MS::kInvalidParameter : MS::kFailure;
    b->writeColorSets().current = set;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setCurrentColorSetDataMesh(const MString& name) { return setCurrentColorSetName(name); }

MString MFnMesh::currentColorSetName(int, MStatus* s) const
{
    const MeshBody* b = read(s);
    const ColorSet* set = setOf(b, nullptr);
    return set ? MString(set->name.c_str()) : MString();
}

MStatus MFnMesh::getColorSetNames(MStringArray& names) const
{
    const MeshBody* b = read();
    if (!b)
        return MS::kFailure;
    names.clear();
    for (const ColorSet& set : b->colorSets().sets)
        names.append(MString(set.name.c_str()));
    return MS::kSuccess;
}

MFnMesh::MColorRepresentation MFnMesh::getColorRepresentation(const MString& name, MStatus* s) const
{
    const MeshBody* b = read(s);
    const ColorSet* set = setOf(b, &name);
    if (b && !set)
        report(s, MS::kInvalidParameter);
    return set ? MColorRepresentation(set->representation) : kInvalid;
}

bool MFnMesh::isColorClamped(const MString& name, MStatus* s) const
{
    const MeshBody* b = read(s);
    const ColorSet* set = setOf(b, &name);
    if (b && !set)
        report(s, MS::kInvalidParameter);
    return set && set->clamped;
}

// reading

MStatus MFnMesh::getVertexColors(MColorArray& colors, const MString* name, const MColor* unset) const
{
    const MeshBody* b = read();
    const ColorSet* set = setOf(b, name);
    if (!set) {
        colors.clear();
        return missing(b, name);
    }
    const Buffer<MColor>& from = set->ofVertices(b->topology());
    MColor* out = room(colors, from.size());
    for (const MColor& c : from)
        *out++ = unset && isUnset(c) ? *unset : c;
    return MS::kSuccess;
}

MStatus MFnMesh::getFaceVertexColors(MColorArray& colors, const MString* name, const MColor* unset) const
{
    const MeshBody* b = read();
    const ColorSet* set = setOf(b, name);
    if (!set) {
        colors.clear();
        return missing(b, name);
    }
    const Topology& t = b->topology();
    const Buffer<MColor>& vertices = set->ofVertices(t);
    MColor* out = room(colors, size_t(t.cornerCount()));
    for (int c = 0; c < t.cornerCount(); ++c) {
        out[c] = set->ofCorner(t, c);
        if (isUnset(out[c])) {
            const bool partly = !isUnset(vertices[t.connects()[c]]);
            out[c] = partly ? MColor(0, 0, 0, 1) : unset ? *unset : unsetColor;
        }
    }
    return MS::kSuccess;
}

MStatus MFnMesh::getColors(MColorArray& colors, const MString* name, const MColor* unset) const
{
    const MeshBody* b = read();
    const ColorSet* set = setOf(b, name);
    if (!set) {
        colors.clear();
        return missing(b, name);
    }
    MColor* out = room(colors, set->table->size());
    for (const MColor& c : *set->table)
        *out++ = unset && isUnset(c) ? *unset : c;
    return MS::kSuccess;
}

MStatus MFnMesh::getColor(int id, MColor& color, const MString* name) const
{
    const MeshBody* b = read();
    const ColorSet* set = setOf(b, name);
    if (!set || !within(id, int(set->table->size())))
        return b ? MS::kInvalidParameter : MS::kFailure;
    color = (*set->table)[id];
    return MS::kSuccess;
}

MStatus MFnMesh::getColorIndex(int face, int local, int& index, const MString* name) const
{
    const MeshBody* b = read();
    const ColorSet* set = setOf(b, name);
    if (!set || !within(face, b->faceCount()) || !within(local, b->topology().faceSize(face)))
        return b ? MS::kInvalidParameter : MS::kFailure;
    index = set->id(b->topology(), b->topology().first(face) + local);
    return MS::kSuccess;
}

// writing

MStatus MFnMesh::setVertexColor(MColor& color, int vertex, MDGModifier* modifier)
{
    return setVertexColor(color, vertex, modifier, kRGBA);
}

MStatus MFnMesh::setVertexColor(MColor& color, int vertex, MDGModifier*, MColorRepresentation rep)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!within(vertex, b->vertexCount()))
        return MS::kInvalidParameter;
    const MColor c = asRepresented(color, rep);
    b->setVertexColors(setForWriting(*b, nullptr), &c, &vertex, 1);
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setVertexColors(MColorArray& colors, MIntArray& vertices, MDGModifier* modifier)
{
    return setVertexColors(colors, vertices, modifier, kRGBA);
}

MStatus MFnMesh::setVertexColors(MColorArray& colors, MIntArray& vertices, MDGModifier*, MColorRepresentation rep)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (colors.length() != vertices.length() || !allWithin(vertices, b->vertexCount()))
        return MS::kInvalidParameter;
    const int set = setForWriting(*b, nullptr);
    if (rep == kRGBA)
        b->setVertexColors(set, begin(colors), begin(vertices), colors.length());
    else
        b->setVertexColors(set, represented(colors, rep).data(), begin(vertices), colors.length());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setFaceColor(MColor& color, int face) { return setFaceColor(color, face, kRGBA); }

MStatus MFnMesh::setFaceColor(MColor& color, int face, MColorRepresentation rep)
{
    MColorArray colors(1, color);
    MIntArray faces(1, face);
    return setFaceColors(colors, faces, rep);
}

MStatus MFnMesh::setFaceColors(MColorArray& colors, MIntArray& faces) { return setFaceColors(colors, faces, kRGBA); }

MStatus MFnMesh::setFaceColors(MColorArray& colors, MIntArray& faces, MColorRepresentation rep)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (colors.length() != faces.length() || !allWithin(faces, b->faceCount()))
        return MS::kInvalidParameter;
    b->setFaceColors(setForWriting(*b, nullptr), represented(colors, rep).data(), begin(faces), colors.length());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setFaceVertexColor(MColor& color, int face, int vertex, MDGModifier* modifier)
{
    MColorArray colors(1, color);
    MIntArray faces(1, face), vertices(1, vertex);
    return setFaceVertexColors(colors, faces, vertices, modifier);
}

MStatus MFnMesh::setFaceVertexColors(MColorArray& colors, MIntArray& faces, MIntArray& vertices, MDGModifier* modifier)
{
    return setFaceVertexColors(colors, faces, vertices, modifier, kRGBA);
}

MStatus MFnMesh::setFaceVertexColors(MColorArray& colors, MIntArray& faces, MIntArray& vertices, MDGModifier*,
                                     MColorRepresentation rep)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (colors.length() != faces.length() || colors.length() != vertices.length())
        return MS::kInvalidParameter;
    std::vector<int> corners(faces.length());
    for (unsigned i = 0; i < faces.length(); ++i) {
        corners[i] = within(faces[i], b->faceCount()) ? b->topology().cornerAt(faces[i], vertices[i]) : -1;
        if (corners[i] < 0)
            return MS::kInvalidParameter;
    }
    b->setCornerColors(setForWriting(*b, nullptr), represented(colors, rep).data(), corners.data(), corners.size());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::setColors(const MColorArray& colors, const MString* name)
{
    MeshBody* b = write();
    const int set = b ? setForWriting(*b, name) : -1;
    if (set < 0)
        return b ? MS::kInvalidParameter : MS::kFailure;
    if (!b->setColorTable(set, make<Buffer<MColor>>(begin(colors), colors.length())))
        return MS::kFailure;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::assignColors(const MIntArray& ids, const MString* name)
{
    MeshBody* b = write();
    const int set = b ? colorSetOf(*b, name) : -1;
    if (set < 0)
        return b ? MS::kInvalidParameter : MS::kFailure;
    if (!b->assignColors(set, make<Buffer<int>>(begin(ids), ids.length())))
        return MS::kInvalidParameter;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::assignColor(int face, int local, int id, const MString* name)
{
    MeshBody* b = write();
    const int set = b ? colorSetOf(*b, name) : -1;
    if (set < 0 || !within(face, b->faceCount()) || !within(local, b->topology().faceSize(face)))
        return b ? MS::kInvalidParameter : MS::kFailure;
    ColorSet& s = b->writeColorSet(set);
    if (id < -1 || id >= int(s.table->size()))
        return MS::kInvalidParameter;
    if (s.layout != ColorSet::kIndexed)
        b->setColorTable(set, s.table);   // makes the ids
    ColorSet& indexed = b->writeColorSet(set);
    if (!indexed.ids)
        indexed.ids = make<Buffer<int>>(size_t(b->cornerCount()), -1);
    detach(indexed.ids)[b->topology().first(face) + local] = id;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::clearColors(const MString* name)
{
    MeshBody* b = write();
    const int set = b ? colorSetOf(*b, name) : -1;
    if (set < 0)
        return missing(b, name);
    ColorSet& s = b->writeColorSet(set);
    s.layout = ColorSet::kIndexed;
    s.table = make<Buffer<MColor>>();
    s.ids = nullptr;
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::removeVertexColors(const MIntArray& vertices)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!allWithin(vertices, b->vertexCount()))
        return MS::kInvalidParameter;
    const std::vector<MColor> unset(vertices.length(), unsetColor);
    if (b->colorSets().current >= 0)
        b->setVertexColors(b->colorSets().current, unset.data(), begin(vertices), vertices.length());
    target_->changed();
    return MS::kSuccess;
}

MStatus MFnMesh::removeFaceColors(const MIntArray& faces)
{
    MeshBody* b = write();
    if (!b)
        return MS::kFailure;
    if (!allWithin(faces, b->faceCount()))
        return MS::kInvalidParameter;
    const std::vector<MColor> unset(faces.length(), unsetColor);
    if (b->colorSets().current >= 0)
        b->setFaceColors(b->colorSets().current, unset.data(), begin(faces), faces.length());
    target_->changed();
    return MS::kSuccess;
}
