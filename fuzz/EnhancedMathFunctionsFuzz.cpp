// Fuzz target: every kernel operation on arbitrary floats, twice, on outputs pre-filled with two
// sentinels: written elements agree bit for bit, the others keep the sentinel (in place: the operand),
// a failure writes nothing, operands stay, and with out an operand the result is the out-of-place one.
#include "FuzzInput.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <vector>

using K = EnhancedMathFunctions;
// Fills out from a, b, s (a scalar, angle, interpolation parameter or offset) and n (Newton steps);
// returns the operation's int or bool result, 0 for void.
using Call = int (*)(const K &, float *, const float *, const float *, float, int);
// A, B: out may be a, b; F: a result of 0 is a failure that writes nothing; I: in place, out starts
// as a copy of a and unwritten elements keep it; T: the result must be true; W: all of out or nothing.
enum Flags { A = 1, B = 2, F = 4, I = 8, T = 16, W = 32 };
struct Group { // operations of one shape; written: per call, bit i if out[i] is written (none: all)
    int outLen, aLen, bLen, flags;
    std::vector<Call> calls;
    std::vector<uint64_t> written;
};
static Group G(int outLen, int aLen, int bLen, int flags, std::vector<Call> calls,
               std::vector<uint64_t> written = {}) {
    return {outLen, aLen, bLen, flags, calls, written};
}

#define OP(...)                                                                                              \
    [](const K &k, float *o, [[maybe_unused]] const float *a, [[maybe_unused]] const float *b,               \
       [[maybe_unused]] float s, [[maybe_unused]] int n) -> int { __VA_ARGS__; }
#define V(...) OP(__VA_ARGS__; return 0)
#define R(...) OP(return int(__VA_ARGS__))
constexpr uint64_t k3x3 = 0x777, kTr = 0x7000;
using M3 = float (*)[3];

const Group kGroups[] = {
    G(16, 16, 0, A, {V(k.copyMat4fTo(o, a)), V(k.neg(o, a)), V(k.abs(o, a)), V(k.multMatrixScalar(o, a, s))}),
    G(3, 3, 0, A, {V(k.copyVec3fTo(o, a))}),
    G(16, 16, 0, 0,
      { V(float *c = k.getMat4fCopy(a); std::memcpy(o, c, 64); delete[] c), V(k.transpose(o, a)) }),
    G(3, 3, 3, 0, {V(k.cross(o, a, b))}),
    G(16, 0, 0, 0, {V(k.setIdentity(o)), V(k.setZero(o))}),
    G(16, 16, 16, A | B, {V(k.addMatrices(o, a, b)), V(k.subMatrices(o, a, b))}),
    G(16, 16, 16, 0, {V(k.multMatrices(o, a, b)), V(k.multAffineMatrices(o, a, b))}),
    G(3, 16, 3, B,
      {V(k.multMatrixVec3f(o, a, b)), V(k.multAffineMatrixVec3f(o, a, b)),
       V(k.multAffineMatrixVec3fAsDir(o, a, b))}),
    G(4, 16, 4, B, {V(k.multMatrixVec4f(o, a, b))}),
    G(16, 16, 0, A | F,
      {R(k.inverseMatrix(o, a)), R(k.inverse3(o, a)), R(k.inverseAffine(o, a)), R(k.inverseScale(o, a))}),
    G(16, 3, 3, W, {V(k.setProjection(o, a, s, b))}),
    G(16, 3, 0, 0,
      {V(k.setScale(o, a)), V(k.setTranslate(o, a)), V(k.setRotate(o, a)), V(k.setRotate(o, a, s)),
       V(k.eulerToMatrix(o, a)), V(k.axisToMatrix(o, a, s))}),
    G(16, 3, 3, 0, {V(k.multAffineColRow(o, a, b))}, {0xFFF}),
    G(16, 16, 0, 0, {V(k.transposeAffine(o, a))}, {k3x3}),
    G(16, 16, 3, 0, {V(k.multLeftByRotate(o, a, b, s)), V(k.multRightByRotate(o, a, b, s))}),
    G(16, 16, 0, I,
      {V(k.multLeftByRotateX(o, s)), V(k.multRightByRotateX(o, s)), V(k.multLeftByRotateY(o, s)),
       V(k.multRightByRotateY(o, s)), V(k.multLeftByRotateZ(o, s)), V(k.multRightByRotateZ(o, s))},
      {0x6666, 0x0FF0, 0x5555, 0x0F0F, 0x3333, 0x00FF}),
    G(16, 16, 3, I,
      {V(k.multLeftByTranslate(o, b)), V(k.multRightByTranslate(o, b)), V(k.multLeftByScale(o, b)),
       V(k.multRightByScale(o, b))},
      {kTr, kTr, 0x7777, k3x3}),
    G(16, 16, 0, I | F, {R(k.inverseScale(o))}, {0x421}),
    G(16, 16, 0, I | T, {R(k.inverseTranslate(o))}, {kTr}),
    G(16, 16, 0, A | T, {R(k.inverseTranslate(o, a))}),
    G(16, 16, 0, T, {R(k.inverseRotate(o, a)), R(k.inverseRotateAndTr(o, a))}, {k3x3, k3x3 | kTr}),
    G(4, 4, 4, A | B,
      {V(k.addQuaternions(o, a, b)), V(k.subQuaternions(o, a, b)), V(k.multQuaternions(o, a, b)),
       V(k.divQuaternionsU(o, a, b)), V(k.quaternionSLERP(o, a, b, s)), V(k.quaternionLERP(o, a, b, s))}),
    G(4, 4, 0, A,
      {V(k.conjugateQuaternion(o, a)), V(k.inverseQuaternion(o, a)), V(k.inverseQuaternionU(o, a))}),
    G(3, 4, 3, B, {V(k.applyQuatOn(o, a, b))}),
    G(1, 4, 4, 0, {V(k.dotQuaternions(o, a, b))}),
    G(4, 3, 0, 0,
      {V(k.axisToQuaternion(o, a, s)), V(k.axisToQuaternionU(o, a, s)), V(k.eulerToQuaternion(o, a))}),
    G(4, 4, 0, 0, {V(k.quaternionToAxis(o, o + 3, a))}),
    G(16, 4, 0, 0, {V(k.quaternionToMatrix(o, a))}),
    G(4, 16, 0, T, {R(k.RotMatrixToQuaternion(o, a) == 0), R(k.matrixToAxis(o, o + 3, a) == 0)}),
    G(3, 4, 0, 0, {V(k.quaternionToEuler(o, a))}),
    G(3, 16, 0, T, {R(k.matrixToEuler(o, a) == 0)}),
    G(1, 1, 0, 0,
      {V(*o = k.invSqrt(*a, n)), V(*o = k.invSqrt(*a)), V(*o = k.msqrt(*a, n)), V(*o = k.msqrt(*a))}),
    G(1, 16, 3, 0,
      {V(*o = k.det4(a)), V(*o = k.det3(a)), V(*o = k.det2(a[0], a[1], a[2], a[3])), V(*o = k.dot3(a, b))}),
    G(2, 16, 3, 0, { V(const double d = k.det3(a, a + 3, b); std::memcpy(o, &d, sizeof d)) }),
    G(12, 16, 0, T,
      { OP(int r = -1; k.jacobi3(o, M3(o + 3), r, a); return r >= 0 && r <= 150 && r % 3 == 0) }),
    G(35, 16, 0, F, { OP(float t[3], proj[16]; return k.factor(o, o + 16, o + 19, t, proj, a)) }), // r, s, u
};

const float kSentinel[2] = {FuzzInput::bitCast<float>(0xDEADBEEFu), FuzzInput::bitCast<float>(0x3E3A5A5Au)};

static void runOp(const K &k, const Group &op, size_t c, const float *opA, const float *opB, float s, int n) {
    const Call call = op.calls[c];
    const std::vector<float> a(opA, opA + op.aLen), b(opB, opB + op.bLen);
    std::vector<float> out[2];
    int r[2];
    for (int run = 0; run < 2; ++run) {
        out[run] = op.flags & I ? a : std::vector<float>(op.outLen, kSentinel[run]);
        r[run] = call(k, out[run].data(), a.data(), b.data(), s, n);
    }
    FUZZ_CHECK(r[0] == r[1] && (r[0] == 1 || !(op.flags & T)));
    FUZZ_CHECK(sameBits(a.data(), opA, op.aLen) && sameBits(b.data(), opB, op.bLen));
    const bool failed = (op.flags & F && r[0] == 0) || (op.flags & W && sameBits(out[0][0], kSentinel[0]) &&
                                                        sameBits(out[1][0], kSentinel[1]));
    const uint64_t written = failed ? 0 : op.written.empty() ? ~uint64_t(0) : op.written[c];
    for (int run = 0; run < 2; ++run)
        for (int i = 0; i < op.outLen; ++i)
            FUZZ_CHECK(sameBits(out[run][i], written >> i & 1 ? out[0][i]
                                             : op.flags & I   ? a[i]
                                                              : kSentinel[run]));
    // In place: out is the operand, unwritten elements keep its bits; want: the out-of-place result.
    const auto aliased = [&](const float *operand, bool asA, bool asB, const float *want, int wantR) {
        std::vector<float> x(operand, operand + op.outLen);
        FUZZ_CHECK(call(k, x.data(), asA ? x.data() : a.data(), asB ? x.data() : b.data(), s, n) == wantR);
        for (int i = 0; i < op.outLen; ++i)
            FUZZ_CHECK(sameBits(x[i], written >> i & 1 ? want[i] : operand[i]));
    };
    op.flags &A &&op.aLen == op.outLen ? aliased(opA, true, false, out[0].data(), r[0]) : void();
    op.flags &B &&op.bLen == op.outLen ? aliased(opB, false, true, out[0].data(), r[0]) : void();
    if ((op.flags & (A | B)) == (A | B)) { // out, a and b one array, against b = a out of place
        std::vector<float> y(op.outLen);
        aliased(opA, true, true, y.data(), call(k, y.data(), a.data(), a.data(), s, n));
    }
}

// Every input runs every operation, at least once: past the end of the input all operands are 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const K &k = *K::getCurrent();
    do {
        for (const Group &op : kGroups)
            for (size_t c = 0; c < op.calls.size(); ++c) {
                float a[16], b[16];
                for (int i = 0; i < op.aLen + op.bLen; ++i)
                    (i < op.aLen ? a[i] : b[i - op.aLen]) = in.anyFloat();
                runOp(k, op, c, a, b, in.anyFloat(), in.range(-2, 6));
            }
    } while (!in.empty());
    return 0;
}
