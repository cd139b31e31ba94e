# Python 3 on Linux: python3 host.py BUNDLE
import ctypes
import os
import sys

if len(sys.argv) != 2:
    sys.exit("Usage: host.py BUNDLE")
orva = ctypes.CDLL("libOrvaLanguage.so.1")
orva.ZuOpenBundle.argtypes = [ctypes.c_char_p]
orva.ZuOpenBundle.restype = ctypes.c_void_p  # an int would lose half of the pointer
orva.ZuLoadStrings.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_void_p]
orva.ZuGetLocalizedString.argtypes = [ctypes.c_char_p]
orva.ZuGetLocalizedString.restype = ctypes.c_char_p  # copied to bytes; null is None


def text(key, fallback):
    found = orva.ZuGetLocalizedString(key.encode())  # None has no encode()
    return fallback if found is None else found.decode()


# Not a null bundle: that would be the interpreter's own.
bundle = orva.ZuOpenBundle(os.fsencode(sys.argv[1]))
if not bundle or orva.ZuLoadStrings(b"Deutsch", b"Sample.strings", bundle) < 1:
    sys.exit("Host: no texts")
print(text("MENU_OPEN", "Open"))
print(text("MENU_NEW", "New"))
