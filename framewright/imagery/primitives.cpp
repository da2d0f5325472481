#include "framewright/imagery/primitives.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "framewright/core/startup.h"
#include "framewright/frame/frame.h"
#include "framewright/pixel/smart_pixel.h"
#include "framewright/thornmere/numbers.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);

namespace {

/// Room for any pixel record.
using Record = std::array<std::byte, 16>;

std::int32_t Sum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
std::int32_t Difference(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

StPoint Truncated(StFloatPoint const& point) {
    return {SrITrunc(point.vertical), SrITrunc(point.horizontal)};
}
StPoint Sum(StPoint const& a, StPoint const& b) {
    return {Sum(a.vertical, b.vertical), Sum(a.horizontal, b.horizontal)};
}
StPoint Difference(StPoint const& a, StPoint const& b) {
    return {Difference(a.vertical, b.vertical), Difference(a.horizontal, b.horizontal)};
}
std::int32_t Scaled(std::int32_t first, std::int32_t second, float factor) {
    return SrITrunc(static_cast<float>(Difference(second, first)) * factor + static_cast<float>(first));
}

/// How many bytes of a pixel XOR changes.
std::size_t KeyBytes(long bits) {
    return static_cast<std::size_t>(std::clamp((bits + 7) / 8, 1L, 4L));
}

/// distance * rise / length, truncated toward zero: `distance` and `length` are not negative, and a product
/// of two distances needs all 64 bits.
long Part(long distance, long rise, long length) {
    auto const product = static_cast<std::uint64_t>(distance) * static_cast<std::uint64_t>(std::labs(rise));
    auto const part = static_cast<long>(product / static_cast<std::uint64_t>(length));
    return rise < 0 ? -part : part;
}

/// Calls visit(along, across) for each step of a line along its longer axis, from a0 to a1, where those are
/// below `limit` and not negative.
template <class Visit>
void StepAlong(long a0, long a1, long b0, long b1, long limit, Visit const& visit) {
    long const length = std::max(std::labs(a1 - a0), 1L);
    long const step = a1 < a0 ? -1 : 1;
    long const begin = step > 0 ? std::max(a0, 0L) : std::min(a0, limit - 1);
    long const end = step > 0 ? std::min(a1, limit - 1) : std::max(a1, 0L);
    for (long a = begin; (end - a) * step >= 0; a += step)
        visit(a, Part(std::labs(a - a0), b1 - b0, length) + b0);
}

}  // namespace

// --- what every shape has

ScImagerPrimitive::~ScImagerPrimitive() = default;

void ScImagerPrimitive::SetFilled(bool filled) {
    mFilled = filled;
}
bool ScImagerPrimitive::GetFilled() {
    return mFilled;
}

namespace imagery {

ScCorneredPrimitive::ScCorneredPrimitive(StPoint const& first, StPoint const& second, StRGBA32Pixel color)
    : mFirst(first), mSecond(second), mColor(color) {}

ScCorneredPrimitive::~ScCorneredPrimitive() = default;

void ScCorneredPrimitive::SetColor(ScSmartPixel* pixel) {
    mColor.ConvertSmart(pixel);
}
void ScCorneredPrimitive::GetColor(ScSmartPixel* pixel) {
    pixel->SetRGBA32(mColor);
}

// --- corners

void ScCorneredPrimitive::SetData(void* data) {
    std::memcpy(&mFirst, data, sizeof(mFirst));
    std::memcpy(&mSecond, static_cast<std::byte*>(data) + sizeof(mFirst), sizeof(mSecond));
}

long ScCorneredPrimitive::GetData(void* data) {
    if (data) {
        std::memcpy(data, &mFirst, sizeof(mFirst));
        std::memcpy(static_cast<std::byte*>(data) + sizeof(mFirst), &mSecond, sizeof(mSecond));
    }
    return sizeof(mFirst) + sizeof(mSecond);
}

void ScCorneredPrimitive::MoveAbsolute(StFloatPoint point) {
    StPoint const distance = Difference(Truncated(point), mFirst);
    mFirst = Sum(mFirst, distance);
    mSecond = Sum(mSecond, distance);
}

void ScCorneredPrimitive::MoveRelative(StFloatPoint distance) {
    mFirst = Sum(mFirst, Truncated(distance));
    mSecond = Sum(mSecond, Truncated(distance));
}

void ScCorneredPrimitive::ResizeAbsolute(StFloatPoint size) {
    mSecond = Sum(mFirst, Truncated(size));
}

void ScCorneredPrimitive::ResizeRelative(StFloatPoint factors) {
    mSecond = {Scaled(mFirst.vertical, mSecond.vertical, factors.vertical),
               Scaled(mFirst.horizontal, mSecond.horizontal, factors.horizontal)};
}

void ScCorneredPrimitive::EmptyData() {
    mFirst = {0, 0};
    mSecond = {0, 0};
}

// --- drawing

/// Calls action(x, y) for each pixel in the frame.
template <class Action>
void ScCorneredPrimitive::Draw(SmImagerFrame& frame, Action action) const {
    class ScTask : public ScPixelTask {
      public:
        explicit ScTask(Action& action) : mAction(action) {}
        void Do(long x, long y) override { mAction(x, y); }

      private:
        Action& mAction;
    };
    ScTask task(action);
    Walk(frame.GetSize(), task);
}

void ScCorneredPrimitive::Replace(SmImagerFrame* frame) {
    Draw(*frame, [&](long x, long y) { frame->PutPixelAt(x, y, mColor); });
}

void ScCorneredPrimitive::Merge(SmImagerFrame* frame) {
    Draw(*frame, [&](long x, long y) { frame->MergePixelAt(x, y, mColor); });
}

StRGBA32Pixel ScCorneredPrimitive::Faded(float t) const {
    StRGBA32Pixel faded = mColor;
    faded.alpha = static_cast<std::uint8_t>(SrITrunc(static_cast<float>(mColor.alpha) * t));
    return faded;
}

void ScCorneredPrimitive::Blend(SmImagerFrame* frame, float t) {
    Draw(*frame, [&, faded = Faded(t)](long x, long y) { frame->MergePixelAt(x, y, faded); });
}

void ScCorneredPrimitive::XOR(SmImagerFrame* frame) {
    std::unique_ptr<ScSmartPixel> const smart(frame->NewSmartPixel());
    Record key{};
    // What a conversion leaves alone, a filler byte say, must not be by chance.
    smart->SetPixelData(key.data());
    smart->SetRGBA32(mColor);
    std::size_t const bytes = KeyBytes(frame->PixelSize());
    std::memcpy(key.data(), smart->GetPixelData(), bytes);
    Draw(*frame, [&](long x, long y) {
        Record record{};
        frame->GetPixelAt(x, y, static_cast<void*>(record.data()));
        for (std::size_t i = 0; i < bytes; ++i)
            record[i] ^= key[i];
        frame->PutPixelAt(x, y, static_cast<void const*>(record.data()));
    });
}

}  // namespace imagery

// --- rectangles

ScPrimitiveRect::ScPrimitiveRect(StRect const& rect, StRGBA32Pixel color, bool filled)
    : ScCorneredPrimitive({rect.top, rect.left}, {rect.bottom, rect.right}, color) {
    mFilled = filled;
}

ScPrimitiveRect::~ScPrimitiveRect() = default;

void ScPrimitiveRect::Blend(SmImagerFrame* frame, float t) {
    if (mFilled || Faded(t).alpha != 0) ScCorneredPrimitive::Blend(frame, t);
}

void ScPrimitiveRect::Walk(StPoint const& size, imagery::ScPixelTask& task) const {
    StRect const rect{mFirst.vertical, mFirst.horizontal, mSecond.vertical, mSecond.horizontal};
    if (mFilled) {
        StRect inside{};
        SrClipRectToFrame(inside, rect, size);
        for (long y = inside.top; y < inside.bottom; ++y)
            for (long x = inside.left; x < inside.right; ++x)
                task.Do(x, y);
        return;
    }
    long const lastRow = long{rect.bottom} - 1, lastColumn = long{rect.right} - 1;
    auto const visit = [&](long x, long y) {
        if (x >= 0 && y >= 0 && x < size.horizontal && y < size.vertical) task.Do(x, y);
    };
    // Only what can lie in the frame is walked, however large the rectangle is.
    long const right = std::min(rect.right, size.horizontal);
    for (long x = std::max(rect.left, 0); x < right; ++x) {
        visit(x, rect.top);
        visit(x, lastRow);
    }
    long const bottom = std::min(lastRow, long{size.vertical});
    for (long y = std::max(long{rect.top} + 1, 0L); y < bottom; ++y) {
        visit(rect.left, y);
        visit(lastColumn, y);
    }
}

// --- lines

ScPrimitiveLine::ScPrimitiveLine(StPoint const& start, StPoint const& end, StRGBA32Pixel color)
    : ScCorneredPrimitive(start, end, color) {}

ScPrimitiveLine::~ScPrimitiveLine() = default;

void ScPrimitiveLine::Walk(StPoint const& size, imagery::ScPixelTask& task) const {
    long const x0 = mFirst.horizontal, y0 = mFirst.vertical;
    long const x1 = mSecond.horizontal, y1 = mSecond.vertical;
    if (std::labs(y0 - y1) < std::labs(x0 - x1)) {
        StepAlong(x0, x1, y0, y1, size.horizontal, [&](long x, long y) {
            if (y >= 0 && y < size.vertical) task.Do(x, y);
        });
    } else {
        StepAlong(y0, y1, x0, x1, size.vertical, [&](long y, long x) {
            if (x >= 0 && x < size.horizontal) task.Do(x, y);
        });
    }
}
