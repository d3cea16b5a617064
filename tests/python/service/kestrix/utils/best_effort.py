import functools
import logging

_logger = logging.getLogger(__name__)


def best_effort(label, *, default):
    def guard(operation):
        @functools.wraps(operation)
        def guarded(*args, **kwargs):
            try:
                return operation(*args, **kwargs)
            except Exception:
                _logger.debug("%s failed", label, exc_info=True)
                return default

        guarded.label = label
        return guarded

    return guard
