/* Annotations for compilers and static analysis. They are empty for compilers that do not know them. */
#ifndef QUENRA_ANNOTATIONS_H
#define QUENRA_ANNOTATIONS_H

/* A warning for a call that drops the result. */
#if defined(__cplusplus) && __cplusplus >= 201703L
#define QUENRA_NODISCARD [[nodiscard]]
#elif defined(_MSVC_LANG) && _MSVC_LANG >= 201703L
#define QUENRA_NODISCARD [[nodiscard]]
#elif !defined(__cplusplus) && defined(__STDC_VERSION__) && __STDC_VERSION__ >= 202311L
#define QUENRA_NODISCARD [[nodiscard]]
#elif defined(_MSC_VER)
#include <sal.h>
#define QUENRA_NODISCARD _Check_return_
#else
#define QUENRA_NODISCARD
#endif

#if defined(_MSC_VER)
#include <sal.h>
/* The result is a status code, which the caller must not drop; a negative one leaves out-arguments
 * undefined for the analysis. */
#define QUENRA_RETURNS_STATUS QUENRA_NODISCARD _Success_(return >= 0)
#define QUENRA_OUT _Out_
#define QUENRA_INOUT _Inout_
#define QUENRA_INOUT_OPT _Inout_opt_
/* Text that ends with a NUL. */
#define QUENRA_IN_TEXT _In_z_
#define QUENRA_IN_BYTES_OPT(size) _In_reads_bytes_opt_(size)
/* Buffer of `size` bytes, which receives a text with its NUL. */
#define QUENRA_OUT_TEXT_OPT(size) _Out_writes_opt_z_(size)
/* The result may be null. */
#define QUENRA_MAYBE_NULL _Ret_maybenull_
#else
#define QUENRA_RETURNS_STATUS QUENRA_NODISCARD
#define QUENRA_OUT
#define QUENRA_INOUT
#define QUENRA_INOUT_OPT
#define QUENRA_IN_TEXT
#define QUENRA_IN_BYTES_OPT(size)
#define QUENRA_OUT_TEXT_OPT(size)
#define QUENRA_MAYBE_NULL
#endif

/* An assertion at compile time, in C11 and C++. */
#ifdef __cplusplus
#define QUENRA_STATIC_ASSERT(condition, text) static_assert(condition, text)
#else
#define QUENRA_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif

#endif
