#include "framewright/thornmere/string_lists.h"

#include <string>
#include <vector>

#include "thornmere/support.h"

namespace {

std::string Entry(short list, long index) {
    ScCString text("before");
    SrGetIndexedString(text, list, index);
    return text.AsCString();
}

struct StUsedEntries {
    short list;
    std::vector<long> indices;
};

TEST(StringLists, EveryEntryInUseHasAText) {
    StUsedEntries const used[] = {
        {20911, {1, 2, 10, 11}},
        {20912, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24}},
        {20913, {1, 2, 3, 4, 5, 6, 7}},
        {20914, {1, 2, 3, 4, 5, 6}},
        {20915, {1}},
        {20991, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
    };
    for (StUsedEntries const& row : used) {
        std::vector<std::string> seen;
        for (long index : row.indices) {
            std::string const text = Entry(row.list, index);
            EXPECT_FALSE(text.empty()) << row.list << " " << index;
            EXPECT_LE(text.size(), row.list == 20991 ? 255u : 63u) << text;
            EXPECT_EQ(std::count(seen.begin(), seen.end(), text), 0) << text;
            seen.push_back(text);
        }
    }
}

TEST(StringLists, TextsWithAFixedWording) {
    EXPECT_EQ(Entry(20911, 1), "Quicktime Movie");
    EXPECT_EQ(Entry(20911, 10), "Bitmap");
    EXPECT_EQ(Entry(20911, 11), "Video for Windows");
    EXPECT_EQ(Entry(20915, 1), "none");
}

TEST(StringLists, UnknownListsAndIndicesAreEmpty) {
    for (long index : {-1L, 0L, 25L, 1000000L})
        EXPECT_EQ(Entry(20912, index), "") << index;
    EXPECT_EQ(Entry(20911, 3), "");
    EXPECT_EQ(Entry(1, 1), "");
}

TEST(StringLists, TextIsCutToWhatTheReceiverHolds) {
    ScCString narrow("", 4);
    SrGetIndexedString(narrow, 20915, 1);
    EXPECT_STREQ(narrow.AsCString(), "none");
    SrGetIndexedString(narrow, 20911, 10);
    EXPECT_STREQ(narrow.AsCString(), "Bitm");
}

TEST(StringLists, AHostReplacesAWholeList) {
    std::vector<std::string> old;
    for (long index = 1; index <= 6; ++index)
        old.push_back(Entry(20914, index));
    SrSetIndexedStrings(20914, {"Bild", "Ton"});
    EXPECT_EQ(Entry(20914, 1), "Bild");
    EXPECT_EQ(Entry(20914, 2), "Ton");
    EXPECT_EQ(Entry(20914, 3), "");
    EXPECT_EQ(Entry(20914, 0), "");
    EXPECT_EQ(Entry(20914, -5), "");
    EXPECT_EQ(Entry(20913, 1).empty(), false) << "other lists stay";
    SrSetIndexedStrings(20914, old);
    EXPECT_EQ(Entry(20914, 6), old[5]);
}

TEST(StringLists, AHostMayAddAList) {
    SrSetIndexedStrings(31000, {"one"});
    EXPECT_EQ(Entry(31000, 1), "one");
    SrSetIndexedStrings(31000, {});
    EXPECT_EQ(Entry(31000, 1), "");
}

TEST(StringLists, MessagesReadTheListWhenTheyAreMade) {
    std::vector<std::string> const texts = {"an alert of the host's"};
    SrSetIndexedStrings(31001, texts);
    ScMessageBuzzStrings const message(31001, 1, 1, 1, SkSimpleAlert());
    SrSetIndexedStrings(31001, {"changed"});
    EXPECT_EQ(message.GetText(), texts[0]);
}

}  // namespace
