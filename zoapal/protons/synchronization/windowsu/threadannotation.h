#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_THREADANNOTATION_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_THREADANNOTATION_H

// Lets a compiler that can prove which lock guards which data do so.
#ifdef __clang__
#define ZOAPAL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZOAPAL_THREAD_ANNOTATION(x)
#endif

#endif
