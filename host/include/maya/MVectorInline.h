// The inline parts of vectors and points that need all four classes.
#pragma once
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

inline MVector::MVector(const MPoint& p) : x(p.x), y(p.y), z(p.z) {}
inline MVector::MVector(const MFloatVector& v) : x(v.x), y(v.y), z(v.z) {}
inline MVector::MVector(const MFloatPoint& p) : x(p.x), y(p.y), z(p.z) {}

inline MFloatVector::MFloatVector(const MVector& v) : x(float(v.x)), y(float(v.y)), z(float(v.z)) {}
inline MFloatVector::MFloatVector(const MPoint& p) : x(float(p.x)), y(float(p.y)), z(float(p.z)) {}
inline MFloatVector::MFloatVector(const MFloatPoint& p) : x(p.x), y(p.y), z(p.z) {}

inline MPoint::MPoint(const MVector& v) : x(double(v.x)), y(double(v.y)), z(double(v.z)) {}
inline MPoint::MPoint(const MFloatVector& v) : x(v.x), y(v.y), z(v.z) {}
inline MPoint::MPoint(const MFloatPoint& p) : x(double(p.x)), y(double(p.y)), z(double(p.z)), w(double(p.w)) {}
inline MVector MPoint::operator-(const MPoint& o) const { return {x - o.x, y - o.y, z - o.z}; }
inline MPoint MPoint::operator-(const MVector& v) const { return {x - v.x, y - v.y, z - v.z, w}; }
inline MPoint MPoint::operator+(const MVector& v) const { return {x + v.x, y + v.y, z + v.z, w}; }
inline MPoint& MPoint::operator+=(const MVector& v) { x += v.x; y += v.y; z += v.z; return *this; }
inline MPoint& MPoint::operator-=(const MVector& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
inline double MPoint::distanceTo(const MPoint& other) const { return (*this - other).length(); }
inline bool MPoint::isEquivalent(const MPoint& other, double tolerance) const { return distanceTo(other) <= tolerance; }

inline MFloatPoint::MFloatPoint(const MVector& v) : x(float(v.x)), y(float(v.y)), z(float(v.z)) {}
inline MFloatPoint::MFloatPoint(const MFloatVector& v) : x(v.x), y(v.y), z(v.z) {}
inline MFloatPoint::MFloatPoint(const MPoint& p) : x(float(p.x)), y(float(p.y)), z(float(p.z)), w(float(p.w)) {}
inline MFloatVector MFloatPoint::operator-(const MFloatPoint& o) const { return {x - o.x, y - o.y, z - o.z}; }
inline MFloatPoint MFloatPoint::operator-(const MFloatVector& v) const { return {x - v.x, y - v.y, z - v.z, w}; }
inline MFloatPoint MFloatPoint::operator+(const MFloatVector& v) const { return {x + v.x, y + v.y, z + v.z, w}; }
inline MFloatPoint& MFloatPoint::operator+=(const MFloatVector& v) { x += v.x; y += v.y; z += v.z; return *this; }
inline MFloatPoint& MFloatPoint::operator-=(const MFloatVector& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
inline float MFloatPoint::distanceTo(const MFloatPoint& other) const { return (*this - other).length(); }
inline bool MFloatPoint::isEquivalent(const MFloatPoint& other, float tolerance) const { return distanceTo(other) <= tolerance; }
