#pragma once

/// Marks a function of the library whose body a header shows, for its callers' compilers to inline.
/// Where one does not, the library's is called: the source that is to hold it makes this empty.
#ifndef ZK_INLINE
#define ZK_INLINE extern inline __attribute__((gnu_inline))
#endif

// Whether the caller's compiler gives the library's bits: one whose options let it fuse or reorder
// operations does not see the bodies of functions that calculate.
#if defined(__x86_64__) && !defined(__FMA__) && !defined(__FMA4__) && !defined(__FAST_MATH__) && \
    !defined(__ASSOCIATIVE_MATH__) && !__FINITE_MATH_ONLY__
#define ZK_CALCULATES_INLINE
#endif
