#include "simulator/model/defaultmachine.h"

#include <stddef.h>

#include "simulator/model/bytes.h"
#include "simulator/model/defaulttable.h"

const tSimulatorPresence kDefaultPresence = {.controllers = 1, .martens = 1, .devicePaths = 1};

static const char kVersionText[] = "3.2";
static const char kMartenVersion[] = "1.4.0f7";

enum {
  kSelectController = 0x00100000,
  kSelectMarten = 0x00200000
};

typedef struct tDefaultAttribute {
  tSimulatorInterface interfaceKind;
  uint32_t attribute;
  uint32_t selector; /* under which the attribute is known too */
  const void* value;
  uint32_t size;
} tDefaultAttribute;

static const uint32_t kProcessorSetting = 2;
static const uint32_t kDriverSetting1 = 5;
static const uint32_t kDriverSetting2 = 250;

static const tDefaultAttribute kDefaultAttributes[] = {
    {kSimulatorInterfaceController, 0x20013100, kSelectController, &kProcessorSetting,
     sizeof(kProcessorSetting)},
    {kSimulatorInterfaceController, 0x20044C00, kSelectController, &kDriverSetting1,
     sizeof(kDriverSetting1)},
    {kSimulatorInterfaceController, 0x20051400, kSelectController, &kDriverSetting2,
     sizeof(kDriverSetting2)},
    {kSimulatorInterfaceMarten, 0x10000400, kSelectMarten, kMartenVersion, sizeof(kMartenVersion)},
};

static void putAttribute(tAttributeStore* store, const tDefaultAttribute* source, uint32_t id) {
  tSimulatorAttribute attribute;
  fillWithZeros(&attribute, sizeof(attribute));
  attribute.interfaceKind = source->interfaceKind;
  attribute.attribute = id;
  attribute.size = source->size;
  copyBytes(attribute.value, source->value, source->size);
  attributesPut(store, &attribute);
}

static void putDefaultAttributes(tAttributeStore* store) {
  attributesClear(store);
  for (size_t i = 0; i < sizeof(kDefaultAttributes) / sizeof(kDefaultAttributes[0]); ++i) {
    const tDefaultAttribute* source = &kDefaultAttributes[i];
    putAttribute(store, source, source->attribute);
    putAttribute(store, source, source->attribute | source->selector);
  }
}

void makeDefaultMachine(tModel* model) {
  handoverSetText(&model->handover, kVersionText, sizeof(kVersionText));
  model->handover.tableSize = writeDefaultTable(model->handover.table, SIMULATOR_TABLE_CAPACITY);
  putDefaultAttributes(&model->attributes);
}
