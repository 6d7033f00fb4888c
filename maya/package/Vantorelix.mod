// Tells each version of Maya which folder holds the module that its Python can load. "./vantorelix" is relative to this
// file. Folders named "plug-ins" are found by Maya itself.

+ MAYAVERSION:2022 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=python-3.7

+ MAYAVERSION:2023 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=python-3.9

+ MAYAVERSION:2024 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=python-3.10

+ MAYAVERSION:2025 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=python-3.11

+ MAYAVERSION:2026 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=python-3.11

+ MAYAVERSION:2027 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=python-3.13
