/* The load configuration of an image, for the loader. lld enters it into the image's directory; for GNU ld,
 * cmake/enterloadconfiguration.py does after linking. */
#include <stddef.h>
#include <stdint.h>
#include <windows.h>

/* stackguard.c */
extern uintptr_t __stack_chk_guard;

/* Named Reserved1 in these headers. */
_Static_assert(offsetof(IMAGE_LOAD_CONFIG_DIRECTORY64, Reserved1) == 0x4E, "DependentLoadFlags");

extern const IMAGE_LOAD_CONFIG_DIRECTORY64 _load_config_used;
const IMAGE_LOAD_CONFIG_DIRECTORY64 _load_config_used = {
    .Size = sizeof(IMAGE_LOAD_CONFIG_DIRECTORY64),
    .Reserved1 = DEPENDENT_LOAD_FLAGS,
    .SecurityCookie = (ULONGLONG)&__stack_chk_guard,
};
