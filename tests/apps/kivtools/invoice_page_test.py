"""The page of an invoice and its table on terminals: invoice_page_test.py PROGRAM FOLDER"""
import fcntl
import os
import pathlib
import pty
import re
import shutil
import struct
import subprocess
import sys
import termios
import unicodedata
import xml.etree.ElementTree as tree

PROGRAM = os.path.abspath(sys.argv[1])
FOLDER = pathlib.Path(sys.argv[2])
HEADER = """seller,"Țuica & <b>""Fiii""</b> SRL"
seller_code,RO12345674
seller_address,"Str. Morii 1, Șona"
seller_register,J08/1/2001
buyer,Brutăria 'Nouă'
buyer_address,Piața Mică 2
number,<7> & 8
date,2026-03-05
due_date,04.04.2026
currency,EUR
description,unit,quantity,unit_price,vat_rate
"""
failures = 0


def expect(what, actual, wanted):
    global failures
    if actual != wanted:
        failures += 1
        print(f"{what}:\n  is     {actual!r}\n  wanted {wanted!r}")


def run(*arguments):
    done = subprocess.run([PROGRAM, "invoice", *arguments], capture_output=True)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def write(name, lines, header=HEADER):
    path = FOLDER / name
    path.write_text(header + "".join(f'"<line {i}> & ""more""\nbelow",kg,{i},"1,25",11\n' for i in range(1, lines + 1)))
    return str(path)


def texts(element, path):
    return ["".join(found.itertext()) for found in element.findall(path)]


def page():
    """It is well-formed, says what the file says, and needs nothing else."""
    out = FOLDER / "out.html"
    expect("two invoices", run(write("a.csv", 300), write("b.csv", 1), "--html", str(out)), (0, "", ""))
    html = out.read_text()
    root = tree.fromstring(html)
    first, second = root.findall("body/article")
    expect("rows", [len(article.findall("table/tbody/tr")) for article in (first, second)], [300, 1])
    expect("heading that is repeated", texts(first, "table/thead/tr/th"),
           ["Nr.", "Denumire", "UM", "Cant.", "Preț unitar", "TVA", "Valoare"])
    expect("names", texts(first, "div/section/p"), ['Țuica & <b>"Fiii"</b> SRL', "Brutăria 'Nouă'"])
    expect("details", texts(first, "div/section/dl/dd"),
           ["RO12345674", "J08/1/2001", "Str. Morii 1, Șona", "Piața Mică 2"])
    expect("number and dates", texts(first, "header/h1") + texts(first, "header/p"),
           ["Factura <7> & 8", "5 martie 2026Scadența: 4 aprilie 2026"])
    expect("a row", texts(first.findall("table/tbody/tr")[9], "td"),
           ["10", '<line 10> & "more"\nbelow', "kg", "10", "1,25", "11%", "12,50"])
    expect("sums", texts(first, "footer/table/tbody/tr/td"),
           ["Total fără TVA", "56.437,50", "TVA 11% la 56.437,50", "6.208,13", "Total de plată (EUR)", "62.645,63"])
    expect("words", texts(first, "footer/p"), ["Total în litere: șasezeci și două de mii șase sute patruzeci și cinci de "
                                               "euro și șasezeci și trei de cenți"])
    expect("what is from elsewhere", re.findall(r"<script|\bsrc=|\bhref=|url\(|@import|https?:", html), [])
    for rule in ("size: A4", "display: table-header-group", "break-inside: avoid", "break-before: page"):
        expect(rule, rule in root.findtext("head/style"), True)
    expect("on standard output", run(str(FOLDER / "a.csv"), str(FOLDER / "b.csv"), "--html", "-"), (0, html, ""))


def output():
    """What cannot be written, or must not, leaves everything as it was."""
    good = write("good.csv", 1)
    bad = write("bad.csv", 0)
    out = FOLDER / "kept.html"
    out.write_text("kept")
    expect("the invoice itself", run(good, "--html", good),
           (2, "", f'kivtools invoice: {good} is an invoice that is read\n'))
    code, _, error = run(bad, "--html", str(out))
    expect("no invoice at all", (code, "there are no lines" in error, out.read_text()), (2, True, "kept"))
    code, _, error = run(good, "--html", str(FOLDER / "no" / "out.html"))
    expect("no such folder", (code, "error 2" in error), (2, True))
    code, _, error = run(bad, good, "--html", str(out))
    expect("one of two", (code, len(tree.fromstring(out.read_text()).findall("body/article"))), (2, 1))


def width(text):
    return sum(2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text if not unicodedata.combining(c))


def on_terminal(columns, *arguments):
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 25, columns, 0, 0))
    program = subprocess.Popen([PROGRAM, "invoice", *arguments], stdout=slave)
    os.close(slave)
    seen = b""
    try:
        while piece := os.read(master, 65536):
            seen += piece
    except OSError:  # the terminal is gone with the program
        pass
    os.close(master)
    expect("exit code", program.wait(), 0)
    return seen.decode().replace("\r\n", "\n")


def terminals():
    for columns in (30, 40, 52, 60, 70, 79, 80, 200):
        text = on_terminal(columns, "examples/invoice.csv") + on_terminal(columns, str(FOLDER / "a.csv"))
        widest = max(width(line) for line in text.split("\n"))
        expect(f"lines on {columns} columns, widest {widest}", widest <= columns, True)
        words = " ".join(text.split())
        for piece in ("4.161,50", "23.008,24", "Carte", "62.645,63", "J08/1/2001"):
            expect(f"{piece} on {columns} columns", piece in words, True)


shutil.rmtree(FOLDER, ignore_errors=True)
FOLDER.mkdir(parents=True)
page()
output()
terminals()
sys.exit(1 if failures else 0)
