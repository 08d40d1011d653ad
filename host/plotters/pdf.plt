# A plotter that writes PDF files, one for each page.
output = pdf
default = A4
