#include "framewright/frame/frame_stream.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "framewright/frame/frame_body_format.h"
#include "framewright/frame/frame_globals.h"
#include "framewright/frame/frame_limit.h"
#include "framewright/frame/frame_reader.h"
#include "framewright/frame/layer_factory.h"
#include "framewright/frame/layer_registration.h"
#include "framewright/thornmere/catalog_stream.h"
#include "framewright/thornmere/error.h"
#include "framewright/thornmere/stream.h"

namespace {

constexpr std::uint32_t kRecordVersion = 1;
constexpr unsigned long kSectionVersion = 0x100;
/// The alert that says that a file holds a kind of frame that is not known.
constexpr long kUnknownFrameAlert = 2;

struct StFrameHeader {
    std::uint32_t pixelID;
    std::uint32_t familyID;
    std::int32_t pixelSize;
    StPoint size;
};

constexpr std::uint64_t kHeaderBytes = 24;

StFrameHeader ReadHeader(SmStream& stream) {
    stream.GetBigEndian<std::uint32_t>();  // the version
    StFrameHeader header{};
    header.pixelID = stream.GetBigEndian<std::uint32_t>();
    header.familyID = stream.GetBigEndian<std::uint32_t>();
    header.pixelSize = stream.GetBigEndian<std::int32_t>();
    SrGetFromStream(stream, header.size);
    return header;
}

/// The fewest bytes that a row can take behind each format marker.
std::uint64_t LeastPlainRow(StFrameHeader const& header) {
    auto const bits = static_cast<std::uint64_t>(header.pixelSize);
    return (bits * static_cast<std::uint64_t>(header.size.horizontal) + 7) / 8;
}
std::uint64_t LeastRunRow(StFrameHeader const& header) {
    auto const columns = static_cast<std::uint64_t>(header.size.horizontal);
    if (header.pixelSize % 8 != 0) return columns;  // a byte each
    return 1 + (columns > 0 ? static_cast<std::uint64_t>(header.pixelSize) / 8 : 0);
}

/// The same for this stream, whose body is next; it stays where it is.
std::uint64_t LeastRow(SmStream& stream, std::uint64_t remaining, StFrameHeader const& header) {
    auto* const random = dynamic_cast<SmRandomStream*>(&stream);
    if (random && remaining >= frame::kBodyHeaderBytes) {
        unsigned int const position = random->GetPosition();
        random->SetPosition(position + frame::kMarkerOffset);
        auto const marker = random->GetBigEndian<std::uint16_t>();
        random->SetPosition(position);
        if (marker == frame::kPlainRows) return LeastPlainRow(header);
        if (marker == frame::kRunRows) return LeastRunRow(header);
    }
    return std::min(LeastPlainRow(header), LeastRunRow(header));
}

/// Whether a frame of that size can be on the stream, as far as the stream knows what it holds.
bool MayHold(SmStream& stream, StFrameHeader const& header) {
    std::uint64_t remaining = 0;
    if (header.size.vertical == 0 || !stream.GetRemaining(remaining)) return true;
    auto const rows = static_cast<std::uint64_t>(header.size.vertical);
    std::uint64_t const least = LeastRow(stream, remaining, header);
    // A row without pixels may take nothing on the stream, but it takes a place in the frame's table.
    if (least == 0) return rows <= remaining;
    return remaining >= frame::kBodyHeaderBytes && least <= (remaining - frame::kBodyHeaderBytes) / rows;
}

/// How many bytes the stream can still give; 0 where it does not know.
std::uint64_t Remaining(SmStream& stream) {
    std::uint64_t remaining = 0;
    stream.GetRemaining(remaining);
    return remaining;
}

std::uint64_t BytesInMemory(SmImagerFrame& frame) {
    auto const rows = static_cast<std::uint64_t>(frame.GetSize().vertical);
    return rows * (static_cast<std::uint64_t>(std::abs(frame.BytesPerRow())) + sizeof(void*));
}

[[noreturn]] void ThrowNoSuchLayer() {
    ScMessageBuzzStrings message(SkAlertStrings(), kUnknownFrameAlert, 1, 1, SkSimpleAlert());
    SrThrow(frame::NoSuchLayerError(), &message);
}

/// The frame that a header says is behind it, still without its body.
StRef<SmImagerFrame> MakeAnnouncedFrame(SmStream& stream, bool spooled, bool nativeBitmap) {
    StFrameHeader const header = ReadHeader(stream);
    if (header.size.vertical < 0 || header.size.horizontal < 0) SrThrow(SkBadStreamFormatErrC(), nullptr);
    if (!frame::FindLayerPrototype(header.pixelID, header.familyID, header.pixelSize)) ThrowNoSuchLayer();
    if (!MayHold(stream, header)) SrThrow(SkMemoryFull(), nullptr);
    auto frame = StRef<SmImagerFrame>::Adopt(SrImagerLayerFromType(
        header.pixelID, header.familyID, header.pixelSize, header.size, spooled, nativeBitmap));
    if (!frame) ThrowNoSuchLayer();
    return frame;
}

}  // namespace

unsigned long SrGetImagerFrameFileType() {
    return SrCode("ImFr");
}

void SrWriteImagerFrameToStream(SmStream& stream, SmImagerFrame* frame, unsigned short compression) {
    stream.PutBigEndian(kRecordVersion);
    stream.PutBigEndian(static_cast<std::uint32_t>(frame->PixelID()));
    stream.PutBigEndian(static_cast<std::uint32_t>(frame->FamilyID()));
    stream.PutBigEndian(static_cast<std::int32_t>(frame->PixelSize()));
    SrPutToStream(stream, frame->GetSize());
    frame->SetStreamingCompression(compression);
    frame->WriteTo(&stream);
}

SmImagerFrame* SrReadImagerFrameFromStream(SmStream& stream, bool spooled, bool nativeBitmap) {
    SmImagerFrame* const frame = MakeAnnouncedFrame(stream, spooled, nativeBitmap).Release();
    frame->ReadFrom(&stream);
    return frame;
}

StRef<SmImagerFrame> frame::ReadFrameFromStream(SmStream& stream, bool spooled, bool nativeBitmap) {
    StRef<SmImagerFrame> frame = MakeAnnouncedFrame(stream, spooled, nativeBitmap);
    frame->ReadFrom(&stream);
    return frame;
}

std::int32_t frame::ScFrameReader::ReadCount() {
    auto const count = mStream.GetBigEndian<std::int32_t>();
    if (count < 0) SrThrow(SkBadStreamFormatErrC(), nullptr);
    std::uint64_t remaining = 0;
    bool const isKnown = mStream.GetRemaining(remaining);
    if (isKnown && static_cast<std::uint64_t>(count) > remaining / kHeaderBytes)
        SrThrow(SkEndOfFile(), nullptr);
    return count;
}

StRef<SmImagerFrame> frame::ScFrameReader::Next() {
    std::uint64_t const before = Remaining(mStream);
    StRef<SmImagerFrame> frame = ReadFrameFromStream(mStream, mSpooled, mNativeBitmap);
    std::uint64_t const taken = before - Remaining(mStream);
    mExcess += std::max(BytesInMemory(*frame), taken) - taken;
    if (mExcess > SrGetFrameSizeLimit()) SrThrow(SkMemoryFull(), nullptr);
    return frame;
}

void SrImagerFrameToStream(ScCatalogWriteStream& catalog, SmImagerFrame* frame, unsigned short compression) {
    catalog.PrepareStreamForWrite(SrGetImagerFrameFileType(), kSectionVersion, nullptr);
    SmStream* const stream = catalog.GetStream();
    SrThrowIfNIL(stream);
    SrWriteImagerFrameToStream(*stream, frame, compression);
    catalog.FinishStreamWrite();
}
