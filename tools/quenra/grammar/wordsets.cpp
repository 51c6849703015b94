#include "tools/quenra/grammar/wordsets.h"

#include "tools/quenra/catalogue/attributecatalogue.h"
#include "tools/quenra/catalogue/statuscatalogue.h"
#include "tools/quenra/grammar/verbtable.h"

namespace nCommandLine {
namespace {

template <class Row>
std::vector<std::string> wordsOf(std::span<const Row> rows, std::string_view Row::*word) {
  std::vector<std::string> words;
  words.reserve(rows.size());
  for (const Row& row : rows) {
    words.emplace_back(row.*word);
  }
  return words;
}

}  // namespace

constinit const tWordSet kReadableWords{"attributes",
                                        [] { return wordsOf(kAttributes, &tAttributeRow::name); }};
constinit const tWordSet kWritableWords{"writable", [] {
                                          std::vector<std::string> words =
                                              wordsOf(kAttributes, &tAttributeRow::name);
                                          for (const tAttributeRow& setting : kSettings) {
                                            words.emplace_back(setting.name);
                                          }
                                          return words;
                                        }};
constinit const tWordSet kStatusWords{"statuses",
                                      [] { return wordsOf(kStatuses, &tStatusRow::constant); }};
constinit const tWordSet kVerbWords{"verbs", [] { return wordsOf(kVerbs, &tVerbRow::name); }};

}  // namespace nCommandLine
