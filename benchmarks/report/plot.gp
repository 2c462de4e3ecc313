# SPDX-License-Identifier: MIT
# gnuplot -c plot.gp DATA OUTPUT.svg|OUTPUT.png
#
# Draws each row of the report as a dot: the library's time as a multiple of the other's time. The band is the goal.

data = ARG1
output_name = ARG2

stats data index 0 using 1 nooutput
rows = int(STATS_max)
stats data index 1 using 1 nooutput
growth_rows = int(STATS_max)

row_height = 23.0
head = 76.0
gap = 84.0
foot = 14.0
width = 1000.0
height = head + rows * row_height + gap + growth_rows * row_height + foot

set encoding utf8
is_png = output_name[strlen(output_name) - 3:] eq ".png"
if (is_png) {
  set terminal pngcairo size width, height font "DejaVu Sans,10" background "#ffffff"
} else {
  set terminal svg size width, height font "Helvetica,Arial,sans-serif,13" background "#ffffff" rounded
}
set output output_name
set datafile separator "\t"

ink = "#24292f"
grey = "#6e7781"
band = "#dcefdc"
band_edge = "#4c9a52"
limit_colour = "#1f5fa8"
peer_colour = "#8250df"
missed_colour = "#cf222e"
dot = 7
diamond = 13
scale = is_png ? 1.1 : 0.8

clamp(x, low, high) = x < low ? low : (x > high ? high : x)
missed(reached, x) = reached == 0 ? x : NaN
limit(reached, kind, x) = reached == 1 && kind == 0 ? x : NaN
peer(reached, kind, x) = reached == 1 && kind == 1 ? x : NaN
screen_y(pixels) = 1.0 - pixels / height

unset key
unset border
unset ytics
set lmargin 0
set rmargin 0
set tmargin 0
set bmargin 0
set style fill solid 1.0 noborder
set multiplot

# Limits and peers. The axis begins left of the dots, to leave room for the texts.
first = 0.05
last = 4.0
text_left = 5e-5
against_right = 0.042
figure_right = 19.0
set origin 0, screen_y(head + rows * row_height)
set size 1, rows * row_height / height
set xrange [text_left:figure_right * 1.06]
set yrange [rows + 0.5:0.5]
set logscale x 10
set for [x in "0.1 0.2 0.5 2"] arrow from x, 0.5 to x, rows + 0.5 nohead lc rgb "#d8dee4" lw 1 back
set arrow from 1, 0.5 to 1, rows + 0.5 nohead lc rgb grey lw 1.5 back
set format x ""
unset xtics
do for [x in "0.1 0.2 0.5 1 2"] {
  set label x . "×" at x, 0.5 center offset 0, 0.7 tc rgb grey
}
set label "Time of the library as a multiple of" at screen 0.012, screen_y(24) left tc rgb ink
set label "limit: parser, libcurl or memory alone" at screen 0.335, screen_y(24) left tc rgb limit_colour point pt dot ps scale lc rgb limit_colour offset 1.2, 0
set label "peer: another library for the same" at screen 0.640, screen_y(24) left tc rgb peer_colour point pt diamond ps scale lc rgb peer_colour offset 1.2, 0
set label "Left is faster. The green band is the goal, red dots miss it." at screen 0.012, screen_y(50) left tc rgb grey
plot data index 0 \
    using (0):1:(first):(clamp($3, first, last)):($1 - 0.36):($1 + 0.36) with boxxyerror lc rgb band, \
  '' index 0 using (clamp($3, first, last)):($1 - 0.36):(0):(0.72) with vectors nohead lw 2 lc rgb band_edge, \
  '' index 0 using (limit($5, $4, clamp($2, first, last))):1 with points pt dot ps scale lc rgb limit_colour, \
  '' index 0 using (peer($5, $4, clamp($2, first, last))):1 with points pt diamond ps scale lc rgb peer_colour, \
  '' index 0 using (missed($5, clamp($2, first, last))):1:($4 == 0 ? dot : diamond) with points pt variable ps scale lc rgb missed_colour, \
  '' index 0 using (text_left * 1.15):1:6 with labels left noenhanced tc rgb ink, \
  '' index 0 using (against_right):1:7 with labels right noenhanced tc rgb grey, \
  '' index 0 using (figure_right):1:(stringcolumn(8)) with labels right noenhanced tc rgb ink

# Growth.
unset arrow
unset label
unset logscale x
last = 16.0
# Puts 0 at the same place on the page as `first` above.
share = log(0.05 / text_left) / log(figure_right * 1.06 / text_left)
right_share = log(4.0 / text_left) / log(figure_right * 1.06 / text_left)
unit = last / (right_share - share)
left = -share * unit
set xrange [left:left + unit]
set yrange [growth_rows + 0.5:0.5]
set origin 0, screen_y(head + rows * row_height + gap + growth_rows * row_height)
set size 1, growth_rows * row_height / height
do for [x in "0 5 15"] {
  set arrow from x, 0.5 to x, growth_rows + 0.5 nohead lc rgb "#d8dee4" lw 1 back
}
set arrow from 10, 0.5 to 10, growth_rows + 0.5 nohead lc rgb grey lw 1.5 back
do for [x in "5 10 15"] {
  set label x . "×" at x, 0.5 center offset 0, 0.7 tc rgb grey
}
set label "Time for ten times the work" at screen 0.012, screen_y(head + rows * row_height + 34) left tc rgb ink
figure_at = left + unit * log(figure_right / text_left) / log(figure_right * 1.06 / text_left)
plot data index 1 \
    using (0):1:(0):(clamp($3, 0, last)):($1 - 0.36):($1 + 0.36) with boxxyerror lc rgb band, \
  '' index 1 using (clamp($3, 0, last)):($1 - 0.36):(0):(0.72) with vectors nohead lw 2 lc rgb band_edge, \
  '' index 1 using (limit($5, $4, clamp($2, 0, last))):1 with points pt dot ps scale lc rgb limit_colour, \
  '' index 1 using (missed($5, clamp($2, 0, last))):1 with points pt dot ps scale lc rgb missed_colour, \
  '' index 1 using (left + 0.011 * unit):1:6 with labels left noenhanced tc rgb ink, \
  '' index 1 using (figure_at):1:8 with labels right noenhanced tc rgb ink
unset multiplot
