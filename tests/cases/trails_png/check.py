from pathlib import Path

SIGN = b"\x89PNG\r\n\x1a\n"
for name in ("line.png", "piped.png"):
    picture = Path(name).read_bytes()
    assert picture.startswith(SIGN) and b" pixels " in picture, picture
