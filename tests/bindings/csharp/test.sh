#!/usr/bin/env bash
# test.sh LIBRARY FOLDER [NAME]: compiles the C# binding with its tests in FOLDER and runs them on Mono
# against libquenra.so in the folder LIBRARY. With NAME, only the tests whose names contain it.
set -euo pipefail
export LC_ALL=C.UTF-8
library=$(readlink -f "$1")
mkdir -p "$2"
folder=$(readlink -f "$2")
here=$(dirname "$(readlink -f "$0")")
source=$(readlink -f "$here/../../..")

# The sizes and the constants of the public headers as the C compiler knows them.
"${CC:-cc}" -std=c11 -Wall -Werror -x c -I "$source/include" -o "$folder/layout" - <<'C'
#include <stdio.h>
#include "quenra.h"
#include "quenra_routing.h"
#define PRINT(text, number) printf("%s %lld\n", text, (long long)(number))
#define SIZE(member) PRINT("sizeof " #member, sizeof(((zoerr_Status*)0)->member))
#define OFFSET(member) PRINT("offsetof " #member, offsetof(zoerr_Status, member))
#define CONSTANT(name) PRINT(#name, name)
int main(void) {
  PRINT("sizeof zoerr_Status", sizeof(zoerr_Status));
  PRINT("sizeof bool", sizeof(bool));
  PRINT("sizeof size_t", sizeof(size_t));
  SIZE(code);
  SIZE(capacity);
  OFFSET(code);
  OFFSET(capacity);
  OFFSET(reallocate);
  OFFSET(description);
  CONSTANT(QUENRA_HANDLE);
  CONSTANT(QUENRA_UPDATE_NEWER);
  CONSTANT(QUENRA_UPDATE_ALL);
  CONSTANT(QUENRA_MAX_TEXT_SETTING_LENGTH);
  CONSTANT(QUENRA_ATTRIBUTE_SELECTOR_MASK);
  CONSTANT(QUENRA_ATTRIBUTE_INSTANCE_MASK);
  CONSTANT(ZOROCO_API_VERSION);
  CONSTANT(ZOROCO_MAX_DEVICE_NAME_LENGTH);
  CONSTANT(ZOROCO_NO_BUS_LINE);
  return 0;
}
C
"$folder/layout" >"$folder/layout.txt"

mcs -noconfig -r:System.dll -r:System.Core.dll -langversion:7.2 -warnaserror+ -checked+ -debug -out:"$folder/tests.exe" \
  "$here"/*.cs "$source"/bindings/csharp/*.cs
LD_LIBRARY_PATH=$library mono --debug "$folder/tests.exe" "$source" "$folder/layout.txt" "${@:3}"
