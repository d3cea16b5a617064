"""Calls that a signal can interrupt, and whose progress is told on the caller's thread."""

from __future__ import annotations

import queue
import threading
import time
from typing import Callable, Optional, TypeVar

from ._library import Handle, Progress

Result = TypeVar("Result")
Told = Callable[[int, int], object]

_INTERVAL = 0.05  # seconds between two reports of progress
_at_work = threading.local()


@Progress
def report(_data: object, done: int, total: int) -> None:
    """What the library calls, on the thread that works."""
    now = time.monotonic()
    if done == total or now >= _at_work.next:
        _at_work.next = now + _INTERVAL
        _at_work.messages.put((None, (done, total)))


def interruptible(handle: Handle, call: Callable[[], Result], told: Optional[Told]) -> Result:
    """The result of `call`, made on a thread of its own, so that this one can be interrupted while
    the library works. Whatever interrupts it, `told` included, first ends the work."""
    messages: queue.SimpleQueue = queue.SimpleQueue()

    def work() -> None:
        _at_work.messages, _at_work.next = messages, 0.0
        try:
            messages.put((True, call()))
        except BaseException as error:  # all of it is the caller's
            messages.put((False, error))

    worker = threading.Thread(target=work, name="page_sources", daemon=True)
    try:
        worker.start()
        done, value = messages.get()
        while done is None:
            if told is not None:
                told(*value)
            done, value = messages.get()
    except BaseException:
        while worker.is_alive():  # a request to end reaches only what is at work by then
            handle.cancel()
            worker.join(_INTERVAL)
        raise
    if done:
        return value
    raise value
