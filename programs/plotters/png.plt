# A plotter that writes PNG pictures, one for each page. The entries are told in mchost/mdl/plot.h.
output = png
resolution = 150
default = A4
margin = 10
