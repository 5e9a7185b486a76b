// Installs a kernel subclass that overrides one operation and checks that a
// Matrix4f product goes through it.
#include <zefcore/ZEFCore.h>

#include <cstdio>

namespace {

int g_products = 0;

class CountingKernel : public EnhancedMathFunctions {
public:
    void multMatrices(float *const out, float const *const a, float const *const b) const override {
        ++g_products;
        EnhancedMathFunctions::multMatrices(out, a, b);
    }
};

} // namespace

int main() {
    std::printf("ZEFCore %s\n", ZEFCORE_VERSION);
    (new CountingKernel)->setDefault();

    Matrix4f scale(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1);
    Matrix4f move(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1);
    Matrix4f both = move * scale;
    Vector3f p = both * Vector3f(1, 0, 0);

    bool ok = g_products == 1 && p.x() == 3.0f && p.y() == 0.0f && p.z() == 0.0f;
    std::printf("products through the subclass: %d, (1, 0, 0) -> (%g, %g, %g): %s\n", g_products,
                double(p.x()), double(p.y()), double(p.z()), ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
