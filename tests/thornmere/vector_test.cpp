#include "framewright/thornmere/vector.h"

#include <cstring>
#include <memory>
#include <string>

#include "thornmere/support.h"

namespace {

using Counted = std::shared_ptr<int>;

TEST(Vector, StartsEmptyWithoutMemory) {
    RefusedMemory const refused;
    ScVector<int> const vector;
    EXPECT_TRUE(vector.empty());
    EXPECT_EQ(vector.size(), 0u);
    EXPECT_EQ(vector.begin(), vector.end());
}

TEST(Vector, KeepsWhatIsPushedInOrder) {
    ScVector<std::string> vector;
    for (int i = 0; i < 100; ++i)
        vector.push_back(std::to_string(i));
    ASSERT_EQ(vector.size(), 100u);
    int expected = 0;
    for (std::string const& text : vector)
        EXPECT_EQ(text, std::to_string(expected++));
    EXPECT_EQ(vector.front(), "0");
    EXPECT_EQ(vector.back(), "99");
    EXPECT_EQ(vector[42], "42");
}

TEST(Vector, PushingAnOwnEntryWhileGrowingIsSafe) {
    ScVector<std::string> vector;
    vector.push_back("the first entry, too long to stand inside its own string object");
    for (int i = 0; i < 10; ++i)
        vector.push_back(vector[0]);
    for (std::string const& text : vector)
        EXPECT_EQ(text, vector[0]);
}

TEST(Vector, InsertAndEraseKeepTheOrder) {
    ScVector<int> vector;
    for (int value : {1, 2, 4})
        vector.push_back(value);
    EXPECT_EQ(*vector.insert(vector.begin() + 2, 3), 3);
    EXPECT_EQ(*vector.insert(vector.begin(), 0), 0);
    EXPECT_EQ(*vector.insert(vector.end(), 5), 5);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(vector[std::size_t(i)], i);
    EXPECT_EQ(*vector.erase(vector.begin() + 1), 2);
    auto const behindLast = vector.erase(vector.end() - 1);
    EXPECT_EQ(behindLast, vector.end());
    EXPECT_EQ(vector.size(), 4u);
    EXPECT_EQ(vector.back(), 4);
}

TEST(Vector, ResizeGivesValueInitialisedEntries) {
    ScVector<unsigned char> vector;
    vector.push_back(9);
    vector.resize(1000);
    EXPECT_EQ(vector[0], 9);
    for (std::size_t i = 1; i < 1000; ++i)
        ASSERT_EQ(vector[i], 0) << i;
    vector.resize(1);
    EXPECT_EQ(vector.size(), 1u);
}

TEST(Vector, EntriesAreDestroyedOnce) {
    Counted const entry = std::make_shared<int>(1);
    {
        ScVector<Counted> vector;
        for (int i = 0; i < 9; ++i)
            vector.push_back(entry);
        EXPECT_EQ(entry.use_count(), 10);
        vector.pop_back();
        vector.erase(vector.begin());
        EXPECT_EQ(entry.use_count(), 8);
        ScVector<Counted> const copy(vector);
        EXPECT_EQ(entry.use_count(), 15);
        ScVector<Counted> const moved(std::move(vector));
        EXPECT_EQ(entry.use_count(), 15);
    }
    EXPECT_EQ(entry.use_count(), 1);
}

TEST(Vector, AssignmentReplaces) {
    ScVector<Counted> a, b;
    Counted const entry = std::make_shared<int>(1);
    a.push_back(entry);
    b.push_back(nullptr);
    b.push_back(nullptr);
    a = b;
    EXPECT_EQ(a.size(), 2u);
    EXPECT_EQ(entry.use_count(), 1);
    a = {};
    EXPECT_EQ(a.capacity(), 0u) << "the memory is given back";
}

TEST(Vector, RefusedGrowthThrowsAndChangesNothing) {
    ScVector<int> vector;
    for (int i = 0; i < 4; ++i)
        vector.push_back(i);
    RefusedMemory const refused;
    EXPECT_EQ(CaughtCode([&] { vector.reserve(100); }), -108);
    EXPECT_EQ(CaughtCode([&] { vector.resize(100); }), -108);
    while (vector.size() < vector.capacity())
        vector.push_back(int(vector.size()));
    std::size_t const size = vector.size();
    EXPECT_EQ(CaughtCode([&] { vector.push_back(7); }), -108);
    EXPECT_EQ(CaughtCode([&] { ScVector<int> copy(vector); }), -108);
    ASSERT_EQ(vector.size(), size);
    for (std::size_t i = 0; i < size; ++i)
        EXPECT_EQ(vector[i], int(i));
}

TEST(Vector, CountsThatNoMemoryHoldsThrow) {
    ScVector<double> vector;
    EXPECT_EQ(CaughtCode([&] { vector.reserve(SIZE_MAX / 4); }), -108);
    EXPECT_EQ(CaughtCode([&] { vector.resize(SIZE_MAX); }), -108);
}

TEST(Vector, CanBeMovedAsBytes) {
    ScVector<int> vector;
    for (int i = 0; i < 20; ++i)
        vector.push_back(i);
    alignas(ScVector<int>) unsigned char place[sizeof vector];
    std::memcpy(place, static_cast<void const*>(&vector), sizeof vector);
    std::memset(static_cast<void*>(&vector), 0, sizeof vector);
    auto* moved = std::launder(reinterpret_cast<ScVector<int>*>(place));
    moved->push_back(20);
    EXPECT_EQ(moved->size(), 21u);
    EXPECT_EQ(moved->back(), 20);
    moved->~ScVector();
}

TEST(Vector, ManySmallResizesAskForMemoryRarely) {
    static int asked;
    asked = 0;
    SrSetAllocationGate([](std::size_t) { return ++asked > 0; });
    ScVector<unsigned char> vector;
    for (std::size_t i = 1; i <= 100000; ++i)
        vector.resize(i);
    SrSetAllocationGate(nullptr);
    EXPECT_LT(asked, 30);
}

}  // namespace
