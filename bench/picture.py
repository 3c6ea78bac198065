#!/usr/bin/python3
"""Draws docs/pictures/memory.svg: what the agent occupied while it packaged and sent a crash with a dump of 1 GiB, now, and
before files went through it in pieces. Both series are measured, by `./bench.sh memory --series FILE`."""
import json
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
BEFORE, AFTER = FOLDER / "memory-before.json", FOLDER / "memory-after.json"
PICTURE = FOLDER.parent / "docs" / "pictures" / "memory.svg"

WIDTH, HEIGHT, LEFT, TOP, RIGHT, BOTTOM = 800, 320, 70, 20, 20, 50
MOST_POINTS = 300


def save(path, points):
    """(seconds, MiB); of the points that fall together the one with the most memory."""
    step = max(1, -(-len(points) // MOST_POINTS))
    thinned = [max(points[i:i + step], key=lambda point: point[1]) for i in range(0, len(points), step)]
    path.write_text(json.dumps(thinned) + "\n", encoding="utf-8")


def nice_step(most):
    """The distance of about five ticks."""
    return next(step for base in range(7) for factor in (1, 2, 5) if (step := factor * 10 ** base) * 6 >= most)


def draw():
    series = [("before", "#b03030", json.loads(BEFORE.read_text(encoding="utf-8"))),
              ("now", "#2060a0", json.loads(AFTER.read_text(encoding="utf-8")))]
    last = max(points[-1][0] for *_, points in series)
    most = max(mebibytes for *_, points in series for _, mebibytes in points) * 1.05

    def x(seconds):
        return round(LEFT + seconds / last * (WIDTH - LEFT - RIGHT), 1)

    def y(mebibytes):
        return round(HEIGHT - BOTTOM - mebibytes / most * (HEIGHT - TOP - BOTTOM), 1)

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
             'font-size="12">', f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']
    for tick in range(0, int(most) + 1, nice_step(most)):
        parts.append(f'<path d="M{LEFT} {y(tick)}H{WIDTH - RIGHT}" stroke="#ddd"/>'
                     f'<text x="{LEFT - 6}" y="{y(tick) + 4}" text-anchor="end">{tick}</text>')
    for tick in range(0, int(last) + 1, nice_step(last)):
        parts.append(f'<text x="{x(tick)}" y="{HEIGHT - BOTTOM + 16}" text-anchor="middle">{tick}</text>')
    parts.append(f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 12}" text-anchor="middle">seconds</text>'
                 f'<text x="16" y="{HEIGHT / 2}" transform="rotate(-90 16 {HEIGHT / 2})" text-anchor="middle">MiB</text>')
    for name, colour, points in series:
        line = " ".join(f"{x(seconds)},{y(mebibytes)}" for seconds, mebibytes in points)
        place, highest = max(points, key=lambda point: point[1])
        anchor = "end" if x(place) > WIDTH * 0.7 else "start"
        parts.append(f'<polyline points="{line}" fill="none" stroke="{colour}" stroke-width="2"/>'
                     f'<text x="{x(place)}" y="{max(y(highest) - 6, 12)}" fill="{colour}" text-anchor="{anchor}">'
                     f'{name}: {highest:.0f} MiB at most</text>')
    PICTURE.write_text("\n".join(parts + ["</svg>", ""]), encoding="utf-8")


if __name__ == "__main__":
    draw()
