#pragma once

/// @file
/// TALVO_EXPORT marks what is visible outside the library file, and nothing else is. The header also refuses the one
/// combination of program and library that cannot work.

#include <talvo/config.h>

#if !TALVO_SHARED
#define TALVO_EXPORT
#elif defined(_WIN32)
#ifdef TALVO_BUILDING
#define TALVO_EXPORT __declspec(dllexport)
#else
#define TALVO_EXPORT __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define TALVO_EXPORT __attribute__((visibility("default")))
#else
#define TALVO_EXPORT
#endif

// The vectors of the program that includes this header, in bytes.
#if defined(__AVX512F__)
#define TALVO_PROGRAM_VECTOR_BYTES 64
#elif defined(__AVX__)
#define TALVO_PROGRAM_VECTOR_BYTES 32
#else
#define TALVO_PROGRAM_VECTOR_BYTES 16
#endif

// A program may use wider vectors than the library, never the other way round: the library would run instructions that
// the program was not built for. (Nothing else depends on the flags of either: no object whose size, alignment or
// allocator follows the vector width is handed across the boundary.)
#if TALVO_PROGRAM_VECTOR_BYTES < TALVO_LIBRARY_VECTOR_BYTES
#error \
    "This talvo library was built with wider vectors (-mavx..., -march=...) than this program. \
Build the program with the same flags, or the library without them."
#endif

// The build measured its own vectors before it compiled anything. Flags that it did not see would make that a lie.
#if defined(TALVO_BUILDING) && TALVO_PROGRAM_VECTOR_BYTES != TALVO_LIBRARY_VECTOR_BYTES
#error \
    "talvo: these sources are compiled with other vectors (-mavx..., -march=...) than CMake measured. \
Give such flags in CMAKE_CXX_FLAGS."
#endif
