#include "framewright/media/media_manager.h"

#include <gtest/gtest.h>

#include "framewright/core/startup.h"
#include "media/media_test_support.h"

namespace {

using namespace media_test;
using Lines = std::vector<std::string>;

/// A manager of its own with spies in it.
class MediaManager : public testing::Test {
  protected:
    MediaManager() : manager(StRef<SmMediaManager>::Adopt(SmMediaManager::New())) {
        manager->IMediaManager();
    }
    ~MediaManager() override {
        manager = nullptr;
        EXPECT_EQ(log.alive, 0);
    }

    SpyRecognizer* Add(char const (&type)[5], short confidence = 0) {
        auto const format = StRef<SpyRecognizer>::Adopt(new SpyRecognizer(log, SrCode(type), confidence));
        format->name = type;
        manager->Register(format.Get());
        return format.Get();
    }
    StRef<SmMedia> NewMedia() { return StRef<SmMedia>::Adopt(new SpyMedia(log)); }

    Log log;
    StRef<SmMediaManager> manager;
    ScMediaInline location;
};

/// Two classes of objects that a format may yield.
ScMC_* OneClass() {
    return SmVideoSpec::Class();
}
ScMC_* OtherClass() {
    return SmStream::Class();
}

// --- the list

TEST_F(MediaManager, StartsEmpty) {
    EXPECT_EQ(manager->NumberOfRecognizers(), 0);
    EXPECT_EQ(manager->GetRecognizer(0), nullptr);
    EXPECT_EQ(manager->GetRecognizerByType(0), nullptr);
    EXPECT_EQ(manager->GetRecognizerByFileType(0), nullptr);
    EXPECT_EQ(manager->GetRecognizerBySample(OneClass(), nullptr), nullptr);
    EXPECT_EQ(manager->IdentifyMedia(&location, 0, nullptr), SrCode("????"));
    EXPECT_EQ(manager->OpenMedia(&location, 1, 0), nullptr);
    EXPECT_EQ(manager->CreateMedia(&location, SrCode("Aaaa")), nullptr);
}

TEST_F(MediaManager, Register_AppendsAndAddsAReference) {
    SpyRecognizer* const first = Add("Aaaa");
    SpyRecognizer* const second = Add("Bbbb");
    EXPECT_EQ(first->ReferenceCount(), 1);
    manager->Register(first);
    EXPECT_EQ(first->ReferenceCount(), 2) << "no check for a duplicate";
    EXPECT_EQ(manager->NumberOfRecognizers(), 3);
    EXPECT_EQ(manager->GetRecognizer(0), first);
    EXPECT_EQ(manager->GetRecognizer(1), second);
    EXPECT_EQ(manager->GetRecognizer(2), first);
    EXPECT_EQ(manager->GetRecognizer(3), nullptr);
    EXPECT_EQ(manager->GetRecognizer(-1), nullptr);
}

/// A recognizer with a class object of its own.
class OwnClassRecognizer : public SpyRecognizer {
  public:
    using SpyRecognizer::SpyRecognizer;
    ScMC_* GetClass() const override { return OtherClass(); }
};

TEST_F(MediaManager, UnregisterByClass_TakesTheFirstOfExactlyThatClass) {
    SpyRecognizer* const first = Add("Aaaa");
    auto own = StRef<SpyRecognizer>::Adopt(new OwnClassRecognizer(log, SrCode("Bbbb")));
    manager->Register(own.Get());
    manager->Register(own.Get());
    SpyRecognizer* const last = Add("Cccc");
    manager->UnregisterByClass(OtherClass());
    EXPECT_EQ(own->ReferenceCount(), 2);
    ASSERT_EQ(manager->NumberOfRecognizers(), 3);
    EXPECT_EQ(manager->GetRecognizer(0), first);
    EXPECT_EQ(manager->GetRecognizer(1), own.Get());
    EXPECT_EQ(manager->GetRecognizer(2), last);
    manager->UnregisterByClass(SmObject::Class());  // a parent's is not exactly theirs
    EXPECT_EQ(manager->NumberOfRecognizers(), 3);
    manager->UnregisterByClass(SmMediaRecognizer::Class());
    EXPECT_EQ(manager->GetRecognizer(0), own.Get());
}

TEST_F(MediaManager, GetRecognizerByType_GivesTheFirst) {
    SpyRecognizer* const first = Add("Aaaa");
    SpyRecognizer* const second = Add("Bbbb");
    Add("Bbbb");
    EXPECT_EQ(manager->GetRecognizerByType(SrCode("Aaaa")), first);
    EXPECT_EQ(manager->GetRecognizerByType(SrCode("Bbbb")), second);
    EXPECT_EQ(manager->GetRecognizerByType(SrCode("Cccc")), nullptr);
    EXPECT_EQ(manager->GetRecognizerByType(0), first) << "0 is the first of the list";
}

TEST_F(MediaManager, GetRecognizerByFileType_LooksAtTheRows) {
    Add("Aaaa")->rows = {{0, 0, "aaa", 0, ""}};
    SpyRecognizer* const second = Add("Bbbb");
    second->rows = {{SrCode("BMP "), 0, "bmp", 0, ""}, {SrCode("DIB "), 0, "dib", 0, ""}};
    Add("Cccc")->rows = {{SrCode("DIB "), 0, "dib", 0, ""}};
    EXPECT_EQ(manager->GetRecognizerByFileType(SrCode("DIB ")), second);
    EXPECT_EQ(manager->GetRecognizerByFileType(SrCode("BMP ")), second);
    EXPECT_EQ(manager->GetRecognizerByFileType(SrCode("Bbbb")), nullptr);
    EXPECT_EQ(manager->GetRecognizerByFileType(0), nullptr) << "a row without a type equals none";
}

TEST_F(MediaManager, GetRecognizerBySample_GivesTheFamilyOfTheLastClass) {
    SpyRecognizer* const none = Add("None");
    none->classes = {SmObject::Class()};
    none->families = {1};
    SpyRecognizer* const first = Add("Aaaa");
    first->classes = {OneClass(), OtherClass()};
    first->families = {SrCode("VIDE"), SrCode("AUDI")};
    SpyRecognizer* const second = Add("Bbbb");
    second->classes = {OneClass()};
    second->families = {SrCode("TEXT")};

    unsigned long family = 0;
    EXPECT_EQ(manager->GetRecognizerBySample(OneClass(), &family), first);
    EXPECT_EQ(family, SrCode("AUDI")) << "of the last entry, not of the one that was found";
    EXPECT_EQ(manager->GetRecognizerBySample(OtherClass(), nullptr), first);
    EXPECT_EQ(manager->GetRecognizerBySample(SmMedia::Class(), &family), nullptr);
}

TEST_F(MediaManager, IsMediaMatching_ComparesTheExtension) {
    SpyRecognizer* const format = Add("PICT");
    format->rows = {{SrCode("PICT"), 0, "pct", 0, ""}, {SrCode("PICT"), 0, "pict", 0, ""}};
    StFileInfo info = SkNoFileInfo();
    auto const matches = [&](char const* text, unsigned long type) {
        std::snprintf(info.typeText, sizeof info.typeText, "%s", text);
        return manager->IsMediaMatching(type, info);
    };
    EXPECT_TRUE(matches("pct", SrCode("PICT")));
    EXPECT_TRUE(matches("PICT", SrCode("PICT")));
    EXPECT_FALSE(matches("pic", SrCode("PICT")));
    EXPECT_FALSE(matches("", SrCode("PICT")));
    EXPECT_FALSE(matches("pct", SrCode("Xxxx"))) << "an unknown type";
    EXPECT_TRUE(matches("pct", 0)) << "0 is the first of the list";
}

// --- recognition

TEST_F(MediaManager, OpenMedia_AsksAllAndTakesTheSurest) {
    Add("Aaaa", 3);
    SpyRecognizer* const best = Add("Bbbb", 7);
    Add("Cccc", 5);
    best->opens = NewMedia();
    SmMedia* const media = manager->OpenMedia(&location, 1, 0);
    EXPECT_EQ(media, best->opens.Get());
    EXPECT_EQ(log.lines, (Lines{"Aaaa asked", "Bbbb asked", "Cccc asked", "Bbbb asked type media"}));
    EXPECT_EQ(media->ReferenceCount(), 2) << "one for the caller";
    media->ReleaseReference();
}

TEST_F(MediaManager, OpenMedia_TakesTheEarlierAmongEquals) {
    SpyRecognizer* const first = Add("Aaaa", 5);
    Add("Bbbb", 5)->opens = NewMedia();
    first->opens = NewMedia();
    auto const media = StRef<SmMedia>::Adopt(manager->OpenMedia(&location, 1, 0));
    EXPECT_EQ(media.Get(), first->opens.Get());
}

TEST_F(MediaManager, OpenMedia_StopsWhenCertain) {
    Add("Aaaa", 9);
    Add("Bbbb", 10)->opens = NewMedia();
    Add("Cccc", 10);
    auto const media = StRef<SmMedia>::Adopt(manager->OpenMedia(&location, 1, 0));
    EXPECT_EQ(log.lines, (Lines{"Aaaa asked", "Bbbb asked", "Bbbb asked type media"}));
}

TEST_F(MediaManager, OpenMedia_IsNullWhenNobodyIsSure) {
    Add("Aaaa");
    Add("Bbbb", -1);
    EXPECT_EQ(manager->OpenMedia(&location, 1, 0), nullptr);
    EXPECT_EQ(log.lines, (Lines{"Aaaa asked", "Bbbb asked"}));
}

TEST_F(MediaManager, OpenMedia_ThrowsWhenTheWinnerOpensNothing) {
    Add("Aaaa", 10);
    EXPECT_EQ(OutcomeOf([&] { manager->OpenMedia(&location, 1, 0); }), (Outcome{-32768, 0}));
}

TEST_F(MediaManager, OpenMedia_WithATypeAsksThatFormatAlone) {
    Add("Aaaa", 10);
    Add("Bbbb", 1)->opens = NewMedia();
    auto const media = StRef<SmMedia>::Adopt(manager->OpenMedia(&location, 1, SrCode("Bbbb")));
    EXPECT_TRUE(media);
    EXPECT_EQ(log.lines, (Lines{"Bbbb asked", "Bbbb asked type media"}));
}

TEST_F(MediaManager, OpenMedia_WithATypeThatIsNotSureIsNull) {
    Add("Aaaa", 10);
    Add("Bbbb", 0);
    EXPECT_EQ(manager->OpenMedia(&location, 1, SrCode("Bbbb")), nullptr);
    EXPECT_EQ(log.lines, Lines{"Bbbb asked"});
}

TEST_F(MediaManager, OpenMedia_TakesAFileTypeForATypeThatNobodyHas) {
    SpyRecognizer* const movies = Add("QT  ", 10);
    movies->rows = {{SrCode("MooV"), 0, "mov", 0, "Quicktime Movie"}};
    movies->opens = NewMedia();
    auto const media = StRef<SmMedia>::Adopt(manager->OpenMedia(&location, 1, SrCode("MooV")));
    EXPECT_EQ(media.Get(), movies->opens.Get());
}

TEST_F(MediaManager, OpenMedia_WithAnUnknownTypeThrows) {
    Add("Aaaa", 10);
    EXPECT_EQ(OutcomeOf([&] { manager->OpenMedia(&location, 1, SrCode("Xxxx")); }),
              (Outcome{SkUnrecognizedMedia(), 8}));
}

TEST_F(MediaManager, OpenMedia_PassesErrorsOn) {
    Add("Aaaa", 10)->throws = true;
    EXPECT_EQ(ErrorOf([&] { manager->OpenMedia(&location, 1, 0); }), -50);
    EXPECT_EQ(ErrorOf([&] { manager->IdentifyMedia(&location, 0, nullptr); }), -50);
}

TEST_F(MediaManager, IdentifyMedia_GivesTheTypeOfTheSurest) {
    Add("Aaaa", 3);
    Add("Bbbb", 7);
    Add("Cccc", 7);
    EXPECT_EQ(manager->IdentifyMedia(&location, 0, nullptr), SrCode("Bbbb"));
    EXPECT_EQ(log.lines, (Lines{"Aaaa asked type", "Bbbb asked type", "Cccc asked type"}));
    log.lines.clear();
    Add("Dddd", 10);
    Add("Eeee", 10);
    EXPECT_EQ(manager->IdentifyMedia(&location, 0, nullptr), SrCode("Dddd"));
    EXPECT_EQ(log.lines.size(), 4U) << "10 stops the walk";
}

TEST_F(MediaManager, IdentifyMedia_SkipsWhoCannotRead) {
    Add("Aaaa", 9)->canRead = false;
    EXPECT_EQ(manager->IdentifyMedia(&location, 0, nullptr), 0x3F3F3F3FU);
    EXPECT_TRUE(log.lines.empty());
    Add("Bbbb", 1);
    EXPECT_EQ(manager->IdentifyMedia(&location, 0, nullptr), SrCode("Bbbb"));
}

TEST_F(MediaManager, IdentifyMedia_WantsFamilyAndClassInOneEntry) {
    SpyRecognizer* const format = Add("Aaaa", 5);
    format->classes = {OneClass(), OtherClass()};
    format->families = {SrCode("VIDE"), SrCode("AUDI")};
    auto const identified = [&](unsigned long family, ScMC_* objectClass) {
        log.lines.clear();
        return manager->IdentifyMedia(&location, family, objectClass) == SrCode("Aaaa");
    };
    EXPECT_TRUE(identified(SrCode("VIDE"), OneClass()));
    EXPECT_EQ(log.lines, Lines{"Aaaa asked type family class"});
    EXPECT_TRUE(identified(SrCode("AUDI"), OtherClass()));
    EXPECT_TRUE(identified(SrCode("AUDI"), nullptr));
    EXPECT_TRUE(identified(0, OtherClass()));
    EXPECT_EQ(log.lines, Lines{"Aaaa asked type class"});
    EXPECT_FALSE(identified(SrCode("AUDI"), OneClass())) << "each is there, but not together";
    EXPECT_TRUE(log.lines.empty());
    EXPECT_FALSE(identified(SrCode("TEXT"), nullptr));
    EXPECT_FALSE(identified(0, SmMedia::Class()));
}

TEST_F(MediaManager, CreateMedia_TakesTheFirstThatWritesTheType) {
    Add("Aaaa")->canWrite = false;
    SpyRecognizer* const writer = Add("Aaaa");
    writer->makes = NewMedia();
    auto const media = StRef<SmMedia>::Adopt(manager->CreateMedia(&location, SrCode("Aaaa")));
    EXPECT_EQ(media.Get(), writer->makes.Get());
    EXPECT_EQ(log.lines, Lines{"Aaaa new media"});
    EXPECT_EQ(manager->CreateMedia(&location, SrCode("Bbbb")), nullptr);
    EXPECT_EQ(manager->CreateMedia(&location, 0), nullptr) << "no wild card here";
}

// --- missing media, held media, life

TEST(MediaMissing, ListKeepsClonesUntilItIsPurged) {
    ScVector<ScMediaLocation*>& list = SrGetMissingMediaList();
    EXPECT_EQ(list.size(), 0U);
    {
        auto const location = LocationOf("/no such/a.pic");
        SrGlobalMediaManager()->AddMissingMedia(location.get());
        SrGlobalMediaManager()->AddMissingMedia(location.get());
        ASSERT_EQ(list.size(), 2U);
        EXPECT_NE(list[0], location.get());
    }
    EXPECT_EQ(PathOf(*list[0]), "/no such/a.pic");
    SrGlobalMediaManager()->PurgeMissingMediaList();
    EXPECT_EQ(list.size(), 0U);
    SrGlobalMediaManager()->PurgeMissingMediaList();
}

TEST_F(MediaManager, AddMissingMedia_WhereMemoryIsRefused) {
    auto const file = LocationOf("/no such/a.pic");
    EXPECT_GT(RefusedRuns([&] { manager->AddMissingMedia(file.get()); }), 1);
}

TEST_F(MediaManager, ReleaseMedia_DropsOneReferenceInAnyCase) {
    auto const media = NewMedia();
    media->AddReference();
    manager->ReleaseMedia(media.Get());
    EXPECT_EQ(media->ReferenceCount(), 1);
    manager->ReleaseMedia(nullptr);
}

TEST_F(MediaManager, Clone_SharesRecognizersAndCopiesMissingLocations) {
    SpyRecognizer* const format = Add("Aaaa");
    manager->AddMissingMedia(LocationOf("/no such/a.pic").get());
    auto copy = StRef<SmMediaManager>::Adopt(manager->Clone());
    EXPECT_EQ(copy->GetRecognizer(0), format);
    EXPECT_EQ(format->ReferenceCount(), 2);
    manager->Free();
    EXPECT_EQ(manager->NumberOfRecognizers(), 0);
    EXPECT_EQ(format->ReferenceCount(), 1);
    EXPECT_EQ(copy->NumberOfRecognizers(), 1);
    EXPECT_GT(RefusedRuns([&] { StRef<SmMediaManager>::Adopt(copy->Clone()); }), 2);
}

TEST_F(MediaManager, ImplementBecome_ReplacesTheState) {
    Add("Aaaa");
    manager->AddMissingMedia(LocationOf("/no such/a.pic").get());
    auto const other = StRef<SmMediaManager>::Adopt(SmMediaManager::New());
    manager->AddReference();
    manager->ImplementBecome(other.Get());
    EXPECT_EQ(manager->NumberOfRecognizers(), 0);
    EXPECT_EQ(manager->ReferenceCount(), 2);
    manager->ReleaseReference();
    EXPECT_EQ(log.alive, 0);
}

// --- the global manager

/// A recognizer that clones itself and tells its name.
class CloningRecognizer : public SpyRecognizer {
  public:
    using SpyRecognizer::SpyRecognizer;
    void* ImplementClone() const override {
        if (refuses) SrThrow(SkMemoryFull(), nullptr);
        auto* const copy = new CloningRecognizer(mLog, type);
        return copy;
    }
    bool refuses = false;
};

/// Leaves the global manager as it found it.
class GlobalMedia : public testing::Test {
  protected:
    ~GlobalMedia() override {
        for (unsigned long type : registered)
            ScMediaRegistry::UnRegisterObject(type);
        SrInitializeGlobalMedia(true);
        SrInitializeGlobalMedia(false);
        EXPECT_EQ(log.alive, 0);
    }
    CloningRecognizer* Enter(char const (&type)[5]) {
        auto const format = StRef<CloningRecognizer>::Adopt(new CloningRecognizer(log, SrCode(type)));
        EXPECT_TRUE(ScMediaRegistry::RegisterObject(SrCode(type), format.Get()));
        registered.push_back(SrCode(type));
        return format.Get();
    }
    /// The types of the manager's recognizers that these tests entered, in order.
    std::vector<unsigned long> OurTypes(SmMediaManager& manager) {
        std::vector<unsigned long> types;
        for (long i = 0; i < manager.NumberOfRecognizers(); ++i) {
            unsigned long const type = manager.GetRecognizer(i)->GetType();
            if (std::find(registered.begin(), registered.end(), type) != registered.end())
                types.push_back(type);
        }
        return types;
    }

    Log log;
    std::vector<unsigned long> registered;
};

TEST_F(GlobalMedia, AddGlobalRecognizers_AddsClonesInTheOrderOfTheirTypes) {
    SmMediaManager& manager = *SrGlobalMediaManager();
    CloningRecognizer* const last = Enter("~~~~");
    Enter("!!!!");
    Enter("RRRR");
    SrAddGlobalRecognizers(&manager);
    std::vector<unsigned long> const order{SrCode("!!!!"), SrCode("RRRR"), SrCode("~~~~")};
    EXPECT_EQ(OurTypes(manager), order);
    EXPECT_EQ(manager.GetRecognizer(0)->GetType(), SrCode("!!!!"));
    SmMediaRecognizer* const clone = manager.GetRecognizerByType(SrCode("~~~~"));
    EXPECT_NE(clone, last);
    EXPECT_EQ(clone->ReferenceCount(), 1) << "the manager's";
    EXPECT_EQ(last->ReferenceCount(), 1) << "the registry's";

    long const count = manager.NumberOfRecognizers();
    SrAddGlobalRecognizers(&manager);
    EXPECT_EQ(manager.NumberOfRecognizers(), count) << "run twice it leaves one copy of each";
    EXPECT_EQ(OurTypes(manager), order);
}

TEST_F(GlobalMedia, AddGlobalRecognizers_EmptiesTheManagerFirst) {
    SmMediaManager& manager = *SrGlobalMediaManager();
    long const count = manager.NumberOfRecognizers();
    for (int i = 0; i < 3; ++i) {
        auto const format = StRef<SpyRecognizer>::Adopt(new SpyRecognizer(log, SrCode("Temp")));
        manager.Register(format.Get());
    }
    SrAddGlobalRecognizers(&manager);
    EXPECT_EQ(manager.NumberOfRecognizers(), count);
    EXPECT_EQ(manager.GetRecognizerByType(SrCode("Temp")), nullptr);
    EXPECT_EQ(log.alive, 0);
}

TEST_F(GlobalMedia, Initialize_MakesTheManagerWithTheRegisteredFormats) {
    Enter("RRRR");
    SrInitializeGlobalMedia(true);
    EXPECT_EQ(SrGlobalMediaManager(), nullptr);
    SrInitializeGlobalMedia(true);
    SrInitializeGlobalMedia(false);
    ASSERT_NE(SrGlobalMediaManager(), nullptr);
    EXPECT_NE(SrGlobalMediaManager()->GetRecognizerByType(SrCode("RRRR")), nullptr);
    EXPECT_EQ(SrGlobalMediaManager()->ReferenceCount(), 1);
}

TEST_F(GlobalMedia, WithoutAManager_AccessThrows) {
    SrInitializeGlobalMedia(true);
    EXPECT_EQ(SrGlobalMediaManager(), nullptr);
    EXPECT_EQ(OutcomeOf([] { SrGetMissingMediaList(); }), (Outcome{SkMediaManagerMissing(), 7}));
    EXPECT_EQ(OutcomeOf([] { media::GlobalMediaManager(); }), (Outcome{SkMediaManagerMissing(), 7}));
}

TEST_F(GlobalMedia, Initialize_WithoutMemoryLeavesNoManager) {
    SrInitializeGlobalMedia(true);
    {
        RefusedMemory const refused;
        EXPECT_EQ(ErrorOf([] { SrInitializeGlobalMedia(false); }), -108);
    }
    EXPECT_EQ(SrGlobalMediaManager(), nullptr);
}

TEST_F(GlobalMedia, Initialize_ThatFailsHalfWayLeavesNoManager) {
    SrInitializeGlobalMedia(true);
    Enter("!!!!");
    Enter("RRRR")->refuses = true;
    EXPECT_EQ(ErrorOf([] { SrInitializeGlobalMedia(false); }), -108);
    EXPECT_EQ(SrGlobalMediaManager(), nullptr);
    EXPECT_EQ(log.alive, 2) << "the prototypes alone; the clones are gone";
}

}  // namespace
