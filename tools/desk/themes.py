"""Themes that the program can be dressed in: what a desktop of the K kind stores, which the toolkit reads itself."""

# Colours by part: background, text.
LIGHT = {
    "Window": ("239,240,241", "35,38,41"),
    "Button": ("252,252,252", "35,38,41"),
    "View": ("255,255,255", "35,38,41"),
    "Selection": ("61,174,233", "255,255,255"),
}
DARK = {
    "Window": ("42,46,50", "252,252,252"),
    "Button": ("49,54,59", "252,252,252"),
    "View": ("27,30,32", "252,252,252"),
    "Selection": ("61,174,233", "252,252,252"),
}
CONTRAST = {
    "Window": ("0,0,0", "255,255,255"),
    "Button": ("0,0,0", "255,255,255"),
    "View": ("0,0,0", "255,255,255"),
    "Selection": ("255,255,0", "0,0,0"),
}


def dress(folder, theme=None, points=10):
    """Stores a theme in a folder of settings; the environment with which the program takes it."""
    lines = ["[General]", f"font=DejaVu Sans,{points},-1,5,50,0,0,0,0,0"]
    for part, (back, text) in (theme or LIGHT).items():
        lines += [
            f"[Colors:{part}]",
            f"BackgroundNormal={back}",
            f"BackgroundAlternate={back}",
            f"ForegroundNormal={text}",
            "DecorationFocus=61,174,233",
            "DecorationHover=61,174,233",
        ]
    (folder / "kdeglobals").write_text("\n".join(lines) + "\n")
    return {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}
