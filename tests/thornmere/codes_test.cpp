#include "framewright/thornmere/codes.h"

#include <gtest/gtest.h>

namespace {

TEST(Codes, FirstCharacterIsInTheTopByte) {
    static_assert(SrCode("ColB") == 0x436F6C42);
    static_assert(SrCode("????") == 0x3F3F3F3F);
    static_assert(SrCode("AVI ") == 0x41564920);
    static_assert(kUnknownCode == 0x3F3F3F3F);
    EXPECT_EQ(SrCode("\xFF\x80\x01\x02"), 0xFF800102u) << "bytes above 127 are not negative";
}

}  // namespace
