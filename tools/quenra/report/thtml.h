#ifndef TOOLS_QUENRA_REPORT_THTML_H
#define TOOLS_QUENRA_REPORT_THTML_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nCommandLine {

// Markup of the program: a constant of the source, never a text of the machine.
class tMarkup {
 public:
  template <size_t Size>
  consteval tMarkup(const char (&literal)[Size]) : markup_(literal, Size - 1) {}

  [[nodiscard]] constexpr std::string_view text() const noexcept { return markup_; }

 private:
  std::string_view markup_;
};

// A text of any bytes, to appear as it is: between tags, or between the quotes of an attribute.
struct tShown {
  std::string_view bytes;
};

// HTML that contains texts of the machine in escaped form only. A text cannot be appended without tShown: no
// function accepts one as markup. Control characters and marks that change the direction of writing appear as
// \x1B, bytes that are not UTF-8 as U+FFFD.
class tHtml {
 public:
  tHtml& operator<<(tMarkup markup) {
    html_ += markup.text();
    return *this;
  }
  tHtml& operator<<(tShown shown);
  tHtml& operator<<(const tHtml& html) {
    html_ += html.html_;
    return *this;
  }
  tHtml& operator<<(size_t number) {
    html_ += std::to_string(number);
    return *this;
  }

  [[nodiscard]] bool empty() const noexcept { return html_.empty(); }
  [[nodiscard]] const std::string& text() const noexcept { return html_; }

 private:
  std::string html_;
};

}  // namespace nCommandLine

#endif
