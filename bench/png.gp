# The curve of PNG packing: time against size.
#   gnuplot -e "table='png.csv'; picture='png.svg'" bench/png.gp
set datafile separator ','
set terminal svg size 760,440 font 'sans-serif,13' background rgb 'white'
set output picture
set key top right
set grid lc rgb '#dddddd'
set logscale x
set title 'PNG of the pictures of the gallery, by compressor level'
set xlabel 'milliseconds for all'
set ylabel "size, % of libpng's own"

points(packer) = sprintf("< awk -F, '$1 == \"%s\"' %s", packer, table)

plot points('none') using 3:4:2 with linespoints lc rgb '#2980b9' pt 7 ps 0.5 title 'libdeflate, no filter', \
     '' using 3:4:2 with labels offset 0,-0.8 notitle, \
     points('up') using 3:4 with linespoints lc rgb '#e67e22' pt 7 ps 0.5 title 'libdeflate, row above', \
     points('libpng') using 3:4 with points lc rgb '#7f8c8d' pt 5 title 'libpng', \
     points('PNG') using 3:4 with points lc rgb '#c0392b' pt 6 ps 1.6 title 'written: fast, default, small'
