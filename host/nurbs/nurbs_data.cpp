#include "nurbs/nurbs_data.h"

#include <cmath>

#include <maya/MMatrix.h>

#include "nurbs/basis.h"

namespace mirk {

Ref<Object> (*createCurveShape)(Object*, Ref<CurveData>, Ref<Object>&) = nullptr;
Ref<Object> (*createSurfaceShape)(Object*, Ref<SurfaceData>, Ref<Object>&) = nullptr;

namespace {

std::string checkDirection(const char* what, size_t cvCount, const double* knots, size_t knotCount, int degree,
                           NurbsForm form)
{
    const std::string direction = what;
    if (degree < 1 || degree > nurbs::kMaxDegree)
        return direction + "degree " + std::to_string(degree) + " is not between 1 and " + std::to_string(nurbs::kMaxDegree);
    if (form != NurbsForm::open && form != NurbsForm::closed && form != NurbsForm::periodic)
        return direction + "form " + std::to_string(int(form)) + " is none of open, closed, periodic";
    const size_t least = form == NurbsForm::periodic ? size_t(2 * degree) : size_t(degree + 1);
    if (cvCount < least)
        return direction + "degree " + std::to_string(degree) + " needs at least " + std::to_string(least) + " CVs, not " +
               std::to_string(cvCount);
    if (knotCount != cvCount + size_t(degree) - 1)
        return direction + std::to_string(cvCount) + " CVs of degree " + std::to_string(degree) + " need " +
               std::to_string(cvCount + size_t(degree) - 1) + " knots, not " + std::to_string(knotCount);
    for (size_t i = 0; i < knotCount; ++i) {
        if (!std::isfinite(knots[i]))
            return direction + "knot " + std::to_string(i) + " is not a finite number";
        if (i && knots[i] < knots[i - 1])
            return direction + "knot " + std::to_string(i) + " is below the one before it";
    }
    if (!(knots[size_t(degree) - 1] < knots[cvCount - 1]))
        return direction + "knots give an empty domain";
    return {};
}

std::string checkCvs(const MPoint* cvs, size_t count, bool rational)
{
    for (size_t i = 0; i < count; ++i) {
        const MPoint& p = cvs[i];
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
            return "CV " + std::to_string(i) + " is not finite";
        if (rational && !(p.w > 0 && std::isfinite(p.w)))
            return "CV " + std::to_string(i) + " has a weight that is not positive";
    }
    return {};
}

Ref<Buffer<MPoint>> copyCvs(const MPoint* cvs, size_t count, bool rational, bool flat)
{
    auto buffer = make<Buffer<MPoint>>(cvs, count);
    for (MPoint& p : *buffer) {
        if (!rational)
            p.w = 1;
        if (flat)
            p.z = 0;
    }
    return buffer;
}

void transformCvs(Ref<Buffer<MPoint>>& cvs, const double matrix[4][4])
{
    const MMatrix m(matrix);
    for (MPoint& p : detach(cvs))
        p = p * m;
}

void resetMatrix(GeometryBody& body)
{
    MMatrix::identity.get(body.matrix);
    body.identity = true;
}

}  // namespace

Ref<GeometryData> CurveData::transformedView() const
{
    auto view = make<CurveData>(body);
    view->transformed = true;
    return view;
}

Ref<GeometryData> SurfaceData::transformedView() const
{
    auto view = make<SurfaceData>(body);
    view->transformed = true;
    return view;
}

std::string buildCurve(CurveBody& body, const MPoint* cvs, size_t cvCount, const double* knots, size_t knotCount,
                       int degree, NurbsForm form, bool is2D, bool rational)
{
    std::string why = checkDirection("", cvCount, knots, knotCount, degree, form);
    if (why.empty())
        why = checkCvs(cvs, cvCount, rational);
    if (!why.empty())
        return why;
    body.degree = degree;
    body.form = form;
    body.is2D = is2D;
    body.rational = rational;
    body.cvs = copyCvs(cvs, cvCount, rational, is2D);
    body.knots = make<Buffer<double>>(knots, knotCount);
    syncPeriodic(body);
    return {};
}

std::string buildSurface(SurfaceBody& body, const MPoint* cvs, size_t cvCount, const double* knotsU, size_t knotCountU,
                         const double* knotsV, size_t knotCountV, int degreeU, int degreeV, NurbsForm formU,
                         NurbsForm formV, bool rational)
{
    if (knotCountU < size_t(std::max(degreeU, 1)) || knotCountV < size_t(std::max(degreeV, 1)))
        return "too few knots";
    const size_t cvsU = knotCountU + 1 - size_t(std::max(degreeU, 1)), cvsV = knotCountV + 1 - size_t(std::max(degreeV, 1));
    std::string  why = checkDirection("U: ", cvsU, knotsU, knotCountU, degreeU, formU);
    if (why.empty())
        why = checkDirection("V: ", cvsV, knotsV, knotCountV, degreeV, formV);
    if (why.empty() && cvsU * cvsV != cvCount)
        why = "knots and degrees make " + std::to_string(cvsU) + " x " + std::to_string(cvsV) + " CVs, not " +
              std::to_string(cvCount);
    if (why.empty())
        why = checkCvs(cvs, cvCount, rational);
    if (!why.empty())
        return why;
    body.degreeU = degreeU;
    body.degreeV = degreeV;
    body.formU = formU;
    body.formV = formV;
    body.rational = rational;
    body.cvsU = int(cvsU);
    body.cvsV = int(cvsV);
    body.cvs = copyCvs(cvs, cvCount, rational, false);
    body.knotsU = make<Buffer<double>>(knotsU, knotCountU);
    body.knotsV = make<Buffer<double>>(knotsV, knotCountV);
    syncPeriodic(body);
    return {};
}

void syncPeriodic(CurveBody& body)
{
    if (body.form != NurbsForm::periodic)
        return;
    Buffer<MPoint>& cvs = detach(body.cvs);
    for (int i = body.uniqueCvCount(); i < body.cvCount(); ++i)
        cvs[size_t(i)] = cvs[size_t(i - body.uniqueCvCount())];
}

void syncPeriodic(SurfaceBody& body)
{
    if (body.formU != NurbsForm::periodic && body.formV != NurbsForm::periodic)
        return;
    Buffer<MPoint>& cvs = detach(body.cvs);
    const int       uniqueU = body.uniqueU(), uniqueV = body.uniqueV();
    for (int u = 0; u < body.cvsU; ++u)
        for (int v = 0; v < body.cvsV; ++v)
            if (u >= uniqueU || v >= uniqueV)
                cvs[size_t(u) * size_t(body.cvsV) + size_t(v)] =
                    cvs[size_t(u % uniqueU) * size_t(body.cvsV) + size_t(v % uniqueV)];
}

void writeCv(const CurveBody& body, MPoint* cvs, int index, MPoint p)
{
    if (!body.rational)
        p.w = 1;
    const int unique = body.uniqueCvCount();
    for (int i = index % unique; i < body.cvCount(); i += unique)
        cvs[i] = p;
}

void writeCv(const SurfaceBody& body, MPoint* cvs, int u, int v, MPoint p)
{
    if (!body.rational)
        p.w = 1;
    const int uniqueU = body.uniqueU(), uniqueV = body.uniqueV();
    for (int i = u % uniqueU; i < body.cvsU; i += uniqueU)
        for (int j = v % uniqueV; j < body.cvsV; j += uniqueV)
            cvs[size_t(i) * size_t(body.cvsV) + size_t(j)] = p;
}

void bakeMatrix(CurveBody& body)
{
    if (!body.identity)
        transformCvs(body.cvs, body.matrix);
    resetMatrix(body);
}

void bakeMatrix(SurfaceBody& body)
{
    if (!body.identity)
        transformCvs(body.cvs, body.matrix);
    resetMatrix(body);
}

}  // namespace mirk
