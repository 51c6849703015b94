"""The tag of the wheel: any Python 3, 64-bit Windows."""

from __future__ import annotations

import os
from typing import Any, Dict

from hatchling.builders.hooks.plugin.interface import BuildHookInterface


class WindowsWheel(BuildHookInterface):  # type: ignore[type-arg, misc]
    def initialize(self, version: str, build_data: Dict[str, Any]) -> None:
        library = os.path.join(self.root, "quenra", "quenra.dll")
        if not os.path.exists(library):
            raise FileNotFoundError(f"{library}: the wheel needs the library; run './dev package'")
        build_data["pure_python"] = False
        build_data["tag"] = "py3-none-win_amd64"
