#include "framewright/thornmere/settings.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "framewright/thornmere/stream.h"
#include "thornmere/support.h"

namespace {

using Flag = ScPersistentData<bool, ScNormalPersistentBehavior<bool>>;

/// Sets an environment variable for as long as it lives; null takes it away.
class Environment {
  public:
    Environment(char const* name, char const* value) : mName(name) {
        if (char const* const old = std::getenv(name)) mOld = old;
        Set(value);
    }
    Environment(Environment const&) = delete;
    Environment& operator=(Environment const&) = delete;
    ~Environment() { Set(mOld ? mOld->c_str() : nullptr); }

  private:
    void Set(char const* value) {
        if (value) {
            setenv(mName, value, 1);
        } else {
            unsetenv(mName);
        }
    }
    char const* mName;
    std::optional<std::string> mOld;
};

class Settings : public testing::Test {
  protected:
    bool Stored(char const* key, bool defaultValue) { return Flag(nullptr, key, defaultValue).GetValue(); }

    TemporaryFolder mFolder;
    std::string mPath = mFolder / "settings";
    Environment mEnvironment{"FRAMEWRIGHT_SETTINGS", mPath.c_str()};
};

TEST_F(Settings, DefaultHoldsWhileNothingIsStored) {
    EXPECT_TRUE(Stored("Optimize image-maps", true));
    EXPECT_FALSE(Stored("Optimize image-maps", false));
    EXPECT_FALSE(std::filesystem::exists(mPath)) << "reading writes nothing";
}

TEST_F(Settings, ChangesAreStoredAtOnce) {
    Flag flag(nullptr, "Optimize image-maps", true);
    EXPECT_STREQ(flag.GetPersistentDataName(), "Optimize image-maps");
    flag.SetValue(false);
    EXPECT_FALSE(flag.GetValue());
    EXPECT_FALSE(Stored("Optimize image-maps", true));
    flag.SetValue(true);
    EXPECT_TRUE(Stored("Optimize image-maps", false));
}

TEST_F(Settings, FileIsALineForEachValue) {
    Flag(nullptr, "Optimize image-maps", true).SetValue(false);
    Flag(nullptr, "MIP Mapping disabled", false).SetValue(true);
    EXPECT_EQ(ReadWholeFile(mPath), "00 Optimize image-maps\n01 MIP Mapping disabled\n");
    Flag(nullptr, "Optimize image-maps", true).SetValue(true);
    EXPECT_EQ(ReadWholeFile(mPath), "01 Optimize image-maps\n01 MIP Mapping disabled\n");
}

TEST_F(Settings, UnchangedValueWritesNothing) {
    Flag flag(nullptr, "Optimize image-maps", true);
    flag.SetValue(true);
    EXPECT_FALSE(std::filesystem::exists(mPath));
}

TEST_F(Settings, OthersItemsAreKept) {
    WriteWholeFile(mPath, "0a0B Something else\n01 MIP Mapping disabled\n");
    Flag(nullptr, "MIP Mapping disabled", false).SetValue(false);
    EXPECT_EQ(ReadWholeFile(mPath), "0a0B Something else\n00 MIP Mapping disabled\n");
}

TEST_F(Settings, DamagedFilesAreRead) {
    struct StRow {
        std::string text;
        bool expected;
    };
    StRow const rows[] = {
        {"", true},
        {"\n\n\n", true},
        {"00 key", false},  // no line end
        {"00 key\n", false},
        {std::string("garbage\n\0\1\2\n00 key\n", 19), false},
        {"xyz key\n00 key\n", false},
        {"0 key\n", true},  // half a byte
        {" key\n", true},   // no byte at all
        {"00key\n", true},
        {"00 KEY\n", true},
        {"0001 key\n", false},                           // the first byte counts
        {"00 key\n01 key\n", false},                     // the first line counts
        {"00 key\n" + std::string(2000000, 'x'), true},  // too long for settings
        {std::string("\xFF\xFE\0 key\n00 key\n", 15), false},
    };
    for (StRow const& row : rows) {
        WriteWholeFile(mPath, row.text);
        EXPECT_EQ(Stored("key", true), row.expected) << row.text.substr(0, 40);
    }
}

TEST_F(Settings, WritingReplacesADamagedFile) {
    WriteWholeFile(mPath, "garbage\n00 key\n");
    Flag(nullptr, "key", true).SetValue(true);
    EXPECT_EQ(ReadWholeFile(mPath), "01 key\n");
}

TEST_F(Settings, MissingFoldersAreMade) {
    std::string const path = mFolder / "a/b/settings";
    Environment const there("FRAMEWRIGHT_SETTINGS", path.c_str());
    Flag(nullptr, "key", false).SetValue(true);
    EXPECT_EQ(ReadWholeFile(path), "01 key\n");
}

TEST_F(Settings, UnwritablePlacesAreNoError) {
    WriteWholeFile(mFolder / "file", "");
    std::string const path = mFolder / "file/settings";
    Environment const there("FRAMEWRIGHT_SETTINGS", path.c_str());
    Flag flag(nullptr, "key", false);
    flag.SetValue(true);
    EXPECT_TRUE(flag.GetValue());
    EXPECT_FALSE(Stored("key", false));
}

TEST_F(Settings, FolderInTheFilesPlaceIsNoError) {
    std::filesystem::create_directory(mPath);
    Flag flag(nullptr, "key", false);
    flag.SetValue(true);
    EXPECT_TRUE(flag.GetValue());
    EXPECT_TRUE(std::filesystem::is_directory(mPath));
}

TEST_F(Settings, NothingIsLeftBesideTheFile) {
    Flag flag(nullptr, "key", false);
    flag.SetValue(true);
    flag.SetValue(false);
    std::size_t entries = 0;
    for ([[maybe_unused]] auto const& entry : std::filesystem::directory_iterator(mFolder.Path()))
        ++entries;
    EXPECT_EQ(entries, 1u);
}

TEST_F(Settings, FailedWriteKeepsTheOldFile) {
    Flag flag(nullptr, "key", false);
    flag.SetValue(true);
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit const limited{3, old.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    flag.SetValue(false);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
    EXPECT_EQ(ReadWholeFile(mPath), "01 key\n");
    std::size_t entries = 0;
    for ([[maybe_unused]] auto const& entry : std::filesystem::directory_iterator(mFolder.Path()))
        ++entries;
    EXPECT_EQ(entries, 1u) << "and the new one goes";
}

TEST_F(Settings, PlaceFollowsTheEnvironment) {
    Environment const none("FRAMEWRIGHT_SETTINGS", nullptr);
    std::string const home = mFolder / "home", configuration = mFolder / "configuration";
    Environment const homeThere("HOME", home.c_str());
    {
        Environment const noConfiguration("XDG_CONFIG_HOME", nullptr);
        Flag(nullptr, "key", false).SetValue(true);
        EXPECT_EQ(ReadWholeFile(home + "/.config/framewright/settings"), "01 key\n");
    }
    {
        Environment const there("XDG_CONFIG_HOME", configuration.c_str());
        EXPECT_FALSE(Stored("key", false));
        Flag(nullptr, "key", false).SetValue(true);
        EXPECT_EQ(ReadWholeFile(configuration + "/framewright/settings"), "01 key\n");
    }
    {
        Environment const noConfiguration("XDG_CONFIG_HOME", nullptr);
        Environment const noHome("HOME", nullptr);
        Flag flag(nullptr, "key", false);
        flag.SetValue(true);
        EXPECT_TRUE(flag.GetValue()) << "without a place the value lives as long as its object";
    }
}

TEST_F(Settings, ParentsNestTheKey) {
    Flag parent(nullptr, "parent", false);
    Flag(&parent, "key", false).SetValue(true);
    EXPECT_EQ(ReadWholeFile(mPath), "01 parent/key\n");
    EXPECT_TRUE(Flag(&parent, "key", false).GetValue());
    EXPECT_FALSE(Stored("key", false));
}

TEST_F(Settings, KeysWithLineBreaksAreNotStored) {
    Flag(nullptr, "a\nb", false).SetValue(true);
    EXPECT_FALSE(std::filesystem::exists(mPath));
}

TEST_F(Settings, ReadingAgainTakesTheStoredValueOn) {
    Flag flag(nullptr, "key", false);
    WriteWholeFile(mPath, "01 key\n");
    EXPECT_FALSE(flag.GetValue());
    flag.ReadPersistentData();
    EXPECT_TRUE(flag.GetValue());
}

TEST_F(Settings, RefusedMemoryLeavesTheDefault) {
    WriteWholeFile(mPath, "01 k\n");
    Flag flag(nullptr, "k", false);
    flag.SetValue(false);
    WriteWholeFile(mPath, "01 k\n");
    RefusedMemory const refused;
    flag.ReadPersistentData();
    EXPECT_FALSE(flag.GetValue());
}

/// A host's own value: a text.
class Name : public SxPersistent {
  public:
    Name() : SxPersistent(nullptr) {}
    char const* GetPersistentDataName() const override { return "name"; }
    ScHeapString value;

  protected:
    void ReadValue(SmStream* stream) override { SrGetPathStringFromStream(stream, value); }
    void WriteValue(SmStream* stream) const override { SrPutPathStringToStream(stream, value.AsCString()); }
};

TEST_F(Settings, ValuesOfAnyFormAreStored) {
    Name name;
    name.value.Assign("\xC3\xA4 line\nbreak");
    name.WritePersistentData();
    EXPECT_EQ(ReadWholeFile(mPath), "0000000dc3a4206c696e650a627265616b name\n");
    Name other;
    other.ReadPersistentData();
    EXPECT_STREQ(other.value.AsCString(), "\xC3\xA4 line\nbreak");
    WriteWholeFile(mPath, "0000ffffc3 name\n");
    other.ReadPersistentData();
    EXPECT_STREQ(other.value.AsCString(), "\xC3\xA4 line\nbreak") << "a damaged value is ignored";
}

}  // namespace
