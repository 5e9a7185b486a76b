// Fuzz target: LUDecomp on sizes -2 to 12, any doubles or shaped matrices, in sequences that grow, reuse
// and release the shared buffers. Checked: no crash or leak, failures as documented, the triangular
// form, the last unknown, exact inverses of permutation matrices, row swaps.
#include "FuzzInput.h"
#include "zefcore/math/LUDecomp.h"

#include <algorithm>
#include <vector>

enum Shape { Any, Upper, Diagonal, Permutation };

static double pickDouble(FuzzInput &in) { // any bits, a bound of the solver or its neighbour, any float
    const int kind = in.range(0, 7), step = in.range(-1, 1);
    const double bound = in.flag() ? 0.0001 : in.flag() ? 0.00001 : 0.000001;
    const uint64_t high = kind == 0 ? in.u32() : 0;
    return kind == 0   ? FuzzInput::bitCast<double>(high << 32 | in.u32())
           : kind == 1 ? std::nextafter(bound, bound + step)
                       : double(in.anyFloat());
}

static bool pivotsUsable(const std::vector<double> &a, int n) { // above the last row none below 0.0001
    for (int i = 0; i + 1 < n; ++i)
        if (std::fabs(a[i * n + i]) < 0.0001)
            return false;
    return true;
}

static void step(FuzzInput &in) {
    const int n = in.range(-2, 12), shape = in.range(0, 3), m = std::max(n, 0), op = in.range(0, 4);
    const int shift = in.range(1, 11);  // a permutation's row r has its 1 in column (r + shift) % n
    std::vector<double> a(m * m), b(m); // exact sizes, for the address sanitizer
    for (int i = 0; i < m * m; ++i) {
        const int r = i / m, c = i % m;
        const bool drawn = shape == Any || (shape == Upper && c >= r) || (shape == Diagonal && c == r);
        a[i] = drawn ? pickDouble(in) : shape == Permutation && (r + shift) % m == c ? 1.0 : 0.0;
    }
    for (double &v : b)
        v = pickDouble(in);
    const std::vector<double> original = a;
    bool ok = true;
    if (op == 0) {
        bool small = false;
        const bool result = LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
        for (int i = 0; i < m; ++i) {
            small = small || std::fabs(a[i * n + i]) < 0.00001;
            for (int j = 0; j < i; ++j)
                FUZZ_CHECK(a[i * n + j] == 0.0);
        }
        FUZZ_CHECK(result == !small);
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        FUZZ_CHECK(n < 1 ? !ok : x && ok == pivotsUsable(a, n) && sameValue(x[n - 1], b[n - 1] / a.back()));
    } else if (op == 1) {
        std::vector<POINT3D> p(m);
        for (POINT3D &q : p)
            q = POINT3D{in.anyFloat(), in.anyFloat(), in.anyFloat()};
        LUDecomp::Triangularise_Pmatrice(a.data(), p.data(), n);
        POINT3D *x = LUDecomp::Resoud_Pmatrice(a.data(), p.data(), n, &ok);
        FUZZ_CHECK(n < 1 ? !ok && !x : x && ok == (a.back() != 0.0 && pivotsUsable(a, n)));
        std::free(x);
    } else if (op == 2) {
        double *inv = LUDecomp::Inverse_Matrix(a.data(), n);
        FUZZ_CHECK(n > 0 || (inv == nullptr) == (n < 0));
        for (int i = 0; inv && shape == Permutation && i < m * m; ++i) // exactly the transpose
            FUZZ_CHECK(inv[i] == original[i % n * n + i / n]);
        delete[] inv;
    } else if (op == 3 && n > 0) { // rows i and j from column first on; points i and j
        const int i = in.range(0, n - 1), j = in.range(0, n - 1), first = in.range(0, n - 1);
        LUDecomp::Permut_lignes(a.data(), n, n, i, j, first);
        for (int c = 0; c < n; ++c)
            FUZZ_CHECK(sameValue(a[i * n + c], original[(c >= first ? j : i) * n + c]) &&
                       sameValue(a[j * n + c], original[(c >= first ? i : j) * n + c]));
        std::vector<POINT3D> p(n);
        for (int k = 0; k < n; ++k)
            p[k].x = float(k);
        LUDecomp::Permut_POINT3D(p.data(), i, j);
        FUZZ_CHECK(p[i].x == float(j) && p[j].x == float(i));
    } else if (op == 4) {
        LUDecomp::trashRESNUM();
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    for (int steps = 0; !in.empty() && steps < 40; ++steps)
        step(in);
    return 0;
}
