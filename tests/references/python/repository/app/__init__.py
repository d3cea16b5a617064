from .errors import AppError as AppError, NotFound
from .registry import *
