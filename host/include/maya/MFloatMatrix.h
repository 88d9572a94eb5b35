#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MStatus.h>

class MMatrix;

#define MFloatMatrix_kTol 1.0e-5F

/// A matrix of four rows of four floats for row vectors: p * M, with the translation in the last row.
class MFloatMatrix
{
public:
    float matrix[4][4];

    /// The identity.
    MFloatMatrix() : matrix{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}} {}
    MFloatMatrix(const double m[4][4]);
    MFloatMatrix(const float m[4][4]);
    explicit MFloatMatrix(const MMatrix& m);

    /// A row or column past 3 stands for 3.
    float*       operator[](unsigned int row) { return matrix[row < 4 ? row : 3]; }
    const float* operator[](unsigned int row) const { return matrix[row < 4 ? row : 3]; }
    float&       operator()(unsigned int row, unsigned int col) { return matrix[row < 4 ? row : 3][col < 4 ? col : 3]; }
    float        operator()(unsigned int row, unsigned int col) const { return matrix[row < 4 ? row : 3][col < 4 ? col : 3]; }
    MStatus get(double m[4][4]) const;
    MStatus get(float m[4][4]) const;

    MFloatMatrix  operator*(const MFloatMatrix& right) const;
    MFloatMatrix  operator*(float s) const;
    MFloatMatrix  operator+(const MFloatMatrix& right) const;
    MFloatMatrix  operator-(const MFloatMatrix& right) const;
    MFloatMatrix& operator*=(const MFloatMatrix& right) { return *this = *this * right; }
    MFloatMatrix& operator*=(float s) { return *this = *this * s; }
    MFloatMatrix& operator+=(const MFloatMatrix& right) { return *this = *this + right; }
    MFloatMatrix& operator-=(const MFloatMatrix& right) { return *this = *this - right; }
    bool operator==(const MFloatMatrix& other) const;
    bool operator!=(const MFloatMatrix& other) const { return !(*this == other); }

    MFloatMatrix& setToIdentity() { return *this = MFloatMatrix(); }
    MFloatMatrix& setToProduct(const MFloatMatrix& left, const MFloatMatrix& right) { return *this = left * right; }

    MFloatMatrix transpose() const;
    /// The identity if the matrix is singular.
    MFloatMatrix inverse() const;
    MFloatMatrix adjoint() const;
    /// The axes made unit vectors at right angles, one after the other; the translation stays, the last column becomes
    /// 0, 0, 0, 1.
    MFloatMatrix homogenize() const;
    float det4x4() const;
    float det3x3() const;
    bool isSingular() const;
    /// Every element within `tolerance`.
    bool isEquivalent(const MFloatMatrix& other, float tolerance = MFloatMatrix_kTol) const;

    static const MFloatMatrix identity;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MFloatMatrix operator*(N s, const MFloatMatrix& m) { return m * static_cast<float>(s); }
std::ostream& operator<<(std::ostream& os, const MFloatMatrix& m);
