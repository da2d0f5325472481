// A host that links the shared library: what it uses here must be exported.
#include <gtest/gtest.h>

#include "framewright/framewright.h"

namespace {

/// Built before main, when set-up must already be over.
std::size_t const gInitializersSeenByAStatic = SrGetInitializerNames().size();

TEST(ExportedNames, LibraryIsInServiceBeforeTheHostsOwnStatics) {
    EXPECT_EQ(SrGetStartupError(), 0);
    EXPECT_EQ(gInitializersSeenByAStatic, 19u);
}

}  // namespace
