"""The conversions once more, in numpy, from their description in words.

Shares nothing with the library's sources: whole-image array arithmetic where those
go row by row, so that a slip in one is not a slip in the other. Frames are arrays
(height, width) of whole numbers, top row first; images are (height, width, 3) in
the order red, green, blue, top row first.
"""
import numpy as np

RED, GREEN, BLUE = 0, 1, 2

# Colours of the 2 x 2 cell for the three Bayer phases: [row parity][column parity].
CELLS = {
    0: ((RED, GREEN), (GREEN, BLUE)),
    1: ((GREEN, RED), (BLUE, GREEN)),
    2: ((BLUE, GREEN), (GREEN, RED)),
}

DOWN, UP = 0, 1  # how the mean of two samples rounds a half


def sites(phase, height, width):
    """The colour of every sample."""
    cell = np.array(CELLS[phase])
    return cell[np.arange(height)[:, None] & 1, np.arange(width)[None, :] & 1]


def toward_zero(values, divisor):
    return np.sign(values) * (np.abs(values) // divisor)


def compose(phase, own, green, along_row, along_column, diagonal):
    """Puts each estimate where its colour belongs."""
    site = sites(phase, *own.shape)
    cell = np.array(CELLS[phase])
    # The colour that is not green in each row, and in each column.
    row_colour = cell.sum(axis=1)[np.arange(own.shape[0]) & 1][:, None] - GREEN
    column_colour = cell.sum(axis=0)[np.arange(own.shape[1]) & 1][None, :] - GREEN
    image = np.empty(own.shape + (3,), np.int64)
    image[..., GREEN] = np.where(site == GREEN, own, green)
    for colour in (RED, BLUE):
        at_green = np.where(row_colour == colour, along_row, along_column)
        assert np.all((row_colour == colour) ^ (column_colour == colour) | (site != GREEN))
        image[..., colour] = np.where(
            site == colour, own, np.where(site == GREEN, at_green, diagonal))
    return image


# ---- neighbours of the row-streaming codes ----


def beside(count):
    """Index of the one before and the one after; a missing one is the other."""
    before, after = np.arange(count) - 1, np.arange(count) + 1
    before[0], after[-1] = min(1, count - 1), max(count - 2, 0)
    return before, after


def partner_rows(height):
    """Rows are worked on in pairs: even ones look down, odd ones and the last up."""
    rows = np.arange(height)
    partner = np.where(rows % 2 == 0, rows + 1, rows - 1)
    if height % 2:
        partner[-1] = max(height - 2, 0)
    return partner


def bilinear_estimates(s):
    """Green, along the row, along the column, diagonal: with sums of four."""
    height, width = s.shape
    left, right = beside(width)
    up, down = beside(height)
    partner = s[partner_rows(height)]
    outer_row = np.isin(np.arange(height), (0, height - 1))[:, None]
    outer_column = np.isin(np.arange(width), (0, width - 1))[None, :]

    along_row = (s[:, left] + s[:, right]) // 2
    along_column = np.where(outer_column, partner, (s[up] + s[down]) // 2)
    green = (s[:, left] + s[:, right] + s[up] + s[down]) // 4
    green = np.where(outer_row, along_row, green)
    if width == 1:
        corner = partner
    elif height == 1:
        corner = along_row
    else:
        corner = (along_row + partner) // 2
    green = np.where(outer_column, corner, green)
    # In an outer row "up" and "down" are the same row: two samples, counted twice.
    diagonal = (s[up][:, left] + s[up][:, right] + s[down][:, left] + s[down][:, right]) // 4
    diagonal = np.where(outer_column, partner[:, left], diagonal)
    return green, along_row, along_column, diagonal


def bilinear(s, phase):
    return compose(phase, s, *bilinear_estimates(s))


def accelerated_bilinear(s, phase, rounding):
    """Inner rows by means of means, the first and last row as by bilinear."""
    height, width = s.shape
    left, right = beside(width)
    up, down = beside(height)
    along_row = (s[:, left] + s[:, right] + rounding) // 2
    along_column = (s[up] + s[down] + rounding) // 2
    green = (along_row + along_column) // 2
    diagonal = (along_column[:, left] + along_column[:, right]) // 2
    image = compose(phase, s, green, along_row, along_column, diagonal)
    for row in {0, height - 1}:
        image[row] = bilinear(s, phase)[row]
    return image


def edge_directed_green(s):
    height, width = s.shape
    padded = np.pad(s, 1)
    there = np.pad(np.ones_like(s), 1)

    def four(a):
        return a[1:-1, :-2], a[1:-1, 2:], a[:-2, 1:-1], a[2:, 1:-1]

    left, right, up, down = four(padded)
    total = left + right + up + down
    count = sum(four(there))
    horizontal, vertical = abs(left - right), abs(up - down)
    directed = np.where(vertical < horizontal, (up + down) // 2, (left + right) // 2)
    inner = np.where(abs(horizontal - vertical) >= 9, directed, total // 4)
    outer = np.where(count == 0, s, total // np.maximum(count, 1))
    green = np.where(count == 4, inner, outer)
    return np.where(sites(0, height, width) == GREEN, s, green)


# ---- neighbours of the whole-frame codes ----


def reflected_index(position, count):
    if count == 1:
        return 0
    while not 0 <= position < count:
        position = -position if position < 0 else 2 * (count - 1) - position
    return position


def reflected(s):
    """A reader of the neighbours of all samples at once, by row and column step."""
    height, width = s.shape
    rows = [reflected_index(y, height) for y in range(-2, height + 2)]
    columns = [reflected_index(x, width) for x in range(-2, width + 2)]
    wide = s[np.ix_(rows, columns)]

    def at(row_step, column_step):
        return wide[2 + row_step:2 + row_step + height, 2 + column_step:2 + column_step + width]

    return at


def green_by_own_colour(s):
    at = reflected(s)
    h = abs((at(0, -2) + at(0, 2)) // 2 - s)
    v = abs((at(-2, 0) + at(2, 0)) // 2 - s)
    left, right, up, down = at(0, -1), at(0, 1), at(-1, 0), at(1, 0)
    directed = np.where(h < v, (left + right) // 2, (up + down) // 2)
    green = np.where(abs(h - v) < 9, (left + right + up + down) // 4, directed)
    return np.where(sites(0, *s.shape) == GREEN, s, green)


def green_by_laplacian(s, maximum):
    at = reflected(s)
    left, right, up, down = at(0, -1), at(0, 1), at(-1, 0), at(1, 0)
    bend_h = 2 * s - at(0, -2) - at(0, 2)
    bend_v = 2 * s - at(-2, 0) - at(2, 0)
    h = abs(left - right) + abs(bend_h)
    v = abs(up - down) + abs(bend_v)
    by_row = toward_zero(left + right, 2) + toward_zero(bend_h, 4)
    by_column = toward_zero(up + down, 2) + toward_zero(bend_v, 4)
    by_both = toward_zero(left + right + up + down, 4) + toward_zero(bend_h + bend_v, 8)
    green = np.where(h < v, by_row, np.where(v < h, by_column, by_both))
    green = np.minimum(abs(green), maximum)
    return np.where(sites(0, *s.shape) == GREEN, s, green)


def with_colour_differences(s, green, maximum):
    raw, plane = reflected(s), reflected(green)

    def step(row_step, column_step):
        return raw(row_step, column_step) - plane(row_step, column_step)

    # >> rounds toward minus infinity.
    along_row = green + ((step(0, -1) + step(0, 1)) >> 1)
    along_column = green + ((step(-1, 0) + step(1, 0)) >> 1)
    diagonal = green + ((step(-1, -1) + step(-1, 1) + step(1, -1) + step(1, 1)) >> 2)
    image = compose(0, s, green, along_row, along_column, diagonal)
    return np.minimum(abs(image), maximum)


# ---- variable number of gradients ----


def turned(place, quarters):
    """A (row, column) step of the square, turned clockwise by quarters."""
    for _ in range(quarters):
        place = (place[1], -place[0])
    return place


class Square:
    """The 5 x 5 neighbourhoods by their numbers 1 to 25, seen turned by quarters."""

    def __init__(self, s, quarters):
        self.read = reflected(s)
        self.quarters = quarters

    def __call__(self, number):
        row, column = divmod(number - 1, 5)
        return self.read(*turned((row - 2, column - 2), self.quarters))

    def step(self, a, b):
        return abs(self(a) - self(b))

    def mean(self, a, b):
        return (self(a) + self(b)) // 2


def straight(q, red_or_blue):
    """North: gradient, estimates of the own colour and of two others.

    The others are green and the opposite colour, or at a green site the colour ahead
    and the one beside.
    """
    gradient = (q.step(8, 18) + q.step(3, 13) + (q.step(7, 17) + q.step(9, 19)) // 2 +
                (q.step(2, 12) + q.step(4, 14)) // 2)
    beside_it = (q.mean(2, 4) + q.mean(12, 14)) // 2
    return gradient, q.mean(3, 13), q(8), np.where(red_or_blue, q.mean(7, 9), beside_it)


def slanting(q, red_or_blue):
    """North-east; the others are green and the opposite, or the column's and the row's."""
    whole = q.step(9, 17) + q.step(5, 13)
    halves = (q.step(8, 12) + q.step(14, 18)) // 2 + (q.step(4, 8) + q.step(10, 14)) // 2
    gradient = whole + np.where(red_or_blue, halves, q.step(4, 12) + q.step(10, 18))
    own = np.where(red_or_blue, q.mean(5, 13), (q(5) + q(9) + q(13)) // 3)
    green = (q.mean(8, 14) + q.mean(4, 10)) // 2
    return (gradient, own, np.where(red_or_blue, green, q.mean(8, 10)),
            np.where(red_or_blue, q(9), q.mean(14, 4)))


def variable_gradients(s, maximum):
    red_or_blue = sites(0, *s.shape) != GREEN
    directions = []
    for quarters in range(4):
        square = Square(s, quarters)
        for direction in (straight, slanting):
            gradient, own, first, second = direction(square, red_or_blue)
            if quarters % 2:  # turned by a quarter, rows are columns
                first, second = (np.where(red_or_blue, first, second),
                                 np.where(red_or_blue, second, first))
            # Now, at green sites: first the column's colour, second the row's.
            directions.append((gradient, own, first, second))

    gradients = np.array([direction[0] for direction in directions])
    least, most = gradients.min(axis=0), gradients.max(axis=0)
    threshold = np.trunc(1.5 * least + 0.5 * (most - least))
    taken = gradients <= threshold
    count = taken.sum(axis=0)
    sums = [(taken * np.array([direction[k] for direction in directions])).sum(axis=0)
            for k in (1, 2, 3)]

    def found(total):
        difference = total - sums[0]
        quotient = np.sign(difference) * (abs(difference) // count)
        return np.clip(s + quotient, 0, maximum)

    first, second = found(sums[1]), found(sums[2])
    return compose(0, s, first, second, first, second)


# ---- the codes ----


def cells(s):
    """A frame of one row or column is its own neighbour; a colour not there is green."""
    height, width = s.shape
    site = sites(0, height, width)
    y = np.arange(max(height - 1, 1))[:, None]
    x = np.arange(max(width - 1, 1))[None, :]
    below, after = np.minimum(y + 1, height - 1), np.minimum(x + 1, width - 1)
    block = np.stack([s[y, x], s[y, after], s[below, x], s[below, after]])
    kind = np.stack([site[y, x], site[y, after], site[below, x], site[below, after]])

    def mean_of(colour, otherwise):
        count = (kind == colour).sum(axis=0)
        total = (block * (kind == colour)).sum(axis=0)
        return np.where(count == 0, otherwise, total // np.maximum(count, 1))

    green = mean_of(GREEN, s[y, x])
    pixels = np.stack([mean_of(RED, green), green, mean_of(BLUE, green)], axis=-1)
    # One row lower than the samples; the first row and the last column are repeated.
    rows = np.maximum(np.arange(height) - 1, 0)
    columns = np.minimum(np.arange(width), pixels.shape[1] - 1)
    return pixels[rows][:, columns]


def raw_mosaic(s):
    height, width = s.shape
    first = np.array((RED, GREEN) if width % 2 == 0 else (GREEN, BLUE))
    other = np.array((GREEN, BLUE) if width % 2 == 0 else (RED, GREEN))
    row_parity, even_column = np.arange(height) & 1, np.arange(width) % 2 == 0
    kind = np.where(even_column[None, :], first[row_parity][:, None], other[row_parity][:, None])
    return np.where(kind[..., None] == np.arange(3), s[..., None], 0)


def grey(values):
    return np.repeat(values[..., None], 3, axis=2)


def green_along_row(s):
    left, right = beside(s.shape[1])
    mean = (s[:, left] + s[:, right]) // 2
    return grey(np.where(sites(0, *s.shape) == GREEN, s, mean))


def written_columns(code, width):
    """Code 16 takes four samples at a time and leaves the rest of the row alone."""
    return width // 4 * 4 if code == 16 else width


def edge_bilinear(s):
    image = bilinear(s, 0)
    image[..., GREEN] = edge_directed_green(s)
    return image


def convert(s, code, maximum, phase=0, rounding=None):
    """The whole image of a frame; `rounding` is None where code 1 is not accelerated."""
    if code == 1:
        accelerated = rounding is not None and s.shape[1] % 4 == 0
        return accelerated_bilinear(s, phase, rounding) if accelerated else bilinear(s, phase)
    return {
        0: lambda: cells(s),
        2: lambda: edge_bilinear(s),
        3: lambda: with_colour_differences(s, green_by_own_colour(s), maximum),
        4: lambda: with_colour_differences(s, green_by_laplacian(s, maximum), maximum),
        5: lambda: variable_gradients(s, maximum),
        16: lambda: green_along_row(s),
        17: lambda: grey(edge_directed_green(s)),
        18: lambda: grey(green_by_laplacian(s, maximum)),
        255: lambda: raw_mosaic(s),
    }[code]()


def colour_corrected(image, amount, maximum):
    """`image` has its channels in the last dimension, in any order."""
    hundredth, half_hundredth = float(np.float32(0.01)), float(np.float32(0.005))
    a = float(np.float32(1 + hundredth * amount))
    b = float(np.float32(-(half_hundredth * amount)))
    channels = image.astype(np.float64)
    others = channels.sum(axis=-1, keepdims=True) - channels
    value = a * channels + b * others
    return np.trunc(np.clip(value, 0, maximum)).astype(np.int64)
