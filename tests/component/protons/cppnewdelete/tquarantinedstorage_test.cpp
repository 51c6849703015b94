#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/fakewindows/allocationplan.h"
#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"

namespace nTests {
namespace {

using nFakeWindows::bytesInUse;
using nQUENRA1400::nZOAPAL000::tQuarantinedStorage;

struct tObject : tQuarantinedStorage {
  tObject() = default;
  explicit tObject(bool isInvalid) {
    if (isInvalid) {
      throw 5;
    }
  }
  char content[100] = {};
};

class StorageQuarantine : public testing::Test {
 protected:
  ~StorageQuarantine() override { tQuarantinedStorage::releaseAll(); }

  // Creates and destroys an object and returns its address.
  static const void* addressOfADestroyedObject() {
    const auto object = std::make_unique<tObject>();
    const void* const address = object.get();
    return address;
  }

  nFakeWindows::tAllocationPlan counting_{0};
  const size_t before_ = bytesInUse();
};

TEST_F(StorageQuarantine, AsManyObjectsAsTheCapacity_KeepTheirStorage) {
  std::vector<const void*> addresses(tQuarantinedStorage::kCapacity);
  const size_t before = bytesInUse();
  std::generate(addresses.begin(), addresses.end(), &addressOfADestroyedObject);
  EXPECT_GE(bytesInUse() - before, tQuarantinedStorage::kCapacity * sizeof(tObject));
  std::sort(addresses.begin(), addresses.end());
  EXPECT_EQ(std::unique(addresses.begin(), addresses.end()), addresses.end());
}

TEST_F(StorageQuarantine, ObjectsBeyondTheCapacity_ReleaseTheOldestStorage) {
  for (size_t i = 0; i < tQuarantinedStorage::kCapacity; ++i) {
    addressOfADestroyedObject();
  }
  const size_t full = bytesInUse();
  for (size_t i = 0; i < 3 * tQuarantinedStorage::kCapacity; ++i) {
    addressOfADestroyedObject();
    EXPECT_EQ(bytesInUse(), full);
  }
}

TEST_F(StorageQuarantine, ClearedQuarantine_KeepsNothing) {
  for (size_t i = 0; i < 3; ++i) {
    addressOfADestroyedObject();
  }
  tQuarantinedStorage::releaseAll();
  EXPECT_EQ(bytesInUse(), before_);
  tQuarantinedStorage::releaseAll();
  addressOfADestroyedObject();
  EXPECT_GT(bytesInUse(), before_);
}

TEST_F(StorageQuarantine, ConstructorThatThrows_LeavesTheStorageToTheQuarantine) {
  EXPECT_THROW(static_cast<void>(std::make_unique<tObject>(true)), int);
  EXPECT_GE(bytesInUse() - before_, sizeof(tObject));
}

TEST_F(StorageQuarantine, NullStorage_IsIgnored) {
  for (size_t i = 0; i < tQuarantinedStorage::kCapacity; ++i) {
    addressOfADestroyedObject();
  }
  const size_t full = bytesInUse();
  tQuarantinedStorage::operator delete(nullptr);
  EXPECT_EQ(bytesInUse(), full);
}

}  // namespace
}  // namespace nTests
