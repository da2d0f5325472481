#include "framewright/thornmere/text.h"

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "thornmere/support.h"

namespace {

struct StTextKind {
    char const* name;
    std::function<std::unique_ptr<ScSx>(char const*)> make;
    unsigned capacity;  ///< 0 without a bound
};

std::vector<StTextKind> const kKinds = {
    {"ScHeapString", [](char const* text) { return std::make_unique<ScHeapString>(text); }, 0},
    {"ScCString", [](char const* text) { return std::make_unique<ScCString>(text); }, 255},
    {"ScCString of 5", [](char const* text) { return std::make_unique<ScCString>(text, 5); }, 5},
    {"ScCString of 0", [](char const* text) { return std::make_unique<ScCString>(text, 0); }, 0},
    {"ScPString", [](char const* text) { return std::make_unique<ScPString>(text); }, 255},
    {"ScString63", [](char const* text) { return std::make_unique<ScString63>(text); }, 63},
};

/// What a text of that kind keeps of `whole`.
std::string Kept(StTextKind const& kind, std::string const& whole) {
    bool const unbounded = std::strcmp(kind.name, "ScHeapString") == 0;
    return unbounded ? whole : whole.substr(0, kind.capacity);
}

TEST(Text, EveryKindAssignsAppendsAndCutsOff) {
    std::string const parts[] = {
        "", "a", "abcd", std::string(60, 'x'), std::string(254, 'y'), std::string(300, 'z')};
    for (StTextKind const& kind : kKinds) {
        for (std::string const& first : parts) {
            auto const text = kind.make(first.c_str());
            EXPECT_EQ(text->AsCString(), Kept(kind, first)) << kind.name;
            EXPECT_EQ(text->Length(), Kept(kind, first).size()) << kind.name;
            for (std::string const& second : parts) {
                text->Assign(first.c_str());
                text->Append(second.c_str());
                EXPECT_EQ(text->AsCString(), Kept(kind, first + second)) << kind.name;
                EXPECT_EQ(text->Length(), Kept(kind, first + second).size()) << kind.name;
            }
        }
    }
}

TEST(Text, NullCountsAsEmpty) {
    for (StTextKind const& kind : kKinds) {
        auto const text = kind.make(nullptr);
        EXPECT_STREQ(text->AsCString(), "") << kind.name;
        text->Assign("ab");
        text->Append(nullptr);
        EXPECT_EQ(text->AsCString(), Kept(kind, "ab")) << kind.name;
        text->Assign(nullptr);
        EXPECT_STREQ(text->AsCString(), "") << kind.name;
        EXPECT_EQ(text->Length(), 0u) << kind.name;
    }
}

TEST(Text, MayBeAssignedAndAppendedToItself) {
    for (StTextKind const& kind : kKinds) {
        auto const text = kind.make("abcd");
        text->Append(text->AsCString());
        EXPECT_EQ(text->AsCString(), Kept(kind, "abcdabcd")) << kind.name;
        std::string const tail = text->Length() > 1 ? text->AsCString() + 1 : text->AsCString();
        text->Assign(text->Length() > 1 ? text->AsCString() + 1 : text->AsCString());
        EXPECT_EQ(text->AsCString(), tail) << kind.name;
    }
}

TEST(Text, DefaultsAreEmpty) {
    EXPECT_STREQ(ScHeapString().AsCString(), "");
    EXPECT_STREQ(ScCString().AsCString(), "");
    EXPECT_EQ(ScCString().Capacity(), 255u);
    EXPECT_STREQ(ScPString().AsCString(), "");
    EXPECT_STREQ(ScString63().AsCString(), "");
    EXPECT_EQ(ScString63().Capacity(), 63u);
}

TEST(Text, HeapStringsCopyAndMove) {
    ScHeapString a("first");
    ScHeapString b(a);
    b.Append(" and more");
    EXPECT_STREQ(a.AsCString(), "first");
    ScHeapString c(std::move(b));
    EXPECT_STREQ(c.AsCString(), "first and more");
    a = c;
    EXPECT_STREQ(a.AsCString(), "first and more");
    EXPECT_STREQ(c.AsCString(), "first and more");
    ScHeapString& same = a;
    a = same;
    EXPECT_STREQ(a.AsCString(), "first and more");
    a = ScHeapString("last");
    EXPECT_STREQ(a.AsCString(), "last");
}

TEST(Text, CStringKeepsItsCapacityWhenAssignedTo) {
    ScCString narrow("ab", 3);
    ScCString const wide("abcdef", 10);
    ScCString copy(wide);
    EXPECT_EQ(copy.Capacity(), 10u);
    EXPECT_STREQ(copy.AsCString(), "abcdef");
    narrow = wide;
    EXPECT_EQ(narrow.Capacity(), 3u);
    EXPECT_STREQ(narrow.AsCString(), "abc");
}

TEST(Text, PascalFormHasTheLengthFirst) {
    ScPString const text("abc");
    unsigned char const expected[] = {3, 'a', 'b', 'c', 0};
    EXPECT_EQ(std::memcmp(text.AsPString(), expected, sizeof expected), 0);
}

TEST(Text, PascalStringsAreReadByTheirLength) {
    unsigned char const bytes[] = {3, 'a', 'b', 'c', 'd', 'e'};
    EXPECT_STREQ(ScPString::FromPascal(bytes).AsCString(), "abc");
    unsigned char const empty[] = {0, 'x'};
    EXPECT_STREQ(ScPString::FromPascal(empty).AsCString(), "");
    unsigned char const withNull[] = {4, 'a', 'b', 0, 'd'};
    EXPECT_STREQ(ScPString::FromPascal(withNull).AsCString(), "ab");
    EXPECT_EQ(ScPString::FromPascal(withNull).Length(), 2u);
    EXPECT_EQ(ScPString::FromPascal(nullptr).Length(), 0u);
    unsigned char full[256];
    std::memset(full, 'f', sizeof full);
    full[0] = 255;
    EXPECT_EQ(ScPString::FromPascal(full).Length(), 255u);
}

TEST(Text, HeapStringsPassTheGateAndSurviveRefusal) {
    static std::size_t asked;
    asked = 0;
    SrSetAllocationGate([](std::size_t size) {
        asked = size;
        return true;
    });
    ScHeapString text("12345");
    SrSetAllocationGate(nullptr);
    EXPECT_EQ(asked, 6u) << "the text and its null";
    RefusedMemory const refused;
    EXPECT_EQ(CaughtCode([&] { text.Assign("other"); }), -108);
    EXPECT_EQ(CaughtCode([&] { text.Append("more"); }), -108);
    EXPECT_STREQ(text.AsCString(), "12345");
    EXPECT_EQ(CaughtCode([] { ScHeapString("x"); }), -108);
    EXPECT_EQ(CaughtCode([] { ScCString("x"); }), -108);
    EXPECT_EQ(CaughtCode([] { ScHeapString(""); }), SkNothingCaught()) << "no text, no memory";
}

}  // namespace
