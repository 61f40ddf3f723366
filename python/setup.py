"""Compiles the fast part if this machine can, and takes the library along if PAVO_ZORV_BUNDLE names it."""

import os
import pathlib
import shutil
import sys
import sysconfig

from setuptools import Extension, setup
from setuptools.command.build_py import build_py


def can_compile():
    if sys.implementation.name != "cpython" or sys.version_info < (3, 11):
        return False
    compiler = (os.environ.get("CC") or sysconfig.get_config_var("CC") or "cc").split()[0]
    return shutil.which(compiler) is not None and pathlib.Path(sysconfig.get_path("include"), "Python.h").exists()


LIBRARY = os.environ.get("PAVO_ZORV_BUNDLE")


class Build(build_py):
    def run(self):
        # What an earlier build left there, such as its library, would be installed as well.
        shutil.rmtree(self.build_lib, ignore_errors=True)
        super().run()
        if LIBRARY:
            self.copy_file(LIBRARY, str(pathlib.Path(self.build_lib, "pavo_zorv", "libpavo_zorv.so.1")))


def extensions():
    if not can_compile():
        print("pavo_zorv._native is left out: no C compiler or no Python.h", file=sys.stderr)
        return []
    return [Extension("pavo_zorv._native", ["pavo_zorv/_native.c"], extra_compile_args=["-std=c11", "-O2"],
                      py_limited_api=True, optional=True)]


setup(
    cmdclass={"build_py": Build},
    ext_modules=extensions(),
    options={"bdist_wheel": {"py_limited_api": "cp311"}} if can_compile() else {},
    # A package with a library is for one kind of machine.
    **({"has_ext_modules": lambda: True} if LIBRARY else {}),
)
