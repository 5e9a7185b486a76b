// Fuzz target: every operation of the default math kernel on arbitrary floats (NaN
// payloads, infinities, subnormals, -0). Each call runs twice, on outputs pre-filled with
// two different sentinels: the elements it writes must agree bit for bit (deterministic),
// the others keep the sentinel (or, in place, the operand); a reported failure writes
// nothing. Where out may be an operand, the in-place result equals the out-of-place one
// bit for bit. Operands stay unchanged; every array has exactly its documented length.
#include "FuzzInput.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <vector>

namespace {

using K = EnhancedMathFunctions;
struct Extra {
    float s;   // scalar, angle, interpolation parameter or offset
    int steps; // Newton steps
};
// Fills out from a and b; returns the operation's int or bool result, 0 for void.
using Call = int (*)(const K &, float *, const float *, const float *, const Extra &);

enum Flags {
    A = 1,  // out may be a
    B = 2,  // out may be b
    F = 4,  // a result of 0 is a failure that writes nothing
    I = 8,  // in place: out starts as a copy of a, unwritten elements keep it
    T = 16, // the result must be true
    W = 32, // writes all of out or nothing
};
struct Op {
    int outLen, aLen, bLen, flags;
    uint64_t written; // bit i: out[i] is written on success; 0: all of out
    Call call;
};

#define OP(...)                                                                                              \
    [](const K &k, float *o, [[maybe_unused]] const float *a, [[maybe_unused]] const float *b,               \
       [[maybe_unused]] const Extra &e) -> int { __VA_ARGS__; }
#define V(...) OP(__VA_ARGS__; return 0)
#define R(...) OP(return int(__VA_ARGS__))
constexpr uint64_t k3x3 = 0x777, kTr = 0x7000;

const Op kOps[] = {
    {16, 16, 0, A, 0, V(k.copyMat4fTo(o, a))},
    {3, 3, 0, A, 0, V(k.copyVec3fTo(o, a))},
    {16, 16, 0, 0, 0, V(float *c = k.getMat4fCopy(a); std::memcpy(o, c, 64); delete[] c)},
    {3, 3, 3, 0, 0, V(k.cross(o, a, b))},
    {16, 0, 0, 0, 0, V(k.setIdentity(o))},
    {16, 0, 0, 0, 0, V(k.setZero(o))},
    {16, 16, 16, A | B, 0, V(k.addMatrices(o, a, b))},
    {16, 16, 16, A | B, 0, V(k.subMatrices(o, a, b))},
    {16, 16, 16, 0, 0, V(k.multMatrices(o, a, b))},
    {3, 16, 3, B, 0, V(k.multMatrixVec3f(o, a, b))},
    {4, 16, 4, B, 0, V(k.multMatrixVec4f(o, a, b))},
    {16, 16, 0, A, 0, V(k.multMatrixScalar(o, a, e.s))},
    {16, 16, 0, A | F, 0, R(k.inverseMatrix(o, a))},
    {16, 16, 0, A, 0, V(k.neg(o, a))},
    {16, 16, 0, 0, 0, V(k.transpose(o, a))},
    {16, 16, 0, A, 0, V(k.abs(o, a))},
    {16, 3, 3, W, 0, V(k.setProjection(o, a, e.s, b))},
    {16, 3, 0, 0, 0, V(k.setScale(o, a))},
    {16, 3, 0, 0, 0, V(k.setTranslate(o, a))},
    {16, 3, 0, 0, 0, V(k.setRotate(o, a))},
    {16, 3, 0, 0, 0, V(k.setRotate(o, a, e.s))},
    {16, 16, 16, 0, 0, V(k.multAffineMatrices(o, a, b))},
    {3, 16, 3, B, 0, V(k.multAffineMatrixVec3f(o, a, b))},
    {3, 16, 3, B, 0, V(k.multAffineMatrixVec3fAsDir(o, a, b))},
    {16, 3, 3, 0, 0xFFF, V(k.multAffineColRow(o, a, b))},
    {16, 16, 0, 0, k3x3, V(k.transposeAffine(o, a))},
    {16, 16, 3, 0, 0, V(k.multLeftByRotate(o, a, b, e.s))},
    {16, 16, 3, 0, 0, V(k.multRightByRotate(o, a, b, e.s))},
    {16, 16, 0, I, 0x6666, V(k.multLeftByRotateX(o, e.s))},
    {16, 16, 0, I, 0x0FF0, V(k.multRightByRotateX(o, e.s))},
    {16, 16, 0, I, 0x5555, V(k.multLeftByRotateY(o, e.s))},
    {16, 16, 0, I, 0x0F0F, V(k.multRightByRotateY(o, e.s))},
    {16, 16, 0, I, 0x3333, V(k.multLeftByRotateZ(o, e.s))},
    {16, 16, 0, I, 0x00FF, V(k.multRightByRotateZ(o, e.s))},
    {16, 16, 3, I, kTr, V(k.multLeftByTranslate(o, b))},
    {16, 16, 3, I, kTr, V(k.multRightByTranslate(o, b))},
    {16, 16, 3, I, 0x7777, V(k.multLeftByScale(o, b))},
    {16, 16, 3, I, k3x3, V(k.multRightByScale(o, b))},
    {16, 16, 0, A | F, 0, R(k.inverse3(o, a))},
    {16, 16, 0, A | F, 0, R(k.inverseAffine(o, a))},
    {16, 16, 0, I | F, 0x421, R(k.inverseScale(o))},
    {16, 16, 0, A | F, 0, R(k.inverseScale(o, a))},
    {16, 16, 0, I | T, kTr, R(k.inverseTranslate(o))},
    {16, 16, 0, A | T, 0, R(k.inverseTranslate(o, a))},
    {16, 16, 0, T, k3x3, R(k.inverseRotate(o, a))},
    {16, 16, 0, T, k3x3 | kTr, R(k.inverseRotateAndTr(o, a))},
    {4, 4, 4, A | B, 0, V(k.addQuaternions(o, a, b))},
    {4, 4, 4, A | B, 0, V(k.subQuaternions(o, a, b))},
    {4, 4, 4, A | B, 0, V(k.multQuaternions(o, a, b))},
    {4, 4, 4, A | B, 0, V(k.divQuaternionsU(o, a, b))},
    {4, 4, 0, A, 0, V(k.conjugateQuaternion(o, a))},
    {4, 4, 0, A, 0, V(k.inverseQuaternion(o, a))},
    {4, 4, 0, A, 0, V(k.inverseQuaternionU(o, a))},
    {3, 4, 3, B, 0, V(k.applyQuatOn(o, a, b))},
    {1, 4, 4, 0, 0, V(k.dotQuaternions(o, a, b))},
    {4, 4, 4, A | B, 0, V(k.quaternionSLERP(o, a, b, e.s))},
    {4, 4, 4, A | B, 0, V(k.quaternionLERP(o, a, b, e.s))},
    {4, 3, 0, 0, 0, V(k.axisToQuaternion(o, a, e.s))},
    {4, 3, 0, 0, 0, V(k.axisToQuaternionU(o, a, e.s))},
    {4, 4, 0, 0, 0, V(k.quaternionToAxis(o, o + 3, a))},
    {16, 4, 0, 0, 0, V(k.quaternionToMatrix(o, a))},
    {4, 16, 0, T, 0, R(k.RotMatrixToQuaternion(o, a) == 0)},
    {4, 3, 0, 0, 0, V(k.eulerToQuaternion(o, a))},
    {3, 4, 0, 0, 0, V(k.quaternionToEuler(o, a))},
    {16, 3, 0, 0, 0, V(k.eulerToMatrix(o, a))},
    {3, 16, 0, T, 0, R(k.matrixToEuler(o, a) == 0)},
    {16, 3, 0, 0, 0, V(k.axisToMatrix(o, a, e.s))},
    {4, 16, 0, T, 0, R(k.matrixToAxis(o, o + 3, a) == 0)},
    {4, 1, 0, 0, 0,
     V(o[0] = k.invSqrt(a[0], e.steps); o[1] = k.invSqrt(a[0]); o[2] = k.msqrt(a[0], e.steps);
       o[3] = k.msqrt(a[0]))},
    {6, 16, 3, 0, 0,
     V(o[0] = k.det4(a); o[1] = k.det3(a); o[2] = k.det2(a[0], a[1], a[2], a[3]); o[3] = k.dot3(a, b);
       const double d = k.det3(a, a + 3, b); std::memcpy(o + 4, &d, sizeof d))},
    {12, 16, 0, T, 0,
     OP(int rots = -1; k.jacobi3(o, reinterpret_cast<float (*)[3]>(o + 3), rots, a);
        return rots >= 0 && rots <= 150 && rots % 3 == 0)},
    {35, 16, 0, F, 0, OP(float t[3], proj[16]; return k.factor(o, o + 16, o + 19, t, proj, a))}, // r, s, u
};

const float kSentinel[2] = {FuzzInput::bitCast<float>(0xDEADBEEFu), FuzzInput::bitCast<float>(0x3E3A5A5Au)};

void runOp(const K &k, const Op &op, const float *opA, const float *opB, const Extra &e) {
    const std::vector<float> a(opA, opA + op.aLen), b(opB, opB + op.bLen);
    std::vector<float> out[2];
    int r[2];
    for (int run = 0; run < 2; ++run) {
        out[run] = op.flags & I ? a : std::vector<float>(size_t(op.outLen), kSentinel[run]);
        r[run] = op.call(k, out[run].data(), a.data(), b.data(), e);
    }
    FUZZ_CHECK(r[0] == r[1] && (r[0] == 1 || !(op.flags & T)));
    FUZZ_CHECK(sameBits(a.data(), opA, op.aLen) && sameBits(b.data(), opB, op.bLen));
    const bool failed =
        (op.flags & F && r[0] == 0) ||
        (op.flags & W && sameBits(&out[0][0], &kSentinel[0], 1) && sameBits(&out[1][0], &kSentinel[1], 1));
    const uint64_t written = failed ? 0 : op.written ? op.written : ~uint64_t(0);
    for (int i = 0; i < op.outLen; ++i)
        for (int run = 0; run < 2; ++run)
            FUZZ_CHECK(sameBits(&out[run][size_t(i)],
                                written >> i & 1 ? &out[0][size_t(i)]
                                : op.flags & I   ? &opA[i]
                                                 : &kSentinel[run],
                                1));
    // In place: out is the operand, unwritten elements keep its bits; want: the out-of-place result.
    const auto aliased = [&](const float *operand, bool asA, bool asB, const float *want, int wantR) {
        std::vector<float> x(operand, operand + op.outLen);
        FUZZ_CHECK(op.call(k, x.data(), asA ? x.data() : a.data(), asB ? x.data() : b.data(), e) == wantR);
        for (int i = 0; i < op.outLen; ++i)
            FUZZ_CHECK(sameBits(&x[size_t(i)], written >> i & 1 ? &want[i] : &operand[i], 1));
    };
    if (op.flags & A && op.aLen == op.outLen)
        aliased(opA, true, false, out[0].data(), r[0]);
    if (op.flags & B && op.bLen == op.outLen)
        aliased(opB, false, true, out[0].data(), r[0]);
    if ((op.flags & (A | B)) == (A | B)) { // out, a and b one array, against b = a out of place
        std::vector<float> y(size_t(op.outLen));
        const int ry = op.call(k, y.data(), a.data(), a.data(), e);
        aliased(opA, true, true, y.data(), ry);
    }
}

} // namespace

// Every input runs every operation, at least once: past the end of the input all operands are 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const K &k = *K::getCurrent();
    do {
        for (const Op &op : kOps) {
            float a[16], b[16];
            for (int i = 0; i < op.aLen + op.bLen; ++i)
                (i < op.aLen ? a[i] : b[i - op.aLen]) = in.anyFloat();
            runOp(k, op, a, b, Extra{in.anyFloat(), in.range(-2, 6)});
        }
    } while (!in.empty());
    return 0;
}
