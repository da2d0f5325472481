#include "framewright/media/media_recognizer.h"

#include <gtest/gtest.h>

#include "framewright/thornmere/settings.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;

// --- rows

TEST(MediaFileDesc, EqualsItsType) {
    StMediaFileDesc const row{SrCode("DIB "), 0, "dib", 0, "Bitmap"};
    EXPECT_TRUE(row == SrCode("DIB "));
    EXPECT_FALSE(row != SrCode("DIB "));
    EXPECT_FALSE(row == SrCode("BMP "));
    EXPECT_TRUE(row != SrCode("BMP "));
}

TEST(MediaFileDesc, WithoutATypeEqualsNone) {
    StMediaFileDesc const row{0, 0, "dib", 0, ""};
    EXPECT_FALSE(row == 0L);
    EXPECT_TRUE(row != 0L);
}

TEST(MediaFileDesc, TypesHave32Bits) {
    // A code whose first character has its top bit set, as a signed and as an unsigned 32-bit value.
    StMediaFileDesc const row{static_cast<std::int32_t>(0xE0202020), 0, nullptr, 0, ""};
    EXPECT_TRUE(row == 0xE0202020L);
    EXPECT_TRUE(row == static_cast<long>(static_cast<std::int32_t>(0xE0202020)));
}

TEST(MediaFileDesc, EqualsItsExtensionInAnyCase) {
    StMediaFileDesc const row{SrCode("PICT"), 0, "pIct", 0, ""};
    for (char const* same : {"pict", "PICT", "PiCT"}) {
        EXPECT_TRUE(row == same) << same;
        EXPECT_FALSE(row != same) << same;
    }
    StMediaFileDesc const ends{SrCode("ends"), 0, "aZ", 0, ""};
    EXPECT_TRUE(ends == "Az");
    // The characters around the letters are no letters.
    StMediaFileDesc const odd{SrCode("odd "), 0, "@[`{", 0, ""};
    for (char const* other : {"", "pic", "pictu", "p ct", ".pict"}) {
        EXPECT_FALSE(row == other) << other;
        EXPECT_TRUE(row != other) << other;
    }
    EXPECT_FALSE(odd == "`{@[");
    EXPECT_TRUE(odd == "@[`{");
}

TEST(MediaFileDesc, WithoutAnExtensionEqualsNone) {
    StMediaFileDesc const row{SrCode("PICT"), 0, nullptr, 0, ""};
    EXPECT_FALSE(row == "");
    EXPECT_TRUE(row != "");
    StMediaFileDesc const other{SrCode("PICT"), 0, "pict", 0, ""};
    EXPECT_FALSE(other == static_cast<char const*>(nullptr));
}

// --- what the base answers

TEST(MediaRecognizer, IsAbstract) {
    EXPECT_EQ(ErrorOf([] { SmMediaRecognizer::New(); }), SkAbstractClassErrC());
    EXPECT_STREQ(SmMediaRecognizer::ClassName(), "SmMediaRecognizer");
}

class PlainRecognizer : public SmMediaRecognizer {};

TEST(MediaRecognizer, BaseAnswers) {
    auto const format = StRef<SmMediaRecognizer>::Adopt(new PlainRecognizer);
    EXPECT_EQ(format->GetInputFamilyType(), 0x3F3F3F3FU);
    bool read = false, write = false;
    format->CapableOfReadAndWrite(read, write);
    EXPECT_TRUE(read);
    EXPECT_TRUE(write);
    unsigned long family = 0;
    format->ObjectClass(0, &family);
    EXPECT_EQ(family, SrCode("VIDE"));
    EXPECT_EQ(format->ObjectClass(0, nullptr), nullptr);
    StMediaFileDesc row{};
    EXPECT_FALSE(format->GetFileDesc(0, row));
    EXPECT_EQ(format->NumberOfObjectClasses(), 0);
    EXPECT_EQ(format->NewMedia(nullptr), nullptr);
    EXPECT_EQ(format->Recognize(nullptr, nullptr, nullptr, 0, nullptr), 0);
    EXPECT_EQ(format->GetType(), 0U);
}

TEST(MediaRecognizer, BaseCodecIsNone) {
    auto const format = StRef<SmMediaRecognizer>::Adopt(new PlainRecognizer);
    EXPECT_EQ(format->HowManyCodecs(), 1);
    unsigned long depth = 0, family = 0;
    StPoint size{};
    bool hasQuality = true;
    EXPECT_EQ(format->AvailableCodec(0, depth, size, hasQuality, &family), SrCode("none"));
    EXPECT_EQ(depth, SrCode("ColB"));
    EXPECT_EQ(size, (StPoint{32767, 32767}));
    EXPECT_FALSE(hasQuality);
    EXPECT_EQ(family, SrCode("VIDE"));
    EXPECT_EQ(format->AvailableCodec(0, depth, size, hasQuality, nullptr), SrCode("none"));
}

TEST(MediaRecognizer, BasePreviewDoesNothing) {
    Log log;
    auto const format = StRef<SmMediaRecognizer>::Adopt(new PlainRecognizer);
    auto const object = StRef<SpyObject>::Adopt(new SpyObject(log));
    SmObject* shown = object.Get();
    format->Preview(shown, nullptr);
    EXPECT_EQ(shown, object.Get());
    EXPECT_EQ(object->ReferenceCount(), 1);
}

// --- the preference

TEST(AppendFileExtensions, KeepsWhatIsSet) {
    bool const before = SgGetAppendFileExtensions();
    SgSetAppendFileExtensions(false);
    EXPECT_FALSE(SgGetAppendFileExtensions());
    SgSetAppendFileExtensions(true);
    EXPECT_TRUE(SgGetAppendFileExtensions());
    SgSetAppendFileExtensions(before);
}

TEST(AppendFileExtensions, AreKeptUnderTheirKey) {
    using Flag = ScPersistentData<bool, ScNormalPersistentBehavior<bool>>;
    bool const before = SgGetAppendFileExtensions();
    SgSetAppendFileExtensions(!before);
    EXPECT_EQ(Flag(nullptr, "Add file extensions to filenames", before).GetValue(), !before);
    SgSetAppendFileExtensions(before);
    EXPECT_EQ(Flag(nullptr, "Add file extensions to filenames", !before).GetValue(), before);
}

}  // namespace
