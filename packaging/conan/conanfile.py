"""A recipe for Conan 2, to be used in a copy of the sources: conan create packaging/conan"""

import os

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, rmdir


class PavoZorv(ConanFile):
    name = "pavo-zorv"
    version = "1.0.0"
    description = "Segment-routing policy messages in the Protocol Buffers wire format"
    package_type = "library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"shared": [True, False], "fPIC": [True, False]}
    default_options = {"shared": False, "fPIC": True}

    # What the library is built from, and what is installed with it.
    SOURCES = ("CMakeLists.txt", "cmake/*", "include/*", "src/*", "proto/*", "tools/*", "packaging/copyright")

    def configure(self):
        # The interface is C.
        self.settings.rm_safe("compiler.libcxx")
        self.settings.rm_safe("compiler.cppstd")
        if self.options.shared:
            self.options.rm_safe("fPIC")

    def export_sources(self):
        root = os.path.join(self.recipe_folder, "..", "..")
        for pattern in self.SOURCES:
            copy(self, pattern, src=root, dst=self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["BUILD_TESTING"] = False
        toolchain.cache_variables["PAVO_ZORV_TOOLS"] = False
        # One library for each package, whose settings select the processor.
        toolchain.cache_variables["PAVO_ZORV_X86_64_V3"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "copyright", src=os.path.join(self.source_folder, "packaging"),
             dst=os.path.join(self.package_folder, "licenses"))
        # Conan writes its own.
        for folder in ("cmake", "pkgconfig"):
            rmdir(self, os.path.join(self.package_folder, "lib", folder))

    def package_info(self):
        self.cpp_info.libs = ["pavo_zorv"]
        self.cpp_info.set_property("cmake_file_name", "pavo_zorv")
        self.cpp_info.set_property("cmake_target_name", "pavo_zorv::pavo_zorv")
        self.cpp_info.set_property("pkg_config_name", "pavo_zorv")
