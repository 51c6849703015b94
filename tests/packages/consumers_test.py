"""Programs that users build against the package, each in an empty folder with the tools of its user."""

import pathlib
import re
import shutil
import subprocess

from unpacked import VERSION, PackageTest, run, run_windows

HERE = pathlib.Path(__file__).resolve().parent
C_COMPILER = "x86_64-w64-mingw32-gcc-posix"
STRICT = ("-std=c11", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror", "-O2")


class CMakeConsumer(PackageTest):
    def configure(self, toolchain, **variables):
        project = self.folder / "project"
        shutil.copytree(HERE / "cmakeproject", project)
        definitions = {"CMAKE_TOOLCHAIN_FILE": project / f"{toolchain}.cmake",
                       "CMAKE_PREFIX_PATH": self.package, "CONSUMER_WANTED_VERSION": VERSION, **variables}
        run("cmake", "-G", "Ninja", "-S", project, "-B", self.folder / "build",
            *(f"-D{name}={value}" for name, value in definitions.items()))

    def build(self, toolchain, **variables):
        self.configure(toolchain, **variables)
        run("cmake", "--build", self.folder / "build")
        return self.folder / "build" / "consumer.exe"

    def test_find_package_in_c_runs(self):
        program = self.build("mingw", CONSUMER_LANGUAGE="C",
                             CONSUMER_SOURCE=self.examples / "productname.c")
        self.assert_prints_product_name(program)

    def test_find_package_in_cpp_runs(self):
        program = self.build("mingw", CONSUMER_LANGUAGE="CXX",
                             CONSUMER_SOURCE=self.examples / "productname.c")
        self.assert_prints_product_name(program)

    def test_cpp_binding_of_the_package_runs(self):
        source = self.folder / "program.cpp"
        source.write_text("#include <iostream>\n#include <quenra.hpp>\n"
                          "int main() { std::cout << quenra::controller{}.get(quenra::product_name) << '\\n'; }\n")
        program = self.build("mingw", CONSUMER_LANGUAGE="CXX", CMAKE_CXX_STANDARD="17",
                             CMAKE_CXX_FLAGS="-Wall -Wextra -Wconversion -Werror",
                             # The runtime libraries of GCC are not on the machine.
                             CMAKE_EXE_LINKER_FLAGS="-static", CONSUMER_SOURCE=source)
        self.assert_prints_product_name(program)

    def test_find_package_for_visual_c_links_its_import_library(self):
        kernel = make_kernel_library(self.folder)
        program = self.build("visualc", CONSUMER_LANGUAGE="C", CONSUMER_LIBRARIES=kernel,
                             CONSUMER_SOURCE=HERE / "visualc/productname.c")
        self.assert_prints_product_name(program)

    def test_find_package_of_a_newer_version_fails(self):
        with self.assertRaisesRegex(AssertionError, r"compatible\s+with requested version \"99.0\""):
            self.configure("mingw", CONSUMER_LANGUAGE="C", CONSUMER_WANTED_VERSION="99.0",
                           CONSUMER_SOURCE=self.examples / "productname.c")

    def test_find_package_for_linux_names_the_remedy(self):
        with self.assertRaisesRegex(AssertionError, "(?s)64-bit.*Choose a\\s+compiler"):
            self.configure("linux", CONSUMER_LANGUAGE="C",
                           CONSUMER_SOURCE=self.examples / "productname.c")


class CommandLineConsumer(PackageTest):
    def compile(self, source, *flags):
        program = self.folder / "program.exe"
        run(C_COMPILER, *STRICT, source, *flags, "-o", program)
        self.copy_library()
        return program

    def flags(self):
        return "-I", self.package / "include", self.package / "lib/libquenra.dll.a"

    def test_gcc_with_import_library_runs(self):
        program = self.compile(self.examples / "productname.c", *self.flags())
        self.assert_prints_product_name(program)

    def test_gcc_with_the_library_of_visual_c_runs(self):
        program = self.compile(self.examples / "productname.c", "-I", self.package / "include",
                               self.package / "lib/quenra.lib")
        self.assert_prints_product_name(program)

    def test_pkg_config_flags_build_a_program(self):
        # With a folder whose name contains a space, pkg-config escapes it as in a shell.
        flags = run("sh", "-c", "eval set -- $(pkg-config --cflags --libs quenra); printf '%s\\n' \"$@\"",
                    variables={"PKG_CONFIG_LIBDIR": str(self.package / "lib/pkgconfig")}).splitlines()
        program = self.compile(self.examples / "productname.c", *flags)
        self.assert_prints_product_name(program)

    def test_pkg_config_reports_the_version(self):
        version = run("pkg-config", "--modversion", "quenra",
                      variables={"PKG_CONFIG_LIBDIR": str(self.package / "lib/pkgconfig")})
        self.assertEqual(version.strip(), VERSION)

    def test_routing_example_connects_terminals(self):
        program = self.compile(self.examples / "route.c", *self.flags())
        device = run_windows(self.package / "bin/quenra.exe", "get", "device-path").strip()
        output = run_windows(program, device, "PXI_Trig0", "PXI_Trig1", folder=self.folder)
        self.assertIn("terminal PXI_Trig7", output.splitlines())
        self.assertIn('connected: ["PXI_Trig0","PXI_Trig1"]', output.splitlines())


class Page(PackageTest):
    """The commands of docs/packages.md, as they are written, with FOLDER for the package."""

    def setUp(self):
        super().setUp()
        (self.folder / "FOLDER").symlink_to(self.package)
        shutil.copy(self.examples / "productname.c", self.folder / "program.c")

    def blocks(self, language):
        page = (self.package / "share/doc/quenra/docs/packages.md").read_text()
        return re.findall(rf"^```{language}\b[^\n]*\n(.*?)^```$", page, re.M | re.S)

    def test_shell_commands_build_a_program_that_runs(self):
        scripts = [script for script in self.blocks("sh") if "FOLDER" in script]
        self.assertEqual(len(scripts), 2)
        for script in scripts:
            run("bash", "-euc", script, folder=self.folder)
            self.copy_library()
            self.assert_prints_product_name(self.folder / "program.exe")
            (self.folder / "program.exe").unlink()

    def test_cmake_lines_build_a_program_that_runs_beside_its_library(self):
        project = "cmake_minimum_required(VERSION 3.21)\nproject(page LANGUAGES C)\n"
        (self.folder / "CMakeLists.txt").write_text(project + "\n".join(self.blocks("cmake")))
        run("cmake", "-G", "Ninja", "-B", "build", "-DCMAKE_PREFIX_PATH=" + str(self.folder / "FOLDER"),
            f"-DCMAKE_TOOLCHAIN_FILE={HERE / 'cmakeproject/mingw.cmake'}", folder=self.folder)
        run("cmake", "--build", "build", folder=self.folder)
        self.assertTrue((self.folder / "build/quenra.dll").is_file())
        self.assert_prints_product_name(self.folder / "build/program.exe")


class RunTimeLoading(PackageTest):
    def build(self):
        program = self.folder / "program.exe"
        run(C_COMPILER, *STRICT, HERE / "runtimeloading/productname.c", "-I", self.package / "include",
            "-o", program)
        return program

    def test_program_loads_the_library_when_it_runs(self):
        program = self.build()
        self.copy_library()
        self.assert_prints_product_name(program)

    def test_program_without_the_library_starts(self):
        with self.assertRaisesRegex(AssertionError, "cannot load quenra.dll: error 126"):
            run_windows(self.build(), folder=self.folder)


class VisualCConsumer(PackageTest):
    def test_clang_and_lld_link_with_quenra_lib(self):
        kernel = make_kernel_library(self.folder)
        run("clang", "--target=x86_64-pc-windows-msvc", "-ffreestanding", "-O2", "-Wall", "-Wextra",
            "-Werror", "-Wno-ignored-attributes", "-I", self.package / "include",
            "-idirafter", "/usr/share/mingw-w64/include",
            "-c", HERE / "visualc/productname.c", "-o", self.folder / "program.obj")
        program = self.folder / "program.exe"
        run("lld-link", "/subsystem:console", "/entry:mainCRTStartup", self.folder / "program.obj",
            self.package / "lib/quenra.lib", kernel, f"/out:{program}")
        self.copy_library()
        self.assert_prints_product_name(program)


class CommandLineOfThePackage(PackageTest):
    def test_program_runs_in_the_unpacked_folder(self):
        self.assert_prints_product_name(self.package / "bin/quenra.exe", "get", "product-name")

    def test_program_reports_the_version_of_the_package(self):
        self.assertIn(VERSION, run_windows(self.package / "bin/quenra.exe", "--version"))

    def test_bash_completion_completes_a_verb(self):
        script = self.package / "share/bash-completion/completions/quenra"
        shell = f". '{script}'; COMP_WORDS=(quenra firm); COMP_CWORD=1; COMP_LINE='quenra firm'; " \
                "COMP_POINT=11; $(complete -p quenra | sed 's/.*-F \\([^ ]*\\).*/\\1/') quenra firm quenra; " \
                "printf '%s\\n' \"${COMPREPLY[@]}\""
        self.assertEqual(run("bash", "-c", shell).split(), ["firmware"])


def make_kernel_library(folder):
    """An import library of the functions that the program without a C runtime calls."""
    library = folder / "kernel32.lib"
    subprocess.run(["llvm-dlltool", "-m", "i386:x86-64", "-d", HERE / "visualc/kernel32.def",
                    "-l", library], check=True)
    return library
