"""Finds the shared library."""

import ctypes
import os
import pathlib
import sysconfig

# The version of the binary interface that this package is written for.
_NAME = "libpavo_zorv.so.1"


def candidates():
    """Where the library may be: in this package, where the dynamic loader looks, and in /usr/local, where the loader
    finds it only after `ldconfig`."""
    chosen = os.environ.get("PAVO_ZORV_LIBRARY")
    if chosen:
        return [chosen]
    architecture = sysconfig.get_config_var("MULTIARCH") or ""
    prefixes = ("/usr/local", "/usr")
    folders = [pathlib.Path(prefix, "lib", folder) for prefix in prefixes for folder in (architecture, "")]
    return [str(pathlib.Path(__file__).with_name(_NAME)), _NAME, *(str(folder / _NAME) for folder in folders)]


def load():
    tried = []
    for path in candidates():
        try:
            return ctypes.CDLL(path)
        except OSError as error:
            # A file that is there but cannot be loaded is not passed over.
            if os.path.sep in path and os.path.exists(path):
                raise ImportError(f"{path} cannot be loaded: {error}") from error
            tried.append(path)
    raise ImportError(f"{_NAME} is not found; tried {', '.join(tried)}. Install libpavo-zorv1, or set "
                      "PAVO_ZORV_LIBRARY to its path")
