// The factorization: eigen-decomposition of a symmetric 3x3 block by cyclic
// Jacobi sweeps, and the split of an affine matrix into translation, rotation,
// scale and scale orientation built on it. Sister operations by virtual call.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>

namespace {

// The singularity bound of factor: a 3x3 determinant of a magnitude below it
// (a double, the bound itself passing) refuses the split.
constexpr double kFactorMinDeterminant = 1e-12;

// The number of Jacobi sweeps after which jacobi3 gives up and returns what it has.
constexpr int kJacobiMaxSweeps = 50;

// The float 0.2 as a double: the share of the off-diagonal sum below which the
// first three sweeps skip an element.
constexpr double kJacobiThresholdShare = 0.20000000298023224;

// Applies the rotation (s, tau) to the double pair (first, second).
void rotatePair(double &first, double &second, double s, double tau) {
    double const g = first;
    double const h = second;
    first = g - s * (h + g * tau);
    second = h + s * (g - h * tau);
}

// Applies the rotation (s, tau) to the float pair (first, second), rounding each.
void rotatePair(float &first, float &second, double s, double tau) {
    double const g = first;
    double const h = second;
    first = float(g - s * (h + g * tau));
    second = float(h + s * (g - h * tau));
}

} // namespace

void EnhancedMathFunctions::jacobi3(float *const evalues, float (*const evectors)[3], int &rots,
                                    float const *const m) const {
    // The true sums live in b and z; evalues holds them rounded at each update.
    double a[3][3];
    double b[3];
    double z[3];
    for (int i = 0; i < 3; ++i) {
        evalues[i] = m[5 * i];
        b[i] = evalues[i];
        z[i] = 0.0;
    }
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            evectors[i][j] = (i == j) ? 1.0f : 0.0f;
            a[i][j] = m[4 * i + j];
        }
    }
    rots = 0;

    static int const pairs[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (int sweep = 0; sweep < kJacobiMaxSweeps; ++sweep) {
        double const sm = (std::fabs(a[0][1]) + std::fabs(a[0][2])) + std::fabs(a[1][2]);
        // Exact zero test, no tolerance: the normal end of the iteration.
        if (sm == 0.0)
            return;
        double const tresh = (sweep < 3) ? kJacobiThresholdShare * sm / 9.0 : 0.0;

        for (auto const &pair : pairs) {
            int const p = pair[0];
            int const q = pair[1];
            double const g = 100.0 * std::fabs(a[p][q]);
            // The sums stay in double although the eigenvalues are floats.
            double const absP = std::fabs(double(evalues[p]));
            double const absQ = std::fabs(double(evalues[q]));
            if (sweep > 3 && absP + g == absP && absQ + g == absQ) {
                a[p][q] = 0.0;
            } else if (std::fabs(a[p][q]) > tresh) {
                double h = double(evalues[q]) - evalues[p];
                double t;
                if (std::fabs(h) + g == std::fabs(h)) {
                    t = a[p][q] / h;
                } else {
                    double const theta = 0.5 * h / a[p][q];
                    t = 1.0 / (std::fabs(theta) + std::sqrt(1.0 + theta * theta));
                    if (theta < 0.0)
                        t = -t;
                }
                double const c = 1.0 / std::sqrt(1.0 + t * t);
                double const s = t * c;
                double const tau = s / (1.0 + c);
                h = t * a[p][q];
                z[p] -= h;
                z[q] += h;
                evalues[p] = float(double(evalues[p]) - h);
                evalues[q] = float(double(evalues[q]) + h);
                a[p][q] = 0.0;
                for (int j = 0; j < p; ++j)
                    rotatePair(a[j][p], a[j][q], s, tau);
                for (int j = p + 1; j < q; ++j)
                    rotatePair(a[p][j], a[j][q], s, tau);
                for (int j = q + 1; j < 3; ++j)
                    rotatePair(a[p][j], a[q][j], s, tau);
                for (int j = 0; j < 3; ++j)
                    rotatePair(evectors[j][p], evectors[j][q], s, tau);
            }
            // Every visited pair counts, rotated or not.
            ++rots;
        }

        for (int i = 0; i < 3; ++i) {
            b[i] += z[i];
            evalues[i] = float(b[i]);
            z[i] = 0.0;
        }
    }
}

bool EnhancedMathFunctions::factor(float *const r, float *const s, float *const u, float *const t,
                                   float *const proj, float const *const m) const {
    float A[16];
    copyMat4fTo(A, m);
    setIdentity(proj);
    for (int k = 0; k < 3; ++k)
        t[k] = m[12 + k];
    // The bottom row of m is ignored: A is its affine 3x3 block alone.
    A[3] = A[7] = A[11] = 0.0f;
    A[12] = A[13] = A[14] = 0.0f;
    A[15] = 1.0f;

    float const det = det3(A);
    double const sign = (det < 0.0f) ? -1.0 : 1.0;
    // A NaN determinant passes: the comparison is false for it.
    if (sign * det < kFactorMinDeterminant)
        return false;

    float B[16];
    float G[16];
    transpose(B, A);
    multMatrices(G, B, A);

    float ev[3];
    float V[3][3];
    int rots = 0;
    jacobi3(ev, V, rots, G);

    // The rows of r, read as a matrix on column vectors, are the eigenvectors.
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r[4 * i + j] = V[i][j];
    r[3] = r[7] = r[11] = 0.0f;
    r[12] = r[13] = r[14] = 0.0f;
    r[15] = 1.0f;

    float SI[16];
    setIdentity(SI);
    for (int i = 0; i < 3; ++i) {
        float const a = float(std::sqrt(double(ev[i])));
        s[i] = float(a * sign);
        SI[5 * i] = float(1.0 / s[i]);
    }

    float D[16];
    float E[16];
    transpose(B, r);
    multMatrices(D, A, B);
    multMatrices(E, D, SI);
    multMatrices(u, E, r);
    return true;
}
