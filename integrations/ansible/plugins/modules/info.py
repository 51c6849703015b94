# Documentation of the module; plugins/action/info.py does the work on the control node.
DOCUMENTATION = r"""
module: info
short_description: Read what a rack is
description:
  - Runs C(quenra info) and C(quenra self-test) on a rack. Changes nothing.
options:
  command:
    description: The command that starts quenra on the rack.
    type: str
    default: quenra
  self_test:
    description: Run the self-test too.
    type: bool
    default: true
notes:
  - Needs quenra and a shell on the rack, over any connection; neither Python nor PowerShell.
author:
  - The authors of quenra
"""

EXAMPLES = r"""
- name: Read what the racks are
  quenra.rack.info:
"""

RETURN = r"""
rack:
  description: The facts of the rack, which the fact C(quenra_rack) keeps.
  returned: success
  type: dict
  contains:
    manufacturer: {description: Manufacturer of the system., type: str}
    product: {description: Product name of the controller., type: str}
    serial_number: {description: Serial number., type: str}
    revision: {description: Hardware version., type: str}
    bios: {description: Version of the BIOS., type: str}
    marten: {description: Version of the Marten; null without a Marten., type: str}
    awaits_restart: {description: An update awaits a restart of the rack., type: bool}
    update_supported: {description: The rack supports firmware updates., type: bool}
    memory_mib: {description: Memory; null if the size of a module is not known., type: int}
    memory_modules: {description: Populated memory modules., type: int}
    slots: {description: Slots of the chassis., type: int}
    self_test: {description: The self-test passed., type: bool}
"""
