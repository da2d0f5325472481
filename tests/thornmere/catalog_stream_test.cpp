#include "framewright/thornmere/catalog_stream.h"

#include <cstring>
#include <string>

#include "framewright/thornmere/codes.h"
#include "framewright/thornmere/reference.h"
#include "thornmere/support.h"

namespace {

constexpr std::uint32_t kFrame = SrCode("ImFr");

StRef<SmMemoryStream> NewStream(std::string const& bytes = {}) {
    auto stream = StRef<SmMemoryStream>::Adopt(SmMemoryStream::New());
    stream->IMemoryStream(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return stream;
}

std::string Contents(SmMemoryStream& stream) {
    return {reinterpret_cast<char const*>(stream.Data()), stream.GetLength()};
}

void WriteSection(SmMemoryStream& stream, std::uint32_t type, unsigned long version, char const* name,
                  std::string const& body) {
    ScCatalogWriteStream catalog;
    catalog.ICatalogStream(&stream);
    ASSERT_TRUE(catalog.PrepareStreamForWrite(type, version, name));
    catalog.GetStream()->Write(static_cast<unsigned int>(body.size()), body.data());
    catalog.FinishStreamWrite();
}

std::string ReadSection(SmMemoryStream& stream, std::uint32_t type, unsigned long version, char const* name,
                        unsigned int length) {
    ScCatalogReadStream catalog;
    catalog.ICatalogStream(&stream);
    if (!catalog.PrepareStreamForRead(type, version, name)) return "none";
    std::string body(length, '\0');
    catalog.GetStream()->Read(length, body.data());
    return body;
}

TEST(CatalogStream, SectionIsAHeaderAndItsBytes) {
    auto const stream = NewStream();
    WriteSection(*stream, kFrame, 0x100, "ab", "body");
    EXPECT_EQ(Contents(*stream), std::string("CtSc"
                                             "ImFr"
                                             "\0\0\1\0"
                                             "\0\0\0\4"
                                             "\0\0\0\2"
                                             "ab"
                                             "body",
                                             26));
}

TEST(CatalogStream, SectionsAreFoundByTypeVersionAndName) {
    auto const stream = NewStream();
    WriteSection(*stream, kFrame, 1, nullptr, "first");
    WriteSection(*stream, SrCode("Othr"), 1, "x", "second");
    WriteSection(*stream, kFrame, 2, "x", "third");
    WriteSection(*stream, kFrame, 2, "y", "fourth");
    EXPECT_EQ(ReadSection(*stream, kFrame, 1, nullptr, 5), "first");
    EXPECT_EQ(ReadSection(*stream, SrCode("Othr"), 1, nullptr, 6), "second");
    EXPECT_EQ(ReadSection(*stream, kFrame, 2, nullptr, 5), "third") << "the first that fits";
    EXPECT_EQ(ReadSection(*stream, kFrame, 2, "y", 6), "fourth");
    EXPECT_EQ(ReadSection(*stream, kFrame, 3, nullptr, 1), "none");
    EXPECT_EQ(ReadSection(*stream, kFrame, 1, "x", 1), "none");
    EXPECT_EQ(ReadSection(*stream, SrCode("None"), 1, nullptr, 1), "none");
}

TEST(CatalogStream, ReadingStandsAtTheSectionsFirstByteOrWhereItWas) {
    auto const stream = NewStream();
    WriteSection(*stream, kFrame, 1, "n", "body");
    stream->SetPosition(3);
    ScCatalogReadStream catalog;
    catalog.ICatalogStream(stream.Get());
    EXPECT_TRUE(catalog.IsCatalogStream());
    EXPECT_EQ(stream->GetPosition(), 3u);
    EXPECT_FALSE(catalog.PrepareStreamForRead(kFrame, 7, nullptr));
    EXPECT_EQ(stream->GetPosition(), 3u);
    EXPECT_TRUE(catalog.PrepareStreamForRead(kFrame, 1, nullptr));
    EXPECT_EQ(stream->GetPosition(), 21u);
    EXPECT_EQ(catalog.GetStream(), stream.Get());
}

TEST(CatalogStream, OneSectionIsOpenAtATime) {
    auto const stream = NewStream();
    ScCatalogWriteStream catalog;
    EXPECT_FALSE(catalog.PrepareStreamForWrite(kFrame, 1, nullptr)) << "no stream";
    EXPECT_EQ(catalog.GetStream(), nullptr);
    EXPECT_FALSE(catalog.IsCatalogStream());
    catalog.FinishStreamWrite();
    catalog.ICatalogStream(stream.Get());
    EXPECT_FALSE(catalog.IsCatalogStream());
    EXPECT_TRUE(catalog.PrepareStreamForWrite(kFrame, 1, nullptr));
    EXPECT_FALSE(catalog.PrepareStreamForWrite(kFrame, 2, nullptr));
    catalog.FinishStreamWrite();
    catalog.FinishStreamWrite();
    EXPECT_EQ(stream->GetLength(), 20u);
    EXPECT_TRUE(catalog.PrepareStreamForWrite(kFrame, 2, nullptr));
    catalog.FinishStreamWrite();
    EXPECT_EQ(ReadSection(*stream, kFrame, 2, nullptr, 0), "");
}

TEST(CatalogStream, BodiesMayBeWrittenOutOfOrder) {
    auto const stream = NewStream();
    ScCatalogWriteStream catalog;
    catalog.ICatalogStream(stream.Get());
    catalog.PrepareStreamForWrite(kFrame, 1, nullptr);
    unsigned int const start = stream->GetPosition();
    stream->Write(6, "??3456");
    stream->SetPosition(start);
    stream->Write(2, "12");
    catalog.FinishStreamWrite();
    WriteSection(*stream, kFrame, 2, nullptr, "next");
    EXPECT_EQ(ReadSection(*stream, kFrame, 1, nullptr, 6), "123456");
    EXPECT_EQ(ReadSection(*stream, kFrame, 2, nullptr, 4), "next");
}

TEST(CatalogStream, SequentialAndForeignStreamsHoldNone) {
    auto const sequential = StRef<SmStream>::Adopt(SmStream::New());
    ScCatalogReadStream catalog;
    catalog.ICatalogStream(sequential.Get());
    EXPECT_EQ(catalog.GetStream(), nullptr);
    EXPECT_FALSE(catalog.IsCatalogStream());
    EXPECT_FALSE(catalog.PrepareStreamForRead(kFrame, 1, nullptr));
    catalog.ICatalogStream(nullptr);
    EXPECT_FALSE(catalog.PrepareStreamForRead(kFrame, 1, nullptr));
    for (std::string const bytes : {"", "Ct", "BMxxxxxxxxxxxxxxxxxxxxxxx"}) {
        auto const stream = NewStream(bytes);
        catalog.ICatalogStream(stream.Get());
        EXPECT_FALSE(catalog.IsCatalogStream()) << bytes;
        EXPECT_FALSE(catalog.PrepareStreamForRead(kFrame, 1, nullptr)) << bytes;
        EXPECT_EQ(stream->GetPosition(), 0u);
    }
}

TEST(CatalogStream, ForeignBytesBehindTheSectionsEndTheSearch) {
    auto const stream = NewStream();
    WriteSection(*stream, kFrame, 1, nullptr, "body");
    stream->SetPosition(stream->GetLength());
    stream->Write(10, "0123456789");
    EXPECT_EQ(ReadSection(*stream, kFrame, 1, nullptr, 4), "body");
    EXPECT_EQ(ReadSection(*stream, kFrame, 2, nullptr, 4), "none");
}

TEST(CatalogStream, EveryCutOffHeaderThrows) {
    auto const whole = NewStream();
    WriteSection(*whole, kFrame, 1, "name", "body");
    std::string const bytes = Contents(*whole);
    for (std::size_t length = 4; length < bytes.size(); ++length) {
        auto const stream = NewStream(bytes.substr(0, length));
        long const error = CaughtCode([&] { ReadSection(*stream, kFrame, 1, nullptr, 0); });
        EXPECT_TRUE(error == -39 || error == SkBadStreamFormatErrC()) << length << ": " << error;
    }
}

TEST(CatalogStream, LyingLengthsThrow) {
    auto const whole = NewStream();
    WriteSection(*whole, kFrame, 1, nullptr, "body");
    for (char const* length : {"\0\0\0\5", "\377\377\377\377", "\177\377\377\377"}) {
        std::string bytes = Contents(*whole);
        std::memcpy(bytes.data() + 12, length, 4);
        auto const stream = NewStream(bytes);
        EXPECT_EQ(CaughtCode([&] { ReadSection(*stream, kFrame, 1, nullptr, 0); }), SkBadStreamFormatErrC());
        EXPECT_EQ(CaughtCode([&] { ReadSection(*stream, kFrame, 2, nullptr, 0); }), SkBadStreamFormatErrC());
    }
    std::string bytes = Contents(*whole);
    std::memcpy(bytes.data() + 16, "\377\377\377\377", 4);  // of the name
    auto const stream = NewStream(bytes);
    EXPECT_EQ(CaughtCode([&] { ReadSection(*stream, kFrame, 1, nullptr, 0); }), SkBadStreamFormatErrC());
}

}  // namespace
