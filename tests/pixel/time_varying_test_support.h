// What the tests of time-varying colours share.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <ostream>
#include <tuple>
#include <vector>

#include "color_test_support.h"
#include "framewright/pixel/time_varying.h"
#include "pixel_test_support.h"

namespace time_test {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoTime = std::numeric_limits<double>::quiet_NaN();

/// A colour that is told apart by one number: n, n + 0.25, n + 0.5.
inline StColorFloats Color(float n) {
    return {n, n + 0.25f, n + 0.5f};
}
inline pixel_test::Fields<3> Of(StColorFloats const& color) {
    return pixel_test::Of(color);
}

/// A key as the tests write it: its time, and the number of its colour.
struct StKey {
    double time;
    float color;

    friend bool operator==(StKey const& a, StKey const& b) { return a.time == b.time && a.color == b.color; }
    friend std::ostream& operator<<(std::ostream& out, StKey const& key) {
        return out << key.time << ":" << key.color;
    }
};
using Keys = std::vector<StKey>;

struct StCall {
    double time;
    float color;
    bool same, flat;

    friend bool operator==(StCall const& a, StCall const& b) {
        return a.time == b.time && a.color == b.color && a.same == b.same && a.flat == b.flat;
    }
    friend std::ostream& operator<<(std::ostream& out, StCall const& call) {
        return out << call.time << ":" << call.color << (call.same ? " same" : "")
                   << (call.flat ? " flat" : "");
    }
};

/// Notes what it is called with.
struct Recorder : ScTVI<StColorFloats> {
    void KeyTime(double time, StColorFloats const* value, bool same, bool flat) override {
        EXPECT_EQ(Of(*value), Of(Color(value->red)));
        calls.push_back({time, value->red, same, flat});
    }
    std::vector<StCall> calls;
};

/// All keys; of a constant its one.
inline Keys KeysOf(StTimeVaryingColor const& color) {
    Recorder recorder;
    color.EachKeyTime(recorder);
    Keys keys;
    for (StCall const& call : recorder.calls)
        keys.push_back({call.time, call.color});
    return keys;
}

/// A colour with these keys, of which there are two at least and the first is at 0.0. Nothing is cached but
/// the last.
inline StTimeVaryingColor Keyed(Keys const& keys) {
    StTimeVaryingColor color(Color(keys.at(0).color));
    for (StKey const& key : keys)
        color.SetExtendedValue(key.time, Color(key.color));
    return color;
}

/// Linear, and notes how it was used.
struct Counter : ScVI<StColorFloats> {
    void Interpolate(float weight, double t0, double t1, StColorFloats const& a, StColorFloats const& b,
                     StColorFloats& out) override {
        calls.emplace_back(weight, t0, t1);
        ScLI<StColorFloats>::GetInterpolator().Interpolate(weight, t0, t1, a, b, out);
    }
    std::vector<std::tuple<float, double, double>> calls;
};

/// Holds the earlier key's value until the next key.
struct Hold : ScVI<StColorFloats> {
    void Interpolate(float, double, double, StColorFloats const& a, StColorFloats const&,
                     StColorFloats& out) override {
        out = a;
    }
};

inline std::vector<unsigned char> BytesOf(StTimeVaryingColor const& color) {
    std::vector<unsigned char> bytes(sizeof color);
    std::memcpy(bytes.data(), static_cast<void const*>(&color), sizeof color);
    return bytes;
}

}  // namespace time_test
