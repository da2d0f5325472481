// What libframewright exports. The library is built with hidden visibility: a class or routine that a host
// may use is marked, all else stays inside.
#pragma once

#define FRAMEWRIGHT_EXPORT __attribute__((visibility("default")))
