// A host that was built against an installed library.
#include <cstdio>

#include "framewright/framewright.h"

int main() {
    std::printf("%zu set-up routines ran\n", SrGetInitializerNames().size());
    return SrGetStartupError() == 0 && SrGetInitializerNames().size() == 19 ? 0 : 1;
}
