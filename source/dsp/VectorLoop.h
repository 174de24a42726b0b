// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** Stands before a loop whose passes are independent even where destination and source are the same vector, so that
    the compiler need not keep a scalar version for vectors that might overlap. It changes no result. */
#if defined(__clang__)
#define CORVANE_INDEPENDENT_PASSES _Pragma ("clang loop vectorize(assume_safety)")
#elif defined(__GNUC__)
#define CORVANE_INDEPENDENT_PASSES _Pragma ("GCC ivdep")
#else
#define CORVANE_INDEPENDENT_PASSES
#endif
