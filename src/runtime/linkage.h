// How functions leave the library's objects.
#pragma once

// A function of the base layer: plain name, visible to the library for tests; the product's export list leaves it out.
#define ZLV_BASE extern "C" [[gnu::visibility("default")]]

// An exported function. On Windows the module definition file exports it, on Linux the version script keeps it global.
#define ZLV_EXPORT extern "C" [[gnu::visibility("default")]]
