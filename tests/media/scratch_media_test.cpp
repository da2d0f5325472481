#include "framewright/media/scratch_media.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

#include "framewright/frame/layer_factory.h"
#include "framewright/imagery/image.h"
#include "framewright/media/video_spec.h"
#include "framewright/spool/scratch.h"
#include "media_test_support.h"

namespace {

using namespace media_test;

StRef<SmImagerFrame> NewFrame(StPoint const& size, unsigned long type) {
    return StRef<SmImagerFrame>::Adopt(SrMakeFrame(size, type, false, false));
}

StRef<SmImagerImage> NewImage() {
    auto image = StRef<SmImagerImage>::Adopt(SmImagerImage::New());
    image->IImagerImage();
    return image;
}

/// "T" and the low 32 bits of the address in ten digits.
std::string NameOf(SmImagerImage* image) {
    char name[16];
    auto const number = static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(image) & 0xFFFFFFFF);
    std::snprintf(name, sizeof name, "T%010lu", number);
    return name;
}

/// A format that writes nothing, and a list of scratch folders of the test's own.
class ScratchMedia : public testing::Test {
  protected:
    ScratchMedia() {
        SrInitializeScratch(true);
        format = formats.Add(log, "Scra");
        media = StRef<SpyMedia>::Adopt(new SpyMedia(log));
        format->makes = StRef<SmMedia>(media.Get());
        image->AddLayer(NewFrame({2, 3}, SrCode("ColB")).Get());
    }
    ~ScratchMedia() override { SrInitializeScratch(true); }

    void AddFolder(std::string const& path) { SrAddScratchFolder(StFileSpec(path.c_str())); }
    StRef<SmMedia> Create(ScMediaLocation** location, SmVideoSpec* spec = nullptr) {
        return StRef<SmMedia>::Adopt(
            SrCreateScratchMediaForImager(image.Get(), location, SrCode("Scra"), spec));
    }
    SmVideoSpec& SpecOfTrack(long index) { return *static_cast<SpyTrack*>(media->GetTrack(index))->spec; }

    Log log;
    GlobalFormats formats;
    SpyRecognizer* format;
    StRef<SpyMedia> media;
    StRef<SmImagerImage> image = NewImage();
    TempFolder const folder;
};

TEST_F(ScratchMedia, LiesInTheFirstFolder_UnderTheImagesNumber_WithoutAnExtension) {
    AddFolder("/one");
    AddFolder("/two");
    ScMediaLocation* location = nullptr;
    auto const made = Create(&location);
    std::unique_ptr<ScMediaLocation> const owned(location);
    EXPECT_EQ(made.Get(), media.Get());
    EXPECT_EQ(media->ReferenceCount(), 3) << "here, the format's, the caller's";
    ASSERT_NE(location, nullptr);
    EXPECT_EQ(PathOf(*location), "/one/" + NameOf(image.Get()));
    EXPECT_EQ(PathOf(*media->GetLocation()), PathOf(*location));
    EXPECT_NE(media->GetLocation(), location);
}

TEST_F(ScratchMedia, TheSameImageHasTheSameName_AnotherOneAnother) {
    AddFolder("/one");
    auto const other = NewImage();
    std::string paths[3];
    SmImagerImage* const images[] = {image.Get(), image.Get(), other.Get()};
    for (int i = 0; i < 3; ++i) {
        ScMediaLocation* location = nullptr;
        StRef<SmMedia>::Adopt(SrCreateScratchMediaForImager(images[i], &location, SrCode("Scra"), nullptr));
        std::unique_ptr<ScMediaLocation> const owned(location);
        paths[i] = PathOf(*location);
    }
    EXPECT_EQ(paths[0], paths[1]);
    EXPECT_EQ(paths[2], "/one/" + NameOf(other.Get()));
    EXPECT_NE(paths[0], paths[2]);
}

TEST_F(ScratchMedia, NobodyHasToTakeTheLocation) {
    AddFolder("/one");
    EXPECT_EQ(Create(nullptr).Get(), media.Get());
    EXPECT_EQ(PathOf(*media->GetLocation()), "/one/" + NameOf(image.Get()));
}

TEST_F(ScratchMedia, AGivenLocationIsTaken_AndNoFolder) {
    AddFolder("/one");
    auto const given = LocationOf("/somewhere/else.bmp");
    ScMediaLocation* location = given.get();
    EXPECT_EQ(Create(&location).Get(), media.Get());
    EXPECT_EQ(location, given.get());
    EXPECT_EQ(PathOf(*media->GetLocation()), "/somewhere/else.bmp");
    EXPECT_EQ(media->NumberOfTracks(), 1);
}

TEST_F(ScratchMedia, AFolderThatGivesNoMedia_HasTheNextOneTried) {
    /// Gives media at its second call.
    class Choosy : public SpyRecognizer {
      public:
        using SpyRecognizer::SpyRecognizer;
        SmMedia* NewMedia(ScMediaLocation* location) override {
            asked.push_back(PathOf(*location));
            return asked.size() < 2 ? nullptr : SpyRecognizer::NewMedia(location);
        }
        std::vector<std::string> asked;
    };
    auto const choosy = StRef<Choosy>::Adopt(new Choosy(log, SrCode("Choo")));
    choosy->makes = StRef<SmMedia>(media.Get());
    SrGlobalMediaManager()->Register(choosy.Get());
    for (char const* path : {"/one", "/two", "/three"})
        AddFolder(path);
    ScMediaLocation* location = nullptr;
    auto const made =
        StRef<SmMedia>::Adopt(SrCreateScratchMediaForImager(image.Get(), &location, SrCode("Choo"), nullptr));
    std::unique_ptr<ScMediaLocation> const owned(location);
    EXPECT_EQ(made.Get(), media.Get());
    EXPECT_EQ(choosy->asked,
              (std::vector<std::string>{"/one/" + NameOf(image.Get()), "/two/" + NameOf(image.Get())}));
    EXPECT_EQ(PathOf(*location), "/two/" + NameOf(image.Get()));
}

TEST_F(ScratchMedia, AnErrorEndsTheSearch) {
    class Failing : public SpyRecognizer {
      public:
        using SpyRecognizer::SpyRecognizer;
        SmMedia* NewMedia(ScMediaLocation*) override {
            ++calls;
            SrThrow(-36, nullptr);
        }
        long calls = 0;
    };
    auto const failing = StRef<Failing>::Adopt(new Failing(log, SrCode("Fail")));
    SrGlobalMediaManager()->Register(failing.Get());
    AddFolder("/one");
    AddFolder("/two");
    ScMediaLocation* location = nullptr;
    EXPECT_EQ(
        ErrorOf([&] { SrCreateScratchMediaForImager(image.Get(), &location, SrCode("Fail"), nullptr); }),
        -36);
    EXPECT_EQ(failing->calls, 1);
    EXPECT_EQ(location, nullptr);
}

TEST_F(ScratchMedia, WithoutFoldersThereIsNoMedia_ButALocation) {
    ScMediaLocation* location = nullptr;
    EXPECT_EQ(Create(&location).Get(), nullptr);
    std::unique_ptr<ScMediaLocation> const owned(location);
    ASSERT_NE(location, nullptr);
    EXPECT_EQ(location->GetClass(), SrCode("MeFL"));
    EXPECT_EQ(PathOf(*location), "");
    EXPECT_EQ(media->NumberOfTracks(), 0);
    EXPECT_EQ(Create(nullptr).Get(), nullptr);
}

TEST_F(ScratchMedia, AnUnknownTypeGivesNull) {
    AddFolder("/one");
    auto const given = LocationOf("/a.bmp");
    ScMediaLocation* location = given.get();
    EXPECT_EQ(SrCreateScratchMediaForImager(image.Get(), &location, SrCode("None"), nullptr), nullptr);
    EXPECT_EQ(SrCreateScratchMediaForImager(image.Get(), nullptr, SrCode("None"), nullptr), nullptr);
}

TEST_F(ScratchMedia, WithoutAManagerItIsThrown) {
    AddFolder("/one");
    SrInitializeGlobalMedia(true);
    EXPECT_EQ(OutcomeOf([&] { Create(nullptr); }), (Outcome{SkMediaManagerMissing(), 7}));
    SrInitializeGlobalMedia(false);
}

TEST_F(ScratchMedia, OfThreeLayersTheColourLayerAloneGetsATrack) {
    image->AddLayer(NewFrame({2, 3}, SrCode("DepF")).Get());
    image->AddLayer(NewFrame({2, 3}, SrCode("Alp8")).Get());
    ASSERT_EQ(image->GetLayerCount(), 3);
    AddFolder("/one");
    Create(nullptr);
    ASSERT_EQ(media->NumberOfTracks(), 1);
    SmVideoSpec& spec = SpecOfTrack(0);
    EXPECT_EQ(spec.mFrameSize, (StPoint{2, 3}));
    EXPECT_EQ(spec.mFrameType, SrCode("ColB"));
    // The rest is that of a new spec.
    EXPECT_EQ(spec.mFrameRate, 15.0F);
    EXPECT_EQ(spec.mResolutionX, 72.0F);
    EXPECT_EQ(spec.mQuality, 100);
}

TEST_F(ScratchMedia, EachLayerThatIsToBeSavedGetsATrackOfItsShape_EmptyPlacesNone) {
    auto const gray = NewFrame({5, 7}, SrCode("Gry8"));
    gray->SetSaveIntent(true);
    image->SetLayer(3, gray.Get());
    AddFolder("/one");
    auto const given = StRef<SmVideoSpec>::Adopt(SmVideoSpec::New());
    given->IVideoSpec();
    given->mFrameRate = 12.0F;
    given->mIsSequence = true;
    Create(nullptr, given.Get());
    ASSERT_EQ(media->NumberOfTracks(), 2);
    EXPECT_EQ(SpecOfTrack(0).mFrameSize, (StPoint{2, 3}));
    EXPECT_EQ(SpecOfTrack(0).mFrameType, SrCode("ColB"));
    EXPECT_EQ(SpecOfTrack(1).mFrameSize, (StPoint{5, 7}));
    EXPECT_EQ(SpecOfTrack(1).mFrameType, SrCode("Gry8"));
    EXPECT_EQ(SpecOfTrack(1).mFrameRate, 12.0F);
    EXPECT_TRUE(SpecOfTrack(1).mIsSequence);
    EXPECT_EQ(given->mFrameSize, (StPoint{200, 320})) << "the caller's spec is left";
    EXPECT_EQ(given->ReferenceCount(), 1);
}

TEST_F(ScratchMedia, WhereMemoryIsRefused_NothingIsLeftBehind) {
    AddFolder("/one");
    image->GetLayer(0)->SetSaveIntent(false);  // the test's own tracks take memory for granted
    long const refused = RefusedRuns([&] {
        ScMediaLocation* location = nullptr;
        struct StDelete {
            ScMediaLocation*& location;
            ~StDelete() { delete location; }
        } const atEnd{location};
        Create(&location);
    });
    EXPECT_GT(refused, 2);
    EXPECT_EQ(media->ReferenceCount(), 2);
}

}  // namespace
