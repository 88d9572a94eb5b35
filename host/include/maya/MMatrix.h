#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MStatus.h>

class MFloatMatrix;

#define MMatrix_kTol 1.0e-10

/// A matrix of four rows of four doubles for row vectors: p * M, with the translation in the last row.
class MMatrix
{
public:
    double matrix[4][4];

    /// The identity.
    MMatrix() : matrix{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}} {}
    MMatrix(const double m[4][4]);
    MMatrix(const float m[4][4]);
    explicit MMatrix(const MFloatMatrix& m);

    /// A row or column past 3 stands for 3.
    double*       operator[](unsigned int row) { return matrix[row < 4 ? row : 3]; }
    const double* operator[](unsigned int row) const { return matrix[row < 4 ? row : 3]; }
    double&       operator()(unsigned int row, unsigned int col) { return matrix[row < 4 ? row : 3][col < 4 ? col : 3]; }
    double        operator()(unsigned int row, unsigned int col) const { return matrix[row < 4 ? row : 3][col < 4 ? col : 3]; }
    MStatus get(double m[4][4]) const;
    MStatus get(float m[4][4]) const;

    MMatrix  operator*(const MMatrix& right) const;
    MMatrix  operator*(double s) const;
    MMatrix  operator+(const MMatrix& right) const;
    MMatrix  operator-(const MMatrix& right) const;
    MMatrix& operator*=(const MMatrix& right) { return *this = *this * right; }
    MMatrix& operator*=(double s) { return *this = *this * s; }
    MMatrix& operator+=(const MMatrix& right) { return *this = *this + right; }
    MMatrix& operator-=(const MMatrix& right) { return *this = *this - right; }
    bool operator==(const MMatrix& other) const;
    bool operator!=(const MMatrix& other) const { return !(*this == other); }

    MMatrix& setToIdentity() { return *this = MMatrix(); }
    MMatrix& setToProduct(const MMatrix& left, const MMatrix& right) { return *this = left * right; }

    MMatrix transpose() const;
    /// The identity if the matrix is singular.
    MMatrix inverse() const;
    MMatrix adjoint() const;
    /// The axes made unit vectors at right angles, one after the other; the translation stays, the last column becomes
    /// 0, 0, 0, 1.
    MMatrix homogenize() const;
    double det4x4() const;
    double det3x3() const;
    bool isSingular() const;
    /// Every element within `tolerance`.
    bool isEquivalent(const MMatrix& other, double tolerance = MMatrix_kTol) const;

    static const MMatrix identity;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MMatrix operator*(N s, const MMatrix& m) { return m * static_cast<double>(s); }
std::ostream& operator<<(std::ostream& os, const MMatrix& m);
