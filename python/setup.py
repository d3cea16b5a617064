"""Puts libpage_sources into the package: the file that PAGE_SOURCES_LIBRARY names, else the one that
the target kestrix_capi leaves in build/release."""

import ctypes
import os
import pathlib
import shutil
import subprocess

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

NAME = "libpage_sources.so.1"
BUILT = pathlib.Path(__file__).resolve().parent.parent / "build/release/capi" / NAME
LIBRARY = pathlib.Path(os.environ.get("PAGE_SOURCES_LIBRARY", BUILT))

if not LIBRARY.exists():
    raise SystemExit(
        f"{LIBRARY} does not exist. Build it with `cmake --preset release` and `cmake --build "
        "build/release --target kestrix_capi`, or name another with PAGE_SOURCES_LIBRARY."
    )


def version() -> str:
    library = ctypes.CDLL(str(LIBRARY))
    library.page_sources_version.restype = ctypes.c_char_p
    return library.page_sources_version().decode()


class WithLibrary(build_py):
    def run(self) -> None:
        super().run()
        package = pathlib.Path(self.build_lib) / "page_sources"
        package.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(LIBRARY, package / NAME)
        if shutil.which("strip"):
            subprocess.run(["strip", "--strip-unneeded", package / NAME], check=True)


class AnyPython(bdist_wheel):
    """The library is of one platform, and of no version of Python."""

    def get_tag(self):
        return "py3", "none", super().get_tag()[2]


class OfOnePlatform(Distribution):
    def has_ext_modules(self) -> bool:
        return True


setup(
    version=version(),
    distclass=OfOnePlatform,
    cmdclass={"build_py": WithLibrary, "bdist_wheel": AnyPython},
)
