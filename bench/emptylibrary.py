"""emptylibrary.py OBJDUMP IMAGE SOURCE: writes the C source of a library without content that imports the
same functions as the image."""

import re
import subprocess
import sys


def imports_of(objdump, image):
    listing = subprocess.run([objdump, "-p", image], check=True, capture_output=True,
                             text=True).stdout
    tables = listing[listing.index("The Import Tables"):]
    tables = tables[:tables.index("The Export Tables")] if "The Export Tables" in tables else tables
    return sorted(set(re.findall(r"^\t[0-9a-f]+\s+(?:<none>|\d+)?\s*(?:[0-9a-f]{4}\s+)?(\w+)$", tables,
                                 re.MULTILINE)))


def main():
    objdump, image, source = sys.argv[1:]
    names = imports_of(objdump, image)
    if len(names) < 20:
        sys.exit(f"emptylibrary.py: only {len(names)} imports found in '{image}'")
    references = "".join(f'        "\\t.quad __imp_{name}\\n"\n' for name in names)
    with open(source, "w", encoding="utf-8") as file:
        file.write(f'__asm__("\\t.section .rdata\\n"\n{references}        "\\t.text\\n");\n')
        file.write("__declspec(dllexport) void doNothing(void);\nvoid doNothing(void) {}\n")


if __name__ == "__main__":
    main()
