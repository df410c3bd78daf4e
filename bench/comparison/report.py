"""The figures as Markdown."""

from .table import PICTURE_WITHIN, PSNR_WITHIN, ROWS, SINGLES

BEGIN, END = "<!-- figures: written by bench/compare -->", "<!-- end of figures -->"


def verdict(value, must, aim):
    if value is None:
        return ""
    if value <= aim:
        return "aim"
    return "must" if value <= must else "**missed**"


def number(value):
    return "–" if value is None else f"{value:.2f}" if value < 10 else f"{value:.0f}"


def exact(value):
    return "–" if value is None else f"{value:.3f}"


def bounds_table(figures):
    lines = [
        "| Work | Ratio of | to | must | aim | before | now | | worst picture |",
        "| - | - | - | -: | -: | -: | -: | - | - |",
    ]
    before, now = figures["before"], figures["now"]
    for row in ROWS:
        if row.key in before or row.key in now:
            lines += row_lines(row, before.get(row.key, {}), now.get(row.key, {}))
    for single in SINGLES:
        if single.key in before or single.key in now:
            lines.append(single_line(single, before.get(single.key, {}), now.get(single.key, {})))
    return lines


def single_line(single, old, new):
    unit = f" {single.unit}" if single.unit else ""
    return (
        f"| {single.work} | | {single.peer} | {number(single.must)}{unit} | {number(single.aim)}{unit} "
        f"| {number(old.get('now'))} | {number(new.get('now'))} | {verdict(new.get('now'), single.must, single.aim)} | |"
    )


def row_lines(row, old, new):
    lines = []
    for what, peer, show, must, aim in (
        ("cpu", row.cpu_peer, number, row.must[0], row.aim[0]),
        ("bytes", (new or old)["bytes_peer"], exact, row.must[1], row.aim[1]),
    ):
        work = row.work if what == "cpu" else ""
        lines.append(
            f"| {work} | {'CPU' if what == 'cpu' else 'bytes'} | {peer} | {must:.2f} | {aim:.2f} "
            f"| {show(old.get(what))} | {show(new.get(what))} | {verdict(new.get(what), must, aim)} "
            f"| {worst_picture(new.get(f'picture_{what}'), must, show)} |"
        )
    if new.get("psnr") and row.psnr:
        before, psnr = old.get("psnr"), new["psnr"]
        name, least = psnr["worst"]
        met = "must" if least >= -PSNR_WITHIN else "**missed**"
        lines.append(
            f"| | PSNR, dB more | {row.cpu_peer} | -{PSNR_WITHIN} | | {exact(before and before['mean'])} "
            f"| {exact(psnr['mean'])} | {met} | {name} {exact(least)} |"
        )
    return lines


def worst_picture(found, must, show):
    if not found:
        return ""
    name, ratio = found
    return f"{name} {show(ratio)}" + ("" if ratio <= must * PICTURE_WITHIN else " **missed**")


def tools_table(now):
    """Every tool's seconds and megabytes, and the wall clock on the disk."""
    lines = []
    for row in ROWS:
        if row.key not in now:
            continue
        new = now[row.key]
        low, high = new["cpu_spread"]
        lines += [
            "",
            f"**{row.work}**: {new['pixels'] / 1e6:.1f} megapixels, {new['rounds']} rounds, "
            f"CPU ratios of the rounds {low:.2f} to {high:.2f}.",
            "",
            "| | CPU s | ns a pixel | MB | wall s on the disk |",
            "| - | -: | -: | -: | -: |",
        ]
        for name in sorted(new["seconds"], key=new["seconds"].get):
            seconds = new["seconds"][name]
            wall = f"{new['disk'][name]:.2f}" if name in new["disk"] else ""
            lines.append(
                f"| {name} | {seconds:.2f} | {seconds / new['pixels'] * 1e9:.1f} | {new['sizes'][name] / 1e6:.2f} | {wall} |"
            )
    return lines


def singles_lines(now):
    told = [(single, now.get(single.key, {}).get("detail")) for single in SINGLES]
    return [f"- {single.work}: {detail}." for single, detail in told if detail]


def when(figures, which):
    """Which build the figures are of, and how many rounds it took part in."""
    rounds = {row["rounds"] for row in figures[which].values() if "rounds" in row}
    return f"{figures[f'{which}_at']} ({min(rounds)} rounds)" if rounds else "not yet"


def figures_section(figures):
    """The part of docs/performance.md between its two marks."""
    facts = [f"- {line}" for line in figures["facts"]]
    return "\n".join(
        [
            BEGIN,
            "",
            f"Measured on {figures['date']}: now at {when(figures, 'now')}, before at {when(figures, 'before')}.",
            "",
            *facts,
            "",
            *bounds_table(figures),
            "",
            *singles_lines(figures["now"]),
            *tools_table(figures["now"]),
            "",
            END,
        ]
    )


def replaced(text, figures):
    """The document with its figures replaced; raises ValueError where the marks are missing."""
    head, _, rest = text.partition(BEGIN)
    _, mark, tail = rest.partition(END)
    if not mark:
        raise ValueError("the document has no place for figures")
    return head + figures_section(figures) + tail
