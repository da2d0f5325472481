#include "framewright/spool/scratch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "../thornmere/support.h"
#include "framewright/spool/scratch_list.h"
#include "framewright/spool/spool_manager.h"
#include "framewright/thornmere/threads.h"

namespace {

StFileSpec Spec(std::string const& path) {
    return StFileSpec(path.c_str());
}

/// Each test starts without scratch folders.
class Scratch : public testing::Test {
  protected:
    Scratch() { SrInitializeScratch(true); }
    ~Scratch() override {
        SrSetAllocationGate(nullptr);
        SrInitializeScratch(true);
    }
    std::string Make(std::string const& name) const {
        std::string const path = folder / name;
        WriteWholeFile(path, "lsPS");
        return path;
    }
    static std::vector<std::string> List() {
        std::vector<std::string> paths;
        for (auto const& location : spool::ScratchLocations())
            paths.push_back(location->GetFolder().GetPath());
        return paths;
    }
    TemporaryFolder const folder;
};

// --- the list

TEST_F(Scratch, ALocationNamesNothingUntilItIsSet) {
    auto const location = StRef<SmScratchLocation>::Adopt(SmScratchLocation::New());
    EXPECT_STREQ(location->GetClassName(), "SmScratchLocation");
    EXPECT_EQ(SmScratchLocation::Class()->Parent(), SmObject::Class());
    EXPECT_FALSE(location->GetFolder().IsValid());
    location->SetFolder(Spec("/var/tmp"));
    EXPECT_STREQ(location->GetFolder().GetPath(), "/var/tmp");
    location->SetFolder(Spec("/tmp"));
    EXPECT_STREQ(location->GetFolder().GetPath(), "/tmp");
}

TEST_F(Scratch, AClonedLocationNamesTheSameFolder) {
    auto const location = StRef<SmScratchLocation>::Adopt(SmScratchLocation::New());
    location->SetFolder(Spec("/var/tmp"));
    auto const copy = StRef<SmScratchLocation>::Adopt(location->Clone());
    location->SetFolder(Spec("/tmp"));
    EXPECT_STREQ(copy->GetFolder().GetPath(), "/var/tmp");
}

TEST_F(Scratch, FoldersStandInTheOrderOfAddition_DuplicatesToo_ExistingOrNot) {
    SrAddScratchFolder(Spec("/no/such folder"));
    SrAddScratchFolder(Spec(folder.Path()));
    SrAddScratchFolder(Spec("/no/such folder"));
    EXPECT_EQ(List(), (std::vector<std::string>{"/no/such folder", folder.Path(), "/no/such folder"}));
    for (auto const& location : spool::ScratchLocations())
        EXPECT_EQ(location->ReferenceCount(), 1);
}

TEST_F(Scratch, AddingAFolderMakesNoFileInIt) {
    SrAddScratchFolder(Spec(folder.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(Scratch, AddingWhereMemoryIsRefused_LeavesTheList) {
    SrAddScratchFolder(Spec("/tmp"));
    for (int allowed = 0; allowed < 20; ++allowed) {
        long code;
        {
            RefusedMemory const refused(allowed);
            code = CaughtCode([] { SrAddScratchFolder(Spec("/a")); });
        }
        if (code == SkNothingCaught()) break;
        EXPECT_EQ(code, -108);
        EXPECT_EQ(List(), std::vector<std::string>{"/tmp"});
    }
    EXPECT_EQ(List(), (std::vector<std::string>{"/tmp", "/a"}));
}

TEST_F(Scratch, SetUpDoesNothing_HoweverOften) {
    SrInitializeScratch(false);
    SrAddScratchFolder(Spec("/tmp"));
    SrInitializeScratch(false);
    SrInitializeScratch(false);
    EXPECT_EQ(List(), std::vector<std::string>{"/tmp"});
}

TEST_F(Scratch, ShutDownDropsEachReferenceAndEmptiesTheList) {
    SrAddScratchFolder(Spec("/a"));
    SrAddScratchFolder(Spec("/b"));
    auto const first = spool::ScratchLocations()[0], second = spool::ScratchLocations()[1];
    EXPECT_EQ(first->ReferenceCount(), 2);
    SrInitializeScratch(true);
    EXPECT_EQ(first->ReferenceCount(), 1);
    EXPECT_EQ(second->ReferenceCount(), 1);
    EXPECT_TRUE(List().empty());
    SrInitializeScratch(true);
    SrAddScratchFolder(Spec("/c"));
    EXPECT_EQ(List(), std::vector<std::string>{"/c"}) << "the list serves again";
}

// --- purging

TEST_F(Scratch, PurgeDeletesSpoolFilesOnly) {
    std::string const spooled[] = {Make("T0012345678.STch"), Make("T0012345679.stch"), Make("other.STCH"),
                                   Make("a.b.sTcH")};
    std::string const kept[] = {Make("picture.bmp"), Make("T0012345678"), Make("STch"), Make("a.STch1"),
                                Make("a.STc"),       Make("a.STch.bmp"),  Make(".STch")};
    SrPurgeScratchFolder(Spec(folder.Path()));
    for (auto const& path : spooled)
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    for (auto const& path : kept)
        EXPECT_TRUE(std::filesystem::exists(path)) << path;
}

TEST_F(Scratch, PurgeLeavesSubfoldersAlone) {
    std::filesystem::create_directory(folder / "below");
    std::filesystem::create_directory(folder / "named.STch");
    std::string const inside = Make("below/T0000000001.STch"), other = Make("named.STch/T1.STch");
    std::string const here = Make("T0000000001.STch");
    SrPurgeScratchFolder(Spec(folder.Path()));
    EXPECT_TRUE(std::filesystem::exists(inside));
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_FALSE(std::filesystem::exists(here));
}

TEST_F(Scratch, PurgeOfAnEmptyFolderDoesNothing) {
    SrPurgeScratchFolder(Spec(folder.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(Scratch, PurgeOfAMissingFolderThrowsItsCode) {
    EXPECT_EQ(CaughtCode([&] { SrPurgeScratchFolder(Spec(folder / "none")); }), -43);
}

/// The code that purging throws to an ordinary user; in a process of its own, since tests may run as root.
int PurgeAsOrdinaryUser(std::string const& path) {
    pid_t const child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && setuid(kNobody) != 0) _exit(100);
        _exit(static_cast<int>(-CaughtCode([&] { SrPurgeScratchFolder(Spec(path)); })));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? -WEXITSTATUS(status) : 1;
}

TEST_F(Scratch, AFileThatCannotBeDeletedIsThrown_AndTheOnesBehindItStay) {
    std::string const first = Make("a.STch"), second = Make("b.STch"), third = Make("c.STch");
    bool const isRoot = geteuid() == 0;
    if (isRoot) {
        // In such a folder everybody deletes what is his own: the first and the third.
        for (auto const& path : {first, third})
            ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
        ASSERT_EQ(chmod(folder.Path().c_str(), 01777), 0);
    } else {
        ASSERT_EQ(chmod(folder.Path().c_str(), 0500), 0);
    }
    EXPECT_EQ(PurgeAsOrdinaryUser(folder.Path()), -54);
    EXPECT_EQ(chmod(folder.Path().c_str(), 0700), 0);
    EXPECT_EQ(std::filesystem::exists(first), !isRoot);
    EXPECT_TRUE(std::filesystem::exists(second));
    EXPECT_TRUE(std::filesystem::exists(third));
}

TEST_F(Scratch, PurgeTakesNoAccountOfFilesInUse) {
    // A spool file of this process goes like any other; what is open stays readable to who has it open.
    StFirstClassThread const firstClass;
    SrInitializeGlobalSpoolManager(true);
    SrInitializeGlobalSpoolManager(false);
    SrAddImagerSpoolFileInFolder(Spec(folder.Path()));
    ASSERT_FALSE(std::filesystem::is_empty(folder.Path()));
    SrPurgeScratchFolder(Spec(folder.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    SrInitializeGlobalSpoolManager(true);
    SrInitializeGlobalSpoolManager(false);
}

}  // namespace
