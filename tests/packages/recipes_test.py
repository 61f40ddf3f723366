#!/usr/bin/env python3
"""The recipes in packaging/ for vcpkg, Conan, Meson and RPM: they agree with the project, and can be read.

recipes_test.py SOURCE_FOLDER           reads them: versions, options, files
recipes_test.py SOURCE_FOLDER FOLDER    also builds in FOLDER what the ports for vcpkg and Conan ask for, with stand-ins of
                                        these tools' functions, and uses the result
"""

import configparser
import glob
import importlib.util
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import types

source = pathlib.Path(sys.argv[1]).resolve()
folder = pathlib.Path(sys.argv[2]).resolve() if len(sys.argv) > 2 else None
packaging = source / "packaging"
project = (source / "CMakeLists.txt").read_text(encoding="utf-8")
version = re.search(r"^project\(.* VERSION ([\d.]+)", project, re.MULTILINE)[1]
abi = re.search(r"^set\(pavo_zorv_abi (\d+)\)", project, re.MULTILINE)[1]
options = (source / "cmake" / "options.cmake").read_text(encoding="utf-8")
options = {*re.findall(r"\b(?:option|set)\((PAVO_ZORV_\w+)", options), "BUILD_TESTING", "BUILD_SHARED_LIBS"}
ENVELOPE = "08071a083a06081008c1bb01"
faults = []


def check(holds, fault):
    if not holds:
        faults.append(fault)


def run(*command):
    """Runs a command, which must succeed, and returns what it prints."""
    ran = subprocess.run(list(map(str, command)), text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                         check=False)
    if ran.returncode != 0:
        sys.exit(f"exit status {ran.returncode}: {' '.join(map(str, command))}\n{ran.stdout}")
    return ran.stdout


def check_options(recipe, named):
    check(len(named) >= 3, f"{recipe} names {len(named)} options")
    for name in sorted(set(named) - options):
        faults.append(f"{recipe} sets {name}, which is no option of the project")


# RPM.
spec = (packaging / "rpm" / "pavo-zorv.spec").read_text(encoding="utf-8")
check(re.search(rf"^Version: +{re.escape(version)}$", spec, re.MULTILINE), "the RPM packages have another version")
check(f"libpavo_zorv.so.{abi}*" in spec, "the RPM packages have another binary interface")
check_options("pavo-zorv.spec", re.findall(r"-D(PAVO_ZORV_\w+)=", spec) + ["BUILD_TESTING"])
if shutil.which("rpmspec"):
    parsed = run("rpmspec", "--query", packaging / "rpm" / "pavo-zorv.spec", "--queryformat", r"%{name} %{version}\n")
    check(parsed.split() == f"pavo-zorv {version} pavo-zorv-devel {version} zorv-inspect {version}".split(),
          f"rpmspec reads {parsed}")

# Meson.
wrap = configparser.ConfigParser()
wrap.read(packaging / "meson" / "pavo_zorv.wrap")
check(wrap["wrap-file"]["directory"] == f"pavo-zorv-{version}", "the wrap for Meson has another version")
patch = packaging / "meson" / "packagefiles" / wrap["wrap-file"]["patch_directory"] / "meson.build"
build = patch.read_text(encoding="utf-8")
check(f"version: '{version}'" in build, "meson.build has another version")
for path in re.findall(r"'((?:src|include)/[^']*)'", build):
    check((source / path).exists(), f"meson.build names {path}, which is not there")
check(f"{wrap['provide']['pavo_zorv']} =" in build, "meson.build has no such dependency as the wrap provides")

# vcpkg: a port that runs with stand-ins, which say what they are given, or do it.
port = packaging / "vcpkg"
manifest = json.loads((port / "vcpkg.json").read_text(encoding="utf-8"))
check(manifest["version"] == version, "the port for vcpkg has another version")
portfile = (port / "portfile.cmake").read_text(encoding="utf-8")
check_options("portfile.cmake", re.findall(r"(?:-D| )(PAVO_ZORV_\w+|BUILD_\w+)(?:=|\))", portfile))
STAND_INS = """
cmake_minimum_required(VERSION 3.25)
macro(vcpkg_check_features)
  cmake_parse_arguments(CHECK "" "OUT_FEATURE_OPTIONS" "FEATURES" ${ARGN})
  list(GET CHECK_FEATURES 1 option)
  set(${CHECK_OUT_FEATURE_OPTIONS} -D${option}=OFF)
endmacro()
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE ignored ERROR_VARIABLE ignored)
endfunction()
function(vcpkg_cmake_configure)
  cmake_parse_arguments(TO "" "SOURCE_PATH" "OPTIONS" ${ARGN})
  message("configure ${TO_SOURCE_PATH}: ${TO_OPTIONS}")
  if(BUILD_FOLDER)
    run(${CMAKE_COMMAND} -S ${TO_SOURCE_PATH} -B ${BUILD_FOLDER} -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_LIBDIR=lib
      -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR} ${TO_OPTIONS})
  endif()
endfunction()
function(vcpkg_cmake_install)
  message("install")
  if(BUILD_FOLDER)
    run(${CMAKE_COMMAND} --build ${BUILD_FOLDER} --target install)
  endif()
endfunction()
function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(OF "" "PACKAGE_NAME;CONFIG_PATH" "" ${ARGN})
  if(BUILD_FOLDER)
    file(RENAME ${CURRENT_PACKAGES_DIR}/${OF_CONFIG_PATH} ${CURRENT_PACKAGES_DIR}/share/cmake-${OF_PACKAGE_NAME})
  endif()
endfunction()
function(vcpkg_fixup_pkgconfig)
endfunction()
function(vcpkg_copy_tools)
  message(FATAL_ERROR "no tool is asked for")
endfunction()
"""
stand_ins = pathlib.Path(os.environ.get("TMPDIR", "/tmp")) / f"vcpkg-{os.getpid()}.cmake"
for linkage, shared in (("static", False), ("dynamic", True)):
    work = folder / f"vcpkg-{linkage}" if folder else None
    packages = work / "package" if work else stand_ins.with_suffix(".package")
    try:
        stand_ins.write_text(STAND_INS + f'include("{port}/portfile.cmake")\n', encoding="utf-8")
        said = run("cmake", f"-DVCPKG_LIBRARY_LINKAGE={linkage}", "-DPORT=pavo-zorv",
                   f"-DCURRENT_PACKAGES_DIR={packages}", *([f"-DBUILD_FOLDER={work / 'build'}"] if work else []), "-P", stand_ins)
    finally:
        stand_ins.unlink()
    check(f"configure {source}: -DPAVO_ZORV_TOOLS=OFF;-DBUILD_SHARED_LIBS={'ON' if shared else 'OFF'};" in said,
          f"the port configures something else: {said}")
    for notice in ("usage", "copyright"):
        check((packages / "share" / "pavo-zorv" / notice).is_file(), f"the port does not install {notice}: {said}")
    if work:
        library = packages / "lib" / ("libpavo_zorv.so" if shared else "libpavo_zorv.a")
        other = packages / "lib" / ("libpavo_zorv.a" if shared else "libpavo_zorv.so")
        check(library.exists() and not other.exists(), f"the {linkage} port installs {os.listdir(packages / 'lib')}")
        run("cc", "-std=c11", source / "tests/install/consumer.c", "-o", work / "program", f"-I{packages}/include",
            library, f"-Wl,-rpath,{packages}/lib")
        check(run(work / "program") == ENVELOPE, f"the program with the {linkage} port prints something else")
    else:
        shutil.rmtree(packages)


# Conan: a recipe that runs with stand-ins of what it imports.
class Settings(dict):
    def rm_safe(self, name):
        self.pop(name, None)


class ConanFile:
    pass


class CMakeToolchain:
    def __init__(self, recipe):
        self.recipe, self.cache_variables = recipe, {}

    def generate(self):
        self.recipe.toolchain = self.cache_variables


class CMake:
    def __init__(self, recipe):
        self.recipe = recipe

    def configure(self):
        run("cmake", "-S", self.recipe.source_folder, "-B", self.recipe.build_folder, "-DCMAKE_BUILD_TYPE=Release",
            "-DCMAKE_INSTALL_LIBDIR=lib", f"-DCMAKE_INSTALL_PREFIX={self.recipe.package_folder}",
            "-DBUILD_SHARED_LIBS=OFF",
            *(f"-D{name}={'ON' if value else 'OFF'}" for name, value in self.recipe.toolchain.items()))

    def build(self):
        run("cmake", "--build", self.recipe.build_folder)

    def install(self):
        run("cmake", "--install", self.recipe.build_folder)


def copy(_recipe, pattern, src, dst):
    """Files that match a pattern in a folder, also in the folders within."""
    for path in glob.glob(os.path.join(src, pattern)):
        to = os.path.join(dst, os.path.relpath(path, src))
        os.makedirs(os.path.dirname(to), exist_ok=True)
        (shutil.copytree if os.path.isdir(path) else shutil.copy)(path, to)


for name, members in (("conan", {"ConanFile": ConanFile}), ("conan.tools", {}),
                      ("conan.tools.cmake",
                       {"CMake": CMake, "CMakeToolchain": CMakeToolchain, "cmake_layout": lambda _: None}),
                      ("conan.tools.files", {"copy": copy, "rmdir": lambda _, path: shutil.rmtree(path)}),
                      ("conan.tools.build", {"can_run": lambda _: True})):
    sys.modules[name] = types.ModuleType(name)
    vars(sys.modules[name]).update(members)


def recipe_of(path):
    sys.dont_write_bytecode = True
    module_spec = importlib.util.spec_from_file_location("recipe", path)
    module = importlib.util.module_from_spec(module_spec)
    module_spec.loader.exec_module(module)
    return next(value for value in vars(module).values() if isinstance(value, type) and issubclass(value, ConanFile)
                and value is not ConanFile)


recipe_of(packaging / "conan" / "test_package" / "conanfile.py")
recipe = recipe_of(packaging / "conan" / "conanfile.py")()
check(recipe.version == version, "the recipe for Conan has another version")
recipe.settings, recipe.recipe_folder = Settings(), str(packaging / "conan")
recipe.options = types.SimpleNamespace(shared=False, rm_safe=lambda name: None)
recipe.cpp_info = types.SimpleNamespace(set_property=lambda name, value: None)
recipe.configure()
recipe.generate()
recipe.package_info()
check_options("conanfile.py", recipe.toolchain)
for pattern in recipe.SOURCES:
    check(glob.glob(str(source / pattern)), f"the recipe for Conan exports {pattern}, of which there is nothing")
if folder:
    work = folder / "conan"
    recipe.export_sources_folder = recipe.source_folder = str(work / "sources")
    recipe.build_folder, recipe.package_folder = str(work / "build"), str(work / "package")
    recipe.export_sources()
    recipe.build()
    recipe.package()
    run("cc", packaging / "conan/test_package/program.c", "-o", work / "program", f"-I{work}/package/include",
        *(f"{work}/package/lib/lib{name}.a" for name in recipe.cpp_info.libs))
    run(work / "program")
    check((work / "package/licenses/copyright").is_file(), "the package of Conan has no notice")

for fault in faults:
    print(fault, file=sys.stderr)
sys.exit(1 if faults else 0)
