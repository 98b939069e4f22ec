import sys

import pgkit

with pgkit.open(sys.argv[1]) as image:
    print(image.PatientName)
    print(image.Rows, "x", image.Columns)
