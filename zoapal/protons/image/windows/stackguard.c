/* The two names that -fstack-protector-strong calls for. The compiler's own library would ask a
 * cryptographic provider for the guard, which loads libraries while the loader holds its lock. */
#include <stdint.h>

/* The value that the compiler puts between a function's arrays and its return address. The loader replaces
 * this value of a load configuration's cookie, and no other, by a random one. */
extern uintptr_t __stack_chk_guard;
uintptr_t __stack_chk_guard = 0x00002B992DDFA232u;

void __stack_chk_fail(void) __attribute__((noreturn));

/* No handler, no destructor, no message: the stack is not to be trusted any more. */
void __stack_chk_fail(void) {
  enum {
    kStackCookieCheckFailure = 2,
    kFastFailInterrupt = 0x29
  };
  __asm__ volatile("int %0" : : "i"(kFastFailInterrupt), "c"(kStackCookieCheckFailure));
  __builtin_unreachable();
}
