// Fuzz target: LUDecomp on systems of size -2 to 12 with any doubles (NaN, infinities,
// subnormals) or shaped matrices (upper triangular, diagonal, permutation), in sequences
// that grow, reuse and sometimes release the shared work buffers. Checked: no crash or
// leak, failures reported as documented, the triangular form, the last unknown, exact
// inverses of diagonal and permutation matrices, row swaps.
#include "FuzzInput.h"
#include "zefcore/math/LUDecomp.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

enum Shape { Any, Upper, Diagonal, Permutation };

double pickDouble(FuzzInput &in) {
    const int kind = in.range(0, 7), step = in.range(-1, 1);
    if (kind == 1) { // a bound of the solver or its neighbouring double
        const double bound = in.flag() ? 0.0001 : in.flag() ? 0.00001 : 0.000001;
        return step == 0 ? bound : std::nextafter(bound, double(step));
    }
    if (kind != 0)
        return double(in.anyFloat());
    const uint64_t high = in.u32();
    return FuzzInput::bitCast<double>(high << 32 | in.u32());
}

void step(FuzzInput &in) {
    const int n = in.range(-2, 12), shape = in.range(0, 3), m = std::max(n, 0);
    std::vector<int> perm(static_cast<size_t>(m));
    std::iota(perm.begin(), perm.end(), 0);
    for (int i = m - 1; i > 0; --i)
        std::swap(perm[size_t(i)], perm[size_t(in.range(0, i))]);
    std::vector<double> a(size_t(m * m)), b(static_cast<size_t>(m)); // exact sizes, for the address sanitizer
    for (int i = 0; i < m * m; ++i) {
        const int r = i / m, c = i % m;
        const bool drawn = shape == Any || (shape == Upper && c >= r) || (shape == Diagonal && c == r);
        a[size_t(i)] = drawn ? pickDouble(in) : shape == Permutation && perm[size_t(r)] == c ? 1.0 : 0.0;
    }
    for (double &v : b)
        v = pickDouble(in);
    const std::vector<double> original = a;
    const auto pivotsUsable = [n](const std::vector<double> &v) { // above the last row none below 0.0001
        for (int i = 0; i + 1 < n; ++i)
            if (std::fabs(v[size_t(i * n + i)]) < 0.0001)
                return false;
        return true;
    };
    bool ok = true;
    switch (in.range(0, 4)) {
    case 0: {
        const bool result = LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
        bool small = false;
        for (int i = 0; i < m; ++i) {
            small = small || std::fabs(a[size_t(i * n + i)]) < 0.00001;
            for (int j = 0; j < i; ++j)
                FUZZ_CHECK(a[size_t(i * n + j)] == 0.0);
        }
        FUZZ_CHECK(result == !small);
        // Finite and upper triangular with usable pivots: nothing to eliminate, the values stay.
        if (shape == Upper && pivotsUsable(original) &&
            std::all_of(original.begin(), original.end(), [](double v) { return std::isfinite(v); }))
            FUZZ_CHECK(a == original);
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        FUZZ_CHECK(n < 1 ? !ok
                         : x && ok == pivotsUsable(a) && sameValue(x[n - 1], b[size_t(n - 1)] / a.back()));
        break;
    }
    case 1: {
        std::vector<POINT3D> p(static_cast<size_t>(m));
        for (POINT3D &q : p)
            q = POINT3D{in.anyFloat(), in.anyFloat(), in.anyFloat()};
        LUDecomp::Triangularise_Pmatrice(a.data(), p.data(), n);
        POINT3D *x = LUDecomp::Resoud_Pmatrice(a.data(), p.data(), n, &ok);
        FUZZ_CHECK(n < 1 ? !ok && !x : x && ok == (a.back() != 0.0 && pivotsUsable(a)));
        for (int i = 0; n >= 1 && a.back() == 0.0 && i < n; ++i) // an exact zero at the end: all zero
            FUZZ_CHECK(x[i].x == 0.0f && x[i].y == 0.0f && x[i].z == 0.0f);
        std::free(x);
        break;
    }
    case 2: {
        double *inv = LUDecomp::Inverse_Matrix(a.data(), n);
        FUZZ_CHECK(n > 0 || (inv == nullptr) == (n < 0));
        bool usable = true, finite = true;
        for (int i = 0; i < m; ++i) {
            usable = usable && std::fabs(original[size_t(i * n + i)]) > 0.000001;
            finite = finite && std::isfinite(original[size_t(i * n + i)]);
        }
        if (shape == Diagonal && n > 0)
            FUZZ_CHECK((inv != nullptr) == usable);
        for (int i = 0; inv && i < m * m && (shape == Permutation || (shape == Diagonal && finite)); ++i) {
            const int r = i / n, c = i % n;
            FUZZ_CHECK(inv[i] == (shape == Permutation ? original[size_t(c * n + r)]
                                  : r == c             ? 1.0 / original[size_t(i)]
                                                       : 0.0));
        }
        delete[] inv;
        break;
    }
    case 3: { // rows i and j from column first on; points i and j
        if (n < 1)
            break;
        const int i = in.range(0, n - 1), j = in.range(0, n - 1), first = in.range(0, n - 1);
        LUDecomp::Permut_lignes(a.data(), n, n, i, j, first);
        for (int c = 0; c < n; ++c)
            FUZZ_CHECK(sameValue(a[size_t(i * n + c)], original[size_t((c >= first ? j : i) * n + c)]) &&
                       sameValue(a[size_t(j * n + c)], original[size_t((c >= first ? i : j) * n + c)]));
        std::vector<POINT3D> p(static_cast<size_t>(n));
        for (int k = 0; k < n; ++k)
            p[size_t(k)].x = float(k);
        LUDecomp::Permut_POINT3D(p.data(), i, j);
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
