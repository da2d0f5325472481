// The bodies of SmImagerMipmap. Only the sources that instantiate it include this.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <optional>

#include "framewright/frame/corners.h"
#include "framewright/frame/layer.h"
#include "framewright/frame/row_lock.h"
#include "framewright/frame/storage_choice.h"
#include "framewright/imagery/mip_sampling.h"
#include "framewright/imagery/mipmap.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"

namespace imagery {

/// `a` blended by one half with `b`.
template <class Pixel>
Pixel HalfWay(Pixel a, Pixel const& b) {
    a.Blend(b, 0.5f);
    return a;
}

/// Four pixels of four bytes.
using StFourColors = std::uint32_t __attribute__((vector_size(16)));

inline StFourColors FourColorsAt(std::byte const* pixels) {
    StFourColors colors;
    std::memcpy(&colors, pixels, sizeof colors);
    return colors;
}

/// HalfWay of all bytes: with weights of 128 / 256 a blend is the mean, rounded down.
inline StFourColors HalfWay(StFourColors a, StFourColors b) {
    return (a & b) + (((a ^ b) & 0xFEFEFEFEu) >> 1);
}

/// Each of eight pixels in turn HalfWay to its neighbour.
inline StFourColors HalfWayInPairs(std::byte const* pixels) {
    StFourColors const first = FourColorsAt(pixels), second = FourColorsAt(pixels + sizeof first);
    return HalfWay(__builtin_shufflevector(first, second, 0, 2, 4, 6),
                   __builtin_shufflevector(first, second, 1, 3, 5, 7));
}

/// Does the first pixels of a row in blocks and returns how many: all but up to three. The addresses are
/// those of the first pixels.
inline long HalveInBlocks(std::byte* row, std::byte const* upper, std::byte const* lower, long columns) {
    constexpr long kPixels = 4, kBytes = sizeof(StFourColors);
    long const blocks = columns / kPixels;
    for (long i = 0; i < blocks; ++i) {
        StFourColors const halved =
            HalfWay(HalfWayInPairs(upper + 2 * i * kBytes), HalfWayInPairs(lower + 2 * i * kBytes));
        std::memcpy(row + i * kBytes, &halved, sizeof halved);
    }
    return blocks * kPixels;
}

/// One row of a level from the level before, which is `Wide` when it has more than one column and `High` when
/// it has more than one row; `lower` is not read unless it is.
template <class Pixel, bool Wide, bool High>
void HalveRow(void* row, long left, void const* upper, void const* lower, long from, long columns) {
    long x = 0;
    if constexpr (Wide && High && std::same_as<Pixel, StRGBA32Pixel>) {
        constexpr long kBytes = sizeof(Pixel);
        x = HalveInBlocks(static_cast<std::byte*>(row) + left * kBytes,
                          static_cast<std::byte const*>(upper) + from * kBytes,
                          static_cast<std::byte const*>(lower) + from * kBytes, columns);
    }
    for (; x < columns; ++x) {
        long const column = from + 2 * x;
        auto const across = [column](void const* source) {
            Pixel const pixel = frame::PixelOf<Pixel>(source, column);
            if constexpr (Wide) return HalfWay(pixel, frame::PixelOf<Pixel>(source, column + 1));
            return pixel;
        };
        Pixel pixel = across(upper);
        if constexpr (High) pixel = HalfWay(pixel, across(lower));
        pixel::StorePixel(row, left + x, pixel);
    }
}

template <class Pixel>
using RowHalver = void (*)(void*, long, void const*, void const*, long, long);

template <class Pixel>
RowHalver<Pixel> HalverOf(StMipLevel const& from) {
    if (from.width > 1) return from.height > 1 ? HalveRow<Pixel, true, true> : HalveRow<Pixel, true, false>;
    return from.height > 1 ? HalveRow<Pixel, false, true> : HalveRow<Pixel, false, false>;
}

}  // namespace imagery

template <class Pixel, class Spool>
ScMC_* StClassFacts<SmImagerMipmap<Pixel, Spool>>::Object() {
    return SrClassObjectOnFirstUse<SmImagerMipmap<Pixel, Spool>>();
}

template <class Pixel, class Spool>
SmImagerMipmap<Pixel, Spool>::SmImagerMipmap() = default;

template <class Pixel, class Spool>
SmImagerMipmap<Pixel, Spool>::~SmImagerMipmap() = default;

// Life.

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::IImagerMipmap(StPoint const& size, float maximumFilter,
                                                 bool nativeBitmap) {
    imagery::StMipLayout const layout = imagery::LayOutMipmap(size, maximumFilter);
    this->IImagerLayer({0, 0}, layout.raster, nativeBitmap, nullptr, 0, nullptr);
    imagery::MakeChain(mChain, layout);
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::Free() {
    imagery::FreeChain(mChain);
    Layer::Free();
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::CloneFrom(SmImagerMipmap const& other) {
    // Copies what the other frame shows: level 0.
    Layer::CloneFrom(other);
    imagery::CopyChain(mChain, other.mChain);
    auto& source = const_cast<SmImagerMipmap&>(other);
    auto const bytes = static_cast<std::size_t>((Pixel::PixelSize() * this->mSize.horizontal + 7) / 8);
    for (long y = GetSize().vertical; y < this->mSize.vertical; ++y) {
        frame::StRowLock const from(source, y), to(*this, y);
        SrThrowIfNIL(from.Address());
        SrThrowIfNIL(to.Address());
        std::memcpy(to.Address(), from.Address(), bytes);
    }
}

template <class Pixel, class Spool>
SmImagerFrame* SmImagerMipmap<Pixel, Spool>::CloneAtNewSize(StPoint const& size, bool spooled,
                                                            bool nativeBitmap) {
    return frame::WithSpooler(spooled, [&]<class Storage>(std::type_identity<Storage>) -> SmImagerFrame* {
        using Mipmap = SmImagerMipmap<Pixel, Storage>;
        auto mipmap = StRef<Mipmap>::Adopt(Mipmap::New());
        SrThrowIfNIL(mipmap.Get());
        mipmap->IImagerMipmap(imagery::LayOutMipmap(size, 1.0f).top, mChain.maximumFilter, nativeBitmap);
        return mipmap.Release();
    });
}

template <class Pixel, class Spool>
StPoint SmImagerMipmap<Pixel, Spool>::GetSize() {
    if (!mChain.table) return this->mSize;
    // Never more than there is, whatever has been done to the raster.
    return {std::min(mChain.table->height, this->mSize.vertical),
            std::min(mChain.table->width, this->mSize.horizontal)};
}

template <class Pixel, class Spool>
StPoint SmImagerMipmap<Pixel, Spool>::GetStorageSize() {
    return this->mSize;
}

// The chain.

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::CopyFromLayer(SmImagerFrame* source) {
    Layer::CopyFromLayer(source);
    RebuildLevels();
    SetOriginalSize(source->GetSize());
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::ReadFrom(SmStream* stream) {
    Layer::ReadFrom(stream);
    RebuildLevels();
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::RebuildLevels() {
    for (long i = 1; i < mChain.levels; ++i)
        RebuildLevel(mChain.table[i - 1], mChain.table[i]);
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::RebuildLevel(StMipLevel const& from, StMipLevel const& to) {
    // To the level's end or the raster's edge, whichever comes first; two pixels are read for each.
    auto const within = [](long length, long start, long fromLength, long fromStart, long edge) {
        long const source = std::min(fromLength, edge - fromStart);
        return std::min({length, edge - start, fromLength > 1 ? source / 2 : source});
    };
    long const rows = within(to.height, to.top, from.height, from.top, this->mSize.vertical);
    long const columns = within(to.width, to.left, from.width, from.left, this->mSize.horizontal);
    if (columns < 1) return;
    auto const halve = imagery::HalverOf<Pixel>(from);
    for (long y = 0; y < rows; ++y) {
        long const source = from.top + 2 * y;
        frame::StRowLock const upper(*this, source), target(*this, to.top + y);
        std::optional<frame::StRowLock> lower;
        if (from.height > 1) lower.emplace(*this, source + 1);
        SrThrowIfNIL(upper.Address());
        SrThrowIfNIL(target.Address());
        if (lower) SrThrowIfNIL(lower->Address());
        halve(target.Address(), to.left, upper.Address(), lower ? lower->Address() : nullptr, from.left,
              columns);
    }
}

// Reads.

template <class Pixel, class Spool>
StMipLevel const& SmImagerMipmap<Pixel, Spool>::LevelAt(long level) const {
    if (!mChain.table || !SrHasPixels(this->mSize)) [[unlikely]]
        SrThrow(SkMemoryFull(), nullptr);
    return mChain.table[frame::ClampPixel(level, mChain.levels)];
}

template <class Pixel, class Spool>
inline void* SmImagerMipmap<Pixel, Spool>::ExistingRow(long row) const {
    void* const address = this->Row(row);
    if (!address) [[unlikely]]
        SrThrow(SkMemoryFull(), nullptr);
    return address;
}

template <class Pixel, class Spool>
template <class Value>
inline frame::StCorners<Value> SmImagerMipmap<Pixel, Spool>::CornersAs(frame::StPlace const& place) const {
    return frame::ReadCorners<Value>(
        place, [this](long y) { return ExistingRow(y); },
        [](void const* row, long x) { return frame::PixelAs<Value>(frame::PixelOf<Pixel>(row, x)); });
}

template <class Pixel, class Spool>
Pixel SmImagerMipmap<Pixel, Spool>::SampleLevel(float u, float v, long level, StTilingStyles const& tiling) {
    frame::StPlace const place = imagery::PlaceOfSample(LevelAt(level), u, v, tiling, this->mSize);
    return frame::BlendCorners(CornersAs<Pixel>(place), place);
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::LevelDerivatives(float u, float v, float& du, float& dv, long level,
                                                    StTilingStyles const& tiling) {
    auto const at = imagery::PlaceOfDerivatives(LevelAt(level), u, v, tiling, this->mSize);
    auto const gray = CornersAs<float>(at.place);
    imagery::MixGradient(gray.a, gray.b, gray.c, gray.d, at, du, dv);
}

template <class Pixel, class Spool>
template <class Value, class Convert, class Mix>
inline Value SmImagerMipmap<Pixel, Spool>::Trilinear(float u, float v, float filter,
                                                     StTilingStyles const& tiling, Convert const& convert,
                                                     Mix const& mix) {
    imagery::StMipChoice const choice = imagery::ChooseLevel(mChain, filter);
    Value value = convert(this->SampleLevel(u, v, choice.level, tiling));
    if (choice.fraction != 0.0f) {
        mix(value, convert(this->SampleLevel(u, v, choice.level + 1, tiling)), choice.fraction);
    }
    return value;
}

template <class Pixel, class Spool>
Pixel SmImagerMipmap<Pixel, Spool>::GetFilteredPixel(float u, float v, float filter,
                                                     StTilingStyles const& tiling) {
    return Trilinear<Pixel>(
        u, v, filter, tiling, [](Pixel const& pixel) { return pixel; },
        [](Pixel& first, Pixel const& second, float fraction) { first.Blend(second, fraction); });
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::GetFractionalUVPixel(float u, float v, StRGBA32Pixel& pixel,
                                                        StTilingStyles const& tiling, float filter) {
    pixel = pixel::GetRGBA32(
        GetFilteredPixel(frame::ClampTexture(u), frame::ClampTexture(v), std::max(filter, 0.0f), tiling));
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::GetFractionalUVPixel(float u, float v, float& intensity,
                                                        StTilingStyles const& tiling, float filter) {
    intensity = Trilinear<float>(
        frame::ClampTexture(u), frame::ClampTexture(v), std::max(filter, 0.0f), tiling,
        [](Pixel const& pixel) { return frame::PixelAs<float>(pixel); },
        [](float& first, float second, float fraction) {
            first = imagery::MixLevels(first, second, fraction);
        });
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::GetFractionalUVPixel(float u, float v, StColorFloats& pixel,
                                                        StTilingStyles const& tiling, float filter) {
    pixel = Trilinear<StColorFloats>(
        frame::ClampTexture(u), frame::ClampTexture(v), std::max(filter, 0.0f), tiling,
        [](Pixel const& sample) { return frame::PixelAs<StColorFloats>(sample); },
        [](StColorFloats& first, StColorFloats const& second, float fraction) {
            first.Blend(second, fraction);
        });
}

template <class Pixel, class Spool>
void SmImagerMipmap<Pixel, Spool>::GetUVDerivatives(float u, float v, float& du, float& dv,
                                                    StTilingStyles const& tiling, float filter) {
    u = frame::ClampTexture(u);
    v = frame::ClampTexture(v);
    imagery::StMipChoice const choice = imagery::ChooseLevel(mChain, std::max(filter, 0.0f));
    this->LevelDerivatives(u, v, du, dv, choice.level, tiling);
    if (choice.fraction == 0.0f) return;
    float secondDu = 0.0f, secondDv = 0.0f;
    this->LevelDerivatives(u, v, secondDu, secondDv, choice.level + 1, tiling);
    du = imagery::MixLevels(du, secondDu, choice.fraction);
    dv = imagery::MixLevels(dv, secondDv, choice.fraction);
}

/// Compiles the mipmaps of a record; stands in one source file a record, see imagery/mipmaps/.
#define SR_INSTANTIATE_MIPMAPS(Record)                                      \
    template struct StClassFacts<SmImagerMipmap<Record, ScImagerNonSpool>>; \
    template struct StClassFacts<SmImagerMipmap<Record, ScImagerSpool>>;    \
    template class SmImagerMipmap<Record, ScImagerNonSpool>;                \
    template class SmImagerMipmap<Record, ScImagerSpool>
