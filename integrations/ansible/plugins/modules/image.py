# Documentation of the module; plugins/action/image.py does the work on the control node.
DOCUMENTATION = r"""
module: image
short_description: Make a valid firmware image available on a rack
description:
  - Verifies a firmware image on a rack with C(quenra firmware verify), the library's own parser.
  - With I(source), copies an image of the control node to the rack before, unless the rack has the same image.
options:
  command:
    description: The command that starts quenra on the rack.
    type: str
    default: quenra
  path:
    description: Path of the image on the rack.
    type: str
    required: true
  source:
    description: Path of the image on the control node, absolute or relative to the playbook, copied with the file transfer of the connection.
    type: path
  versions:
    description: Versions that the image must have, by device, such as C(MARTEN) or C(BIOS).
    type: dict
    default: {}
notes:
  - Needs quenra and a shell on the rack, over any connection; neither Python nor PowerShell.
author:
  - The authors of quenra
"""

EXAMPLES = r"""
- name: Put the image on the racks
  quenra.rack.image:
    source: update.fwi
    path: C:/firmware/update.fwi
    versions:
      MARTEN: 1.4.2f7
"""

RETURN = r"""
versions:
  description: The version of the image for each device.
  returned: success
  type: dict
state:
  description: C(ready); C(planned) in check mode if the image would be copied; C(refused) on failure.
  returned: always
  type: str
reasons:
  description: Why the image is refused.
  returned: failure
  type: list
  elements: str
"""
