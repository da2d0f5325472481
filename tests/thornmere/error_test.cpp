#include "framewright/thornmere/error.h"

#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include "framewright/thornmere/string_lists.h"
#include "thornmere/support.h"

namespace {

/// A host's own message, too large to be carried.
class ScHugeMessage : public ScMessageClass {
  public:
    ScMessageClass* CloneToStorage(void* storage, unsigned int size) const override {
        return size >= sizeof *this ? new (storage) ScHugeMessage(*this) : nullptr;
    }
    char const* GetText() const override { return "huge"; }

  private:
    [[maybe_unused]] char mBallast[kMessageCapacity] = {};
};

/// What SrGetExceptionValues finds in what `action` throws.
struct StCaught {
    long error = SkNothingCaught();
    ScMessageClass* message = nullptr;
    std::string what;

    template <class Action>
    explicit StCaught(Action action) {
        try {
            action();
        } catch (std::exception const& exception) {
            error = SrGetExceptionValues(exception, message);
            what = exception.what();
        }
    }
};

TEST(Error, FixedCodesHaveTheirValues) {
    EXPECT_EQ(SkMemoryFull(), -108);
    EXPECT_EQ(SkResourceMissing(), -192);
    EXPECT_EQ(SkFileMissing(), -43);
    EXPECT_EQ(SkEndOfFile(), -39);
    EXPECT_EQ(SkDiskFull(), -34);
    EXPECT_EQ(SkNotFirstClassThread(), -29299);
    EXPECT_EQ(SkInternalRefusal(), -32768);
    EXPECT_EQ(SkNothingCaught(), 32767);
    EXPECT_EQ(SkAlertStrings(), 20991);
    EXPECT_EQ(SkSimpleAlert(), 191);
}

TEST(Error, NamedAndAllocatedCodesAreUnique) {
    std::set<long> codes = {0, -34, -36, -39, -43, -48, -50, -54, -108, -192, -29299, -32768, 32767};
    std::size_t expected = codes.size();
    auto add = [&](long code) {
        EXPECT_TRUE(codes.insert(code).second) << code;
        ++expected;
    };
    add(SkAbstractClassErrC());
    add(SkBadFileVersionErrC());
    add(SkBadFileFormatErrC());
    add(SkBadStreamFormatErrC());
    add(SkSymbolNotFoundErrC());
    add(SkStreamTooLongErrC());
    for (int i = 0; i < 10; ++i)
        add(SrAllocateError(nullptr));
    EXPECT_EQ(codes.size(), expected);
}

TEST(Error, NamedCodesStayTheSame) {
    long const before = SkBadFileFormatErrC();
    SrAllocateError(nullptr);
    EXPECT_EQ(SkBadFileFormatErrC(), before);
}

TEST(Error, AllocatingFromManyThreadsGivesUniqueCodes) {
    std::vector<std::vector<long>> codes(4);
    {
        std::vector<std::jthread> threads;
        for (auto& mine : codes) {
            threads.emplace_back([&mine] {
                for (int i = 0; i < 200; ++i)
                    mine.push_back(SrAllocateError(nullptr));
            });
        }
    }
    std::set<long> all;
    for (auto const& mine : codes)
        all.insert(mine.begin(), mine.end());
    EXPECT_EQ(all.size(), 800u);
}

TEST(Error, ThrowCarriesTheCode) {
    for (long code : {-108L, -43L, 5L, 0L, SkBadFileFormatErrC()}) {
        StCaught const caught([&] { SrThrow(code, nullptr); });
        EXPECT_EQ(caught.error, code);
        EXPECT_EQ(caught.message, nullptr);
        EXPECT_FALSE(caught.what.empty());
    }
}

TEST(Error, MessageIsSetToNullWhereThereWasNone) {
    ScMessageBuzzStrings some(SkAlertStrings(), 6, 1, 1, SkSimpleAlert());
    ScMessageClass* message = &some;
    try {
        SrThrow(-43, nullptr);
    } catch (std::exception const& exception) {
        EXPECT_EQ(SrGetExceptionValues(exception, message), -43);
    }
    EXPECT_EQ(message, nullptr);
}

TEST(Error, MessageIsCopiedBeforeItsOriginalGoes) {
    StCaught const caught([] {
        ScMessageBuzzStrings message(SkAlertStrings(), 8, 1, 1, SkSimpleAlert());
        SrThrow(-32768, &message);
    });
    auto const* message = dynamic_cast<ScMessageBuzzStrings*>(caught.message);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->List(), 20991);
    EXPECT_EQ(message->Index(), 8);
    EXPECT_EQ(message->Alert(), 191);
    ScPString text;
    SrGetIndexedString(text, 20991, 8);
    EXPECT_STREQ(message->GetText(), text.AsCString());
    EXPECT_EQ(caught.what, text.AsCString());
}

TEST(Error, RethrowingKeepsCodeAndMessage) {
    StCaught const caught([] {
        StCaught const inner([] {
            ScMessageBuzzStrings message(SkAlertStrings(), 9, 1, 1, SkSimpleAlert());
            SrThrow(17, &message);
        });
        SrThrow(inner.error, inner.message);
    });
    EXPECT_EQ(caught.error, 17);
    auto const* message = dynamic_cast<ScMessageBuzzStrings*>(caught.message);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->Index(), 9);
}

TEST(Error, MessageLastsUntilTheThreadsNextCall) {
    StCaught const caught([] { SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC()); });
    std::string const text = caught.message->GetText();
    std::thread([] { StCaught([] { SrThrow(1, SkBadFileVersionMsgC()); }); }).join();
    EXPECT_EQ(caught.message->GetText(), text) << "another thread's call does not touch it";
}

TEST(Error, MessagesOfTheBadFileCodesHaveTexts) {
    for (ScMessageClass* message : {SkBadFileVersionMsgC(), SkBadFileFormatMsgC()}) {
        ASSERT_NE(message, nullptr);
        StCaught const caught([&] { SrThrow(SkBadFileVersionErrC(), message); });
        ASSERT_NE(caught.message, nullptr);
        EXPECT_STREQ(caught.message->GetText(), message->GetText());
        EXPECT_EQ(caught.what, message->GetText());
        EXPECT_NE(*message->GetText(), '\0');
    }
}

TEST(Error, WhatIsTheNameOfTheCodeWithoutAMessage) {
    EXPECT_EQ(StCaught([] { SrThrow(-108, nullptr); }).what, SrErrorName(-108));
    EXPECT_STREQ(SrErrorName(-43), "file not found");
    EXPECT_STREQ(SrErrorName(-12345), "error -12345");
    EXPECT_EQ(StCaught([] { SrThrow(-12345, nullptr); }).what, "error -12345");
    long const named = SrAllocateError("the tide is out");
    EXPECT_EQ(StCaught([&] { SrThrow(named, nullptr); }).what, "the tide is out");
    long const nameless = SrAllocateError(nullptr);
    EXPECT_EQ(SrErrorName(nameless), "error " + std::to_string(nameless));
}

TEST(Error, WhatIsTheNameOfTheCodeForAMessageWithoutText) {
    ScMessageClass message;
    EXPECT_STREQ(message.GetText(), "");
    StCaught const caught([&] { SrThrow(-39, &message); });
    EXPECT_NE(caught.message, nullptr);
    EXPECT_EQ(caught.what, SrErrorName(-39));
}

TEST(Error, MessageTooLargeToCarryIsDropped) {
    ScHugeMessage huge;
    StCaught const caught([&] { SrThrow(-39, &huge); });
    EXPECT_EQ(caught.error, -39);
    EXPECT_EQ(caught.message, nullptr);
}

TEST(Error, CloneToStorageRefusesLittleRoom) {
    ScMessageBuzzStrings const message(SkAlertStrings(), 1, 1, 1, SkSimpleAlert());
    alignas(std::max_align_t) unsigned char storage[kMessageCapacity];
    EXPECT_EQ(message.CloneToStorage(storage, sizeof message - 1), nullptr);
    ScMessageClass* copy = message.CloneToStorage(storage, sizeof message);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(typeid(*copy), typeid(ScMessageBuzzStrings));
    EXPECT_STREQ(copy->GetText(), message.GetText());
    copy->~ScMessageClass();
}

TEST(Error, ResolveErrorGivesTheCodeBack) {
    ScMessageBuzzStrings const message(SkAlertStrings(), 1, 1, 1, SkSimpleAlert());
    EXPECT_EQ(message.ResolveError(-43), -43);
    EXPECT_EQ(ScMessageClass().ResolveError(7), 7);
    EXPECT_EQ(ScMessageStrings().ResolveError(7), 7);
}

TEST(Error, ForeignExceptionsHaveCodes) {
    EXPECT_EQ(CaughtCode([] { throw std::bad_alloc(); }), -108);
    EXPECT_EQ(CaughtCode([] { throw std::bad_array_new_length(); }), -108);
    EXPECT_EQ(CaughtCode([] { throw std::runtime_error("foreign"); }), -32768);
}

TEST(Error, ThrowIfNilThrowsForNullOnly) {
    int something = 0;
    EXPECT_EQ(CaughtCode([&] { SrThrowIfNIL(&something); }), SkNothingCaught());
    EXPECT_EQ(CaughtCode([] { SrThrowIfNIL(nullptr); }), -108);
}

TEST(Error, ThrowingSurvivesAGateThatRefusesEverything) {
    RefusedMemory const refused;
    StCaught const caught([] {
        ScMessageBuzzStrings message(SkAlertStrings(), 5, 1, 1, SkSimpleAlert());
        SrThrow(-108, &message);
    });
    EXPECT_EQ(caught.error, -108);
    ASSERT_NE(caught.message, nullptr);
    EXPECT_NE(*caught.message->GetText(), '\0');
}

TEST(Error, ExceptionCanBeCopiedAndOutliveItsThrow) {
    std::exception_ptr kept;
    try {
        SrThrow(SkBadFileFormatErrC(), SkBadFileFormatMsgC());
    } catch (std::exception const&) {
        kept = std::current_exception();
    }
    StCaught const caught([&] { std::rethrow_exception(kept); });
    EXPECT_EQ(caught.error, SkBadFileFormatErrC());
    EXPECT_STREQ(caught.message->GetText(), SkBadFileFormatMsgC()->GetText());
}

}  // namespace
