#include "simulator/model/defaultmachine.h"

#include <stddef.h>

#include "simulator/model/bytes.h"
#include "simulator/model/defaulttable.h"

const tSimulatorPresence kDefaultPresence = {.controllers = 1, .martens = 1, .devicePaths = 1};

static const char kVersionText[] = "3.2";
static const char kMartenVersion[] = "1.4.0f7";

typedef struct tDefaultAttribute {
  tSimulatorInterface interfaceKind;
  uint32_t attribute;
  bool writable;
  const void* value;
  uint32_t size;
} tDefaultAttribute;

static const uint32_t kProcessorSetting = 2;
static const uint32_t kDriverSetting1 = 5;
static const uint32_t kDriverSetting2 = 250;
static const uint32_t kMartenSetting = 1;
static const char kNoText[] = "";

static const tDefaultAttribute kDefaultAttributes[] = {
    {kSimulatorInterfaceController, 0x20013100, false, &kProcessorSetting,
     sizeof(kProcessorSetting)},
    {kSimulatorInterfaceController, 0x20044C00, true, &kDriverSetting1, sizeof(kDriverSetting1)},
    {kSimulatorInterfaceController, 0x20051400, true, &kDriverSetting2, sizeof(kDriverSetting2)},
    {kSimulatorInterfaceController, 0x18000000, true, kNoText, sizeof(kNoText)},
    {kSimulatorInterfaceMarten, 0x10000400, true, kMartenVersion, sizeof(kMartenVersion)},
    {kSimulatorInterfaceMarten, 0x20051400, true, &kMartenSetting, sizeof(kMartenSetting)},
    {kSimulatorInterfaceMarten, 0x18000000, true, kNoText, sizeof(kNoText)},
};

static void putAttribute(tAttributeStore* store, const tDefaultAttribute* source) {
  tSimulatorAttribute attribute;
  fillWithZeros(&attribute, sizeof(attribute));
  attribute.interfaceKind = source->interfaceKind;
  attribute.attribute = source->attribute;
  attribute.size = source->size;
  copyBytes(attribute.value, source->value, source->size);
  attributesPut(store, &attribute);
  attributesSetWritable(store, source->interfaceKind, source->attribute, source->writable);
}

static void putDefaultAttributes(tAttributeStore* store) {
  attributesClear(store);
  for (size_t i = 0; i < sizeof(kDefaultAttributes) / sizeof(kDefaultAttributes[0]); ++i) {
    putAttribute(store, &kDefaultAttributes[i]);
  }
}

void makeDefaultMachine(tModel* model) {
  handoverSetText(&model->handover, kVersionText, sizeof(kVersionText));
  model->handover.tableSize = writeDefaultTable(model->handover.table, SIMULATOR_TABLE_CAPACITY);
  putDefaultAttributes(&model->attributes);
}
