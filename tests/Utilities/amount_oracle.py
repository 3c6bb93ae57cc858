#!/usr/bin/env python3
"""Reference results for Amount from Python's decimal module at 38 digits.

Reads one operation per line: "<op> <a> <b> <mode>", where op is add, sub, mul, div, pow or
round; b is a decimal for the first four and an integer (power, scale) for pow and round; mode
is the rounding-mode code (0 plain, 1 down, 2 up, 3 bankers). Prints one line per operation:
the result in plain notation without trailing fraction zeros, then "inexact" or "exact".
"""
import decimal
import sys

MODES = {
    "0": decimal.ROUND_HALF_UP,
    "1": decimal.ROUND_FLOOR,
    "2": decimal.ROUND_CEILING,
    "3": decimal.ROUND_HALF_EVEN,
}


def plain(value):
    if value.is_nan():
        return "NaN"
    if value.is_zero():
        return "0"
    text = format(value, "f")
    if "." in text:
        text = text.rstrip("0").rstrip(".")
    return text


def evaluate(op, a, b, ctx):
    x = decimal.Decimal(a)
    if op == "add":
        return ctx.add(x, decimal.Decimal(b))
    if op == "sub":
        return ctx.subtract(x, decimal.Decimal(b))
    if op == "mul":
        return ctx.multiply(x, decimal.Decimal(b))
    if op == "div":
        return ctx.divide(x, decimal.Decimal(b))
    if op == "pow":
        # Every value to the power 0 is one, zero included (Python calls 0 ** 0 undefined).
        if int(b) == 0:
            return decimal.Decimal(1)
        # Exact power first, then one rounding to 38 digits.
        exact = decimal.Context(prec=100000, Emax=10**6, Emin=-(10**6)).power(x, int(b))
        return ctx.plus(exact)
    if op == "round":
        scale = int(b)
        # Plain text hides the exponent of trailing integer zeros; any exponent that keeps the
        # value gives the same rounded value.
        x = x.normalize(context=decimal.Context(prec=100, Emax=10**6, Emin=-(10**6)))
        # Rounding to a scale never adds digits: a value already that short is left alone.
        if x.as_tuple().exponent >= -scale:
            return x
        return x.quantize(decimal.Decimal(1).scaleb(-scale), rounding=ctx.rounding, context=ctx)
    raise ValueError(op)


def main():
    for line in sys.stdin:
        fields = line.split()
        if not fields:
            continue
        op, a, b, mode = fields
        ctx = decimal.Context(prec=38, rounding=MODES[mode], Emax=10**6, Emin=-(10**6))
        result = evaluate(op, a, b, ctx)
        inexact = ctx.flags[decimal.Inexact]
        print(plain(result), "inexact" if inexact else "exact")


if __name__ == "__main__":
    main()
