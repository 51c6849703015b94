"""The attributes of the controller, one constant for each.

    controller.get(quenra.attributes.MEMORY_SIZE, instance=1)

`ATTRIBUTES` holds all of them by name. An attribute that is not listed, such as one of a newer
driver, can be made from its id:

    Attribute(name="fan_speed", constant="", id=0x2020AA00, type=int, documentation="")
"""

from __future__ import annotations

from ._constants import *  # noqa: F403
from ._constants import ATTRIBUTES, Attribute

__all__ = ["ATTRIBUTES", "Attribute"] + [name.upper() for name in ATTRIBUTES]
