"""Makes the wheel that pip installs, with nothing but Python: no other package has to be fetched.

If this machine can, it compiles the fast part. If PAVO_ZORV_BUNDLE names the library, that is taken along.
"""

import base64
import hashlib
import io
import os
import pathlib
import re
import shlex
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
PACKAGE = HERE / "pavo_zorv"
VERSION = re.search(r'__version__ = "(.*)"', (PACKAGE / "_version.py").read_text(encoding="utf-8"))[1]
NAME = f"pavo_zorv-{VERSION}"
METADATA = f"""\
Metadata-Version: 2.1
Name: pavo-zorv
Version: {VERSION}
Summary: The messages of a segment-routing policy component, over the shared library libpavo_zorv
Requires-Python: >=3.9
Description-Content-Type: text/markdown

{(HERE / "README.md").read_text(encoding="utf-8")}"""


def compiled(folder):
    """The fast part, compiled in a folder: its bytes, or none if this machine cannot make or use it."""
    if sys.implementation.name != "cpython" or sys.version_info < (3, 11):
        return None
    module = pathlib.Path(folder, "_native.abi3.so")
    flags = {name: shlex.split(os.environ.get(name, "")) for name in ("CFLAGS", "LDFLAGS")}
    compiler = shlex.split(os.environ.get("CC") or sysconfig.get_config_var("CC") or "cc")
    command = [*compiler, "-std=c11", "-O2", "-DNDEBUG", *flags["CFLAGS"], f"-I{sysconfig.get_path('include')}",
               "-fPIC", "-shared", "-fvisibility=hidden", str(PACKAGE / "_native.c"), *flags["LDFLAGS"], "-o", str(module)]
    try:
        subprocess.run(command, check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        print(f"pavo_zorv._native is left out: {error}", file=sys.stderr)
        return None
    return module.read_bytes()


def contents():
    """The files of the wheel but for its list of them, and for which Pythons and machines it is."""
    files = {f"pavo_zorv/{path.name}": path.read_bytes() for path in sorted(PACKAGE.iterdir())
             if path.suffix in (".py", ".pyi", ".h", ".typed")}
    with tempfile.TemporaryDirectory() as folder:
        native = compiled(folder)
    library = os.environ.get("PAVO_ZORV_BUNDLE")
    if native:
        files["pavo_zorv/_native.abi3.so"] = native
    if library:
        files["pavo_zorv/libpavo_zorv.so.1"] = pathlib.Path(library).read_bytes()
    machine = re.sub(r"[-.]", "_", sysconfig.get_platform())
    if sys.maxsize < 1 << 32:  # under the kernel of a machine with 64 bits
        machine = machine.replace("x86_64", "i686")
    tag = f"{'cp311-abi3' if native else 'py3-none'}-{machine if native or library else 'any'}"
    files[f"{NAME}.dist-info/METADATA"] = METADATA.encode()
    files[f"{NAME}.dist-info/WHEEL"] = (
        f"Wheel-Version: 1.0\nGenerator: pavo-zorv\nRoot-Is-Purelib: {str(tag.endswith('any')).lower()}\nTag: {tag}\n"
    ).encode()
    return files, tag


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    files, tag = contents()
    record = f"{NAME}.dist-info/RECORD"
    lines = []
    for name, data in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        lines.append(f"{name},sha256={digest},{len(data)}\n")
    files[record] = "".join([*lines, f"{record},,\n"]).encode()
    wheel = f"{NAME}-{tag}.whl"
    with zipfile.ZipFile(pathlib.Path(wheel_directory, wheel), "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in files.items():
            entry = zipfile.ZipInfo(name)  # with the same time always
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, data)
    return wheel


def build_sdist(sdist_directory, config_settings=None):
    paths = [*PACKAGE.iterdir(), HERE / "README.md", HERE / "backend.py", HERE / "pyproject.toml"]
    sources = {path.relative_to(HERE): path.read_bytes() for path in sorted(paths) if path.is_file()}
    sources[pathlib.Path("PKG-INFO")] = METADATA.encode()
    with tarfile.open(pathlib.Path(sdist_directory, f"{NAME}.tar.gz"), "w:gz") as archive:
        for path, data in sources.items():
            entry = tarfile.TarInfo(f"{NAME}/{path}")
            entry.size, entry.mode = len(data), 0o644
            archive.addfile(entry, io.BytesIO(data))
    return f"{NAME}.tar.gz"
