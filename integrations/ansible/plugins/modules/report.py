# Documentation of the module; plugins/action/report.py does the work on the control node.
DOCUMENTATION = r"""
module: report
short_description: Show a table of all racks of the play
description:
  - Shows a row for each rack of the play, from the results that the roles registered, also for racks that
    failed, were not reachable or were not started. Runs on the control node; use it with C(run_once).
options:
  kind:
    description: C(inventory) reads C(quenra_inventory_result) of each rack, C(update) C(quenra_update_result).
    type: str
    choices: [inventory, update]
    required: true
  file:
    description: File on the control node for the same data as JSON. Not written in check mode.
    type: path
author:
  - The authors of quenra
"""

EXAMPLES = r"""
- name: Show the racks
  quenra.rack.report:
    kind: inventory
    file: racks.json
  run_once: true
"""

RETURN = r"""
racks:
  description: The data of each rack.
  returned: always
  type: dict
table:
  description: The lines of the table.
  returned: always
  type: list
  elements: str
"""
