# SPDX-License-Identifier: MIT
"""Conan 2 recipe of the tree in which it lies: conan create packaging/conan"""

import os
import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir

SOURCES = ["CMakeLists.txt", "LICENSE", "cmake/*", "common_stowraapi/*", "packaging/*"]


class CommonStowraapi(ConanFile):
    name = "common-stowraapi"
    description = "Client of the online services that a 3D-modelling application talks to"
    license = "MIT"
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"
    no_copy_source = True

    def _tree(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        header = load(self, os.path.join(self._tree(), "common_stowraapi", "version.h"))
        numbers = re.findall(r"^#define COMMON_STOWRAAPI_VERSION_[A-Z]+ (\d+)$", header, re.MULTILINE)
        self.version = ".".join(numbers)

    def export_sources(self):
        for pattern in SOURCES:
            copy(self, pattern, self._tree(), self.export_sources_folder)

    def requirements(self):
        self.requires("expat/[>=2.4 <3]")
        self.requires("icu/[>=72]")
        self.requires("libcurl/[>=7.87 <9]")
        self.requires("rapidjson/cci.20230929")
        self.requires("zlib/[>=1.2.11 <2]")

    def validate(self):
        check_min_cppstd(self, 17)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["STOWRA_BUILD_TESTS"] = False
        toolchain.cache_variables["STOWRA_BUILD_PROGRAMS"] = False
        toolchain.cache_variables["STOWRA_WARNINGS_AS_ERRORS"] = False
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        rmdir(self, os.path.join(self.package_folder, "lib", "cmake"))
        rmdir(self, os.path.join(self.package_folder, "lib", "pkgconfig"))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "CommonStowraapi")
        platform = self.cpp_info.components["platform"]
        platform.libs = ["CommonStowraapiPlatform"]
        platform.set_property("cmake_target_name", "CommonStowraapi::Platform")
        platform.requires = ["expat::expat", "icu::icu-uc", "libcurl::libcurl", "zlib::zlib"]
        library = self.cpp_info.components["library"]
        library.libs = ["CommonStowraapi"]
        library.set_property("cmake_target_name", "CommonStowraapi::CommonStowraapi")
        library.set_property("pkg_config_name", "common_stowraapi")
        library.requires = ["platform", "rapidjson::rapidjson"]
        if self.settings.os == "Macos":
            library.frameworks = ["Cocoa"]
