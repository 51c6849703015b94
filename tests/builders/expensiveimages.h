// Firmware images whose sections share as much as the format allows. A parser that does a step again for
// each section that shares its result takes a time that grows with the square of the image's size.
#ifndef TESTS_BUILDERS_EXPENSIVEIMAGES_H
#define TESTS_BUILDERS_EXPENSIVEIMAGES_H

#include <cstddef>
#include <span>
#include <string>

namespace nTests {

struct tExpensiveImage {
  const char* name;
  // Builds a valid image of so many sections, whose size is proportional to their number.
  std::string (*build)(size_t sections);
};

[[nodiscard]] std::span<const tExpensiveImage> expensiveImages();

}  // namespace nTests

#endif
