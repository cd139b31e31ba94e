"""The recipe for Conan 2: the library alone, for the owner to start with."""

from conan import ConanFile
from conan.errors import ConanException
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import get
from conan.tools.gnu import PkgConfigDeps


class OrvaLanguageConan(ConanFile):
    name = "orvalanguage"
    version = "1.0.0"
    description = "User-interface texts in the user's language, from a strings file in a bundle"
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"

    def requirements(self):
        if self.settings.os == "Linux":
            self.requires("nettle/[>=3.8]")

    def build_requirements(self):
        self.tool_requires("cmake/[>=3.22]")
        if self.settings.os == "Linux":
            self.tool_requires("pkgconf/[>=1.8]")

    def layout(self):
        cmake_layout(self, src_folder="source")

    def source(self):
        # PLACEHOLDER: remove this line, and fill in the next one.
        raise ConanException("The location of the source is not decided: see docs/decisions.md.")
        get(self, "SOURCE_URL", sha256="SOURCE_SHA256", strip_root=True)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in "TOOLS", "TESTS", "EXAMPLES":
            toolchain.cache_variables["ORVA_BUILD_" + part] = "OFF"
        toolchain.cache_variables["BUILD_SHARED_LIBS"] = "ON"
        toolchain.generate()
        CMakeDeps(self).generate()
        PkgConfigDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "OrvaLanguage")
        self.cpp_info.set_property("cmake_target_name", "OrvaLanguage::OrvaLanguage")
        self.cpp_info.set_property("pkg_config_name", "OrvaLanguage")
        self.cpp_info.libs = ["OrvaLanguage"]
