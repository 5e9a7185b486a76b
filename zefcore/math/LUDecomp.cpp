// The dense solver: two-plane elimination, the two back substitutions and the
// column-pivoted inverse. All matrix arithmetic is double, stored as double.
#include "zefcore/math/LUDecomp.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace {

// An elimination pivot is usable when its magnitude is at least this (NaN is usable).
constexpr double kPivotMin = 0.0001;
// After elimination a diagonal element below this makes the system singular.
constexpr double kFinalDiagonalMin = 0.00001;
// Back substitution refuses a diagonal element below this, in every row above the last.
constexpr double kSolveDiagonalMin = 0.0001;
// The inverse takes a column pivot only if its magnitude is strictly greater than this.
constexpr double kInversePivotMin = 0.000001;

// Returns the flat index of row, col in a matrix of n columns, without int overflow.
inline std::ptrdiff_t at(int row, int col, int n) {
    return std::ptrdiff_t(row) * n + col;
}

// Returns buffer resized by realloc to count elements. Throws std::bad_alloc, the
// buffer left valid and untouched, if the size overflows or realloc fails.
template <class T>
T *growBuffer(T *buffer, std::size_t count) {
    if (count > SIZE_MAX / sizeof(T))
        throw std::bad_alloc();
    void *grown = std::realloc(buffer, count * sizeof(T));
    if (!grown)
        throw std::bad_alloc();
    return static_cast<T *>(grown);
}

// Returns the element count of two planes of an n * n matrix; throws std::bad_alloc
// if it cannot be represented.
std::size_t twoMatrixPlanes(int n) {
    const std::size_t nn = std::size_t(n) * std::size_t(n); // n <= INT_MAX: no overflow
    if (nn > SIZE_MAX / 2)
        throw std::bad_alloc();
    return 2 * nn;
}

// The right-hand side rules of the elimination, by element type.
void swapRhs(double *f, int k, int r, int n) {
    LUDecomp::Permut_lignes(f, n, 1, k, r, 0);
}
void swapRhs(POINT3D *f, int k, int r, int) {
    LUDecomp::Permut_POINT3D(f, k, r);
}

double eliminatedRhs(double fi, double fk, double c) {
    return fi - c * fk;
}
POINT3D eliminatedRhs(const POINT3D &fi, const POINT3D &fk, double c) {
    // Each component is rounded to float where it is stored.
    const float x = float(double(fi.x) - c * double(fk.x));
    const float y = float(double(fi.y) - c * double(fk.y));
    const float z = float(double(fi.z) - c * double(fk.z));
    return POINT3D{x, y, z};
}

// Elimination stages whose updates of the columns right of their pivots are
// applied together, row by row: every element still receives the same updates
// in the same order, each product and difference rounded to double as before.
constexpr int kStageBlock = 16;

#define ZEF_ALWAYS_INLINE inline __attribute__((always_inline))

// One version per vector width, chosen by the loader, on x86 only. Not under the
// thread sanitizer: the loader runs the chooser before that runtime is set up,
// and the instrumented chooser crashes the program at load.
#if defined(__SANITIZE_THREAD__) || !(defined(__x86_64__) || defined(__i386__))
#define ZEF_VECTOR_CLONES
#else
#define ZEF_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#endif

// Sets x[j] = x[j] - m * u[j] for j < len.
ZEF_ALWAYS_INLINE void subtractScaled1(double *__restrict x, const double *__restrict u, double m,
                                       std::ptrdiff_t len) {
    for (std::ptrdiff_t j = 0; j < len; ++j)
        x[j] = x[j] - m * u[j];
}

// Sets x[j] = (((x[j] - m0*u0[j]) - m1*u1[j]) - m2*u2[j]) - m3*u3[j] for j < len:
// four single updates in this order, each rounded, with one load and store of x.
ZEF_ALWAYS_INLINE void subtractScaled4(double *__restrict x, const double *__restrict u0,
                                       const double *__restrict u1, const double *__restrict u2,
                                       const double *__restrict u3, const double *m, std::ptrdiff_t len) {
    const double m0 = m[0], m1 = m[1], m2 = m[2], m3 = m[3];
    for (std::ptrdiff_t j = 0; j < len; ++j) {
        double v = x[j];
        v = v - m0 * u0[j];
        v = v - m1 * u1[j];
        v = v - m2 * u2[j];
        v = v - m3 * u3[j];
        x[j] = v;
    }
}

// The pending updates of one block of stages: stage k0 + t has multiplier
// mult[i * stride + t] for row i, and pivot row k0 + t.
struct StageBlock {
    double *plane;
    int n;
    int k0;
    const double *mult;
    int stride;
    const int *active; // ascending slots t of the stages that eliminated
    int count;
};

// Sets columns col .. n-1 of rows rowBegin .. rowEnd-1 to receive the first
// `count` active stages of the block, in stage order. Vector width is chosen at
// load; the arithmetic is the same on every path.
ZEF_VECTOR_CLONES void applyStages(const StageBlock &blk, int count, int col, int rowBegin, int rowEnd) {
    const std::ptrdiff_t len = blk.n - col;
    const double *pivot[kStageBlock];
    for (int s = 0; s < count; ++s)
        pivot[s] = blk.plane + at(blk.k0 + blk.active[s], col, blk.n);
    for (int i = rowBegin; i < rowEnd; ++i) {
        double *x = blk.plane + at(i, col, blk.n);
        const double *m = blk.mult + std::ptrdiff_t(i) * blk.stride;
        int s = 0;
        for (; s + 4 <= count; s += 4) {
            const double c[4] = {m[blk.active[s]], m[blk.active[s + 1]], m[blk.active[s + 2]],
                                 m[blk.active[s + 3]]};
            subtractScaled4(x, pivot[s], pivot[s + 1], pivot[s + 2], pivot[s + 3], c, len);
        }
        for (; s < count; ++s)
            subtractScaled1(x, pivot[s], m[blk.active[s]], len);
    }
}

// Eliminates the system a, b (copied into plane 0 of planes/rhs, stride n) and
// copies the triangular form back to a and b. Plane 1 holds the multipliers of
// the current block of stages. Each stage k picks its pivot and eliminates
// columns up to the block's end at once; the columns behind the block receive
// the block's stages afterwards, row by row, in stage order. A row exchange
// moves a row's pending multipliers with it, so every element sees exactly the
// sequence of values a stage-by-stage elimination gives it.
template <class Rhs>
void eliminate(double *planes, Rhs *rhs, double *a, Rhs *b, int n) {
    const std::size_t nn = std::size_t(n) * std::size_t(n);
    double *P = planes;
    double *mult = planes + nn;
    const int stride = n < kStageBlock ? n : kStageBlock; // n * stride <= n * n
    Rhs *F = rhs;
    std::memcpy(P, a, nn * sizeof(double));
    std::memcpy(F, b, std::size_t(n) * sizeof(Rhs));
    int active[kStageBlock];
    for (int k0 = 0; k0 + 1 < n; k0 += stride) {
        const int kEnd = (n - 1 - k0 < stride) ? n - 1 : k0 + stride; // stages k0 .. kEnd-1
        int count = 0;
        for (int k = k0; k < kEnd; ++k) {
            const int t = k - k0;
            double p = P[at(k, k, n)];
            int r = 0;
            if (std::fabs(p) < kPivotMin) {
                // The first row large enough, not the largest; !(x < min) lets NaN through.
                r = k + 1;
                while (r < n && std::fabs(P[at(r, k, n)]) < kPivotMin)
                    ++r;
                if (r < n) {
                    LUDecomp::Permut_lignes(P, n, n, k, r, k);
                    double *mk = mult + std::ptrdiff_t(k) * stride;
                    double *mr = mult + std::ptrdiff_t(r) * stride;
                    for (int s = 0; s < t; ++s) {
                        const double saved = mk[s];
                        mk[s] = mr[s];
                        mr[s] = saved;
                    }
                    swapRhs(F, k, r, n);
                    p = P[at(k, k, n)];
                }
            }
            if (r < n) {
                for (int i = k + 1; i < n; ++i) {
                    const double c = P[at(i, k, n)] / p;
                    mult[std::ptrdiff_t(i) * stride + t] = c;
                    for (int j = k + 1; j < kEnd; ++j)
                        P[at(i, j, n)] = P[at(i, j, n)] - c * P[at(k, j, n)];
                    P[at(i, k, n)] = 0.0;
                    F[i] = eliminatedRhs(F[i], F[k], c);
                }
                active[count++] = t;
            } else {
                // No usable pivot: the small elements below the diagonal are dropped.
                for (int i = k + 1; i < n; ++i)
                    P[at(i, k, n)] = 0.0;
            }
        }
        if (count == 0)
            continue;
        const StageBlock blk{P, n, k0, mult, stride, active, count};
        // The block's pivot rows first, each with the active stages above it.
        int above = 0;
        for (int row = k0 + 1; row < kEnd; ++row) {
            while (above < count && active[above] < row - k0)
                ++above;
            if (above > 0)
                applyStages(blk, above, kEnd, row, row + 1);
        }
        applyStages(blk, count, kEnd, kEnd, n);
    }
    std::memcpy(a, P, nn * sizeof(double));
    std::memcpy(b, F, std::size_t(n) * sizeof(Rhs));
}

// Sets, in every row i of the n * n matrix m, m[i][j] = m[i][j] - m[i][k] * q[j]
// for j in [jBegin, jEnd), k outside that range: the update of those columns by
// column k, done row by row. Vector width is chosen at load.
ZEF_VECTOR_CLONES void subtractColumnMultiples(double *m, int n, int k, const double *q, int jBegin,
                                               int jEnd) {
    const std::ptrdiff_t len = jEnd - jBegin;
    for (int i = 0; i < n; ++i) {
        double *row = m + at(i, 0, n);
        subtractScaled1(row + jBegin, q + jBegin, row[k], len);
    }
}

} // namespace

double *LUDecomp::__ligne = nullptr;
double *LUDecomp::__New_mat = nullptr;
double *LUDecomp::__New_FLOAT = nullptr;
double *LUDecomp::__New_pmat = nullptr;
POINT3D *LUDecomp::__New_POINT3D = nullptr;
double *LUDecomp::__Coeff = nullptr;
int LUDecomp::__lignem = 0;
int LUDecomp::__triangn = 0;
int LUDecomp::__ptriangn = 0;
int LUDecomp::__resoudn = 0;

POINT3D Div3D(const POINT3D *p, double d) {
    const float x = float(double(p->x) / d);
    const float y = float(double(p->y) / d);
    const float z = float(double(p->z) / d);
    return POINT3D{x, y, z};
}

void LUDecomp::Permut_lignes(double *m, int /*rows*/, int cols, int i, int j, int first) {
    if (i == j)
        return;
    if (__lignem < cols) {
        __ligne = growBuffer(__ligne, std::size_t(cols));
        __lignem = cols;
    }
    double *rowI = m + std::ptrdiff_t(i) * cols;
    double *rowJ = m + std::ptrdiff_t(j) * cols;
    for (int c = first; c < cols; ++c) {
        __ligne[c] = rowI[c];
        rowI[c] = rowJ[c];
    }
    for (int c = first; c < cols; ++c)
        rowJ[c] = __ligne[c];
}

void LUDecomp::Permut_POINT3D(POINT3D *p, int i, int j) {
    const POINT3D saved = p[i];
    p[i] = p[j];
    p[j] = saved;
}

bool LUDecomp::Triangularise_matrice(double *a, double *b, int n) {
    if (__triangn < n) {
        // The capacity moves only once both buffers have grown.
        __New_mat = growBuffer(__New_mat, twoMatrixPlanes(n));
        __New_FLOAT = growBuffer(__New_FLOAT, 2 * std::size_t(n));
        __triangn = n;
    }
    if (n < 1)
        return true;
    eliminate(__New_mat, __New_FLOAT, a, b, n);
    for (int i = 0; i < n; ++i) {
        if (std::fabs(a[at(i, i, n)]) < kFinalDiagonalMin)
            return false;
    }
    return true;
}

void LUDecomp::Triangularise_Pmatrice(double *a, POINT3D *b, int n) {
    if (__ptriangn < n) {
        __New_pmat = growBuffer(__New_pmat, twoMatrixPlanes(n));
        __New_POINT3D = growBuffer(__New_POINT3D, 2 * std::size_t(n));
        __ptriangn = n;
    }
    if (n < 1)
        return;
    eliminate(__New_pmat, __New_POINT3D, a, b, n);
}

double *LUDecomp::Resoud_matrice(const double *a, const double *b, int n, bool *ok) {
    if (__resoudn < n) {
        __Coeff = growBuffer(__Coeff, std::size_t(n));
        __resoudn = n;
    }
    if (n < 1) {
        if (ok)
            *ok = false;
        return __Coeff;
    }
    if (ok)
        *ok = true;
    double *x = __Coeff;
    // The last row is divided without test: a zero gives an infinity or a NaN.
    x[n - 1] = b[n - 1] / a[std::ptrdiff_t(n) * n - 1];
    for (int i = n - 2; i >= 0; --i) {
        double s = 0.0;
        for (int j = i + 1; j < n; ++j)
            s += a[at(i, j, n)] * x[j];
        const double d = a[at(i, i, n)];
        if (std::fabs(d) < kSolveDiagonalMin) {
            if (ok)
                *ok = false;
            return __Coeff;
        }
        x[i] = (b[i] - s) / d;
    }
    return __Coeff;
}

POINT3D *LUDecomp::Resoud_Pmatrice(const double *a, const POINT3D *b, int n, bool *ok) {
    if (n < 1) {
        if (ok)
            *ok = false;
        return nullptr;
    }
    if (ok)
        *ok = true;
    POINT3D *x = static_cast<POINT3D *>(std::calloc(std::size_t(n), sizeof(POINT3D)));
    if (!x)
        throw std::bad_alloc();
    const double last = a[std::ptrdiff_t(n) * n - 1];
    if (last == 0.0) { // exact zero test: the rows above use the tolerance instead
        if (ok)
            *ok = false;
        return x;
    }
    x[n - 1] = Div3D(&b[n - 1], last);
    for (int i = n - 2; i >= 0; --i) {
        float sx = 0.0f;
        float sy = 0.0f;
        float sz = 0.0f;
        for (int j = i + 1; j < n; ++j) {
            const double aij = a[at(i, j, n)];
            const float px = float(aij * double(x[j].x));
            const float py = float(aij * double(x[j].y));
            const float pz = float(aij * double(x[j].z));
            sx = float(double(sx) + double(px));
            sy = float(double(sy) + double(py));
            sz = float(double(sz) + double(pz));
        }
        const double d = a[at(i, i, n)];
        if (std::fabs(d) < kSolveDiagonalMin) {
            if (ok)
                *ok = false;
            return x;
        }
        const float xx = float((double(b[i].x) - double(sx)) / d);
        const float xy = float((double(b[i].y) - double(sy)) / d);
        const float xz = float((double(b[i].z) - double(sz)) / d);
        x[i] = POINT3D{xx, xy, xz};
    }
    return x;
}

double *LUDecomp::Inverse_Matrix(double *a, int n) {
    if (n < 0)
        return nullptr;
    const std::size_t nn = std::size_t(n) * std::size_t(n);
    // q[j] of a stage: a[k][j] / a[k][k]; a[k][j] changes only in column j's own
    // update, so all are taken before the columns are updated row by row.
    std::unique_ptr<double[]> q(new double[n > 0 ? std::size_t(n) : 1]);
    double *e = new double[nn];
    for (std::size_t x = 0; x < nn; ++x)
        e[x] = 0.0;
    for (int i = 0; i < n; ++i)
        e[at(i, i, n)] = 1.0;

    for (int k = 0; k < n; ++k) {
        // Largest |a[k][c]| strictly above the bound, the earliest of equals; never NaN.
        int pivot = -1;
        double best = kInversePivotMin;
        for (int c = k; c < n; ++c) {
            const double v = std::fabs(a[at(k, c, n)]);
            if (v > best) {
                best = v;
                pivot = c;
            }
        }
        if (pivot < 0) {
            delete[] e;
            return nullptr;
        }
        if (pivot != k) {
            for (int i = 0; i < n; ++i) {
                double t = a[at(i, k, n)];
                a[at(i, k, n)] = a[at(i, pivot, n)];
                a[at(i, pivot, n)] = t;
                t = e[at(i, k, n)];
                e[at(i, k, n)] = e[at(i, pivot, n)];
                e[at(i, pivot, n)] = t;
            }
        }
        for (int j = k + 1; j < n; ++j)
            q[j] = a[at(k, j, n)] / a[at(k, k, n)];
        subtractColumnMultiples(a, n, k, q.get(), k + 1, n);
        subtractColumnMultiples(e, n, k, q.get(), k + 1, n);
    }
    for (int k = n - 1; k >= 0; --k) {
        for (int j = k - 1; j >= 0; --j)
            q[j] = a[at(k, j, n)] / a[at(k, k, n)];
        subtractColumnMultiples(a, n, k, q.get(), 0, k);
        subtractColumnMultiples(e, n, k, q.get(), 0, k);
    }
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j)
            e[at(i, j, n)] /= a[at(j, j, n)];
    }
    return e;
}

void LUDecomp::trashRESNUM() {
    std::free(__ligne);
    std::free(__New_mat);
    std::free(__New_pmat);
    std::free(__New_POINT3D);
    std::free(__New_FLOAT);
    std::free(__Coeff);
    __ligne = nullptr;
    __New_mat = nullptr;
    __New_pmat = nullptr;
    __New_POINT3D = nullptr;
    __New_FLOAT = nullptr;
    __Coeff = nullptr;
    __lignem = 0;
    __triangn = 0;
    __ptriangn = 0;
    __resoudn = 0;
}
