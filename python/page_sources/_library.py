"""libpage_sources as ctypes sees it: its functions, its structures, and calls that wait for them."""

from __future__ import annotations

import ctypes
import os
import pathlib
from typing import Callable, Iterable, Optional, Union

from .errors import Cancelled, Error, WrongArgument

Text = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
Texts = Union[Text, Iterable[Text]]

_ABI = 1
_NAME = f"libpage_sources.so.{_ABI}"
_DONE, _FAILED, _WRONG_ARGUMENT, _CANCELLED, _OUT_OF_MEMORY = range(5)

Progress = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_size_t, ctypes.c_size_t)
_Names = ctypes.POINTER(ctypes.c_char_p)


class _Sized(ctypes.Structure):
    def __init__(self, **members: object) -> None:
        super().__init__(size=ctypes.sizeof(self), **members)


class Options(_Sized):
    _fields_ = [
        ("size", ctypes.c_size_t),
        ("index_file", ctypes.c_char_p),
        ("threads", ctypes.c_uint),
        ("exclude", _Names),
        ("include", _Names),
        ("progress", Progress),
        ("cancelled", ctypes.c_void_p),
        ("data", ctypes.c_void_p),
    ]


class ReferenceQuery(_Sized):
    _fields_ = [
        ("size", ctypes.c_size_t),
        ("to", _Names),
        ("from_", _Names),
        ("roles", _Names),
        ("within_files", ctypes.c_int),
    ]


class EdgeQuery(_Sized):
    _fields_ = [
        ("size", ctypes.c_size_t),
        ("to", _Names),
        ("from_", _Names),
        ("within", _Names),
        ("way_from", ctypes.c_char_p),
        ("way_to", ctypes.c_char_p),
        ("by_folder", ctypes.c_int),
        ("folder_depth", ctypes.c_uint),
    ]


def _load() -> ctypes.CDLL:
    beside = pathlib.Path(__file__).with_name(_NAME)
    name = os.environ.get("PAGE_SOURCES_LIBRARY") or (str(beside) if beside.exists() else _NAME)
    try:
        library = ctypes.CDLL(name)
    except OSError as error:
        raise ImportError(f"page_sources cannot load its library: {error}") from error
    if library.page_sources_abi() != _ABI:
        raise ImportError(f"{name} is no library of version {_ABI}")
    text = ctypes.POINTER(ctypes.c_void_p)
    handle = ctypes.c_void_p
    for function, arguments in {
        "open": [ctypes.c_char_p, ctypes.POINTER(Options), ctypes.POINTER(handle), text],
        "refresh": [handle, text],
        "pages": [handle, _Names, _Names, text],
        "why": [handle, ctypes.c_char_p, ctypes.c_char_p, text],
        "references": [handle, ctypes.POINTER(ReferenceQuery), text],
        "edges": [handle, ctypes.POINTER(EdgeQuery), text],
        "symbols": [handle, _Names, ctypes.c_char_p, text],
    }.items():
        getattr(library, f"page_sources_{function}").argtypes = arguments
    for function in ("cancel", "close", "free"):
        found = getattr(library, f"page_sources_{function}")
        found.argtypes, found.restype = [handle], None
    library.page_sources_version.restype = ctypes.c_char_p
    return library


_library = _load()
VERSION: str = _library.page_sources_version().decode()


def encoded(text: Text) -> bytes:
    """A text or path as the library takes it."""
    found = os.fsencode(text)
    if b"\0" in found:
        raise ValueError(f"{text!r} holds a null byte")
    return found


def names(texts: Texts) -> ctypes.Array:
    """A list that ends in NULL. One text stands for a list of one."""
    if isinstance(texts, (str, bytes, os.PathLike)):
        texts = [texts]
    listed = [encoded(text) for text in texts]
    return (ctypes.c_char_p * (len(listed) + 1))(*listed, None)


class Handle:
    """An open repository of the library. Closed with the last call that holds it."""

    def __init__(self, path: Text, options: Options) -> None:
        self._pointer = ctypes.c_void_p()
        self._options = options  # with the callback, which must live as long as the repository
        self.path = os.fsdecode(path)
        self._answer("open", encoded(path), ctypes.byref(options), ctypes.byref(self._pointer))

    def __del__(self, close: Callable[[ctypes.c_void_p], None] = _library.page_sources_close) -> None:
        close(self._pointer)

    def call(self, function: str, *arguments: object) -> Optional[bytes]:
        """The answer's JSON text."""
        return self._answer(function, self._pointer, *arguments)

    def cancel(self) -> None:
        _library.page_sources_cancel(self._pointer)

    def _answer(self, function: str, *arguments: object) -> Optional[bytes]:
        text = ctypes.c_void_p()
        status = getattr(_library, f"page_sources_{function}")(*arguments, ctypes.byref(text))
        try:
            answer = ctypes.string_at(text) if text.value else None
        finally:
            _library.page_sources_free(text)
        if status == _DONE:
            return answer
        if status == _OUT_OF_MEMORY:
            raise MemoryError
        kind = {_WRONG_ARGUMENT: WrongArgument, _CANCELLED: Cancelled}.get(status, Error)
        raise kind((answer or b"").decode(), self.path)
