// Fuzz target: every operation of the default math kernel on arbitrary floats
// (NaN payloads, infinities, subnormals, negative zero). Checked for each call:
// - outputs it does not write keep their bits: every call runs twice, on outputs
//   pre-filled with two different sentinels, which also shows it deterministic;
// - where the result may be an operand, the in-place result equals the
//   out-of-place one bit for bit (memcmp: the same arithmetic on the same bits);
// - a reported failure writes nothing;
// - the copies, the exact formulas (det2, dot3, det3) and the sign operations
//   against a computation written here. Every array has exactly its documented
//   length, so that the address sanitizer sees an access beyond it.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>

namespace {

using K = EnhancedMathFunctions;
using Buf = std::unique_ptr<float[]>;

struct Extra {
    float s;   // scalar, angle, interpolation parameter or offset
    int steps; // Newton steps
};

// An operation: fills out (outLen floats) from a (aLen) and b (bLen); returns its
// int or bool result, 0 for void.
using Call = int (*)(const K &, float *, const float *, const float *, const Extra &);

struct Op {
    const char *name;
    int outLen, aLen, bLen;
    uint64_t written; // bit i: out[i] is written (on success)
    bool aliasA, aliasB;
    bool failWritesNothing; // a result of 0 means failure, with nothing written
    bool inPlace;           // out starts as a copy of a (aLen == outLen); unwritten keep a
    Call call;
};

constexpr uint64_t all(int n) {
    return n >= 64 ? ~uint64_t(0) : (uint64_t(1) << n) - 1;
}
constexpr uint64_t bits(std::initializer_list<int> list) {
    uint64_t m = 0;
    for (int i : list)
        m |= uint64_t(1) << i;
    return m;
}
constexpr uint64_t kBlock3x3 = bits({0, 1, 2, 4, 5, 6, 8, 9, 10});

#define OP(expr)                                                                                             \
    [](const K &k, float *o, const float *a, const float *b, const Extra &e) -> int {                        \
        (void)a;                                                                                             \
        (void)b;                                                                                             \
        (void)e;                                                                                             \
        return int(expr);                                                                                    \
    }

const Op kOps[] = {
    {"copyMat4fTo", 16, 16, 0, all(16), true, false, false, false, OP((k.copyMat4fTo(o, a), 0))},
    {"copyVec3fTo", 3, 3, 0, all(3), true, false, false, false, OP((k.copyVec3fTo(o, a), 0))},
    {"cross", 3, 3, 3, all(3), false, false, false, false, OP((k.cross(o, a, b), 0))},
    {"setIdentity", 16, 0, 0, all(16), false, false, false, false, OP((k.setIdentity(o), 0))},
    {"setZero", 16, 0, 0, all(16), false, false, false, false, OP((k.setZero(o), 0))},
    {"addMatrices", 16, 16, 16, all(16), true, true, false, false, OP((k.addMatrices(o, a, b), 0))},
    {"subMatrices", 16, 16, 16, all(16), true, true, false, false, OP((k.subMatrices(o, a, b), 0))},
    {"multMatrices", 16, 16, 16, all(16), false, false, false, false, OP((k.multMatrices(o, a, b), 0))},
    {"multMatrixVec3f", 3, 16, 3, all(3), false, true, false, false, OP((k.multMatrixVec3f(o, a, b), 0))},
    {"multMatrixVec4f", 4, 16, 4, all(4), false, true, false, false, OP((k.multMatrixVec4f(o, a, b), 0))},
    {"multMatrixScalar", 16, 16, 0, all(16), true, false, false, false,
     OP((k.multMatrixScalar(o, a, e.s), 0))},
    {"inverseMatrix", 16, 16, 0, all(16), true, false, true, false, OP(k.inverseMatrix(o, a))},
    {"neg", 16, 16, 0, all(16), true, false, false, false, OP((k.neg(o, a), 0))},
    {"transpose", 16, 16, 0, all(16), false, false, false, false, OP((k.transpose(o, a), 0))},
    {"abs", 16, 16, 0, all(16), true, false, false, false, OP((k.abs(o, a), 0))},
    {"setScale", 16, 3, 0, all(16), false, false, false, false, OP((k.setScale(o, a), 0))},
    {"setTranslate", 16, 3, 0, all(16), false, false, false, false, OP((k.setTranslate(o, a), 0))},
    {"setRotate(euler)", 16, 3, 0, all(16), false, false, false, false, OP((k.setRotate(o, a), 0))},
    {"setRotate(axis)", 16, 3, 0, all(16), false, false, false, false, OP((k.setRotate(o, a, e.s), 0))},
    {"multAffineMatrices", 16, 16, 16, all(16), false, false, false, false,
     OP((k.multAffineMatrices(o, a, b), 0))},
    {"multAffineMatrixVec3f", 3, 16, 3, all(3), false, true, false, false,
     OP((k.multAffineMatrixVec3f(o, a, b), 0))},
    {"multAffineMatrixVec3fAsDir", 3, 16, 3, all(3), false, true, false, false,
     OP((k.multAffineMatrixVec3fAsDir(o, a, b), 0))},
    {"multAffineColRow", 16, 3, 3, all(12), false, false, false, false, OP((k.multAffineColRow(o, a, b), 0))},
    {"transposeAffine", 16, 16, 0, kBlock3x3, false, false, false, false, OP((k.transposeAffine(o, a), 0))},
    {"multLeftByRotate", 16, 16, 3, all(16), false, false, false, false,
     OP((k.multLeftByRotate(o, a, b, e.s), 0))},
    {"multRightByRotate", 16, 16, 3, all(16), false, false, false, false,
     OP((k.multRightByRotate(o, a, b, e.s), 0))},
    {"multLeftByRotateX", 16, 16, 0, bits({1, 2, 5, 6, 9, 10, 13, 14}), false, false, false, true,
     OP((k.multLeftByRotateX(o, e.s), 0))},
    {"multRightByRotateX", 16, 16, 0, bits({4, 5, 6, 7, 8, 9, 10, 11}), false, false, false, true,
     OP((k.multRightByRotateX(o, e.s), 0))},
    {"multLeftByRotateY", 16, 16, 0, bits({0, 2, 4, 6, 8, 10, 12, 14}), false, false, false, true,
     OP((k.multLeftByRotateY(o, e.s), 0))},
    {"multRightByRotateY", 16, 16, 0, bits({0, 1, 2, 3, 8, 9, 10, 11}), false, false, false, true,
     OP((k.multRightByRotateY(o, e.s), 0))},
    {"multLeftByRotateZ", 16, 16, 0, bits({0, 1, 4, 5, 8, 9, 12, 13}), false, false, false, true,
     OP((k.multLeftByRotateZ(o, e.s), 0))},
    {"multRightByRotateZ", 16, 16, 0, bits({0, 1, 2, 3, 4, 5, 6, 7}), false, false, false, true,
     OP((k.multRightByRotateZ(o, e.s), 0))},
    {"multLeftByTranslate", 16, 16, 3, bits({12, 13, 14}), false, false, false, true,
     OP((k.multLeftByTranslate(o, b), 0))},
    {"multRightByTranslate", 16, 16, 3, bits({12, 13, 14}), false, false, false, true,
     OP((k.multRightByTranslate(o, b), 0))},
    {"multLeftByScale", 16, 16, 3, bits({0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14}), false, false, false, true,
     OP((k.multLeftByScale(o, b), 0))},
    {"multRightByScale", 16, 16, 3, kBlock3x3, false, false, false, true, OP((k.multRightByScale(o, b), 0))},
    {"inverse3", 16, 16, 0, all(16), true, false, true, false, OP(k.inverse3(o, a))},
    {"inverseAffine", 16, 16, 0, all(16), true, false, true, false, OP(k.inverseAffine(o, a))},
    {"inverseScale(m)", 16, 16, 0, bits({0, 5, 10}), false, false, true, true, OP(k.inverseScale(o))},
    {"inverseScale", 16, 16, 0, all(16), true, false, true, false, OP(k.inverseScale(o, a))},
    {"inverseTranslate(m)", 16, 16, 0, bits({12, 13, 14}), false, false, false, true,
     OP(k.inverseTranslate(o))},
    {"inverseTranslate", 16, 16, 0, all(16), true, false, false, false, OP(k.inverseTranslate(o, a))},
    {"inverseRotate", 16, 16, 0, kBlock3x3, false, false, false, false, OP(k.inverseRotate(o, a))},
    {"inverseRotateAndTr", 16, 16, 0, kBlock3x3 | bits({12, 13, 14}), false, false, false, false,
     OP(k.inverseRotateAndTr(o, a))},
    {"addQuaternions", 4, 4, 4, all(4), true, true, false, false, OP((k.addQuaternions(o, a, b), 0))},
    {"subQuaternions", 4, 4, 4, all(4), true, true, false, false, OP((k.subQuaternions(o, a, b), 0))},
    {"multQuaternions", 4, 4, 4, all(4), true, true, false, false, OP((k.multQuaternions(o, a, b), 0))},
    {"divQuaternionsU", 4, 4, 4, all(4), true, true, false, false, OP((k.divQuaternionsU(o, a, b), 0))},
    {"conjugateQuaternion", 4, 4, 0, all(4), true, false, false, false, OP((k.conjugateQuaternion(o, a), 0))},
    {"inverseQuaternion", 4, 4, 0, all(4), true, false, false, false, OP((k.inverseQuaternion(o, a), 0))},
    {"inverseQuaternionU", 4, 4, 0, all(4), true, false, false, false, OP((k.inverseQuaternionU(o, a), 0))},
    {"applyQuatOn", 3, 4, 3, all(3), false, true, false, false, OP((k.applyQuatOn(o, a, b), 0))},
    {"dotQuaternions", 1, 4, 4, all(1), false, false, false, false, OP((k.dotQuaternions(o, a, b), 0))},
    {"quaternionSLERP", 4, 4, 4, all(4), true, true, false, false, OP((k.quaternionSLERP(o, a, b, e.s), 0))},
    {"quaternionLERP", 4, 4, 4, all(4), true, true, false, false, OP((k.quaternionLERP(o, a, b, e.s), 0))},
    {"axisToQuaternion", 4, 3, 0, all(4), false, false, false, false, OP((k.axisToQuaternion(o, a, e.s), 0))},
    {"axisToQuaternionU", 4, 3, 0, all(4), false, false, false, false,
     OP((k.axisToQuaternionU(o, a, e.s), 0))},
    {"quaternionToAxis", 4, 4, 0, all(4), false, false, false, false,
     OP((k.quaternionToAxis(o, o + 3, a), 0))},
    {"quaternionToMatrix", 16, 4, 0, all(16), false, false, false, false,
     OP((k.quaternionToMatrix(o, a), 0))},
    {"RotMatrixToQuaternion", 4, 16, 0, all(4), false, false, false, false,
     OP(k.RotMatrixToQuaternion(o, a) == 0)},
    {"eulerToQuaternion", 4, 3, 0, all(4), false, false, false, false, OP((k.eulerToQuaternion(o, a), 0))},
    {"quaternionToEuler", 3, 4, 0, all(3), false, false, false, false, OP((k.quaternionToEuler(o, a), 0))},
    {"eulerToMatrix", 16, 3, 0, all(16), false, false, false, false, OP((k.eulerToMatrix(o, a), 0))},
    {"matrixToEuler", 3, 16, 0, all(3), false, false, false, false, OP(k.matrixToEuler(o, a) == 0)},
    {"axisToMatrix", 16, 3, 0, all(16), false, false, false, false, OP((k.axisToMatrix(o, a, e.s), 0))},
    {"matrixToAxis", 4, 16, 0, all(4), false, false, false, false, OP(k.matrixToAxis(o, o + 3, a) == 0)},
    {"invSqrt", 4, 1, 0, all(4), false, false, false, false,
     OP((o[0] = k.invSqrt(a[0], e.steps), o[1] = k.invSqrt(a[0]), o[2] = k.msqrt(a[0], e.steps),
         o[3] = k.msqrt(a[0]), 0))},
    {"det", 2, 16, 0, all(2), false, false, false, false, OP((o[0] = k.det4(a), o[1] = k.det3(a), 0))},
    {"jacobi3", 12, 16, 0, all(12), false, false, false, false, OP(([&] {
         int rots = -1;
         k.jacobi3(o, reinterpret_cast<float(*)[3]>(o + 3), rots, a);
         return rots >= 0 && rots <= 150 && rots % 3 == 0;
     }()))},
};

// Results that must be true of an operation whose result is reported as int.
bool expectsTrue(const char *name) {
    static const char *const names[] = {
        "inverseTranslate(m)",   "inverseTranslate", "inverseRotate", "inverseRotateAndTr",
        "RotMatrixToQuaternion", "matrixToEuler",    "matrixToAxis",  "jacobi3"};
    for (const char *n : names)
        if (std::strcmp(n, name) == 0)
            return true;
    return false;
}

Buf filled(int n, uint32_t pattern) {
    Buf b(new float[size_t(n > 0 ? n : 1)]);
    for (int i = 0; i < n; ++i)
        std::memcpy(&b[size_t(i)], &pattern, sizeof pattern);
    return b;
}
Buf copyOf(const float *src, int n) {
    Buf b(new float[size_t(n > 0 ? n : 1)]);
    std::memcpy(b.get(), src, sizeof(float) * size_t(n));
    return b;
}
bool isPattern(float f, uint32_t pattern) {
    return std::memcmp(&f, &pattern, sizeof f) == 0;
}

constexpr uint32_t kSentinel1 = 0xDEADBEEFu;
constexpr float kOne = 1.0f;
constexpr float kZero = 0.0f;
constexpr uint32_t kSentinel2 = 0x3E3A5A5Au;

void runOp(const K &k, const Op &op, const float *A, const float *B, const Extra &e) {
    const Buf a = copyOf(A, op.aLen), b = copyOf(B, op.bLen);
    // Two runs on different fillings of out.
    Buf out1 = op.inPlace ? copyOf(A, op.outLen) : filled(op.outLen, kSentinel1);
    Buf out2 = op.inPlace ? copyOf(A, op.outLen) : filled(op.outLen, kSentinel2);
    const int r1 = op.call(k, out1.get(), a.get(), b.get(), e);
    const int r2 = op.call(k, out2.get(), a.get(), b.get(), e);
    FUZZ_CHECK(r1 == r2);
    FUZZ_CHECK(sameBits(a.get(), A, op.aLen) && sameBits(b.get(), B, op.bLen)); // operands are const
    if (expectsTrue(op.name))
        FUZZ_CHECK(r1 == 1);
    const bool failed = op.failWritesNothing && r1 == 0;
    for (int i = 0; i < op.outLen; ++i) {
        const bool written = !failed && ((op.written >> i) & 1);
        if (op.inPlace) {
            FUZZ_CHECK(sameBits(&out1[size_t(i)], &out2[size_t(i)], 1));
            if (!written)
                FUZZ_CHECK(sameBits(&out1[size_t(i)], &A[i], 1));
        } else if (written) {
            FUZZ_CHECK(sameBits(&out1[size_t(i)], &out2[size_t(i)], 1));
        } else {
            FUZZ_CHECK(isPattern(out1[size_t(i)], kSentinel1) && isPattern(out2[size_t(i)], kSentinel2));
        }
    }
    // In place: out is the operand; unwritten elements keep the operand's bits.
    const auto checkAliased = [&](Buf &x, const float *operand, int result) {
        FUZZ_CHECK(result == r1);
        for (int i = 0; i < op.outLen; ++i) {
            const bool written = !failed && ((op.written >> i) & 1);
            FUZZ_CHECK(sameBits(&x[size_t(i)], written ? &out1[size_t(i)] : &operand[i], 1));
        }
    };
    if (op.aliasA && op.aLen == op.outLen) {
        Buf x = copyOf(A, op.aLen);
        checkAliased(x, A, op.call(k, x.get(), x.get(), b.get(), e));
    }
    if (op.aliasB && op.bLen == op.outLen) {
        Buf x = copyOf(B, op.bLen);
        checkAliased(x, B, op.call(k, x.get(), a.get(), x.get(), e));
    }
    if (op.aliasA && op.aliasB && op.aLen == op.outLen && op.bLen == op.outLen) {
        // out, a and b all one array, against out of place with b = a.
        Buf y = filled(op.outLen, kSentinel1);
        const int ry = op.call(k, y.get(), a.get(), a.get(), e);
        Buf x = copyOf(A, op.aLen);
        const int rx = op.call(k, x.get(), x.get(), x.get(), e);
        FUZZ_CHECK(rx == ry);
        FUZZ_CHECK(sameBits(x.get(), y.get(), op.outLen));
    }
}

// Checks against computations written here, on the arithmetic the header states.
void checkExact(const K &k, const float *A, const float *B, const Extra &e) {
    const Buf a = copyOf(A, 16), b = copyOf(B, 16);
    float out[16];
    k.copyMat4fTo(out, a.get());
    FUZZ_CHECK(sameBits(out, A, 16));
    float *copy = k.getMat4fCopy(a.get());
    FUZZ_CHECK(sameBits(copy, A, 16));
    delete[] copy;
    k.setIdentity(out);
    for (int i = 0; i < 16; ++i)
        FUZZ_CHECK(sameBits(&out[i], i % 5 == 0 ? &kOne : &kZero, 1));
    k.setZero(out);
    for (int i = 0; i < 16; ++i)
        FUZZ_CHECK(sameBits(&out[i], &kZero, 1));
    k.transpose(out, a.get());
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            FUZZ_CHECK(sameValue(out[4 * c + r], A[4 * r + c]));
    k.neg(out, a.get());
    for (int i = 0; i < 16; ++i)
        FUZZ_CHECK(sameValue(out[i], -A[i]));
    k.abs(out, a.get());
    for (int i = 0; i < 16; ++i)
        FUZZ_CHECK(sameValue(out[i], std::fabs(A[i])));
    k.conjugateQuaternion(out, a.get());
    FUZZ_CHECK(sameValue(out[0], A[0]) && sameValue(out[1], -A[1]) && sameValue(out[2], -A[2]) &&
               sameValue(out[3], -A[3]));

    FUZZ_CHECK(sameValue(k.det2(A[0], A[1], A[2], A[3]), float(double(A[0]) * A[3] - double(A[1]) * A[2])));
    FUZZ_CHECK(sameValue(k.dot3(a.get(), b.get()),
                         float((double(A[1]) * B[1] + double(A[0]) * B[0]) + double(A[2]) * B[2])));
    const float *m = A;
    const float m5_10 = float(double(m[5]) * m[10] - double(m[6]) * m[9]);
    const float m4_10 = float(double(m[4]) * m[10] - double(m[6]) * m[8]);
    const float m4_9 = float(double(m[4]) * m[9] - double(m[5]) * m[8]);
    FUZZ_CHECK(
        sameValue(k.det3(a.get()), float(double(m[0]) * m5_10 - double(m[1]) * m4_10 + double(m[2]) * m4_9)));
    const float *r0 = A, *r1 = A + 3, *r2 = B; // minors rounded to float, the sum not
    const float c0 = float(double(r1[1]) * r2[2] - double(r1[2]) * r2[1]);
    const float c1 = float(double(r1[0]) * r2[2] - double(r1[2]) * r2[0]);
    const float c2 = float(double(r1[0]) * r2[1] - double(r2[0]) * r1[1]);
    const double rows = double(r0[0]) * c0 - double(r0[1]) * c1 + double(r0[2]) * c2;
    FUZZ_CHECK(sameValue(k.det3(r0, r1, b.get()), rows));

    // A zero w gives the origin.
    k.multMatrixVec3f(out, a.get(), b.get());
    const double w = double(A[3]) * B[0] + double(A[7]) * B[1] + double(A[11]) * B[2] + A[15];
    if (w == 0.0)
        FUZZ_CHECK(out[0] == 0.0f && out[1] == 0.0f && out[2] == 0.0f);
    // The inverse of a scale fails exactly on an exact zero of the diagonal.
    const bool scalable = A[0] != 0.0f && A[5] != 0.0f && A[10] != 0.0f;
    FUZZ_CHECK(k.inverseScale(out, a.get()) == scalable);
    // A projection writes all of out, or nothing when normal . dir is 0.
    Buf p1 = filled(16, kSentinel1);
    k.setProjection(p1.get(), a.get(), e.s, b.get());
    int untouched = 0;
    for (int i = 0; i < 16; ++i)
        untouched += isPattern(p1[size_t(i)], kSentinel1) ? 1 : 0;
    FUZZ_CHECK(untouched == 0 || untouched == 16);
    const float eYX = float((double(A[1]) * B[1] + double(A[0]) * B[0]) + double(A[2]) * B[2]);
    const float eXY = float(double(A[0]) * B[0] + double(A[1]) * B[1] + double(A[2]) * B[2]);
    if (eYX == 0.0f && eXY == 0.0f)
        FUZZ_CHECK(untouched == 16);
    if (eYX != 0.0f && eXY != 0.0f) // NaN included: only an exact zero refuses
        FUZZ_CHECK(untouched == 0);
}

// factor: false leaves r, s and u alone and still writes t and proj; true writes
// all five (two runs on different sentinels tell written from untouched).
void checkFactor(const K &k, const float *A) {
    const Buf m = copyOf(A, 16);
    Buf outs[2][5];
    bool ok[2];
    for (int run = 0; run < 2; ++run) {
        const uint32_t pattern = run == 0 ? kSentinel1 : kSentinel2;
        Buf *o = outs[run];
        o[0] = filled(16, pattern), o[1] = filled(3, pattern), o[2] = filled(16, pattern);
        o[3] = filled(3, pattern), o[4] = filled(16, pattern);
        ok[run] = k.factor(o[0].get(), o[1].get(), o[2].get(), o[3].get(), o[4].get(), m.get());
    }
    FUZZ_CHECK(ok[0] == ok[1]);
    FUZZ_CHECK(sameBits(m.get(), A, 16));
    for (int i = 0; i < 16; ++i)
        FUZZ_CHECK(sameBits(&outs[0][4][size_t(i)], i % 5 == 0 ? &kOne : &kZero, 1));
    for (int i = 0; i < 3; ++i)
        FUZZ_CHECK(sameValue(outs[0][3][size_t(i)], A[12 + i]));
    const int lengths[3] = {16, 3, 16}; // r, s, u
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < lengths[j]; ++i) {
            const float x = outs[0][j][size_t(i)], y = outs[1][j][size_t(i)];
            if (ok[0])
                FUZZ_CHECK(sameBits(&x, &y, 1));
            else
                FUZZ_CHECK(isPattern(x, kSentinel1) && isPattern(y, kSentinel2));
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const K &k = *K::getCurrent();
    constexpr int kNumOps = int(sizeof kOps / sizeof kOps[0]);
    for (int steps = 0; !in.empty() && steps < 64; ++steps) {
        const int choice = in.range(0, kNumOps + 1);
        float A[16], B[16];
        for (float &f : A)
            f = in.anyFloat();
        for (float &f : B)
            f = in.anyFloat();
        const Extra e{in.anyFloat(), in.range(-2, 6)};
        if (choice < kNumOps)
            runOp(k, kOps[choice], A, B, e);
        else if (choice == kNumOps)
            checkExact(k, A, B, e);
        else
            checkFactor(k, A);
    }
    return 0;
}
