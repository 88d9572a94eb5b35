// Curves and surfaces as data: bodies on shared CV and knot buffers, the shells that travel over connections, and the
// interfaces by which function sets reach the curve or surface of a shape node.
//
// CVs are homogeneous, (wx, wy, wz, w), so that they go through matrices like any point; w is 1 if the geometry is not
// rational. A direction has CVs + degree - 1 knots. The last `degree` CVs of a periodic direction repeat the first, and
// writers keep them equal.
#pragma once
#include <string>

#include "data/data.h"

namespace mirk {

enum class NurbsForm { open = 1, closed = 2, periodic = 3 };   // the numbers of MFnNurbsCurve::Form

class CurveBody : public GeometryBody
{
public:
    int       degree   = 0;
    NurbsForm form     = NurbsForm::open;
    bool      is2D     = false;
    bool      rational = false;
    Ref<Buffer<MPoint>>     cvs   = make<Buffer<MPoint>>();       ///< never null; empty in fresh data
    Ref<Buffer<double>> knots = make<Buffer<double>>();

    int cvCount() const { return int(cvs->size()); }
    /// CVs without those that repeat the first ones of a periodic curve.
    int uniqueCvCount() const { return form == NurbsForm::periodic ? cvCount() - degree : cvCount(); }
    bool empty() const { return cvs->empty(); }
};

class SurfaceBody : public GeometryBody
{
public:
    int       degreeU = 0, degreeV = 0;
    NurbsForm formU = NurbsForm::open, formV = NurbsForm::open;
    bool      rational = false;
    int       cvsU = 0, cvsV = 0;
    Ref<Buffer<MPoint>>     cvs    = make<Buffer<MPoint>>();       ///< cvsU * cvsV, V running fastest; never null
    Ref<Buffer<double>> knotsU = make<Buffer<double>>(), knotsV = make<Buffer<double>>();

    int  uniqueU() const { return formU == NurbsForm::periodic ? cvsU - degreeU : cvsU; }
    int  uniqueV() const { return formV == NurbsForm::periodic ? cvsV - degreeV : cvsV; }
    bool empty() const { return cvs->empty(); }
};

class CurveData : public GeometryData
{
public:
    CurveData() : body(make<CurveBody>()) {}
    explicit CurveData(Ref<CurveBody> b) : body(std::move(b)) {}
    MFnData::Type type() const override { return MFnData::kNurbsCurve; }
    MFn::Type     apiType() const override { return MFn::kNurbsCurveData; }
    bool          hasFn(MFn::Type t) const override { return t == MFn::kNurbsCurve || GeometryData::hasFn(t); }
    Ref<Data>     share() const override { return make<CurveData>(make<CurveBody>(*body)); }
    GeometryBody& geometry() const override { return *body; }
    Ref<GeometryData> transformedView() const override;

    Ref<CurveBody> body;   ///< never null
};

class SurfaceData : public GeometryData
{
public:
    SurfaceData() : body(make<SurfaceBody>()) {}
    explicit SurfaceData(Ref<SurfaceBody> b) : body(std::move(b)) {}
    MFnData::Type type() const override { return MFnData::kNurbsSurface; }
    MFn::Type     apiType() const override { return MFn::kNurbsSurfaceData; }
    bool          hasFn(MFn::Type t) const override { return t == MFn::kNurbsSurface || GeometryData::hasFn(t); }
    Ref<Data>     share() const override { return make<SurfaceData>(make<SurfaceBody>(*body)); }
    GeometryBody& geometry() const override { return *body; }
    Ref<GeometryData> transformedView() const override;

    Ref<SurfaceBody> body;   ///< never null
};

/// What a curve shape node implements (found by dynamic_cast on the node object). A null result means no curve.
struct CurveSource
{
    virtual ~CurveSource() = default;
    virtual Ref<CurveData> curveForRead() = 0;
    virtual Ref<CurveData> curveForWrite() = 0;   ///< a shell that the shape alone holds
    virtual void           curveChanged() = 0;    ///< after writing: what depends on the shape is dirty
};

struct SurfaceSource
{
    virtual ~SurfaceSource() = default;
    virtual Ref<SurfaceData> surfaceForRead() = 0;
    virtual Ref<SurfaceData> surfaceForWrite() = 0;
    virtual void             surfaceChanged() = 0;
};

/// How a shape is made under a transform: given the parent (null for a new one) and the geometry, returns the node that
/// `create` is to return and hands the shape out, or null if the parent is no transform. Set by the DAG; null without one.
extern Ref<Object> (*createCurveShape)(Object* parent, Ref<CurveData> curve, Ref<Object>& shape);
extern Ref<Object> (*createSurfaceShape)(Object* parent, Ref<SurfaceData> surface, Ref<Object>& shape);

/// Makes a body from checked parts, or returns what is wrong: counts, degree, form, knots that decrease or rise nowhere,
/// numbers that are not finite, a weight that is not positive. A form that says periodic has its last CVs made equal to
/// the first.
std::string buildCurve(CurveBody& body, const MPoint* cvs, size_t cvCount, const double* knots, size_t knotCount, int degree,
                       NurbsForm form, bool is2D, bool rational);
std::string buildSurface(SurfaceBody& body, const MPoint* cvs, size_t cvCount, const double* knotsU, size_t knotCountU,
                         const double* knotsV, size_t knotCountV, int degreeU, int degreeV, NurbsForm formU,
                         NurbsForm formV, bool rational);

/// Makes the repeated CVs of periodic directions equal to the first ones again; call after writing CVs.
void syncPeriodic(CurveBody& body);
void syncPeriodic(SurfaceBody& body);

/// Writes one CV and those of a periodic direction that repeat it. `cvs` is the body's detached buffer; the weight of
/// geometry that is not rational stays 1.
void writeCv(const CurveBody& body, MPoint* cvs, int index, MPoint p);
void writeCv(const SurfaceBody& body, MPoint* cvs, int u, int v, MPoint p);

/// The matrix into the CVs, and the identity in its place: what copying a transformed shell does.
void bakeMatrix(CurveBody& body);
void bakeMatrix(SurfaceBody& body);

}  // namespace mirk
