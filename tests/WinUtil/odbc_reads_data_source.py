#!/usr/bin/env python3
"""odbc_reads_data_source.py KIVTOOLS FOLDER: the system's ODBC driver manager reads the data source that kivtools writes.

No Access driver exists here, so the connection ends where the manager looks for the driver that the file names: it is
told to look for it in a library that is not there, and its error has to name that library.
"""
import ctypes
import os
import pathlib
import subprocess
import sys

kivtools, folder = sys.argv[1], pathlib.Path(sys.argv[2])
folder.mkdir(exist_ok=True)
(folder / "odbcinst.ini").write_text("[Microsoft Access Driver (*.mdb)]\nDriver=/no/access/driver.so\n")
os.environ["ODBCSYSINI"] = str(folder)

HANDLE_ENVIRONMENT, HANDLE_CONNECTION, ODBC_VERSION, ODBC_3, NO_PROMPT = 1, 2, 200, 3, 0
odbc = ctypes.CDLL("libodbc.so.2")


def connect(text):
    """What the driver manager says to a connection string."""
    environment, connection = ctypes.c_void_p(), ctypes.c_void_p()
    odbc.SQLAllocHandle(HANDLE_ENVIRONMENT, None, ctypes.byref(environment))
    odbc.SQLSetEnvAttr(environment, ODBC_VERSION, ctypes.c_void_p(ODBC_3), 0)
    odbc.SQLAllocHandle(HANDLE_CONNECTION, environment, ctypes.byref(connection))
    result = odbc.SQLDriverConnect(connection, None, text.encode(), len(text.encode()), None, 0, None, NO_PROMPT)
    assert result == -1, result
    state, code, message, length = (ctypes.create_string_buffer(6), ctypes.c_int(), ctypes.create_string_buffer(500), ctypes.c_short())
    odbc.SQLGetDiagRec(HANDLE_CONNECTION, connection, 1, state, ctypes.byref(code), message, 500, ctypes.byref(length))
    odbc.SQLFreeHandle(HANDLE_CONNECTION, connection)
    odbc.SQLFreeHandle(HANDLE_ENVIRONMENT, environment)
    return message.value.decode()


text = subprocess.run([kivtools, "dsn", folder / "firma.mdb"], check=True, capture_output=True, text=True).stdout.strip()
extended = text.partition('Extended Properties="')[2].rstrip('"')
pieces = dict(piece.split("=", 1) for piece in extended.strip(";").split(";"))
assert pieces["FILEDSN"] == str(folder / "auto_dsn.dsn"), pieces
for what, string in (("the file", f"FILEDSN={pieces['FILEDSN']}"), ("the connection string", extended)):
    said = connect(string)
    print(f"{what}: {said}")
    if "/no/access/driver.so" not in said:
        sys.exit(f"{what} did not lead to the driver")
missing = connect(f"FILEDSN={folder / 'none.dsn'}")
if "/no/access/driver.so" in missing:
    sys.exit(f"a file that is not there led to the driver: {missing}")
