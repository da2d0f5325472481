// A process that loads the library, uses it, lets it go, and loads it again.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "framewright/thornmere/reference.h"

namespace {

using UseFramewright = int (*)(void* object, StReferenceCountableFunctionTable const* table);

bool IsLoaded(char const* path) {
    void* const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle) dlclose(handle);
    return handle != nullptr;
}

int gReleases = 0;
constexpr StReferenceCountableFunctionTable kCountReleases = {[](void*) {}, [](void*) { ++gReleases; },
                                                              [](void const*) { return 1L; }};

TEST(LoadingTheLibrary, WorksAsOftenAsOneLikes) {
    for (int round = 1; round <= 4; ++round) {
        SCOPED_TRACE(round);
        ASSERT_FALSE(IsLoaded(FRAMEWRIGHT_LIBRARY));
        void* const plugin = dlopen(FRAMEWRIGHT_PLUGIN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(plugin) << dlerror();
        EXPECT_TRUE(IsLoaded(FRAMEWRIGHT_LIBRARY));
        auto const use = reinterpret_cast<UseFramewright>(dlsym(plugin, "UseFramewright"));
        ASSERT_TRUE(use) << dlerror();

        gReleases = 0;
        EXPECT_EQ(use(&gReleases, &kCountReleases), 0) << "the line of plugin.cpp that went wrong";
        EXPECT_EQ(gReleases, 0);

        EXPECT_EQ(dlclose(plugin), 0);
        EXPECT_FALSE(IsLoaded(FRAMEWRIGHT_LIBRARY)) << "something holds the library in memory";
        EXPECT_EQ(gReleases, 1) << "shut-down releases what the framework was given, once";
    }
}

TEST(LoadingTheLibrary, SecondAttachmentOnlyCounts) {
    void* const first = dlopen(FRAMEWRIGHT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(first) << dlerror();
    void* const second = dlopen(FRAMEWRIGHT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    EXPECT_EQ(first, second);

    gReleases = 0;
    for (int round = 1; round <= 2; ++round) {
        void* const plugin = dlopen(FRAMEWRIGHT_PLUGIN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(plugin) << dlerror();
        auto const use = reinterpret_cast<UseFramewright>(dlsym(plugin, "UseFramewright"));
        EXPECT_EQ(use(&gReleases, &kCountReleases), 0) << "the line of plugin.cpp that went wrong";
        EXPECT_EQ(dlclose(plugin), 0);
        EXPECT_FALSE(IsLoaded(FRAMEWRIGHT_PLUGIN));
    }

    EXPECT_EQ(dlclose(second), 0);
    EXPECT_TRUE(IsLoaded(FRAMEWRIGHT_LIBRARY));
    EXPECT_EQ(gReleases, 0) << "the library is still in service";
    EXPECT_EQ(dlclose(first), 0);
    EXPECT_FALSE(IsLoaded(FRAMEWRIGHT_LIBRARY));
    EXPECT_EQ(gReleases, 2);
}

}  // namespace
