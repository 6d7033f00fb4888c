// Tells each version of Maya which folder has the module for its system and its Python. "./vantorelix" is relative to
// this file. Maya finds the folder "plug-ins" by itself.

+ MAYAVERSION:2022 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=linux/python-3.7

+ MAYAVERSION:2023 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=linux/python-3.9

+ MAYAVERSION:2024 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=linux/python-3.10

+ MAYAVERSION:2025 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=linux/python-3.11

+ MAYAVERSION:2026 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=linux/python-3.11

+ MAYAVERSION:2027 PLATFORM:linux Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=linux/python-3.13

+ MAYAVERSION:2022 PLATFORM:win64 Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=windows/python-3.7

+ MAYAVERSION:2023 PLATFORM:win64 Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=windows/python-3.9

+ MAYAVERSION:2024 PLATFORM:win64 Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=windows/python-3.10

+ MAYAVERSION:2025 PLATFORM:win64 Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=windows/python-3.11

+ MAYAVERSION:2026 PLATFORM:win64 Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=windows/python-3.11

+ MAYAVERSION:2027 PLATFORM:win64 Vantorelix 1.4.0 ./vantorelix/contents
PYTHONPATH+:=windows/python-3.13
