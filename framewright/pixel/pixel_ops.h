// The conversions of any record by one set of names, for templates over records: smart pixels and layers are
// written with these. Each forwards to the record, which holds its rules.
//
// A mapped record has no colour without its map. Here its reads leave the argument, or give 0, and its writes
// do nothing.
#pragma once

#include <concepts>

#include "framewright/pixel/pixels.h"

namespace pixel {

/// A record that is an index into a colour map.
#define SR_ROW(Mapped) || std::same_as<Record, Mapped>
template <class Record>
concept MappedPixel = false FOR_EACH_MAPPED_PIXEL(SR_ROW);
#undef SR_ROW

/// A record that layers are made of.
template <class Record>
concept LayerPixel = requires {
    StFacts<Record>::kBits;
};

template <class Record>
StRGBA32Pixel GetRGBA32(Record const& record) {
    if constexpr (MappedPixel<Record>)
        return {0, 0, 0, 0};
    else
        return record.GetRGBA32();
}

template <class Record>
void SetRGBA32([[maybe_unused]] Record& record, [[maybe_unused]] StRGBA32Pixel color) {
    if constexpr (!MappedPixel<Record>) record.SetRGBA32(color);
}

template <class Record>
float GetFloat(Record const& record) {
    if constexpr (MappedPixel<Record>)
        return 0.0f;
    else
        return record.ConvertToFloat();
}

template <class Record>
void SetFloat([[maybe_unused]] Record& record, [[maybe_unused]] float value) {
    if constexpr (!MappedPixel<Record>) record.SetFloat(value);
}

template <class Record>
void GetColorFloats(Record const& record, [[maybe_unused]] StColorFloats& out) {
    if constexpr (!MappedPixel<Record>) record.ConvertToColorFloats(out);
}

template <class Record>
void SetColorFloats([[maybe_unused]] Record& record, [[maybe_unused]] StColorFloats const& color) {
    if constexpr (!MappedPixel<Record>) record.SetColorFloats(color);
}

/// Records without a rule of their own for four floats go through their colour floats and are opaque.
template <LayerPixel Record>
void GetRGBAFloat(Record const& record, StRGBAFloatPixel& out) {
    if constexpr (std::same_as<Record, StRGBAFloatPixel>) {
        out = record;
    } else if constexpr (requires { record.ConvertToRGBAFloat(out); }) {
        record.ConvertToRGBAFloat(out);
    } else if constexpr (!MappedPixel<Record>) {
        StColorFloats color;
        record.ConvertToColorFloats(color);
        out.SetColorFloats(color);
    }
}

/// The same the other way; alpha is not used where the record has no rule of its own.
template <LayerPixel Record>
void SetRGBAFloat([[maybe_unused]] Record& record, StRGBAFloatPixel const& in) {
    if constexpr (std::same_as<Record, StRGBAFloatPixel>)
        record = in;
    else if constexpr (requires { record.ConvertFromRGBAFloat(in); })
        record.ConvertFromRGBAFloat(in);
    else if constexpr (!MappedPixel<Record>)
        record.SetColorFloats({in.red, in.green, in.blue});
}

/// Replaces the pixel by its complement.
template <LayerPixel Record>
void Invert(Record& record) {
    record.Invert();
}

}  // namespace pixel
