#include "framewright/platform/dib_colors.h"

unsigned SetDIBColorTable(void*, unsigned, unsigned, void const*) {
    return 0;
}
