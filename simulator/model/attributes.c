#include "simulator/model/attributes.h"

#include <stddef.h>

static uint32_t indexOf(const tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute) {
  for (uint32_t i = 0; i < store->count; ++i) {
    const tSimulatorAttribute* entry = &store->entries[i];
    if (entry->interfaceKind == interfaceKind && entry->attribute == attribute) {
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
    ++store->count;
  }
  return true;
}

void attributesRemove(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  if (index < store->count) {
    --store->count;
    store->entries[index] = store->entries[store->count];
  }
}
