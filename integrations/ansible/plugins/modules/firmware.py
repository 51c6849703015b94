# Documentation of the module; plugins/action/firmware.py does the work on the control node.
DOCUMENTATION = r"""
module: firmware
short_description: Bring the firmware of a rack to that of an image
description:
  - Plans the update with C(quenra update --plan --only-newer), applies it, restarts the rack, waits for it,
    and verifies that it reports the versions of the image and passes its self-test.
  - Check mode shows the plan and changes nothing. A rack whose versions are not older is not changed.
  - A file in I(records) marks a rack from the beginning of its update until the result is known. The next run
    applies the image to such a rack again, before a restart.
options:
  command:
    description: The command that starts quenra on the rack.
    type: str
    default: quenra
  image:
    description: Path of the image on the rack.
    type: str
    required: true
  records:
    description: Folder on the control node for the files of updates without a known result.
    type: path
    required: true
  restart:
    description: Restart the rack after the update, and verify it. Otherwise it is left awaiting its restart.
    type: bool
    default: true
  restart_command:
    description: The command that restarts the rack.
    type: str
    default: shutdown /r /t 5
  restart_delay:
    description:
      - Seconds after which a rack that answered all the time counts as restarted. A rack that did not answer
        meanwhile counts as restarted at once.
    type: int
    default: 120
  restart_timeout:
    description: Seconds after which a rack that does not answer as expected has failed.
    type: int
    default: 900
notes:
  - Needs quenra and a shell on the rack, over any connection; neither Python nor PowerShell.
author:
  - The authors of quenra
"""

EXAMPLES = r"""
- name: Update the rack
  quenra.rack.firmware:
    image: C:/firmware/update.fwi
    records: "{{ playbook_dir }}/quenra-records"
"""

RETURN = r"""
state:
  description:
    - C(current), nothing to do; C(updated), updated and verified; C(planned), in check mode;
      C(awaits_restart), updated, now or before, and not restarted.
    - C(refused), not changed; C(failed), changed, and not as the image is; C(unknown), the program gave no result.
      The task fails in these states.
  returned: always
  type: str
before:
  description: The versions C(bios) and C(marten) before.
  returned: always
  type: dict
after:
  description: The versions C(bios) and C(marten) after the restart.
  returned: always
  type: dict
expected:
  description: The version of the image for each device.
  returned: always
  type: dict
reasons:
  description: Why the state is not better, each with its remedy.
  returned: always
  type: list
  elements: str
"""
