#include "zefcore/math/FloatMath.h"

// Each wrapper names the double function of std explicitly, so that it cannot
// resolve to itself.
float fabs(float x) {
    return float(std::fabs(double(x)));
}
float sqrt(float x) {
    return float(std::sqrt(double(x)));
}
float pow(float x, float y) {
    return float(std::pow(double(x), double(y)));
}
float sin(float x) {
    return float(std::sin(double(x)));
}
float cos(float x) {
    return float(std::cos(double(x)));
}
float tan(float x) {
    return float(std::tan(double(x)));
}
float asin(float x) {
    return float(std::asin(double(x)));
}
float acos(float x) {
    return float(std::acos(double(x)));
}
float atan(float x) {
    return float(std::atan(double(x)));
}
float atan2(float y, float x) {
    return float(std::atan2(double(y), double(x)));
}
