/// @file
/// The one export macro: marks what the shared library publishes. Hosts that link the static library define
/// `KIV_STATIC` (the CMake target does it for them).
#pragma once

#if defined(KIV_STATIC)
#define KIV_API
#elif defined(_WIN32)
#if defined(KIV_BUILDING)
#define KIV_API __declspec(dllexport)
#else
#define KIV_API __declspec(dllimport)
#endif
#else
#define KIV_API __attribute__((visibility("default")))
#endif
