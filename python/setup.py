"""Makes one wheel of two packages, with what CMake built for them: libpage_sources for the package
page_sources, and the extension module of the service's component. Each is the file that its variable
names, else what the targets kestrix_capi and kestrix_python leave in build/release."""

import ctypes
import os
import pathlib
import shutil
import subprocess

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

RELEASE = pathlib.Path(__file__).resolve().parent.parent / "build/release"


def built(variable: str, path: str) -> pathlib.Path:
    file = pathlib.Path(os.environ.get(variable, RELEASE / path))
    if file.exists():
        return file
    raise SystemExit(
        f"{file} does not exist. Build it with `cmake --preset release` and `cmake --build "
        f"build/release --target kestrix_capi kestrix_python`, or name another with {variable}."
    )


LIBRARY = built("PAGE_SOURCES_LIBRARY", "capi/libpage_sources.so.1")
MODULE = built("PAGE_SOURCES_MODULE", "python/_page_sources.abi3.so")
BINARIES = {"page_sources/libpage_sources.so.1": LIBRARY, f"kestrix/workers/wiki/{MODULE.name}": MODULE}


def version() -> str:
    library = ctypes.CDLL(str(LIBRARY))
    library.page_sources_version.restype = ctypes.c_char_p
    return library.page_sources_version().decode()


class WithBinaries(build_py):
    def run(self) -> None:
        super().run()
        for place, binary in BINARIES.items():
            copy = pathlib.Path(self.build_lib) / place
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(binary, copy)
            if shutil.which("strip"):
                subprocess.run(["strip", "--strip-unneeded", copy], check=True)


class StableAbi(bdist_wheel):
    """The extension module fits every CPython from 3.9, the library any Python."""

    def get_tag(self):
        return "cp39", "abi3", super().get_tag()[2]


class OfOnePlatform(Distribution):
    def has_ext_modules(self) -> bool:
        return True


setup(
    version=version(),
    distclass=OfOnePlatform,
    cmdclass={"build_py": WithBinaries, "bdist_wheel": StableAbi},
)
