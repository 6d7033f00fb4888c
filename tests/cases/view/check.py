for path in ("a #1.html", "quiet.html", "temporary.html"):
    assert "trails-header" in open(path, encoding="utf-8").read(), path
