#pragma once

/// @file
/// TALVO_ALWAYS_INLINE: for kernels that must become straight-line code in each place that uses them. Compilers count
/// their statements and would rather call them, with the element's numbers passed through memory.

#if defined(__GNUC__)
#define TALVO_ALWAYS_INLINE __attribute__((always_inline)) inline
#elif defined(_MSC_VER)
#define TALVO_ALWAYS_INLINE __forceinline
#else
#define TALVO_ALWAYS_INLINE inline
#endif
