# A plotter that writes PDF files, one for each page. The entries are told in mchost/mdl/plot.h.
output = pdf
default = A4
margin = 10
