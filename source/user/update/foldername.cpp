#include "source/user/update/foldername.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace nQUENRA1400 {

std::string randomFolderName() {
  boost::uuids::random_generator_pure generator;
  return boost::uuids::to_string(generator());
}

}  // namespace nQUENRA1400
