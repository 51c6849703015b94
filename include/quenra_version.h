/* The version of these headers. The library's own is in the properties of quenra.dll, and
 * `quenra --version` prints it. */
#ifndef QUENRA_VERSION_H
#define QUENRA_VERSION_H

#define QUENRA_VERSION_MAJOR 0
#define QUENRA_VERSION_MINOR 2
#define QUENRA_VERSION_PATCH 0

/* One number, which compares as versions do: 1.2.3 is 10203. */
#define QUENRA_VERSION_NUMBER \
  (QUENRA_VERSION_MAJOR * 10000 + QUENRA_VERSION_MINOR * 100 + QUENRA_VERSION_PATCH)

#define QUENRA_VERSION_TEXT_OF(number) #number
#define QUENRA_VERSION_TEXT(major, minor, patch) \
  QUENRA_VERSION_TEXT_OF(major) "." QUENRA_VERSION_TEXT_OF(minor) "." QUENRA_VERSION_TEXT_OF(patch)

/* As text: "1.2.3". */
#define QUENRA_VERSION \
  QUENRA_VERSION_TEXT(QUENRA_VERSION_MAJOR, QUENRA_VERSION_MINOR, QUENRA_VERSION_PATCH)

#endif
