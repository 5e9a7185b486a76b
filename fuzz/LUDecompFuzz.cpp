// Fuzz target: LUDecomp on arbitrary systems of size -2 to 12, with any doubles
// (NaN, infinities, subnormals) or shaped matrices (triangular, diagonal,
// permutations), in sequences that grow and reuse the shared work buffers and
// sometimes release them. Checked: no crash or leak, each failure reported as
// documented, the triangular form, back substitution against a reference in the
// documented order of operations, and exact inverses of diagonal and permutation
// matrices.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/math/LUDecomp.h"

#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

enum class Shape { Any, Upper, Diagonal, Permutation };

double pickDouble(FuzzInput &in) {
    if (in.range(0, 7) == 0) {
        const uint32_t lo = in.u32(), hi = in.u32();
        const uint64_t bits = uint64_t(hi) << 32 | lo;
        double d;
        std::memcpy(&d, &bits, sizeof d);
        return d;
    }
    return double(in.anyFloat());
}

// Returns an exact-size n * n matrix of the shape.
std::unique_ptr<double[]> makeMatrix(FuzzInput &in, int n, Shape shape, std::vector<int> &perm) {
    std::unique_ptr<double[]> a(new double[size_t(n * n)]);
    perm.assign(size_t(n), 0);
    for (int i = 0; i < n; ++i)
        perm[size_t(i)] = i;
    for (int i = n - 1; i > 0; --i)
        std::swap(perm[size_t(i)], perm[size_t(in.range(0, i))]);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            double v = 0.0;
            switch (shape) {
            case Shape::Any:
                v = pickDouble(in);
                break;
            case Shape::Upper:
                v = j >= i ? pickDouble(in) : 0.0;
                break;
            case Shape::Diagonal:
                v = i == j ? pickDouble(in) : 0.0;
                break;
            case Shape::Permutation:
                v = perm[size_t(i)] == j ? 1.0 : 0.0;
                break;
            }
            a[size_t(i * n + j)] = v;
        }
    return a;
}

// Reference back substitution of a double system, in the documented order.
void checkSolve(const double *a, const double *b, int n, const double *x, bool ok) {
    bool wantOk = true;
    std::vector<double> want(static_cast<size_t>(n));
    want[size_t(n - 1)] = b[n - 1] / a[n * n - 1];
    int lowestSolved = n - 1;
    for (int i = n - 2; i >= 0; --i) {
        double s = 0.0;
        for (int j = i + 1; j < n; ++j)
            s += a[i * n + j] * want[size_t(j)];
        if (std::fabs(a[i * n + i]) < 0.0001) {
            wantOk = false;
            break;
        }
        want[size_t(i)] = (b[i] - s) / a[i * n + i];
        lowestSolved = i;
    }
    FUZZ_CHECK(ok == wantOk);
    for (int i = lowestSolved; i < n; ++i)
        FUZZ_CHECK(sameValue(x[i], want[size_t(i)]));
}

// Reference back substitution of a point system: products and sums rounded to float.
void checkPointSolve(const double *a, const POINT3D *b, int n, const POINT3D *x, bool ok) {
    std::vector<POINT3D> want(size_t(n), POINT3D{0.0f, 0.0f, 0.0f});
    bool wantOk = a[n * n - 1] != 0.0;
    int lowestSolved = n;
    if (wantOk) {
        const double d = a[n * n - 1];
        want[size_t(n - 1)] = POINT3D{float(b[n - 1].x / d), float(b[n - 1].y / d), float(b[n - 1].z / d)};
        lowestSolved = n - 1;
        for (int i = n - 2; i >= 0; --i) {
            float s[3] = {0.0f, 0.0f, 0.0f};
            for (int j = i + 1; j < n; ++j) {
                const float *xj = &want[size_t(j)].x;
                for (int c = 0; c < 3; ++c) {
                    const float product = float(a[i * n + j] * xj[c]);
                    s[c] = float(double(s[c]) + product);
                }
            }
            const double di = a[i * n + i];
            if (std::fabs(di) < 0.0001) {
                wantOk = false;
                break;
            }
            const float *bi = &b[i].x;
            want[size_t(i)] = POINT3D{float((double(bi[0]) - s[0]) / di), float((double(bi[1]) - s[1]) / di),
                                      float((double(bi[2]) - s[2]) / di)};
            lowestSolved = i;
        }
    }
    FUZZ_CHECK(ok == wantOk);
    for (int i = 0; i < n; ++i) {
        const POINT3D &w = i >= lowestSolved ? want[size_t(i)] : POINT3D{0.0f, 0.0f, 0.0f};
        FUZZ_CHECK(sameValue(x[i].x, w.x) && sameValue(x[i].y, w.y) && sameValue(x[i].z, w.z));
    }
}

// Below the diagonal all zero; the result false exactly if a diagonal element is
// below 0.00001 (a NaN passes).
void checkTriangular(const double *a, int n, bool result) {
    bool small = false;
    for (int i = 0; i < n; ++i) {
        small = small || std::fabs(a[i * n + i]) < 0.00001;
        for (int j = 0; j < i; ++j)
            FUZZ_CHECK(a[i * n + j] == 0.0);
    }
    FUZZ_CHECK(result == !small);
}

void step(FuzzInput &in) {
    const int n = in.range(-2, 12);
    const Shape shape = static_cast<Shape>(in.range(0, 3));
    const int m = n > 0 ? n : 0;
    std::vector<int> perm;
    std::unique_ptr<double[]> a = makeMatrix(in, m, shape, perm);
    switch (in.range(0, 4)) {
    case 0: {
        std::unique_ptr<double[]> b(new double[size_t(m == 0 ? 1 : m)]);
        for (int i = 0; i < m; ++i)
            b[size_t(i)] = pickDouble(in);
        std::vector<double> upper(a.get(), a.get() + m * m);
        const bool result = LUDecomp::Triangularise_matrice(a.get(), b.get(), n);
        if (n < 1) {
            FUZZ_CHECK(result);
            bool ok = true;
            LUDecomp::Resoud_matrice(a.get(), b.get(), n, &ok);
            FUZZ_CHECK(!ok);
            break;
        }
        checkTriangular(a.get(), n, result);
        if (shape == Shape::Upper) { // finite, nothing to eliminate: the values stay
            bool usable = true;
            for (int k = 0; k + 1 < n; ++k)
                usable = usable && !(std::fabs(upper[size_t(k * n + k)]) < 0.0001);
            for (double v : upper)
                usable = usable && std::isfinite(v);
            for (int i = 0; usable && i < n * n; ++i)
                FUZZ_CHECK(upper[size_t(i)] == a[size_t(i)]);
        }
        bool ok = false;
        const double *x = LUDecomp::Resoud_matrice(a.get(), b.get(), n, &ok);
        FUZZ_CHECK(x != nullptr);
        checkSolve(a.get(), b.get(), n, x, ok);
        break;
    }
    case 1: {
        std::unique_ptr<POINT3D[]> b(new POINT3D[size_t(m == 0 ? 1 : m)]);
        for (int i = 0; i < m; ++i)
            b[size_t(i)] = POINT3D{in.anyFloat(), in.anyFloat(), in.anyFloat()};
        LUDecomp::Triangularise_Pmatrice(a.get(), b.get(), n);
        bool ok = true;
        POINT3D *x = LUDecomp::Resoud_Pmatrice(a.get(), b.get(), n, &ok);
        if (n < 1) {
            FUZZ_CHECK(!ok && x == nullptr);
            break;
        }
        FUZZ_CHECK(x != nullptr);
        checkPointSolve(a.get(), b.get(), n, x, ok);
        std::free(x);
        break;
    }
    case 2: {
        std::vector<double> original(a.get(), a.get() + m * m);
        double *inv = LUDecomp::Inverse_Matrix(a.get(), n);
        if (n <= 0)
            FUZZ_CHECK((inv == nullptr) == (n < 0));
        if (inv && shape == Shape::Permutation) {
            for (int i = 0; i < n; ++i)
                for (int j = 0; j < n; ++j)
                    FUZZ_CHECK(inv[i * n + j] == original[size_t(j * n + i)]);
        }
        if (shape == Shape::Diagonal && n > 0) {
            bool usable = true, finite = true;
            for (int i = 0; i < n; ++i) {
                const double d = original[size_t(i * n + i)];
                usable = usable && std::fabs(d) > 0.000001;
                finite = finite && std::isfinite(d);
            }
            FUZZ_CHECK((inv != nullptr) == usable);
            if (inv && finite)
                for (int i = 0; i < n; ++i)
                    for (int j = 0; j < n; ++j)
                        FUZZ_CHECK(inv[i * n + j] == (i == j ? 1.0 / original[size_t(i * n + i)] : 0.0));
        }
        delete[] inv;
        break;
    }
    case 3: { // row swaps, of a matrix and of points
        if (n < 1)
            break;
        const int i = in.range(0, n - 1), j = in.range(0, n - 1), first = in.range(0, n - 1);
        std::vector<double> before(a.get(), a.get() + n * n);
        LUDecomp::Permut_lignes(a.get(), n, n, i, j, first);
        for (int c = 0; c < n; ++c) {
            const bool moved = c >= first;
            FUZZ_CHECK(sameValue(a[size_t(i * n + c)], before[size_t((moved ? j : i) * n + c)]));
            FUZZ_CHECK(sameValue(a[size_t(j * n + c)], before[size_t((moved ? i : j) * n + c)]));
        }
        std::unique_ptr<POINT3D[]> p(new POINT3D[size_t(n)]);
        for (int k = 0; k < n; ++k)
            p[size_t(k)] = POINT3D{float(k), float(-k), 0.5f};
        LUDecomp::Permut_POINT3D(p.get(), i, j);
        FUZZ_CHECK(p[size_t(i)].x == float(j) && p[size_t(j)].x == float(i));
        break;
    }
    default:
        LUDecomp::trashRESNUM();
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    for (int steps = 0; !in.empty() && steps < 40; ++steps)
        step(in);
    return 0;
}
