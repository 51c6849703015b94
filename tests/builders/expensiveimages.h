// Firmware images whose sections share as much as the format allows. A parser that repeats a step
// for each section sharing its result takes time quadratic in the size of the image.
#ifndef TESTS_BUILDERS_EXPENSIVEIMAGES_H
#define TESTS_BUILDERS_EXPENSIVEIMAGES_H

#include <cstddef>
#include <span>
#include <string>

namespace nTests {

struct tExpensiveImage {
  const char* name;
  // Builds a valid image of `sections` sections; its size is proportional to their number.
  std::string (*build)(size_t sections);
};

[[nodiscard]] std::span<const tExpensiveImage> expensiveImages();

}  // namespace nTests

#endif
