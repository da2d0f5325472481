// All layer types as rows of run-time functions, so that one test runs over them without being a template;
// and small helpers that read and write frames as native records.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "framewright/frame/layer.h"
#include "framewright/frame/registries.h"
#include "framewright/pixel/pixel_ops.h"
#include "framewright/pixel/smart_pixel.h"

namespace testing_frames {

using FrameRef = StRef<SmImagerFrame>;
using SmartRef = std::unique_ptr<ScSmartPixel>;

/// A record as a variable, in the first bytes; the rest is 0.
using Native = std::array<std::uint8_t, 16>;

template <class Record>
Native ToNative(Record const& record) {
    static_assert(sizeof(Record) <= sizeof(Native));
    Native native{};
    std::memcpy(native.data(), &record, sizeof(record));
    return native;
}

template <class Record>
Record FromNative(Native const& native) {
    Record record;
    std::memcpy(static_cast<void*>(&record), native.data(), sizeof(record));
    return record;
}

template <class Record>
using PlainLayer = SmImagerLayer<Record, ScImagerNonSpool>;

template <class Record>
StRef<PlainLayer<Record>> MakeLayer(StPoint const& size) {
    auto layer = StRef<PlainLayer<Record>>::Adopt(PlainLayer<Record>::New());
    layer->IImagerLayer({0, 0}, size, false, nullptr, 0, nullptr);
    return layer;
}

template <class, class... Records>
struct DropFirst {
    using type = testing::Types<Records...>;
};
#define ROW(Record, ...) , Record
/// For typed tests.
using AllRecords = DropFirst<void FOR_EACH_LAYER_PIXEL(ROW)>::type;
#undef ROW

/// One layer type and the rules of its record.
struct StKind {
    char const* name;
    unsigned long id;
    unsigned long family;
    long bits;
    bool mapped;
    bool floats;
    FrameRef (*make)(StPoint const& size);
    SmartRef (*smart)(Native const& native);
    /// ConvertSmart on a record that held `before`; without maps an index comes from its own kind alone.
    Native (*convertSmart)(Native const& before, ScSmartPixel const* source);
    StRGBA32Pixel (*getRGBA)(Native const&);
    Native (*setRGBA)(Native const& before, StRGBA32Pixel color);

    friend void PrintTo(StKind const& kind, std::ostream* out) { *out << kind.name; }
};

template <class Record>
struct KindOf {
    static FrameRef Make(StPoint const& size) { return FrameRef::Adopt(MakeLayer<Record>(size).Release()); }
    static SmartRef Smart(Native const& native) {
        SmartRef smart(new ScDerivedPixel<Record>);
        Record const record = FromNative<Record>(native);
        smart->SetPixelData(&record);
        return smart;
    }
    static Native ConvertSmart(Native const& before, ScSmartPixel const* source) {
        Record record = FromNative<Record>(before);
        if constexpr (pixel::MappedPixel<Record>) {
            record.index = 0;
            if (source->PixelID() == Record::PixelID()) {
                std::memcpy(static_cast<void*>(&record), const_cast<ScSmartPixel*>(source)->GetPixelData(),
                            sizeof(record));
            }
        } else {
            record.ConvertSmart(source);
        }
        return ToNative(record);
    }
    static StRGBA32Pixel GetRGBA(Native const& native) {
        return pixel::GetRGBA32(FromNative<Record>(native));
    }
    static Native SetRGBA(Native const& before, StRGBA32Pixel color) {
        Record record = FromNative<Record>(before);
        if constexpr (pixel::MappedPixel<Record>) record.index = 0;
        pixel::SetRGBA32(record, color);
        return ToNative(record);
    }
};

inline std::vector<StKind> const& Kinds() {
    static std::vector<StKind> const kinds = {
#define ROW(Record, ID, Family, Bits)                                                     \
    {#Record,                                                                             \
     SrCode(ID),                                                                          \
     SrCode(Family),                                                                      \
     Bits,                                                                                \
     pixel::MappedPixel<Record>,                                                          \
     std::is_same_v<Record, StColorFloats> || std::is_same_v<Record, StRGBAFloatPixel> || \
         std::is_same_v<Record, StDepthFloatPixel>,                                       \
     &KindOf<Record>::Make,                                                               \
     &KindOf<Record>::Smart,                                                              \
     &KindOf<Record>::ConvertSmart,                                                       \
     &KindOf<Record>::GetRGBA,                                                            \
     &KindOf<Record>::SetRGBA},
        FOR_EACH_LAYER_PIXEL(ROW)
#undef ROW
    };
    return kinds;
}

inline StKind const& KindOfID(unsigned long id) {
    for (StKind const& kind : Kinds())
        if (kind.id == id) return kind;
    throw std::out_of_range("no such kind");
}

inline std::string NameOf(testing::TestParamInfo<StKind> const& info) {
    return info.param.name;
}

/// The pixel as a record, whole.
inline Native At(SmImagerFrame& frame, long x, long y) {
    Native native{};
    frame.GetPixelAt(x, y, static_cast<void*>(native.data()));
    return native;
}

inline void Put(SmImagerFrame& frame, long x, long y, Native const& native) {
    frame.PutPixelAt(x, y, static_cast<void const*>(native.data()));
}

/// Any value that a pixel of `bits` bits can have; floats from -0.5 to 1.5.
inline Native RandomNative(StKind const& kind, std::mt19937& random) {
    Native native{};
    if (kind.floats) {
        std::uniform_real_distribution<float> spread(-0.5f, 1.5f);
        for (long i = 0; i < kind.bits / 32; ++i) {
            float const value = spread(random);
            std::memcpy(native.data() + i * 4, &value, 4);
        }
    } else if (kind.bits < 8) {
        native[0] = static_cast<std::uint8_t>(random() & ((1u << kind.bits) - 1));
    } else {
        for (long i = 0; i < kind.bits / 8; ++i)
            native[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(random());
    }
    return native;
}

inline void FillRandom(SmImagerFrame& frame, StKind const& kind, unsigned seed) {
    std::mt19937 random(seed);
    StPoint const size = frame.GetSize();
    for (long y = 0; y < size.vertical; ++y)
        for (long x = 0; x < size.horizontal; ++x)
            Put(frame, x, y, RandomNative(kind, random));
}

/// A whole frame as records, row by row.
struct Picture {
    StPoint size;
    std::vector<Native> pixels;

    Native& operator()(long x, long y) { return pixels[static_cast<std::size_t>(y * size.horizontal + x)]; }
    Native const& operator()(long x, long y) const {
        return pixels[static_cast<std::size_t>(y * size.horizontal + x)];
    }
};

inline Picture Shot(SmImagerFrame& frame) {
    Picture picture{frame.GetSize(), {}};
    for (long y = 0; y < picture.size.vertical; ++y)
        for (long x = 0; x < picture.size.horizontal; ++x)
            picture.pixels.push_back(At(frame, x, y));
    return picture;
}

inline testing::AssertionResult Same(Picture const& expected, Picture const& actual) {
    if (expected.size != actual.size) return testing::AssertionFailure() << "sizes differ";
    for (long y = 0; y < expected.size.vertical; ++y)
        for (long x = 0; x < expected.size.horizontal; ++x)
            if (expected(x, y) != actual(x, y))
                return testing::AssertionFailure()
                       << "at (" << x << ", " << y << "): expected " << testing::PrintToString(expected(x, y))
                       << ", got " << testing::PrintToString(actual(x, y));
    return testing::AssertionSuccess();
}

inline std::uint32_t Word(StRGBA32Pixel pixel) {
    std::uint32_t word;
    std::memcpy(&word, &pixel, 4);
    return word;
}

/// The code of what `work` throws, 0 if nothing.
template <class Work>
long ThrownBy(Work const& work) {
    try {
        work();
    } catch (std::exception const& exception) {
        ScMessageClass* message = nullptr;
        return SrGetExceptionValues(exception, message);
    }
    return 0;
}

}  // namespace testing_frames

inline bool operator==(StRGBA32Pixel const& a, StRGBA32Pixel const& b) {
    return testing_frames::Word(a) == testing_frames::Word(b);
}
inline void PrintTo(StRGBA32Pixel const& pixel, std::ostream* out) {
    *out << "red " << int{pixel.red} << " green " << int{pixel.green} << " blue " << int{pixel.blue}
         << " alpha " << int{pixel.alpha};
}
inline void PrintTo(StPoint const& point, std::ostream* out) {
    *out << "(" << point.vertical << ", " << point.horizontal << ")";
}
