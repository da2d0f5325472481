#include "framewright/spool/spool_preferences.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "framewright/core/startup.h"

namespace {

/// Gives each test a settings file of its own, missing at first, and preferences that were made from it.
class SpoolPreferences : public testing::Test {
  protected:
    SpoolPreferences() {
        char folder[] = "/tmp/framewright-spool-XXXXXX";
        mFolder = mkdtemp(folder);
        if (char const* before = getenv("FRAMEWRIGHT_SETTINGS")) mBefore = before;
        UseSettings("settings");
    }
    ~SpoolPreferences() override {
        setenv("FRAMEWRIGHT_SETTINGS", mBefore.c_str(), 1);
        SrInitializeGlobalSpoolManager(true);
        SrInitializeGlobalSpoolManager(false);
        std::filesystem::remove_all(mFolder);
    }

    void SetSettings(char const* file) { setenv("FRAMEWRIGHT_SETTINGS", (mFolder / file).c_str(), 1); }
    void UseSettings(char const* file) {
        SetSettings(file);
        SrInitializeGlobalSpoolManager(true);
        SrInitializeGlobalSpoolManager(false);
    }

  private:
    std::filesystem::path mFolder;
    std::string mBefore;
};

TEST_F(SpoolPreferences, HaveTheirDefaults) {
    EXPECT_FALSE(SrGetImageSpoolingState());
    EXPECT_FALSE(SrGetImageMapSpoolingState());
    EXPECT_TRUE(SrGetImageOptimization());
}

TEST_F(SpoolPreferences, KeepWhatTheyAreSetTo) {
    SrSetImageSpoolingState(true);
    SrSetImageOptimization(false);
    EXPECT_TRUE(SrGetImageSpoolingState());
    EXPECT_FALSE(SrGetImageOptimization());
    EXPECT_FALSE(SrGetImageMapSpoolingState());
    SrSetImageSpoolingState(false);
    SrSetImageOptimization(true);
    EXPECT_FALSE(SrGetImageSpoolingState());
    EXPECT_TRUE(SrGetImageOptimization());
}

TEST_F(SpoolPreferences, OutliveTheProcess) {
    SrSetImageSpoolingState(true);
    SrSetImageOptimization(false);
    SrInitializeGlobalSpoolManager(true);
    SrInitializeGlobalSpoolManager(false);
    EXPECT_TRUE(SrGetImageSpoolingState());
    EXPECT_FALSE(SrGetImageOptimization());

    UseSettings("other settings");
    EXPECT_FALSE(SrGetImageSpoolingState());
    EXPECT_TRUE(SrGetImageOptimization());
    UseSettings("settings");
    EXPECT_TRUE(SrGetImageSpoolingState());
    EXPECT_FALSE(SrGetImageOptimization());
}

TEST_F(SpoolPreferences, AreFalseAndDeafAfterShutDown) {
    SrSetImageSpoolingState(true);
    SrInitializeGlobalSpoolManager(true);
    EXPECT_FALSE(SrGetImageSpoolingState());
    EXPECT_FALSE(SrGetImageMapSpoolingState());
    EXPECT_FALSE(SrGetImageOptimization());  // whose default is true
    SrSetImageSpoolingState(true);
    SrSetImageOptimization(true);
    EXPECT_FALSE(SrGetImageSpoolingState());
    EXPECT_FALSE(SrGetImageOptimization());

    SrInitializeGlobalSpoolManager(false);
    EXPECT_TRUE(SrGetImageSpoolingState());
    EXPECT_TRUE(SrGetImageOptimization());
}

TEST_F(SpoolPreferences, AreMadeAnewByEachSetUp) {
    SrSetImageSpoolingState(true);
    SetSettings("other settings");
    SrInitializeGlobalSpoolManager(false);  // with no tearing down before it
    EXPECT_FALSE(SrGetImageSpoolingState());
}

}  // namespace
