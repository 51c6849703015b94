#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "tests/component/commandline/tscriptedfacts.h"
#include "tests/component/commandline/tscriptedinterruption.h"
#include "tests/component/commandline/tscriptedlibrary.h"
#include "tests/component/commandline/tscriptedrouting.h"
#include "tools/quenra/commandline.h"

namespace nTests {
namespace {

// A full disk.
class tFullDisk final : public std::streambuf {
 protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
};

TEST(Output, ThatCannotBeWritten_IsAFailure) {
  tFullDisk disk;
  std::ostream out(&disk);
  std::ostringstream error;
  nCommandLine::tStreams streams{out, error};
  tScriptedLibrary library;
  tScriptedRouting routing;
  tScriptedFacts facts;
  tScriptedInterruption interruption;
  const std::array words{"quenra", "attributes"};
  EXPECT_EQ(nCommandLine::runCommandLine(2, words.data(), streams,
                                         {library, routing, facts, interruption}),
            1);
  EXPECT_THAT(error.str(), testing::HasSubstr("the output could not be written"));
}

}  // namespace
}  // namespace nTests
