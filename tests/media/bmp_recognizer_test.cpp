// How the BMP format takes part: recognition, registration, numbered sequences, and real files.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "bmp_file.h"
#include "framewright/imagery/track.h"
#include "framewright/media/media_manager.h"
#include "framewright/media/media_objects.h"
#include "framewright/media/media_registries.h"

namespace {

using namespace bmp_test;
using media_test::LocationOf;
using media_test::OpenFiles;
using media_test::TempFolder;

constexpr unsigned long kBmp = SrCode("BMP ");

short ConfidenceOf(std::string const& path) {
    return Recognizer()->CanOpen(LocationOf(path).get());
}

std::string Text(Bytes const& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// A 24-bit file of one pixel, whose colour is a grey.
std::string OnePixel(unsigned char shade) {
    File file;
    file.width = file.height = 1;
    file.bitCount = 24;
    file.data = {shade, shade, shade, 0};
    return Text(file.Build());
}

std::uint32_t ShadeOf(SmObject* frame) {
    return static_cast<std::uint32_t>(static_cast<SmImagerFrame*>(frame)->GetRGBAPixelAsLong(0, 0)) & 0xFF;
}

// Recognition.

TEST(BmpRecognizer, Confidence_ComesFromTheExtension) {
    TempFolder const folder;
    struct Row {
        char const* name;
        char const* content;
        short expected;
    };
    Row const rows[] = {
        {"a.bmp", "xx", 10},   {"a.BMP", "", 10},     {"a.dib", "xx", 10},  {"a.Dib", "xx", 10},
        {"a.bm", "BM..", 0},   {"a.bmpx", "BM..", 0}, {"a.txt", "BM..", 0}, {"a.pict", "BM..", 0},
        {"plain", "BM..", 10}, {"plain2", "BM.", 0},  {"plain3", "", 0},    {"plain4", "MB..", 0},
        {"plain5", "bm..", 0}, {"plain6", "BX..", 0},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ConfidenceOf(folder.Write(row.name, row.content)), row.expected);
    }
    EXPECT_EQ(ConfidenceOf(folder.Path("missing.bmp")), 0);
    EXPECT_EQ(ConfidenceOf(folder.Path("missing")), 0);
}

TEST(BmpRecognizer, StreamOfTheTest_IsAlwaysReleased) {
    TempFolder const folder;
    long const open = OpenFiles();
    for (char const* content : {"BM..", "BM", "xxxx"}) {
        auto const location = LocationOf(folder.Write("plain", content));
        Recognizer()->CanOpen(location.get());
        EXPECT_EQ(OpenFiles(), open) << content;
    }
}

TEST(BmpRecognizer, LocationWithoutAFile_IsNotRecognized) {
    StRef<SmMemoryStream> const stream = MemoryStream({'B', 'M', 0, 0});
    StreamLocation location(stream.Get());
    EXPECT_EQ(Recognizer()->CanOpen(&location), 0);
    EXPECT_EQ(stream->GetPosition(), 0u);
}

TEST(BmpRecognizer, TellsItsNamesAndObjects) {
    StRef<SmMediaRecognizerBmp> const recognizer = Recognizer();
    EXPECT_EQ(recognizer->GetType(), 0x424D5020u);
    struct Row {
        unsigned long type;
        char const* extension;
    };
    Row const rows[] = {{SrCode("BMP "), "bmp"}, {SrCode("DIB "), "dib"}};
    StMediaFileDesc desc{};
    for (long i = 0; i < 2; ++i) {
        ASSERT_TRUE(recognizer->GetFileDesc(i, desc));
        EXPECT_EQ(static_cast<unsigned long>(desc.mFileType), rows[i].type);
        EXPECT_EQ(desc.mReserved1, 0);
        EXPECT_STREQ(desc.mExtension, rows[i].extension);
        EXPECT_EQ(desc.mReserved2, 0);
        EXPECT_STREQ(desc.mDescription, "Bitmap");
    }
    EXPECT_FALSE(recognizer->GetFileDesc(2, desc));
    EXPECT_FALSE(recognizer->GetFileDesc(-1, desc));

    bool read = false, write = false;
    recognizer->CapableOfReadAndWrite(read, write);
    EXPECT_TRUE(read && write);
    EXPECT_EQ(recognizer->NumberOfObjectClasses(), 2);
    EXPECT_EQ(recognizer->ObjectClass(0, nullptr), SmImagerFrame::Class());
    EXPECT_EQ(recognizer->ObjectClass(1, nullptr), SmImagerTrack::Class());
    EXPECT_FALSE(recognizer->IsMovieFormat(nullptr));
    EXPECT_STREQ(recognizer->GetClassName(), "SmMediaRecognizerBmp");
    EXPECT_TRUE(recognizer->IsMemberOf(SmMediaSimple::Class()));
}

// Registration.

long PlaceInManager() {
    SmMediaManager& manager = *SrGlobalMediaManager();
    for (long i = 0; i < manager.NumberOfRecognizers(); ++i) {
        if (manager.GetRecognizer(i)->GetClass() == SmMediaRecognizerBmp::Class()) return i;
    }
    return -1;
}

TEST(BmpRegistration, PutsTheFormatEverywhereAndTakesItAwayAgain) {
    SmMediaRecognizer* recognizer = nullptr;
    char const* name = nullptr;
    EXPECT_GE(PlaceInManager(), 0);
    ASSERT_TRUE(ScMediaRegistry::GetObjectByID(kBmp, false, recognizer));
    EXPECT_EQ(recognizer->GetClass(), SmMediaRecognizerBmp::Class());
    EXPECT_TRUE(ScStreamNameRegistry::GetObjectByID(kBmp, false, name));
    ASSERT_TRUE(ScCodecNameRegistry::GetObjectByID(SrCode("none"), false, name));

    SrRegisterBmp(true);
    EXPECT_EQ(PlaceInManager(), -1);
    EXPECT_FALSE(ScMediaRegistry::GetObjectByID(kBmp, false, recognizer));
    EXPECT_FALSE(ScStreamNameRegistry::GetObjectByID(kBmp, false, name));
    // Other formats go by that codec name too.
    EXPECT_TRUE(ScCodecNameRegistry::GetObjectByID(SrCode("none"), false, name));

    SrRegisterBmp(false);
    EXPECT_EQ(PlaceInManager(), SrGlobalMediaManager()->NumberOfRecognizers() - 1);
    ASSERT_TRUE(ScMediaRegistry::GetObjectByID(kBmp, false, recognizer));
    EXPECT_EQ(recognizer, SrGlobalMediaManager()->GetRecognizerByType(kBmp));
    EXPECT_EQ(recognizer->ReferenceCount(), 2);
}

TEST(BmpRegistration, WithoutAManager_FillsTheRegistries) {
    SrRegisterBmp(true);
    SrInitializeGlobalMedia(true);
    SrRegisterBmp(false);
    SmMediaRecognizer* recognizer = nullptr;
    EXPECT_TRUE(ScMediaRegistry::GetObjectByID(kBmp, false, recognizer));
    // The manager that comes later finds it there.
    SrInitializeGlobalMedia(false);
    EXPECT_GE(PlaceInManager(), 0);
}

TEST(BmpRegistration, RefusedMemory_Is108) {
    SrRegisterBmp(true);
    EXPECT_GT(media_test::RefusedRuns([] { SrRegisterBmp(false); }), 0);
    // Each refused run may have left its part; the routine for the end takes all of it.
    SrRegisterBmp(true);
    while (PlaceInManager() >= 0)
        SrGlobalMediaManager()->UnregisterByClass(SmMediaRecognizerBmp::Class());
    SrRegisterBmp(false);
    EXPECT_GE(PlaceInManager(), 0);
}

TEST(BmpRegistration, ManagerFindsTheFormat) {
    TempFolder const folder;
    SmMediaManager& manager = *SrGlobalMediaManager();
    EXPECT_EQ(manager.GetRecognizerByType(kBmp)->GetClass(), SmMediaRecognizerBmp::Class());
    EXPECT_EQ(manager.GetRecognizerByFileType(SrCode("DIB "))->GetClass(), SmMediaRecognizerBmp::Class());
    auto const location = LocationOf(folder.Write("a.bmp", OnePixel(9)));
    EXPECT_EQ(manager.IdentifyMedia(location.get(), 0, nullptr), kBmp);
    auto const media = StRef<SmMedia>::Adopt(manager.OpenMedia(location.get(), 1, 0));
    ASSERT_TRUE(media);
    EXPECT_EQ(media->GetMediaType(), kBmp);
}

// One call from file to frame and back.

TEST(BmpFile, IsLoadedAndSaved) {
    TempFolder const folder;
    long const open = OpenFiles();
    auto const in = LocationOf(folder.Write("in.bmp", OnePixel(9)));
    ScMC_* objectClass = nullptr;
    SmObject* object = nullptr;
    SrLoadObjectFromMedia(in.get(), objectClass, object, 0, nullptr);
    auto const frame = StRef<SmObject>::Adopt(object);
    EXPECT_EQ(objectClass, SmImagerFrame::Class());
    EXPECT_EQ(ShadeOf(object), 9u);

    auto const out = LocationOf(folder.Path("out.bmp"));
    SrSaveObjectToMedia(out.get(), objectClass, object, kBmp, nullptr);
    // The same file but for what a test leaves open: size, image size and resolution.
    std::string const written = folder.Read("out.bmp");
    ASSERT_EQ(written.size(), 58u);
    EXPECT_EQ(written.substr(54), "\x09\x09\x09\x09");
    EXPECT_EQ(OpenFiles(), open);
}

TEST(BmpFile, MissingOrUnwritable_IsFileNotFound) {
    TempFolder const folder;
    auto const missing = LocationOf(folder.Path("missing.bmp"));
    SmImagerFrame* frame = nullptr;
    EXPECT_EQ(ErrorOf([&] { Recognizer()->ReadFrame(missing.get(), frame, 0, nullptr, 0); }),
              SkFileNotFound());
    auto const nowhere = LocationOf(folder.Path("no/such/folder/a.bmp"));
    StRef<SmImagerFrame> const made = Frame(1, 1, SrCode("RG32"));
    EXPECT_EQ(ErrorOf([&] { Recognizer()->WriteFrame(nowhere.get(), made.Get(), 0, nullptr); }),
              SkFileNotFound());
}

// Numbered files.

TEST(BmpSequence, IsReadFrameByFrame) {
    TempFolder const folder;
    for (int i = 0; i < 4; ++i) {
        folder.Write("s0" + std::to_string(i) + ".bmp", OnePixel(static_cast<unsigned char>(10 + i)));
    }
    auto const location = LocationOf(folder.Path("s00.bmp"));
    auto const media = StRef<SmMedia>::Adopt(SrGlobalMediaManager()->OpenMedia(location.get(), 1, 0));
    ASSERT_TRUE(media);
    SmMediaTrack* const track = media->GetTrack(0);
    EXPECT_EQ(track->NumberOfFrames(), 4);
    EXPECT_EQ(track->GetDuration(), 4 / 15.0);
    SmObject* frame = nullptr;
    SmObject* extra = nullptr;
    for (long i = 0; i < 4; ++i) {
        track->ReadFrames(frame, SmImagerFrame::Class(), extra, i, 1, 0, nullptr, kResize);
        EXPECT_EQ(ShadeOf(frame), 10u + static_cast<unsigned>(i));
    }
    EXPECT_EQ(
        ErrorOf([&] { track->ReadFrames(frame, SmImagerFrame::Class(), extra, 4, 1, 0, nullptr, kResize); }),
        SkFileNotFound());
    frame->ReleaseReference();

    SmObject* object = nullptr;
    track->ReadFrames(object, SmImagerTrack::Class(), extra, 1, 2, 5, nullptr, kResize);
    auto const stored = StRef<SmImagerTrack>::Adopt(static_cast<SmImagerTrack*>(object));
    EXPECT_EQ(ShadeOf(stored->GetStoredFrame(5)), 11u);
    EXPECT_EQ(ShadeOf(stored->GetStoredFrame(6)), 12u);
    EXPECT_FALSE(stored->GetStoredFrame(7));
}

TEST(BmpSequence, IsWrittenFromNumberOneOn) {
    TempFolder const folder;
    auto const track = StRef<SmImagerTrack>::Adopt(SmImagerTrack::New());
    track->IImagerTrack();
    for (long i = 0; i < 3; ++i) {
        StRef<SmImagerFrame> const frame = Frame(1, 1, SrCode("RG32"));
        auto const shade = static_cast<unsigned char>(20 + i);
        frame->PutPixelAt(0, 0, StRGBA32Pixel{shade, shade, shade, 255});
        track->SetFrame(i, frame.Get());
    }
    auto const location = LocationOf(folder.Path("out.bmp"));
    auto const media = StRef<SmMedia>::Adopt(SrGlobalMediaManager()->CreateMedia(location.get(), kBmp));
    ASSERT_TRUE(media);
    SmMediaTrack* const out = media->NewTrack(SrCode("VIDE"), nullptr);
    out->WriteFrames(track.Get(), SmImagerTrack::Class(), 0, 3, 0, 3, nullptr);
    EXPECT_FALSE(folder.Has("out.bmp"));
    for (int i = 1; i <= 3; ++i) {
        std::string const name = "out000" + std::to_string(i) + ".bmp";
        ASSERT_TRUE(folder.Has(name)) << name;
        EXPECT_EQ(static_cast<unsigned char>(folder.Read(name)[54]), 19 + i);
    }
}

TEST(BmpSequence, IsCopied) {
    TempFolder const folder;
    for (int i = 0; i < 3; ++i) {
        folder.Write("in0" + std::to_string(i) + ".bmp", OnePixel(static_cast<unsigned char>(30 + i)));
    }
    auto const in = LocationOf(folder.Path("in00.bmp"));
    auto const out = LocationOf(folder.Path("out00.dib"));
    EXPECT_TRUE(SrCopyMedia(in.get(), out.get(), kBmp, nullptr, nullptr));
    EXPECT_FALSE(folder.Has("out00.dib"));
    for (int i = 1; i <= 3; ++i) {
        std::string const name = "out0" + std::to_string(i) + ".dib";
        ASSERT_TRUE(folder.Has(name)) << name;
        EXPECT_EQ(static_cast<unsigned char>(folder.Read(name)[54]), 29 + i);
    }
}

// Files that other programs made. tests/media/data/README.md tells how; pictures.txt lists what they show.

std::string DataPath(std::string const& name) {
    return std::string(FRAMEWRIGHT_TEST_DATA) + "/" + name;
}

/// CRC-32, as in the list of pictures.
std::uint32_t ChecksumOf(Picture const& picture) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (auto const& row : picture) {
        for (std::uint32_t const pixel : row) {
            for (int shift = 0; shift < 32; shift += 8) {
                crc ^= pixel >> shift & 0xFF;
                for (int bit = 0; bit < 8; ++bit)
                    crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
            }
        }
    }
    return ~crc;
}

/// A portable pixmap (P6) or bitmap (P1), without comments.
Picture SourcePicture(std::string const& name) {
    std::ifstream file(DataPath(name), std::ios::binary);
    std::string kind;
    std::size_t columns = 0, rows = 0, greatest = 1;
    file >> kind >> columns >> rows;
    if (kind == "P6") file >> greatest;
    EXPECT_TRUE(file) << name;
    if (kind == "P6") file.get();
    Picture picture(rows, std::vector<std::uint32_t>(columns));
    for (auto& row : picture) {
        for (std::uint32_t& pixel : row) {
            if (kind == "P6") {
                auto const red = static_cast<unsigned>(file.get());
                auto const green = static_cast<unsigned>(file.get());
                pixel = Rgb(red, green, static_cast<unsigned>(file.get()));
            } else {
                int ink = 0;
                file >> ink;
                pixel = ink ? Rgb(0, 0, 0) : Rgb(255, 255, 255);
            }
        }
    }
    return picture;
}

struct ListedPicture {
    std::string file, kind, checksum, source;
    std::int32_t rows, columns;
};

std::vector<ListedPicture> ListedPictures() {
    std::vector<ListedPicture> pictures;
    std::ifstream list(DataPath("pictures.txt"));
    for (std::string line; std::getline(list, line);) {
        if (line.empty() || line[0] == '#') continue;
        ListedPicture picture;
        std::istringstream(line) >> picture.file >> picture.kind >> picture.rows >> picture.columns >>
            picture.checksum >> picture.source;
        pictures.push_back(picture);
    }
    EXPECT_EQ(pictures.size(), 20u);
    return pictures;
}

TEST(BmpPictures, ShowWhatTheListTells) {
    for (ListedPicture const& listed : ListedPictures()) {
        SCOPED_TRACE(listed.file);
        auto const location = LocationOf(DataPath(listed.file));
        SmImagerFrame* made = nullptr;
        Recognizer()->ReadFrame(location.get(), made, 0, nullptr, 0);
        auto const frame = StRef<SmImagerFrame>::Adopt(made);
        EXPECT_EQ(CodeText(frame->PixelID()), listed.kind);
        EXPECT_EQ(frame->GetSize(), (StPoint{listed.rows, listed.columns}));
        Picture picture = PictureOf(frame.Get());
        EXPECT_EQ(ChecksumOf(picture), std::stoul(listed.checksum, nullptr, 16));

        // Pictures that lost nothing equal what they were made from, but for the direction of one bit.
        if (listed.source == "-") continue;
        if (listed.kind == "Map1") std::reverse(picture.begin(), picture.end());
        EXPECT_EQ(picture, SourcePicture(listed.source));
    }
}

TEST(BmpPictures, AreTheSameInAFrameOfColors) {
    for (ListedPicture const& listed : ListedPictures()) {
        SCOPED_TRACE(listed.file);
        if (listed.kind == "RG15") continue;
        StRef<SmImagerFrame> const frame = Frame(1, 1, SrCode("ColB"));
        SmImagerFrame* given = frame.Get();
        Recognizer()->ReadFrame(LocationOf(DataPath(listed.file)).get(), given, 0, nullptr, kResize);
        EXPECT_EQ(ChecksumOf(PictureOf(frame.Get())), std::stoul(listed.checksum, nullptr, 16));
    }
}

}  // namespace
