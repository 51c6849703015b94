#include "simulator/model/attributes.h"

#include <stddef.h>

enum {
  kSelectorMask = 0x00F00000
};

static bool nameTheSame(uint32_t left, uint32_t right) {
  return ((left ^ right) & ~(uint32_t)kSelectorMask) == 0;
}

static uint32_t indexOf(const tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute) {
  for (uint32_t i = 0; i < store->count; ++i) {
    const tSimulatorAttribute* entry = &store->entries[i];
    if (entry->interfaceKind == interfaceKind && nameTheSame(entry->attribute, attribute)) {
      return i;
    }
  }
  return store->count;
}

void attributesClear(tAttributeStore* store) {
  store->count = 0;
}

const tSimulatorAttribute* attributesFind(const tAttributeStore* store, uint32_t interfaceKind,
                                          uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  return index < store->count ? &store->entries[index] : NULL;
}

bool attributesPut(tAttributeStore* store, const tSimulatorAttribute* attribute) {
  const uint32_t index = indexOf(store, attribute->interfaceKind, attribute->attribute);
  if (index == SIMULATOR_ATTRIBUTE_CAPACITY) {
    return false;
  }
  store->entries[index] = *attribute;
  if (index == store->count) {
    store->writable[index] = false;
    ++store->count;
  }
  return true;
}

void attributesRemove(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  if (index < store->count) {
    --store->count;
    store->entries[index] = store->entries[store->count];
    store->writable[index] = store->writable[store->count];
  }
}

bool attributesSetWritable(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute,
                           bool writable) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  if (index == store->count) {
    return false;
  }
  store->writable[index] = writable;
  return true;
}

bool attributesIsWritable(const tAttributeStore* store, uint32_t interfaceKind,
                          uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  return index < store->count && store->writable[index];
}
