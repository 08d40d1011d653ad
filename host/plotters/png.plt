# A plotter that writes PNG pictures, one for each page.
output = png
resolution = 150
default = A4
