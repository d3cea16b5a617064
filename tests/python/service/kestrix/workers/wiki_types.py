import re

_INTERFACE_SIGNATURE_RE = re.compile(r"\b(?:ABC|Protocol)\b")
