"""What pip installs from the source tree: without a network, with and without a C compiler."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import zipfile

import pytest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
LIBRARY = os.environ["PAVO_ZORV_LIBRARY"]
PROGRAM = """
import pavo_zorv
print(pavo_zorv.Message.__base__.__module__, pavo_zorv.__version__)
stack = pavo_zorv.api_lbl_stack(labels=[16, 24001])
print(stack.to_bytes().hex(" "), pavo_zorv.api_lbl_stack.from_bytes(stack.to_bytes()) == stack)
print(pavo_zorv.__file__)
"""


def environment(**more):
    """A user's, in which pip finds no index from which it could fetch a package."""
    kept = {name: value for name, value in os.environ.items() if not name.startswith(("PAVO_ZORV", "PYTHON", "PIP_"))}
    no_index = {"PIP_CONFIG_FILE": os.devnull, "PIP_INDEX_URL": "http://127.0.0.1:9/", "PIP_RETRIES": "0",
                "PIP_DISABLE_PIP_VERSION_CHECK": "1"}
    return kept | no_index | {"PYTHONDONTWRITEBYTECODE": "1", **more}


def pip(command, what, *options, **more):
    done = subprocess.run([sys.executable, "-m", "pip", command, "--quiet", "--no-build-isolation", what, *options],
                          env=environment(**more), capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stdout + done.stderr


def run(folder, program=PROGRAM, **more):
    return subprocess.run([sys.executable, "-c", program], env=environment(PYTHONPATH=str(folder), **more), cwd="/",
                          capture_output=True, text=True, check=False)


@pytest.fixture(name="tree")
def copied_tree(tmp_path):
    """A copy of the folder, which pip writes to; the header is beside it as in the source tree."""
    tree = tmp_path / "source" / "python"
    shutil.copytree(SOURCE / "python", tree, symlinks=True,
                    ignore=shutil.ignore_patterns("*.so", "*.egg-info", "build", "__pycache__"))
    (tmp_path / "source" / "include").mkdir()
    shutil.copy(SOURCE / "include" / "pavo_zorv.h", tmp_path / "source" / "include")
    return tree


@pytest.mark.parametrize("compiler, part", [("cc", "_native"), ("/nonexistent/cc", "_codec"), ("false", "_codec")])
def test_pip_installs_it(tree, tmp_path, compiler, part):
    pip("install", tree, "--target", tmp_path / "installed", CC=compiler)
    shutil.rmtree(tmp_path / "source")
    done = run(tmp_path / "installed", PAVO_ZORV_LIBRARY=LIBRARY)
    assert done.stderr == ""
    assert done.stdout.splitlines() == [
        f"pavo_zorv.{part} 1.0.0", "08 10 08 c1 bb 01 True", str(tmp_path / "installed" / "pavo_zorv" / "__init__.py")]
    installed = {each.name for each in (tmp_path / "installed" / "pavo_zorv").iterdir()}
    sources = {each.name for each in (SOURCE / "python" / "pavo_zorv").iterdir() if each.suffix in (".py", ".pyi")}
    compiled = {"_native.abi3.so"} if part == "_native" else set()
    assert installed - {"__pycache__"} == sources | compiled | {"pavo_zorv.h", "py.typed"}
    assert not (tmp_path / "installed" / "pavo_zorv" / "pavo_zorv.h").is_symlink()


def test_the_commands_of_the_guide(tree, tmp_path):
    commands = re.findall(r"`((?:\w+=\S+ )?pip [^`\n]+)`", (SOURCE / "docs" / "python.md").read_text(encoding="utf-8"))
    assert len(commands) == 3
    (tree.parent / "build").mkdir()
    (tree.parent / "build" / "libpavo_zorv.so").symlink_to(LIBRARY)
    assert sum("--no-build-isolation" in command for command in commands) == 1
    for command in commands:
        # All as without a network.
        offline = re.sub(r"pip (\w+)", rf"{sys.executable} -m pip \1 --no-build-isolation", command)
        subprocess.run(offline, shell=True, cwd=tree.parent, check=True, capture_output=True,
                       env=environment(PIP_TARGET=str(tmp_path / "installed"), PIP_UPGRADE="1"))
        assert (tmp_path / "installed" / "pavo_zorv" / "__init__.py").exists()
    [wheel] = tree.parent.glob("*.whl")
    assert "pavo_zorv/libpavo_zorv.so.1" in zipfile.ZipFile(wheel).namelist()


def test_a_wheel_may_contain_the_library(tree, tmp_path):
    pip("wheel", tree, "--wheel-dir", tmp_path / "wheels", PAVO_ZORV_BUNDLE=LIBRARY)
    [wheel] = (tmp_path / "wheels").iterdir()
    assert wheel.name.startswith("pavo_zorv-1.0.0-cp311-abi3-linux_")
    names = set(zipfile.ZipFile(wheel).namelist())
    assert {"pavo_zorv/libpavo_zorv.so.1", "pavo_zorv/pavo_zorv.h", "pavo_zorv/_native.abi3.so"} <= names
    pip("install", wheel, "--target", tmp_path / "installed")
    done = run(tmp_path / "installed", PROGRAM + "\nprint([line.split()[-1] for line in open('/proc/self/maps')"
                                                 " if 'libpavo_zorv' in line][0])")
    assert done.stderr == ""
    assert done.stdout.splitlines()[-1] == str(tmp_path / "installed" / "pavo_zorv" / "libpavo_zorv.so.1")


def test_a_wheel_without_library_and_compiled_part_is_for_any_machine(tree, tmp_path):
    pip("wheel", tree, "--wheel-dir", tmp_path, CC="/nonexistent/cc")
    assert [each.name for each in tmp_path.glob("*.whl")] == ["pavo_zorv-1.0.0-py3-none-any.whl"]


def test_a_wheel_has_nothing_of_an_earlier_one(tree, tmp_path):
    pip("wheel", tree, "--wheel-dir", tmp_path / "first", PAVO_ZORV_BUNDLE=LIBRARY)
    pip("wheel", tree, "--wheel-dir", tmp_path)
    [wheel] = tmp_path.glob("*.whl")
    assert [name for name in zipfile.ZipFile(wheel).namelist() if ".so" in name] == ["pavo_zorv/_native.abi3.so"]


def test_what_is_made_of_the_archive_of_the_sources_is_the_same(tree, tmp_path):
    program = f"from setuptools import build_meta; build_meta.build_sdist({str(tmp_path)!r})"
    subprocess.run([sys.executable, "-c", program], env=environment(), cwd=tree, check=True, capture_output=True)
    [archive] = tmp_path.glob("*.tar.gz")
    files = []
    for what, folder in ((tree, "tree"), (archive, "archive")):
        pip("wheel", what, "--wheel-dir", tmp_path / folder)
        [wheel] = (tmp_path / folder).iterdir()
        with zipfile.ZipFile(wheel) as opened:
            names = [name for name in opened.namelist() if not name.endswith((".so", "RECORD"))]
            files.append((wheel.name, {name: opened.read(name) for name in names}))
    assert "cp311-abi3" in files[0][0]
    assert files[0] == files[1]


def test_it_can_be_installed_for_editing(tree, tmp_path):
    pip("install", f"--editable={tree}", "--prefix", tmp_path / "prefix")
    [link] = (tmp_path / "prefix").rglob("*.pth")
    (tree / "pavo_zorv" / "_version.py").write_text('__version__ = "edited"\n', encoding="utf-8")
    done = run("", f"import site; site.addsitedir({str(link.parent)!r})\n{PROGRAM}", PAVO_ZORV_LIBRARY=LIBRARY)
    assert done.stderr == ""
    assert done.stdout.splitlines()[::2] == ["pavo_zorv._native edited", str(tree / "pavo_zorv" / "__init__.py")]


def test_the_places_of_the_library():
    package = SOURCE / "python" / "pavo_zorv"
    done = run(package, "import _library; print(*_library.candidates())")
    places = done.stdout.split()
    assert places[:2] == [str(package / "libpavo_zorv.so.1"), "libpavo_zorv.so.1"]
    architecture = sysconfig.get_config_var("MULTIARCH")
    assert places[2:] == [f"/usr/local/lib/{architecture}/libpavo_zorv.so.1", "/usr/local/lib/libpavo_zorv.so.1",
                          f"/usr/lib/{architecture}/libpavo_zorv.so.1", "/usr/lib/libpavo_zorv.so.1"]


def test_a_missing_library_is_named_with_the_places():
    done = run(SOURCE / "python", "import pavo_zorv", PAVO_ZORV_LIBRARY="/nonexistent/libpavo_zorv.so.1")
    assert done.returncode == 1
    assert done.stderr.splitlines()[-1] == (
        "ImportError: libpavo_zorv.so.1 is not found; tried /nonexistent/libpavo_zorv.so.1. Install libpavo-zorv1, or "
        "set PAVO_ZORV_LIBRARY to its path")


def test_a_broken_library_is_not_passed_over(tmp_path):
    (tmp_path / "libpavo_zorv.so.1").write_bytes(b"no library")
    done = run(SOURCE / "python", "import pavo_zorv", PAVO_ZORV_LIBRARY=str(tmp_path / "libpavo_zorv.so.1"))
    assert "cannot be loaded" in done.stderr.splitlines()[-1]
