// Three floats that stand for a colour (linear light: red, green, blue) or a direction, and the few curves
// used to shape both.
#pragma once

#include <algorithm>
#include <cmath>

namespace pictorel::sample {

struct Vec3 {
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
};

constexpr Vec3 operator+(Vec3 a, Vec3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr Vec3 operator-(Vec3 a, Vec3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

constexpr Vec3 operator*(Vec3 a, Vec3 b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

constexpr Vec3 operator*(Vec3 a, float k) {
    return {a.x * k, a.y * k, a.z * k};
}

constexpr float Dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline float Length(Vec3 a) {
    return std::sqrt(Dot(a, a));
}

inline Vec3 Normalized(Vec3 a) {
    return a * (1.0F / Length(a));
}

constexpr float Mix(float a, float b, float t) {
    return a + (b - a) * t;
}

constexpr Vec3 Mix(Vec3 a, Vec3 b, float t) {
    return a + (b - a) * t;
}

constexpr float Saturate(float v) {
    return std::clamp(v, 0.0F, 1.0F);
}

// 0 below `low`, 1 above `high`, and an S between.
constexpr float SmoothStep(float low, float high, float v) {
    const float t = Saturate((v - low) / (high - low));
    return t * t * (3.0F - 2.0F * t);
}

// A bell of height 1 about 0: the fall-off of most soft things here.
inline float Bell(float v) {
    return std::exp(-v * v);
}

} // namespace pictorel::sample
