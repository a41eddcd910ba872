# The scaling curves as one picture of six panels.
#   gnuplot -e "table='scaling.csv'; picture='scaling.svg'" bench/scaling.gp
set datafile separator ','
set terminal svg size 1320,880 font 'sans-serif,13' background rgb 'white'
set output picture
set multiplot layout 2,3 margins 0.05,0.99,0.075,0.955 spacing 0.06,0.14
set key top left reverse Left samplen 2
set grid lc rgb '#dddddd'
set style data linespoints
set pointsize 0.5

# The points of one series; the others' are left out.
points(curve, series) = sprintf("< awk -F, '$1 == \"%s\" && $2 == \"%s\"' %s", curve, series, table)

sized = '"stroke" "outer shadow" "outer glow" "inner shadow" "inner glow"'
all = sized.' "linear gradient" "radial gradient" "pattern"'
array colors[8] = ['#c0392b', '#2c3e50', '#e67e22', '#16a085', '#8e44ad', '#2980b9', '#7f8c8d', '#b7950b']

set logscale xy
set format y '%g'
set title '1080 × 320 text mask, by the size of the effect'
set xlabel 'radius, pixels'
set ylabel 'milliseconds' offset 1
set xrange [1:100]
set yrange [*:*]
plot for [i = 1:words(sized)] points('radius', word(sized, i)) using 3:4 lc rgb colors[i] pt 7 title word(sized, i), \
     points('radius', 'OpenCV dilate') using 3:4 lc rgb '#999999' dt 2 pt 4 title 'OpenCV dilate', \
     points('radius', 'OpenCV sepFilter2D') using 3:4 lc rgb '#666666' dt 3 pt 6 title 'OpenCV sepFilter2D'

set title 'size 10, by the area'
set xlabel 'megapixels'
unset ylabel
set xrange [0.05:20]
plot for [i = 1:words(all)] points('area', word(all, i)) using ($3 * $3 / 1e6):4 lc rgb colors[i] pt 7 title word(all, i)

unset logscale
set title 'whole render, by the number of effects'
set xlabel 'effects in the stack, in the order of the second key'
set xrange [-0.3:8.3]
set yrange [0:*]
plot points('effects', 'whole render') using 3:4 lc rgb colors[1] pt 7 notitle

set logscale xy
set title 'whole picture of a title, by its area'
set xlabel 'megapixels'
set xrange [0.04:20]
set yrange [*:*]
set ylabel 'milliseconds' offset 1
titles = '"fill only" "three effects" "eight effects"'
plot for [i = 1:words(titles)] points('picture', word(titles, i)) using ($3 / 1e6):4 lc rgb colors[i] pt 7 title word(titles, i)

set title 'text of 24 px, with a stroke, by its length'
set xlabel 'characters'
unset ylabel
set xrange [8:12000]
texts = '"Latin laid out" "Latin drawn" "Chinese laid out" "Chinese drawn" "Chinese 65535 px wide laid out"'
plot for [i = 1:words(texts)] points('length', word(texts, i)) using 3:4 lc rgb colors[i] pt 7 title word(texts, i)

unset logscale
set title '1920 titles, by the number of threads'
set xlabel 'threads'
set xrange [0.8:*]
set yrange [0:*]
set xtics 1
plot points('threads', '1920 titles') using 3:4 lc rgb colors[1] pt 7 notitle
unset multiplot
