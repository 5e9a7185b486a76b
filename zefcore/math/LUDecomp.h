/// \file
/// LUDecomp: dense square systems A x = b of any size n, in double precision,
/// by Gaussian elimination with its right-hand side and back substitution, and
/// matrix inversion by column operations. Matrices are n * n doubles in row
/// order: row i, column j at a[i * n + j]. POINT3D right-hand sides are single
/// precision. The class keeps shared, unprotected work buffers: one thread at a time.
#pragma once

#include "zefcore/ZEFExport.h"

#include <type_traits>

/// Three single-precision floats x, y, z, in this order: the point right-hand side.
struct POINT3D {
    float x; ///< the first coordinate
    float y; ///< the second coordinate
    float z; ///< the third coordinate
};
static_assert(sizeof(POINT3D) == 3 * sizeof(float), "POINT3D is three packed floats");
static_assert(std::is_standard_layout<POINT3D>::value && std::is_trivial<POINT3D>::value,
              "POINT3D is a plain record");

/// Returns *p with each component divided by d and stored as a float. No test of d.
ZEFCORE_API POINT3D Div3D(const POINT3D *p, double d);

/// Dense square linear systems and matrix inversion in double precision, as static operations
/// sharing work buffers: one thread at a time.
class ZEFCORE_API LUDecomp {
public:
    LUDecomp() = delete;

    /// Sets a to an upper triangular matrix and b to the matching right-hand side,
    /// eliminating column by column with the first row whose |element| >= 0.0001 as
    /// pivot (not the largest); a column without one is zeroed below the diagonal.
    /// Returns false if a diagonal element ends below 0.00001 (equality and NaN pass);
    /// n < 1: true. a and b are overwritten whatever the result.
    static bool Triangularise_matrice(double *a, double *b, int n);

    /// Returns the solution of the upper triangular system: the class's own buffer,
    /// valid until the next Resoud_matrice or trashRESNUM. Sets *ok false, and returns
    /// the rows solved so far, if a diagonal element above the last row is below 0.0001;
    /// the last row is divided without test. Sums are accumulated in double.
    /// n < 1: *ok false, nothing read, the buffer returned as it is (possibly null).
    static double *Resoud_matrice(const double *a, const double *b, int n, bool *ok);

    /// Sets a and b as Triangularise_matrice does, for point right-hand sides.
    /// Precision: each updated component is stored as a float. No final test.
    static void Triangularise_Pmatrice(double *a, POINT3D *b, int n);

    /// Returns a new array of n points from calloc, owned by the caller (free), also
    /// when *ok is false. Sets *ok false with an all-zero result if the last diagonal
    /// element is exactly 0, and with the rows solved so far if one above it is below
    /// 0.0001. Precision: products and sums are rounded to float at each step.
    /// n < 1: *ok false, returns null.
    static POINT3D *Resoud_Pmatrice(const double *a, const POINT3D *b, int n, bool *ok);

    /// Returns the inverse as a new n * n array (delete[]), or null if a row offers no
    /// column pivot above 0.000001. a is overwritten in all cases. n = 0: a non-null
    /// empty array; n < 0: null.
    static double *Inverse_Matrix(double *a, int n);

    /// Swaps elements first .. cols - 1 of rows i and j of a matrix with cols columns;
    /// rows is not read. i == j: returns at once. Indexes are not tested.
    static void Permut_lignes(double *m, int rows, int cols, int i, int j, int first);

    /// Swaps p[i] and p[j]. Indexes are not tested.
    static void Permut_POINT3D(POINT3D *p, int i, int j);

    /// Releases the six work buffers and sets their pointers and capacities to 0.
    static void trashRESNUM();

private:
    /// Work buffers: they grow with realloc when their capacity is below n, never
    /// shrink, and hold planes packed with the stride of the current call's n.
    /// On allocation failure std::bad_alloc is thrown and the capacities are unchanged.
    static double *__ligne;        ///< __lignem doubles
    static double *__New_mat;      ///< 2 * __triangn * __triangn doubles
    static double *__New_FLOAT;    ///< 2 * __triangn doubles
    static double *__New_pmat;     ///< 2 * __ptriangn * __ptriangn doubles
    static POINT3D *__New_POINT3D; ///< 2 * __ptriangn points
    static double *__Coeff;        ///< __resoudn doubles
    static int __lignem;
    static int __triangn;
    static int __ptriangn;
    static int __resoudn;
};
